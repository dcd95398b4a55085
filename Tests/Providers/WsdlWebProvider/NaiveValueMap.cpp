#include "Tests/Providers/WsdlWebProvider/NaiveValueMap.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <utility>

namespace {

using Entries = std::vector<std::optional<std::string>>;

/// An element to be printed; a list keeps references to children valid while more are added.
struct Element {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::list<Element> children;
};

/// Appends a child after the existing ones; every element is in the prefix of the root.
Element& addChild(Element& parent, const std::string& localName) {
    parent.children.push_back(Element{"xs:" + localName, {}, {}});
    return parent.children.back();
}

/// Appends a child whose only content is the attribute "value".
void addFacet(Element& parent, const std::string& localName, const std::string& value) {
    addChild(parent, localName).attributes.push_back({"value", value});
}

/// Appends the restriction that narrows `base`.
Element& addRestriction(Element& parent, const std::string& base) {
    Element& restriction = addChild(parent, "restriction");
    restriction.attributes.push_back({"base", base});
    return restriction;
}

/// Appends the wildcard for attributes of any namespace.
void addAnyAttribute(Element& parent) {
    Element& anyAttribute = addChild(parent, "anyAttribute");
    anyAttribute.attributes.push_back({"namespace", "##any"});
    anyAttribute.attributes.push_back({"processContents", "lax"});
}

/// The attribute text of a value.
std::string escaped(const std::string& value) {
    std::string text;
    for (const char c : value) {
        if (c == '&') {
            text += "&amp;";
        } else if (c == '<') {
            text += "&lt;";
        } else if (c == '>') {
            text += "&gt;";
        } else if (c == '"') {
            text += "&quot;";
        } else if (c == '\t') {
            text += "&#9;";
        } else if (c == '\n') {
            text += "&#10;";
        } else if (c == '\r') {
            text += "&#13;";
        } else {
            text += c;
        }
    }
    return text;
}

/// The printed element, two blanks a level and a newline after every tag.
std::string printed(const Element& element, std::size_t level) {
    const std::string indentation(2 * level, ' ');
    std::string text = indentation + "<" + element.name;
    for (const auto& [name, value] : element.attributes) {
        text += " " + name + "=\"" + escaped(value) + "\"";
    }
    if (element.children.empty()) {
        return text + "/>\n";
    }
    text += ">\n";
    for (const Element& child : element.children) {
        text += printed(child, level + 1);
    }
    return text + indentation + "</" + element.name + ">\n";
}

/// The built-in XML Schema type of a CIM type.
std::string xsType(const std::string& typeName) {
    if (typeName == "string")
        return "xs:string";
    if (typeName == "char16")
        return "xs:string";
    if (typeName == "datetime")
        return "xs:dateTime";
    if (typeName == "real64")
        return "xs:double";
    if (typeName == "real32")
        return "xs:float";
    if (typeName == "boolean")
        return "xs:boolean";
    if (typeName == "sint64")
        return "xs:long";
    if (typeName == "uint64")
        return "xs:unsignedLong";
    if (typeName == "sint32")
        return "xs:int";
    if (typeName == "uint32")
        return "xs:unsignedInt";
    if (typeName == "sint16")
        return "xs:short";
    if (typeName == "uint16")
        return "xs:unsignedShort";
    if (typeName == "sint8")
        return "xs:byte";
    if (typeName == "uint8")
        return "xs:unsignedByte";
    return "NA";
}

/// The WS-CIM wrapper type of a CIM type.
std::string cimType(const std::string& typeName) {
    if (typeName == "string")
        return "cim:cimString";
    if (typeName == "char16")
        return "cim:cimChar16";
    if (typeName == "datetime")
        return "cim:cimDateTime";
    if (typeName == "real64")
        return "cim:cimDouble";
    if (typeName == "real32")
        return "cim:cimFloat";
    if (typeName == "boolean")
        return "cim:cimBoolean";
    if (typeName == "sint64")
        return "cim:cimLong";
    if (typeName == "uint64")
        return "cim:cimUnsignedLong";
    if (typeName == "sint32")
        return "cim:cimInt";
    if (typeName == "uint32")
        return "cim:cimUnsignedInt";
    if (typeName == "sint16")
        return "cim:cimShort";
    if (typeName == "uint16")
        return "cim:cimUnsignedShort";
    if (typeName == "sint8")
        return "cim:cimByte";
    if (typeName == "uint8")
        return "cim:cimUnsignedByte";
    return "NA";
}

bool isStringType(const std::string& typeName) {
    return typeName.find("string") != std::string::npos ||
           typeName.find("String") != std::string::npos;
}

bool containsX(const std::string& text) {
    return text.find('x') != std::string::npos || text.find('X') != std::string::npos;
}

bool containsDotDot(const std::string& text) {
    return text.find("..") != std::string::npos;
}

/// The leading decimal integer, 0 when there is none, held at the 64-bit limits.
std::int64_t decimalValue(const std::string& text) {
    return std::strtoll(text.c_str(), nullptr, 10);
}

/// The same in base 16, with or without the 0x in front.
std::int64_t hexadecimalValue(const std::string& text) {
    return std::strtoll(text.c_str(), nullptr, 16);
}

/// An entry read as a number.
std::int64_t numberOf(const std::string& entry) {
    return containsX(entry) ? hexadecimalValue(entry) : decimalValue(entry);
}

/// The text as it is written: a hexadecimal one in decimal, any other unchanged.
std::string normalised(const std::string& text) {
    return containsX(text) ? std::to_string(hexadecimalValue(text)) : text;
}

/// The next number, with wraparound; unsigned arithmetic, since signed overflow is undefined.
std::int64_t plusOne(std::int64_t number) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(number) + 1U);
}

