#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <openssl/ssl.h>
#include <string>
#include <string_view>

#include "Tests/ObjectManager/Http/Client.h"
#include "Tests/ObjectManager/Http/TestCertificates.h"

/// What a client of TLS begins with, and the session that it can resume.
///
/// Thread safety: belongs to one thread.
class TlsClientContext {
  public:
    /// Accepts certificates that `authority` has issued for "localhost".
    explicit TlsClientContext(const TestCertificate& authority);

    /// Shows this certificate to servers that ask for one.
    void useCertificate(const TestCertificate& certificate);

    [[nodiscard]] SSL_CTX* get() const noexcept { return context_.get(); }

    /// The last one that a server has given; null if none has.
    [[nodiscard]] SSL_SESSION* session() const noexcept { return session_.get(); }

  private:
    struct Deleter {
        void operator()(SSL_CTX* context) const noexcept { SSL_CTX_free(context); }
        void operator()(SSL_SESSION* session) const noexcept { SSL_SESSION_free(session); }
    };

    std::unique_ptr<SSL_CTX, Deleter> context_;
    std::unique_ptr<SSL_SESSION, Deleter> session_;
};

/// A client by TLS of a server in this process. Whatever takes longer than half a minute fails the
/// test.
///
/// Thread safety: belongs to one thread.
class TlsClient {
  public:
    /// Connects to a port of 127.0.0.1 and makes the handshake. `prepare` may change the session
    /// before that.
    TlsClient(const TlsClientContext& context, std::uint16_t port,
              const std::function<void(SSL*)>& prepare = nullptr);

    /// Whether the handshake was made. A server that refuses the client's certificate does so after
    /// it by TLS 1.3.
    [[nodiscard]] bool isConnected() const noexcept { return isConnected_; }
    [[nodiscard]] bool isResumed() const noexcept {
        return SSL_session_reused(session_.get()) == 1;
    }
    [[nodiscard]] std::string protocol() const { return SSL_get_version(session_.get()); }
    /// That of ALPN; empty without.
    [[nodiscard]] std::string application() const;
    [[nodiscard]] SSL* session() const noexcept { return session_.get(); }
    [[nodiscard]] const Client& socket() const noexcept { return client_; }

    bool send(std::string_view bytes) const;

    /// Reads until the server ends the session. Sets `hasEnded` to whether it has told so by TLS.
    [[nodiscard]] std::string readAll(bool* hasEnded = nullptr) const;

  private:
    struct Deleter {
        // Without the end on both sides the session could not be resumed.
        void operator()(SSL* session) const noexcept {
            SSL_set_shutdown(session, SSL_SENT_SHUTDOWN | SSL_RECEIVED_SHUTDOWN);
            SSL_free(session);
        }
    };

    Client client_;
    std::unique_ptr<SSL, Deleter> session_;
    bool isConnected_ = false;
};
