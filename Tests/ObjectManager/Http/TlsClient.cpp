#include "Tests/ObjectManager/Http/TlsClient.h"

#include <array>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>

#include "Tests/Support/WaitUntil.h"

TlsClientContext::TlsClientContext(const TestCertificate& authority)
    : context_(SSL_CTX_new(TLS_client_method())) {
    SSL_CTX* const context = context_.get();
    X509_STORE_add_cert(SSL_CTX_get_cert_store(context), authority.x509());
    SSL_CTX_set_verify(context, SSL_VERIFY_PEER, nullptr);
    SSL_CTX_set_session_cache_mode(context,
                                   SSL_SESS_CACHE_CLIENT | SSL_SESS_CACHE_NO_INTERNAL_STORE);
    SSL_CTX_set_app_data(context, this);
    SSL_CTX_sess_set_new_cb(context, [](SSL* session, SSL_SESSION* given) {
        auto* const self =
            static_cast<TlsClientContext*>(SSL_CTX_get_app_data(SSL_get_SSL_CTX(session)));
        self->session_.reset(given);
        return 1;
    });
}

void TlsClientContext::useCertificate(const TestCertificate& certificate) {
    EXPECT_EQ(SSL_CTX_use_certificate(context_.get(), certificate.x509()), 1);
    EXPECT_EQ(SSL_CTX_use_PrivateKey(context_.get(), certificate.privateKey()), 1);
}

TlsClient::TlsClient(const TlsClientContext& context, std::uint16_t port,
                     const std::function<void(SSL*)>& prepare)
    : client_("127.0.0.1", port), session_(SSL_new(context.get())) {
    const timeval patience{.tv_sec = kPatienceMilliseconds / 1000, .tv_usec = 0};
    for (const int option : {SO_RCVTIMEO, SO_SNDTIMEO})
        setsockopt(client_.descriptor(), SOL_SOCKET, option, &patience, sizeof patience);
    (void)std::signal(SIGPIPE, SIG_IGN);  // OpenSSL writes to servers that have gone
    SSL* const session = session_.get();
    SSL_set_fd(session, client_.descriptor());
    EXPECT_EQ(SSL_set1_host(session, "localhost"), 1);
    SSL_set_tlsext_host_name(session, "localhost");
    if (context.session() != nullptr)
        SSL_set_session(session, context.session());
    if (prepare)
        prepare(session);
    isConnected_ = SSL_connect(session) == 1;
}

std::string TlsClient::application() const {
    const unsigned char* name = nullptr;
    unsigned int length = 0;
    SSL_get0_alpn_selected(session_.get(), &name, &length);
    return {reinterpret_cast<const char*>(name), length};
}

bool TlsClient::send(std::string_view bytes) const {
    std::size_t written = 0;
    return SSL_write_ex(session_.get(), bytes.data(), bytes.size(), &written) == 1 &&
           written == bytes.size();
}

std::string TlsClient::readAll(bool* hasEnded) const {
    std::string text;
    std::array<char, 65536> buffer{};
    std::size_t length = 0;
    int result = SSL_read_ex(session_.get(), buffer.data(), buffer.size(), &length);
    for (; result == 1; result = SSL_read_ex(session_.get(), buffer.data(), buffer.size(), &length))
        text.append(buffer.data(), length);
    if (hasEnded != nullptr)
        *hasEnded = SSL_get_error(session_.get(), result) == SSL_ERROR_ZERO_RETURN;
    return text;
}
