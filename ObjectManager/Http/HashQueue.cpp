#include "ObjectManager/Http/HashQueue.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

namespace Http {

class HashQueue::Group {
  public:
    explicit Group(HashRequest& request)
        : user(request.user), credentials(request.credentials), hash(std::move(request.hash)) {}

    struct Member {
        ClientKey client;
        std::function<void(bool)> done;
    };

    std::string user;
    std::string credentials;
    std::function<bool()> hash;
    std::vector<Member> members;
    unsigned lanes = 0;  // in which it waits
};

HashQueue::Groups HashQueue::push(HashRequest request, TimePoint now) {
    Groups refused;
    if (const auto known = groups_.find(request.credentials); known != groups_.end()) {
        const std::shared_ptr<Group>& group = known->second;
        group->members.push_back({request.client, std::move(request.done)});
        // It need not wait for the turn of the client that came first.
        if (group->lanes > 0) {
            const auto lane = laneOf(request);
            if (mayAdd(*lane, now) &&
                std::ranges::find(lane->groups, group) == lane->groups.end()) {
                lane->groups.push_back(group);
                ++group->lanes;
            } else if (lane->groups.empty()) {
                lanes_.erase(lane);
            }
        }
        findNextTurn();
        return refused;
    }
    const auto group = std::make_shared<Group>(request);
    group->members.push_back({request.client, std::move(request.done)});
    const auto lane = laneOf(request);
    try {
        if (!mayAdd(*lane, now) || !makeRoom(*lane, refused)) {
            refused.push_back(group);
        } else {
            groups_.emplace(group->credentials, group);
            lane->groups.push_back(group);
            ++group->lanes;
            ++waiting_;
        }
    } catch (...) {
        groups_.erase(group->credentials);
        if (lane->groups.empty())
            lanes_.erase(lane);
        throw;
    }
    if (lane->groups.empty())
        lanes_.erase(lane);
    findNextTurn();
    return refused;
}

HashQueue::Turn HashQueue::take(TimePoint now) {
    const auto lane = std::ranges::find_if(
        lanes_, [&](const Lane& candidate) { return turnOf(candidate) <= now; });
    Turn turn = {.group = lane->groups.front(),
                 .client = lane->client,
                 .isOfKnownUser = !lane->knownUser.empty()};
    lanes_.splice(lanes_.end(), lanes_, lane);
    remove(turn.group);
    if (!turn.isOfKnownUser)
        attempts_.begin(turn.client, now);
    findNextTurn();
    return turn;
}

bool HashQueue::hash(const Group& group) {
    return group.hash();
}

HashQueue::Groups HashQueue::finish(const Turn& turn, std::optional<bool> isRight,
                                    TimePoint now) noexcept {
    Groups refused;
    groups_.erase(turn.group->credentials);
    try {
        if (isRight == true) {
            for (const Group::Member& member : turn.group->members)
                attempts_.addRight(member.client, turn.group->user);
        } else if (isRight == false && !turn.isOfKnownUser) {
            attempts_.addWrong(turn.client, now);
            const auto lane = std::ranges::find_if(lanes_, [&](const Lane& candidate) {
                return candidate.client == turn.client && candidate.knownUser.empty();
            });
            while (lane != lanes_.end() && lane->groups.size() > 1 && !mayAdd(*lane, now))
                refuseLast(*lane, refused);
        }
    } catch (const std::bad_alloc&) {
        // The delay is shorter than it should be.
    }
    findNextTurn();
    return refused;
}

void HashQueue::end(Group& group, bool isHashed) noexcept {
    for (const Group::Member& member : std::exchange(group.members, {})) {
        try {
            member.done(isHashed);
        } catch (...) {
            // As HashRequest::done says.
        }
    }
}

std::shared_ptr<HashQueue::Group> HashQueue::drop() noexcept {
    if (lanes_.empty())
        return nullptr;
    std::shared_ptr<Group> group = lanes_.front().groups.front();
    remove(group);
    groups_.erase(group->credentials);
    findNextTurn();
    return group;
}

// Makes an empty one if there is none.
HashQueue::Lanes::iterator HashQueue::laneOf(const HashRequest& request) {
    const bool isKnown = attempts_.isKnown(request.client, request.user);
    const std::string_view user = isKnown ? std::string_view(request.user) : std::string_view();
    const auto lane = std::ranges::find_if(lanes_, [&](const Lane& candidate) {
        return candidate.client == request.client && candidate.knownUser == user;
    });
    if (lane != lanes_.end())
        return lane;
    lanes_.push_back({.client = request.client, .knownUser = std::string(user), .groups = {}});
    return std::prev(lanes_.end());
}

bool HashQueue::mayAdd(const Lane& lane, TimePoint now) const {
    if (lane.groups.size() >= limits_.placesPerClient)
        return false;
    return !lane.knownUser.empty() ||
           attempts_.delay(lane.client, now) * lane.groups.size() <= kLongestWait;
}

// Returns whether there is a place for another group in `lane`.
bool HashQueue::makeRoom(const Lane& lane, Groups& refused) {
    while (waiting_ >= limits_.places) {
        const auto longest = std::ranges::max_element(
            lanes_, {}, [](const Lane& candidate) { return candidate.groups.size(); });
        if (longest->groups.size() <= lane.groups.size() + 1)
            return false;
        refuseLast(*longest, refused);
    }
    return true;
}

// Takes a group out of all lanes in which it waits.
void HashQueue::remove(const std::shared_ptr<Group>& group) noexcept {
    --waiting_;
    for (auto lane = lanes_.begin(); group->lanes > 0 && lane != lanes_.end();) {
        group->lanes -= static_cast<unsigned>(std::erase(lane->groups, group));
        lane = lane->groups.empty() ? lanes_.erase(lane) : std::next(lane);
    }
}

// A group that waits in other lanes, too, stays there. Leaves an empty lane as it is.
void HashQueue::refuseLast(Lane& lane, Groups& refused) {
    const std::shared_ptr<Group> group = lane.groups.back();
    if (group->lanes == 1) {
        refused.push_back(group);
        groups_.erase(group->credentials);
        --waiting_;
    }
    --group->lanes;
    lane.groups.pop_back();
}

HashQueue::TimePoint HashQueue::turnOf(const Lane& lane) const {
    return lane.knownUser.empty() ? attempts_.nextTry(lane.client) : TimePoint();
}

void HashQueue::findNextTurn() noexcept {
    nextTurn_.reset();
    for (const Lane& lane : lanes_)
        nextTurn_ = std::min(nextTurn_.value_or(TimePoint::max()), turnOf(lane));
}

}  // namespace Http
