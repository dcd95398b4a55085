#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "Platform/Util/TSKValSlistIterator.h"
#include "Providers/WsdlWebProvider/SchemaTree.h"
#include "Providers/WsdlWebProvider/SchemaTypes.h"
#include "Providers/WsdlWebProvider/Tags.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"

using namespace SchemaTree;
using SchemaTypes::isStringType;
using SchemaTypes::wsCimType;
using SchemaTypes::xsType;

namespace {

TSKString decimalText(long number) {
    TSKString text;
    text.ltoa(number, 10);
    return text;
}

bool isHexadecimal(const TSKString& text) {
    return text.find('x') >= 0 || text.find('X') >= 0;
}

long hexadecimalNumber(const TSKString& text) {
    return std::strtol(text.data(), nullptr, 16);
}

long numberOf(const TSKString& text) {
    return isHexadecimal(text) ? hexadecimalNumber(text) : text.atol();
}

TSKString normalised(const TSKString& text) {
    return isHexadecimal(text) ? decimalText(hexadecimalNumber(text)) : text;
}

// At the ends of the range the sum wraps. So a ".." after the largest number counts as one without
// gaps, where 2^63 values would have to be enumerated.
long wrappingSum(long number, long summand) {
    return static_cast<long>(static_cast<unsigned long>(number) +
                             static_cast<unsigned long>(summand));
}

void addFacet(const Element& restriction, const char* facet, const TSKString& value) {
    addAttribute(addChild(restriction, facet), names().value, value);
}

// Adds permitted values to a restriction. They share their names, since there may be thousands
// (Benchmarks, DocumentBenchmark).
class Enumeration {
  public:
    explicit Enumeration(Element restriction)
        : restriction_(std::move(restriction)), name_(childName(restriction_, TAG_ENUMERATTION)) {}

    void add(const TSKString& value) const { setValue(addElement(), value); }

    [[nodiscard]] Element addElement() const { return addChild(restriction_, name_); }
    void setValue(const Element& element, const TSKString& value) const {
        addAttribute(element, names().value, value);
    }

  private:
    Element restriction_;
    Name name_;
};

constexpr const char* kDotDot = "..";
constexpr unsigned long kDotDotLength = 2;

bool isRange(const TSKString& entry) {
    return entry.find(kDotDot, 0) >= 0;
}

bool hasRange(const ITeskValue& valueMap) {
    const auto values = valueMap.getArrayValues();
    if (!values)
        return false;
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> next(*values);
    while (next()) {
        if (next.key() && isRange(next.key()->toString()))
            return true;
    }
    return false;
}

std::vector<TSKString> entriesOf(const ITeskValue& valueMap) {
    std::vector<TSKString> entries;
    const auto values = valueMap.getArrayValues();
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> next(*values);
    while (next()) {
        if (next.key())
            entries.push_back(next.key()->toString());
    }
    return entries;
}

// The numbers that were listed so far, as runs without a gap. So a ".." takes no longer than the
// values that it is written as, however many numbers are listed and however often ".." is.
class ListedNumbers {
  public:
    void add(long number) {
        auto next = runs_.upper_bound(number);
        const bool joinsNext = next != runs_.end() && next->first - 1 == number;
        if (next != runs_.begin()) {
            const auto run = std::prev(next);
            if (run->second >= number)
                return;
            if (run->second + 1 == number) {
                run->second = joinsNext ? next->second : number;
                if (joinsNext)
                    runs_.erase(next);
                ++count_;
                return;
            }
        }
        const long last = joinsNext ? next->second : number;
        if (joinsNext)
            next = runs_.erase(next);
        runs_.emplace_hint(next, number, last);
        ++count_;
    }

    // Each number once.
    [[nodiscard]] long count() const noexcept { return count_; }

    // Calls `visit` with each number from 0 up to, but not including, `end` that is not listed.
    template <typename Visit>
    void forEachGapBelow(long end, const Visit& visit) const {
        long number = 0;
        auto run = runs_.upper_bound(0);
        if (run != runs_.begin())
            number = std::max(number, std::prev(run)->second + 1);
        for (; number < end; ++run) {
            const long gapEnd = run == runs_.end() ? end : std::min(end, run->first);
            for (; number < gapEnd; ++number)
                visit(number);
            if (gapEnd < end)
                number = run->second + 1;
            else
                return;
        }
    }

  private:
    std::map<long, long> runs_;  // the first number of each, and its last
    long count_ = 0;
};

// Adds the members of the union that a ValueMap with ranges stands for.
class ValueMapUnion {
  public:
    ValueMapUnion(Element topUnion, const ITeskType& type, std::vector<TSKString> entries)
        : topUnion_(std::move(topUnion)), type_(type), entries_(std::move(entries)) {}

    void addMembers() {
        for (std::size_t index = 0; index < entries_.size(); ++index) {
            if (!isRange(entries_[index])) {
                addSingleValue(entries_[index]);
                continue;
            }
            openEnumeration_.reset();
            if (entries_[index].equals(kDotDot))
                addUnlistedValues(index);
            else
                addRange(index);
        }
    }

  private:
    // Consecutive single values share a member.
    void addSingleValue(const TSKString& entry) {
        if (!openEnumeration_)
            openEnumeration_.emplace(addEnumeration(addChild(topUnion_, TAG_SIMPLE_TYPE)));
        const TSKString value = normalised(entry);
        openEnumeration_->add(value);
        listed_.add(value.atol());
    }

