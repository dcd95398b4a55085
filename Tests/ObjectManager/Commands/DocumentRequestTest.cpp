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

// What comes of a request for "A.xsd" of a namespace: the document, or "failure: " and the reason.
std::string request(FunctionProvider::Function answer, const char* nameSpace = "test") {
    FunctionProvider provider(std::move(answer));
    TeskProviderPluginManager manager;
    provider.addTo(manager);
    const Host::MemoryClient client(manager, "host");
    const auto repository = makeNamedClasses({{nameSpace, {}}});
    const Commands::RequestedDocument document =
        Commands::requestDocument(client, repository->namespaces().front(), "A.xsd");
    return document.answer ? std::string(document.answer->body()) : "failure: " + document.failure;
}

std::string requestAnsweredWith(const char* response) {
    return request([=](TSKHTTPRequest&, TSKGenericHTTPOStream& ostr) { writeTo(ostr, response); });
}

TEST(DocumentRequest, ADocumentIsTheBodyOfTheAnswer) {
    EXPECT_EQ(requestAnsweredWith("HTTP/1.1 200 OK\r\n\r\n<a>\r\n\r\n</a>"), "<a>\r\n\r\n</a>");
}

TEST(DocumentRequest, TheProviderIsAskedForThePathOfTheDocument) {
    EXPECT_EQ(request(
                  [](const TSKHTTPRequest& asked, TSKGenericHTTPOStream& ostr) {
                      writeTo(ostr, std::string("HTTP/1.1 200 OK\r\n\r\n") + asked.getUri().data());
                  },
                  "test/Deep"),
              "/test/Deep/A.xsd");
}

TEST(DocumentRequest, AnyOtherAnswerIsAFailure) {
    EXPECT_EQ(requestAnsweredWith("HTTP/1.1 404 File Not Found\r\n\r\n<a/>"),
              "failure: A.xsd is answered with the status 404");
    EXPECT_EQ(requestAnsweredWith("HTTP/1.1 200 OK\r\n\r\n"),
              "failure: A.xsd is answered with nothing");
    EXPECT_EQ(requestAnsweredWith("<a/>"),
              "failure: A.xsd is answered with what is no HTTP response");
    EXPECT_EQ(requestAnsweredWith(""), "failure: A.xsd is answered with what is no HTTP response");
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
