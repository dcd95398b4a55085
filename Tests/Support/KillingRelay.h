#pragma once

#include <atomic>
#include <string>
#include <system_error>

#include "Tests/ObjectManager/Http/Client.h"
#include "Tests/Support/RealCimServer.h"
#include "Tests/Support/StandInServer.h"

/// Passes requests on to a real CIM server, and kills it in the middle of a response when it is
/// told to. Programs that use it compile Tests/ObjectManager/Http/Client.cpp.
///
/// Thread safety: the server is killed by a thread of the relay's own. Leave the server alone from
/// killAmidClasses() until hasKilled().
class KillingRelay {
  public:
    explicit KillingRelay(RealCimServer& server)
        : server_(server), relay_([this](const StandInServer::Request& request) {
              try {
                  return StandInServer::Response{.bytes = pass(request)};
              } catch (const std::system_error&) {
                  return StandInServer::Response();  // nobody listens
              }
          }) {}
    KillingRelay(const KillingRelay&) = delete;
    KillingRelay& operator=(const KillingRelay&) = delete;
    ~KillingRelay() = default;

    /// "http://127.0.0.1:PORT" of the relay.
    [[nodiscard]] std::string url() const { return relay_.url(); }

    /// Kills the server when the first bytes of the next response with classes have come. Nothing
    /// more of that response is passed on.
    void killAmidClasses() { kills_ = true; }

    [[nodiscard]] bool hasKilled() const { return hasKilled_; }

  private:
    std::string pass(const StandInServer::Request& request) {
        // Otherwise either side could use the connection for a second request.
        const std::string close = "Connection: close\r\n";
        std::string header = request.header;
        header.insert(header.size() - 2, close);
        const Client client("127.0.0.1", server_.port());
        (void)client.send(header + request.body);
        std::string response;
        if (request.field("CIMMethod") == "EnumerateClasses" && kills_.exchange(false)) {
            constexpr std::size_t kFirstBytes = 300;
            response = client.read(kFirstBytes);
            server_.kill();
            hasKilled_ = true;
        } else {
            response = client.readAll();
        }
        response.insert(response.find('\n') + 1, close);
        return response;
    }

    RealCimServer& server_;
    std::atomic<bool> kills_ = false;
    std::atomic<bool> hasKilled_ = false;
    StandInServer relay_;
};
