#include "ObjectManager/Commands/SignalQueue.h"

#include <cerrno>
#include <ctime>
#include <system_error>

namespace Commands {

SignalQueue::SignalQueue(const std::vector<int>& signals) {
    sigemptyset(&signals_);
    for (const int signal : signals)
        sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
}

SignalQueue::~SignalQueue() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

int SignalQueue::waitFor(std::chrono::seconds time) const {
    const timespec timeout = {.tv_sec = time.count(), .tv_nsec = 0};
    const int signal = sigtimedwait(&signals_, nullptr, &timeout);
    if (signal >= 0)
        return signal;
    // Interrupted when the process was stopped and goes on.
    if (errno == EAGAIN || errno == EINTR)
        return 0;
    throw std::system_error(errno, std::generic_category(), "sigtimedwait");
}

void SignalQueue::letThrough() const {
    pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
}

}  // namespace Commands
