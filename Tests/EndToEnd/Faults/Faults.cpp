#include "Tests/EndToEnd/Faults/Faults.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <ostream>

#include "Tests/Support/DirectoryContent.h"

namespace {

// When so many runs of a test have shown something, the others show the same.
constexpr std::size_t kMostFailures = 5;

}  // namespace

std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
    return stream << fault.call << " " << fault.number;
}

std::vector<std::string> commandCalls() {
    return {"allocation", "open",   "descriptor", "read",   "write", "sync",
            "close",      "rename", "directory",  "status", "lock",  "thread"};
}

std::vector<std::string> serviceCalls() {
    std::vector<std::string> calls = commandCalls();
    calls.insert(calls.end(), {"accept", "recv", "send"});
    return calls;
}

void FaultTest::SetUp() {
    if (TESK_IS_SANITIZED)
        GTEST_SKIP() << "a sanitizer takes the place of the same functions of the C library";
}

void FaultTest::failEachCall(const std::string& call, const std::function<void(const Fault&)>& run,
                             std::size_t first) {
    Fault fault{.call = call, .number = first};
    std::size_t failures = 0;
    for (bool goesOn = true; goesOn && failures < kMostFailures;) {
        const auto before = testing::UnitTest::GetInstance()->current_test_info()->result();
        const int partsBefore = before->total_part_count();
        run(fault);
        goesOn = hasFailed();
        if (before->total_part_count() != partsBefore) {
            ++failures;
            ADD_FAILURE() << "with " << fault << ": " << report();
        }
        std::filesystem::remove(reports_ / "report");
        ++fault.number;
    }
    RecordProperty("calls", static_cast<int>(fault.number));
}

std::size_t FaultTest::countCalls(const std::string& call,
                                  const std::function<void(const Fault&)>& run) const {
    const auto isMade = [&](std::size_t number) {
        run({.call = call, .number = number});
        return std::filesystem::remove(reports_ / "report");
    };
    std::size_t tooMany = 1;
    while (isMade(tooMany))
        tooMany *= 2;
    std::size_t made = tooMany / 2;
    while (made + 1 < tooMany) {
        const std::size_t middle = (made + tooMany) / 2;
        (isMade(middle) ? made : tooMany) = middle;
    }
    return made;
}

void FaultTest::inject(const Fault& fault) const {
    if (fault.number == 0)
        return;
    setenv("LD_PRELOAD", FAIL_NTH, 1);
    // The configuration of OpenSSL is read in hundreds of small pieces.
    setenv("OPENSSL_CONF", "/dev/null", 1);
    setenv("TESK_FAULT_CALL", fault.call.c_str(), 1);
    setenv("TESK_FAULT_AT", std::to_string(fault.number).c_str(), 1);
    setenv("TESK_FAULT_REPORT", (reports_ / "report").c_str(), 1);
}

bool FaultTest::hasFailed() const {
    return std::filesystem::exists(reports_ / "report");
}

std::string FaultTest::report() const {
    return hasFailed() ? contentOfFile(reports_ / "report") : "no call has failed";
}

std::vector<std::string> FaultTest::reasons(const std::string& call) {
    static const std::map<std::string, int> kErrors = {
        {"allocation", ENOMEM}, {"open", EMFILE},     {"descriptor", EMFILE}, {"read", EIO},
        {"write", ENOSPC},      {"sync", EIO},        {"close", EIO},         {"rename", EIO},
        {"directory", ENOSPC},  {"status", EIO},      {"lock", ENOLCK},       {"thread", EAGAIN},
        {"accept", EMFILE},     {"recv", ECONNRESET}, {"send", ECONNRESET},
    };
    std::vector<std::string> words = {std::strerror(kErrors.at(call))};
    // C++ streams do not tell why they cannot be written to.
    if (call == "write")
        words.emplace_back("the output cannot be written");
    if (call == "allocation")
        words.emplace_back("there is not enough memory");
    return words;
}

bool FaultTest::namesReason(const std::string& text, const Fault& fault) const {
    const std::vector<std::string> words = reasons(fault.call);
    return std::ranges::any_of(
        words, [&](const std::string& word) { return text.find(word) != std::string::npos; });
}
