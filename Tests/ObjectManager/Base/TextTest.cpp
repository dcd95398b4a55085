#include <gtest/gtest.h>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

using Base::bytesText;
using Base::counted;
using Base::htmlText;
using Base::joined;
using Base::logText;
using Base::percentEncodedPath;
using Base::secondsText;
using Base::withSeparators;
using Base::xmlText;

TEST(Text, TheReasonOfAFailureIsWhatAMessageSays) {
    EXPECT_EQ(Base::reasonOf(TeskBaseException("Somewhere", "it is too late", 1)),
              "it is too late");
    EXPECT_EQ(Base::reasonOf(std::bad_alloc()), "there is not enough memory");
    EXPECT_EQ(Base::reasonOf(std::runtime_error("it is too early")), "it is too early");
}

TEST(Text, QuotesAndJoins) {
    EXPECT_EQ(Base::quoted("CIM_Foo"), "\"CIM_Foo\"");
    EXPECT_EQ(joined({}, ", "), "");
    EXPECT_EQ(joined(std::vector<std::string>{"a"}, ", ", " or "), "a");
    EXPECT_EQ(joined(std::vector<std::string>{"a", "b"}, ", ", " or "), "a or b");
    EXPECT_EQ(joined(std::vector<std::string>{"a", "b", "c"}, ", ", " or "), "a, b or c");
    EXPECT_EQ(joined(std::vector<std::string>{"a", "", "c"}, "+"), "a++c");
}

