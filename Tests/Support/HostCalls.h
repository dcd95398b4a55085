#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

/// Counts the calls that this thread makes into the test's object manager (class model, repository,
/// streams), and makes chosen ones fail.
namespace HostCalls {

/// What a call throws that is made to fail. Knows nothing of the platform's exceptions, so only a
/// handler of everything catches it.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Whether this thread's calls are counted, or one of them is to fail.
extern constinit thread_local bool watched;

void noteWatched(const char* operation);

/// Every operation of the test's object manager begins with this. Costs next to nothing while the
/// thread is not watched, so that benchmarks can use the same object manager.
inline void note(const char* operation) {
    if (watched)
        noteWatched(operation);
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

void startCounting() noexcept;
[[nodiscard]] std::size_t stopCounting() noexcept;

/// How many calls `operation` makes.
template <typename Operation>
[[nodiscard]] std::size_t count(const Operation& operation) {
    startCounting();
    operation();
    return stopCounting();
}

}  // namespace HostCalls
