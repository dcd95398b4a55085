#include "Tests/Support/StandInCimServer.h"

#include <utility>

#include "Tests/ObjectManager/CimXml/Messages.h"

void StandInCimServer::respond(const std::string& request, const std::string& response) {
    const std::lock_guard guard(lock_);
    responses_[request] = response;
}

void StandInCimServer::setClasses(const std::string& nameSpace, const std::string& classes) {
    respond("EnumerateQualifiers " + nameSpace, ::responseTo("EnumerateQualifiers", ""));
    respond("EnumerateClasses " + nameSpace, ::responseTo("EnumerateClasses", classes));
}

void StandInCimServer::setNamespaces(const std::vector<std::string>& names) {
    std::string results;
    for (const std::string& name : names) {
        results +=
            "<INSTANCENAME CLASSNAME=\"CIM_Namespace\"><KEYBINDING NAME=\"Name\">"
            "<KEYVALUE VALUETYPE=\"string\">" +
            name + "</KEYVALUE></KEYBINDING></INSTANCENAME>";
    }
    respond("EnumerateInstanceNames interop CIM_Namespace",
            ::responseTo("EnumerateInstanceNames", results));
}

void StandInCimServer::setOutage(std::optional<StandInServer::Response> response) {
    const std::lock_guard guard(lock_);
    outage_ = std::move(response);
}

std::string StandInCimServer::nameOf(const StandInServer::Request& request) {
    std::string name = request.field("CIMMethod") + " " + request.field("CIMObject");
    const std::string before = "<CLASSNAME NAME=\"";
    const std::size_t begin = request.body.find(before);
    if (begin == std::string::npos)
        return name;
    const std::size_t start = begin + before.size();
    return name + " " + request.body.substr(start, request.body.find('"', start) - start);
}

StandInServer::Response StandInCimServer::responseTo(const StandInServer::Request& request) {
    const std::lock_guard guard(lock_);
    if (outage_)
        return *outage_;
    const auto found = responses_.find(nameOf(request));
    return StandInServer::ok(found == responses_.end()
                                 ? errorResponseTo(request.field("CIMMethod"), "6", "none")
                                 : found->second);
}
