#include "ObjectManager/Mof/ParserContext.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>

namespace Mof {

namespace {

constexpr const char* kInclude = "include";
constexpr const char* kNamespace = "namespace";
constexpr const char* kLocale = "locale";

std::string unknownPragma(const Pragma& pragma) {
    return std::string("the pragma \"") + pragma.name.data() + "\" is not known and is ignored";
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

ParserContext::ParserContext(ReportFault onErrorFound, ReportFault onWarningFound)
    : onError([this, report = std::move(onErrorFound)](std::size_t at, const std::string& message) {
          if (isQuiet)
              return;
          lastError_ = at;
          report(at, message);
      }),
      onWarning(
          [this, report = std::move(onWarningFound)](std::size_t at, const std::string& message) {
              if (!isQuiet)
                  report(at, message);
          }) {}

void ParserContext::begin(std::size_t file, std::string_view text, void* flex) {
    file_ = file;
    source = text;
    scanner = flex;
    offset = 0;
    result = {};
    fault = {};
    openBraces = 0;
    skipping = Skipping::kNothing;
    isQuiet = false;
    skippedToEnd = false;
    lastError_.reset();
}

Literal ParserContext::textLiteral(const Range& range, Literal::Kind kind, TSKString text) const {
    Literal literal;
    literal.kind = kind;
    literal.position = position(range);
    literal.text = std::move(text);
    return literal;
}

Value ParserContext::scalar(const Range& range, Literal literal) const {
    Value value;
    value.position = position(range);
    value.literals.push_back(std::move(literal));
    return value;
}

Value ParserContext::array(const Range& range, std::vector<Literal> literals) const {
    Value value;
    value.isArray = true;
    value.position = position(range);
    value.literals = std::move(literals);
    return value;
}

Type ParserContext::arrayOfSize(const Range& range, const Literal& size) const {
    if (size.isNegative || size.magnitude == 0)
        onError(range.begin, "the size of an array must be 1 or more");
    Type type;
    type.isArray = true;
    type.arraySize = size.magnitude;
    return type;
}

Flavors ParserContext::combined(const Range& range, Flavors flavors, const Flavors& more) const {
    const bool agree = combine(flavors.overridable, more.overridable) &&
                       combine(flavors.toSubclass, more.toSubclass) &&
                       combine(flavors.translatable, more.translatable);
    if (!agree)
        onError(range.begin, "this flavor contradicts one before it");
    return flavors;
}

void ParserContext::addPragma(const Range& range, const Pragma& pragma) {
    if (pragma.name.equalsIgnoreCase(kInclude)) {
        Include include{.path = pragma.value.data(), .position = position(range)};
        std::replace(include.path.begin(), include.path.end(), '\\', '/');
        result.includes.push_back(std::move(include));
    } else if (pragma.name.equalsIgnoreCase(kNamespace)) {
        onWarning(range.begin,
                  "the pragma \"namespace\" is ignored: the command says which namespace the "
                  "classes belong to");
    } else if (!pragma.name.equalsIgnoreCase(kLocale)) {
        onWarning(range.begin, unknownPragma(pragma));
    }
}

void ParserContext::reportIncomplete(const Range& range, const Pragma& pragma) const {
    const bool isUnknown = !pragma.name.isEmpty() && !pragma.name.equalsIgnoreCase(kInclude) &&
                           !pragma.name.equalsIgnoreCase(kNamespace) &&
                           !pragma.name.equalsIgnoreCase(kLocale);
    if (isUnknown)
        onWarning(range.begin, unknownPragma(pragma));
    else
        onError(range.begin, "the pragma is not complete; a pragma is: #pragma NAME (\"VALUE\")");
}

}  // namespace Mof
