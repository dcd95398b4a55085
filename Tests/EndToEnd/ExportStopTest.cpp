// The real program: how tesk export ends when it is told to.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <string>

#include "Tests/EndToEnd/ExportedDocument.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/RunningProgram.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;

// What is pressed while documents are written; there are so many that it is not over before.
class ExportStopTest : public testing::Test {
  protected:
    // A MOF file with classes without members.
    [[nodiscard]] std::string writeClasses(int count) const {
        std::string mof;
        for (int number = 0; number < count; ++number)
            mof += "class TST_C" + std::to_string(number) + " {};\n";
        return directory_.write("classes.mof", mof);
    }

    void waitForFirstDocument() const {
        ASSERT_TRUE(waitUntil([&] { return countDocuments() != 0; }));
    }

    [[nodiscard]] long countDocuments() const {
        const std::string directory = out_ + "/n";
        if (!fs::exists(directory))
            return 0;
        return std::count_if(fs::directory_iterator(directory), fs::directory_iterator(),
                             [](const fs::directory_entry& entry) {
                                 const fs::path extension = entry.path().extension();
                                 return extension == ".wsdl" || extension == ".xsd";
                             });
    }

    // `count` is what the program says that it has written.
    void expectCompleteDocuments(std::string count) const {
        DirectoryContent all = contentOf(out_);
        EXPECT_EQ(all.erase("n/.tesk-export"), 1U);
        std::erase(count, ',');
        EXPECT_EQ(std::to_string(all.size() - 1), count);
        for (const auto& [file, text] : all)
            EXPECT_TRUE(text == "(directory)" || isComplete(text)) << file;
    }

    // The signal comes while the program stands still, so that it is known what was written before.
    void expectStop(int signal, const std::string& name, const std::string& status) const {
        RunningProgram program({PROGRAM, "export", "--output", out_, "--jobs", "2", "--namespace",
                                "n=" + writeClasses(30'000)});
        ASSERT_NO_FATAL_FAILURE(waitForFirstDocument());
        program.pause();
        const long before = countDocuments();
        program.sendSignal(signal);
        program.sendSignal(SIGCONT);
        const ProgramRun run = program.waitForEnd();
        // Each thread finishes the one that it is at.
        EXPECT_LE(countDocuments(), before + 2);
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

    TemporaryDirectory directory_;
    std::string out_ = directory_ / "out";
};

TEST_F(ExportStopTest, CtrlCLeavesCompleteDocumentsAndBeginsNoOther) {
    expectStop(SIGINT, "SIGINT", "status 130");
}

TEST_F(ExportStopTest, AnEndByTheSystemLeavesCompleteDocumentsAndBeginsNoOther) {
    expectStop(SIGTERM, "SIGTERM", "status 143");
}

TEST_F(ExportStopTest, ATerminalThatGoesAwayLeavesCompleteDocumentsAndBeginsNoOther) {
    expectStop(SIGHUP, "SIGHUP", "status 129");
}

}  // namespace
