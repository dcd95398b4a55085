#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Http/ErrorLog.h"
#include "Tests/Support/RecordingLogSink.h"

namespace {

TEST(ErrorLog, ALineIsAnErrorOfTheFrontEnd) {
    const LogRecording log;
    Http::logError("what is wrong");
    EXPECT_EQ(log.lines(), std::vector<std::string>({"HttpFrontEnd|1|2|what is wrong"}));
}

}  // namespace
