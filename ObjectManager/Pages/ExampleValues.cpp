#include "ObjectManager/Pages/ExampleValues.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Base/Utf8.h"
#include "ObjectManager/Pages/ClassPage.h"
#include "ObjectManager/Pages/ExamplePrograms.h"
#include "ObjectManager/Pages/Qualifiers.h"

namespace Pages {

namespace {

using Repository::CimClass;
using Repository::CimProperty;

// A reference names an instance by its keys, which may be references again.
constexpr int kMaxDepth = 1;

constexpr std::size_t kMaxTextBytes = 256;

std::string blanks(int indent) {
    return std::string(static_cast<std::size_t>(indent), ' ');
}

// As documents have it: decimal.
std::string decimal(const std::string& literal) {
    const bool isHexadecimal = Base::startsWithIgnoringCase(literal, "0x");
    return isHexadecimal ? std::to_string(std::strtoull(literal.c_str(), nullptr, 16)) : literal;
}

// The first value of a value map of numbers: a single one, or else the end of an interval.
std::string mappedNumber(const std::vector<NamedValue>& values) {
    for (const NamedValue& each : values) {
        if (each.value.find("..") == std::string::npos && !each.value.empty())
            return decimal(each.value);
    }
    for (const NamedValue& each : values) {
        const std::size_t dots = each.value.find("..");
        if (dots == std::string::npos)
            continue;
        const std::string begin = each.value.substr(0, dots);
        const std::string end = each.value.substr(dots + 2);
        if (!begin.empty() || !end.empty())
            return decimal(begin.empty() ? end : begin);
    }
    return "1";
}

std::string mappedText(const std::vector<NamedValue>& values) {
    for (const NamedValue& each : values) {
        if (each.value.find("..") == std::string::npos)
            return each.value;
    }
    return "";
}

std::size_t lengthFrom(const urma::IQualified& definition, const char* qualifier,
                       std::size_t otherwise) {
    const std::string text = textOf(definition, qualifier);
    return text.empty() ? otherwise
                        : static_cast<std::size_t>(std::strtoull(text.c_str(), nullptr, 10));
}

// The name of what belongs there, with the length that it may have.
std::string placeholder(const urma::IQualified& definition, std::string_view name) {
    std::string text(name);
    const std::size_t longest =
        std::min(lengthFrom(definition, "MaxLen", kMaxTextBytes), kMaxTextBytes);
    const std::size_t shortest = std::min(lengthFrom(definition, "MinLen", 0), longest);
    if (text.size() > longest)
        text.resize(Base::startOfCharacter(text, longest));
    text.append(shortest - std::min(text.size(), shortest), 'x');
    return text;
}

std::string textValue(const CimClass& cimClass, const urma::IQualified& definition,
                      std::string_view name) {
    std::string mapped = mappedText(namedValuesOf(definition));
    if (!mapped.empty())
        return mapped;
    const bool isClassName = Base::equalsIgnoringCase(name, "CreationClassName");
    return placeholder(definition, isClassName ? std::string_view(cimClass.name()) : name);
}

std::string numberValue(const urma::IQualified& definition) {
    const std::vector<NamedValue> values = namedValuesOf(definition);
    if (!textsOf(definition, "ValueMap").empty())
        return mappedNumber(values);
    const std::string least = textOf(definition, "MinValue");
    return least.empty() ? "1" : decimal(least);
}

// What a model calls a number need not be one.
std::string pythonNumber(const std::string& number) {
    const std::string_view digits =
        std::string_view(number).substr(number.starts_with('-') ? 1 : 0);
    const bool isNumber = std::ranges::all_of(digits, Base::isDigit) && !digits.starts_with('0');
    return isNumber && !digits.empty() ? number : pythonText(number);
}

}  // namespace

ExampleValues::ExampleValues(const ClassRelations& relations, std::string service)
    : relations_(relations), service_(std::move(service)) {}

template <typename Definition>
std::string ExampleValues::value(const CimClass& cimClass, const Definition& definition, int indent,
                                 int depth) const {
    const ITeskType& type = definition.getType();
    if (type.isReference())
        return "\n" + reference(definition.referencedClass(), indent, depth) + blanks(indent - 2);
    const std::string name(type.getTypeName());
    if (name == "datetime")
        return "\n" + blanks(indent) + "<cim:Datetime>2026-01-31T12:00:00Z</cim:Datetime>\n" +
               blanks(indent - 2);
    if (name == "boolean")
        return "true";
    if (name == "char16")
        return "A";
    if (name == "string")
        return exampleText(textValue(cimClass, definition, definition.name()));
    return exampleText(numberValue(definition));
}

template <typename Definition>
std::string ExampleValues::pythonValue(const CimClass& cimClass,
                                       const Definition& definition) const {
    const ITeskType& type = definition.getType();
    const std::string name(type.getTypeName());
    std::string python;
    if (type.isReference())
        python = "{'_value_1': elements(\n" +
                 pythonLines(reference(definition.referencedClass(), 0, 0), 8) + ")}";
    else if (name == "datetime")
        python = "{'Datetime': '2026-01-31T12:00:00Z'}";
    else if (name == "boolean")
        python = "True";
    else if (name == "char16")
        python = "'A'";
    else if (name == "string")
        python = pythonText(textValue(cimClass, definition, definition.name()));
    else
        python = pythonNumber(numberValue(definition));
    return python;
}

std::string ExampleValues::pythonValueOf(const CimClass& cimClass,
                                         const CimProperty& property) const {
    const std::string value = pythonValue(cimClass, property);
    return property.getType().isArray() ? "[" + value + "]" : value;
}

std::string ExampleValues::pythonValueOf(const CimClass& cimClass,
                                         const Repository::CimParameter& parameter) const {
    return pythonValue(cimClass, parameter);
}

std::string ExampleValues::valueOf(const CimClass& cimClass, const CimProperty& property,
                                   int indent) const {
    return value(cimClass, property, indent, 0);
}

std::string ExampleValues::valueOf(const CimClass& cimClass,
                                   const Repository::CimParameter& parameter, int indent) const {
    return value(cimClass, parameter, indent, 0);
}

std::string ExampleValues::selectorSet(const CimClass& cimClass, bool withKeys, int indent) const {
    return selectors(cimClass, withKeys, indent, 0);
}

std::string ExampleValues::selectors(const CimClass& cimClass, bool withKeys, int indent,
                                     int depth) const {
    const std::string begin = blanks(indent + 2) + "<wsman:Selector Name=\"";
    std::string xml = blanks(indent) + "<wsman:SelectorSet>\n" + begin + "__cimnamespace\">" +
                      exampleText(relations_.nameSpace().name()) + "</wsman:Selector>\n";
    for (const CimProperty* const property : cimClass.properties()) {
        if (!withKeys || !Repository::isTrue(*property, "Key"))
            continue;
        std::string content;
        if (!property->getType().isReference() && property->getType().getTypeName() == "datetime")
            content = "20260131120000.000000+000";
        else
            content = value(cimClass, *property, indent + 4, depth);
        xml += begin;
        xml += exampleText(property->name());
        xml += "\">" + content + "</wsman:Selector>\n";
    }
    return xml + blanks(indent) + "</wsman:SelectorSet>\n";
}

std::string ExampleValues::reference(std::string_view className, int indent, int depth) const {
    const TSKSmrPtr<CimClass> cimClass = relations_.nameSpace().findClass(TSKString(className));
    const std::string name(cimClass ? std::string_view(cimClass->name()) : className);
    std::string xml = blanks(indent) + "<wsa:EndpointReference>\n" + blanks(indent + 2) +
                      "<wsa:Address>" + exampleText(service_) + "</wsa:Address>\n";
    if (cimClass && depth < kMaxDepth)
        xml += blanks(indent + 2) + "<wsa:ReferenceParameters>\n" + blanks(indent + 4) +
               "<wsman:ResourceURI>" + exampleText(classUri(name)) + "</wsman:ResourceURI>\n" +
               selectors(*cimClass, true, indent + 4, depth + 1) + blanks(indent + 2) +
               "</wsa:ReferenceParameters>\n";
    return xml + blanks(indent) + "</wsa:EndpointReference>\n";
}

std::string plainText(std::string_view text) {
    std::string plain;
    while (!text.empty()) {
        const auto [code, length] = Base::decodeCodePoint(text);
        if (length == 0 || Base::isControlCode(code) || code == 0xFFFE || code == 0xFFFF)
            plain += Base::kReplacementCharacter;
        else
            plain += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return plain;
}

std::string exampleText(std::string_view text) {
    std::string xml = Base::xmlText(plainText(text));
    for (std::size_t quote = xml.find('"'); quote != std::string::npos;
         quote = xml.find('"', quote))
        xml.replace(quote, 1, "&quot;");
    return xml;
}

}  // namespace Pages
