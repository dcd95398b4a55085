#include "ObjectManager/Mof/MofWriter.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Base/Utf8.h"

namespace Mof {

namespace {

constexpr std::size_t kIndent = 4;
constexpr std::size_t kMaxColumns = 100;  // of a line, where it can be broken
constexpr std::size_t kRoomBehind = 3;    // for the signs behind an element, as in ")],"

// Appends one byte of a text as it stands between `quote` and `quote`.
void appendEscaped(std::string& text, char byte, char quote) {
    static constexpr std::pair<char, char> kEscapes[] = {
        {'\b', 'b'}, {'\t', 't'}, {'\n', 'n'}, {'\f', 'f'}, {'\r', 'r'}, {'\\', '\\'},
    };
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const auto* const escape =
        std::ranges::find(kEscapes, byte, [](const auto& known) { return known.first; });
    if (escape != std::end(kEscapes)) {
        text += {'\\', escape->second};
    } else if (byte == quote) {
        text += {'\\', byte};
    } else if (Base::isControl(byte)) {
        const auto code = static_cast<unsigned char>(byte);
        text += {'\\', 'x', '0', '0', kDigits[code >> 4U], kDigits[code & 0xFU]};
    } else {
        text += byte;
    }
}

std::string literalText(std::string_view text) {
    std::string literal = "\"";
    for (const char byte : text)
        appendEscaped(literal, byte, '"');
    return literal += '"';
}

// String literals that are one text when they are written in a row: each ends after a line end of
// the text, or else after a space, such that it has at most `maxColumns`.
std::vector<std::string> literalsOf(std::string_view text, std::size_t maxColumns) {
    std::vector<std::string> literals;
    std::string literal = "\"";
    std::size_t afterSpace = 0;
    const auto breakAt = [&](std::size_t end) {
        std::string rest = "\"" + literal.substr(end);
        literal.resize(end);
        literals.push_back(std::move(literal += '"'));
        literal = std::move(rest);
        afterSpace = 0;
    };
    bool isAfterLineEnd = false;
    for (const char byte : text) {
        if (isAfterLineEnd)
            breakAt(literal.size());
        std::string escaped;
        appendEscaped(escaped, byte, '"');
        const bool fits = literal.size() + escaped.size() < maxColumns || literal.size() == 1;
        if (!fits && !Base::isContinuation(byte))
            breakAt(afterSpace > 0 ? afterSpace : literal.size());
        literal += escaped;
        if (byte == ' ')
            afterSpace = literal.size();
        isAfterLineEnd = byte == '\n';
    }
    literals.push_back(std::move(literal += '"'));
    return literals;
}

std::string characterText(std::uint16_t code) {
    std::string character;
    Base::appendCodePoint(character, code);
    std::string text = "'";
    for (const char byte : character)
        appendEscaped(text, byte, '\'');
    return text += '\'';
}

// The shortest text that stands for exactly that number. MOF wants a digit after a decimal point.
std::string realText(double real) {
    char digits[32];  // the longest number needs 24
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), real);
    std::string text(digits, end.ptr);
    if (text.find('.') == std::string::npos)
        text.insert(std::min(text.find('e'), text.size()), ".0");
    return text;
}

std::string textOf(const Literal& literal) {
    switch (literal.kind) {
        case Literal::Kind::kNull:
            return "NULL";
        case Literal::Kind::kBoolean:
            return literal.truth ? "true" : "false";
        case Literal::Kind::kInteger:
            return (literal.isNegative ? "-" : "") + std::to_string(literal.magnitude);
        case Literal::Kind::kReal:
            return realText(literal.real);
        case Literal::Kind::kCharacter:
            return characterText(literal.character);
        case Literal::Kind::kString:
            return literalText(literal.text);
        case Literal::Kind::kAlias:
            break;
    }
    return std::string(literal.text);
}

std::vector<std::string> textsOf(const Flavors& flavors) {
    std::vector<std::string> texts;
    if (flavors.overridable)
        texts.emplace_back(*flavors.overridable ? "EnableOverride" : "DisableOverride");
    if (flavors.toSubclass)
        texts.emplace_back(*flavors.toSubclass ? "ToSubclass" : "Restricted");
    if (flavors.translatable.value_or(false))
        texts.emplace_back("Translatable");
    return texts;
}

