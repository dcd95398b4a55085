#pragma once

#include <cstddef>
#include <string>

#include "ObjectManager/Mof/Compilation.h"

namespace Mof {

/// Thrown when so much is wrong that going on helps nobody. Never leaves the compiler.
struct TooManyErrors {};

/// Adds what is wrong to a compilation, up to a limit.
///
/// Thread safety: belongs to one thread.
class Reporter {
  public:
    /// `mostErrors` errors are reported, and at most as many warnings as `kMostWarnings` says.
    Reporter(Compilation& compilation, std::size_t mostErrors)
        : compilation_(compilation), mostErrors_(mostErrors) {}

    /// Errors: TooManyErrors with the last one that is reported.
    void error(const Position& position, std::string message);
    /// An error that is not about a place in a file but about the file.
    /// Errors: TooManyErrors with the last one that is reported.
    void errorOfFile(const std::string& file, std::string message);
    void warning(const Position& position, std::string message);

    /// "file:line:column", to speak of one place in a message about another.
    [[nodiscard]] std::string nameOf(const Position& position) const;

    /// More than anybody reads; each costs a pass over its file.
    static constexpr std::size_t kMostWarnings = 100;

    /// The rest of a message of more bytes is left out. Only names that were made to do harm lead
    /// to one.
    static constexpr std::size_t kLongestMessage = 1000;

  private:
    void add(Severity severity, const Position& position, std::string message);
    void countError();

    Compilation& compilation_;
    std::size_t mostErrors_;
    std::size_t errors_ = 0;
    std::size_t warnings_ = 0;
};

}  // namespace Mof
