#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>

#include "ObjectManager/Commands/DocumentRequest.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/ObjectManager/Commands/NamedClasses.h"
#include "Tests/ObjectManager/Http/FunctionProvider.h"

namespace {

// Requests "A.xsd" of a namespace; returns the document, or "failure: " and the reason.
std::string request(FunctionProvider::Function response, const char* nameSpace = "test") {
    FunctionProvider provider(std::move(response));
    TeskProviderPluginManager manager;
    provider.addTo(manager);
    const Host::MemoryClient client(manager, {.host = "host"});
    const auto repository = makeNamedClasses({{nameSpace, {}}});
    const Commands::RequestedDocument document =
        Commands::requestDocument(client, repository->namespaces().front(), "A.xsd");
    return document.response ? std::string(document.response->body())
                             : "failure: " + document.failure;
}

std::string requestWithResponse(const char* response) {
    return request([=](TSKHTTPRequest&, TSKGenericHTTPOStream& ostr) { writeTo(ostr, response); });
}

TEST(DocumentRequest, ADocumentIsTheBodyOfTheResponse) {
    EXPECT_EQ(requestWithResponse("HTTP/1.1 200 OK\r\n\r\n<a>\r\n\r\n</a>"), "<a>\r\n\r\n</a>");
}

TEST(DocumentRequest, TheProviderIsAskedForThePathOfTheDocument) {
    EXPECT_EQ(request(
                  [](const TSKHTTPRequest& asked, TSKGenericHTTPOStream& ostr) {
                      writeTo(ostr, std::string("HTTP/1.1 200 OK\r\n\r\n") + asked.getUri().data());
                  },
                  "test/Deep"),
              "/test/Deep/A.xsd");
}

TEST(DocumentRequest, AnyOtherResponseIsAFailure) {
    EXPECT_EQ(requestWithResponse("HTTP/1.1 404 File Not Found\r\n\r\n<a/>"),
              "failure: A.xsd: the response has the status 404");
    EXPECT_EQ(requestWithResponse("HTTP/1.1 200 OK\r\n\r\n"),
              "failure: A.xsd: the response has no body");
    EXPECT_EQ(requestWithResponse("<a/>"), "failure: A.xsd: the response is not HTTP");
    EXPECT_EQ(requestWithResponse(""), "failure: A.xsd: the response is not HTTP");
}

TEST(DocumentRequest, WhatIsThrownIsAFailure) {
    EXPECT_EQ(request([](TSKHTTPRequest&, TSKGenericHTTPOStream&) {
                  throw TeskBaseException("here", "not now", CIM_ERR_FAILED);
              }),
              "failure: A.xsd cannot be made: not now");
    EXPECT_EQ(request([](TSKHTTPRequest&, TSKGenericHTTPOStream&) {
                  throw std::runtime_error("out of paper");
              }),
              "failure: A.xsd cannot be made: out of paper");
}

TEST(DocumentRequest, ANamespaceThatNoProviderServesIsAFailure) {
    EXPECT_EQ(request(nullptr, "other"),
              "failure: A.xsd cannot be made: no provider serves /other/A.xsd");
}

}  // namespace
