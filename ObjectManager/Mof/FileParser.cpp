#include "ObjectManager/Mof/FileParser.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Mof/ParserContext.h"

namespace Mof {

namespace {

using Kind = Parser::symbol_kind;

bool isDeclarationKeyword(Parser::symbol_kind_type kind) {
    return kind == Kind::S_CLASS || kind == Kind::S_QUALIFIER || kind == Kind::S_INSTANCE;
}

using Kinds = std::vector<Parser::symbol_kind_type>;

Kinds expectedKinds(const Parser::context& place) {
    Kinds kinds(Parser::YYNTOKENS);
    const int count = place.expected_tokens(kinds.data(), Parser::YYNTOKENS);
    kinds.resize(static_cast<std::size_t>(count));
    return kinds;
}

bool contains(const Kinds& kinds, Parser::symbol_kind_type kind) {
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

// ", expected A, B or C"; empty where too many kinds are expected to be of help. Where a name is
// expected, the keywords that may be names are not listed.
std::string expectation(const Kinds& kinds) {
    constexpr std::size_t kMaxListed = 6;
    const bool isNameExpected = contains(kinds, Kind::S_IDENTIFIER);
    std::vector<const char*> names;
    for (const Parser::symbol_kind_type kind : kinds) {
        const bool isKeyword = kind >= Kind::S_CLASS && kind <= Kind::S_TRANSLATABLE;
        if (!isNameExpected || !isKeyword)
            names.push_back(Parser::symbol_name(kind));
    }
    if (names.size() > kMaxListed)
        return "";
    std::string text;
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (index == 0)
            text += ", expected ";
        else
            text += index + 1 == names.size() ? " or " : ", ";
        text += names[index];
    }
    return text;
}

// Returns whether the two agree.
bool combine(std::optional<bool>& flavor, const std::optional<bool>& more) {
    if (!more)
        return true;
    const bool agrees = !flavor || *flavor == *more;
    flavor = more;
    return agrees;
}

}  // namespace

// Which faults are reported.

FaultFilter::FaultFilter(ReportFault onError, ReportFault onWarning)
    : onError_([this, report = std::move(onError)](std::size_t at, const std::string& message) {
          if (isSkipping_)
              return;
          lastError_ = at;
          report(at, message);
      }),
      onWarning_([this, report = std::move(onWarning)](std::size_t at, const std::string& message) {
          if (!isSkipping_)
              report(at, message);
      }) {}

void FaultFilter::begin() noexcept {
    isSkipping_ = false;
    lastError_.reset();
}

// Syntax errors, and where the parser goes on after them.

TokenStream::TokenStream(FaultFilter& faults)
    : faults_(faults), scanner_(faults.onError(), faults.onWarning()) {}

void TokenStream::begin(std::string_view text) {
    text_ = text;
    scanner_.begin(text);
    openBraces_ = 0;
    error_.reset();
    resumption_ = Resumption::kNone;
    skippedToEnd_ = false;
}

Parser::symbol_type TokenStream::next() {
    return resumption_ == Resumption::kNone ? scan() : resume();
}

Parser::symbol_type TokenStream::scan() {
    Parser::symbol_type token = scanner_.next();
    if (token.kind() == Kind::S_OPENING_BRACE)
        ++openBraces_;
    else if (token.kind() == Kind::S_CLOSING_BRACE && openBraces_ > 0)
        --openBraces_;
    return token;
}

void TokenStream::reportSyntaxError(const Parser::context& place) {
    const Kinds expected = expectedKinds(place);
    error_.emplace(SyntaxError{.token = place.lookahead(),
                               .isSemicolonExpected = contains(expected, Kind::S_SEMICOLON)});
    const std::size_t offset = place.location().begin;
    const bool isReported =
        faults_.isLastErrorAt(offset) || (skippedToEnd_ && place.token() == Kind::S_YYEOF);
    if (!isReported) {
        const std::string found = std::string("found ") + Parser::symbol_name(place.token());
        faults_.onError()(offset, found + expectation(expected));
    }
}

bool TokenStream::failedAtEnd() const noexcept {
    return error_->token.kind() == Kind::S_YYEOF;
}

// The unexpected token is the first one of the next declaration or member if only the end of the
// last one is missing. Otherwise everything up to the next one is skipped.
Parser::symbol_type TokenStream::resume() {
    const Resumption resumption = std::exchange(resumption_, Resumption::kNone);
    const bool isMember = resumption == Resumption::kMember;
    if (failedAtEnd() || (isMember ? failedAtMember() : failedAtDeclaration()))
        return error_->token;
    faults_.setSkipping(true);
    Parser::symbol_type token = isMember ? skipToMember() : skipToDeclaration();
    faults_.setSkipping(false);
    skippedToEnd_ = token.kind() == Kind::S_YYEOF;
    return token;
}

// A declaration ends with a semicolon outside of all braces.
Parser::symbol_type TokenStream::skipToDeclaration() {
    if (error_->token.kind() == Kind::S_SEMICOLON && openBraces_ == 0)
        return scan();
    while (true) {
        Parser::symbol_type token = scan();
        if (token.kind() == Kind::S_YYEOF)
            return token;
        if (token.kind() == Kind::S_SEMICOLON && openBraces_ == 0)
            return scan();
        if (beginsDeclaration(token)) {
            openBraces_ = 0;
            return token;
        }
    }
}

// A member ends with the next semicolon, since no value has one, or before the brace that closes
// the class.
Parser::symbol_type TokenStream::skipToMember() {
    bool isOver = error_->token.kind() == Kind::S_SEMICOLON;
    while (!isOver) {
        Parser::symbol_type token = scan();
        if (token.kind() == Kind::S_YYEOF ||
            (token.kind() == Kind::S_CLOSING_BRACE && openBraces_ == 0))
            return token;
        isOver = token.kind() == Kind::S_SEMICOLON;
    }
    openBraces_ = 1;
    return scan();
}

bool TokenStream::failedAtDeclaration() const {
    const auto& [token, isSemicolonExpected] = *error_;
    if (isSemicolonExpected &&
        (isDeclarationKeyword(token.kind()) || token.kind() == Kind::S_OPENING_BRACKET))
        return true;
    return beginsDeclaration(token);
}

bool TokenStream::failedAtMember() const {
    const auto& [token, isSemicolonExpected] = *error_;
    if (token.kind() == Kind::S_CLOSING_BRACE && openBraces_ == 0)
        return true;
    const bool mayBegin = token.kind() == Kind::S_DATA_TYPE || token.kind() == Kind::S_IDENTIFIER ||
                          token.kind() == Kind::S_OPENING_BRACKET;
    return isSemicolonExpected && mayBegin && isFirstOnLine(token.location);
}

// Whether a token begins a declaration, whatever is before it. Keywords may be names, and words of
// a text with a quotation mark too many.
bool TokenStream::beginsDeclaration(const Parser::symbol_type& token) const {
    return token.kind() == Kind::S_PRAGMA ||
           (isDeclarationKeyword(token.kind()) && isFirstOnLine(token.location) &&
            isFollowedByName(token.location));
}

bool TokenStream::isFirstOnLine(const Range& token) const {
    std::size_t begin = token.begin;
    while (begin > 0 && Base::isSpaceOrTab(text_[begin - 1]))
        --begin;
    return begin == 0 || Base::isLineEnd(text_[begin - 1]);
}

bool TokenStream::isFollowedByName(const Range& token) const {
    std::size_t end = token.end;
    while (end < text_.size() && Base::isSpace(text_[end]))
        ++end;
    const char next = end == text_.size() ? ' ' : text_[end];
    return end > token.end && beginsName(next);
}

// What the grammar makes of its symbols.

void DeclarationBuilder::begin(std::size_t file) {
    file_ = file;
    declarations_ = {};
}

FileDeclarations DeclarationBuilder::takeDeclarations() {
    return std::move(declarations_);
}

void DeclarationBuilder::add(ClassDeclaration declaration) {
    declarations_.classes.push_back(std::move(declaration));
}

void DeclarationBuilder::add(QualifierDeclaration declaration) {
    declarations_.qualifiers.push_back(std::move(declaration));
}

void DeclarationBuilder::add(const Pragma& pragma, const Range& range) {
    switch (pragma.kind()) {
        case Pragma::Kind::kInclude: {
            Include include{.path = pragma.value.data(), .position = position(range)};
            std::replace(include.path.begin(), include.path.end(), '\\', '/');
            declarations_.includes.push_back(std::move(include));
            break;
        }
        case Pragma::Kind::kLocale:
            break;
        case Pragma::Kind::kNamespace:
            faults_.onWarning()(range.begin,
                                "the pragma \"namespace\" is ignored: the command says which "
                                "namespace the classes belong to");
            break;
        case Pragma::Kind::kUnknown:
            faults_.onWarning()(range.begin, unknownPragmaWarning(pragma));
            break;
    }
}

Literal DeclarationBuilder::textLiteral(const Range& range, Literal::Kind kind,
                                        TSKString text) const {
    Literal literal;
    literal.kind = kind;
    literal.position = position(range);
    literal.text = std::move(text);
    return literal;
}

Value DeclarationBuilder::scalar(const Range& range, Literal literal) const {
    Value value;
    value.position = position(range);
    value.literals.push_back(std::move(literal));
    return value;
}

Value DeclarationBuilder::array(const Range& range, std::vector<Literal> literals) const {
    Value value;
    value.isArray = true;
    value.position = position(range);
    value.literals = std::move(literals);
    return value;
}

Type DeclarationBuilder::arrayOfSize(const Range& range, const Literal& size) const {
    if (size.isNegative || size.magnitude == 0)
        reportError(range, "the size of an array must be 1 or more");
    Type type;
    type.isArray = true;
    type.arraySize = size.magnitude;
    return type;
}

Flavors DeclarationBuilder::combined(const Range& range, Flavors flavors,
                                     const Flavors& more) const {
    const bool agree = combine(flavors.overridable, more.overridable) &&
                       combine(flavors.toSubclass, more.toSubclass) &&
                       combine(flavors.translatable, more.translatable);
    if (!agree)
        reportError(range, "this flavor contradicts one before it");
    return flavors;
}

// The parser's stack is large, so all texts share one.
struct FileParser::Implementation {
    Implementation(ReportFault onError, ReportFault onWarning)
        : faults(std::move(onError), std::move(onWarning)),
          tokens(faults),
          builder(faults),
          parser(tokens, builder) {}

