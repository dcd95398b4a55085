#pragma once

#include <memory>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <string>

/// A certificate with its key, made by the test: on an elliptic curve, valid for a day.
///
/// Thread safety: immutable, may be used by several threads at once.
class TestCertificate {
  public:
    /// `name` is the common name, and a DNS name of the subject beside "localhost" and "127.0.0.1".
    /// Without `issuer` the certificate is an authority that signs itself.
    explicit TestCertificate(const std::string& name, const TestCertificate* issuer = nullptr);

    /// In PEM.
    [[nodiscard]] std::string certificate() const;
    [[nodiscard]] std::string key() const;
    /// In PEM, encrypted by a password.
    [[nodiscard]] std::string encryptedKey() const;

    [[nodiscard]] X509* x509() const noexcept { return certificate_.get(); }
    [[nodiscard]] EVP_PKEY* privateKey() const noexcept { return key_.get(); }

  private:
    struct Deleter {
        void operator()(X509* certificate) const noexcept { X509_free(certificate); }
        void operator()(EVP_PKEY* key) const noexcept { EVP_PKEY_free(key); }
    };

    void addExtension(X509* issuer, int id, const std::string& value);

    std::unique_ptr<EVP_PKEY, Deleter> key_;
    std::unique_ptr<X509, Deleter> certificate_;
};
