#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "Platform/Util/TSKNullPointerException.h"
#include "Platform/Util/TSKReferenceCount.h"

/// A pointer that shares the ownership of an object: the last one deletes it.
///
/// Null is a valid value. Dereferencing a null pointer throws TSKNullPointerException. Converts
/// from a pointer to a derived class, and from T to const T; the object is always deleted as the
/// type that it was first handed over as.
///
/// Thread safety: one pointer belongs to one thread; several pointers to one object may be used by
/// several threads at once. The object itself is as safe as its class says.
template <typename T>
class TSKSmrPtr {
  public:
    using element_type = T;

    TSKSmrPtr() noexcept = default;
    // Implicit: null is a value of every pointer.
    TSKSmrPtr(std::nullptr_t) noexcept {}

    /// Takes over a new object, which must not be owned by anybody else. A null `object` makes a
    /// null pointer.
    /// Errors: std::bad_alloc; the object is deleted then.
    template <typename U>
    requires std::is_convertible_v<U*, T*>
    explicit TSKSmrPtr(U* object) : object_(object), count_(countOf(object)) {
        if (count_ != nullptr)
            count_->addFirstOwner();
    }

    /// A pointer to a new T made from `arguments`.
    template <typename... Arguments>
    [[nodiscard]] static TSKSmrPtr make(Arguments&&... arguments) {
        return TSKSmrPtr(new std::remove_const_t<T>(std::forward<Arguments>(arguments)...));
    }

    // clang-analyzer does not follow the count, and takes an owner for the last one.
    // NOLINTBEGIN(clang-analyzer-cplusplus.NewDelete)
    TSKSmrPtr(const TSKSmrPtr& other) noexcept : object_(other.object_), count_(other.count_) {
        if (count_ != nullptr)
            count_->addOwner();
    }
    TSKSmrPtr(TSKSmrPtr&& other) noexcept
        : object_(std::exchange(other.object_, nullptr)),
          count_(std::exchange(other.count_, nullptr)) {}

    template <typename U>
    requires std::is_convertible_v<U*, T*> TSKSmrPtr(const TSKSmrPtr<U>& other)
    noexcept : object_(other.object_), count_(other.count_) {
        if (count_ != nullptr)
            count_->addOwner();
    }
    template <typename U>
    requires std::is_convertible_v<U*, T*> TSKSmrPtr(TSKSmrPtr<U>&& other)
    noexcept
        : object_(std::exchange(other.object_, nullptr)),
          count_(std::exchange(other.count_, nullptr)) {}

    ~TSKSmrPtr() {
        if (count_ != nullptr)
            count_->removeOwner();
    }
    // NOLINTEND(clang-analyzer-cplusplus.NewDelete)

    TSKSmrPtr& operator=(TSKSmrPtr other) noexcept {
        swap(other);
        return *this;
    }

    void swap(TSKSmrPtr& other) noexcept {
        std::swap(object_, other.object_);
        std::swap(count_, other.count_);
    }
    void reset() noexcept { *this = TSKSmrPtr(); }

    [[nodiscard]] T* get() const noexcept { return object_; }
    [[nodiscard]] bool isNull() const noexcept { return object_ == nullptr; }
    explicit operator bool() const noexcept { return object_ != nullptr; }

    /// Errors: TSKNullPointerException.
    T* operator->() const {
        if (object_ == nullptr)
            TSKNullPointerException::raise("TSKSmrPtr::operator->");
        return object_;
    }
    /// Errors: TSKNullPointerException.
    T& operator*() const {
        if (object_ == nullptr)
            TSKNullPointerException::raise("TSKSmrPtr::operator*");
        return *object_;
    }

    /// How many pointers share the object, 0 for a null pointer. A snapshot.
    [[nodiscard]] long owners() const noexcept { return count_ == nullptr ? 0 : count_->owners(); }

    /// Whether both point to the same object, or both to none.
    template <typename U>
    friend bool operator==(const TSKSmrPtr& left, const TSKSmrPtr<U>& right) noexcept {
        return left.get() == right.get();
    }
    friend bool operator==(const TSKSmrPtr& left, std::nullptr_t) noexcept { return left.isNull(); }

  private:
    template <typename U>
    friend class TSKSmrPtr;

    // Counts the owners of an object that does not count them itself.
    template <typename U>
    class SeparateCount final : public TSKReferenceCount {
      public:
        explicit SeparateCount(std::unique_ptr<U>& object) noexcept : object_(std::move(object)) {}

      private:
        std::unique_ptr<U> object_;
    };

    template <typename U>
    static TSKReferenceCount* countOf(U* object) {
        using Object = std::remove_const_t<U>;
        auto* owned = const_cast<Object*>(object);
        if constexpr (std::is_convertible_v<Object*, TSKReferenceCount*>) {
            return owned;
        } else {
            std::unique_ptr<Object> guard(owned);
            return guard ? new SeparateCount<Object>(guard) : nullptr;
        }
    }

    T* object_ = nullptr;
    TSKReferenceCount* count_ = nullptr;
};
