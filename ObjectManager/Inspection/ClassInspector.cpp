#include "ObjectManager/Inspection/ClassInspector.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iterator>
#include <libxml/tree.h>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "ObjectManager/Inspection/DocumentInspector.h"
#include "Platform/Util/TSKValSlistIterator.h"

namespace Inspection {

namespace {

using Repository::isTrue;

// The number as the documents read it: decimal or hexadecimal, up to 63 bits. A larger number
// counts as the largest one.
long numberOf(const std::string& text) {
    const bool isHexadecimal = text.find_first_of("xX") != std::string::npos;
    return std::strtol(text.c_str(), nullptr, isHexadecimal ? 16 : 10);
}

// How many values from 0 up to `number` are not listed. Documents have no gaps above the largest
// number, nor where as many values are listed as there are below the number.
unsigned long gapsBelow(long number, const std::set<long>& listed) {
    if (number <= 0 || number == LONG_MAX || listed.size() > static_cast<std::size_t>(number))
        return 0;
    const auto among = std::distance(listed.lower_bound(0), listed.lower_bound(number));
    return static_cast<unsigned long>(number - among);
}

class Inspector {
  public:
    std::vector<Finding> inspect(const Repository::CimClass& cimClass) {
        lookAtName(cimClass.name(), "");
        for (const Repository::CimProperty* property : cimClass.properties()) {
            lookAtName(property->name(), property->name());
            noteGaps(property->name(), property->getQualifier("ValueMap", false));
        }
        for (const Repository::CimMethod* method : cimClass.methods())
            lookAtMethod(*method);
        reportGaps();
        return std::move(findings_);
    }

  private:
    struct Gaps {
        TSKString member;
        unsigned long count;
    };

    void lookAtMethod(const Repository::CimMethod& method) {
        lookAtName(method.name(), method.name());
        for (const Repository::CimParameter& parameter : method.parameters()) {
            const TSKString member = method.name() + "." + parameter.name();
            const int places = isTrue(parameter, "In") + isTrue(parameter, "Out");
            lookAtName(parameter.name(), member);
            if (places > 0)
                lookAtType(parameter, member);
            for (int place = 0; place < places; ++place)
                noteGaps(member, parameter.getQualifier("ValueMap", false));
        }
    }

    // Of a parameter that stands in the schema.
    void lookAtType(const Repository::CimParameter& parameter, const TSKString& member) {
        if (parameter.getQualifier("MaxLen", true) != nullptr &&
            parameter.getQualifier("ValueMap", false) != nullptr) {
            add(FindingKind::kLengthAndValueMap, member,
                "the parameter has both MaxLen and ValueMap, of which its schema has two types");
        }
    }

    void noteGaps(const TSKString& member, const urma::IQualifier* valueMap) {
        const unsigned long count = valueMap == nullptr ? 0 : countGaps(*valueMap->getValue());
        if (count > 0)
            gaps_.push_back({.member = member, .count = count});
        allGaps_ += std::min(count, ULONG_MAX - allGaps_);
    }

    // The members are named that have most of them.
    void reportGaps() {
        if (allGaps_ <= kMaxGapsOfClass)
            return;
        const auto most = std::ranges::max(gaps_, {}, &Gaps::count).count;
        const unsigned long least = std::min(most, kMaxGaps + 1);
        for (const auto& [member, count] : gaps_) {
            if (count >= least)
                add(FindingKind::kTooManyGaps, member,
                    "the \"..\" of its ValueMap stands for " + std::to_string(count) +
                        " values; with more than " + std::to_string(kMaxGapsOfClass) +
                        " the documents of a class are not made");
        }
    }

    void lookAtName(const TSKString& name, const TSKString& member) {
        if (xmlValidateNCName(reinterpret_cast<const xmlChar*>(name.data()), 0) != 0)
            add(FindingKind::kNoXmlName, member, "the name is none that XML allows");
    }

    void add(FindingKind kind, const TSKString& member, std::string message) {
        findings_.push_back({.kind = kind,
                             .nameSpace = "",
                             .className = "",
                             .member = member.data(),
                             .message = std::move(message)});
    }

    std::vector<Finding> findings_;
    std::vector<Gaps> gaps_;  // as often as they stand in a schema
    unsigned long allGaps_ = 0;
};

}  // namespace

unsigned long countGaps(const ITeskValue& valueMap) {
    constexpr std::string_view kDotDot = "..";
    const auto values = valueMap.getArrayValues();
    if (!values)
        return 0;
    unsigned long gaps = 0;
    std::set<long> listed;
    long before = -1;
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> next(*values);
    while (next()) {
        if (!next.key())
            continue;
        const std::string entry(next.key()->toString());
        if (entry == kDotDot)
            gaps += std::min(gapsBelow(before, listed), ULONG_MAX - gaps);
        else if (entry.find(kDotDot) == std::string::npos)
            listed.insert(numberOf(entry));
        before = numberOf(entry);
    }
    return gaps;
}

std::vector<Finding> inspectClass(const Repository::CimClass& cimClass) {
    return Inspector().inspect(cimClass);
}

}  // namespace Inspection
