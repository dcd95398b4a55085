#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>

#include "ObjectManager/Commands/FileStamp.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;
using Commands::FileStamp;

class FileStampTest : public testing::Test {
  protected:
    TemporaryFolder folder_;
    const std::string file_ = folder_.write("file", "text");
    const FileStamp before_ = FileStamp::of(file_);
};

TEST_F(FileStampTest, StaysWhileNothingChanges) {
    EXPECT_EQ(FileStamp::of(file_), before_);
    fs::permissions(file_, fs::perms::owner_read);
    EXPECT_EQ(FileStamp::of(file_), before_);
}

TEST_F(FileStampTest, ChangesWithTheSize) {
    const auto time = fs::last_write_time(file_);
    folder_.write("file", "texts");
    fs::last_write_time(file_, time);
    EXPECT_NE(FileStamp::of(file_), before_);
}

TEST_F(FileStampTest, ChangesWithTheTimeOfTheLastChange) {
    fs::last_write_time(file_, fs::last_write_time(file_) + std::chrono::nanoseconds(1));
    EXPECT_NE(FileStamp::of(file_), before_);
}

TEST_F(FileStampTest, ChangesWhenAnotherFileTakesTheName) {
    const auto time = fs::last_write_time(file_);
    const std::string other = folder_.write("other", "text");
    fs::last_write_time(other, time);
    fs::rename(other, file_);
    EXPECT_NE(FileStamp::of(file_), before_);
}

TEST_F(FileStampTest, ThereMayBeNoFile) {
    EXPECT_EQ(FileStamp::of(folder_ / "none"), FileStamp());
    EXPECT_NE(before_, FileStamp());
    fs::remove(file_);
    EXPECT_EQ(FileStamp::of(file_), FileStamp());
}

}  // namespace
