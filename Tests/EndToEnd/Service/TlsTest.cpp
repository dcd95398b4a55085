// The service with TLS, and the tools with which people look at it.

#include <gtest/gtest.h>
#include <regex>

#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Http/TestCertificates.h"
#include "Tests/Support/Command.h"
#include "Tests/Support/WaitUntil.h"

namespace {

class ServiceTls : public RunningService {
  protected:
    ServiceTls() {
        directory_.write("authority.pem", authority_.certificate());
        writePair(certificate_);
        serverKeys_["tls_listen"] = "\"127.0.0.1:0\"";
        serverKeys_["tls_certificate"] = "\"certificate.pem\"";
        serverKeys_["tls_key"] = "\"key.pem\"";
    }

    void writePair(const TestCertificate& certificate) const {
        directory_.write("certificate.pem", certificate.certificate() + authority_.certificate());
        directory_.write("key.pem", certificate.key());
    }

    [[nodiscard]] std::string file(std::string_view name) const { return directory_ / name; }

    // That of TLS is the last one.
    [[nodiscard]] std::string address() const {
        return "localhost:" + std::to_string(port(listen_.size()));
    }

    // What curl prints that asks for a document by TLS.
    [[nodiscard]] std::string curl(const std::string& options,
                                   const std::string& path = "/root/test/TST_Nothing.wsdl") const {
        return outputOf("curl --silent --show-error --max-time 60 --ipv4 --cacert '" +
                        file("authority.pem") + "' " + options + " 'https://" + address() + path +
                        "' 2>&1");
    }

    TestCertificate authority_{"authority"};
    TestCertificate certificate_{"server", &authority_};
};

TEST_F(ServiceTls, CurlGetsDocumentsThatNameAnAddressOfHttps) {
    start();
    EXPECT_EQ(readyLine(),
              "Serving 2 classes in 1 namespace on http://127.0.0.1:" + std::to_string(port(0)) +
                  " https://127.0.0.1:" + std::to_string(port(1)));
    std::string document = expected("TST_Nothing.wsdl", address());
    document.replace(document.find("http://" + address()), 4, "https");
    EXPECT_EQ(curl("--user alice:secret"), document);
    EXPECT_EQ(curl("--user alice:secret --tls-max 1.2"), document);
    EXPECT_EQ(curl("--output /dev/null --write-out '%{http_code}'"), "401");
    EXPECT_EQ(curl("--user alice:secret --head --output /dev/null --write-out "
                   "'%header{content-length} %{size_download}'"),
              std::to_string(document.size()) + " 0");
}

TEST_F(ServiceTls, AnAddressForTlsAloneLeavesOutTheDefaultOne) {
    writeConfiguration();
    startWith({"serve", "--tls-listen", "127.0.0.1:0", "--tls-certificate", file("certificate.pem"),
               "--tls-key", file("key.pem"), "--password-file", file("users")});
    EXPECT_EQ(readyLine(),
              "Serving 59 classes in 2 namespaces on https://127.0.0.1:" + std::to_string(port(0)));
}

TEST_F(ServiceTls, OtherMachinesMayListenWithoutAWarning) {
    serverKeys_["tls_listen"] = "\"0.0.0.0:0\"";
    start();
}

TEST_F(ServiceTls, ACertificateIsNeeded) {
    TeskProcess process({"serve", "--tls-listen", "127.0.0.1:0"});
    EXPECT_EQ(process.wait(), 1);
    EXPECT_EQ(unusualLines(process.log()),
              Lines{"tesk: an address with TLS needs tls_certificate in [server], or "
                    "--tls-certificate"});
    directory_.write("key.pem", "");
    writeConfiguration();
    TeskProcess withoutKey({"serve", "--config", file("tesk.toml")});
    EXPECT_EQ(withoutKey.wait(), 1);
    EXPECT_EQ(unusualLines(withoutKey.log()),
              Lines{"tesk: " + file("key.pem") + ": there is no key in PEM in it: unsupported"});
}

TEST_F(ServiceTls, TheSubjectOfAClientCertificateIsTheUserInTheAccessLog) {
    const TestCertificate alice("alice b", &authority_);
    directory_.write("alice.pem", alice.certificate());
    directory_.write("alice.key", alice.key());
    serverKeys_["tls_client_ca"] = "\"authority.pem\"";
    logKeys_ = "access = \"access.log\"\n";
    start();
    EXPECT_EQ(curl("--cert '" + file("alice.pem") + "' --key '" + file("alice.key") +
                   "' --output /dev/null --write-out '%{http_code}'"),
              "200");
    EXPECT_EQ(curl("--output /dev/null --write-out '%{http_code}'"), "401");
    EXPECT_TRUE(waitUntil([&] {
        return outputOf("cat '" + file("access.log") + "'")
                   .find(R"(- CN=alice\x20b,O=Example [)") != std::string::npos;
    }));
}

TEST_F(ServiceTls, ARenewedCertificateIsTakenWithoutAReload) {
    start();
    const TestCertificate other("renewed", &authority_);
    writePair(other);
    process().waitForLog("The TLS certificate was read again");
    EXPECT_NE(outputOf("openssl s_client -connect " + address() +
                       " -tls1_3 </dev/null 2>/dev/null | openssl x509 -noout -subject")
                  .find("CN = renewed"),
              std::string::npos);
}

TEST_F(ServiceTls, AReloadTellsOfABrokenPairAndKeepsTheOldOne) {
    start();
    directory_.write("key.pem", "");
    reload();
    EXPECT_EQ(curl("--user alice:secret --output /dev/null --write-out '%{http_code}'"), "200");
    expectedLog_ = {"error HttpFrontEnd: The TLS certificate stays as it was: " + file("key.pem") +
                    ": there is no key in PEM in it: unsupported"};
}

TEST_F(ServiceTls, NoWeakProtocolAndNoWeakCipher) {
    if (outputOf("command -v sslscan").empty())
        GTEST_SKIP() << "there is no sslscan";
    start();
    const std::string found =
        outputOf("sslscan --no-colour --no-check-certificate 127.0.0.1:" + std::to_string(port(1)) +
                 " 2>&1");
    const std::regex line(
        "(SSLv2|SSLv3|TLSv1\\.0|TLSv1\\.1) +enabled.*|(Accepted|Preferred) .*"
        "(CBC|RC4|DES|MD5|NULL|EXP|anon|SHA$|SHA256 +$).*|.*[^n]secure session renegotiation.*|"
        ".*[^t] vulnerable to heartbleed.*");
    std::istringstream lines(found);
    int accepted = 0;
    for (std::string text; std::getline(lines, text);) {
        EXPECT_FALSE(std::regex_match(text, line)) << text;
        const bool isCipher = text.starts_with("Accepted") || text.starts_with("Preferred");
        accepted += isCipher ? 1 : 0;
        EXPECT_TRUE(!isCipher || text.find("TLS_") != std::string::npos ||
                    text.find("ECDHE-") != std::string::npos)
            << text;
    }
    EXPECT_GT(accepted, 3) << found;
    EXPECT_NE(found.find("Session renegotiation not supported"), std::string::npos) << found;
}

}  // namespace