    // The bound on the open side of a range comes from its neighbour.
    void addRange(std::size_t index) {
        const TSKString& entry = entries_[index];
        const auto dots = static_cast<unsigned long>(entry.find(kDotDot, 0));
        const TSKString before = normalised(entry.left(dots));
        const TSKString after = normalised(entry.right(entry.length() - dots - kDotDotLength));
        if (dots == 0)
            addInterval(topUnion_, decimalText(firstAfter(numberBefore(index))), after);
        else if (entry.endsWith(kDotDot, 0))
            addInterval(topUnion_, before, lastBeforeNext(index));
        else
            addInterval(topUnion_, before, after);
    }

    // The lone "..": what lies above the number before it, and unless as many values are listed as
    // there are up to that number, also the unlisted ones below.
    void addUnlistedValues(std::size_t index) {
        const long number = numberBefore(index);
        const TSKString lower = decimalText(firstAfter(number));
        const TSKString upper = lastBeforeNext(index);
        if (listed_.count() >= firstAfter(number)) {
            addInterval(topUnion_, lower, upper);
            return;
        }
        const Element member = addChild(topUnion_, TAG_SIMPLE_TYPE);
        Element gapUnion = addChild(member, TAG_UNION);
        addGaps(addChild(gapUnion, TAG_SIMPLE_TYPE), number);
        addInterval(gapUnion, lower, upper);
    }

    void addGaps(const Element& member, long end) const {
        const Enumeration gaps = addEnumeration(member);
        listed_.forEachGapBelow(end, [&](long number) { gaps.add(decimalText(number)); });
    }

    [[nodiscard]] Enumeration addEnumeration(const Element& member) const {
        const Element restriction = addChild(member, TAG_RESTRICTION);
        addAttribute(restriction, names().base, xsType(type_));
        return Enumeration(restriction);
    }

    void addInterval(Element& parent, const TSKString& lower, const TSKString& upper) {
        WsdlUtil::addSimpleTypeRestrictionChildElement(parent, type_, lower, upper);
    }

    [[nodiscard]] long numberBefore(std::size_t index) const {
        constexpr long kNone = -1;  // the values begin with 0 then
        return index == 0 ? kNone : numberOf(entries_[index - 1]);
    }

    [[nodiscard]] static long firstAfter(long number) { return wrappingSum(number, 1); }

    // Empty after the last entry.
    [[nodiscard]] TSKString lastBeforeNext(std::size_t index) const {
        if (index + 1 == entries_.size())
            return {};
        return decimalText(wrappingSum(numberOf(entries_[index + 1]), -1));
    }

    Element topUnion_;
    const ITeskType& type_;
    std::vector<TSKString> entries_;
    std::optional<Enumeration> openEnumeration_;
    ListedNumbers listed_;
};

}  // namespace

void WsdlUtil::addRestrictionEnumerationChildElement(TSKSmrPtr<SOAPElement>& parent,
                                                     const ITeskType& type,
                                                     const ITeskValue& values, bool addAnyAttribute,
                                                     bool addMaxLength, long maxLength) {
    Element restriction = addChild(parent, TAG_RESTRICTION);
    addAttribute(restriction, names().base, wsCimType(type));
    const auto entries = values.getArrayValues();
    if (!entries || entries->entries() == 0)
        return;
    if (addMaxLength)
        addFacet(restriction, TAG_MAX_LENGTH, decimalText(maxLength));
    const Enumeration enumeration(restriction);
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> next(*entries);
    while (next()) {
        if (!next.key())
            continue;
        const TSKString text = next.key()->toString();
        const Element element = enumeration.addElement();
        const bool asWritten = !isHexadecimal(text) || isStringType(type);
        enumeration.setValue(element, asWritten ? text : normalised(text));
    }
    if (addAnyAttribute)
        addAnyAttributeChildElement(restriction);
}

void WsdlUtil::addSimpleTypeRestrictionChildElement(TSKSmrPtr<SOAPElement>& parent,
                                                    const ITeskType& type,
                                                    const TSKString& minValue,
                                                    const TSKString& maxValue) {
    const Element simpleType = addChild(parent, TAG_SIMPLE_TYPE);
    const Element restriction = addChild(simpleType, TAG_RESTRICTION);
    addAttribute(restriction, names().base, isStringType(type) ? wsCimType(type) : xsType(type));
    if (minValue.length() > 0)
        addFacet(restriction, TAG_MIN_INCLUSIVE, minValue);
    if (maxValue.length() > 0)
        addFacet(restriction, TAG_MAX_INCLUSIVE, maxValue);
}

void WsdlUtil::addRestrictionValueMapChildElement(TSKSmrPtr<SOAPElement>& parent,
                                                  const ITeskType& type, const ITeskValue& valueMap,
                                                  bool addMaxLength, long maxLength) {
    const TSKSmrPtr<ITeskType> valueType = valueMap.getType();
    if (!valueType || !valueType->isArray())
        return;
    if (!hasRange(valueMap)) {
        addRestrictionEnumerationChildElement(parent, type, valueMap, true, addMaxLength,
                                              maxLength);
        return;
    }
    Element restriction = addChild(parent, TAG_RESTRICTION);
    addAttribute(restriction, names().base, "cim:cimAnySimpleType");
    const Element simpleType = addChild(restriction, TAG_SIMPLE_TYPE);
    const Element topUnion = addChild(simpleType, TAG_UNION);
    ValueMapUnion(topUnion, type, entriesOf(valueMap)).addMembers();
    addAnyAttributeChildElement(restriction);
}
