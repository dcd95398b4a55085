#pragma once

#include <string>

#include "ObjectManager/Http/Server.h"
#include "ObjectManager/Metrics/AdminProvider.h"
#include "ObjectManager/Metrics/ServiceMetrics.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Commands {

/// Serves health and metrics on an address of its own, by a server of its own: it responds while
/// the classes are loaded and while all workers of the service are busy.
///
/// Thread safety: belongs to one thread; the metrics may be used by several at once.
class AdminService {
  public:
    using State = Metrics::AdminProvider::State;

    /// Serves from now on; the service is being loaded. `version` is that of the program.
    /// Errors: std::system_error when the address cannot be listened on.
    AdminService(const Http::ListenAddress& address, const std::string& version);
    AdminService(const AdminService&) = delete;
    AdminService& operator=(const AdminService&) = delete;
    ~AdminService();

    void setState(State state) noexcept { provider_.setState(state); }

    [[nodiscard]] Metrics::ServiceMetrics& metrics() noexcept { return metrics_; }

    /// "http://127.0.0.1:9187".
    [[nodiscard]] std::string address() const;

  private:
    Metrics::ServiceMetrics metrics_;
    Metrics::AdminProvider provider_{metrics_};
    TeskProviderPluginManager manager_;
    Http::Server server_;
};

}  // namespace Commands
