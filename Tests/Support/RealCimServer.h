#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Tests/Support/RunningProgram.h"
#include "Tests/Support/TemporaryDirectory.h"

/// The program that starts a real CIM server, in the directory that the environment variable
/// CIM_SERVER_DIR names; empty where it is not set. Tests skip themselves then:
///
///     if (cimServerProgram().empty())
///         GTEST_SKIP() << kNoCimServer;
[[nodiscard]] std::string cimServerProgram();

inline constexpr const char* kNoCimServer = "CIM_SERVER_DIR is not set";

/// A real CIM server, at a port of its own. Its namespace root/cimv2 has the classes of the DMTF.
class RealCimServer {
  public:
    /// Waits until the server responds. With `authenticates`, it demands the user "root" with the
    /// password "cim-secret".
    /// Errors: std::runtime_error when it does not.
    explicit RealCimServer(bool authenticates = false);
    RealCimServer(const RealCimServer&) = delete;
    RealCimServer& operator=(const RealCimServer&) = delete;
    /// Tells the server to end, and waits: killed, the program would leave it running.
    ~RealCimServer();

    /// Ends the server at once, whatever it does.
    void kill();

    /// Starts the server again, at the same port, after it was killed. Waits and fails as the
    /// constructor does.
    void restart();

    [[nodiscard]] std::uint16_t port() const noexcept { return port_; }

    /// "http://127.0.0.1:PORT".
    [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_); }

  private:
    const bool authenticates_;
    const std::uint16_t port_;
    std::unique_ptr<TemporaryDirectory> directory_;
    std::unique_ptr<RunningProgram> program_;
};
