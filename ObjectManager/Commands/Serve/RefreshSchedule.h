#pragma once

#include <chrono>
#include <functional>
#include <optional>

namespace Commands {

/// When a service asks the CIM servers again: after the interval, and after a failure at first soon
/// and then after longer and longer times. These are partly random, so that many services that lost
/// a server at once do not all come back at once.
///
/// Thread safety: belongs to one thread.
class RefreshSchedule {
  public:
    using Clock = std::chrono::steady_clock;

    /// After the first failure; doubled by each further one.
    static constexpr std::chrono::seconds kFirstDelay{5};
    static constexpr std::chrono::seconds kLongestDelay = std::chrono::minutes(5);

    /// `random` gives numbers from 0 to 1.
    explicit RefreshSchedule(std::function<double()> random) : random_(std::move(random)) {}

    /// The servers have responded; the next time is after the interval, never when that is 0.
    void succeed(Clock::time_point now, std::chrono::milliseconds interval);

    /// A server has failed; the next time is after half of the delay to all of it.
    void fail(Clock::time_point now);

    [[nodiscard]] bool isDue(Clock::time_point now) const noexcept {
        return next_ && now >= *next_;
    }

  private:
    std::function<double()> random_;
    std::chrono::milliseconds delay_ = kFirstDelay;
    std::optional<Clock::time_point> next_;
};

}  // namespace Commands
