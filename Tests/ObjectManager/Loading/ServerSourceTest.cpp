#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Loading/ServerSource.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;

class ServerPasswordFile : public testing::Test {
  protected:
    // The password, or why there is none.
    std::string read(std::string_view content, fs::perms permissions = fs::perms::owner_read) {
        fs::remove(path_);
        directory_.write("password", content);
        fs::permissions(path_, permissions);
        return read();
    }

    std::string read() {
        try {
            return "[" +
                   Loading::optionsWithPassword({.name = "a",
                                                 .options = {.url = "http://h", .user = "u"},
                                                 .passwordFile = path_})
                       .password +
                   "]";
        } catch (const TeskBaseException& error) {
            return error.getMessage().data();
        }
    }

    const TemporaryDirectory directory_;
    const std::string path_ = directory_.path() / "password";
};

TEST_F(ServerPasswordFile, HoldsThePasswordInItsOnlyLine) {
    EXPECT_EQ(read("secret"), "[secret]");
    EXPECT_EQ(read("se cret \n"), "[se cret ]");
    EXPECT_EQ(read("secret\r\n"), "[secret]");
}

TEST_F(ServerPasswordFile, WithoutOneLineIsRefusedAndNotShown) {
    EXPECT_EQ(read(""), path_ + ": holds no password");
    EXPECT_EQ(read("\n"), path_ + ": holds no password");
    const std::string lines =
        path_ + ": has more than one line, or a zero byte; the password stands alone in it";
    EXPECT_EQ(read("secret\nother\n"), lines);
    EXPECT_EQ(read(std::string("secret\0", 7)), lines);
    EXPECT_EQ(read("secret\n\n"), lines);
}

TEST_F(ServerPasswordFile, IsRefusedWhereItIsTooLarge) {
    EXPECT_EQ(read(std::string(4096, 'x')), "[" + std::string(4096, 'x') + "]");
    EXPECT_EQ(read(std::string(4097, 'x')), path_ + ": is larger than 4.1 KB");
}

TEST_F(ServerPasswordFile, IsRefusedWhereOthersCanReadIt) {
    EXPECT_EQ(read("secret", fs::perms::owner_read | fs::perms::others_read),
              path_ +
                  ": others than its owner can read or write it; correct that with: chmod 600 " +
                  path_);
}

TEST_F(ServerPasswordFile, IsReadEachTime) {
    EXPECT_EQ(read("old"), "[old]");
    EXPECT_EQ(read("new"), "[new]");
    fs::remove(path_);
    EXPECT_EQ(read(), path_ + ": cannot be read: No such file or directory");
}

TEST(ServerSource, HasTheTypedPasswordWithoutAFile) {
    EXPECT_EQ(Loading::optionsWithPassword(
                  {.name = "a", .options = {.url = "http://h", .user = "u", .password = "p"}})
                  .password,
              "p");
}

}  // namespace
