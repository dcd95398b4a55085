#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <string>

#include "ObjectManager/Http/ClientAddress.h"

namespace Http {

/// How often each client has sent a wrong password lately, and from where users were authenticated.
///
/// A client may try a few passwords at once. After that each failure doubles the time until its
/// next try, up to a limit; failures are forgotten with time. The number of clients is bounded:
/// those with the fewest failures are forgotten first, which only lets them try sooner. Users are
/// known by right passwords alone, and each has places of its own, so that nobody can make the
/// clients of another user unknown.
///
/// Thread safety: belongs to one thread.
class LoginAttempts {
  public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    /// Failures without a delay: people mistype, and scripts are started again with an old
    /// password.
    static constexpr double kFreeFailures = 5;
    static constexpr Duration kFirstDelay = std::chrono::milliseconds(100);
    /// At most 720 tries an hour are of no use to guess a password, and a client that has a right
    /// one at last gets its response before it gives up.
    static constexpr Duration kMaxDelay = std::chrono::seconds(5);
    /// After this time, half of the failures are forgotten.
    static constexpr Duration kHalfLife = std::chrono::minutes(1);
    /// Clients whose failures are counted, some 100 bytes each.
    static constexpr std::size_t kMaxClients = 4096;
    /// Clients from which a user is known. Few people use more networks.
    static constexpr std::size_t kMaxClientsPerUser = 16;

    /// Whether the user was authenticated from there.
    [[nodiscard]] bool isKnown(const ClientKey& client, const std::string& user) const;

    /// How long the client must wait after a try at `now`.
    [[nodiscard]] Duration delay(const ClientKey& client, TimePoint now) const;

    /// From when on the client may try again.
    [[nodiscard]] TimePoint nextTry(const ClientKey& client) const;

    /// The client tries a password now. Tries that run at the same time are delayed as well.
    void begin(const ClientKey& client, TimePoint now);

    /// The password was right.
    /// Errors: std::bad_alloc.
    void addRight(const ClientKey& client, const std::string& user);

    /// The password was wrong.
    /// Errors: std::bad_alloc.
    void addWrong(const ClientKey& client, TimePoint now);

  private:
    struct Failures {
        double number = 0;  // at the moment `counted`
        double rank = 0;    // orders the numbers of all clients at the same moment
        TimePoint counted;
        TimePoint nextTry;

        [[nodiscard]] double at(TimePoint now) const;
    };

    void makeRoom();

    std::map<ClientKey, Failures> failures_;
    std::map<std::string, std::deque<ClientKey>> known_;  // by user, the first known first
};

}  // namespace Http
