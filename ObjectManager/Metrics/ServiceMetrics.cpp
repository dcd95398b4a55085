#include "ObjectManager/Metrics/ServiceMetrics.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <map>
#include <mutex>
#include <prometheus/counter.h>
#include <prometheus/family.h>
#include <prometheus/gauge.h>
#include <prometheus/histogram.h>
#include <prometheus/registry.h>
#include <prometheus/text_serializer.h>
#include <utility>

namespace Metrics {

namespace {

using prometheus::Counter;
using prometheus::Family;
using prometheus::Gauge;
using prometheus::Histogram;

constexpr std::array<std::string_view, 4> kKinds = {"wsdl", "xsd", "page", "other"};

// Of a response: three digits.
constexpr std::size_t kStatusCount = 1000;

std::size_t kindIndexOf(std::string_view path) noexcept {
    if (path.ends_with(".wsdl"))
        return 0;
    if (path.ends_with(".xsd"))
        return 1;
    return path == "/" || path.starts_with("/-/") ? 2 : 3;
}

double secondsOf(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

// From a document in memory, over a large one, to a slow client; in seconds.
Histogram::BucketBoundaries durations() {
    return {0.0005, 0.001, 0.0025, 0.005, 0.01, 0.025, 0.05, 0.1, 0.25, 0.5, 1, 2.5, 5, 10, 30};
}

}  // namespace

std::string_view documentKindOf(std::string_view path) noexcept {
    return kKinds.at(kindIndexOf(path));
}

class ServiceMetrics::Implementation {
  public:
    explicit Implementation(const std::string& version) {
        gauge("tesk_build_info", "The version of the program; the value is always 1.",
              {{"version", version}})
            .Set(1);
        startTime_.SetToCurrentTime();
        // So that they are there before anything happens.
        for (const char* const result : {"success", "failure"}) {
            reloads_.Add({{"result", result}});
            refreshes_.Add({{"result", result}});
        }
    }

    void countResponse(std::string_view path, unsigned status,
                       std::chrono::steady_clock::duration duration, std::size_t bodyBytes) {
        responseCounter(kindIndexOf(path), status).Increment();
        duration_.Observe(secondsOf(duration));
        bytes_.Increment(static_cast<double>(bodyBytes));
    }

    void countFailedLogin() { failedLogins_.Increment(); }

    void countReload(bool isDone) {
        reloads_.Add({{"result", isDone ? "success" : "failure"}}).Increment();
        if (isDone)
            loadTime_.SetToCurrentTime();
    }

    void countServerRefresh(std::size_t failures) {
        refreshes_.Add({{"result", failures == 0 ? "success" : "failure"}}).Increment();
        failingServers_.Set(static_cast<double>(failures));
    }

    void setContent(const std::vector<NamespaceSize>& namespaces) {
        const std::lock_guard lock(mutex_);
        for (const auto& [name, size] : classGauges_)
            classes_.Remove(size);
        classGauges_.clear();
        for (const NamespaceSize& each : namespaces) {
            Gauge& size = classes_.Add({{"namespace", each.name}});
            size.Set(static_cast<double>(each.classes));
            classGauges_[each.name] = &size;
        }
        namespaces_.Set(static_cast<double>(namespaces.size()));
        loadTime_.SetToCurrentTime();
    }

    void setSource(std::function<ServerState()> read) {
        const std::lock_guard lock(mutex_);
        read_ = std::move(read);
    }

    [[nodiscard]] std::string text() {
        {
            const std::lock_guard lock(mutex_);
            if (read_)
                update(read_());
        }
        return prometheus::TextSerializer().Serialize(registry_.Collect());
    }

  private:
    Gauge& gauge(const std::string& name, const std::string& help,
                 const std::map<std::string, std::string>& labels = {}) {
        return gauges(name, help).Add(labels);
    }
    Family<Gauge>& gauges(const std::string& name, const std::string& help) {
        return prometheus::BuildGauge().Name(name).Help(help).Register(registry_);
    }
    Counter& counter(const std::string& name, const std::string& help) {
        return counters(name, help).Add({});
    }
    Family<Counter>& counters(const std::string& name, const std::string& help) {
        return prometheus::BuildCounter().Name(name).Help(help).Register(registry_);
    }

