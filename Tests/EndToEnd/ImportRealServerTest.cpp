// The real program, tesk import, beside a real CIM server.

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "Tests/EndToEnd/TeskProgram.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/LocalPort.h"
#include "Tests/Support/RealCimServer.h"
#include "Tests/Support/RunningProgram.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/WaitUntil.h"

namespace {

// Runs the program, which must succeed; its output.
std::string done(const std::string& arguments) {
    const ProgramRun run = runTesk(arguments);
    EXPECT_EQ(run.end, "status 0") << arguments << "\n" << run.errors;
    return withoutTime(run.output);
}

// Where the two directories differ; the contents, of megabytes, are not shown.
std::string differencesOf(const std::string& left, const std::string& right) {
    return runProgram("diff --recursive --brief '" + left + "' '" + right + "'").output;
}

// Documents are compared byte for byte, and the same again after the classes were taken by the
// server's own MOF compiler.
TEST(ImportFromARealServer, GivesTheDocumentsThatTheServersClassesGive) {
    if (cimServerProgram().empty())
        GTEST_SKIP() << kNoCimServer;
    const TemporaryDirectory directory;
    const std::string main = directory / "mof/root/cimv2/main.mof";
    {
        const RealCimServer server;
        const std::string from = " --server " + server.url() + " --namespace root/cimv2";
        (void)done("import --output '" + std::string(directory / "mof") + "'" + from);
        (void)done("export --output '" + std::string(directory / "direct") + "'" + from);
        EXPECT_NE(done("import --output '" + std::string(directory / "mof") + "'" + from)
                      .find(": 0 written, "),
                  std::string::npos);
    }
    (void)done("export --output '" + std::string(directory / "imported") +
               "' --namespace root/cimv2='" + main + "'");
    EXPECT_EQ(differencesOf(directory / "direct", directory / "imported"), "");
    EXPECT_GT(contentOf(directory / "imported").size(), std::size_t{2 * 1438});
}

TEST(ImportFromARealServer, WritesWhatTheServersOwnCompilerTakes) {
    if (cimServerProgram().empty())
        GTEST_SKIP() << kNoCimServer;
    const TemporaryDirectory directory;
    const std::string mof = directory / "mof";
    {
        const RealCimServer server;
        (void)done("import --output '" + mof + "' --server " + server.url());
    }
    for (const char* const nameSpace : {"root/cimv2", "root/PG_InterOp"}) {
        const std::uint16_t port = freePort();
        RunningProgram compiling({cimServerProgram(), "--port", std::to_string(port), "--compile",
                                  "root/copy=" + mof + "/" + nameSpace + "/main.mof"});
        // It ends when the compiler fails, and else serves.
        EXPECT_TRUE(waitUntil([&] { return acceptsConnections(port) || !compiling.isRunning(); }));
        EXPECT_TRUE(compiling.isRunning()) << nameSpace;
        compiling.sendSignal(SIGTERM);
        const ProgramRun run = compiling.waitForEnd();
        EXPECT_EQ(run.errors, "") << nameSpace;
    }
}

}  // namespace
