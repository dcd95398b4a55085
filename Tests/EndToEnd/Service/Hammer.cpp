#include "Tests/EndToEnd/Service/Hammer.h"

#include <exception>
#include <utility>

#include "Tests/ObjectManager/Http/Client.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"

Hammer::Hammer(std::uint16_t port, std::string request, std::string expected, int clients)
    : port_(port), request_(std::move(request)), expected_(std::move(expected)) {
    for (int index = 0; index < clients; ++index)
        clients_.emplace_back([this] { run(); });
}

Hammer::~Hammer() {
    static_cast<void>(stop());
}

void Hammer::waitForResponses(int count) const {
    int seen = responses_;
    for (const int last = seen + count; seen < last; seen = responses_)
        responses_.wait(seen);
}

std::vector<std::string> Hammer::stop() {
    ends_ = true;
    for (std::thread& client : clients_)
        client.join();
    clients_.clear();
    return std::exchange(wrong_, {});
}

void Hammer::run() {
    while (!ends_) {
        const std::string response = ask();
        if (response != expected_) {
            const std::lock_guard lock(mutex_);
            wrong_.push_back(response);
        }
        ++responses_;
        responses_.notify_all();
    }
}

std::string Hammer::ask() const {
    try {
        const Client client("127.0.0.1", port_);
        if (!client.send(request_))
            return "the request could not be sent";
        const std::string response = client.readAll();
        return response.empty() ? response : withoutDate(response);
    } catch (const std::exception& error) {
        return error.what();
    }
}
