#include "ObjectManager/Pages/ExampleRequests.h"

#include <utility>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/ClassPage.h"
#include "ObjectManager/Pages/ExamplePrograms.h"
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

constexpr int kHeaderIndent = 4;
constexpr int kValueIndent = 8;

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
        std::vector<ExampleRequest> requests;
        const auto add = [&](const char* operation, const char* uri, const char* description,
                             bool withKeys, std::string body, std::string arguments = "") {
            requests.push_back(
                whole({.operation = operation,
                       .description = description,
                       .action = std::string(uri) + operation,
                       .isMethod = false,
                       .selectors = values_.selectorSet(class_, withKeys, kHeaderIndent),
                       .body = std::move(body),
                       .arguments = std::move(arguments),
                       .envelope = {}}));
        };
        add("Get", kTransfer, "reads an instance", true, "");
        const auto [instance, arguments] = instanceValues();
        add("Put", kTransfer, "changes an instance", true, message("p:Put_INPUT", instance),
            arguments);
        add("Enumerate", kEnumeration, "begins to read all instances", false,
            "    <wsen:Enumerate/>\n");
        add("Pull", kEnumeration,
            "reads the next ones, with the context of the response to Enumerate", false,
            "    <wsen:Pull>\n"
            "      <wsen:EnumerationContext>CONTEXT</wsen:EnumerationContext>\n"
            "      <wsen:MaxElements>10</wsen:MaxElements>\n"
            "    </wsen:Pull>\n");
        add("Delete", kTransfer, "deletes an instance", true, "");
        for (const CimMethod* const method : class_.methods())
            requests.push_back(whole(callOf(*method)));
        return requests;
    }

  private:
    // The values of a message, in both languages.
    struct Values {
        std::string xml;
        std::string python;
    };

    [[nodiscard]] ExampleRequest whole(ExampleRequest request) const {
        request.envelope = envelope(request);
        return request;
    }

    [[nodiscard]] std::string envelope(const ExampleRequest& request) const {
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
               exampleText(request.action) + R"(</wsa:Action>
    <wsa:To>)" +
               exampleText(service_) + R"(</wsa:To>
    <wsman:ResourceURI>)" +
               uri + R"(</wsman:ResourceURI>
    <wsa:MessageID>uuid:3f1c8a52-7d64-4b0e-9a35-c2e0f6b81d47</wsa:MessageID>
    <wsa:ReplyTo>
      <wsa:Address>http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous</wsa:Address>
    </wsa:ReplyTo>
)" + request.selectors +
               "  </s:Header>\n" +
               (request.body.empty() ? "  <s:Body/>\n"
                                     : "  <s:Body>\n" + request.body + "  </s:Body>\n") +
               "</s:Envelope>\n";
    }

    // In the order of the properties, which is that of the document.
    [[nodiscard]] Values instanceValues() const {
        Values values;
        std::size_t optional = 0;
        for (const CimProperty* const property : class_.properties()) {
            const bool isNeeded = isTrue(*property, "Key") || isTrue(*property, "Required");
            if (isNeeded || (isTrue(*property, "Write") && optional++ < kMaxOptionalProperties))
                add(values, "p:", *property);
        }
        return values;
    }

    // Parameters are in no namespace, and the inputs are those that say so, as in the document.
    [[nodiscard]] ExampleRequest callOf(const CimMethod& method) const {
        Values values;
        for (const CimParameter& parameter : method.parameters()) {
            if (isTrue(parameter, "In"))
                add(values, "", parameter);
        }
        const std::string name(method.name());
        return {.operation = name,
                .description = "calls the method",
                .action = "http://schemas.dmtf.org/wbem/ws-cim/1/cim-schema/2/" +
                          std::string(class_.name()) + "/" + name,
                .isMethod = true,
                .selectors = values_.selectorSet(class_, true, kHeaderIndent),
                .body = message("p:" + exampleText(name) + "_INPUT", values.xml),
                .arguments = values.python,
                .envelope = {}};
    }

    template <typename Definition>
    void add(Values& values, const char* prefix, const Definition& definition) const {
        const std::string name = prefix + exampleText(definition.name());
        values.xml += "      <" + name + ">" + values_.valueOf(class_, definition, kValueIndent) +
                      "</" + name + ">\n";
        values.python += "    " + pythonText(definition.name()) + ": " +
                         values_.pythonValueOf(class_, definition) + ",\n";
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

// A block of code with a button that copies it. `id` is its own; `copies` are those of all that is
// copied.
std::string codeBlock(const std::string& title, const std::string& id, const std::string& copies,
                      const std::string& text) {
    return "<pre id=" + id + " data-copy=\"" + title + R"(" data-label="Copy" data-of=")" + copies +
           "\">" + htmlText(text) + "</pre>\n";
}

std::string setups(const ExamplePrograms& programs) {
    return "<details class=\"request set-up\"><summary>Set-up <small>of the programs below, which "
           "their buttons copy as well</small></summary>\n<h3>Python with zeep</h3>\n" +
           codeBlock("the set-up for zeep", "zeep", "zeep", programs.zeepSetup()) +
           "<h3>C++ with gSOAP</h3>\n<p>To make the sources, and a program of call.cpp:</p>\n" +
           codeBlock("the commands for gSOAP", "gsoap-commands", "gsoap-commands",
                     programs.gsoapCommands()) +
           codeBlock("the set-up for gSOAP", "gsoap", "gsoap", programs.gsoapSetup()) +
           "</details>\n";
}

std::string programsFor(const ExampleRequest& request, const std::string& name,
                        const std::string& place, const ExamplePrograms& programs) {
    return "<h3>Python with zeep</h3>\n" +
           codeBlock(name + " with zeep", "zeep-" + place, "zeep zeep-" + place,
                     programs.zeepCall(request)) +
           "<h3>C++ with gSOAP</h3>\n" +
           codeBlock(name + " with gSOAP", "gsoap-" + place, "gsoap gsoap-" + place,
                     programs.gsoapCall(request));
}

std::string requestSection(const ExampleRequest& request, const std::string& place,
                           const std::string& command, const ExamplePrograms& programs) {
    const std::string id = "envelope-" + place;
    const std::string name = htmlText(request.operation);
    return std::string("<details class=request id=\"") +
           (request.isMethod ? "request-" : "operation-") + name + "\"><summary>" + name +
           " <small>" + request.description +
           "</small></summary>\n<h3>curl</h3>\n<pre data-copy=\"" + name + " as a command\">" +
           command + "<span class=envelope id=" + id + ">" + htmlText(request.envelope) +
           "</span>END\n</pre>\n<span data-copy=\"envelope of " + name +
           R"(" data-label="Copy envelope" data-of=)" + id + "></span>\n" +
           programsFor(request, name, place, programs) + "</details>\n";
}

}  // namespace

