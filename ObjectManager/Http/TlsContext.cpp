#include "ObjectManager/Http/TlsContext.h"

#include <exception>
#include <new>
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Http {

namespace {

// Far more than a chain or all authorities of a company need.
constexpr std::size_t kMaxFileSize = 1'048'576;

constexpr std::chrono::minutes kRetryInterval(1);

// For how long a session can be resumed, in seconds.
constexpr long kSessionLifetime = 3600;

// Of TLS 1.2; those of TLS 1.3 are all good.
constexpr const char* kCiphers = "ECDHE+AESGCM:ECDHE+CHACHA20";

// Of those that clients use, the ones that cost the server least: the largest groups that OpenSSL
// knows take a tenth of a second each time.
constexpr const char* kGroups = "X25519:P-256:P-384";

constexpr std::string_view kProtocol = "http/1.1";

struct BioDeleter {
    void operator()(BIO* bio) const noexcept { BIO_free(bio); }
};
using BioPtr = std::unique_ptr<BIO, BioDeleter>;

struct CertificateDeleter {
    void operator()(X509* certificate) const noexcept { X509_free(certificate); }
};
using CertificatePtr = std::unique_ptr<X509, CertificateDeleter>;

struct KeyDeleter {
    void operator()(EVP_PKEY* key) const noexcept { EVP_PKEY_free(key); }
};
using KeyPtr = std::unique_ptr<EVP_PKEY, KeyDeleter>;

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Http::TlsContext", TSKString(message), CIM_ERR_FAILED);
}

// What OpenSSL says about its last failure.
std::string opensslReason() {
    const char* const reason = ERR_reason_error_string(ERR_peek_last_error());
    ERR_clear_error();
    return reason == nullptr ? "unknown reason" : reason;
}

// Does not leave the content in memory: it may be a key.
class FileContent {
  public:
    explicit FileContent(const std::string& path) {
        try {
            text_ = Base::readFile(path, kMaxFileSize);
        } catch (const std::system_error& error) {
            fail(path + ": cannot be read: " + Base::readFailure(error));
        }
    }
    FileContent(const FileContent&) = delete;
    FileContent& operator=(const FileContent&) = delete;
    ~FileContent() { OPENSSL_cleanse(text_.data(), text_.size()); }

    [[nodiscard]] BioPtr bio() const {
        BioPtr bio(BIO_new_mem_buf(text_.data(), static_cast<int>(text_.size())));
        if (bio == nullptr)
            throw std::bad_alloc();
        return bio;
    }

  private:
    std::string text_;
};

// All certificates of a file, at least one.
std::vector<CertificatePtr> readCertificates(const std::string& path) {
    const FileContent content(path);
    const BioPtr bio = content.bio();
    std::vector<CertificatePtr> certificates;
    ERR_clear_error();
    for (;;) {
        CertificatePtr certificate(PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr));
        if (certificate == nullptr)
            break;
        certificates.push_back(std::move(certificate));
    }
    const bool isAtEnd = ERR_GET_REASON(ERR_peek_last_error()) == PEM_R_NO_START_LINE;
    const std::string reason = opensslReason();
    if (!isAtEnd)
        fail(path + ": a certificate cannot be read: " + reason);
    if (certificates.empty())
        fail(path + ": there is no certificate in PEM in it");
    return certificates;
}

int refusePassword(char* /*buffer*/, int /*size*/, int /*isWriting*/, void* data) {
    *static_cast<bool*>(data) = true;
    return -1;
}

KeyPtr readKey(const std::string& path) {
    const FileContent content(path);
    const BioPtr bio = content.bio();
    bool isEncrypted = false;
    KeyPtr key(PEM_read_bio_PrivateKey(bio.get(), nullptr, &refusePassword, &isEncrypted));
    const std::string reason = key == nullptr ? opensslReason() : "";
    if (isEncrypted)
        fail(path + ": the key is encrypted; it must be readable without a password");
    if (key == nullptr)
        fail(path + ": there is no key in PEM in it: " + reason);
    return key;
}

void useCertificate(SSL_CTX& context, const TlsOptions& options) {
    const std::vector<CertificatePtr> chain = readCertificates(options.certificateFile);
    if (SSL_CTX_use_certificate(&context, chain.front().get()) != 1)
        fail(options.certificateFile + ": the certificate cannot be used: " + opensslReason());
    for (std::size_t index = 1; index < chain.size(); ++index) {
        if (SSL_CTX_add1_chain_cert(&context, chain[index].get()) != 1)
            fail(options.certificateFile + ": the chain cannot be used: " + opensslReason());
    }
    const KeyPtr key = readKey(options.keyFile);
    if (SSL_CTX_use_PrivateKey(&context, key.get()) != 1 ||
        SSL_CTX_check_private_key(&context) != 1) {
        ERR_clear_error();
        fail(options.keyFile + ": the key is not that of the first certificate in " +
             options.certificateFile);
    }
}

