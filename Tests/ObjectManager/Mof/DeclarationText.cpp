#include "Tests/ObjectManager/Mof/DeclarationText.h"

#include <sstream>

namespace {

using namespace Mof;

constexpr const char* kTypeNames[] = {"uint8",  "sint8",  "uint16",  "sint16",  "uint32",
                                      "sint32", "uint64", "sint64",  "real32",  "real64",
                                      "char16", "string", "boolean", "datetime"};

std::string quoted(const char* text) {
    std::string quotedText = "\"";
    quotedText += text;
    quotedText += "\"";
    return quotedText;
}

std::string textOf(const Literal& literal) {
    switch (literal.kind) {
        case Literal::Kind::kNull:
            return "null";
        case Literal::Kind::kBoolean:
            return literal.truth ? "true" : "false";
        case Literal::Kind::kInteger:
            return (literal.isNegative ? "-" : "") + std::to_string(literal.magnitude);
        case Literal::Kind::kReal: {
            std::ostringstream text;
            text << literal.real << "r";
            return text.str();
        }
        case Literal::Kind::kCharacter:
            return "'" + std::to_string(literal.character) + "'";
        case Literal::Kind::kString:
            return quoted(literal.text.data());
        case Literal::Kind::kAlias:
            return literal.text.data();
    }
    return "?";
}

std::string textOf(const Value& value) {
    if (!value.isArray)
        return textOf(value.literals.at(0));
    std::string text = "{";
    for (const Literal& literal : value.literals)
        text += (text == "{" ? "" : ", ") + textOf(literal);
    return text + "}";
}

std::string defaultOf(const std::optional<Value>& value) {
    return value ? " = " + textOf(*value) : "";
}

std::string flavor(const std::optional<bool>& flavor, const char* yes, const char* no) {
    if (!flavor)
        return "";
    return std::string(" ") + (*flavor ? yes : no);
}

std::string textOf(const Flavors& flavors) {
    return flavor(flavors.overridable, "EnableOverride", "DisableOverride") +
           flavor(flavors.toSubclass, "ToSubclass", "Restricted") +
           flavor(flavors.translatable, "Translatable", "Untranslatable");
}

std::string textOf(const Qualifiers& qualifiers) {
    std::string text;
    for (const Qualifier& qualifier : qualifiers) {
        text += text.empty() ? "[" : ", ";
        text += qualifier.name.text.data();
        if (qualifier.value)
            text += "(" + textOf(*qualifier.value) + ")";
        text += textOf(qualifier.flavors);
    }
    return text.empty() ? "" : text + "] ";
}

std::string textOf(const Type& type, const Name& name) {
    std::string text = type.dataType == DataType::kReference
                           ? type.referencedClass.text.data() + std::string(" ref")
                           : kTypeNames[static_cast<int>(type.dataType)];
    text += std::string(" ") + name.text.data();
    if (type.isArray)
        text += "[" + (type.arraySize ? std::to_string(*type.arraySize) : "") + "]";
    return text;
}

std::string textOf(const ClassDeclaration& declaration) {
    std::string text = textOf(declaration.qualifiers) + "class " + declaration.name.text.data();
    if (!declaration.superclass.text.isEmpty())
        text += std::string(" : ") + declaration.superclass.text.data();
    text += "\n";
    for (const Property& property : declaration.properties)
        text += "  " + textOf(property.qualifiers) + textOf(property.type, property.name) +
                defaultOf(property.defaultValue) + "\n";
    for (const Method& method : declaration.methods) {
        text += "  " + textOf(method.qualifiers) + textOf(method.returnType, method.name) + "()\n";
        for (const Parameter& parameter : method.parameters)
            text += "    " + textOf(parameter.qualifiers) + textOf(parameter.type, parameter.name) +
                    "\n";
    }
    return text;
}

std::string textOf(const QualifierDeclaration& declaration) {
    return "qualifier " + textOf(declaration.type, declaration.name) +
           defaultOf(declaration.defaultValue) + " scopes " + std::to_string(declaration.scopes) +
           textOf(declaration.flavors) + "\n";
}

}  // namespace

std::string textOf(const Compilation& compilation) {
    std::string text;
    for (const QualifierDeclaration& declaration : compilation.qualifiers)
        text += textOf(declaration);
    for (const ClassDeclaration& declaration : compilation.classes)
        text += textOf(declaration);
    return text;
}

std::string diagnosticsOf(const Compilation& compilation) {
    std::string text;
    for (const Diagnostic& diagnostic : compilation.diagnostics)
        text += diagnostic.toString();
    return text;
}
