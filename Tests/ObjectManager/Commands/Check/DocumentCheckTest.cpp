#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "ObjectManager/Commands/Check/DocumentCheck.h"
#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/Support/MofModel.h"
#include "Tests/Support/RecordingLogSink.h"

namespace {

using Commands::CheckResult;

// The result of a check by the real plug-in, which took no time.
CheckResult check(const MofModel& model, unsigned jobs = 2) {
    const LogRecording log(TeskTraceLog::SeverityError);
    const Host::ProviderHost host(model.repository(), TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                  INSTALLATION_DIRECTORY);
    const Host::MemoryClient client(host.manager(), {.host = "localhost"});
    CheckResult result = Commands::checkDocuments(*model.repository(), client, jobs, [] {});
    EXPECT_GT(result.seconds, 0);
    EXPECT_EQ(log.lines(), std::vector<std::string>());
    result.seconds = 0;
    return result;
}

// The same with the findings alone, a line each.
std::string findingsOf(const MofModel& model) {
    std::string lines;
    for (const Inspection::Finding& finding : check(model).findings)
        lines += toText(finding) + "\n";
    return lines;
}

TEST(DocumentCheck, MakesBothDocumentsOfEveryClass) {
    std::string mof;
    for (int number = 0; number < 50; ++number)
        mof += "class TST_" + std::to_string(number) + " { string Name; };\n";
    const MofModel model(mof);
    const CheckResult serial = check(model, 1);
    EXPECT_EQ(serial.namespaces, 1U);
    EXPECT_EQ(serial.classes, 50U);
    EXPECT_EQ(serial.documents, 100U);
    EXPECT_TRUE(serial.findings.empty());
    const CheckResult parallel = check(model, 8);
    EXPECT_EQ(toJson(parallel), toJson(serial));
}

TEST(DocumentCheck, TellsOfEachClassThatIsDone) {
    const MofModel model("class TST_A {}; class TST_B {}; class TST_C {};");
    const TeskProviderPluginManager manager;
    std::atomic<int> done = 0;
    (void)Commands::checkDocuments(*model.repository(),
                                   Host::MemoryClient(manager, {.host = "localhost"}), 2,
                                   [&] { ++done; });
    EXPECT_EQ(done, 3);
}

TEST(DocumentCheck, SortsWhatItFindsBySeverityAndPlace) {
    EXPECT_EQ(
        findingsOf(MofModel(
            "class TST_Z { [Description(\"\\x1\")] uint32 Stop(); };\n"
            "class TST_Y { [ValueMap{\"a\\x1\"}] string Name; };\n"
            "class TST_B { uint32 Get([In, Out, ValueMap{\"0\", \"20000\", \"..\"}] "
            "uint32 Code); };\n"
            "class TST_A\xC3\x97 { uint32 Go([In, MaxLen(1), ValueMap{\"a\"}] string P); };\n"
            "class TST_N { [ValueMap{\"4294967295\", \"..\"}] uint32 Code; };\n")),
        "error: root/test:TST_N.Code: its documents would have up to 253.4 GB, the property "
        "\"Code\" alone 253.4 GB; at most 67.1 MB are allowed (repository.max_document_size)\n"
        "error: root/test:TST_Y: TST_Y.wsdl is not well-formed: line 26, column 35: invalid "
        "character in attribute value\n"
        "error: root/test:TST_Y: TST_Y.xsd is not well-formed: line 8, column 35: invalid "
        "character in attribute value\n"
        "error: root/test:TST_Z: TST_Z.wsdl is not well-formed: line 116, column 27: PCDATA "
        "invalid Char value 1\n"
        "warning: root/test:TST_A\xC3\x97.Go.P: the parameter has both MaxLen and ValueMap, of "
        "which its schema has two types\n"
        "warning: root/test:TST_B.Get.Code: the \"..\" of its ValueMap is written as 19999 "
        "values\n"
        "warning: root/test:TST_B: the WSDL has two messages \"Get_InputMessage\", since a "
        "method is named like another operation\n"
        "warning: root/test:TST_B: the WSDL has two messages \"Get_OutputMessage\", since a "
        "method is named like another operation\n"
        "warning: root/test:TST_A\xC3\x97: the name is none that XML allows\n");
}

// It takes away what is propagated.
TEST(DocumentCheck, ANullIsAsNoQualifierAtAll) {
    const CheckResult result = check(MofModel(
        "class TST_A { [MaxLen(5), ValueMap{\"a\"}] string Name; };\n"
        "class TST_B : TST_A { [MaxLen(null), ValueMap(null), Key(null), Description(null)]\n"
        "  string Name; };\n"
        "class TST_C { uint32 Go([In, MaxLen(null), ValueMap(null)] string P,\n"
        "  [In(null)] string Q); };\n"));
    EXPECT_EQ(result.documents, 6U);
    EXPECT_TRUE(result.findings.empty()) << toText(result);
}

// The documents of the class would take all memory.
TEST(DocumentCheck, ReportsAClassThatIsLeftOut) {
    const CheckResult result =
        check(MofModel("class TST_A { [ValueMap{\"0xFFFFFFFFFF\", \"..\"}] uint64 Code; };\n"
                       "class TST_B {};\n"));
    EXPECT_EQ(result.classes, 2U);
    EXPECT_EQ(result.documents, 2U);
    EXPECT_EQ(result.countErrors(), 1U);
    ASSERT_EQ(result.findings.size(), 1U);
    EXPECT_EQ(toText(result.findings.front()),
              "error: root/test:TST_A.Code: its documents would have up to 68.2 TB, the property "
              "\"Code\" alone 68.2 TB; at most 67.1 MB are allowed (repository.max_document_size)");
}

TEST(DocumentCheck, ShortensTheNameOfAClassThatIsLeftOutForIt) {
    const CheckResult result = check(
        MofModel("class TST_" + std::string(1'000, 'a') + " {};", {.maxDocumentSize = 20'000}));
    ASSERT_EQ(result.findings.size(), 1U);
    EXPECT_EQ(result.findings.front().className, "TST_" + std::string(196, 'a') + "...");
    EXPECT_EQ(result.findings.front().member, "");
    EXPECT_EQ(result.findings.front().message,
              "its documents would have up to 28.1 KB, the name of the class alone 16.1 KB; at "
              "most 20.0 KB are allowed (repository.max_document_size)");
}

// Raw descriptions are markup, for better or worse.
TEST(DocumentCheck, FindsDescriptionsThatAreHandedOutRaw) {
    const char* const mof = "[Description(\"a & b\")] class TST_A {};";
    EXPECT_EQ(findingsOf(MofModel(mof)), "");
    EXPECT_EQ(findingsOf(MofModel(mof, {.escapeDescriptions = false})),
              "error: root/test:TST_A: TST_A.wsdl is not well-formed: line 219, column 28: "
              "xmlParseEntityRef: no name\n");
}

// Answers with what a hook returns.
class HookedProvider : public urma::pf::Provider {
  public:
    explicit HookedProvider(std::function<std::string(const std::string& path)> response)
        : response_(std::move(response)) {}

