#include "ObjectManager/Commands/TemporaryName.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <unistd.h>

namespace Commands {

namespace {

constexpr std::string_view kPrefix = ".tesk-export-";

// As a number without a sign is written: "0" and "07" are none.
bool isNumber(std::string_view text) noexcept {
    return !text.empty() && text.front() != '0' &&
           std::all_of(text.begin(), text.end(),
                       [](char character) { return character >= '0' && character <= '9'; });
}

bool isGone(std::string_view process) noexcept {
    pid_t id = 0;
    const auto result = std::from_chars(process.data(), process.data() + process.size(), id);
    return result.ec == std::errc() && kill(id, 0) != 0 && errno == ESRCH;
}

}  // namespace

std::string makeTemporaryName() {
    static std::atomic<unsigned long> lastNumber = 0;
    return std::string(kPrefix) + std::to_string(getpid()) + "-" + std::to_string(++lastNumber);
}

bool isAbandonedName(std::string_view file) noexcept {
    if (!file.starts_with(kPrefix))
        return false;
    const std::string_view numbers = file.substr(kPrefix.size());
    const std::size_t hyphen = numbers.find('-');
    if (hyphen == std::string_view::npos)
        return false;
    const std::string_view process = numbers.substr(0, hyphen);
    return isNumber(process) && isNumber(numbers.substr(hyphen + 1)) && isGone(process);
}

}  // namespace Commands
