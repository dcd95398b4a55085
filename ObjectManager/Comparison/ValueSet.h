#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Comparison {

/// Which values of a simple type of XML Schema an element may have: all, or those that its facets
/// list. Integers are compared as numbers, such that 1 to 3 is the same as 1, 2 and 3.
///
/// Thread safety: const functions may be called by several threads at once.
class ValueSet {
  public:
    /// All values of the type: its local name in the namespace of XML Schema, such as
    /// "unsignedShort".
    explicit ValueSet(std::string_view type = {});

    /// Restricts the set, if nothing has before, to what is added. Texts that are no values of the
    /// type are values of their own.
    void addValue(std::string_view text);

    /// Integers from `least` to `most`; without one of them, from or to the end of the type.
    void addRange(std::optional<std::string_view> least, std::optional<std::string_view> most);

    /// Whatever else is added, the set holds all values.
    void addAll() noexcept { isOpen_ = true; }

    [[nodiscard]] bool holdsAll() const noexcept { return isOpen_ || !isRestricted_; }

    /// Whether each value of `other`, a set of the same type, is in this one.
    [[nodiscard]] bool includes(const ValueSet& other) const;

    /// The values of this set that are not in `other`: "4, 7 to 9"; at most ten of them, then
    /// "...". "others" for all texts but those in `other`.
    [[nodiscard]] std::string textOfThoseNotIn(const ValueSet& other) const;

  private:
    // Integers of signed types are shifted, so that their order is that of unsigned ones.
    using Number = std::uint64_t;
    struct Range {
        Number least;
        Number most;
    };

    [[nodiscard]] std::optional<Number> numberOf(std::string_view text) const noexcept;
    [[nodiscard]] std::string textOf(Number number) const;
    [[nodiscard]] std::string textOf(const Range& range) const;
    [[nodiscard]] std::vector<Range> merged() const;
    [[nodiscard]] std::vector<Range> rangesNotIn(const ValueSet& other) const;

    bool isInteger_ = false;
    bool isSigned_ = false;
    Range all_ = {0, 0};  // of an integer type
    bool isRestricted_ = false;
    bool isOpen_ = false;
    std::set<std::string, std::less<>> texts_;
    std::vector<Range> ranges_;
};

}  // namespace Comparison
