#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Configuration/Settings.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "ObjectManager/Http/Server.h"
#include "ObjectManager/Index/IndexProvider.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Security/BasicAuthenticator.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Commands {

/// The object manager in service: providers with the classes that they read, and a server that
/// takes requests for them and for the index page.
///
/// Thread safety: belongs to one thread.
class Service {
  public:
    /// Starts the providers and listens; nobody is answered before start().
    /// Errors: TeskBaseException when a provider fails, std::system_error when an address cannot be
    /// listened on.
    Service(const Configuration::Settings& settings,
            const TSKSmrPtr<Repository::ClassRepository>& repository, Security::UserTable users);
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    /// Shuts the providers down; to be stopped before.
    ~Service();

    /// Serves from now on.
    void start();

    /// Requests that begin from now on see these classes and users.
    void setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository);
    void setUsers(Security::UserTable users);

    /// Takes no further requests and finishes those that run, as long as the settings say. Returns
    /// whether no provider runs any more; if not, this must not be destroyed.
    [[nodiscard]] bool stop();

    /// "http://127.0.0.1:5985" for each address that is listened on.
    [[nodiscard]] std::vector<std::string> addresses() const;

  private:
    TSKSmrPtr<Security::BasicAuthenticator> authenticator_;
    Index::IndexProvider index_;
    Host::ProviderHost host_;
    Http::Server server_;
};

}  // namespace Commands