    FaultFilter faults;
    TokenStream tokens;
    DeclarationBuilder builder;
    Parser parser;
};

FileParser::FileParser(ReportFault onError, ReportFault onWarning)
    : implementation_(std::make_unique<Implementation>(std::move(onError), std::move(onWarning))) {}

FileParser::~FileParser() = default;

FileDeclarations FileParser::parse(const SourceText& source, std::size_t file) {
    constexpr std::size_t kMaxBytes = std::numeric_limits<int>::max();  // flex counts in int
    auto& [faults, tokens, builder, parser] = *implementation_;
    faults.begin();
    if (source.text().size() >= kMaxBytes) {
        faults.onError()(0, "the file is too large");
        return {};
    }
    // MOF has none, and flex goes back to the beginning of a token for each zero byte in it.
    const std::size_t zero = source.text().find('\0');
    if (zero != std::string_view::npos) {
        if (source.looksLikeUtf16()) {
            faults.onError()(0,
                             "the file looks like UTF-16: convert it to UTF-8, for example with "
                             "\"iconv -f UTF-16 -t UTF-8\"");
        } else {
            faults.onError()(zero, "here is a zero byte: the file must be text, in UTF-8");
        }
        return {};
    }
    tokens.begin(source.text());
    builder.begin(file);
    parser.parse();
    return builder.takeDeclarations();
}

}  // namespace Mof
