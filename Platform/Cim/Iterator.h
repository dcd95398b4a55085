#pragma once

namespace urma {

/// Walks the definitions of one kind, such as the properties of a class:
///
///     for (; iterator->hasCurrent(); iterator->advance())
///         use(iterator->current());
///
/// Starts at the first one. Handed out as CI_AutoPtr_U; what it walks, and current(), belong to the
/// definition that it was asked of, which must outlive both.
///
/// Thread safety: belongs to one thread; several iterators may walk one definition at once.
template <typename T>
class Iterator {
  public:
    Iterator(const Iterator&) = delete;
    Iterator& operator=(const Iterator&) = delete;
    virtual ~Iterator() = default;

    [[nodiscard]] virtual bool hasCurrent() const = 0;

    /// The current definition. Only called while hasCurrent().
    [[nodiscard]] virtual T current() const = 0;

    /// Steps to the next definition. Does nothing at the end.
    virtual void advance() = 0;

  protected:
    Iterator() = default;
};

}  // namespace urma
