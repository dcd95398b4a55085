#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// Clients that send the same request again and again while this lives, each on new connections.
///
/// Thread safety: belongs to one thread.
class Hammer {
  public:
    /// `expected` is the right response, without its date.
    Hammer(std::uint16_t port, std::string request, std::string expected, int clients = 4);
    Hammer(const Hammer&) = delete;
    Hammer& operator=(const Hammer&) = delete;
    ~Hammer();

    /// Returns when so many more responses have come, right or wrong ones.
    void waitForResponses(int count) const;

    /// Ends it; returns the responses, or failures, that were not as expected.
    [[nodiscard]] std::vector<std::string> stop();

  private:
    void run();
    [[nodiscard]] std::string ask() const;

    std::uint16_t port_;
    std::string request_;
    std::string expected_;
    std::atomic<bool> ends_ = false;
    std::atomic<int> responses_ = 0;
    std::mutex mutex_;
    std::vector<std::string> wrong_;  // guarded by mutex_
    std::vector<std::thread> clients_;
};
