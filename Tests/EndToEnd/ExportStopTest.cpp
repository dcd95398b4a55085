// The real program: how soon tesk export ends when it is told to. The time is that of the program
// alone, so no other test runs beside these.

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <thread>

#include "Tests/EndToEnd/ExportedDocument.h"
#include "Tests/Support/FolderContent.h"
#include "Tests/Support/RunningProgram.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using std::chrono::steady_clock;

// Under sanitizers everything takes ten times as long.
constexpr std::chrono::seconds kMostTime(TESK_IS_SANITIZED ? 10 : 1);

// What is pressed while documents are written; there are so many that it is not over before.
class ExportStopTest : public testing::Test {
  protected:
    // A MOF file with classes without members.
    [[nodiscard]] std::string writeClasses(int count) const {
        std::string mof;
        for (int number = 0; number < count; ++number)
            mof += "class TST_C" + std::to_string(number) + " {};\n";
        return folder_.write("classes.mof", mof);
    }

    void waitForFirstDocument() const {
        const std::string first = out_ + "/n";
        const auto deadline = steady_clock::now() + std::chrono::minutes(1);
        while (!fs::exists(first) || fs::is_empty(first)) {
            ASSERT_LT(steady_clock::now(), deadline);
            std::this_thread::yield();
        }
    }

    // `count` is what the program says that it has written.
    void expectCompleteDocuments(std::string count) const {
        const FolderContent all = contentOf(out_);
        EXPECT_LT(all.size(), 60'000U);
        std::erase(count, ',');
        EXPECT_EQ(std::to_string(all.size() - 1), count);
        for (const auto& [file, text] : all)
            EXPECT_TRUE(text == "(folder)" || isComplete(text)) << file;
    }

    void expectStop(int signal, const std::string& name, const std::string& status) const {
        RunningProgram program(
            {PROGRAM, "export", "--output", out_, "--namespace", "n=" + writeClasses(30'000)});
        ASSERT_NO_FATAL_FAILURE(waitForFirstDocument());
        const auto stopped = steady_clock::now();
        program.sendSignal(signal);
        const ProgramRun run = program.waitForEnd();
        const std::chrono::duration<double> time = steady_clock::now() - stopped;
        EXPECT_LE(time, kMostTime) << time.count() << " s";
        EXPECT_EQ(run.end, status);
        EXPECT_EQ(run.output, "");
        expectReport(run, name);
    }

    void expectReport(const ProgramRun& run, const std::string& name) const {
        std::smatch message;
        ASSERT_TRUE(std::regex_match(run.errors, message,
                                     std::regex("tesk: stopped by " + name +
                                                " after ([0-9,]+) of 60,000 documents; those in " +
                                                out_ + " are complete\n")))
            << run.errors;
        expectCompleteDocuments(message[1]);
    }

    TemporaryFolder folder_;
    std::string out_ = folder_ / "out";
};

TEST_F(ExportStopTest, CtrlCLeavesCompleteDocumentsOnlyWithinASecond) {
    expectStop(SIGINT, "SIGINT", "status 130");
}

TEST_F(ExportStopTest, AnEndByTheSystemLeavesCompleteDocumentsOnlyWithinASecond) {
    expectStop(SIGTERM, "SIGTERM", "status 143");
}

}  // namespace
