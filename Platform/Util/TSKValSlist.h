#pragma once

#include <forward_list>
#include <initializer_list>
#include <utility>

/// A singly linked list of values, in the order in which they were appended. Read it with a
/// TSKValSlistIterator.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
template <typename T>
class TSKValSlist {
  public:
    TSKValSlist() noexcept = default;
    TSKValSlist(std::initializer_list<T> values) {
        for (const T& value : values)
            append(value);
    }
    TSKValSlist(const TSKValSlist& other) {
        for (const T& value : other.values_)
            append(value);
    }
    TSKValSlist(TSKValSlist&& other) noexcept { swap(other); }
    ~TSKValSlist() = default;

    TSKValSlist& operator=(TSKValSlist other) noexcept {
        swap(other);
        return *this;
    }

    void swap(TSKValSlist& other) noexcept {
        values_.swap(other.values_);
        std::swap(last_, other.last_);
        std::swap(entries_, other.entries_);
    }

    /// Errors: std::bad_alloc or what copying the value throws; the list is unchanged then.
    void append(T value) {
        last_ = entries_ == 0 ? values_.insert_after(values_.before_begin(), std::move(value))
                              : values_.insert_after(last_, std::move(value));
        ++entries_;
    }

    [[nodiscard]] unsigned long entries() const noexcept { return entries_; }
    [[nodiscard]] bool isEmpty() const noexcept { return entries_ == 0; }

  private:
    template <typename U>
    friend class TSKValSlistIterator;

    std::forward_list<T> values_;
    // The last node; means nothing while the list is empty.
    typename std::forward_list<T>::iterator last_;
    unsigned long entries_ = 0;
};
