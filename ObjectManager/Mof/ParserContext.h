#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Mof/FileDeclarations.h"
#include "ObjectManager/Mof/Pragma.h"
#include "ObjectManager/Mof/Range.h"

namespace Mof {

/// Told of a fault, and where in the text it is.
using ReportFault = std::function<void(std::size_t offset, const std::string& message)>;

/// A token that does not fit where it stands.
struct SyntaxFault {
    int token = 0;  ///< which symbol of the parser
    Range range;
    bool endIsMissing = false;  ///< whether a semicolon would have fitted
};

/// What the scanner passes over after a fault.
enum class Skipping : std::uint8_t {
    kNothing,
    kMember,      ///< of a class, or a value of an instance
    kDeclaration  ///< of whatever kind
};

/// What the scanner and the parser share: where a file's text is read, and what has come of it so
/// far.
///
/// Thread safety: belongs to one thread.
class ParserContext {
  public:
    ParserContext(ReportFault onErrorFound, ReportFault onWarningFound);
    ParserContext(const ParserContext&) = delete;
    ParserContext& operator=(const ParserContext&) = delete;
    ~ParserContext() = default;

    /// Starts with the next file. `file` is its number, for positions; `text` must live until it
    /// is parsed; `flex` is the scanner.
    void begin(std::size_t file, std::string_view text, void* flex);

    // What the grammar makes of its pieces.

    [[nodiscard]] Position position(const Range& range) const noexcept {
        return {.file = file_, .offset = range.begin};
    }
    [[nodiscard]] Literal textLiteral(const Range& range, Literal::Kind kind, TSKString text) const;
    [[nodiscard]] Value scalar(const Range& range, Literal literal) const;
    [[nodiscard]] Value array(const Range& range, std::vector<Literal> literals) const;
    /// An array type; an error for a size that is not positive.
    [[nodiscard]] Type arrayOfSize(const Range& range, const Literal& size) const;
    /// All flavors of both; an error where they contradict each other.
    [[nodiscard]] Flavors combined(const Range& range, Flavors flavors, const Flavors& more) const;
    void addPragma(const Range& range, const Pragma& pragma);
    /// One without a value. An error for those that are known; the others may be written otherwise.
    void reportIncomplete(const Range& range, const Pragma& pragma) const;

    /// Whether the last error is about what stands there.
    [[nodiscard]] bool isToldOf(const Range& range) const noexcept {
        return lastError_ == range.begin;
    }

    FileDeclarations result;
    ReportFault onError;
    ReportFault onWarning;
    std::string_view source;  ///< the whole text
    std::size_t offset = 0;   ///< of the scanner, behind the last token
    void* scanner = nullptr;  ///< what flex keeps

    // What the parser recovers from syntax errors with.

    SyntaxFault fault;           ///< the last one
    std::size_t openBraces = 0;  ///< behind the last token
    Skipping skipping = Skipping::kNothing;
    bool isQuiet = false;       ///< whether faults are not reported: of what is skipped
    bool skippedToEnd = false;  ///< whether the end of the text was come by in skipping

  private:
    std::size_t file_ = 0;
    std::optional<std::size_t> lastError_;
};

}  // namespace Mof
