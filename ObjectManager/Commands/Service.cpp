#include "ObjectManager/Commands/Service.h"

#include <utility>

#include "ObjectManager/Host/ProgramFolders.h"

namespace Commands {

namespace {

Http::Options serverOptions(const Configuration::ServerSettings& settings) {
    Http::Options options;
    options.listen.clear();
    for (const Configuration::Endpoint& endpoint : settings.listen)
        options.listen.push_back({.address = endpoint.address, .port = endpoint.port});
    options.workers = settings.workers;
    options.maxHeaderSize = settings.maxRequestHead;
    options.maxRequestLine = settings.maxRequestLine;
    options.headerTimeout = settings.headTimeout;
    options.responseTimeout = settings.responseTimeout;
    options.shutdownTimeout = settings.shutdownTimeout;
    options.maxConnections = settings.maxConnections;
    return options;
}

}  // namespace

Service::Service(const Configuration::Settings& settings,
                 const TSKSmrPtr<Repository::ClassRepository>& repository,
                 Security::UserTable users)
    : authenticator_(
          TSKSmrPtr<Security::BasicAuthenticator>::make(std::move(users), settings.security)),
      index_(repository),
      host_(repository, authenticator_, Host::ProgramFolders::ofThisProgram().installation,
            {&index_}),
      server_(
          serverOptions(settings.server), host_.manager(),
          [authenticator = authenticator_](const TSKHTTPRequest& request) {
              return authenticator->needsPasswordHash(request);
          },
          [authenticator = authenticator_](const TSKHTTPRequest& request) {
              return authenticator->prepare(request);
          }) {}

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
    return server_.stop();
}

std::vector<std::string> Service::addresses() const {
    std::vector<std::string> addresses;
    for (const auto& [address, port] : server_.addresses())
        addresses.push_back("http://" + address + ":" + std::to_string(port));
    return addresses;
}

}  // namespace Commands
