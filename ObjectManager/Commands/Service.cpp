#include "ObjectManager/Commands/Service.h"

#include <algorithm>
#include <future>
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
      host_(repository, authenticator_, ProgramFolders::ofThisProgram().installation),
      index_(repository) {
    for (const Configuration::Endpoint& endpoint : settings.server.listen) {
        servers_.push_back(std::make_unique<Http::Server>(serverOptions(settings.server, endpoint),
                                                          host_.manager(), &index_));
    }
}

Service::~Service() = default;

void Service::start() {
    for (const std::unique_ptr<Http::Server>& server : servers_)
        server->start();
}

void Service::setRepository(const TSKSmrPtr<ClassRepository>& repository) {
    host_.setRepository(repository);
    index_.setRepository(repository);
}

void Service::setUsers(Security::UserTable users) {
    authenticator_->setUsers(std::move(users));
}

bool Service::stop() {
    // All at once, so that none takes requests while another finishes.
    std::vector<std::future<bool>> stopping;
    stopping.reserve(servers_.size());
    for (const std::unique_ptr<Http::Server>& server : servers_) {
        stopping.push_back(
            std::async(std::launch::async, [&] { return server->stop(gracePeriod_); }));
    }
    bool isIdle = true;
    for (std::future<bool>& result : stopping)
        isIdle = result.get() && isIdle;
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
