#include "ObjectManager/Mof/Declarations.h"

#include <algorithm>

#include "ObjectManager/Base/Ascii.h"

namespace Mof {

namespace {

constexpr const char* kKeywords[] = {
    "uint8",  "sint8",  "uint16", "sint16", "uint32",  "sint32",   "uint64", "sint64",
    "real32", "real64", "char16", "string", "boolean", "datetime", "ref",
};

template <typename Element>
bool areSame(const std::vector<Element>& left, const std::vector<Element>& right);
template <typename Element>
bool areSame(const std::optional<Element>& left, const std::optional<Element>& right);

bool isSame(const Name& left, const Name& right) {
    return left.text.equalsIgnoreCase(right.text);
}

bool isSame(const Type& left, const Type& right) {
    return left.dataType == right.dataType && left.isArray == right.isArray &&
           left.arraySize == right.arraySize && isSame(left.referencedClass, right.referencedClass);
}

bool isSame(const Literal& left, const Literal& right) {
    return left.kind == right.kind && left.truth == right.truth &&
           left.isNegative == right.isNegative && left.magnitude == right.magnitude &&
           left.real == right.real && left.character == right.character && left.text == right.text;
}

bool isSame(const Value& left, const Value& right) {
    return left.isArray == right.isArray && areSame(left.literals, right.literals);
}

bool isSame(const Flavors& left, const Flavors& right) {
    return left.overridable == right.overridable && left.toSubclass == right.toSubclass &&
           left.translatable == right.translatable;
}

// Whether a value is the one of a boolean qualifier that is written without a value.
bool isImplied(const Value& value) {
    if (value.isArray)
        return false;
    const Literal& literal = value.literals.front();
    return literal.kind == Literal::Kind::kBoolean && literal.truth;
}

bool haveSameValue(const Qualifier& left, const Qualifier& right) {
    if (left.value && right.value)
        return isSame(*left.value, *right.value);
    const std::optional<Value>& written = left.value ? left.value : right.value;
    return !written || isImplied(*written);
}

bool isSame(const Qualifier& left, const Qualifier& right) {
    return isSame(left.name, right.name) && haveSameValue(left, right) &&
           isSame(left.flavors, right.flavors);
}

// What properties, parameters and methods have in common.
template <typename Member>
bool areNamedAndQualifiedAlike(const Member& left, const Member& right) {
    return isSame(left.name, right.name) && areSame(left.qualifiers, right.qualifiers);
}

bool isSame(const Property& left, const Property& right) {
    return areNamedAndQualifiedAlike(left, right) && isSame(left.type, right.type) &&
           areSame(left.defaultValue, right.defaultValue);
}

bool isSame(const Parameter& left, const Parameter& right) {
    return areNamedAndQualifiedAlike(left, right) && isSame(left.type, right.type);
}

bool isSame(const Method& left, const Method& right) {
    return areNamedAndQualifiedAlike(left, right) && isSame(left.returnType, right.returnType) &&
           areSame(left.parameters, right.parameters);
}

template <typename Element>
bool areSame(const std::vector<Element>& left, const std::vector<Element>& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const Element& one, const Element& other) { return isSame(one, other); });
}

template <typename Element>
bool areSame(const std::optional<Element>& left, const std::optional<Element>& right) {
    return left.has_value() == right.has_value() && (!left || isSame(*left, *right));
}

}  // namespace

const char* keywordOf(DataType type) noexcept {
    return kKeywords[static_cast<std::size_t>(type)];
}

bool isReservedWord(std::string_view text) noexcept {
    static constexpr const char* kOthers[] = {"as", "false", "null", "of", "true"};
    const auto isText = [&](const char* word) { return Base::equalsIgnoringCase(text, word); };
    return std::ranges::any_of(kKeywords, isText) || std::ranges::any_of(kOthers, isText);
}

bool isSame(const ClassDeclaration& left, const ClassDeclaration& right) {
    return areNamedAndQualifiedAlike(left, right) && isSame(left.superclass, right.superclass) &&
           areSame(left.properties, right.properties) && areSame(left.methods, right.methods);
}

bool isSame(const QualifierDeclaration& left, const QualifierDeclaration& right) {
    return isSame(left.name, right.name) && isSame(left.type, right.type) &&
           areSame(left.defaultValue, right.defaultValue) && left.scopes == right.scopes &&
           isSame(left.flavors, right.flavors);
}

}  // namespace Mof
