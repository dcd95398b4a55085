#pragma once

#include <string_view>

#include "ObjectManager/Mof/Parser.h"
#include "ObjectManager/Mof/ParserContext.h"

// Where the parser goes on after a syntax error, so that one fault is one message and what follows
// is read nevertheless.

namespace Mof {

/// Whether the token that did not fit is the first of the next declaration, since that before it
/// lacks its end.
[[nodiscard]] bool beginsDeclaration(const ParserContext& input);

/// Whether the token that did not fit is the first of the next member of a class, or ends the
/// class. The same of an instance.
[[nodiscard]] bool beginsMember(const ParserContext& input);

/// Whether it is the end of the file.
[[nodiscard]] bool isAtEnd(const ParserContext& input);

/// The first token behind what `input` says is to be skipped. `scan` gives the next token.
[[nodiscard]] Parser::symbol_type skip(ParserContext& input,
                                       Parser::symbol_type (*scan)(ParserContext& input));

}  // namespace Mof
