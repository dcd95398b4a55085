#include "ObjectManager/Commands/Serve/Service.h"

#include <utility>

#include "ObjectManager/Host/InstallationPaths.h"

namespace Commands {

namespace {

Http::Authentication authenticationBy(
    const TSKSmrPtr<Security::BasicAuthenticator>& authenticator) {
    return {
        .prepare = [authenticator](
                       const TSKHTTPRequest& request) { return authenticator->prepare(request); },
        .unverifiedLogin = [authenticator](const TSKHTTPRequest& request)
            -> std::optional<Http::Authentication::Login> {
            auto login = authenticator->unverifiedLogin(request);
            if (!login)
                return std::nullopt;
            return {{.user = std::move(login->user), .credentials = std::move(login->credentials)}};
        },
        .verify =
            [authenticator](TSKHTTPRequest& request) { return authenticator->verify(request); }};
}

}  // namespace

Service::Service(const Configuration::Settings& settings,
                 const TSKSmrPtr<Repository::ClassRepository>& repository,
                 Security::UserTable users)
    : repository_(repository),
      authenticator_(
          TSKSmrPtr<Security::BasicAuthenticator>::make(std::move(users), settings.security)),
      index_(repository),
      host_(repository, authenticator_, Host::InstallationPaths::ofThisProgram().installation,
            {&index_}),
      server_(settings.server, host_.manager(), authenticationBy(authenticator_)) {}

Service::~Service() = default;

void Service::start() {
    server_.start();
}

void Service::replace(const TSKSmrPtr<Repository::ClassRepository>& repository,
                      std::optional<Security::UserTable> users) {
    try {
        host_.setRepository(repository);
        index_.setRepository(repository);
        if (users)
            setUsers(*std::move(users));
    } catch (...) {
        host_.setRepository(repository_);
        index_.setRepository(repository_);
        throw;
    }
    repository_ = repository;
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
