#include "ObjectManager/Http/FailedLogins.h"

#include <string>
#include <utility>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Http/Options.h"

namespace Http {

namespace {

constexpr std::chrono::seconds kInterval(1);

void warn(const std::string& text) {
    Base::log(kLogComponent, TeskTraceLog::SeverityWarning, text);
}

}  // namespace

FailedLogins::FailedLogins(Clock clock) : clock_(std::move(clock)) {}

void FailedLogins::add(const ClientAddress& client, std::string_view user) {
    const std::lock_guard lock(mutex_);
    if (!mayTell()) {
        ++leftOut_;
        return;
    }
    std::string text =
        "Failed login from " + client.toString() + " as " + Base::quoted(Base::logText(user));
    if (leftOut_ > 0)
        text += "; " + Base::counted(leftOut_, "other", "others") + " before it " +
                (leftOut_ == 1 ? "is" : "are") + " not shown";
    leftOut_ = 0;
    lastLine_ = clock_();
    warn(text);
}

void FailedLogins::tellRest() {
    const std::lock_guard lock(mutex_);
    if (leftOut_ == 0 || !mayTell())
        return;
    const std::string text = Base::counted(leftOut_, "failed login", "failed logins") +
                             (leftOut_ == 1 ? " is" : " are") + " not shown";
    leftOut_ = 0;
    lastLine_ = clock_();
    warn(text);
}

// To be called with mutex_ locked.
bool FailedLogins::mayTell() {
    return !lastLine_ || clock_() - *lastLine_ >= kInterval;
}

}  // namespace Http
