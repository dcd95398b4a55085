#pragma once

#include <memory>
#include <utility>

#include "Platform/Util/TSKNullPointerException.h"

/// The owning handle of an iterator: deletes it when it goes out of scope, can be moved but not
/// copied. Null is a valid value; dereferencing it throws TSKNullPointerException.
///
/// Thread safety: belongs to one thread.
template <typename T>
class CI_AutoPtr_U {
  public:
    CI_AutoPtr_U() noexcept = default;
    explicit CI_AutoPtr_U(T* object) noexcept : object_(object) {}
    // Implicit: iterators are made as std::unique_ptr.
    template <typename U>
    requires std::is_convertible_v<U*, T*> CI_AutoPtr_U(std::unique_ptr<U> object)
    noexcept : object_(std::move(object)) {}

    [[nodiscard]] T* get() const noexcept { return object_.get(); }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Errors: TSKNullPointerException.
    T* operator->() const {
        if (object_ == nullptr)
            TSKNullPointerException::raise("CI_AutoPtr_U::operator->");
        return object_.get();
    }
    /// Errors: TSKNullPointerException.
    T& operator*() const {
        if (object_ == nullptr)
            TSKNullPointerException::raise("CI_AutoPtr_U::operator*");
        return *object_;
    }

  private:
    std::unique_ptr<T> object_;
};
