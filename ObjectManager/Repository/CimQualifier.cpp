#include "ObjectManager/Repository/CimQualifier.h"

#include <utility>

#include "ObjectManager/Repository/CimValue.h"

namespace Repository {

namespace {

TSKString escaped(const TSKString& text) {
    TSKString markup;
    markup.reserve(text.length() + text.length() / 16);
    for (const char byte : std::string_view(text)) {
        switch (byte) {
            case '&':
                markup += "&amp;";
                break;
            case '<':
                markup += "&lt;";
                break;
            case '>':
                markup += "&gt;";
                break;
            default:
                markup += byte;
        }
    }
    return markup;
}

// Most of a schema is descriptions, and few need it: one fast search a character.
bool needsEscaping(std::string_view text) {
    constexpr std::size_t kNowhere = std::string_view::npos;
    return text.find('&') != kNowhere || text.find('<') != kNowhere || text.find('>') != kNowhere;
}

// `name` is apart, because it is taken out of the qualifier already.
TSKSmrPtr<ITeskValue> valueOf(const TSKString& name, Mof::Qualifier& qualifier,
                              const RepositoryOptions& options) {
    // Only booleans are written without a value.
    if (!qualifier.value)
        return CimValue::from(true);
    if (options.escapeDescriptions && name.equalsIgnoreCase("Description")) {
        for (Mof::Literal& literal : qualifier.value->literals) {
            if (needsEscaping(literal.text))
                literal.text = escaped(literal.text);
        }
    }
    return CimValue::from(std::move(*qualifier.value), qualifier.dataType);
}

}  // namespace

CimQualifier::CimQualifier(Mof::Qualifier&& qualifier, const RepositoryOptions& options)
    : name_(std::move(qualifier.name.text)),
      propagates_(qualifier.propagates),
      value_(valueOf(name_, qualifier, options)) {}

}  // namespace Repository