TEST(Text, SeparatesDigitsByThrees) {
    EXPECT_EQ(withSeparators(0), "0");
    EXPECT_EQ(withSeparators(999), "999");
    EXPECT_EQ(withSeparators(1000), "1,000");
    EXPECT_EQ(withSeparators(999'999), "999,999");
    EXPECT_EQ(withSeparators(1'000'000), "1,000,000");
    EXPECT_EQ(withSeparators(std::numeric_limits<std::size_t>::max()),
              "18,446,744,073,709,551,615");
}

TEST(Text, CountsInWords) {
    EXPECT_EQ(counted(0, "class", "classes"), "0 classes");
    EXPECT_EQ(counted(1, "class", "classes"), "1 class");
    EXPECT_EQ(counted(2, "class", "classes"), "2 classes");
    EXPECT_EQ(counted(1438, "class", "classes"), "1,438 classes");
}

TEST(Text, SizesHaveTheUnitThatFits) {
    EXPECT_EQ(bytesText(0), "0 bytes");
    EXPECT_EQ(bytesText(1), "1 byte");
    EXPECT_EQ(bytesText(999), "999 bytes");
    EXPECT_EQ(bytesText(1000), "1.0 KB");
    EXPECT_EQ(bytesText(1049), "1.0 KB");
    EXPECT_EQ(bytesText(1051), "1.1 KB");
    EXPECT_EQ(bytesText(2'414'958), "2.4 MB");
    EXPECT_EQ(bytesText(12'000'000'000), "12.0 GB");
    EXPECT_EQ(bytesText(12'000'000'000'000), "12.0 TB");
    EXPECT_EQ(bytesText(12'000'000'000'000'000), "12000.0 TB");
}

// Never "1000.0 KB".
TEST(Text, SizesThatRoundUpToAThousandHaveTheNextUnit) {
    EXPECT_EQ(bytesText(999'949), "999.9 KB");
    EXPECT_EQ(bytesText(999'950), "1.0 MB");
    EXPECT_EQ(bytesText(999'949'999), "999.9 MB");
    EXPECT_EQ(bytesText(999'950'000), "1.0 GB");
    EXPECT_EQ(bytesText(999'950'000'000), "1.0 TB");
}

TEST(Text, SecondsHaveTwoDecimals) {
    EXPECT_EQ(secondsText(0), "0.00 s");
    EXPECT_EQ(secondsText(0.516), "0.52 s");
    EXPECT_EQ(secondsText(61.001), "61.00 s");
}

TEST(LogText, PrintableTextIsKept) {
    EXPECT_EQ(logText(""), "");
    EXPECT_EQ(logText("GET /a b~!\"%"), "GET /a b~!\"%");
}

TEST(LogText, WhatIsNotPrintableIsEscaped) {
    using std::string_literals::operator""s;
    EXPECT_EQ(logText("a\r\nb\t\x1b[2J\x7f\0"s), "a\\x0d\\x0ab\\x09\\x1b[2J\\x7f\\x00");
    EXPECT_EQ(logText("\xc3\xbc\x80\xff"), "\\xc3\\xbc\\x80\\xff");
}

TEST(LogText, AnEscapeCannotBeForged) {
    EXPECT_EQ(logText("\\x0a"), "\\\\x0a");
}

TEST(LogText, LongTextsAreCut) {
    EXPECT_EQ(logText(std::string(200, 'a')), std::string(200, 'a'));
    EXPECT_EQ(logText(std::string(201, 'a')), std::string(200, 'a') + "...");
}

TEST(PercentEncoding, PathsOfClassesStayAsTheyAre) {
    EXPECT_EQ(percentEncodedPath("root/cimv2/CIM_Foo-1.0~x"), "root/cimv2/CIM_Foo-1.0~x");
    EXPECT_EQ(percentEncodedPath(""), "");
}

TEST(PercentEncoding, EverythingElseIsEncoded) {
    EXPECT_EQ(percentEncodedPath("a b"), "a%20b");
    EXPECT_EQ(percentEncodedPath("<>\"'`=&?#%:"), "%3C%3E%22%27%60%3D%26%3F%23%25%3A");
    EXPECT_EQ(percentEncodedPath("Größe"), "Gr%C3%B6%C3%9Fe");
    EXPECT_EQ(percentEncodedPath(std::string("\0\xFF", 2)), "%00%FF");
}

TEST(HtmlText, WhatIsMarkupIsEscaped) {
    EXPECT_EQ(htmlText("<a href=\"x\">b & c</a>"),
              "&lt;a href=&quot;x&quot;&gt;b &amp; c&lt;/a&gt;");
    EXPECT_EQ(htmlText("&lt;"), "&amp;lt;");
}

TEST(HtmlText, OtherTextStaysAsItIs) {
    EXPECT_EQ(htmlText(""), "");
    EXPECT_EQ(htmlText("a\tb\nc 'd' Größe € 😀"), "a\tb\nc 'd' Größe € 😀");
}

TEST(HtmlText, WhatHtmlCannotHoldIsReplaced) {
    EXPECT_EQ(htmlText(std::string("a\0b", 3)), "a\uFFFDb");
    EXPECT_EQ(htmlText("\x01\x08\x0B\x0C\r\x1F\x7F"), "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(htmlText("\xC2\x80\xC2\x9F\xC2\xA0"), "\uFFFD\uFFFD\xC2\xA0");
}

TEST(HtmlText, BytesThatAreNoUtf8AreReplacedEach) {
    EXPECT_EQ(htmlText("a\x80"), "a\uFFFD");
    EXPECT_EQ(htmlText("a\xE2\x82"), "a\uFFFD\uFFFD");
    EXPECT_EQ(htmlText("\xC0\xBC"), "\uFFFD\uFFFD");
    EXPECT_EQ(htmlText("\xED\xA0\x80<"), "\uFFFD\uFFFD\uFFFD&lt;");
}

TEST(XmlText, WhatIsMarkupIsEscapedAndNothingElse) {
    EXPECT_EQ(xmlText("<a b=\"c\">'&lt;"), "&lt;a b=\"c\"&gt;'&amp;lt;");
    EXPECT_EQ(xmlText("Größe\x01\xFF"), "Größe\x01\xFF");
    EXPECT_EQ(xmlText(""), "");
}

TEST(XmlText, KnowsWhatNeedsEscapes) {
    for (const char* text : {"&", "a<", ">b"})
        EXPECT_TRUE(Base::needsXmlEscapes(text)) << text;
    for (const char* text : {"", "a \"b\" 'c' Größe"})
        EXPECT_FALSE(Base::needsXmlEscapes(text)) << text;
}

TEST(ShellQuoted, IsOneWordOfACommand) {
    EXPECT_EQ(Base::shellQuoted("/a/b_c-1.d"), "/a/b_c-1.d");
    EXPECT_EQ(Base::shellQuoted(""), "''");
    EXPECT_EQ(Base::shellQuoted("a b$"), "'a b$'");
    EXPECT_EQ(Base::shellQuoted("it's"), "'it'\\''s'");
}

}  // namespace
