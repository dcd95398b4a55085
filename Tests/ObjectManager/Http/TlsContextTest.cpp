#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Http/TlsContext.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/ObjectManager/Http/TestCertificates.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using Http::TlsContext;
using Lines = std::vector<std::string>;

class TlsContextTest : public testing::Test {
  protected:
    TlsContextTest() {
        write("certificate.pem", server_.certificate() + authority_.certificate());
        write("key.pem", server_.key());
    }

    void write(const std::string& name, const std::string& content) const {
        // Nobody sees half of it.
        std::filesystem::rename(directory_.write(name + ".new", content), directory_ / name);
    }

    [[nodiscard]] Http::TlsOptions options() const {
        return {.certificateFile = directory_ / "certificate.pem",
                .keyFile = directory_ / "key.pem",
                .clientAuthorityFile = clientAuthorities_};
    }

    // What is wrong with the files, with "DIR" for their directory.
    [[nodiscard]] std::string failure() const {
        try {
            const TlsContext context(options());
            return "";
        } catch (const TeskBaseException& exception) {
            return withoutDirectory(exception.getMessage().data());
        }
    }

    [[nodiscard]] std::string withoutDirectory(std::string text) const {
        const std::string name = directory_.path();
        for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name))
            text.replace(at, name.size(), "DIR");
        return text;
    }

    // The lines of the log, with "DIR" for the directory of the files.
    [[nodiscard]] Lines log() const {
        Lines lines = log_.lines();
        for (std::string& line : lines)
            line = withoutDirectory(line);
        return lines;
    }

    [[nodiscard]] static std::string certificateOf(const TlsContext& context) {
        const Http::SslPtr session = context.makeSession();
        X509* const certificate = SSL_get_certificate(session.get());
        std::string name(256, '\0');
        const int length = X509_NAME_get_text_by_NID(X509_get_subject_name(certificate),
                                                     NID_commonName, name.data(), 256);
        name.resize(static_cast<std::size_t>(std::max(length, 0)));
        return name;
    }

    static constexpr const char* kReadAgain = "HttpFrontEnd|3|2|The TLS certificate was read again";

    TemporaryDirectory directory_;
    std::string clientAuthorities_;
    TestCertificate authority_{"authority"};
    TestCertificate server_{"first", &authority_};
    TestCertificate other_{"second", &authority_};
    LogRecording log_;
};

TEST_F(TlsContextTest, TakesACertificateWithItsChain) {
    const TlsContext context(options());
    EXPECT_EQ(certificateOf(context), "first");
    STACK_OF(X509)* chain = nullptr;
    const Http::SslPtr session = context.makeSession();
    SSL_get0_chain_certs(session.get(), &chain);
    EXPECT_EQ(sk_X509_num(chain), 1);
}

TEST_F(TlsContextTest, SaysWhichFileIsWrong) {
    EXPECT_EQ(failure(), "");
    write("key.pem", other_.key());
    EXPECT_EQ(failure(),
              "DIR/key.pem: the key is not that of the first certificate in DIR/certificate.pem");
    write("key.pem", server_.encryptedKey());
    EXPECT_EQ(failure(),
              "DIR/key.pem: the key is encrypted; it must be readable without a password");
    write("key.pem", "");
    EXPECT_EQ(failure(), "DIR/key.pem: there is no key in PEM in it: unsupported");
    std::filesystem::remove(directory_ / "key.pem");
    EXPECT_EQ(failure(), "DIR/key.pem: cannot be read: No such file or directory");
    write("certificate.pem", "text");
    EXPECT_EQ(failure(), "DIR/certificate.pem: there is no certificate in PEM in it");
    write("certificate.pem", server_.certificate() + "-----BEGIN CERTIFICATE-----\nx\n");
    EXPECT_EQ(failure(), "DIR/certificate.pem: a certificate cannot be read: bad end line");
}

TEST_F(TlsContextTest, ClientAuthoritiesMustBeCertificates) {
    clientAuthorities_ = directory_ / "authorities.pem";
    EXPECT_EQ(failure(), "DIR/authorities.pem: cannot be read: No such file or directory");
    write("authorities.pem", server_.key());
    EXPECT_EQ(failure(), "DIR/authorities.pem: there is no certificate in PEM in it");
    write("authorities.pem", authority_.certificate() + other_.certificate());
    EXPECT_EQ(failure(), "");
}

TEST_F(TlsContextTest, AReloadTakesANewPair) {
    TlsContext context(options());
    write("certificate.pem", other_.certificate());
    write("key.pem", other_.key());
    context.reload();
    EXPECT_EQ(certificateOf(context), "second");
    EXPECT_EQ(log(), Lines{kReadAgain});
}

TEST_F(TlsContextTest, ABrokenPairLeavesTheOldOne) {
    TlsContext context(options());
    write("key.pem", other_.key());
    context.reload();
    EXPECT_EQ(certificateOf(context), "first");
    EXPECT_EQ(log(), Lines{"HttpFrontEnd|1|2|The TLS certificate stays as it was: DIR/key.pem: the "
                           "key is not that of the first certificate in DIR/certificate.pem"});
}

TEST_F(TlsContextTest, NewFilesAreTakenByThemselvesWhenTheyHaveStoppedChanging) {
    TlsContext context(options());
    context.goOn();
    EXPECT_EQ(log(), Lines());
    write("certificate.pem", other_.certificate());
    context.goOn();
    write("key.pem", other_.key());
    context.goOn();
    EXPECT_EQ(certificateOf(context), "first");
    context.goOn();
    EXPECT_EQ(certificateOf(context), "second");
    context.goOn();
    EXPECT_EQ(log(), Lines{kReadAgain});
}

TEST_F(TlsContextTest, ABrokenPairIsTakenWhenItIsMended) {
    TlsContext context(options());
    write("certificate.pem", other_.certificate());
    for (int times = 0; times < 5; ++times)
        context.goOn();
    EXPECT_EQ(certificateOf(context), "first");
    EXPECT_EQ(log().size(), 1U);  // not each second
    write("key.pem", other_.key());
    context.goOn();
    context.goOn();
    EXPECT_EQ(certificateOf(context), "second");
}

}  // namespace
