#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <thread>

#include "ObjectManager/Http/RequestLimits.h"

namespace Http {

/// How a Server listens, and what it allows its clients.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct ServerOptions {
    /// The IPv4 or IPv6 address to listen on. "0.0.0.0" is every IPv4 address of the machine, "::"
    /// every IPv6 and IPv4 address. Only this machine by default: who wants others to come says so.
    std::string address = "127.0.0.1";

    /// 0 takes a port that is free. By default the one that is registered for WS-Management.
    std::uint16_t port = 5985;

    /// Threads that run providers, 1 at least. Providers compute, so one for each core.
    unsigned workers = std::max(1U, std::thread::hardware_concurrency());

    RequestLimits requestLimits;

    /// Open connections, also those that wait for the client to end. One more is answered 503.
    /// Each takes a file descriptor, and memory for its request and its answer.
    std::size_t mostConnections = 4096;

    /// For the client to send the whole head; answered 408 then. Long enough for a bad line, short
    /// enough that those who send nothing do not take the place of others for long.
    std::chrono::milliseconds headTime = std::chrono::seconds(10);

    /// For the client to take the whole response, however steadily it reads; the connection is
    /// closed then. A document of 10 MiB needs 3 Mbit/s.
    std::chrono::milliseconds responseTime = std::chrono::seconds(30);

    /// How long, and how many bytes, a client may go on sending after it has got the answer; the
    /// connection is closed then. Clients that send a body first and read afterwards need this.
    std::chrono::milliseconds drainTime = std::chrono::seconds(5);
    std::size_t mostDrainedBytes = 16UL * 1024 * 1024;
};

}  // namespace Http
