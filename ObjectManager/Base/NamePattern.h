#pragma once

#include <string>
#include <string_view>

namespace Base {

/// Chooses names of CIM: in a pattern, `*` stands for any number of characters and `?` for one
/// byte; nothing else has a meaning of its own, and case does not matter.
///
/// Thread safety: immutable, may be used by several threads at once.
class NamePattern {
  public:
    explicit NamePattern(std::string_view text);

    /// `name` is a zero-terminated text.
    [[nodiscard]] bool fits(const char* name) const noexcept;

  private:
    std::string pattern_;  // as fnmatch(3) takes it
};

}  // namespace Base