// A declaration must have a scope: one that nothing here has stands for none.
std::vector<std::string> textsOfScopes(unsigned scopes) {
    static constexpr std::pair<unsigned, const char*> kScopes[] = {
        {kClassScope, "class"},           {kAssociationScope, "association"},
        {kIndicationScope, "indication"}, {kPropertyScope, "property"},
        {kReferenceScope, "reference"},   {kMethodScope, "method"},
        {kParameterScope, "parameter"},
    };
    if (scopes == kAnyScope)
        return {"any"};
    if (scopes == 0)
        return {"qualifier"};
    std::vector<std::string> texts;
    for (const auto& [scope, text] : kScopes) {
        if ((scopes & scope) != 0)
            texts.emplace_back(text);
    }
    return texts;
}

std::string typeText(const Type& type) {
    if (type.dataType == DataType::kReference)
        return std::string(type.referencedClass.text) + " REF";
    return keywordOf(type.dataType);
}

std::string arrayText(const Type& type) {
    if (!type.isArray)
        return {};
    return "[" + (type.arraySize ? std::to_string(*type.arraySize) : "") + "]";
}

// A boolean qualifier is true without a value.
bool isImplied(const Qualifier& qualifier) {
    if (!qualifier.value || qualifier.value->isArray)
        return !qualifier.value;
    const Literal& literal = qualifier.value->literals.front();
    return literal.kind == Literal::Kind::kBoolean && literal.truth &&
           qualifier.dataType == DataType::kBoolean;
}

// The value of a qualifier, or the default value of an array.
std::string onOneLine(const Value& value) {
    std::vector<std::string> texts;
    texts.reserve(value.literals.size());
    for (const Literal& literal : value.literals)
        texts.push_back(textOf(literal));
    const std::string text = Base::joined(texts, ", ");
    return value.isArray ? "{" + text + "}" : "(" + text + ")";
}

// Puts declarations together, line by line.
//
// Thread safety: belongs to one thread.
class Writer {
  public:
    std::string take() { return std::move(text_); }

    void write(const QualifierDeclaration& declaration) {
        const Type& type = declaration.type;
        text_ += "Qualifier " + std::string(declaration.name.text) + " : " + typeText(type) +
                 arrayText(type);
        if (declaration.defaultValue)
            writeDefault(*declaration.defaultValue);
        text_ += ',';
        indent_ = kIndent;
        beginLine();
        text_ += "Scope (" + Base::joined(textsOfScopes(declaration.scopes), ", ") + ")";
        const std::vector<std::string> flavors = textsOf(declaration.flavors);
        if (!flavors.empty()) {
            text_ += ',';
            beginLine();
            text_ += "Flavor (" + Base::joined(flavors, ", ") + ")";
        }
        text_ += ";\n";
    }

    void write(const ClassDeclaration& declaration) {
        write(declaration.qualifiers);
        text_ += "class " + std::string(declaration.name.text);
        if (!declaration.superclass.text.isEmpty())
            text_ += " : " + std::string(declaration.superclass.text);
        beginLine();
        text_ += '{';
        indent_ = kIndent;
        for (const Property& property : declaration.properties)
            write(property);
        for (const Method& method : declaration.methods)
            write(method);
        indent_ = 0;
        beginLine();
        text_ += "};\n";
    }

  private:
    void write(const Property& property) {
        beginMember();
        write(property.qualifiers);
        text_ += typeText(property.type) + " " + std::string(property.name.text) +
                 arrayText(property.type);
        if (property.defaultValue)
            writeDefault(*property.defaultValue);
        text_ += ';';
    }

    void write(const Method& method) {
        beginMember();
        write(method.qualifiers);
        text_ += typeText(method.returnType) + " " + std::string(method.name.text) + " (";
        indent_ += kIndent;
        const char* separator = "";
        for (const Parameter& parameter : method.parameters) {
            text_ += std::exchange(separator, ",");
            beginLine();
            write(parameter.qualifiers);
            text_ += typeText(parameter.type) + " " + std::string(parameter.name.text) +
                     arrayText(parameter.type);
        }
        indent_ -= kIndent;
        text_ += ");";
    }

