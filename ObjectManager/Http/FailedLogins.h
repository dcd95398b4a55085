#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <string_view>

#include "ObjectManager/Http/ClientAddress.h"

namespace Http {

/// Tells the log of failed logins, for programs that keep clients out who try passwords. There is
/// at most one line a second, however many clients try: what is left out is counted. The line is a
/// warning, and the address of the client is in front of what the client has chosen:
///
///     Failed login from 192.0.2.7 as "alice"
///     Failed login from 192.0.2.7 as "alice"; 12 others before it are not shown
///     12 failed logins are not shown
///
/// Thread safety: may be used by several threads at once.
class FailedLogins {
  public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    explicit FailedLogins(Clock clock = std::chrono::steady_clock::now);

    /// Errors: std::bad_alloc; the line is lost.
    void add(const ClientAddress& client, std::string_view user);

    /// Tells how many were left out, unless a second has not passed since the last line. To be
    /// called about once a second.
    /// Errors: std::bad_alloc; it is told by a later call.
    void tellRest();

  private:
    [[nodiscard]] bool mayTell();

    const Clock clock_;
    std::mutex mutex_;
    std::optional<std::chrono::steady_clock::time_point> lastLine_;  // guarded by mutex_
    std::size_t leftOut_ = 0;                                        // guarded by mutex_
};

}  // namespace Http
