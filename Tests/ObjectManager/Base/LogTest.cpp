#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Base/Log.h"
#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/ResourceLimit.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using Base::LogOutput;

TEST(Log, ALineHasAComponentAndASeverity) {
    const LogRecording log;
    Base::log("HttpFrontEnd", TeskTraceLog::SeverityError, "what is wrong");
    Base::log("tesk", TeskTraceLog::SeverityInformation, "");
    EXPECT_EQ(log.lines(),
              std::vector<std::string>({"HttpFrontEnd|1|2|what is wrong", "tesk|3|2|"}));
}

class LogOutputTest : public testing::Test {
  protected:
    static void logLine(const std::string& text) {
        Base::log("tesk", TeskTraceLog::SeverityInformation, text);
    }

    // Whether each of the texts stands in a line of the file, and how many lines there are.
    void expectLines(const std::string& file, const std::vector<std::string>& texts) const {
        const std::string content = contentOfFile(directory_ / file);
        std::size_t start = 0;
        for (const std::string& text : texts) {
            const std::size_t end = content.find('\n', start);
            ASSERT_NE(end, std::string::npos) << content;
            EXPECT_TRUE(content.substr(start, end - start).ends_with(text)) << content;
            start = end + 1;
        }
        EXPECT_EQ(start, content.size()) << content;
    }

    // Puts the log of the process back as it was, after the test.
    const LogRecording recording_;
    const TemporaryDirectory directory_;
    const std::string path_ = directory_ / "log";
};

TEST_F(LogOutputTest, AppendsLinesToAFileUntilItsEnd) {
    directory_.write("log", "tesk: earlier\n");
    {
        const LogOutput output(path_, TeskTraceLog::SeverityInformation);
        logLine("first");
        expectLines("log", {"earlier", "first"});
    }
    logLine("afterwards");
    expectLines("log", {"earlier", "first"});
    EXPECT_EQ(recording_.lines(), std::vector<std::string>({"tesk|3|2|afterwards"}));
}

TEST_F(LogOutputTest, WritesOnlyLinesThatMatterEnough) {
    const LogOutput output(path_, TeskTraceLog::SeverityWarning);
    logLine("information");
    Base::log("tesk", TeskTraceLog::SeverityWarning, "a warning");
    expectLines("log", {"a warning"});
}

TEST_F(LogOutputTest, WithoutAFileTheLogGoesWhereItWent) {
    const LogOutput output("", TeskTraceLog::SeverityInformation);
    output.reopen();
    logLine("a line");
    EXPECT_EQ(recording_.lines(), std::vector<std::string>({"tesk|3|2|a line"}));
}

TEST_F(LogOutputTest, ReopensTheFileAfterItWasRenamed) {
    const LogOutput output(path_, TeskTraceLog::SeverityInformation);
    logLine("first");
    std::filesystem::rename(path_, directory_ / "log.1");
    logLine("second");
    output.reopen();
    logLine("third");
    expectLines("log.1", {"first", "second"});
    expectLines("log", {"third"});
}

TEST_F(LogOutputTest, GoesOnWhenTheFileCannotBeOpenedAgain) {
    const LogOutput output(path_, TeskTraceLog::SeverityInformation);
    std::filesystem::rename(path_, directory_ / "log.1");
    std::filesystem::create_directory(path_);
    EXPECT_THROW(output.reopen(), TeskBaseException);
    logLine("a line");
    expectLines("log.1", {"a line"});
}

TEST_F(LogOutputTest, TellsHowManyLinesWereLost) {
    const LogOutput output(path_, TeskTraceLog::SeverityInformation);
    {
        const ResourceLimit full(RLIMIT_FSIZE, 0);
        logLine("lost");
        logLine("lost");
    }
    logLine("written");
    expectLines("log",
                {"written", " warning tesk: 2 lines of the log could not be written until now"});
}

TEST_F(LogOutputTest, AFileThatCannotBeWrittenIsAnError) {
    const std::string path = directory_ / "missing/log";
    try {
        const LogOutput output(path, TeskTraceLog::SeverityInformation);
        ADD_FAILURE() << "it is written";
    } catch (const TeskBaseException& error) {
        EXPECT_EQ(std::string(error.getMessage().data()),
                  "the log file " + path + " cannot be written: No such file or directory");
    }
    logLine("a line");
    EXPECT_EQ(recording_.lines(), std::vector<std::string>({"tesk|3|2|a line"}));
}

}  // namespace
