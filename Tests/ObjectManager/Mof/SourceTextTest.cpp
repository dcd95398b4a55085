#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Mof/SourceText.h"

namespace {

using Mof::LineAndColumn;
using Mof::SourceText;

std::string placeOf(const SourceText& source, std::size_t offset) {
    const LineAndColumn place = source.locate(offset);
    return std::to_string(place.line) + ":" + std::to_string(place.column);
}

TEST(SourceText, Utf8IsKept) {
    EXPECT_EQ(SourceText("a", "gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x98\x80").text(),
              "gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x98\x80");
}

TEST(SourceText, AByteOrderMarkIsLeftOut) {
    EXPECT_EQ(SourceText("a",
                         "\xEF\xBB\xBF"
                         "class")
                  .text(),
              "class");
}

TEST(SourceText, WhatIsNoUtf8IsReadAsLatin1) {
    EXPECT_EQ(SourceText("a", "gr\xFC\xDF").text(), "gr\xC3\xBC\xC3\x9F");
    EXPECT_EQ(SourceText("a", "\x80").text(), "\xC2\x80");
    for (const char* const malformed :
         {"\xC0\x80", "\xC3", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
          "\xF5\x80\x80\x80", "\xE2\x82", "\xF0\x9F\x98"})
        EXPECT_EQ(SourceText("a", malformed).text().size(), 2 * std::string(malformed).size());
}

TEST(SourceText, PlacesCountLinesAndCharactersFromOne) {
    const SourceText source("a", "one\n\ttwo\n\xC3\xBC!\r\n");
    EXPECT_EQ(placeOf(source, 0), "1:1");
    EXPECT_EQ(placeOf(source, 2), "1:3");
    EXPECT_EQ(placeOf(source, 3), "1:4");
    EXPECT_EQ(placeOf(source, 4), "2:1");
    EXPECT_EQ(placeOf(source, 5), "2:2");
    EXPECT_EQ(placeOf(source, 11), "3:2");  // behind the two bytes of one character
    EXPECT_EQ(placeOf(source, 14), "4:1");
    EXPECT_EQ(placeOf(source, 1000), "4:1");
}

TEST(SourceText, ALineEndsWithCarriageReturnAloneToo) {
    const SourceText source("a", "one\rtwo\r\nthree\r\rfive\n\rseven");
    EXPECT_EQ(placeOf(source, 3), "1:4");
    EXPECT_EQ(placeOf(source, 4), "2:1");
    EXPECT_EQ(placeOf(source, 7), "2:4");
    EXPECT_EQ(placeOf(source, 8), "2:5");  // between the two bytes of one end
    EXPECT_EQ(placeOf(source, 9), "3:1");
    EXPECT_EQ(placeOf(source, 15), "4:1");
    EXPECT_EQ(placeOf(source, 16), "5:1");
    EXPECT_EQ(placeOf(source, 22), "7:1");
}

TEST(SourceText, TellsUtf16FromOtherTextWithZeroBytes) {
    using namespace std::string_literals;
    EXPECT_TRUE(SourceText("a", "\xFF\xFE/\0/\0"s).looksLikeUtf16());
    EXPECT_TRUE(SourceText("a", "\xFE\xFF\0/\0/"s).looksLikeUtf16());
    EXPECT_TRUE(SourceText("a", "/\0/\0"s).looksLikeUtf16());
    EXPECT_TRUE(SourceText("a", "\0/\0/"s).looksLikeUtf16());
    EXPECT_FALSE(SourceText("a", "/\0//"s).looksLikeUtf16());
    EXPECT_FALSE(SourceText("a", "\0\0\0\0"s).looksLikeUtf16());
    EXPECT_FALSE(SourceText("a", "/\0/"s).looksLikeUtf16());
    EXPECT_FALSE(SourceText("a", "class\0"s).looksLikeUtf16());
    EXPECT_FALSE(SourceText("a", "").looksLikeUtf16());
}

// An excerpt as "SKIPPED:TEXT", with "+" behind it where the line continues.
std::string excerptOf(const SourceText& source, std::size_t offset) {
    const Mof::LineExcerpt excerpt = source.excerptAt(offset);
    return std::to_string(excerpt.skipped) + ":" + std::string(excerpt.text) +
           (excerpt.continues ? "+" : "");
}

TEST(SourceText, GivesTheLineOfAPlaceWithoutItsEnd) {
    const SourceText source("a", "one\r\ntwo\n\nfour");
    EXPECT_EQ(excerptOf(source, 0), "0:one");
    EXPECT_EQ(excerptOf(source, 4), "0:one");
    EXPECT_EQ(excerptOf(source, 5), "0:two");
    EXPECT_EQ(excerptOf(source, 9), "0:");
    EXPECT_EQ(excerptOf(source, 12), "0:four");
    EXPECT_EQ(excerptOf(source, 1000), "0:four");
    EXPECT_EQ(excerptOf(SourceText("a", ""), 0), "0:");
    EXPECT_EQ(excerptOf(SourceText("a", "one\rtwo\r"), 4), "0:two");
}

TEST(SourceText, GivesWhatSurroundsAPlaceInALongLine) {
    constexpr std::size_t kLongest = SourceText::kMaxExcerpt;
    const std::string longest = std::string(kLongest - 1, 'a') + "b";
    EXPECT_EQ(excerptOf(SourceText("a", "\n" + longest + "\n"), 1), "0:" + longest);

    const SourceText longer("a", "\n" + longest + "c\n");
    EXPECT_EQ(excerptOf(longer, 1), "0:" + longest + "+");
    EXPECT_EQ(excerptOf(longer, 1 + kLongest / 2), "0:" + longest + "+");
    EXPECT_EQ(excerptOf(longer, 2 + kLongest / 2), "1:" + longest.substr(1) + "c");
    const std::string secondHalf = longest.substr(kLongest / 2 + 1) + "c";
    EXPECT_EQ(excerptOf(longer, 1 + kLongest + 1), "101:" + secondHalf);
    EXPECT_EQ(excerptOf(longer, 1000), "0:");  // the line behind it
}

TEST(SourceText, CutsALongLineBetweenCharacters) {
    std::string line = "a";
    for (std::size_t count = 0; count < SourceText::kMaxExcerpt; ++count)
        line += "\xC3\xBC";
    const SourceText source("a", line);
    EXPECT_EQ(excerptOf(source, 0), "0:" + line.substr(0, 199) + "+");
    EXPECT_EQ(excerptOf(source, 102), "1:" + line.substr(1, 200) + "+");
    EXPECT_EQ(excerptOf(source, 103), "2:" + line.substr(3, 200) + "+");
}

}  // namespace
