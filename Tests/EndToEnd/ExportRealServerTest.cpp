// The real program, tesk export, beside a real CIM server.

#include <gtest/gtest.h>
#include <string>

#include "Tests/EndToEnd/TeskProgram.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/RealCimServer.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

class ExportFromARealServer : public testing::Test {
  protected:
    void SetUp() override {
        if (cimServerProgram().empty())
            GTEST_SKIP() << kNoCimServer;
        if (cimSchemaFile().empty())
            GTEST_SKIP() << kNoCimSchema;
    }

    // Exports into the directory `name`.
    void exportTo(const std::string& name, const std::string& arguments) const {
        const ProgramRun run =
            runTesk("export --output '" + std::string(directory_ / name) + "' " + arguments);
        EXPECT_EQ(run.end, "status 0") << run.errors;
    }

    // Where the documents in two directories differ; documents, of megabytes, are not shown.
    [[nodiscard]] std::string differences(const std::string& left, const std::string& right) const {
        return runProgram("cd '" + directory_.path().string() +
                          "' && diff --recursive --brief --exclude='*.html' --exclude=search.js "
                          "--exclude=.tesk-export " +
                          left + " " + right)
            .output;
    }

    TemporaryDirectory directory_;
};

// The server marks in ways of its own what is inherited, which differ between the two forms in
// which it sends classes.
TEST_F(ExportFromARealServer, GivesTheDocumentsThatTheMofOfTheClassesGives) {
    const std::string classes = "classes = [\"CIM_*\", \"PRS_*\"] }\n";
    {
        const RealCimServer server;
        const std::string url = "url = \"" + server.url() + "\"\n";
        // The whole classes; then without what they inherit, of all namespaces that the server
        // names.
        directory_.write("whole.toml", "[servers.real]\n" + url + "[namespaces]\n" +
                                           "\"root/cimv2\" = { server = \"real\", " + classes);
        directory_.write("local.toml", "[servers.real]\nlocal_only = true\n" + url +
                                           "[namespaces]\n\"*\" = { server = \"real\", " + classes);
        for (const std::string form : {"whole", "local"})
            exportTo(form, "--config '" + std::string(directory_ / (form + ".toml")) + "'");
    }
    exportTo("mof", "--namespace 'root/cimv2=" + cimSchemaFile() + "'");
    EXPECT_EQ(differences("mof", "whole"), "");
    EXPECT_EQ(differences("mof/root/cimv2", "local/root/cimv2"), "");
    std::size_t documents = 0;
    for (const auto& [name, text] : contentOf(directory_ / "mof"))
        documents += name.ends_with(".wsdl") || name.ends_with(".xsd") ? 1 : 0;
    EXPECT_EQ(documents, 2 * 1438U);
    for (const auto& [name, text] : contentOf(directory_ / "local"))
        documents += name == "root/PG_InterOp/CIM_Namespace.xsd" ? 1 : 0;
    EXPECT_EQ(documents, 2 * 1438U + 1);
}

}  // namespace
