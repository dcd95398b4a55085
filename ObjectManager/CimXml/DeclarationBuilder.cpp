#include "ObjectManager/CimXml/DeclarationBuilder.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Base/Utf8.h"

namespace CimXml {

namespace {

std::string shown(std::string_view text) {
    return Base::quoted(Base::logText(text));
}

std::string_view withoutSpaces(std::string_view text) noexcept {
    while (!text.empty() && Base::isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && Base::isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::optional<Mof::DataType> dataTypeOf(std::string_view name) noexcept {
    for (auto type = Mof::DataType::kUint8; type != Mof::DataType::kReference;
         type = static_cast<Mof::DataType>(static_cast<int>(type) + 1)) {
        if (Base::equalsIgnoringCase(name, Mof::keywordOf(type)))
            return type;
    }
    return std::nullopt;
}

// Whether a number of the type may be whole only.
bool isInteger(Mof::DataType type) noexcept {
    return type <= Mof::DataType::kSint64;
}

// A flavor that is not written is the one of the qualifier's declaration.
std::optional<bool> flavorOf(const Element& element, Attribute attribute) noexcept {
    if (!element.attribute(attribute))
        return std::nullopt;
    return element.isTrue(attribute);
}

Mof::Flavors flavorsOf(const Element& element) noexcept {
    Mof::Flavors flavors;
    flavors.overridable = flavorOf(element, Attribute::kOverridable);
    flavors.toSubclass = flavorOf(element, Attribute::kToSubclass);
    if (element.isTrue(Attribute::kTranslatable))
        flavors.translatable = true;
    return flavors;
}

unsigned scopesOf(const Element& scope) noexcept {
    static constexpr std::pair<Attribute, unsigned> kScopes[] = {
        {Attribute::kClass, Mof::kClassScope},
        {Attribute::kAssociation, Mof::kAssociationScope},
        {Attribute::kIndication, Mof::kIndicationScope},
        {Attribute::kProperty, Mof::kPropertyScope},
        {Attribute::kReference, Mof::kReferenceScope},
        {Attribute::kMethod, Mof::kMethodScope},
        {Attribute::kParameter, Mof::kParameterScope},
    };
    unsigned scopes = 0;
    for (const auto& [attribute, bit] : kScopes) {
        if (scope.isTrue(attribute))
            scopes |= bit;
    }
    return scopes;
}

bool isValue(Tag tag) noexcept {
    return tag == Tag::kValue || tag == Tag::kValueArray || tag == Tag::kValueNull;
}

bool isParameter(Tag tag) noexcept {
    return tag >= Tag::kParameter && tag <= Tag::kParameterReferenceArray;
}

// Whole numbers are decimal or hexadecimal (DSP0201).
std::optional<Mof::Literal> integerOf(std::string_view text) noexcept {
    Mof::Literal literal;
    literal.kind = Mof::Literal::Kind::kInteger;
    literal.isNegative = text.starts_with('-');
    if (literal.isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    const bool isHexadecimal = Base::startsWithIgnoringCase(text, "0x") && text.size() > 2;
    if (isHexadecimal)
        text.remove_prefix(2);
    const char* const last = text.data() + text.size();
    const auto [end, error] =
        std::from_chars(text.data(), last, literal.magnitude, isHexadecimal ? 16 : 10);
    constexpr std::uint64_t kMostNegative = std::uint64_t{1} << 63U;
    if (error != std::errc() || end != last ||
        (literal.isNegative && literal.magnitude > kMostNegative))
        return std::nullopt;
    return literal;
}

std::optional<Mof::Literal> realOf(std::string_view text) noexcept {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    Mof::Literal literal;
    literal.kind = Mof::Literal::Kind::kReal;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, literal.real);
    if (error != std::errc() || end != last || !std::isfinite(literal.real))
        return std::nullopt;
    return literal;
}

std::optional<Mof::Literal> booleanOf(std::string_view text) noexcept {
    Mof::Literal literal;
    literal.kind = Mof::Literal::Kind::kBoolean;
    literal.truth = Base::equalsIgnoringCase(text, "true");
    if (!literal.truth && !Base::equalsIgnoringCase(text, "false"))
        return std::nullopt;
    return literal;
}

std::optional<Mof::Literal> characterOf(std::string_view text) noexcept {
    constexpr char32_t kLastOfBasicPlane = 0xFFFF;
    const auto [code, length] = Base::decodeCodePoint(text);
    if (length == 0 || length != text.size() || code > kLastOfBasicPlane)
        return std::nullopt;
    Mof::Literal literal;
    literal.kind = Mof::Literal::Kind::kCharacter;
    literal.character = static_cast<std::uint16_t>(code);
    return literal;
}

std::optional<Mof::Literal> literalOf(std::string_view text, Mof::DataType type) {
    if (isInteger(type))
        return integerOf(withoutSpaces(text));
    switch (type) {
        case Mof::DataType::kReal32:
        case Mof::DataType::kReal64:
            return realOf(withoutSpaces(text));
        case Mof::DataType::kBoolean:
            return booleanOf(withoutSpaces(text));
        case Mof::DataType::kChar16:
            return characterOf(text);
        default:
            break;
    }
    if (!Base::isUtf8(text))
        return std::nullopt;
    Mof::Literal literal;
    literal.kind = Mof::Literal::Kind::kString;
    literal.text = TSKString(text);
    return literal;
}

// What of an element belongs to the member that it declares, not to how a qualifier is passed on.
bool haveSameAttributes(const Element& left, const Element& right) noexcept {
    constexpr Attribute kNames[] = {Attribute::kName, Attribute::kType, Attribute::kReferenceClass,
                                    Attribute::kArraySize, Attribute::kEmbeddedObject};
    return std::ranges::all_of(kNames, [&](Attribute attribute) {
        return Base::equalsIgnoringCase(left.attribute(attribute).value_or(""),
                                        right.attribute(attribute).value_or(""));
    });
}

// Whether the values in two elements are the same.
bool haveSameValue(const Element& left, const Element& right) noexcept {
    const auto valueOf = [](const Element& element) {
        std::string_view value;
        for (const Element child : element.children()) {
            if (isValue(child.tag()))
                value = child.body();
        }
        return value;
    };
    return valueOf(left) == valueOf(right);
}

bool isPassedOn(const Element& qualifier) noexcept {
    return flavorOf(qualifier, Attribute::kToSubclass).value_or(true);
}

std::string_view nameIn(const Element& element) noexcept {
    return element.attribute(Attribute::kName).value_or("");
}

// The children of a member that are no qualifiers and no values.
std::vector<Element> parametersOf(const Element& method) {
    std::vector<Element> parameters;
    for (const Element child : method.children()) {
        if (child.tag() != Tag::kQualifier && !isValue(child.tag()))
            parameters.push_back(child);
    }
    return parameters;
}

Base::NameMap<Element> qualifiersOf(const Element& element) {
    Base::NameMap<Element> qualifiers;
    for (const Element child : element.children()) {
        if (child.tag() == Tag::kQualifier)
            qualifiers.emplace(nameIn(child), child);
    }
    return qualifiers;
}

bool haveSameQualifiers(const Element& listed, const Element& inherited) {
    const Base::NameMap<Element> below = qualifiersOf(listed);
    const Base::NameMap<Element> above = qualifiersOf(inherited);
    const auto hasSame = [](const Base::NameMap<Element>& others, const auto& named) {
        const auto other = others.find(named.first);
        return other != others.end() && haveSameValue(named.second, other->second);
    };
    return std::ranges::all_of(below, [&](const auto& named) { return hasSame(above, named); }) &&
           std::ranges::all_of(above, [&](const auto& named) {
               return !isPassedOn(named.second) || hasSame(below, named);
           });
}

}  // namespace

Mof::Position PlaceTable::add(const TSKString& name, const TSKString& member,
                              const TSKString& parameter) {
    places_.push_back({.name = name, .member = member, .parameter = parameter});
    return {.file = 0, .offset = places_.size() - 1};
}

std::string PlaceTable::nameOf(const Mof::Position& position) const {
    const Place& place = places_.at(position.offset);
    std::string text(place.name);
    for (const TSKString* const part : {&place.member, &place.parameter}) {
        if (!part->isEmpty())
            text += "." + std::string(*part);
    }
    return text;
}

bool isName(std::string_view text) noexcept {
    const auto isAllowed = [](char byte) {
        return Base::isLetter(byte) || Base::isDigit(byte) || byte == '_' ||
               static_cast<unsigned char>(byte) >= 0x80;
    };
    return !text.empty() && !Base::isDigit(text.front()) && std::ranges::all_of(text, isAllowed) &&
           Base::isUtf8(text);
}

void requireNoReservedWord(std::string_view name, const Mof::Position& position) {
    if (Mof::isReservedWord(name)) {
        throw ElementFault{.position = position,
                           .message = "the word " + Base::quoted(name) +
                                      " is reserved in MOF, so it cannot be a name"};
    }
}

void Overridden::add(const Element& element) {
    isEmpty_ = false;
    for (const Element child : element.children()) {
        if (child.tag() == Tag::kQualifier)
            qualifiers_.emplace(nameIn(child), child);
        else if (isParameter(child.tag()))
            parameters_[nameIn(child)].push_back(child);
    }
}

bool Overridden::passesOn(const Element& qualifier) const noexcept {
    const auto above = qualifiers_.find(nameIn(qualifier));
    return above != qualifiers_.end() && isPassedOn(above->second, qualifier);
}

Overridden Overridden::parameter(const Element& named) const {
    Overridden overridden;
    const auto above = parameters_.find(nameIn(named));
    if (above == parameters_.end())
        return overridden;
    for (const Element& element : above->second) {
        if (element.tag() == named.tag())
            overridden.add(element);
    }
    return overridden;
}

bool isPassedOn(const Element& above, const Element& qualifier) noexcept {
    return isPassedOn(above) && haveSameValue(qualifier, above);
}

bool isSameMember(const Element& listed, const Element& inherited) {
    if (listed.body() == inherited.body())
        return true;
    if (listed.tag() != inherited.tag() || !haveSameAttributes(listed, inherited) ||
        !haveSameValue(listed, inherited) || !haveSameQualifiers(listed, inherited))
        return false;
    return std::ranges::equal(parametersOf(listed), parametersOf(inherited), isSameMember);
}

Mof::QualifierDeclaration DeclarationBuilder::qualifierDeclaration(const Element& element) {
    const TSKString written(element.attribute(Attribute::kName).value_or(""));
    position_ = places_.add(isName(written) ? "qualifier " + written : TSKString());
    Mof::QualifierDeclaration declaration;
    declaration.name = nameOf(element);
    declaration.type = typeOf(element);
    declaration.flavors = flavorsOf(element);
    bool hasScope = false;
    for (const Element child : element.children()) {
        if (child.tag() == Tag::kScope) {
            declaration.scopes |= scopesOf(child);
            hasScope = true;
        } else if (isValue(child.tag())) {
            declaration.defaultValue = valueOf(child, declaration.type.dataType);
        }
    }
    if (!hasScope)
        declaration.scopes = Mof::kAnyScope;
    return declaration;
}

Mof::Position DeclarationBuilder::beginClass(const TSKString& name) {
    className_ = name;
    position_ = places_.add(name);
    return position_;
}

Mof::Qualifier DeclarationBuilder::qualifierOfClass(const Element& element) {
    return qualifier(element);
}

Mof::Property DeclarationBuilder::property(const Element& element, const Overridden& overridden) {
    const Mof::Position before = position_;
    Mof::Property property;
    property.name = nameOf(element);
    property.name.position = position_ = places_.add(className_, property.name.text);
    property.type = typeOf(element);
    for (const Element child : element.children()) {
        if (child.tag() == Tag::kQualifier)
            addQualifier(property.qualifiers, child, overridden);
        else if (isValue(child.tag()))
            property.defaultValue = valueOf(child, property.type.dataType);
        else if (child.tag() != Tag::kValueReference)
            fail("a property must not hold the element " + shown(nameIn(child)));
    }
    addEmbeddedObject(property.qualifiers, element);
    position_ = before;
    return property;
}

Mof::Method DeclarationBuilder::method(const Element& element, const Overridden& overridden) {
    const Mof::Position before = position_;
    Mof::Method method;
    method.name = nameOf(element);
    method.name.position = position_ = places_.add(className_, method.name.text);
    method.returnType = typeOf(element);
    for (const Element child : element.children()) {
        if (child.tag() == Tag::kQualifier)
            addQualifier(method.qualifiers, child, overridden);
        else
            method.parameters.push_back(parameter(child, overridden, method.name.text));
    }
    addEmbeddedObject(method.qualifiers, element);
    position_ = before;
    return method;
}

Mof::Parameter DeclarationBuilder::parameter(const Element& element, const Overridden& ofMethods,
                                             const TSKString& method) {
    const Mof::Position before = position_;
    if (!isParameter(element.tag()))
        fail("a method must not hold the element " + shown(nameIn(element)));
    Mof::Parameter parameter;
    parameter.name = nameOf(element);
    parameter.name.position = position_ = places_.add(className_, method, parameter.name.text);
    parameter.type = typeOf(element);
    const Overridden overridden = ofMethods.parameter(element);
    for (const Element child : element.children()) {
        if (child.tag() != Tag::kQualifier)
            fail("a parameter must not hold the element " + shown(nameIn(child)));
        addQualifier(parameter.qualifiers, child, overridden);
    }
    addEmbeddedObject(parameter.qualifiers, element);
    position_ = before;
    return parameter;
}

Mof::Name DeclarationBuilder::nameOf(const Element& element) const {
    const std::string_view name = nameIn(element);
    if (!isName(name))
        fail(shown(name) + " is not a name");
    requireNoReservedWord(name, position_);
    return {.text = TSKString(name), .position = position_};
}

Mof::Type DeclarationBuilder::typeOf(const Element& element) const {
    const Tag tag = element.tag();
    Mof::Type type;
    type.isArray = tag == Tag::kPropertyArray || tag == Tag::kParameterArray ||
                   tag == Tag::kParameterReferenceArray ||
                   (tag == Tag::kQualifierDeclaration && element.isTrue(Attribute::kIsArray));
    if (tag == Tag::kPropertyReference || tag == Tag::kParameterReference ||
        tag == Tag::kParameterReferenceArray) {
        const std::string_view name = element.attribute(Attribute::kReferenceClass).value_or("");
        if (!isName(name))
            fail("the name of the referenced class is " + shown(name));
        requireNoReservedWord(name, position_);
        type.dataType = Mof::DataType::kReference;
        type.referencedClass.text = TSKString(name);
        type.referencedClass.position = position_;
    } else {
        const std::string_view name = element.attribute(Attribute::kType).value_or("");
        const std::optional<Mof::DataType> dataType = dataTypeOf(name);
        if (!dataType)
            fail("the type " + shown(name) + " is unknown");
        type.dataType = *dataType;
    }
    const std::optional<std::string_view> size = element.attribute(Attribute::kArraySize);
    if (size && type.isArray) {
        const std::optional<Mof::Literal> number = integerOf(withoutSpaces(*size));
        if (!number || number->isNegative || number->magnitude == 0)
            fail("the size of an array is " + shown(*size));
        type.arraySize = number->magnitude;
    }
    return type;
}

Mof::Qualifier DeclarationBuilder::qualifier(const Element& element) const {
    Mof::Qualifier qualifier;
    qualifier.name = nameOf(element);
    const std::string_view typeName = element.attribute(Attribute::kType).value_or("");
    const std::optional<Mof::DataType> type = dataTypeOf(typeName);
    if (!type) {
        fail("the type " + shown(typeName) + " of the qualifier " +
             Base::quoted(qualifier.name.text) + " is unknown");
    }
    qualifier.dataType = type;
    qualifier.flavors = flavorsOf(element);
    // Without a value, which MOF takes for true, it is null.
    qualifier.value = Mof::Value{.position = position_, .literals = {Mof::Literal{}}};
    for (const Element child : element.children()) {
        if (!isValue(child.tag()))
            fail("a qualifier must not hold the element " + shown(nameIn(child)));
        qualifier.value = valueOf(child, *type);
    }
    return qualifier;
}

void DeclarationBuilder::addQualifier(Mof::Qualifiers& qualifiers, const Element& element,
                                      const Overridden& overridden) const {
    if (!element.isPropagated() || !overridden.passesOn(element))
        qualifiers.push_back(qualifier(element));
}

// Some servers say only by an attribute what MOF says by a qualifier.
void DeclarationBuilder::addEmbeddedObject(Mof::Qualifiers& qualifiers,
                                           const Element& element) const {
    if (!element.attribute(Attribute::kEmbeddedObject))
        return;
    const Base::NameMap<Element> written = qualifiersOf(element);
    if (written.contains("EmbeddedObject") || written.contains("EmbeddedInstance"))
        return;
    Mof::Literal literal;
    literal.kind = Mof::Literal::Kind::kBoolean;
    literal.truth = true;
    literal.position = position_;
    Mof::Qualifier qualifier;
    qualifier.name = {.text = "EmbeddedObject", .position = position_};
    qualifier.dataType = Mof::DataType::kBoolean;
    qualifier.value = Mof::Value{.position = position_, .literals = {literal}};
    qualifiers.push_back(std::move(qualifier));
}

Mof::Value DeclarationBuilder::valueOf(const Element& element, Mof::DataType type) const {
    Mof::Value value;
    value.position = position_;
    value.isArray = element.tag() == Tag::kValueArray;
    if (!value.isArray) {
        value.literals.push_back(literalOf(element, type));
        return value;
    }
    for (const Element child : element.children())
        value.literals.push_back(literalOf(child, type));
    return value;
}

Mof::Literal DeclarationBuilder::literalOf(const Element& element, Mof::DataType type) const {
    std::optional<Mof::Literal> literal;
    if (element.tag() == Tag::kValueNull)
        literal.emplace();
    else if (element.tag() == Tag::kValue)
        literal = CimXml::literalOf(element.text(), type);
    if (!literal) {
        fail("the value " + shown(element.text()) + " is no " + std::string(Mof::keywordOf(type)));
    }
    literal->position = position_;
    return *literal;
}

void DeclarationBuilder::fail(const std::string& message) const {
    throw ElementFault{.position = position_, .message = message};
}

}  // namespace CimXml
