#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Http/ClientAddress.h"
#include "ObjectManager/Http/LoginAttempts.h"

namespace Http {

/// A request whose password must be hashed before it can be served.
///
/// Thread safety: belongs to one thread.
struct HashRequest {
    ClientKey client;
    std::string user;
    std::string credentials;  ///< equal for equal credentials

    /// Hashes the password and tells whether it is right. Of equal requests one is called.
    std::function<bool()> hash;

    /// Called once: true when the password, or an equal one, was hashed, false when there is no
    /// place for the request. It reports its failures itself; what it throws is ignored.
    std::function<void(bool isHashed)> done;
};

/// Requests whose password must be hashed, until a worker does so. Hashes take so long that one
/// client could keep all others from being authenticated. So
///
/// - clients take turns, however many requests each has;
/// - requests with equal credentials take one place, and one hash is done for all of them;
/// - the number of places is bounded, for each client and for all together. When all are taken, the
///   client that has most of them gives one to a client that has fewer;
/// - a client that has sent wrong passwords waits between its turns, see LoginAttempts. While it
///   waits, others have their turns.
///
/// A user who was authenticated from the same address before has turns and places apart from those
/// of that address, without delay: others behind it may send wrong passwords.
///
/// Thread safety: belongs to one thread, or to those that hold the lock that guards it. It calls
/// none of the functions of a request.
class HashQueue {
  public:
    using TimePoint = LoginAttempts::TimePoint;

    struct Limits {
        std::size_t places = 256;
        std::size_t placesPerClient = 64;
    };

    /// No request of a client is kept that would wait longer for its turn, because of delays.
    static constexpr LoginAttempts::Duration kLongestWait = std::chrono::seconds(20);

    /// Requests with equal credentials.
    class Group;
    using Groups = std::vector<std::shared_ptr<Group>>;

    /// A turn of a client: what hash is to be done.
    struct Turn {
        std::shared_ptr<Group> group;
        ClientKey client;
        bool isOfKnownUser = false;
    };

    explicit HashQueue(const Limits& limits) noexcept : limits_(limits) {}

    /// Adds a request. Returns those that get no place, which may be this one; end() tells them.
    /// Errors: std::bad_alloc; the request is not added.
    [[nodiscard]] Groups push(HashRequest request, TimePoint now);

    /// When the next turn may be taken; nothing if no request waits.
    [[nodiscard]] std::optional<TimePoint> nextTurn() const noexcept { return nextTurn_; }

    /// Takes the next turn; nextTurn() must have come. Its group must be finished.
    [[nodiscard]] Turn take(TimePoint now);

    /// Does the hash of a group. Returns whether the password is right.
    /// Errors: what HashRequest::hash throws.
    [[nodiscard]] static bool hash(const Group& group);

    /// The hash was done: `isRight` is its result, nothing if it has failed. Requests with equal
    /// credentials queue anew from now on. Returns those that lose their place, since they would
    /// have to wait too long; end() tells them and those of the turn.
    [[nodiscard]] Groups finish(const Turn& turn, std::optional<bool> isRight,
                                TimePoint now) noexcept;

    /// Calls HashRequest::done of all requests of a group that is not in the queue any more.
    static void end(Group& group, bool isHashed) noexcept;

    /// Takes out a group that waits; null if there is none. Its requests are not told.
    [[nodiscard]] std::shared_ptr<Group> drop() noexcept;

  private:
    // The requests that take turns together.
    struct Lane {
        ClientKey client;
        std::string knownUser;  // empty for all others
        std::deque<std::shared_ptr<Group>> groups;
    };
    using Lanes = std::list<Lane>;

    [[nodiscard]] Lanes::iterator laneOf(const HashRequest& request);
    [[nodiscard]] bool mayAdd(const Lane& lane, TimePoint now) const;
    [[nodiscard]] bool makeRoom(const Lane& lane, Groups& refused);
    void remove(const std::shared_ptr<Group>& group) noexcept;
    void refuseLast(Lane& lane, Groups& refused);
    [[nodiscard]] TimePoint turnOf(const Lane& lane) const;
    void findNextTurn() noexcept;

    const Limits limits_;
    LoginAttempts attempts_;
    Lanes lanes_;  // the one whose turn is next first; without empty ones
    std::map<std::string, std::shared_ptr<Group>> groups_;  // by credentials; also those at work
    std::size_t waiting_ = 0;                               // groups that wait
    std::optional<TimePoint> nextTurn_;
};

}  // namespace Http
