#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/Util/TSKString.h"

/// Watches the calls that this thread makes into the test's object manager (class model,
/// repository, streams), and makes chosen ones fail.
namespace HostCalls {

/// What a call throws that is made to fail. Knows nothing of the platform's exceptions, so only a
/// handler of everything catches it.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Whether this thread's calls are watched, by a Recording or a failure to come.
extern constinit thread_local bool watched;

void noteWatched(const char* operation, const std::string& argument);

/// Every operation of the test's object manager begins with this. Costs next to nothing while
/// nobody watches, so that benchmarks can use the same object manager.
inline void note(const char* operation) {
    if (watched)
        noteWatched(operation, "");
}
/// The same with what the operation is called with.
inline void note(const char* operation, const TSKString& argument) {
    if (watched)
        noteWatched(operation, std::string(" ") + argument.data());
}
inline void note(const char* operation, const TSKString& argument, bool flag) {
    if (watched)
        noteWatched(operation, std::string(" ") + argument.data() + (flag ? " true" : " false"));
}
inline void note(const char* operation, bool flag) {
    if (watched)
        noteWatched(operation, flag ? " true" : " false");
}

/// Makes the `occurrence`th call of this thread from now on throw a Failure, counted from 1; 0
/// none.
void failAt(std::size_t occurrence) noexcept;

/// Runs `operation` with its 1st, 2nd, 3rd … call failing until it gets through without a failure,
/// and `check` with the failed operation's name after each failure. Returns how many there were.
template <typename Operation, typename Check>
std::size_t failEach(const Operation& operation, const Check& check) {
    for (std::size_t occurrence = 1;; ++occurrence) {
        failAt(occurrence);
        try {
            operation();
        } catch (const Failure& failure) {
            failAt(0);
            check(std::string(failure.what()));
            continue;
        }
        failAt(0);
        return occurrence - 1;
    }
}

/// Keeps the calls of this thread while it lives, as "OPERATION", "OPERATION ARGUMENT", "OPERATION
/// FLAG" or "OPERATION ARGUMENT FLAG".
class Recording {
  public:
    Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording();

    [[nodiscard]] const std::vector<std::string>& calls() const noexcept { return calls_; }
    /// Those of one operation.
    [[nodiscard]] std::vector<std::string> callsOf(const std::string& operation) const;

  private:
    friend void noteWatched(const char* operation, const std::string& argument);

    std::vector<std::string> calls_;
};

}  // namespace HostCalls
