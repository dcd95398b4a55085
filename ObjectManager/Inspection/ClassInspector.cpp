#include "ObjectManager/Inspection/ClassInspector.h"

#include <algorithm>
#include <climits>
#include <libxml/tree.h>
#include <string>
#include <utility>

#include "ObjectManager/Inspection/DocumentInspector.h"
#include "ObjectManager/Inspection/ValueMapGaps.h"

namespace Inspection {

namespace {

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

    static bool isTrue(const Repository::CimParameter& parameter, const char* name) {
        const urma::IQualifier* const qualifier = parameter.getQualifier(name, true);
        return qualifier != nullptr && qualifier->getValue()->toBoolean();
    }

    void noteGaps(const TSKString& member, const urma::IQualifier* valueMap) {
        const unsigned long count = valueMap == nullptr ? 0 : countGaps(*valueMap->getValue());
        if (count > 0)
            gaps_.push_back({.member = member, .count = count});
        allGaps_ += std::min(count, ULONG_MAX - allGaps_);
    }

    // The members are named that have most of them.
    void reportGaps() {
        if (allGaps_ <= kMostGapsOfClass)
            return;
        const auto most = std::ranges::max(gaps_, {}, &Gaps::count).count;
        const unsigned long least = std::min(most, kMostGaps + 1);
        for (const auto& [member, count] : gaps_) {
            if (count >= least)
                add(FindingKind::kTooManyGaps, member,
                    "the \"..\" of its ValueMap stands for " + std::to_string(count) +
                        " values; with more than " + std::to_string(kMostGapsOfClass) +
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

std::vector<Finding> inspectClass(const Repository::CimClass& cimClass) {
    return Inspector().inspect(cimClass);
}

}  // namespace Inspection