/// The number before, with wraparound.
std::int64_t minusOne(std::int64_t number) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(number) - 1U);
}

bool contains(const std::vector<std::int64_t>& numbers, std::int64_t wanted) {
    for (const std::int64_t number : numbers) {
        if (number == wanted)
            return true;
    }
    return false;
}

/// The number of the entry before entries[i]; -1 stands for the one before the first.
std::int64_t previousNumber(const std::vector<std::string>& entries, std::size_t i) {
    return i == 0 ? -1 : numberOf(entries[i - 1]);
}

/// The upper bound that the entry after entries[i] leaves; none after the last.
std::string upperBoundFromNext(const std::vector<std::string>& entries, std::size_t i) {
    return i + 1 < entries.size() ? std::to_string(minusOne(numberOf(entries[i + 1]))) : "";
}

/// Appends a simple type for the values from `minValue` to `maxValue`; an empty bound is open.
void addInterval(Element& parent, const std::string& typeName, const std::string& minValue,
                 const std::string& maxValue) {
    const std::string base = isStringType(typeName) ? cimType(typeName) : xsType(typeName);
    Element& restriction = addRestriction(addChild(parent, "simpleType"), base);
    if (!minValue.empty())
        addFacet(restriction, "minInclusive", minValue);
    if (!maxValue.empty())
        addFacet(restriction, "maxInclusive", maxValue);
}

/// The result when no entry holds "..": one enumeration for each entry.
void addEnumerations(Element& root, const std::string& typeName, const Entries& entries,
                     bool addMaxLength, long maxLength) {
    Element& restriction = addRestriction(root, cimType(typeName));
    if (entries.empty())
        return;
    if (addMaxLength)
        addFacet(restriction, "maxLength", std::to_string(maxLength));
    for (const std::optional<std::string>& entry : entries) {
        if (!entry)
            continue;
        addFacet(restriction, "enumeration", isStringType(typeName) ? *entry : normalised(*entry));
    }
    addAnyAttribute(restriction);
}

/// Appends the member for a range that is not the lone "..".
void addRange(Element& topUnion, const std::string& typeName,
              const std::vector<std::string>& entries, std::size_t i) {
    const std::string& entry = entries[i];
    const std::size_t dots = entry.find("..");
    const std::string before = entry.substr(0, dots);
    const std::string after = entry.substr(dots + 2);
    if (entry.starts_with("..")) {
        const std::string lower = std::to_string(plusOne(previousNumber(entries, i)));
        addInterval(topUnion, typeName, lower, normalised(after));
    } else if (entry.ends_with("..")) {
        addInterval(topUnion, typeName, normalised(before), upperBoundFromNext(entries, i));
    } else {
        addInterval(topUnion, typeName, normalised(before), normalised(after));
    }
}

/// Appends the member for the lone "..": the unlisted numbers below it and the interval above.
void addLoneDotDot(Element& topUnion, const std::string& typeName,
                   const std::vector<std::string>& entries, std::size_t i,
                   const std::vector<std::int64_t>& listed) {
    const std::int64_t q = previousNumber(entries, i);
    const std::string lower = std::to_string(plusOne(q));
    const std::string upper = upperBoundFromNext(entries, i);
    if (static_cast<std::int64_t>(listed.size()) >= plusOne(q)) {
        addInterval(topUnion, typeName, lower, upper);
        return;
    }
    Element& gapUnion = addChild(addChild(topUnion, "simpleType"), "union");
    Element& gaps = addRestriction(addChild(gapUnion, "simpleType"), xsType(typeName));
    for (std::int64_t number = 0; number < q; ++number) {
        if (!contains(listed, number))
            addFacet(gaps, "enumeration", std::to_string(number));
    }
    addInterval(gapUnion, typeName, lower, upper);
}

/// The result when some entry holds "..": a union with members in the order of the entries.
void addUnion(Element& root, const std::string& typeName, const Entries& allEntries) {
    Element& outerRestriction = addRestriction(root, "cim:cimAnySimpleType");
    Element& topUnion = addChild(addChild(outerRestriction, "simpleType"), "union");
    std::vector<std::string> entries;
    for (const std::optional<std::string>& entry : allEntries) {
        if (entry)
            entries.push_back(*entry);
    }
    std::vector<std::int64_t> listed;
    Element* openRestriction = nullptr;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!containsDotDot(entries[i])) {
            if (openRestriction == nullptr) {
                openRestriction =
                    &addRestriction(addChild(topUnion, "simpleType"), xsType(typeName));
            }
            const std::string value = normalised(entries[i]);
            addFacet(*openRestriction, "enumeration", value);
            const std::int64_t number = decimalValue(value);
            if (!contains(listed, number))
                listed.push_back(number);
            continue;
        }
        openRestriction = nullptr;
        if (entries[i] == "..") {
            addLoneDotDot(topUnion, typeName, entries, i, listed);
        } else {
            addRange(topUnion, typeName, entries, i);
        }
    }
    addAnyAttribute(outerRestriction);
}

}  // namespace

std::string naiveValueMapRestriction(const std::string& typeName, const Entries& entries,
                                     bool addMaxLength, long maxLength) {
    Element root{"xs:simpleContent", {}, {}};
    bool anyDotDot = false;
    for (const std::optional<std::string>& entry : entries) {
        if (entry && containsDotDot(*entry))
            anyDotDot = true;
    }
    if (anyDotDot) {
        addUnion(root, typeName, entries);
    } else {
        addEnumerations(root, typeName, entries, addMaxLength, maxLength);
    }
    return printed(root, 0);
}
