// `tesk check` as its users run it.

#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>

#include "Tests/EndToEnd/TeskProgram.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using nlohmann::json;

class CheckCommand : public testing::Test {
  protected:
    // Writes a MOF file; returns "root/test=FILE" for the command line.
    [[nodiscard]] std::string write(const std::string& name, const std::string& mof) const {
        return "root/test='" + directory_.write(name, mof).string() + "'";
    }

    // With paths below the directory of the test as they were written.
    [[nodiscard]] std::string shown(const std::string& text) const {
        return replaced(text, directory_.path().string() + "/", "");
    }

    const TemporaryDirectory directory_;
};

constexpr const char* kQualifiers = "#pragma include (\"qualifiers.mof\")\n";
constexpr const char* kWithQualifiers = "check --include-path '" MODELS_DIRECTORY "' ";

TEST_F(CheckCommand, FindsNoErrorInTheSampleModel) {
    const ProgramRun run = runTesk("check");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(
        withoutTime(run.output),
        "warning: root/cimv2:CIM_StorageConfigurationService.ProposeSettings.Workload: the "
        "parameter has both MaxLen and ValueMap, of which its schema has two types\n"
        "warning: root/cimv2:TSK_Everything.Configure.Mode: the parameter has both MaxLen and "
        "ValueMap, of which its schema has two types\n"
        "warning: root/cimv2:TSK_Server.InstallFirmware.Bank: the parameter has both MaxLen "
        "and ValueMap, of which its schema has two types\n"
        "59 classes in 2 namespaces, 118 documents, 2.4 MB, TIME: 0 errors, 3 warnings\n");
}

TEST_F(CheckCommand, IsTheSameForAnyNumberOfJobs) {
    const ProgramRun one = runTesk("check --jobs 1");
    EXPECT_EQ(one.end, "status 0");
    for (const char* const jobs : {"2", "64", "1024"}) {
        const ProgramRun many = runTesk(std::string("check --jobs ") + jobs);
        EXPECT_EQ(many.end, "status 0");
        EXPECT_EQ(withoutTime(many.output), withoutTime(one.output));
        EXPECT_EQ(many.errors, "");
    }
}

TEST_F(CheckCommand, WritesJsonForPrograms) {
    const ProgramRun run = runTesk("check --format json");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    json result = json::parse(run.output);
    EXPECT_GT(result["seconds"], 0);
    EXPECT_GT(result["bytes"], 2'000'000);
    result.erase("seconds");
    result.erase("bytes");
    json findings = json::array();
    for (const auto& [className, member] :
         {std::pair("CIM_StorageConfigurationService", "ProposeSettings.Workload"),
          std::pair("TSK_Everything", "Configure.Mode"),
          std::pair("TSK_Server", "InstallFirmware.Bank")}) {
        findings.push_back({{"severity", "warning"},
                            {"kind", "length-and-value-map"},
                            {"namespace", "root/cimv2"},
                            {"class", className},
                            {"member", member},
                            {"message",
                             "the parameter has both MaxLen and ValueMap, of which its schema has "
                             "two types"}});
    }
    EXPECT_EQ(result, json({{"namespaces", 2},
                            {"classes", 59},
                            {"documents", 118},
                            {"errors", 0},
                            {"warnings", 3},
                            {"findings", findings}}));
}

TEST_F(CheckCommand, ShowsWhatIsWrongWithMof) {
    const ProgramRun run = runTesk("check --namespace " + write("bad.mof",
                                                                "class TST_A {\n"
                                                                "  uint8 Count\n"
                                                                "};\n"
                                                                "class TST_B : {};\n"));
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(shown(run.errors),
              "bad.mof:3:1: error: found \"}\", expected \"[\", \"(\", \";\" or \"=\"\n"
              "};\n"
              "^\n"
              "bad.mof:4:15: error: found \"{\", expected a name\n"
              "class TST_B : {};\n"
              "              ^\n"
              "tesk: the classes have errors and are not used\n");
}

TEST_F(CheckCommand, GoesOnAfterWarningsAboutMof) {
    const ProgramRun run = runTesk(
        kWithQualifiers + std::string("--namespace ") +
        write("odd.mof", std::string(kQualifiers) + "class TST_A { [ValueMap] uint8 Count; };\n"));
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(shown(run.errors),
              "odd.mof:2:16: warning: the qualifier \"ValueMap\" has no value\n"
              "class TST_A { [ValueMap] uint8 Count; };\n"
              "               ^\n");
    EXPECT_TRUE(run.output.starts_with("1 class in 1 namespace, 2 documents, ")) << run.output;
    EXPECT_TRUE(run.output.ends_with(": 0 errors, 0 warnings\n")) << run.output;
}

TEST_F(CheckCommand, NeedsAPathThatIsThere) {
    const ProgramRun run = runTesk("check --namespace root/test=/nowhere/a.mof");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors,
              "/nowhere/a.mof: error: cannot be read: No such file or directory\n"
              "tesk: the classes have errors and are not used\n");
}

TEST_F(CheckCommand, TakesADirectory) {
    (void)write("a.mof", "class TST_A {};");
    (void)write("b.mof", "class TST_B : TST_A {};");
    (void)write("Readme.txt", "this is no MOF");
    const ProgramRun run =
        runTesk("check --namespace root/test='" + directory_.path().string() + "'");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(run.output.starts_with("2 classes in 1 namespace, 4 documents, ")) << run.output;
}