    // The registry finds a counter by its labels, which takes longer than all else for a response;
    // so they are found once.
    Counter& responseCounter(std::size_t kind, unsigned status) {
        std::atomic<Counter*>& known =
            responseCounters_.at(kind).at(std::min<std::size_t>(status, kStatusCount - 1));
        Counter* found = known.load(std::memory_order_acquire);
        if (found == nullptr) {
            found = &responses_.Add(
                {{"document", std::string(kKinds.at(kind))}, {"status", std::to_string(status)}});
            known.store(found, std::memory_order_release);
        }
        return *found;
    }

    void update(const ServerState& state) {
        connections_.Set(static_cast<double>(state.connections));
        memory_.Set(static_cast<double>(state.responseMemory));
        raise(accepted_, state.acceptedConnections);
        raise(refused_, state.refusedConnections);
        raise(handshakes_, state.failedHandshakes);
        if (state.certificateExpiry)
            expiry_.Add({}).Set(static_cast<double>(*state.certificateExpiry));
    }

    static void raise(Counter& counter, std::uint64_t value) {
        counter.Increment(static_cast<double>(value) - counter.Value());
    }

    prometheus::Registry registry_;
    Family<Counter>& responses_ =
        counters("tesk_http_responses_total", "Responses, by the kind of the document.");
    Histogram& duration_ =
        prometheus::BuildHistogram()
            .Name("tesk_http_response_duration_seconds")
            .Help("Time from the end of a request's header section until its response is sent.")
            .Register(registry_)
            .Add({}, durations());
    Counter& bytes_ =
        counter("tesk_http_response_body_bytes_total", "Bytes of bodies that were sent.");
    Gauge& connections_ = gauge("tesk_http_connections", "Open connections.");
    Counter& accepted_ =
        counter("tesk_http_connections_accepted_total", "Connections that got a place.");
    Counter& refused_ =
        counter("tesk_http_connections_refused_total", "Connections for which there was no place.");
    Counter& handshakes_ =
        counter("tesk_tls_handshakes_failed_total", "Handshakes of TLS that failed.");
    Family<Gauge>& expiry_ = gauges("tesk_tls_certificate_expiry_timestamp_seconds",
                                    "When the certificate of the service expires.");
    Gauge& memory_ =
        gauge("tesk_response_memory_bytes", "Memory of all responses that are not sent yet.");
    Counter& failedLogins_ =
        counter("tesk_failed_logins_total", "Requests with a wrong name or password.");
    Family<Counter>& reloads_ =
        counters("tesk_reloads_total", "Reloads of the configuration and the classes.");
    Gauge& loadTime_ = gauge("tesk_classes_loaded_timestamp_seconds",
                             "When the classes were loaded or found unchanged by a reload.");
    Family<Counter>& refreshes_ =
        counters("tesk_server_refreshes_total", "How often the CIM servers were asked again.");
    Gauge& failingServers_ =
        gauge("tesk_failing_servers", "Requests to CIM servers that failed at the last refresh.");
    Family<Gauge>& classes_ = gauges("tesk_classes", "Classes that are served.");
    Gauge& namespaces_ = gauge("tesk_namespaces", "Namespaces that are served.");
    Gauge& startTime_ = gauge("process_start_time_seconds", "When the process was started.");

    std::array<std::array<std::atomic<Counter*>, kStatusCount>, kKinds.size()> responseCounters_{};

    std::mutex mutex_;
    std::map<std::string, Gauge*> classGauges_;  // guarded by mutex_
    std::function<ServerState()> read_;          // guarded by mutex_
};

ServiceMetrics::ServiceMetrics(const std::string& version)
    : implementation_(std::make_unique<Implementation>(version)) {}

ServiceMetrics::~ServiceMetrics() = default;

void ServiceMetrics::countResponse(std::string_view path, unsigned status,
                                   std::chrono::steady_clock::duration duration,
                                   std::size_t bodyBytes) {
    implementation_->countResponse(path, status, duration, bodyBytes);
}

void ServiceMetrics::countFailedLogin() {
    implementation_->countFailedLogin();
}

void ServiceMetrics::countReload(bool isDone) {
    implementation_->countReload(isDone);
}

void ServiceMetrics::countServerRefresh(std::size_t failures) {
    implementation_->countServerRefresh(failures);
}

void ServiceMetrics::setContent(const std::vector<NamespaceSize>& namespaces) {
    implementation_->setContent(namespaces);
}

void ServiceMetrics::setSource(std::function<ServerState()> read) {
    implementation_->setSource(std::move(read));
}

std::string ServiceMetrics::text() {
    return implementation_->text();
}

}  // namespace Metrics
