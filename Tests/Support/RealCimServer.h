#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Tests/Support/RunningProgram.h"

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

    /// "http://127.0.0.1:PORT".
    [[nodiscard]] const std::string& url() const noexcept { return url_; }

  private:
    std::string url_;
    std::unique_ptr<RunningProgram> program_;
};
