#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <exception>
#include <functional>
#include <thread>

namespace Http {

/// Logs why a connection failed, unless there is no memory for that. May be called by several
/// threads at once.
void logFailure(const std::exception& exception) noexcept;

/// A thread that runs an io_context.
///
/// Thread safety: belongs to one thread, which is not the one that it starts.
class IoThread {
  public:
    IoThread() = default;
    IoThread(const IoThread&) = delete;
    IoThread& operator=(const IoThread&) = delete;
    ~IoThread() { stop(); }

    [[nodiscard]] boost::asio::io_context& context() noexcept { return context_; }

    /// Runs the handlers of the io_context from now on. What a handler throws is logged.
    /// Errors: std::system_error when no thread can be started.
    void start();
    [[nodiscard]] bool isRunning() const noexcept { return thread_.joinable(); }

    /// Runs `task` on the thread, which must be running, and returns when it is done.
    /// Errors: std::bad_alloc, and what the task throws.
    void call(const std::function<void()>& task);

    /// Runs no further handler. Those that wait are destroyed with the io_context.
    void stop();

  private:
    void run() noexcept;

    boost::asio::io_context context_{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> keepsRunning_ =
        boost::asio::make_work_guard(context_);
    std::thread thread_;
};

}  // namespace Http