void useClientAuthorities(SSL_CTX& context, const std::string& path) {
    for (const CertificatePtr& authority : readCertificates(path)) {
        if (X509_STORE_add_cert(SSL_CTX_get_cert_store(&context), authority.get()) != 1 ||
            SSL_CTX_add_client_CA(&context, authority.get()) != 1)
            fail(path + ": a certificate cannot be used: " + opensslReason());
    }
    // A client without a certificate sends a password.
    SSL_CTX_set_verify(&context, SSL_VERIFY_PEER, nullptr);
}

int selectProtocol(SSL* /*session*/, const unsigned char** selected, unsigned char* length,
                   const unsigned char* offered, unsigned int offeredLength, void* /*data*/) {
    for (unsigned int at = 0; at < offeredLength; at += 1U + offered[at]) {
        const std::string_view name(reinterpret_cast<const char*>(offered) + at + 1, offered[at]);
        if (name != kProtocol)
            continue;
        *selected = offered + at + 1;
        *length = offered[at];
        return SSL_TLSEXT_ERR_OK;
    }
    return SSL_TLSEXT_ERR_ALERT_FATAL;
}

// Without SSL_MODE_AUTO_RETRY, a call ends with each message that is not data, so that no client
// keeps the thread busy with them.
void setProtocol(SSL_CTX& context) {
    constexpr std::string_view kSessionContext = "tesk";
    if (SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION) != 1 ||
        SSL_CTX_set_cipher_list(&context, kCiphers) != 1 ||
        SSL_CTX_set1_groups_list(&context, kGroups) != 1)
        fail("TLS cannot be set up: " + opensslReason());
    SSL_CTX_set_options(&context, SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION |
                                      SSL_OP_CIPHER_SERVER_PREFERENCE | SSL_OP_PRIORITIZE_CHACHA);
    SSL_CTX_set_mode(&context, SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER |
                                   SSL_MODE_RELEASE_BUFFERS);
    SSL_CTX_clear_mode(&context, SSL_MODE_AUTO_RETRY);
    SSL_CTX_set_read_ahead(&context, 1);
    SSL_CTX_set_session_cache_mode(&context, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_session_id_context(&context,
                                   reinterpret_cast<const unsigned char*>(kSessionContext.data()),
                                   static_cast<unsigned int>(kSessionContext.size()));
    SSL_CTX_set_timeout(&context, kSessionLifetime);
    SSL_CTX_set_num_tickets(&context, 1);
    SSL_CTX_set_alpn_select_cb(&context, &selectProtocol, nullptr);
}

SslContextPtr makeContext(const TlsOptions& options) {
    ERR_clear_error();
    SslContextPtr context(SSL_CTX_new(TLS_server_method()));
    if (context == nullptr)
        throw std::bad_alloc();
    setProtocol(*context);
    useCertificate(*context, options);
    if (!options.clientAuthorityFile.empty())
        useClientAuthorities(*context, options.clientAuthorityFile);
    return context;
}

void logLine(TeskTraceLog::Severity severity, std::string_view text) noexcept {
    try {
        Base::log(kLogComponent, severity, text);
    } catch (const std::bad_alloc&) {
        // The line is lost.
    }
}

}  // namespace

TlsContext::TlsContext(TlsOptions options)
    : options_(std::move(options)),
      loaded_(versions()),
      lastSeen_(loaded_),
      context_(makeContext(options_)) {}

SslPtr TlsContext::makeSession() const {
    const std::lock_guard lock(mutex_);
    SslPtr session(SSL_new(context_.get()));
    if (session == nullptr)
        throw std::bad_alloc();
    return session;
}

std::time_t TlsContext::expiry() const noexcept {
    const std::lock_guard lock(mutex_);
    std::tm time{};
    ASN1_TIME_to_tm(X509_get0_notAfter(SSL_CTX_get0_certificate(context_.get())), &time);
    return timegm(&time);
}

void TlsContext::reload() noexcept {
    try {
        load();
    } catch (const std::exception& error) {
        failedAt_ = std::chrono::steady_clock::now();
        try {
            logLine(TeskTraceLog::SeverityError,
                    "The TLS certificate stays as it was: " + std::string(Base::reasonOf(error)));
        } catch (const std::bad_alloc&) {
            // The line is lost.
        }
    }
}

// The versions are those before the files are read: what changes meanwhile is read next time.
void TlsContext::load() {
    loaded_ = versions();
    SslContextPtr context = makeContext(options_);
    {
        const std::lock_guard lock(mutex_);
        context_.swap(context);
    }
    failedAt_.reset();
    logLine(TeskTraceLog::SeverityInformation, "The TLS certificate was read again");
}

void TlsContext::goOn() noexcept {
    const Versions now = versions();
    const bool isQuiet = now == std::exchange(lastSeen_, now);
    const bool isDue = failedAt_ && std::chrono::steady_clock::now() - *failedAt_ >= kRetryInterval;
    if (isQuiet && (now != loaded_ || isDue))
        reload();
}

TlsContext::Versions TlsContext::versions() const noexcept {
    return {Base::FileVersion::of(options_.certificateFile),
            Base::FileVersion::of(options_.keyFile),
            Base::FileVersion::of(options_.clientAuthorityFile)};
}

}  // namespace Http
