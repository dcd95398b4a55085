#include "ObjectManager/Commands/Serve/Service.h"

#include <utility>

#include "ObjectManager/Host/InstallationPaths.h"

namespace Commands {

Service::Service(const Configuration::Settings& settings,
                 const TSKSmrPtr<Repository::ClassRepository>& repository,
                 Security::UserTable users)
    : authenticator_(
          TSKSmrPtr<Security::BasicAuthenticator>::make(std::move(users), settings.security)),
      index_(repository),
      host_(repository, authenticator_, Host::InstallationPaths::ofThisProgram().installation,
            {&index_}),
      server_(
          settings.server, host_.manager(),
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

void Service::replace(const TSKSmrPtr<Repository::ClassRepository>& repository,
                      std::optional<Security::UserTable> users) {
    std::shared_ptr<Security::CredentialChecker> checker;
    if (users)
        checker = authenticator_->makeChecker(*std::move(users));
    host_.setRepository(repository);
    // Nothing below fails.
    index_.setRepository(repository);
    if (checker)
        authenticator_->setChecker(std::move(checker));
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
