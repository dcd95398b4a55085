#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Metrics {

/// What is counted of a service, in the text format of Prometheus. The names begin with "tesk_";
/// Docs/operating.md lists them.
///
/// Thread safety: may be used by several threads at once.
class ServiceMetrics {
  public:
    /// What is read when the metrics are asked for.
    struct ServerState {
        std::size_t connections = 0;            ///< that are open
        std::uint64_t acceptedConnections = 0;  ///< since the start, as the next two
        std::uint64_t refusedConnections = 0;
        std::uint64_t failedHandshakes = 0;
        std::size_t responseMemory = 0;                ///< in bytes
        std::optional<std::time_t> certificateExpiry;  ///< nothing without TLS
    };

    /// The classes of a namespace.
    struct NamespaceSize {
        std::string name;
        std::size_t classes = 0;
    };

    /// `version` is that of the program.
    /// Errors: std::bad_alloc, as of all functions.
    explicit ServiceMetrics(const std::string& version);
    ServiceMetrics(const ServiceMetrics&) = delete;
    ServiceMetrics& operator=(const ServiceMetrics&) = delete;
    ~ServiceMetrics();

    /// A response to a request for `path`, which is empty for a request that could not be read.
    void countResponse(std::string_view path, unsigned status,
                       std::chrono::steady_clock::duration duration, std::size_t bodyBytes);

    void countFailedLogin();

    /// Configuration and classes were read again, or could not be.
    void countReload(bool isDone);

    /// The CIM servers were asked again. `failures` is the number of those that have failed.
    void countServerRefresh(std::size_t failures);

    /// The classes that are served from now on.
    void setContent(const std::vector<NamespaceSize>& namespaces);

    /// Has ServerState read by `read` from now on; by nothing if it is empty. When this returns,
    /// the function before it is not called any more.
    void setSource(std::function<ServerState()> read);

    /// All metrics as they are now.
    [[nodiscard]] std::string text();

  private:
    class Implementation;

    std::unique_ptr<Implementation> implementation_;
};

/// The kind of the document at a path, as metrics name it: "wsdl", "xsd", "page" or "other".
[[nodiscard]] std::string_view documentKindOf(std::string_view path) noexcept;

}  // namespace Metrics
