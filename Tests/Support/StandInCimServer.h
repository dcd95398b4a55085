#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "Tests/Support/StandInServer.h"

/// A CIM server with canned responses. An operation without one fails with CIM_ERR_NOT_FOUND.
///
/// Thread safety: may be used by several threads at once.
class StandInCimServer {
  public:
    StandInCimServer() = default;

    /// A response to a request of that name: operation, namespace and, for GetClass, class, as in
    /// "GetClass root/test A_B".
    void respond(const std::string& request, const std::string& response);

    /// A namespace without qualifiers, and these classes in CIM-XML.
    void setClasses(const std::string& nameSpace, const std::string& classes);

    /// The namespaces that the server names, in "interop".
    void setNamespaces(const std::vector<std::string>& names);

    /// What the server responds to every request from now on; as before without it.
    void setOutage(std::optional<StandInServer::Response> response);

    /// "http://127.0.0.1:PORT".
    [[nodiscard]] std::string url() const { return server_.url(); }

    /// The requests that have come so far.
    [[nodiscard]] std::vector<StandInServer::Request> requests() const {
        return server_.requests();
    }

    /// The name of a request.
    [[nodiscard]] static std::string nameOf(const StandInServer::Request& request);

  private:
    [[nodiscard]] StandInServer::Response responseTo(const StandInServer::Request& request);

    std::mutex lock_;
    std::map<std::string, std::string> responses_;   // guarded by lock_
    std::optional<StandInServer::Response> outage_;  // guarded by lock_
    StandInServer server_{
        [this](const StandInServer::Request& request) { return responseTo(request); }};
};
