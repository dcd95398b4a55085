// A real server, where it is there.

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/CimXml/CimServer.h"
#include "Tests/Support/CertificateAuthority.h"
#include "Tests/Support/KillingRelay.h"
#include "Tests/Support/RealCimServer.h"
#include "Tests/Support/TlsFront.h"

namespace {

using CimXml::ServerError;
using Kind = ServerError::Kind;

// The error of reading a namespace; "root" has few classes.
std::string errorOf(CimXml::ServerOptions options, Kind kind,
                    const std::string& nameSpace = "root") {
    try {
        CimXml::CimServer server(std::move(options));
        (void)server.read(nameSpace);
        return "none";
    } catch (const ServerError& error) {
        EXPECT_EQ(error.kind(), kind);
        return error.getMessage().data();
    }
}

TEST(CimXmlRealServer, TellsNamespacesAndClassesToWhomItKnows) {
    if (cimServerProgram().empty())
        GTEST_SKIP() << kNoCimServer;
    const RealCimServer server(true);
    const std::string where = server.url() + ": EnumerateQualifiers of root: ";
    const std::string refusal = where + "the user or the password is not accepted (401)";
    EXPECT_EQ(errorOf({.url = server.url()}, Kind::kUnauthorized), refusal);
    EXPECT_EQ(
        errorOf({.url = server.url(), .user = "root", .password = "wrong"}, Kind::kUnauthorized),
        refusal);
    const CimXml::ServerOptions options = {
        .url = server.url(), .user = "root", .password = "cim-secret"};
    EXPECT_EQ(errorOf(options, Kind::kCimError), "none");
    CimXml::CimServer client(options);
    EXPECT_EQ(
        client.namespaces(),
        (std::vector<std::string>{"root", "root/cimv2", "root/PG_Internal", "root/PG_InterOp"}));
    const CimXml::NamespaceContent content = client.read("root/PG_InterOp");
    EXPECT_FALSE(content.compilation.classes.empty());
    EXPECT_EQ(client.read("root/PG_InterOp").digest, content.digest);
    EXPECT_NE(client.read("root").digest, content.digest);
    try {
        (void)client.read("root/none");
        FAIL();
    } catch (const ServerError& error) {
        EXPECT_EQ(error.kind(), Kind::kCimError);
        EXPECT_EQ(error.getErrorCode(), 3);
    }
}

TEST(CimXmlRealServer, ProvesWhoItIsAndKnowsItsClientsBehindTls) {
    if (cimServerProgram().empty())
        GTEST_SKIP() << kNoCimServer;
    CertificateAuthority authority;
    CertificateAuthority unknown;
    const CertificateAuthority::Certificate right = authority.issue("localhost");
    const CertificateAuthority::Certificate client = authority.issue("client");
    const CertificateAuthority::Certificate stranger = unknown.issue("client");
    const RealCimServer server(true);
    const TlsFront front(
        server.port(),
        {{.certificate = right.both},
         {.certificate = authority.issue("cim.example.com").both},
         {.certificate = authority.issue("localhost", CertificateAuthority::Validity::kOver).both},
         {.certificate = unknown.issue("localhost").both},
         {.certificate = right.both, .clientAuthority = authority.file()}});
    const auto optionsFor = [&](std::size_t door) {
        return CimXml::ServerOptions{.url = front.url(door),
                                     .user = "root",
                                     .password = "cim-secret",
                                     .authoritiesFile = authority.file()};
    };
    const auto expectError = [&](const CimXml::ServerOptions& options, const std::string& reason) {
        EXPECT_EQ(errorOf(options, Kind::kTls),
                  options.url + ": EnumerateQualifiers of root: " + reason);
    };

    EXPECT_EQ(errorOf(optionsFor(0), Kind::kTls), "none");
    CimXml::ServerOptions options = optionsFor(0);
    options.authoritiesFile.clear();
    expectError(options, "SSL certificate problem: unable to get local issuer certificate");
    options = optionsFor(0);
    options.password = "wrong";
    EXPECT_EQ(errorOf(options, Kind::kUnauthorized),
              options.url +
                  ": EnumerateQualifiers of root: the user or the password is not "
                  "accepted (401)");
    expectError(optionsFor(1),
                "SSL: no alternative certificate subject name matches target host name "
                "'localhost'");
    expectError(optionsFor(2), "SSL certificate problem: certificate has expired");
    expectError(optionsFor(3), "SSL certificate problem: unable to get local issuer certificate");
    options = optionsFor(3);
    options.verifiesCertificate = false;
    EXPECT_EQ(errorOf(options, Kind::kTls), "none");

    options = optionsFor(4);
    EXPECT_NE(errorOf(options, Kind::kTls).find("certificate required"), std::string::npos);
    options.certificateFile = stranger.certificate;
    options.keyFile = stranger.key;
    EXPECT_NE(errorOf(options, Kind::kTls).find("unknown ca"), std::string::npos);
    options.certificateFile = client.certificate;
    options.keyFile = client.key;
    EXPECT_EQ(errorOf(options, Kind::kTls), "none");
    CimXml::CimServer known(options);
    EXPECT_EQ(known.namespaces().size(), 4U);
}

TEST(CimXmlRealServer, AServerThatIsKilledWhileItSendsIsAnError) {
    if (cimServerProgram().empty())
        GTEST_SKIP() << kNoCimServer;
    RealCimServer server;
    KillingRelay relay(server);
    relay.killAmidClasses();
    const std::string error = errorOf({.url = relay.url()}, Kind::kConnection, "root/PG_InterOp");
    EXPECT_TRUE(relay.hasKilled());
    EXPECT_TRUE(error.starts_with(relay.url() +
                                  ": EnumerateClasses of root/PG_InterOp: transfer closed with "))
        << error;
    EXPECT_TRUE(error.ends_with(" bytes remaining to read")) << error;
    const std::string gone = errorOf({.url = server.url()}, Kind::kConnection);
    EXPECT_NE(gone.find(": Failed to connect to 127.0.0.1 port "), std::string::npos) << gone;
    server.restart();
    EXPECT_EQ(errorOf({.url = server.url()}, Kind::kConnection), "none");
}

}  // namespace
