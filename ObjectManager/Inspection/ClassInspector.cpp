#include "ObjectManager/Inspection/ClassInspector.h"

#include <libxml/tree.h>
#include <string>
#include <utility>

namespace Inspection {

namespace {

using Repository::isTrue;

class Inspector {
  public:
    std::vector<Finding> inspect(const Repository::CimClass& cimClass) {
        lookAtName(cimClass.name(), "");
        for (const Repository::CimProperty* property : cimClass.properties())
            lookAtName(property->name(), property->name());
        for (const Repository::CimMethod* method : cimClass.methods())
            lookAtMethod(*method);
        return std::move(findings_);
    }

  private:
    void lookAtMethod(const Repository::CimMethod& method) {
        lookAtName(method.name(), method.name());
        for (const Repository::CimParameter& parameter : method.parameters()) {
            const TSKString member = method.name() + "." + parameter.name();
            lookAtName(parameter.name(), member);
            if (isTrue(parameter, "In") || isTrue(parameter, "Out"))
                lookAtType(parameter, member);
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
};

}  // namespace

std::vector<Finding> inspectClass(const Repository::CimClass& cimClass) {
    return Inspector().inspect(cimClass);
}

}  // namespace Inspection
