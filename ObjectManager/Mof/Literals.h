#pragma once

#include <cstddef>
#include <string_view>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/ParserContext.h"
#include "Platform/Util/TSKString.h"

// What the texts of literals mean (DSP0004, annex A). `offset` is where a text begins, for faults.

namespace Mof {

[[nodiscard]] Literal booleanLiteral(bool truth);

/// A whole number with an optional sign: decimal, octal with a leading 0, hexadecimal with a
/// leading 0x, binary with a trailing b. One that has no place in 64 bits is a fault.
[[nodiscard]] Literal integerLiteral(std::string_view text, std::size_t offset,
                                     const ReportFault& onError);

/// A number with a decimal point. One beyond the range of a real64 is a fault.
[[nodiscard]] Literal realLiteral(std::string_view text, std::size_t offset,
                                  const ReportFault& onError);

/// How long the string literal at the front of `text` is, with its quotation marks. One that is not
/// closed on its line goes up to the end of the line, or of a backslash before that.
[[nodiscard]] std::size_t lengthOfString(std::string_view text) noexcept;

/// The text of a string literal, given without its quotation marks. An escape that does not exist,
/// or stands for no character, is a fault and left out.
[[nodiscard]] TSKString unescape(std::string_view text, std::size_t offset,
                                 const ReportFault& onError);

/// A char16 literal, given without its apostrophes: one character of the basic plane.
[[nodiscard]] Literal characterLiteral(std::string_view text, std::size_t offset,
                                       const ReportFault& onError);

}  // namespace Mof
