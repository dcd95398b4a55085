#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Http/RequestLimits.h"
#include "Platform/Http/TSKHTTPRequest.h"

namespace Http {

/// How a Server listens, and what it allows its clients.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct ServerOptions {
    /// Where to listen, at one place at least. All else that stands here counts for all together.
    std::vector<ListenAddress> listen = {{}};

    /// Threads that run providers, 1 at least. Providers compute, so one for each core.
    unsigned workers = std::max(1U, std::thread::hardware_concurrency());

    /// Tells requests that are answered at once from those whose answer takes long, such as those
    /// for which a password must be hashed. Quick ones do not wait for slow ones, and a server with
    /// several workers keeps one for them. The I/O thread asks, so it must not take long itself.
    /// What it throws closes the connection. By default nothing is known of any, and all are alike.
    std::function<bool(const TSKHTTPRequest& request)> isQuick =
        [](const TSKHTTPRequest& /*request*/) { return true; };

    /// Slow requests that wait for a worker. One more is answered 503, since who has to wait for
    /// longer has no use for the answer: where one takes the 15 ms of a password hash and a single
    /// worker does them, the last of so many waits for 4 s.
    std::size_t mostSlowWaiting = 256;

    RequestLimits requestLimits;

    /// Open connections, also those that wait for the client to end. One more is answered 503.
    /// Each takes a file descriptor, and memory for its request and its answer.
    std::size_t mostConnections = 4096;

    /// Connections beyond those that are kept after the 503, for as long as `drainTime` says, so
    /// that a client that is still sending gets that answer. Others are closed at once. Enough for
    /// those who come in a crowd, few beside the descriptors that the process has anyway.
    std::size_t mostTurnedAway = 64;

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
