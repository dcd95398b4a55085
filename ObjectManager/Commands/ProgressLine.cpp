#include "ObjectManager/Commands/ProgressLine.h"

#include <unistd.h>

#include "ObjectManager/Base/Text.h"

namespace Commands {

ProgressLine::ProgressLine(std::FILE* output, std::size_t total, const std::string& unit,
                           std::chrono::milliseconds delay)
    : output_(output),
      isTerminal_(isatty(fileno(output)) == 1),
      ofTotal_(" of " + Base::withSeparators(total) + " " + unit),
      nextTime_(Clock::now() + delay) {}

ProgressLine::~ProgressLine() {
    if (isShown_)
        write("");
}

void ProgressLine::step() {
    constexpr std::chrono::milliseconds kBetweenLines(100);
    const std::size_t done = ++done_;
    if (!isTerminal_)
        return;
    // Another thread is just writing the line: this step appears with the next one.
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock || Clock::now() < nextTime_)
        return;
    write(Base::withSeparators(done) + ofTotal_);
    isShown_ = true;
    nextTime_ = Clock::now() + kBetweenLines;
}

void ProgressLine::write(const std::string& text) {
    constexpr const char* kEraseLine = "\r\x1B[K";
    (void)std::fprintf(output_, "%s%s", kEraseLine, text.c_str());
    (void)std::fflush(output_);
}

}  // namespace Commands
