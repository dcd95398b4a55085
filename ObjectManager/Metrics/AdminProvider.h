#pragma once

#include <atomic>
#include <cstdint>

#include "ObjectManager/Metrics/ServiceMetrics.h"
#include "Platform/ProviderFramework/Provider.h"

namespace Metrics {

/// Serves what those ask for who run the service, to everybody:
///
/// - "/healthy": 200 while the process responds at all.
/// - "/ready": 200 while the service takes requests, else 503 with the reason: the classes are
///   loaded for the first time, or the service is being stopped.
/// - "/metrics": ServiceMetrics::text().
///
/// Thread safety: may be used by several threads at once.
class AdminProvider final : public urma::pf::Provider {
  public:
    enum class State : std::uint8_t { kLoading, kReady, kStopping };

    /// `metrics` must outlive this.
    explicit AdminProvider(ServiceMetrics& metrics) noexcept : metrics_(metrics) {}

    void setState(State state) noexcept { state_ = state; }

    [[nodiscard]] TSKString getProviderName() override;

    void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& handled,
                            TSKSmrPtr<ITeskTransaction> transaction) override;

  private:
    ServiceMetrics& metrics_;
    std::atomic<State> state_ = State::kLoading;
};

}  // namespace Metrics
