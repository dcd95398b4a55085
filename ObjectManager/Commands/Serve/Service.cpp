#include "ObjectManager/Commands/Serve/Service.h"

#include <utility>

#include "ObjectManager/Host/ProgramFolders.h"

namespace Commands {

namespace {

Http::ServerOptions serverOptions(const Http::Options& settings,
                                  const TSKSmrPtr<Security::BasicAuthenticator>& authenticator) {
    Http::ServerOptions options;
    options.listen = settings.listen;
    options.isQuick = [authenticator](const TSKHTTPRequest& request) {
        return authenticator->decidesQuickly(request);
    };
    if (settings.workers > 0)
        options.workers = settings.workers;
    options.requestLimits.mostHeadBytes = settings.maxHeaderSize;
    options.requestLimits.mostRequestLineBytes = settings.maxRequestLine;
    options.mostConnections = settings.maxConnections;
    options.headTime = settings.headerTimeout;
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
                 const TSKSmrPtr<Repository::ClassRepository>& repository,
                 Security::UserTable users)
    : shutdownTimeout_(settings.server.shutdownTimeout),
      authenticator_(makeAuthenticator(settings.security, std::move(users))),
      index_(repository),
      host_(repository, authenticator_, Host::ProgramFolders::ofThisProgram().installation,
            {&index_}),
      server_(serverOptions(settings.server, authenticator_), host_.manager()) {}

Service::~Service() = default;

void Service::start() {
    server_.start();
}

void Service::setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository) {
    host_.setRepository(repository);
    index_.setRepository(repository);
}

void Service::setUsers(Security::UserTable users) {
    authenticator_->setUsers(std::move(users));
}

bool Service::stop() {
    return server_.stop(shutdownTimeout_);
}

std::vector<std::string> Service::addresses() const {
    std::vector<std::string> addresses;
    for (const auto& [address, port] : server_.addresses())
        addresses.push_back("http://" + address + ":" + std::to_string(port));
    return addresses;
}

}  // namespace Commands
