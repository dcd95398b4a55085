#pragma once

#include <optional>
#include <random>
#include <string>
#include <vector>

/// Makes ValueMaps for property-based tests: the same seed gives the same sequence on every
/// compiler and library. The values are mostly small, so that duplicates, complete lists and gaps
/// come up often; about a third of the maps hold no "..".
/// Belongs to one thread.
class RandomValueMaps {
  public:
    struct Case {
        std::string typeName;                             ///< A CIM type name in lower case.
        std::vector<std::optional<std::string>> entries;  ///< std::nullopt is a null entry.
        bool addMaxLength;
        long maxLength;
    };

    explicit RandomValueMaps(unsigned long seed);

    /// The next map. No lone ".." in it follows a number that would make the list of gaps long.
    [[nodiscard]] Case next();

  private:
    using Entries = std::vector<std::optional<std::string>>;

    /// A number from 0 to `limit` - 1.
    unsigned long below(unsigned long limit);

    /// True once in `times` calls.
    bool onceIn(unsigned long times);

    unsigned long smallNumber();
    std::string decimal();
    std::string hexadecimal();
    std::string number();
    std::string range();
    std::string limitNumber();

    /// A value, an entry drawn before or null; never with ".." unless an earlier entry holds it.
    std::optional<std::string> listedEntry(const Entries& earlier);

    /// Any entry.
    std::optional<std::string> entry(const Entries& earlier);

    Entries valuesOnly();
    Entries valuesAndRanges();
    Entries countedValuesThenLoneDotDot();

    /// Replaces the numbers before a lone ".." that would make the list of gaps long.
    void shortenGaps(Entries& entries);

    std::mt19937_64 engine_;
};