TEST_F(CheckCommand, SaysThatANamespaceHasNoClass) {
    const ProgramRun run =
        runTesk("check --namespace root/test='" + directory_.path().string() + "'");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "tesk: warning: the namespace root/test has no class\n");
    EXPECT_EQ(withoutTime(run.output),
              "0 classes in 1 namespace, 0 documents, 0 bytes, TIME: 0 errors, 0 warnings\n");
}

TEST_F(CheckCommand, SourcesOfOneNamespaceAddUp) {
    std::string upper = write("b.mof", "class TST_B : TST_A {};");
    upper.replace(0, 9, "ROOT/Test");
    const ProgramRun run =
        runTesk("check --namespace " + write("a.mof", "class TST_A {};") + " --namespace " + upper +
                " --namespace=root/other=" + write("c.mof", "class TST_C {};").substr(10));
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(run.output.starts_with("3 classes in 2 namespaces, 6 documents, ")) << run.output;
}

// A character that XML has no place for, escaped or not.
TEST_F(CheckCommand, FailsForADocumentThatIsNotWellFormed) {
    const std::string source = write(
        "a.mof", std::string(kQualifiers) +
                     "class TST_A { [ValueMap {\"a\\x1\"}] string Name; };\nclass TST_B {};\n");
    const ProgramRun run = runTesk(kWithQualifiers + std::string("--namespace ") + source);
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(run.output.starts_with(
        "error: root/test:TST_A: TST_A.wsdl is not well-formed: line 26, column 35: invalid "
        "character in attribute value\n"
        "error: root/test:TST_A: TST_A.xsd is not well-formed: line 8, column 35: invalid "
        "character in attribute value\n"
        "2 classes in 1 namespace, 4 documents, "))
        << run.output;
    EXPECT_TRUE(run.output.ends_with(": 2 errors, 0 warnings\n")) << run.output;

    const ProgramRun asJson =
        runTesk(kWithQualifiers + std::string("--format json --namespace ") + source);
    EXPECT_EQ(asJson.end, "status 1");
    const json result = json::parse(asJson.output);
    EXPECT_EQ(result["errors"], 2);
    EXPECT_EQ(result["findings"].size(), 2U);
    EXPECT_EQ(result["findings"][0]["kind"], "not-well-formed");
    EXPECT_EQ(result["findings"][0]["severity"], "error");
}

// Descriptions are texts, whatever they look like.
TEST_F(CheckCommand, EscapesDescriptions) {
    const ProgramRun run =
        runTesk(kWithQualifiers + std::string("--namespace ") +
                write("a.mof", std::string(kQualifiers) +
                                   "[Description(\"<a & b> ]]> &nbsp;\")]\n"
                                   "class TST_A { [Description(\"<!-- --\")] uint8 Go(); };\n"));
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(run.output.ends_with(": 0 errors, 0 warnings\n")) << run.output;
}

TEST_F(CheckCommand, TakesNamespacesAndOptionsFromAConfiguration) {
    (void)write("a.mof", std::string(kQualifiers) +
                             "[Description(\"a & b\")]\nclass TST_A {};\nclass TST_B {};\n");
    const std::string file = directory_.write("tesk.toml", "include_path = '" MODELS_DIRECTORY
                                                           "'\n"
                                                           "[namespaces]\n"
                                                           "\"root/test\" = \"a.mof\"\n"
                                                           "[repository]\n"
                                                           "escape_descriptions = false\n");
    const ProgramRun run = runTesk("check --config '" + file + "'");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.errors, "");
    EXPECT_TRUE(run.output.starts_with(
        "error: root/test:TST_A: TST_A.wsdl is not well-formed: line 219, column 28: "
        "xmlParseEntityRef: no name\n"
        "2 classes in 1 namespace, 4 documents, "))
        << run.output;
    EXPECT_TRUE(run.output.ends_with(": 1 error, 0 warnings\n")) << run.output;
}

TEST_F(CheckCommand, ShowsWhatIsWrongWithAConfiguration) {
    const std::string file = directory_.write("tesk.toml", "\nnothing = 1\n");
    const ProgramRun run = runTesk("check --config '" + file + "'");
    EXPECT_EQ(run.end, "status 1");
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(
        shown(run.errors),
        "tesk.toml:2:1: error: unknown key \"nothing\"; known are \"include_path\", \"servers\", "
        "\"namespaces\", \"repository\", \"server\", \"security\" and \"log\"\n"
        "tesk: the configuration has errors and is not used\n");
    const ProgramRun missing = runTesk("check --config /nowhere/tesk.toml");
    EXPECT_EQ(missing.end, "status 1");
    EXPECT_EQ(missing.output, "");
    EXPECT_EQ(missing.errors,
              "/nowhere/tesk.toml: error: cannot be read: No such file or directory\n"
              "tesk: the configuration has errors and is not used\n");
}

// Its method Create is named like an operation of every class; no other method of the schema is
// named like one.
TEST_F(CheckCommand, FindsNoErrorInTheDmtfSchema) {
    const std::string schema = cimSchemaFile();
    if (schema.empty())
        GTEST_SKIP() << kNoCimSchema;
    const ProgramRun run = runTesk("check --namespace root/cimv2='" + schema + "'");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    EXPECT_EQ(withoutTime(run.output),
              "warning: root/cimv2:CIM_OpaqueManagementDataService: the WSDL has two messages "
              "\"Create_InputMessage\", since a method is named like another operation\n"
              "warning: root/cimv2:CIM_OpaqueManagementDataService: the WSDL has two messages "
              "\"Create_OutputMessage\", since a method is named like another operation\n"
              "1,438 classes in 1 namespace, 2,876 documents, 60.1 MB, TIME: 0 errors, 2 "
              "warnings\n");
}

}  // namespace
