#include "ObjectManager/Commands/Serve/AdminService.h"

#include <chrono>

namespace Commands {

namespace {

// A monitoring system and some balancers ask every few seconds, in one request each.
Http::Options optionsFor(const Http::ListenAddress& address) {
    Http::Options options;
    options.listen = {address};
    options.workers = 1;
    options.maxConnections = 32;
    options.maxConnectionsPerClient = 0;
    options.maxRefusedConnections = 4;
    options.shutdownTimeout = std::chrono::seconds(1);
    options.stopGrace = std::chrono::milliseconds(0);
    return options;
}

}  // namespace

AdminService::AdminService(const Http::ListenAddress& address, const std::string& version)
    : metrics_(version), server_(optionsFor(address), manager_) {
    (void)manager_.addProvider(provider_, "tesk");
    (void)manager_.registerURI(provider_.getProviderName(), "/");
    server_.start();
}

// Nothing but metrics is made here, which takes no time.
AdminService::~AdminService() {
    (void)server_.stop();
    (void)manager_.shutdown();
}

std::string AdminService::address() const {
    const auto& [address, port] = server_.addresses().front();
    return "http://" + address + ":" + std::to_string(port);
}

}  // namespace Commands
