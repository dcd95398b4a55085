#include "ObjectManager/Mof/Recovery.h"

#include <utility>

namespace Mof {

namespace {

using Kind = Parser::symbol_kind;

bool isLineEnd(char byte) {
    return byte == '\n' || byte == '\r';
}

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

bool isFirstOnItsLine(std::string_view source, const Range& token) {
    std::size_t begin = token.begin;
    while (begin > 0 && isBlank(source[begin - 1]))
        --begin;
    return begin == 0 || isLineEnd(source[begin - 1]);
}

bool isFollowedByName(std::string_view source, const Range& token) {
    std::size_t end = token.end;
    while (end < source.size() && (isBlank(source[end]) || isLineEnd(source[end])))
        ++end;
    const char next = end == source.size() ? ' ' : source[end];
    return end > token.end && ((next >= 'a' && next <= 'z') || (next >= 'A' && next <= 'Z') ||
                               next == '_' || static_cast<unsigned char>(next) >= 0x80);
}

bool isDeclarationKeyword(int token) {
    return token == Kind::S_CLASS || token == Kind::S_QUALIFIER || token == Kind::S_INSTANCE;
}

// Whether a token begins a declaration, whatever stands before it. The keywords may be names, and
// words of a text with a quotation mark too many.
bool beginsDeclarationAnywhere(std::string_view source, int token, const Range& range) {
    return token == Kind::S_PRAGMA ||
           (isDeclarationKeyword(token) && isFirstOnItsLine(source, range) &&
            isFollowedByName(source, range));
}

// The token behind a declaration: behind the semicolon that no brace is open at.
Parser::symbol_type skipDeclaration(ParserContext& input,
                                    Parser::symbol_type (*scan)(ParserContext& input)) {
    if (input.fault.token == Kind::S_SEMICOLON && input.openBraces == 0)
        return scan(input);
    while (true) {
        Parser::symbol_type token = scan(input);
        if (token.kind() == Kind::S_YYEOF)
            return token;
        if (token.kind() == Kind::S_SEMICOLON && input.openBraces == 0)
            return scan(input);
        if (beginsDeclarationAnywhere(input.source, token.kind(), token.location)) {
            input.openBraces = 0;
            return token;
        }
    }
}

// The token behind a member: behind the next semicolon, since no value has one, or the brace that
// closes the class.
Parser::symbol_type skipMember(ParserContext& input,
                               Parser::symbol_type (*scan)(ParserContext& input)) {
    bool isOver = input.fault.token == Kind::S_SEMICOLON;
    while (!isOver) {
        Parser::symbol_type token = scan(input);
        if (token.kind() == Kind::S_YYEOF ||
            (token.kind() == Kind::S_CLOSING_BRACE && input.openBraces == 0))
            return token;
        isOver = token.kind() == Kind::S_SEMICOLON;
    }
    input.openBraces = 1;
    return scan(input);
}

}  // namespace

bool beginsDeclaration(const ParserContext& input) {
    const auto& [token, range, endIsMissing] = input.fault;
    if (endIsMissing && (isDeclarationKeyword(token) || token == Kind::S_OPENING_BRACKET))
        return true;
    return beginsDeclarationAnywhere(input.source, token, range);
}

bool beginsMember(const ParserContext& input) {
    const auto& [token, range, endIsMissing] = input.fault;
    if (token == Kind::S_CLOSING_BRACE && input.openBraces == 0)
        return true;
    const bool mayBegin = token == Kind::S_DATA_TYPE || token == Kind::S_IDENTIFIER ||
                          token == Kind::S_OPENING_BRACKET;
    return endIsMissing && mayBegin && isFirstOnItsLine(input.source, range);
}

bool isAtEnd(const ParserContext& input) {
    return input.fault.token == Kind::S_YYEOF;
}

Parser::symbol_type skip(ParserContext& input, Parser::symbol_type (*scan)(ParserContext& input)) {
    const Skipping what = std::exchange(input.skipping, Skipping::kNothing);
    input.isQuiet = true;
    Parser::symbol_type token =
        what == Skipping::kMember ? skipMember(input, scan) : skipDeclaration(input, scan);
    input.isQuiet = false;
    input.skippedToEnd = token.kind() == Kind::S_YYEOF;
    return token;
}

}  // namespace Mof
