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

TEST(SourceText, GivesTheLineOfAPlaceWithoutItsEnd) {
    const SourceText source("a", "one\r\ntwo\n\nfour");
    EXPECT_EQ(source.lineAt(0), "one");
    EXPECT_EQ(source.lineAt(4), "one");
    EXPECT_EQ(source.lineAt(5), "two");
    EXPECT_EQ(source.lineAt(9), "");
    EXPECT_EQ(source.lineAt(12), "four");
    EXPECT_EQ(source.lineAt(1000), "four");
    EXPECT_EQ(SourceText("a", "").lineAt(0), "");
}

}  // namespace
