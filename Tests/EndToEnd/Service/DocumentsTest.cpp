// The responses of `tesk serve`, header section and body.

#include <filesystem>
#include <gtest/gtest.h>

#include "ObjectManager/Http/EntityTag.h"
#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Http/HasIPv6.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/Support/DirectoryContent.h"

namespace {

class ServiceDocuments : public RunningService {
  protected:
    static std::string staticDescription() {
        return contentOfFile(installation() / TESK_PROVIDERS_DIR "/STSService.wsdl");
    }

    static std::filesystem::path installation() {
        return std::filesystem::path(TESK_PROGRAM).parent_path().parent_path();
    }

    // A copy of what the program needs, without that file.
    [[nodiscard]] std::filesystem::path copyInstallationWithout(const char* file) const {
        const std::filesystem::path copy = directory_ / "installation";
        std::filesystem::create_directories(copy / "bin");
        std::filesystem::copy_file(TESK_PROGRAM, copy / "bin/tesk");
        std::filesystem::copy(installation() / "lib", copy / "lib",
                              std::filesystem::copy_options::recursive |
                                  std::filesystem::copy_options::copy_symlinks);
        EXPECT_TRUE(std::filesystem::remove(copy / file));
        return copy / "bin/tesk";
    }

    void serveInterop() {
        writeModel("interop.mof", "class TST_Two {};\n");
        namespaces_["interop"] = "interop.mof";
    }
};

TEST_F(ServiceDocuments, WsdlIsAnsweredWhole) {
    start();
    EXPECT_EQ(response(get("/root/test/TST_Nothing.wsdl")), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(response(get("/root/test/TST_One.wsdl")), found(expected("OneClass.wsdl")));
}

TEST_F(ServiceDocuments, SchemaIsAnsweredWhole) {
    start();
    EXPECT_EQ(response(get("/root/test/TST_Nothing.xsd")), found(expected("TST_Nothing.xsd")));
    EXPECT_EQ(response(get("/root/test/TST_One.xsd")), found(expected("OneClass.xsd")));
}

TEST_F(ServiceDocuments, NamesMayBeWrittenInAnyCase) {
    start();
    EXPECT_EQ(response(get("/ROOT/Test/tst_NOTHING.wsdl")), found(expected("TST_Nothing.wsdl")));
}

TEST_F(ServiceDocuments, AWsdlExtensionInCapitalsIsOne) {
    start();
    EXPECT_EQ(response(get("/root/test/TST_Nothing.WSDL")), found(expected("TST_Nothing.wsdl")));
}

TEST_F(ServiceDocuments, ASchemaExtensionInCapitalsBelongsToTheNameOfTheClass) {
    start();
    EXPECT_EQ(response(get("/root/test/TST_Nothing.XSD")), kNotFound);
}

TEST_F(ServiceDocuments, APathWithoutNamespaceMeansInterop) {
    serveInterop();
    start();
    const std::string two = response(get("/interop/TST_Two.wsdl"));
    EXPECT_EQ(two.substr(0, 15), "HTTP/1.1 200 OK");
    EXPECT_EQ(response(get("/TST_Two.wsdl")), two);
    EXPECT_EQ(response(get("/TST_Nothing.wsdl")), kNotFound);
}

TEST_F(ServiceDocuments, ANamespaceThatBeginsWithXsdMakesEveryDocumentASchema) {
    namespaces_["root/xsd"] = "test.mof";
    start();
    EXPECT_EQ(response(get("/root/xsd/TST_One.wsdl")), found(expected("OneClass.xsd")));
    EXPECT_EQ(response(get("/root/xsd/TST_One.xsd")), found(expected("OneClass.xsd")));
}

// The path is compared as it is, the namespace without regard to case.
TEST_F(ServiceDocuments, XsdInCapitalsInThePathIsNoMarkOfASchema) {
    namespaces_["root/xsd"] = "test.mof";
    start();
    EXPECT_EQ(response(get("/root/XSD/TST_One.wsdl")).substr(0, 15), "HTTP/1.1 200 OK");
    EXPECT_NE(response(get("/root/XSD/TST_One.wsdl")), found(expected("OneClass.xsd")));
}

TEST_F(ServiceDocuments, TheStaticDescriptionIsAnsweredAnywhereInTheProvidersPaths) {
    serveInterop();
    start();
    const std::string expectedResponse = found(staticDescription());
    for (const char* const path :
         {"/STSService.wsdl", "/interop/STSService.wsdl", "/root/test/STSService.wsdl",
          "/root/test/a/b.xsd/STSService.wsdl", "/root/test/OtherSTSService.wsdl"})
        EXPECT_EQ(response(get(path)), expectedResponse) << path;
    EXPECT_EQ(response(get("/root/test/stsservice.wsdl")), kNotFound);
}

TEST_F(ServiceDocuments, AMissingStaticDescriptionIsEmpty) {
    serveInterop();
    writeConfiguration();
    startWith({"serve", "--config", directory_ / "tesk.toml"},
              copyInstallationWithout(TESK_PROVIDERS_DIR "/STSService.wsdl"));
    EXPECT_EQ(response(get("/STSService.wsdl")), found(""));
    EXPECT_EQ(response(get("/root/test/TST_Nothing.wsdl")), found(expected("TST_Nothing.wsdl")));
}

TEST_F(ServiceDocuments, WhatIsNotThereIsNotFound) {
    start();
    for (const char* const path :
         {"/root/test/TST_None.wsdl", "/root/test/TST_None.xsd", "/root/test/TST_Nothing",
          "/root/test", "/root/test/", "/root/test/TST_Nothing.wsdl/", "/root/test/.wsdl",
          "/root/test/TST_Nothing.wsdl.wsdl.xml"})
        EXPECT_EQ(response(get(path)), kNotFound) << path;
}

TEST_F(ServiceDocuments, ANamespaceBelowOneThatIsServedIsNotFoundAndLogged) {
    expectedLog_ = {"error WsdlAdapter::processInput: Exception while writing response. err=3"};
    start();
    EXPECT_EQ(response(get("/root/test/deeper/TST_Nothing.wsdl")), kNotFound);
}

TEST_F(ServiceDocuments, PathsOfNobodyAreAnsweredByTheFrontEnd) {
    start();
    for (const char* const path :
         {"/root", "/root/other/TST_Nothing.wsdl", "/root/testing/TST_Nothing.wsdl",
          "/TST_Nothing.wsdl", "/other/STSService.wsdl"})
        EXPECT_EQ(response(get(path)), refusal("404 Not Found", "There is nothing at this path."))
            << path;
}

TEST_F(ServiceDocuments, TheAddressesInADocumentAreThoseThatTheClientUses) {
    start();
    const std::string fields = "host: Server.example\r\n" + std::string(kAlice);
    EXPECT_EQ(response(request("GET /root/test/TST_Nothing.wsdl HTTP/1.1", fields)),
              found(expected("TST_Nothing.wsdl", "Server.example")));
    EXPECT_EQ(response(request("GET http://other.example:80/root/test/TST_Nothing.wsdl HTTP/1.1",
                               fields)),
              found(expected("TST_Nothing.wsdl", "other.example:80")));
}

TEST_F(ServiceDocuments, AClientWithoutHostFieldGetsItsOwnAddress) {
    start();
    EXPECT_EQ(response(request("GET /root/test/TST_Nothing.wsdl HTTP/1.0", kAlice)),
              found(expected("TST_Nothing.wsdl", "127.0.0.1")));
}

TEST_F(ServiceDocuments, AClientOfIPv6WithoutHostFieldGetsItsOwnAddressInBrackets) {
    if (!hasIPv6())
        GTEST_SKIP() << "this machine has no IPv6";
    listen_ = {"127.0.0.1:0", "[::1]:0"};
    start();
    const Client client("::1", port(1));
    EXPECT_TRUE(client.send(request("GET /root/test/TST_Nothing.wsdl HTTP/1.0", kAlice)));
    EXPECT_EQ(withoutDate(client.readAll()), found(expected("TST_Nothing.wsdl", "[::1]")));
    EXPECT_EQ(response(get("/root/test/TST_Nothing.wsdl")), found(expected("TST_Nothing.wsdl")));
}

TEST_F(ServiceDocuments, HeadGetsTheHeaderSectionAlone) {
    start();
    const std::string fields = "Host: " + std::string(kHost) + "\r\n" + kAlice;
    const std::string whole = found(expected("TST_Nothing.wsdl"));
    EXPECT_EQ(response(request("HEAD /root/test/TST_Nothing.wsdl HTTP/1.1", fields)),
              whole.substr(0, whole.find("\r\n\r\n") + 4));
    EXPECT_EQ(response(request("HEAD /root/test/TST_None.wsdl HTTP/1.1", fields)), kNotFound);
}

TEST_F(ServiceDocuments, ABodyThatAClientSendsIsThrownAway) {
    start();
    const std::string body(200'000, 'b');
    const std::string head = request("GET /root/test/TST_Nothing.wsdl HTTP/1.1",
                                     "Host: " + std::string(kHost) + "\r\n" + kAlice +
                                         "Content-Length: " + std::to_string(body.size()) + "\r\n");
    const Client client = sending(head + body);
    EXPECT_EQ(withoutDate(client.readAll()), found(expected("TST_Nothing.wsdl")));
    EXPECT_FALSE(client.wasReset());
}

TEST_F(ServiceDocuments, OtherMethodsAreRefused) {
    start();
    const std::string fields = "Host: " + std::string(kHost) + "\r\n" + kAlice;
    const auto asks = [&](const std::string& line) { return response(request(line, fields)); };
    const std::string options =
        "HTTP/1.1 204 No Content\r\nConnection: close\r\nAllow: GET, HEAD, OPTIONS\r\n\r\n";
    EXPECT_EQ(asks("POST /root/test/TST_Nothing.wsdl HTTP/1.1"), kNotAllowed);
    EXPECT_EQ(asks("FOO /root/test/TST_Nothing.wsdl HTTP/1.1"),
              refusal("501 Not Implemented", "This method is not implemented."));
    EXPECT_EQ(asks("OPTIONS /root/test/TST_Nothing.wsdl HTTP/1.1"), options);
    EXPECT_EQ(asks("OPTIONS * HTTP/1.1"), options);
}

TEST_F(ServiceDocuments, AClientThatHasADocumentDoesNotGetItAgain) {
    start();
    const std::string document = expected("TST_Nothing.wsdl");
    const std::string tag = Http::entityTag(document);
    const auto asks = [&](const std::string& condition) {
        return response(
            request("GET /root/test/TST_Nothing.wsdl HTTP/1.1",
                    "Host: " + std::string(kHost) + "\r\n" + kAlice + condition + "\r\n"));
    };
    EXPECT_EQ(asks("If-None-Match: " + tag),
              "HTTP/1.1 304 Not Modified\r\nConnection: close\r\nETag: " + tag + "\r\n\r\n");
    EXPECT_EQ(asks("If-None-Match: \"other\""), found(document));
    EXPECT_EQ(
        asks("If-Match: \"other\""),
        refusal("412 Precondition Failed", "The document is not the one that If-Match names."));
}

TEST_F(ServiceDocuments, AStrangerCannotTellWhichNamespacesThereAre) {
    start();
    for (const char* const path : {"/root/test/TST_Nothing.wsdl", "/root/test/TST_None.wsdl",
                                   "/root/none/TST_Nothing.wsdl", "/root/test", "/none"})
        EXPECT_EQ(response("GET " + std::string(path) + " HTTP/1.1\r\nHost: a\r\n\r\n"), kChallenge)
            << path;
}

TEST_F(ServiceDocuments, HostileRequestsAreRefusedAndOthersAreServed) {
    start();
    const std::string fields = "Host: " + std::string(kHost) + "\r\n" + kAlice;
    const auto asks = [&](const std::string& line) { return response(request(line, fields)); };
    EXPECT_EQ(asks("GET /root/test/../test/TST_Nothing.wsdl HTTP/1.1"),
              refusal("400 Bad Request", "The path contains a segment of one or two dots."));
    EXPECT_EQ(asks("GET /root%2ftest/TST_Nothing.wsdl HTTP/1.1"),
              refusal("400 Bad Request",
                      "A percent-encoding in the path stands for a slash or a control character."));
    EXPECT_EQ(
        asks("GET /root/test/TST_Nothing.wsdl HTTP/2.0"),
        refusal("505 HTTP Version Not Supported", "This server supports HTTP/1.0 and HTTP/1.1."));
    EXPECT_EQ(response(request("GET /root/test/TST_Nothing.wsdl HTTP/1.1", kAlice)),
              refusal("400 Bad Request", "The Host field is missing."));
    EXPECT_EQ(response(request("GET /root/test/TST_Nothing.wsdl HTTP/1.1",
                               "Host: a\"><script>\r\n" + std::string(kAlice))),
              refusal("400 Bad Request", "The Host field is not a host with an optional port."));
    EXPECT_EQ(response(request("GET /root/test/TST_Nothing.wsdl HTTP/1.1",
                               "Host: a&b\r\n" + std::string(kAlice))),
              refusal("400 Bad Request", "The Host field is not a host with an optional port."));
    EXPECT_EQ(response(request("GET http://a&b/root/test/TST_Nothing.wsdl HTTP/1.1",
                               "Host: a\r\n" + std::string(kAlice))),
              refusal("400 Bad Request",
                      "The request target does not name a host with an optional port."));
    EXPECT_EQ(response(std::string("\x16\x03\x01\x02\x00\x01\x00", 7)),
              refusal("400 Bad Request", "The header section contains a control character."));
    EXPECT_EQ(response(get("/root/test/TST_Nothing.wsdl")), found(expected("TST_Nothing.wsdl")));
}

TEST_F(ServiceDocuments, NameThePublishedAddressWhateverTheHost) {
    serverKeys_["published_address"] = "\"http://cim.example.org:1\"";
    start();
    EXPECT_EQ(response(get("/root/test/TST_Nothing.wsdl")),
              found(expected("TST_Nothing.wsdl", "cim.example.org:1")));
}

}  // namespace
