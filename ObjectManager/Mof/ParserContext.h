#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Mof/FileDeclarations.h"
#include "ObjectManager/Mof/Range.h"

namespace Mof {

/// Told of a fault, and where in the text it is.
using ReportFault = std::function<void(std::size_t offset, const std::string& message)>;

/// What the scanner and the parser share: where a file's text is read, and what has come of it so
/// far.
///
/// Thread safety: belongs to one thread.
class ParserContext {
  public:
    ParserContext(ReportFault onError, ReportFault onWarning);

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
    void addPragma(const Range& range, const TSKString& name, const TSKString& value);

    FileDeclarations result;
    ReportFault onError;
    ReportFault onWarning;
    std::string_view source;  ///< the whole text
    std::size_t offset = 0;   ///< of the scanner, behind the last token
    void* scanner = nullptr;  ///< what flex keeps

  private:
    std::size_t file_ = 0;
};

}  // namespace Mof
