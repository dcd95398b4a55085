#include "ObjectManager/CimXml/Element.h"

#include <cstring>
#include <unordered_map>

#include "ObjectManager/Base/Ascii.h"

// An element is recorded as
//     propagated:1 size:4 body:size
// and its body as
//     tag:1 attributes:1 (attribute:1 size:4 text:size)... size:4 text:size elements...

namespace CimXml {

namespace {

using Size = std::uint32_t;

constexpr std::size_t kSizeOffset = 1;
constexpr std::size_t kBodyOffset = kSizeOffset + sizeof(Size);
constexpr std::size_t kCountOffset = kBodyOffset + 1;

std::size_t sizeAt(const char* bytes) noexcept {
    Size size = 0;
    std::memcpy(&size, bytes, sizeof size);
    return size;
}

void setSizeAt(std::string& bytes, std::size_t position, std::size_t size) noexcept {
    const auto value = static_cast<Size>(size);
    std::memcpy(bytes.data() + position, &value, sizeof value);
}

void appendSize(std::string& bytes, std::size_t size) {
    const auto value = static_cast<Size>(size);
    char text[sizeof value];
    std::memcpy(text, &value, sizeof value);
    bytes.append(text, sizeof text);
}

// Takes a size and so many bytes from the front.
std::string_view takeSized(std::string_view& bytes) noexcept {
    const std::size_t size = sizeAt(bytes.data());
    const std::string_view sized = bytes.substr(sizeof(Size), size);
    bytes.remove_prefix(sizeof(Size) + size);
    return sized;
}

}  // namespace

Tag tagOf(std::string_view name) {
    static const std::unordered_map<std::string_view, Tag> kTags = {
        {"CIM", Tag::kCim},
        {"CLASS", Tag::kClass},
        {"CLASSNAME", Tag::kClassName},
        {"ERROR", Tag::kError},
        {"IMETHODRESPONSE", Tag::kMethodResponse},
        {"INSTANCENAME", Tag::kInstanceName},
        {"IRETURNVALUE", Tag::kReturnValue},
        {"KEYBINDING", Tag::kKeyBinding},
        {"KEYVALUE", Tag::kKeyValue},
        {"MESSAGE", Tag::kMessage},
        {"METHOD", Tag::kMethod},
        {"PARAMETER", Tag::kParameter},
        {"PARAMETER.ARRAY", Tag::kParameterArray},
        {"PARAMETER.REFARRAY", Tag::kParameterReferenceArray},
        {"PARAMETER.REFERENCE", Tag::kParameterReference},
        {"PROPERTY", Tag::kProperty},
        {"PROPERTY.ARRAY", Tag::kPropertyArray},
        {"PROPERTY.REFERENCE", Tag::kPropertyReference},
        {"QUALIFIER", Tag::kQualifier},
        {"QUALIFIER.DECLARATION", Tag::kQualifierDeclaration},
        {"SCOPE", Tag::kScope},
        {"SIMPLERSP", Tag::kSimpleResponse},
        {"VALUE", Tag::kValue},
        {"VALUE.ARRAY", Tag::kValueArray},
        {"VALUE.NULL", Tag::kValueNull},
        {"VALUE.REFERENCE", Tag::kValueReference},
    };
    const auto found = kTags.find(name);
    return found == kTags.end() ? Tag::kUnknown : found->second;
}

std::optional<Attribute> attributeOf(std::string_view name) {
    static const std::unordered_map<std::string_view, Attribute> kAttributes = {
        {"ARRAYSIZE", Attribute::kArraySize},
        {"ASSOCIATION", Attribute::kAssociation},
        {"CLASS", Attribute::kClass},
        {"CODE", Attribute::kCode},
        {"DESCRIPTION", Attribute::kDescription},
        {"EMBEDDEDOBJECT", Attribute::kEmbeddedObject},
        {"EmbeddedObject", Attribute::kEmbeddedObject},
        {"ID", Attribute::kId},
        {"INDICATION", Attribute::kIndication},
        {"ISARRAY", Attribute::kIsArray},
        {"METHOD", Attribute::kMethod},
        {"NAME", Attribute::kName},
        {"OVERRIDABLE", Attribute::kOverridable},
        {"PARAMETER", Attribute::kParameter},
        {"PROPAGATED", Attribute::kPropagated},
        {"PROPERTY", Attribute::kProperty},
        {"PROTOCOLVERSION", Attribute::kProtocolVersion},
        {"REFERENCE", Attribute::kReference},
        {"REFERENCECLASS", Attribute::kReferenceClass},
        {"SUPERCLASS", Attribute::kSuperclass},
        {"TOSUBCLASS", Attribute::kToSubclass},
        {"TRANSLATABLE", Attribute::kTranslatable},
        {"TYPE", Attribute::kType},
    };
    const auto found = kAttributes.find(name);
    if (found == kAttributes.end())
        return std::nullopt;
    return found->second;
}

Element::Element(std::string_view body, bool isPropagated) noexcept
    : body_(body), tag_(static_cast<Tag>(body[0])), isPropagated_(isPropagated) {
    std::string_view rest = body.substr(2);
    for (auto left = static_cast<unsigned char>(body[1]); left > 0; --left) {
        rest.remove_prefix(1);
        (void)takeSized(rest);
    }
    attributes_ = body.substr(2, body.size() - 2 - rest.size());
    text_ = takeSized(rest);
    children_ = rest;
}

std::optional<std::string_view> Element::attribute(Attribute attribute) const noexcept {
    std::string_view rest = attributes_;
    while (!rest.empty()) {
        const auto found = static_cast<Attribute>(rest[0]);
        rest.remove_prefix(1);
        const std::string_view value = takeSized(rest);
        if (found == attribute)
            return value;
    }
    return std::nullopt;
}

bool Element::isTrue(Attribute name) const noexcept {
    return Base::equalsIgnoringCase(attribute(name).value_or(""), "true");
}

ElementList Element::children() const noexcept {
    return ElementList(children_);
}

std::size_t Element::count() const noexcept {
    std::size_t sum = 1;
    for (const Element child : children())
        sum += child.count();
    return sum;
}

Element ElementList::Iterator::operator*() const noexcept {
    return Element(rest_.substr(kBodyOffset, sizeAt(rest_.data() + kSizeOffset)), rest_[0] != 0);
}

ElementList::Iterator& ElementList::Iterator::operator++() noexcept {
    rest_.remove_prefix(kBodyOffset + sizeAt(rest_.data() + kSizeOffset));
    return *this;
}

void ElementRecorder::begin(Tag tag) {
    if (!open_.empty())
        endText(open_.back());
    open_.push_back({.start = bytes_.size()});
    bytes_ += '\0';
    appendSize(bytes_, 0);
    bytes_ += static_cast<char>(tag);
    bytes_ += '\0';
}

void ElementRecorder::attribute(Attribute attribute, std::string_view value) {
    const std::size_t start = open_.back().start;
    if (attribute == Attribute::kPropagated) {
        bytes_[start] = Base::equalsIgnoringCase(value, "true") ? '\1' : '\0';
        return;
    }
    ++bytes_[start + kCountOffset];
    bytes_ += static_cast<char>(attribute);
    appendSize(bytes_, value.size());
    bytes_ += value;
}

void ElementRecorder::text(std::string_view text) {
    beginText(open_.back());
    bytes_ += text;
}

void ElementRecorder::end() {
    const std::size_t start = open_.back().start;
    endText(open_.back());
    setSizeAt(bytes_, start + kSizeOffset, bytes_.size() - start - kBodyOffset);
    open_.pop_back();
}

// Where its size will stand.
void ElementRecorder::beginText(Open& open) {
    if (open.text != 0)
        return;
    open.text = bytes_.size();
    appendSize(bytes_, 0);
}

void ElementRecorder::endText(Open& open) {
    if (open.isTextOver)
        return;
    beginText(open);
    setSizeAt(bytes_, open.text, bytes_.size() - open.text - sizeof(Size));
    open.isTextOver = true;
}

}  // namespace CimXml
