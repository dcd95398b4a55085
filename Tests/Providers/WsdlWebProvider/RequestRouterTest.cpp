#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/ProviderFramework/URMAConfigManager.h"
#include "Platform/Util/TeskBaseException.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Providers/WsdlWebProvider/WsdlWebProvider.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/TestHost.h"
#include "Tests/Support/Threads.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kXmlDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string found(const std::string& body) {
    return "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
           std::to_string(body.size()) + "\r\nContent-Type: text/xml\r\n\r\n" + body;
}

constexpr const char* kNotFound =
    "HTTP/1.1 404 File Not Found\r\nConnection: close\r\nContent-Length: 0\r\n\r\n";
constexpr const char* kInternalServerError =
    "HTTP/1.1 500 Internal Server Error\r\nConnection: close\r\nContent-Length: 0\r\n\r\n";

constexpr const char* kStaticFailure =
    "WsdlAdapter::processInput|1|2|Exception while reading from providers/STSService.wsdl";

Lines operator+(Lines first, const Lines& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// The log of one request: its begin, what happened, its end.
Lines logOf(const Lines& between = {}) {
    return Lines{"WsdlAdapter::processInput|4|2|Request received"} + between +
           Lines{"WsdlAdapter::processInput|4|2|Request processing completed normally"};
}

ModelClass fooClass() {
    return ModelClass("CIM_Foo")
        .qualifier("Description", "Holds foo.")
        .property(ModelProperty("Name", "string").qualifier("Key").qualifier("MaxLen", "64"))
        .property(ModelProperty("Kind", "uint8").qualifier("ValueMap", {"1", "2"}))
        .property(ModelProperty("States", "uint16[]").qualifier("ValueMap", {"2", "4..5", ".."}))
        .method(ModelMethod("Stop", "uint32")
                    .qualifier("Description", "Stops.")
                    .parameter(ModelParameter("Force", "boolean").qualifier("In"))
                    .parameter(ModelParameter("Job", "CIM_Job ref").qualifier("Out")));
}

// A repository whose lookup throws.
template <typename Exception>
class ThrowingRepository : public ITeskRepository {
  public:
    explicit ThrowingRepository(const Exception& exception) : exception_(exception) {}

    [[nodiscard]] TSKSmrPtr<ITeskClass> getClass(const TSKString& /*nameSpace*/,
                                                 const TSKString& /*className*/) const override {
        throw Exception(exception_);
    }

  private:
    Exception exception_;
};

class RequestRouterTest : public testing::Test {
  protected:
    RequestRouterTest() {
        host_.repository().add("root/cimv2", fooClass());
        host_.repository().add("interop", fooClass());
    }

    // What is written in response to a request.
    static std::string response(const char* path, const char* hostField = "example.org:5985") {
        TSKHTTPRequest request("GET", path, "HTTP/1.1");
        if (hostField != nullptr)
            request.setHeaderField("Host", hostField, false);
        RecordedOutput output;
        process(request, output);
        return output.text;
    }

    // The documents as they are made without a request.
    TSKSmrPtr<WsdlUtil::ClassList> foo() {
        return TSKSmrPtr<WsdlUtil::ClassList>::make(
            WsdlUtil::ClassList{host_.repository().getClass("interop", "CIM_Foo")});
    }
    std::string wsdl(const char* url, const char* nameSpace) {
        std::stringstream document;
        document << kXmlDeclaration;
        WsdlUtil::streamDefinitions(document, url, nameSpace, foo());
        return document.str();
    }
    // That of a single class names no address.
    std::string schema() {
        std::stringstream document;
        document << kXmlDeclaration;
        WsdlUtil::streamXsdDefinitions(document, "", foo());
        return document.str();
    }

    template <typename Exception>
    void makeLookupsThrow(const Exception& exception) {
        host_.manager().setRepository(TSKSmrPtr<ThrowingRepository<Exception>>::make(exception));
    }

    TestHost host_;
    LogRecording log_;
};

TEST_F(RequestRouterTest, AnswersWithTheWsdlDocumentOfAClass) {
    EXPECT_EQ(response("/root/cimv2/CIM_Foo.wsdl"),
              found(wsdl("http://example.org:5985/", "root/cimv2")));
    EXPECT_EQ(log_.lines(), logOf());
}

TEST_F(RequestRouterTest, TheDocumentNamesTheServiceByTheHostField) {
    EXPECT_NE(response("/root/cimv2/CIM_Foo.wsdl")
                  .find("<soap:address location=\"http://example.org:5985/wsman\"/>"),
              std::string::npos);
}

TEST_F(RequestRouterTest, AnswersWithTheSchemaOfAClass) {
    EXPECT_EQ(response("/root/cimv2/CIM_Foo.xsd"), found(schema()));
    EXPECT_EQ(log_.lines(), logOf());
}

TEST_F(RequestRouterTest, APathWithoutANamespaceMeansInterop) {
    EXPECT_EQ(response("/CIM_Foo.wsdl"), found(wsdl("http://example.org:5985/", "interop")));
}

TEST_F(RequestRouterTest, ANamespaceOfASlashIsNotAnEmptyOne) {
    EXPECT_EQ(response("///CIM_Foo.wsdl"), kNotFound);
}

TEST_F(RequestRouterTest, XsdInCapitalsIsAWsdlRequestForAClassOfThatName) {
    EXPECT_EQ(response("/root/cimv2/CIM_Foo.XSD"), kNotFound);
    host_.repository().add("root/cimv2", ModelClass("cim_foo.xsd"));
    const std::string text = response("/root/cimv2/CIM_Foo.XSD");
    EXPECT_NE(text.find("<wsdl:definitions\n  name=\"cim_foo.xsd_WSDL\""), std::string::npos);
}

TEST_F(RequestRouterTest, XsdInThePathAsksForTheSchema) {
    host_.repository().add("root/xsd", fooClass());
    EXPECT_EQ(response("/root/xsd/CIM_Foo.wsdl"), found(schema()));
}

TEST_F(RequestRouterTest, XsdAtTheBeginningOfASegmentAsksForTheSchema) {
    host_.repository().add("root/xsdfiles", fooClass());
    EXPECT_EQ(response("/root/xsdfiles/CIM_Foo.wsdl"), found(schema()));
}

TEST_F(RequestRouterTest, XsdWithinASegmentAsksForTheWsdlDocument) {
    host_.repository().add("root/myxsd", fooClass());
    EXPECT_EQ(response("/root/myxsd/CIM_Foo.wsdl"),
              found(wsdl("http://example.org:5985/", "root/myxsd")));
}

TEST_F(RequestRouterTest, XsdInCapitalsInThePathAsksForTheWsdlDocument) {
    host_.repository().add("root/xsd", fooClass());
    EXPECT_EQ(response("/root/XSD/CIM_Foo.wsdl"),
              found(wsdl("http://example.org:5985/", "root/xsd")));
}

TEST_F(RequestRouterTest, WithoutAHostFieldTheDocumentNamesTheClientsAddress) {
    EXPECT_EQ(response("/CIM_Foo.wsdl", nullptr), found(wsdl("http://192.0.2.7/", "interop")));
    EXPECT_EQ(response("/CIM_Foo.xsd", nullptr), found(schema()));
}

TEST_F(RequestRouterTest, AHostFieldIsTakenAsItIs) {
    EXPECT_EQ(response("/CIM_Foo.wsdl", " Example.ORG "),
              found(wsdl("http:// Example.ORG /", "interop")));
    EXPECT_EQ(response("/CIM_Foo.wsdl", ""), found(wsdl("http:///", "interop")));
}

TEST_F(RequestRouterTest, AnswersInTheProtocolOfTheRequest) {
    TSKHTTPRequest request("GET", "/nothing", "HTTP/1.0");
    RecordedOutput output;
    process(request, output);
    EXPECT_EQ(output.text,
              "HTTP/1.0 404 File Not Found\r\nConnection: close\r\nContent-Length: 0\r\n\r\n");
}

TEST_F(RequestRouterTest, ServesTheStaticDescriptionAsItIs) {
    using std::string_literals::operator""s;
    const std::string content = "no XML at all: \0\r\n\xff"s;
    host_.writeProvidersFile("STSService.wsdl", content);
    EXPECT_EQ(response("/STSService.wsdl"), found(content));
    EXPECT_EQ(response("/any/name/space/STSService.wsdl"), found(content));
    EXPECT_EQ(response("/root/cimv2/MySTSService.wsdl"), found(content));
    EXPECT_EQ(response("STSService.wsdl"), found(content));
}

TEST_F(RequestRouterTest, TheStaticDescriptionNeedsNeitherManagerNorRepository) {
    host_.removeManager();
    host_.writeProvidersFile("STSService.wsdl", "static");
    EXPECT_EQ(response("/interop/STSService.wsdl"), found("static"));
}

TEST_F(RequestRouterTest, TheStaticDescriptionIsFoundByItsExactNameAtTheEndOnly) {
    host_.writeProvidersFile("STSService.wsdl", "static");
    EXPECT_EQ(response("/interop/STSService.wsdl/CIM_Bar.wsdl"), kNotFound);
    EXPECT_EQ(response("/interop/stsservice.wsdl"), kNotFound);
    EXPECT_EQ(response("/interop/STSService.xsd"), kNotFound);
}

TEST_F(RequestRouterTest, AMissingStaticDescriptionIsAnEmptyDocument) {
    EXPECT_EQ(response("/interop/STSService.wsdl"), found(""));
    EXPECT_EQ(log_.lines(), logOf());
}

TEST_F(RequestRouterTest, AStaticDescriptionThatCannotBeReadIsAnEmptyDocument) {
    host_.makeProvidersDirectory("STSService.wsdl");
    EXPECT_EQ(response("/interop/STSService.wsdl"), found(""));
    EXPECT_EQ(log_.lines(), logOf());
}

TEST_F(RequestRouterTest, AnExceptionWhileReadingTheStaticDescriptionIsLogged) {
    host_.removeInstallation();
    EXPECT_EQ(response("/interop/STSService.wsdl"), kNotFound);
    EXPECT_EQ(log_.lines(), logOf({kStaticFailure}));
}

TEST_F(RequestRouterTest, AnExceptionOfAnyTypeWhileReadingTheStaticDescriptionIsLogged) {
    class ThrowingInstallation : public ITeskInstallation {
      public:
        [[nodiscard]] TSKString getInstallationDirectory() const override { throw 42; }
    };
    URMAConfigManager::setInstallation(TSKSmrPtr<ThrowingInstallation>::make());
    EXPECT_EQ(response("/interop/STSService.wsdl"), kNotFound);
    EXPECT_EQ(log_.lines(), logOf({kStaticFailure}));
}

TEST_F(RequestRouterTest, AnUnparseablePathIsNotFound) {
    for (const char* path : {"/", "", "/root/cimv2", "/root/cimv2/CIM_Foo", "CIM_Foo.wsdl",
                             "/root/cimv2/CIM_Foo.wsdl/", "/root/cimv2/CIM_Foo.html"})
        EXPECT_EQ(response(path), kNotFound) << path;
}

TEST_F(RequestRouterTest, AnUnparseablePathIsNotFoundEvenWithoutAManager) {
    host_.removeManager();
    EXPECT_EQ(response("/root/cimv2"), kNotFound);
    EXPECT_EQ(log_.lines(), logOf());
}

TEST_F(RequestRouterTest, AMissingManagerIsAnInternalServerError) {
    host_.removeManager();
    EXPECT_EQ(response("/root/cimv2/CIM_Foo.wsdl"), kInternalServerError);
    EXPECT_EQ(log_.lines(), logOf());
}

TEST_F(RequestRouterTest, AMissingRepositoryIsNotFound) {
    host_.removeRepository();
    EXPECT_EQ(response("/root/cimv2/CIM_Foo.wsdl"), kNotFound);
    EXPECT_EQ(log_.lines(), logOf());
}

TEST_F(RequestRouterTest, AnUnknownClassIsNotFound) {
    EXPECT_EQ(response("/root/cimv2/CIM_Bar.wsdl"), kNotFound);
    EXPECT_EQ(response("/root/cimv2/.xsd"), kNotFound);
    EXPECT_EQ(log_.lines(), logOf() + logOf());
}

TEST_F(RequestRouterTest, AFailedLookupIsNotFoundAndLoggedWithItsCode) {
    EXPECT_EQ(response("/root/unknown/CIM_Foo.wsdl"), kNotFound);
    EXPECT_EQ(log_.lines(),
              logOf({"WsdlAdapter::processInput|1|2|Exception while writing response. err=3"}));
}

TEST_F(RequestRouterTest, TheCodeOfAFailedLookupMayBeNegative) {
    makeLookupsThrow(TeskBaseException("lookup", "failed", -17));
    EXPECT_EQ(response("/root/cimv2/CIM_Foo.xsd"), kNotFound);
    EXPECT_EQ(log_.lines(),
              logOf({"WsdlAdapter::processInput|1|2|Exception while writing response. err=-17"}));
}

TEST_F(RequestRouterTest, AnyOtherExceptionOfALookupPasses) {
    TSKHTTPRequest request("GET", "/root/cimv2/CIM_Foo.wsdl", "HTTP/1.1");
    RecordedOutput output;
    makeLookupsThrow(std::runtime_error("lookup"));
    EXPECT_THROW(process(request, output), std::runtime_error);
    makeLookupsThrow(std::bad_alloc());
    EXPECT_THROW(process(request, output), std::bad_alloc);
    EXPECT_EQ(output.text, "");
    EXPECT_EQ(log_.lines(), Lines(2, "WsdlAdapter::processInput|4|2|Request received"));
}

TEST_F(RequestRouterTest, AHostFieldWithALineBreakNeverReachesTheHead) {
    EXPECT_EQ(response("/CIM_Foo.wsdl", "evil\r\nX-Injected: 1"),
              found(wsdl("http://evil\r\nX-Injected: 1/", "interop")));
}

TEST_F(RequestRouterTest, HostilePathsAreNotFound) {
    const std::string longName(100'000, 'a');
    for (const std::string& path :
         Lines{"/" + longName + ".wsdl", "/" + std::string(100'000, '/') + ".xsd",
               "/root/cimv2/%00.wsdl", "/root/cimv2/../../../etc/passwd.wsdl",
               "/\r\nX-Injected: 1/CIM_Foo.wsdl", "/root/cimv2/\xff\xfe.xsd"})
        EXPECT_EQ(response(path.c_str()), kNotFound) << path.substr(0, 100);
}

// Every call into the class model, the repository and the stream fails in turn.
TEST_F(RequestRouterTest, AFailingHostObjectLeavesTheResponseUnwritten) {
    for (const char* path : {"/root/cimv2/CIM_Foo.wsdl", "/root/cimv2/CIM_Foo.xsd"}) {
        const std::string whole = response(path, nullptr);
        const std::string head = whole.substr(0, whole.find("\r\n\r\n") + 4);
        std::unique_ptr<RecordedOutput> output;
        const std::size_t failures = HostCalls::failEach(
            [&] {
                TSKHTTPRequest request("GET", path, "HTTP/1.1");
                output = std::make_unique<RecordedOutput>();
                process(request, *output);
            },
            [&](const std::string& operation) {
                const bool bodyFailed = operation == "TSKGenericHTTPOStream::write";
                EXPECT_TRUE(output->text.empty() || (bodyFailed && output->text == head))
                    << operation;
            });
        EXPECT_GT(failures, 100U);
        EXPECT_EQ(output->text, whole);
    }
}

// A stream swallows exceptions unless it is told not to; a document cut short would follow.
TEST_F(RequestRouterTest, NoDocumentIsSentInPartWhenMemoryRunsOut) {
    host_.writeProvidersFile("STSService.wsdl", std::string(5000, 's'));
    const LogRecording quiet(TeskTraceLog::SeverityOff);
    for (const char* path :
         {"/root/cimv2/CIM_Foo.wsdl", "/root/cimv2/CIM_Foo.xsd", "/STSService.wsdl"}) {
        const std::string whole = response(path);
        const std::string head = whole.substr(0, whole.find("\r\n\r\n") + 4);
        std::string text;
        const std::size_t failures = AllocationProbe::failEachAllocation(
            [&] {
                TSKHTTPRequest request("GET", path, "HTTP/1.1");
                request.setHeaderField("Host", "example.org:5985", false);
                RecordedOutput output;
                text.clear();
                try {
                    process(request, output);
                } catch (const std::bad_alloc&) {
                }
                text = std::move(output.text);
            },
            [&] {
                // Only for the file does an exception become a response.
                const bool mayBeMissing = path == std::string("/STSService.wsdl");
                EXPECT_TRUE(text.empty() || text == head || text == whole ||
                            (mayBeMissing && text == kNotFound));
            });
        EXPECT_GT(failures, 5U) << path;
        EXPECT_EQ(text, whole);
    }
}

TEST_F(RequestRouterTest, ThreadsAreAnsweredAtTheSameTime) {
    const std::string wsdlResponse = response("/root/cimv2/CIM_Foo.wsdl");
    const std::string schemaResponse = response("/root/cimv2/CIM_Foo.xsd");
    host_.writeProvidersFile("STSService.wsdl", "static");
    const LogRecording log;
    constexpr int kThreads = 8;
    constexpr int kRounds = 50;
    runOnThreads(kThreads, [&](int index) {
        for (int round = 0; round < kRounds; ++round) {
            switch ((index + round) % 4) {
                case 0:
                    EXPECT_EQ(response("/root/cimv2/CIM_Foo.wsdl"), wsdlResponse);
                    break;
                case 1:
                    EXPECT_EQ(response("/root/cimv2/CIM_Foo.xsd"), schemaResponse);
                    break;
                case 2:
                    EXPECT_EQ(response("/STSService.wsdl"), found("static"));
                    break;
                default:
                    EXPECT_EQ(response("/root/cimv2/CIM_Bar.wsdl"), kNotFound);
            }
        }
    });
    EXPECT_EQ(log.lines().size(), 2U * kThreads * kRounds);
}

}  // namespace
