#include "ObjectManager/Commands/SignalQueue.h"

#include <system_error>

namespace Commands {

SignalQueue::SignalQueue() {
    sigemptyset(&signals_);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
    std::signal(SIGPIPE, SIG_IGN);
}

SignalQueue::~SignalQueue() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

int SignalQueue::wait() const {
    int signal = 0;
    const int error = sigwait(&signals_, &signal);
    if (error != 0)
        throw std::system_error(error, std::generic_category(), "sigwait");
    return signal;
}

void SignalQueue::letThrough() const {
    std::signal(SIGHUP, SIG_IGN);
    pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
}

}  // namespace Commands
