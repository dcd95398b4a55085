#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "Platform/Cim/Iterator.h"
#include "Platform/Util/CI_AutoPtr_U.h"

namespace Repository {

/// Walks a list of pointers to definitions. The list must outlive it.
///
/// Thread safety: belongs to one thread.
template <typename Interface, typename Definition>
class DefinitionIterator final : public urma::Iterator<const Interface&> {
  public:
    DefinitionIterator(const Definition* const* begin, std::size_t count) noexcept
        : current_(begin), end_(begin + count) {}

    [[nodiscard]] bool hasCurrent() const override { return current_ != end_; }
    [[nodiscard]] const Interface& current() const override { return **current_; }
    void advance() override {
        if (current_ != end_)
            ++current_;
    }

  private:
    const Definition* const* current_;
    const Definition* const* end_;
};

/// An iterator over the first `count` pointers of `definitions`, a vector of them.
template <typename Interface, typename Definition>
[[nodiscard]] CI_AutoPtr_U<urma::Iterator<const Interface&>> iterateOver(
    const std::vector<const Definition*>& definitions, std::size_t count) {
    return std::make_unique<DefinitionIterator<Interface, Definition>>(definitions.data(), count);
}

template <typename Interface, typename Definition>
[[nodiscard]] CI_AutoPtr_U<urma::Iterator<const Interface&>> iterateOver(
    const std::vector<const Definition*>& definitions) {
    return iterateOver<Interface>(definitions, definitions.size());
}

}  // namespace Repository
