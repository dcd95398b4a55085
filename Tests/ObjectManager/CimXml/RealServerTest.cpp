// A real server, where it is there, beside the MOF files of the same classes.

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/CimXml/CimServer.h"
#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/RealCimServer.h"

namespace {

using CimXml::ServerError;
using Kind = ServerError::Kind;
using RepositoryPointer = TSKSmrPtr<Repository::ClassRepository>;

RepositoryPointer readFrom(const std::string& url, bool localOnly) {
    CimXml::CimServer server({.url = url, .localOnly = localOnly});
    CimXml::NamespaceContent content = server.read("root/cimv2");
    EXPECT_EQ(diagnosticsOf(content.compilation), "");
    std::vector<Repository::CimNamespace> namespaces;
    namespaces.emplace_back("root/cimv2", std::move(content.compilation.classes),
                            Repository::Options());
    return RepositoryPointer::make(std::move(namespaces));
}

std::string documentOf(Host::ProviderHost& host, const RepositoryPointer& repository,
                       const TSKString& path) {
    host.setRepository(repository);
    const Host::MemoryClient client(host.manager(), {.host = "localhost"});
    const Host::MemoryClient::Response response = client.get(path);
    EXPECT_EQ(response.status(), "200") << path;
    return std::string(response.body());
}

// The server has marks of its own for what is inherited, which differ between the two forms.
TEST(CimXmlRealServer, ClassesOfTheDmtfGiveTheDocumentsThatTheirMofGives) {
    if (cimServerProgram().empty())
        GTEST_SKIP() << kNoCimServer;
    if (cimSchemaFile().empty())
        GTEST_SKIP() << kNoCimSchema;
    const RealCimServer server;
    const RepositoryPointer local = readFrom(server.url(), true);
    const RepositoryPointer whole = readFrom(server.url(), false);
    const RepositoryPointer mof =
        Loading::loadRepository({{.name = "root/cimv2", .paths = {cimSchemaFile()}}}, {}, {})
            .repository;
    ASSERT_TRUE(mof);
    Host::ProviderHost host(mof, TSKSmrPtr<Host::LocalAuthenticator>::make(),
                            INSTALLATION_DIRECTORY);
    std::size_t compared = 0;
    for (const TSKSmrPtr<Repository::CimClass>& cimClass : mof->namespaces().front().classes()) {
        for (const char* const suffix : {".xsd", ".wsdl"}) {
            const TSKString path = "/root/cimv2/" + cimClass->name() + suffix;
            const std::string expected = documentOf(host, mof, path);
            EXPECT_TRUE(documentOf(host, local, path) == expected) << path;
            EXPECT_TRUE(documentOf(host, whole, path) == expected) << path;
            ++compared;
        }
    }
    EXPECT_EQ(compared, 2 * 1438U);
}

// The error of reading the namespace "root", which has few classes.
std::string errorOf(CimXml::ServerOptions options, Kind kind) {
    try {
        CimXml::CimServer server(std::move(options));
        (void)server.read("root");
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

}  // namespace
