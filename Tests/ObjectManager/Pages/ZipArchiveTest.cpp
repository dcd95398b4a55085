#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

#include "ObjectManager/Pages/ZipArchive.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

using Pages::ZipArchive;
using std::string_literals::operator""s;

TEST(ZipArchive, IsWhatTheFormatSays) {
    std::string bytes;
    ZipArchive archive([&](std::string_view part) { bytes += part; });
    archive.add("b/c", "a");
    archive.finish();
    // Version 2.0, names in UTF-8, Deflate, 1980-01-01; checksum, sizes, length of the name.
    const std::string about =
        "\x14\0\0\x08\x08\0\0\0\x21\0\x43\xBE\xB7\xE8\x03\0\0\0\x01\0\0\0\x03\0\0\0"s;
    const std::string file = "PK\3\4" + about + "b/c" + "\x4B\x04\0"s;
    const std::string entry = "PK\1\2\x14\3" + about + "\0\0\0\0\0\0\0\0\xA4\x81\0\0\0\0"s + "b/c";
    const std::string end = "PK\5\6\0\0\0\0\1\0\1\0"s + static_cast<char>(entry.size()) +
                            "\0\0\0"s + static_cast<char>(file.size()) + "\0\0\0\0\0"s;
    EXPECT_EQ(bytes, file + entry + end);
}

TEST(ZipArchive, TheSameFilesMakeTheSameBytes) {
    const auto make = [] {
        std::string bytes;
        ZipArchive archive([&](std::string_view part) { bytes += part; });
        archive.add("one", std::string(100'000, 'a') + "b");
        archive.add("two", "");
        archive.finish();
        return bytes;
    };
    EXPECT_EQ(make(), make());
    EXPECT_LT(make().size(), 1'000U);
}

TEST(ZipArchive, HasRoomForSoManyFiles) {
    std::size_t size = 0;
    ZipArchive archive([&](std::string_view part) { size += part.size(); });
    for (int count = 0; count < 65'535; ++count)
        archive.add("a", "");
    EXPECT_THROW(archive.add("a", ""), TeskBaseException);
    archive.finish();
    EXPECT_GT(size, 65'535U * 30);
}

TEST(ZipArchive, ANameMayHaveSoManyBytes) {
    ZipArchive archive([](std::string_view /*part*/) {});
    archive.add(std::string(65'535, 'a'), "");
    EXPECT_THROW(archive.add(std::string(65'536, 'a'), ""), TeskBaseException);
}

TEST(ZipArchive, EndsWhenItsBytesCannotBeWritten) {
    ZipArchive archive([](std::string_view /*part*/) { throw std::runtime_error("full"); });
    EXPECT_THROW(archive.add("a", "b"), std::runtime_error);
}

}  // namespace