std::vector<ExampleRequest> exampleRequests(const CimClass& cimClass,
                                            const ClassRelations& relations,
                                            std::string_view service) {
    return Requests(cimClass, relations, service).all();
}

std::string exampleSection(const CimClass& cimClass, const ClassRelations& relations, Layout layout,
                           std::string_view service) {
    const std::vector<ExampleRequest> requests = exampleRequests(cimClass, relations, service);
    const std::string address = std::string(service) + "/wsman";
    // An exported page is in the directory of the document.
    const std::string wsdl =
        (layout == Layout::kServed
             ? std::string(service) + "/" +
                   pathOfDocument(relations.nameSpace().name(), cimClass.name())
             : std::string(cimClass.name())) +
        ".wsdl";
    const ExamplePrograms programs(cimClass.name(), address, wsdl);
    // No line of an envelope is END: every line begins with a bracket or a space.
    const std::string command =
        "curl --user USER --header 'Content-Type: application/soap+xml;charset=UTF-8' \\\n"
        "  --data-binary @- " +
        htmlText(Base::shellQuoted(address)) + " &lt;&lt;'END'\n";
    std::string html =
        "<section id=examples>\n<h2>Example requests</h2>\n"
        "<p>As the WSDL document describes them. USER is yours; a value that is the name of its "
        "property or parameter stands for one of your own. Services that follow the schemas of the "
        "DMTF want the class itself as the body of Put, parameters in the namespace p, and actions "
        "of methods that begin with http://schemas.dmtf.org/wbem/wscim/1/.</p>\n" +
        setups(programs);
    for (std::size_t place = 0; place < requests.size(); ++place)
        html += requestSection(requests[place], std::to_string(place), command, programs);
    return html + "</section>\n";
}

}  // namespace Pages