    TSKString getProviderName() override { return "hooked"; }
    void processHTTPRequest(TSKGenericHTTPIStream& /*istr*/, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& /*flag*/,
                            TSKSmrPtr<ITeskTransaction> /*transaction*/) override {
        const std::string response = response_(request.getUri().data());
        ostr.write(response.data(), response.size());
    }

  private:
    std::function<std::string(const std::string& path)> response_;
};

// What is said about the responses of a provider for one class.
std::string reportOn(const std::function<std::string(const std::string& path)>& response) {
    const MofModel model("class TST_A {};");
    HookedProvider provider(response);
    TeskProviderPluginManager manager;
    EXPECT_TRUE(manager.addProvider(provider, "here").empty());
    EXPECT_TRUE(manager.registerURI("hooked", "/root/test"));
    CheckResult result = Commands::checkDocuments(
        *model.repository(), Host::MemoryClient(manager, {.host = "localhost"}), 1, [] {});
    result.seconds = 0;
    return toText(result);
}

TEST(DocumentCheck, ReportsResponsesThatAreNoDocuments) {
    EXPECT_EQ(reportOn([](const std::string&) { return "HTTP/1.1 404 Not Found\r\n\r\n"; }),
              "error: root/test:TST_A: TST_A.wsdl: the response has the status 404\n"
              "error: root/test:TST_A: TST_A.xsd: the response has the status 404\n"
              "1 class in 1 namespace, 0 documents, 0 bytes, 0.00 s: 2 errors, 0 warnings\n");
    EXPECT_EQ(reportOn([](const std::string&) { return ""; }),
              "error: root/test:TST_A: TST_A.wsdl: the response is not HTTP\n"
              "error: root/test:TST_A: TST_A.xsd: the response is not HTTP\n"
              "1 class in 1 namespace, 0 documents, 0 bytes, 0.00 s: 2 errors, 0 warnings\n");
}

TEST(DocumentCheck, ReportsWhatAProviderThrows) {
    EXPECT_EQ(reportOn([](const std::string& path) -> std::string {
                  if (path.ends_with(".xsd"))
                      throw std::runtime_error("out of order");
                  throw TeskBaseException("here", "no licence", CIM_ERR_FAILED);
              }),
              "error: root/test:TST_A: TST_A.wsdl cannot be made: no licence\n"
              "error: root/test:TST_A: TST_A.xsd cannot be made: out of order\n"
              "1 class in 1 namespace, 0 documents, 0 bytes, 0.00 s: 2 errors, 0 warnings\n");
    EXPECT_THROW((void)reportOn([](const std::string&) -> std::string { throw 42; }), int);
}

TEST(DocumentCheck, ReportsNamespacesThatNobodyServes) {
    const MofModel model("class TST_A {};");
    const TeskProviderPluginManager manager;
    CheckResult result = Commands::checkDocuments(
        *model.repository(), Host::MemoryClient(manager, {.host = "localhost"}), 1, [] {});
    result.seconds = 0.5;
    EXPECT_EQ(toText(result),
              "error: root/test:TST_A: TST_A.wsdl cannot be made: no provider serves "
              "/root/test/TST_A.wsdl\n"
              "error: root/test:TST_A: TST_A.xsd cannot be made: no provider serves "
              "/root/test/TST_A.xsd\n"
              "1 class in 1 namespace, 0 documents, 0 bytes, 0.50 s: 2 errors, 0 warnings\n");
}

CheckResult someResult() {
    CheckResult result;
    result.namespaces = 2;
    result.classes = 1438;
    result.documents = 2875;
    result.bytes = 60'100'000;
    result.seconds = 3.25;
    result.findings = {{.kind = Inspection::FindingKind::kNoDocument,
                        .nameSpace = "root/cimv2",
                        .className = "CIM_A",
                        .member = "",
                        .message = "CIM_A.xsd is \xFF \"gone\""},
                       {.kind = Inspection::FindingKind::kManyGaps,
                        .nameSpace = "interop",
                        .className = "CIM_B",
                        .member = "Code",
                        .message = "many"}};
    return result;
}

TEST(DocumentCheck, IsShownAsText) {
    EXPECT_EQ(toText(someResult()),
              "error: root/cimv2:CIM_A: CIM_A.xsd is \xFF \"gone\"\n"
              "warning: interop:CIM_B.Code: many\n"
              "1,438 classes in 2 namespaces, 2,875 documents, 60.1 MB, 3.25 s: 1 error, 1 "
              "warning\n");
    EXPECT_EQ(toText(CheckResult()),
              "0 classes in 0 namespaces, 0 documents, 0 bytes, 0.00 s: 0 errors, 0 warnings\n");
}

// What is no UTF-8 is replaced there.
TEST(DocumentCheck, IsShownAsJson) {
    EXPECT_EQ(toJson(someResult()), R"({
  "namespaces": 2,
  "classes": 1438,
  "documents": 2875,
  "bytes": 60100000,
  "seconds": 3.25,
  "errors": 1,
  "warnings": 1,
  "findings": [
    {
      "severity": "error",
      "kind": "no-document",
      "namespace": "root/cimv2",
      "class": "CIM_A",
      "member": "",
      "message": "CIM_A.xsd is )"
                                    "\xEF\xBF\xBD"
                                    R"( \"gone\""
    },
    {
      "severity": "warning",
      "kind": "many-gaps",
      "namespace": "interop",
      "class": "CIM_B",
      "member": "Code",
      "message": "many"
    }
  ]
}
)");
}

}  // namespace
