#include "ObjectManager/Commands/ProgressBar.h"

#include <algorithm>
#include <cmath>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Commands/NumberText.h"

namespace Commands {

namespace {

constexpr std::string_view kStartOfClearedLine = "\r\x1B[K";

}  // namespace

ProgressBar::ProgressBar(std::FILE* terminal, std::size_t total, std::string unit)
    : terminal_(terminal),
      isShown_(isatty(fileno(terminal)) == 1),
      total_(total),
      unit_(std::move(unit)) {}

ProgressBar::~ProgressBar() {
    if (!isShown_)
        return;
    (void)std::fwrite(kStartOfClearedLine.data(), 1, kStartOfClearedLine.size(), terminal_);
    (void)std::fflush(terminal_);
}

void ProgressBar::step() {
    ++done_;
    if (!isShown_)
        return;
    constexpr std::chrono::milliseconds kBetweenLines(50);
    const std::unique_lock lock(mutex_, std::try_to_lock);
    const Clock::time_point now = Clock::now();
    if (lock && now - lastShown_ >= kBetweenLines)
        show(now);
}

void ProgressBar::show(Clock::time_point now) {
    lastShown_ = now;
    std::string text(kStartOfClearedLine);
    text += line(done_, total_, unit_, now - start_);
    (void)std::fwrite(text.data(), 1, text.size(), terminal_);
    (void)std::fflush(terminal_);
}

std::string ProgressBar::line(std::size_t done, std::size_t total, const std::string& unit,
                              std::chrono::duration<double> elapsed) {
    constexpr std::size_t kWidth = 30;
    const std::size_t filled = total == 0 ? kWidth : std::min(kWidth, kWidth * done / total);
    std::string text = "[" + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] ";
    text += groupedDigits(done) + "/" + groupedDigits(total) + " " + unit;
    if (done == 0 || elapsed.count() <= 0)
        return text;
    const double rate = static_cast<double>(done) / elapsed.count();
    const double left = static_cast<double>(total - std::min(done, total)) / rate;
    text += ", " + groupedDigits(static_cast<std::size_t>(rate)) + "/s, ";
    text += groupedDigits(static_cast<std::size_t>(std::lround(left))) + " s left";
    return text;
}

}  // namespace Commands
