#include "ObjectManager/Pages/ExampleRequests.h"

#include <utility>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/ClassPage.h"
#include "ObjectManager/Pages/ExampleValues.h"

namespace Pages {

namespace {

using Base::htmlText;
using Repository::CimClass;
using Repository::CimMethod;
using Repository::CimParameter;
using Repository::CimProperty;
using Repository::isTrue;

constexpr const char* kTransfer = "http://schemas.xmlsoap.org/ws/2004/09/transfer/";
constexpr const char* kEnumeration = "http://schemas.xmlsoap.org/ws/2004/09/enumeration/";

// What is not a key or required is optional; some of what may be written shows how it is done.
constexpr std::size_t kMaxOptionalProperties = 3;

// Writes the requests of one class.
//
// Thread safety: belongs to one thread.
class Requests {
  public:
    Requests(const CimClass& cimClass, const ClassRelations& relations, std::string_view service)
        : class_(cimClass),
          service_(std::string(service) + "/wsman"),
          values_(relations, service_) {}

    [[nodiscard]] std::vector<ExampleRequest> all() const {
        std::vector<ExampleRequest> requests = {
            {"Get", "reads an instance", envelope(transfer("Get"), true, "")},
            {"Put", "changes an instance", envelope(transfer("Put"), true, instance())},
            {"Enumerate", "begins to read all instances",
             envelope(enumeration("Enumerate"), false, "    <wsen:Enumerate/>\n")},
            {"Pull", "reads the next ones, with the context of the response to Enumerate",
             envelope(enumeration("Pull"), false,
                      "    <wsen:Pull>\n"
                      "      <wsen:EnumerationContext>CONTEXT</wsen:EnumerationContext>\n"
                      "      <wsen:MaxElements>10</wsen:MaxElements>\n"
                      "    </wsen:Pull>\n")},
            {"Delete", "deletes an instance", envelope(transfer("Delete"), true, "")}};
        for (const CimMethod* const method : class_.methods())
            requests.push_back({std::string(method->name()), "calls the method", callOf(*method)});
        return requests;
    }

  private:
    static std::string transfer(const char* operation) {
        return std::string(kTransfer) + operation;
    }
    static std::string enumeration(const char* operation) {
        return std::string(kEnumeration) + operation;
    }

    [[nodiscard]] std::string envelope(const std::string& action, bool withKeys,
                                       const std::string& body) const {
        const std::string uri = exampleText(classUri(class_.name()));
        return R"(<?xml version="1.0" encoding="UTF-8"?>
<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"
    xmlns:wsa="http://schemas.xmlsoap.org/ws/2004/08/addressing"
    xmlns:wsman="http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd"
    xmlns:wsen="http://schemas.xmlsoap.org/ws/2004/09/enumeration"
    xmlns:cim="http://schemas.dmtf.org/wbem/wscim/1/common"
    xmlns:p=")" +
               uri + R"(">
  <s:Header>
    <wsa:Action>)" +
               exampleText(action) + R"(</wsa:Action>
    <wsa:To>)" +
               exampleText(service_) + R"(</wsa:To>
    <wsman:ResourceURI>)" +
               uri + R"(</wsman:ResourceURI>
    <wsa:MessageID>uuid:3f1c8a52-7d64-4b0e-9a35-c2e0f6b81d47</wsa:MessageID>
    <wsa:ReplyTo>
      <wsa:Address>http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous</wsa:Address>
    </wsa:ReplyTo>
)" + values_.selectorSet(class_, withKeys, 4) +
               "  </s:Header>\n" +
               (body.empty() ? "  <s:Body/>\n" : "  <s:Body>\n" + body + "  </s:Body>\n") +
               "</s:Envelope>\n";
    }

    // In the order of the properties, which is that of the document.
    [[nodiscard]] std::string instance() const {
        std::string properties;
        std::size_t optional = 0;
        for (const CimProperty* const property : class_.properties()) {
            const bool isNeeded = isTrue(*property, "Key") || isTrue(*property, "Required");
            const bool isShown =
                isNeeded || (isTrue(*property, "Write") && optional++ < kMaxOptionalProperties);
            if (!isShown)
                continue;
            const std::string name = exampleText(property->name());
            properties += "      <p:" + name + ">" + values_.valueOf(class_, *property, 8) +
                          "</p:" + name + ">\n";
        }
        return message("p:Put_INPUT", properties);
    }

    // Parameters are in no namespace, and the inputs are those that say so, as in the document.
    [[nodiscard]] std::string callOf(const CimMethod& method) const {
        std::string parameters;
        for (const CimParameter& parameter : method.parameters()) {
            if (!isTrue(parameter, "In"))
                continue;
            const std::string name = exampleText(parameter.name());
            parameters += "      <" + name + ">" + values_.valueOf(class_, parameter, 8) + "</" +
                          name + ">\n";
        }
        const std::string name = "p:" + exampleText(method.name()) + "_INPUT";
        const std::string action = "http://schemas.dmtf.org/wbem/ws-cim/1/cim-schema/2/" +
                                   std::string(class_.name()) + "/" + std::string(method.name());
        return envelope(action, true, message(name, parameters));
    }

    // What is empty has no line end in it either, as the schemas want it.
    static std::string message(const std::string& name, const std::string& content) {
        return content.empty() ? "    <" + name + "/>\n"
                               : "    <" + name + ">\n" + content + "    </" + name + ">\n";
    }

    const CimClass& class_;
    std::string service_;
    ExampleValues values_;
};

// As one word of a shell.
std::string shellWord(std::string_view text) {
    std::string word = "'";
    for (const char byte : text)
        word += byte == '\'' ? "'\\''" : std::string(1, byte);
    return word + "'";
}

}  // namespace

std::vector<ExampleRequest> exampleRequests(const CimClass& cimClass,
                                            const ClassRelations& relations,
                                            std::string_view service) {
    return Requests(cimClass, relations, service).all();
}

std::string exampleSection(const CimClass& cimClass, const ClassRelations& relations,
                           std::string_view service) {
    const std::vector<ExampleRequest> requests = exampleRequests(cimClass, relations, service);
    const std::size_t operations = requests.size() - cimClass.methods().size();
    // No line of an envelope is END: every line begins with a bracket or a space.
    const std::string command =
        "curl --user USER --header 'Content-Type: application/soap+xml;charset=UTF-8' \\\n"
        "  --data-binary @- " +
        htmlText(shellWord(std::string(service) + "/wsman")) + " &lt;&lt;'END'\n";
    std::string html =
        "<section id=examples>\n<h2>Example requests</h2>\n"
        "<p>As the WSDL document describes them. USER is yours; a value that is the name of its "
        "property or parameter stands for one of your own. Services that follow the schemas of the "
        "DMTF want the class itself as the body of Put, parameters in the namespace p, and actions "
        "of methods that begin with http://schemas.dmtf.org/wbem/wscim/1/.</p>\n";
    for (std::size_t place = 0; place < requests.size(); ++place) {
        const ExampleRequest& request = requests[place];
        const std::string id = "envelope-" + std::to_string(place);
        const std::string name = htmlText(request.operation);
        html += std::string("<details class=request id=\"") +
                (place < operations ? "operation-" : "request-") + name + "\"><summary>" + name +
                " <small>" + request.description + "</small></summary>\n<pre data-copy=\"" + name +
                " as a command\">" + command + "<span class=envelope id=" + id + ">" +
                htmlText(request.envelope) + "</span>END\n</pre>\n<span data-copy=\"" + name +
                " as an envelope\" data-of=" + id + "></span>\n</details>\n";
    }
    return html + "</section>\n";
}

}  // namespace Pages
