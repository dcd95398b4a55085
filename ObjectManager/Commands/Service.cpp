#include "ObjectManager/Commands/Service.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "ObjectManager/Host/ProgramFolders.h"

namespace Commands {

namespace {

Http::ServerOptions serverOptions(const Configuration::ServerSettings& settings,
                                  const Configuration::Endpoint& endpoint) {
    Http::ServerOptions options;
    options.address = endpoint.address;
    options.port = endpoint.port;
    if (settings.workers > 0)
        options.workers = settings.workers;
    options.requestLimits.mostHeadBytes = settings.maxRequestHead;
    options.requestLimits.mostRequestLineBytes = settings.maxRequestLine;
    options.mostConnections = settings.maxConnections;
    options.headTime = settings.headTimeout;
    options.responseTime = settings.responseTimeout;
    return options;
}

TSKSmrPtr<Security::BasicAuthenticator> makeAuthenticator(
    const Configuration::SecuritySettings& settings, Security::UserTable users) {
    Security::CredentialCheckerOptions options;
    options.credentialLifetime = settings.credentialLifetime;
    return TSKSmrPtr<Security::BasicAuthenticator>::make(std::move(users), options);
}

}  // namespace

Service::Service(const Configuration::Settings& settings,
                 const TSKSmrPtr<ClassRepository>& repository, Security::UserTable users)
    : gracePeriod_(settings.server.shutdownTimeout),
      authenticator_(makeAuthenticator(settings.security, std::move(users))),
      host_(repository, authenticator_, ProgramFolders::ofThisProgram().installation) {
    for (const Configuration::Endpoint& endpoint : settings.server.listen) {
        servers_.push_back(std::make_unique<Http::Server>(serverOptions(settings.server, endpoint),
                                                          host_.manager()));
    }
}

Service::~Service() = default;

void Service::start() {
    for (const std::unique_ptr<Http::Server>& server : servers_)
        server->start();
}

void Service::setRepository(const TSKSmrPtr<ClassRepository>& repository) {
    host_.setRepository(repository);
}

void Service::setUsers(Security::UserTable users) {
    authenticator_->setUsers(std::move(users));
}

bool Service::stop() {
    // All share one period: each server gets what the ones before have left of it.
    const auto end = std::chrono::steady_clock::now() + gracePeriod_;
    bool isIdle = true;
    for (const std::unique_ptr<Http::Server>& server : servers_) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        isIdle = server->stop(std::max(left, std::chrono::milliseconds::zero())) && isIdle;
    }
    return isIdle;
}

std::vector<std::string> Service::addresses() const {
    std::vector<std::string> addresses;
    std::transform(servers_.begin(), servers_.end(), std::back_inserter(addresses),
                   [](const std::unique_ptr<Http::Server>& server) {
                       return "http://" + server->address() + ":" + std::to_string(server->port());
                   });
    return addresses;
}

}  // namespace Commands
