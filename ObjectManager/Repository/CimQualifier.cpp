#include "ObjectManager/Repository/CimQualifier.h"

#include <utility>

#include "ObjectManager/Repository/CimValue.h"

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
    return text.find('&') != text.npos || text.find('<') != text.npos ||
           text.find('>') != text.npos;
}

// Takes the texts of the value, not the name.
TSKSmrPtr<ITeskValue> valueOf(Mof::Qualifier& qualifier, const RepositoryOptions& options) {
    // Only booleans are written without a value.
    if (!qualifier.value)
        return CimValue::from(true);
    if (options.escapeDescriptions && qualifier.name.text.equalsIgnoreCase("Description")) {
        for (Mof::Literal& literal : qualifier.value->literals) {
            if (needsEscaping(literal.text))
                literal.text = escaped(literal.text);
        }
    }
    return CimValue::from(std::move(*qualifier.value));
}

}  // namespace

CimQualifier::CimQualifier(Mof::Qualifier&& qualifier, const RepositoryOptions& options)
    : value_(valueOf(qualifier, options)),
      name_(std::move(qualifier.name.text)),
      propagates_(qualifier.propagates) {}
