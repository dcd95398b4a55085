#include "ObjectManager/Commands/Classes/ClassListing.h"

#include <nlohmann/json.hpp>

#include "ObjectManager/Base/Text.h"

namespace Commands {

namespace {

using Json = nlohmann::ordered_json;
using Repository::isTrue;

std::string jsonText(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string superclassName(const Repository::CimClass& cimClass) {
    return cimClass.superclass() == nullptr ? "" : cimClass.superclass()->name().data();
}

// "uint16[]", "CIM_Foo ref".
std::string typeText(const ITeskType& type, const TSKString& referencedClass) {
    std::string text = type.isReference() ? std::string(referencedClass) + " ref"
                                          : std::string(type.getTypeName());
    return type.isArray() ? text + "[]" : text;
}

// "[key] " or nothing.
std::string marks(const urma::IQualified& definition,
                  std::initializer_list<const char*> qualifiers) {
    std::string text;
    for (const char* qualifier : qualifiers) {
        if (isTrue(definition, qualifier))
            text += (text.empty() ? "[" : ", ") + std::string(qualifier);
    }
    return text.empty() ? text : text + "] ";
}

std::string parameterText(const Repository::CimParameter& parameter) {
    return marks(parameter, {"In", "Out", "Required"}) +
           typeText(parameter.getType(), parameter.referencedClass()) + " " +
           parameter.name().data();
}

std::string signatureText(const Repository::CimMethod& method) {
    std::string text =
        typeText(method.getReturnType(), method.referencedClass()) + " " + method.name().data();
    text += "(";
    for (const Repository::CimParameter& parameter : method.parameters()) {
        if (&parameter != &method.parameters().front())
            text += ", ";
        text += parameterText(parameter);
    }
    return text + ")";
}

// Says where an inherited member comes from.
std::string originText(const Repository::CimClass& cimClass,
                       const Repository::CimClass& declaring) {
    return &cimClass == &declaring ? "\n" : std::string("  (") + declaring.name().data() + ")\n";
}

std::string describeAsText(const Repository::CimNamespace& nameSpace,
                           const Repository::CimClass& cimClass) {
    std::string text = std::string(nameSpace.name()) + ":" + cimClass.name().data();
    if (cimClass.superclass() != nullptr)
        text += " : " + superclassName(cimClass);
    text += "\n\n" + Base::counted(cimClass.properties().size(), "property", "properties") + "\n";
    for (const Repository::CimProperty* property : cimClass.properties()) {
        text += "  " + marks(*property, {"Key", "Required"}) +
                typeText(property->getType(), property->referencedClass()) + " " +
                property->name().data() + originText(cimClass, cimClass.declaringClass(*property));
    }
    text += "\n" + Base::counted(cimClass.methods().size(), "method", "methods") + "\n";
    for (const Repository::CimMethod* method : cimClass.methods()) {
        text +=
            "  " + signatureText(*method) + originText(cimClass, cimClass.declaringClass(*method));
    }
    return text;
}

Json jsonOf(const Repository::CimClass& cimClass, const Repository::CimProperty& property) {
    return {{"name", property.name().data()},
            {"type", typeText(property.getType(), property.referencedClass())},
            {"key", isTrue(property, "Key")},
            {"required", isTrue(property, "Required")},
            {"declaredBy", cimClass.declaringClass(property).name().data()}};
}

Json jsonOf(const Repository::CimParameter& parameter) {
    return {{"name", parameter.name().data()},
            {"type", typeText(parameter.getType(), parameter.referencedClass())},
            {"in", isTrue(parameter, "In")},
            {"out", isTrue(parameter, "Out")},
            {"required", isTrue(parameter, "Required")}};
}

Json jsonOf(const Repository::CimClass& cimClass, const Repository::CimMethod& method) {
    Json parameters = Json::array();
    for (const Repository::CimParameter& parameter : method.parameters())
        parameters.push_back(jsonOf(parameter));
    return {{"name", method.name().data()},
            {"returnType", typeText(method.getReturnType(), method.referencedClass())},
            {"parameters", parameters},
            {"declaredBy", cimClass.declaringClass(method).name().data()}};
}

std::string describeAsJson(const Repository::CimNamespace& nameSpace,
                           const Repository::CimClass& cimClass) {
    Json properties = Json::array();
    for (const Repository::CimProperty* property : cimClass.properties())
        properties.push_back(jsonOf(cimClass, *property));
    Json methods = Json::array();
    for (const Repository::CimMethod* method : cimClass.methods())
        methods.push_back(jsonOf(cimClass, *method));
    return jsonText({{"namespace", nameSpace.name().data()},
                     {"name", cimClass.name().data()},
                     {"superclass", superclassName(cimClass)},
                     {"properties", properties},
                     {"methods", methods}});
}

std::string listAsText(const std::vector<const Repository::CimNamespace*>& namespaces) {
    std::string text;
    for (const Repository::CimNamespace* nameSpace : namespaces) {
        text += std::string(nameSpace->name()) + "  (" +
                Base::counted(nameSpace->classes().size(), "class", "classes") + ")\n";
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace->classes()) {
            text += std::string("  ") + cimClass->name().data();
            if (cimClass->superclass() != nullptr)
                text += " : " + superclassName(*cimClass);
            text += "\n";
        }
    }
    return text;
}

std::string listAsJson(const std::vector<const Repository::CimNamespace*>& namespaces) {
    Json list = Json::array();
    for (const Repository::CimNamespace* nameSpace : namespaces) {
        Json classes = Json::array();
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace->classes())
            classes.push_back(
                {{"name", cimClass->name().data()}, {"superclass", superclassName(*cimClass)}});
        list.push_back({{"name", nameSpace->name().data()}, {"classes", classes}});
    }
    return jsonText({{"namespaces", list}});
}

}  // namespace

std::string listClasses(const std::vector<const Repository::CimNamespace*>& namespaces,
                        OutputFormat format) {
    return format == OutputFormat::kJson ? listAsJson(namespaces) : listAsText(namespaces);
}

std::string describeClass(const Repository::CimNamespace& nameSpace,
                          const Repository::CimClass& cimClass, OutputFormat format) {
    return format == OutputFormat::kJson ? describeAsJson(nameSpace, cimClass)
                                         : describeAsText(nameSpace, cimClass);
}

}  // namespace Commands
