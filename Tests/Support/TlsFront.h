#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Tests/Support/RunningProgram.h"
#include "Tests/Support/TemporaryDirectory.h"

/// Puts TLS in front of a server of this machine that has none, by the program haproxy.
class TlsFront {
  public:
    /// A port of 127.0.0.1 that it listens at.
    struct Door {
        std::string certificate;           ///< a file of the certificate and its key
        std::string clientAuthority = {};  ///< clients must have a certificate of it, if any
    };

    /// Waits until all doors are open. `server` is the port of the server.
    /// Errors: std::runtime_error when they do not open.
    TlsFront(std::uint16_t server, const std::vector<Door>& doors);
    TlsFront(const TlsFront&) = delete;
    TlsFront& operator=(const TlsFront&) = delete;
    ~TlsFront() = default;

    /// "https://localhost:PORT" of a door, counted from 0.
    [[nodiscard]] std::string url(std::size_t door) const;

  private:
    TemporaryDirectory directory_;
    std::vector<std::uint16_t> ports_;
    std::unique_ptr<RunningProgram> program_;
};
