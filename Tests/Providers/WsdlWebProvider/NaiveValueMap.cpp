#include "Tests/Providers/WsdlWebProvider/NaiveValueMap.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using Entries = std::vector<std::optional<std::string>>;

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

void addEnumeration(NaiveRestriction& restriction, const std::string& value) {
    restriction.facets.push_back("enumeration " + value);
}

void addAnyAttribute(NaiveRestriction& restriction) {
    restriction.facets.push_back("anyAttribute");
}

/// The member for the values from `minValue` to `maxValue`; an empty bound is open.
NaiveRestriction interval(int depth, const std::string& typeName, const std::string& minValue,
                          const std::string& maxValue) {
    NaiveRestriction member{
        depth, isStringType(typeName) ? cimType(typeName) : xsType(typeName), {}};
    if (!minValue.empty())
        member.facets.push_back("minInclusive " + minValue);
    if (!maxValue.empty())
        member.facets.push_back("maxInclusive " + maxValue);
    return member;
}

/// The result when no entry holds "..": one enumeration for each entry.
NaiveRestriction enumerations(const std::string& typeName, const Entries& entries,
                              bool addMaxLength, long maxLength) {
    NaiveRestriction restriction{0, cimType(typeName), {}};
    if (entries.empty())
        return restriction;
    if (addMaxLength)
        restriction.facets.push_back("maxLength " + std::to_string(maxLength));
    for (const std::optional<std::string>& entry : entries) {
        if (entry)
            addEnumeration(restriction, isStringType(typeName) ? *entry : normalised(*entry));
    }
    addAnyAttribute(restriction);
    return restriction;
}

/// The member for a range that is not the lone "..".
NaiveRestriction range(const std::string& typeName, const std::vector<std::string>& entries,
                       std::size_t i) {
    const std::string& entry = entries[i];
    const std::size_t dots = entry.find("..");
    const std::string before = entry.substr(0, dots);
    const std::string after = entry.substr(dots + 2);
    if (entry.starts_with("..")) {
        const std::string lower = std::to_string(plusOne(previousNumber(entries, i)));
        return interval(1, typeName, lower, normalised(after));
    }
    if (entry.ends_with(".."))
        return interval(1, typeName, normalised(before), upperBoundFromNext(entries, i));
    return interval(1, typeName, normalised(before), normalised(after));
}

/// Appends the members for the lone "..": the unlisted numbers below it and the interval above.
void addLoneDotDot(std::vector<NaiveRestriction>& members, const std::string& typeName,
                   const std::vector<std::string>& entries, std::size_t i,
                   const std::vector<std::int64_t>& listed) {
    const std::int64_t q = previousNumber(entries, i);
    const std::string lower = std::to_string(plusOne(q));
    const std::string upper = upperBoundFromNext(entries, i);
    if (static_cast<std::int64_t>(listed.size()) >= plusOne(q)) {
        members.push_back(interval(1, typeName, lower, upper));
        return;
    }
    NaiveRestriction gaps{2, xsType(typeName), {}};
    for (std::int64_t number = 0; number < q; ++number) {
        if (!contains(listed, number))
            addEnumeration(gaps, std::to_string(number));
    }
    members.push_back(gaps);
    members.push_back(interval(2, typeName, lower, upper));
}

/// The result when some entry holds "..": a union with members in the order of the entries.
std::vector<NaiveRestriction> unionOf(const std::string& typeName, const Entries& allEntries) {
    std::vector<NaiveRestriction> members = {{0, "cim:cimAnySimpleType", {}}};
    addAnyAttribute(members.front());
    std::vector<std::string> entries;
    for (const std::optional<std::string>& entry : allEntries) {
        if (entry)
            entries.push_back(*entry);
    }
    std::vector<std::int64_t> listed;
    bool open = false;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (!containsDotDot(entries[i])) {
            if (!open)
                members.push_back({1, xsType(typeName), {}});
            open = true;
            const std::string value = normalised(entries[i]);
            addEnumeration(members.back(), value);
            const std::int64_t number = decimalValue(value);
            if (!contains(listed, number))
                listed.push_back(number);
            continue;
        }
        open = false;
        if (entries[i] == "..")
            addLoneDotDot(members, typeName, entries, i, listed);
        else
            members.push_back(range(typeName, entries, i));
    }
    return members;
}

}  // namespace

std::vector<NaiveRestriction> naiveValueMap(const std::string& typeName, const Entries& entries,
                                            bool addMaxLength, long maxLength) {
    for (const std::optional<std::string>& entry : entries) {
        if (entry && containsDotDot(*entry))
            return unionOf(typeName, entries);
    }
    return {enumerations(typeName, entries, addMaxLength, maxLength)};
}
