#pragma once

#include <cstddef>
#include <string_view>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "Platform/Util/TSKString.h"

// The values that the texts of literals stand for (DSP0004, annex A). `offset` is where a text
// begins, for faults.

namespace Mof {

[[nodiscard]] Literal booleanLiteral(bool truth);

/// A whole number with an optional sign: decimal, octal with a leading 0, hexadecimal with a
/// leading 0x, binary with a trailing b. One that does not fit into 64 bits is a fault.
[[nodiscard]] Literal integerLiteral(std::string_view text, std::size_t offset,
                                     const ReportFault& onError);

/// A number with a decimal point. One beyond the range of a real64 is a fault.
[[nodiscard]] Literal realLiteral(std::string_view text, std::size_t offset,
                                  const ReportFault& onError);

/// The text at a place where a string literal begins.
struct StringText {
    std::size_t length = 0;  ///< with the quotation marks; of one that is not closed, up to the end
                             ///< of the line, or to a backslash before that
    bool isClosed = false;   ///< on its line
};

/// Finds the end of the string literal at the front of `text`, which begins with a quotation mark.
[[nodiscard]] StringText readString(std::string_view text) noexcept;

/// The text of a string literal, given without its quotation marks. An escape that does not exist,
/// or stands for no character, is a fault and left out.
[[nodiscard]] TSKString unescape(std::string_view text, std::size_t offset,
                                 const ReportFault& onError);

/// A char16 literal, given without its apostrophes: one character of the basic plane.
[[nodiscard]] Literal characterLiteral(std::string_view text, std::size_t offset,
                                       const ReportFault& onError);

}  // namespace Mof