    // As many on a line as it has room for, and then the line of what they qualify.
    void write(const Qualifiers& qualifiers) {
        if (qualifiers.empty())
            return;
        text_ += '[';
        indent_ += kIndent;
        for (const Qualifier& qualifier : qualifiers)
            write(qualifier, &qualifier == &qualifiers.front());
        indent_ -= kIndent;
        text_ += ']';
        beginLine();
    }

    void write(const Qualifier& qualifier, bool isFirst) {
        const std::string name(qualifier.name.text);
        const std::vector<std::string> flavors = textsOf(qualifier.flavors);
        const std::string end = flavors.empty() ? "" : " : " + Base::joined(flavors, " ");
        const std::string value = isImplied(qualifier) ? "" : " " + onOneLine(*qualifier.value);
        const std::size_t length = name.size() + value.size() + end.size();
        beginElement(length, isFirst);
        text_ += name;
        if (value.empty() || fits(length - name.size()))
            text_ += value;
        else
            writeOnLinesBelow(*qualifier.value);
        text_ += end;
    }

    void writeOnLinesBelow(const Value& value) {
        text_ += value.isArray ? " {" : " (";
        writeOnLinesBelow(value.literals);
        text_ += value.isArray ? '}' : ')';
        isBroken_ = true;
    }

    void writeDefault(const Value& value) {
        text_ += " =";
        const std::string text = value.isArray ? onOneLine(value) : textOf(value.literals.front());
        if (fits(1 + text.size()))
            text_ += " " + text;
        else if (value.isArray)
            writeOnLinesBelow(value);
        else
            writeOnLinesBelow(value.literals);
    }

    // As many on each line as it has room for.
    void writeOnLinesBelow(const std::vector<Literal>& literals) {
        indent_ += kIndent;
        beginLine();
        for (const Literal& literal : literals)
            writeElement(literal, &literal == &literals.front());
        indent_ -= kIndent;
    }

    void writeElement(const Literal& literal, bool isFirst) {
        if (literal.kind != Literal::Kind::kString) {
            const std::string text = textOf(literal);
            beginElement(text.size(), isFirst);
            text_ += text;
            return;
        }
        constexpr std::size_t kFewestColumns = kMaxColumns / 2;
        const std::vector<std::string> parts =
            literalsOf(literal.text, std::max(kMaxColumns - indent_ - kRoomBehind, kFewestColumns));
        beginElement(parts.size() == 1 ? parts.front().size() : kMaxColumns, isFirst);
        for (const std::string& part : parts) {
            if (&part != &parts.front())
                beginLine();
            text_ += part;
        }
        isBroken_ = parts.size() > 1;
    }

    // Where an element of a list is written that has that many columns on one line.
    void beginElement(std::size_t length, bool isFirst) {
        const bool isAfterBroken = std::exchange(isBroken_, false);
        if (isFirst)
            return;
        text_ += ',';
        if (isAfterBroken || !fits(1 + length))
            beginLine();
        else
            text_ += ' ';
    }

    [[nodiscard]] bool fits(std::size_t length) const noexcept {
        return text_.size() - lineStart_ + length + kRoomBehind <= kMaxColumns;
    }

    // Members stand apart.
    void beginMember() {
        if (!text_.ends_with("{"))
            text_ += '\n';
        beginLine();
    }

    void beginLine() {
        text_ += '\n';
        lineStart_ = text_.size();
        text_.append(indent_, ' ');
    }

    std::string text_;
    std::size_t lineStart_ = 0;
    std::size_t indent_ = 0;
    bool isBroken_ = false;  // whether the last element of a list is on more than one line
};

template <typename Declaration>
std::string written(const Declaration& declaration) {
    Writer writer;
    writer.write(declaration);
    return writer.take();
}

}  // namespace

std::string mofOf(const QualifierDeclaration& declaration) {
    return written(declaration);
}

std::string mofOf(const ClassDeclaration& declaration) {
    return written(declaration);
}

}  // namespace Mof
