#pragma once

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "Tests/Support/TemporaryDirectory.h"

/// One call of a program into the C library that is made to fail.
struct Fault {
    std::string call;        ///< a kind of Tests/Support/FaultInjection/FailNth.cpp
    std::size_t number = 1;  ///< which call of that kind, counted from the beginning of main()
};

std::ostream& operator<<(std::ostream& stream, const Fault& fault);

/// The kinds of calls that commands make, and those that only a service makes.
[[nodiscard]] std::vector<std::string> commandCalls();
[[nodiscard]] std::vector<std::string> serviceCalls();

/// A test that makes one call after the other fail, each in a run of the program of its own.
///
/// Thread safety: belongs to one thread.
class FaultTest : public testing::Test {
  protected:
    void SetUp() override;

    /// Has `run` run the program with the 1st, 2nd, 3rd … call of that kind failing until it makes
    /// fewer calls; from the call of the number `first` on.
    void failEachCall(const std::string& call, const std::function<void(const Fault&)>& run,
                      std::size_t first = 1);

    /// How many calls of that kind the program makes when `run` runs it.
    [[nodiscard]] std::size_t countCalls(const std::string& call,
                                         const std::function<void(const Fault&)>& run) const;

    /// Called in a new process: what the program needs to have that fault, which is none for
    /// number 0.
    void inject(const Fault& fault) const;

    /// Whether the call was made, and failed.
    [[nodiscard]] bool hasFailed() const;

    /// Which function failed, what for, and where it was called; empty when none has.
    [[nodiscard]] std::string report() const;

    /// Whether the text names the reason for the fault, as it must when anybody could be told.
    [[nodiscard]] bool namesReason(const std::string& text, const Fault& fault) const;

    /// The words by which it may be named, for a message.
    [[nodiscard]] static std::vector<std::string> reasons(const std::string& call);

    TemporaryDirectory directory_;

  private:
    TemporaryDirectory reports_;
};
