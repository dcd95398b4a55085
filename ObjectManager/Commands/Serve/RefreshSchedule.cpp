#include "ObjectManager/Commands/Serve/RefreshSchedule.h"

#include <algorithm>

namespace Commands {

void RefreshSchedule::succeed(Clock::time_point now, std::chrono::milliseconds interval) {
    delay_ = kFirstDelay;
    next_.reset();
    if (interval.count() > 0)
        next_ = now + interval;
}

void RefreshSchedule::fail(Clock::time_point now) {
    const std::chrono::duration<double> half = delay_ / 2;
    next_ = now + std::chrono::duration_cast<Clock::duration>(half + half * random_());
    delay_ = std::min<std::chrono::milliseconds>(delay_ * 2, kLongestDelay);
}

}  // namespace Commands
