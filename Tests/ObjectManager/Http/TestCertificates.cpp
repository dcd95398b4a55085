#include "Tests/ObjectManager/Http/TestCertificates.h"

#include <atomic>
#include <functional>
#include <openssl/bio.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace {

void require(bool isDone) {
    if (!isDone)
        throw std::runtime_error("OpenSSL has made no certificate");
}

// What `write` writes.
std::string textOf(const std::function<int(BIO*)>& write) {
    struct Deleter {
        void operator()(BIO* bio) const noexcept { BIO_free(bio); }
    };
    const std::unique_ptr<BIO, Deleter> bio(BIO_new(BIO_s_mem()));
    require(bio != nullptr && write(bio.get()) == 1);
    char* text = nullptr;
    const long length = BIO_get_mem_data(bio.get(), &text);
    return {text, static_cast<std::size_t>(length)};
}

}  // namespace

TestCertificate::TestCertificate(const std::string& name, const TestCertificate* issuer)
    : key_(EVP_EC_gen("P-256")), certificate_(X509_new()) {
    static std::atomic<long> serial = 1;
    require(key_ != nullptr && certificate_ != nullptr);
    X509* const certificate = certificate_.get();
    require(X509_set_version(certificate, 2) == 1);
    require(ASN1_INTEGER_set(X509_get_serialNumber(certificate), serial++) == 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 24 * 3600L);
    require(X509_set_pubkey(certificate, key_.get()) == 1);
    X509_NAME* const subject = X509_get_subject_name(certificate);
    require(X509_NAME_add_entry_by_txt(subject, "O", MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>("Example"), -1, -1,
                                       0) == 1);
    require(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8,
                                       reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1,
                                       0) == 1);
    X509* const signer = issuer == nullptr ? certificate : issuer->x509();
    require(X509_set_issuer_name(certificate, X509_get_subject_name(signer)) == 1);
    addExtension(signer, NID_basic_constraints,
                 issuer == nullptr ? "critical,CA:TRUE" : "CA:FALSE");
    if (issuer != nullptr)
        addExtension(signer, NID_subject_alt_name, "DNS:" + name + ",DNS:localhost,IP:127.0.0.1");
    require(X509_sign(certificate, issuer == nullptr ? key_.get() : issuer->privateKey(),
                      EVP_sha256()) > 0);
}

void TestCertificate::addExtension(X509* issuer, int id, const std::string& value) {
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate_.get(), nullptr, nullptr, 0);
    X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, id, value.c_str());
    require(extension != nullptr);
    const int result = X509_add_ext(certificate_.get(), extension, -1);
    X509_EXTENSION_free(extension);
    require(result == 1);
}

std::string TestCertificate::certificate() const {
    return textOf([this](BIO* bio) { return PEM_write_bio_X509(bio, certificate_.get()); });
}

std::string TestCertificate::key() const {
    return textOf([this](BIO* bio) {
        return PEM_write_bio_PrivateKey(bio, key_.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
}

std::string TestCertificate::encryptedKey() const {
    return textOf([this](BIO* bio) {
        std::string password = "secret";
        return PEM_write_bio_PrivateKey(bio, key_.get(), EVP_aes_128_cbc(),
                                        reinterpret_cast<unsigned char*>(password.data()),
                                        static_cast<int>(password.size()), nullptr, nullptr);
    });
}
