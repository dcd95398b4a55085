#pragma once

#include "Platform/Util/TSKNullPointerException.h"
#include "Platform/Util/TSKValSlist.h"

/// Reads a list from its first value to its last:
///
///     TSKValSlistIterator<TSKString> names(list);
///     while (names())
///         use(names.key());
///
/// The list must outlive the iterator and stay as it is meanwhile.
///
/// Thread safety: belongs to one thread; several iterators may read one list at once.
template <typename T>
class TSKValSlistIterator {
  public:
    explicit TSKValSlistIterator(const TSKValSlist<T>& list) noexcept
        : next_(list.values_.begin()), end_(list.values_.end()) {}
    explicit TSKValSlistIterator(TSKValSlist<T>&& list) = delete;  // it would not outlive this

    /// Steps to the next value, the first one at the first call. False at the end, and ever after.
    bool operator()() noexcept {
        if (next_ == end_) {
            current_ = nullptr;
            return false;
        }
        current_ = &*next_++;
        return true;
    }

    /// The current value. Valid as long as the list is unchanged.
    /// Errors: TSKNullPointerException before the first step and after the end.
    [[nodiscard]] const T& key() const {
        if (current_ == nullptr)
            TSKNullPointerException::raise("TSKValSlistIterator::key");
        return *current_;
    }

  private:
    typename std::forward_list<T>::const_iterator next_;
    typename std::forward_list<T>::const_iterator end_;
    const T* current_ = nullptr;
};
