#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Configuration/Settings.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "ObjectManager/Http/AccessLog.h"
#include "ObjectManager/Http/FailedLogins.h"
#include "ObjectManager/Http/Server.h"
#include "ObjectManager/Metrics/ServiceMetrics.h"
#include "ObjectManager/Pages/PageProvider.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Security/BasicAuthenticator.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Commands {

/// The object manager as it runs: providers with the classes that they read, and a server that
/// takes requests for them and for the index page.
///
/// Thread safety: belongs to one thread.
class Service {
  public:
    /// Starts the providers and listens. Requests wait until start() is called. `metrics` counts
    /// what happens, and must outlive this; null for nobody.
    /// Errors: TeskBaseException when a provider fails, the access log cannot be written or the
    /// certificate cannot be used,
    /// std::system_error when an address cannot be listened on.
    Service(const Configuration::Settings& settings,
            const TSKSmrPtr<Repository::ClassRepository>& repository, Security::UserTable users,
            Metrics::ServiceMetrics* metrics = nullptr);
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    /// Shuts the providers down. Call stop() before.
    ~Service();

    /// Serves from now on.
    void start();

    /// Requests that begin from now on are served from these classes and, if there are any, for
    /// these users. Neither is replaced when this throws, as it does when memory runs out.
    void replace(const TSKSmrPtr<Repository::ClassRepository>& repository,
                 std::optional<Security::UserTable> users);
    void setUsers(Security::UserTable users);

    /// Reads the certificate for TLS again, if there is one; reloadCertificateIfChanged() is to be
    /// called about once a second. See Http::TlsContext.
    void reloadCertificate() noexcept;
    void reloadCertificateIfChanged() noexcept;

    /// Opens the access log by its name again, if there is one.
    /// Errors: TeskBaseException when it cannot be written; it goes on as before then.
    void reopenAccessLog();

    /// Tells the log of failed logins that were left out. To be called about once a second.
    void tellFailedLogins() noexcept;

    /// Takes no further requests and finishes those that run, within the shutdown timeout. Returns
    /// whether no provider runs any more; if one does, this must not be destroyed.
    [[nodiscard]] bool stop();

    /// "http://127.0.0.1:5985" for each address that is listened on, those for TLS last.
    [[nodiscard]] std::vector<std::string> addresses() const;

  private:
    void report(const Http::Exchange& exchange);
    void countContent(const Repository::ClassRepository& repository) noexcept;
    [[nodiscard]] Metrics::ServiceMetrics::ServerState serverState() noexcept;

    std::unique_ptr<Http::AccessLog> accessLog_;  // null for none
    Http::FailedLogins failedLogins_;
    TSKSmrPtr<Security::BasicAuthenticator> authenticator_;
    Pages::PageProvider index_;
    Host::ProviderHost host_;
    Metrics::ServiceMetrics* metrics_;  // null for none
    Http::Server server_;
};

}  // namespace Commands
