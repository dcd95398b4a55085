#include "ObjectManager/Inspection/ClassInspector.h"

#include <libxml/tree.h>
#include <string>
#include <utility>

namespace Inspection {

namespace {

class Inspector {
  public:
    std::vector<Finding> inspect(const CimClass& cimClass) {
        lookAtName(cimClass.name(), "");
        for (const CimProperty* property : cimClass.properties())
            lookAtName(property->name(), property->name());
        for (const CimMethod* method : cimClass.methods())
            lookAtMethod(*method);
        return std::move(findings_);
    }

  private:
    void lookAtMethod(const CimMethod& method) {
        lookAtName(method.name(), method.name());
        for (const CimParameter& parameter : method.parameters()) {
            const TSKString member = method.name() + "." + parameter.name();
            lookAtName(parameter.name(), member);
            if (parameter.getQualifier("MaxLen", true) != nullptr &&
                parameter.getQualifier("ValueMap", false) != nullptr) {
                add(FindingKind::kLengthAndValueMap, member,
                    "the parameter has both MaxLen and ValueMap, of which its schema has two "
                    "types");
            }
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

std::vector<Finding> inspectClass(const CimClass& cimClass) {
    return Inspector().inspect(cimClass);
}

}  // namespace Inspection
