#pragma once

#include <string>

#include "Tests/Support/TemporaryDirectory.h"

/// An authority that issues certificates, by the program openssl. All files are in PEM and live as
/// long as the authority.
class CertificateAuthority {
  public:
    /// Where a certificate and its key are; `both` holds one after the other.
    struct Certificate {
        std::string certificate;
        std::string key;
        std::string both;
    };

    enum class Validity {
        kNow,
        kOver,  ///< it has ended years ago
    };

    /// Errors: std::runtime_error, as those of issue().
    CertificateAuthority();

    /// The authority's own certificate.
    [[nodiscard]] std::string file() const { return directory_ / "authority.pem"; }

    /// Issues a certificate to a host; a client's certificate has the client's name instead.
    [[nodiscard]] Certificate issue(const std::string& host, Validity validity = Validity::kNow);

  private:
    void run(const std::string& arguments) const;

    TemporaryDirectory directory_;
    int issued_ = 0;
};
