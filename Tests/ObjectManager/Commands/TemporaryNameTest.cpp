#include <gtest/gtest.h>
#include <limits>
#include <set>
#include <string>
#include <unistd.h>

#include "ObjectManager/Commands/TemporaryName.h"
#include "Tests/ObjectManager/Commands/EndedProcess.h"

namespace {

using Commands::isAbandonedName;
using Commands::makeTemporaryName;

std::string nameOf(const std::string& process) {
    return ".tesk-export-" + process + "-1";
}

TEST(TemporaryName, IsAnotherOneEachTime) {
    std::set<std::string> names;
    for (int count = 0; count < 100; ++count)
        names.insert(makeTemporaryName());
    EXPECT_EQ(names.size(), 100U);
    const std::string prefix = ".tesk-export-" + std::to_string(getpid()) + "-";
    for (const std::string& name : names)
        EXPECT_TRUE(name.starts_with(prefix)) << name;
}

TEST(TemporaryName, IsAbandonedWhenItsProcessIsGone) {
    const std::string ended = std::to_string(idOfEndedProcess());
    EXPECT_TRUE(isAbandonedName(nameOf(ended)));
    EXPECT_TRUE(isAbandonedName(".tesk-export-" + ended + "-18446744073709551615"));
    // No process has so high a number.
    EXPECT_TRUE(isAbandonedName(nameOf(std::to_string(std::numeric_limits<pid_t>::max()))));
}

TEST(TemporaryName, IsNotAbandonedWhileItsProcessRuns) {
    EXPECT_FALSE(isAbandonedName(makeTemporaryName()));
    EXPECT_FALSE(isAbandonedName(nameOf(std::to_string(getppid()))));
    // Of another user, unless these tests are those of the administrator.
    EXPECT_FALSE(isAbandonedName(nameOf("1")));
}

TEST(TemporaryName, OtherNamesAreNotAbandoned) {
    const std::string ended = std::to_string(idOfEndedProcess());
    for (const std::string& process :
         {std::string(), "-" + ended, "+" + ended, "0" + ended, " " + ended, ended + "x",
          std::string("0"), std::string("-1"), std::string("2147483648"),
          std::string("99999999999999999999")})
        EXPECT_FALSE(isAbandonedName(nameOf(process))) << process;
    for (const std::string& file :
         {".tesk-export-" + ended, ".tesk-export-" + ended + "-", ".tesk-export-" + ended + "-0",
          ".tesk-export-" + ended + "-1x", ".tesk-export-" + ended + "-1-1",
          ".tesk-export-" + ended + "--1", ".tesk-export-" + ended + "-1.xsd",
          "tesk-export-" + ended + "-1", ".tesk-import-" + ended + "-1",
          " .tesk-export-" + ended + "-1", std::string(".tesk-export-"), std::string()})
        EXPECT_FALSE(isAbandonedName(file)) << file;
}

}  // namespace
