#pragma once

#include <array>
#include <chrono>
#include <ctime>
#include <memory>
#include <mutex>
#include <openssl/ssl.h>
#include <optional>
#include <string>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Http/Options.h"

namespace Http {

struct SslDeleter {
    void operator()(SSL* session) const noexcept { SSL_free(session); }
};
using SslPtr = std::unique_ptr<SSL, SslDeleter>;

struct SslContextDeleter {
    void operator()(SSL_CTX* context) const noexcept { SSL_CTX_free(context); }
};
using SslContextPtr = std::unique_ptr<SSL_CTX, SslContextDeleter>;

/// What TLS sessions of a server begin with: its certificate and key, the authorities of client
/// certificates, and what is allowed: TLS 1.2 and 1.3, ciphers with forward secrecy and
/// authenticated encryption, HTTP/1.1, no renegotiation.
///
/// Clients can resume a session for an hour. That costs the server no memory, since the client
/// keeps the state, encrypted by a key of the server. A reload makes a new key and so ends all
/// sessions that could be resumed, also those of clients whose certificate is not accepted any
/// more.
///
/// Thread safety: may be used by several threads at once; reload() and goOn() belong to one thread.
class TlsContext {
  public:
    /// Reads the files.
    /// Errors: TeskBaseException that says which file is wrong and why.
    explicit TlsContext(TlsOptions options);

    /// A new session on the side of the server, without a socket.
    /// Errors: std::bad_alloc.
    [[nodiscard]] SslPtr makeSession() const;

    /// When the certificate expires.
    [[nodiscard]] std::time_t expiry() const noexcept;

    /// Reads the files again. Sessions that have begun keep what they have. When the files are
    /// wrong, for instance because the key is not that of the certificate, the log has an error and
    /// all stays as it was.
    void reload() noexcept;

    /// Reads the files again if they have changed, but not while they change: the certificate and
    /// its key are seldom replaced in one moment. Files that are wrong are tried again once a
    /// minute, and when they have changed. To be called about once a second.
    void goOn() noexcept;

  private:
    using Versions = std::array<Base::FileVersion, 3>;

    [[nodiscard]] Versions versions() const noexcept;
    void load();

    const TlsOptions options_;
    Versions loaded_;    // those that were read last, whether they were right or wrong
    Versions lastSeen_;  // by goOn()
    std::optional<std::chrono::steady_clock::time_point> failedAt_;  // when the last reading failed

    mutable std::mutex mutex_;
    SslContextPtr context_;  // guarded by mutex_
};

}  // namespace Http
