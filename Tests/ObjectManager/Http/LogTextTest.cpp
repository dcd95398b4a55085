#include <gtest/gtest.h>

#include "ObjectManager/Http/LogText.h"

namespace {

using Http::toLogText;

TEST(LogText, PrintableTextIsKept) {
    EXPECT_EQ(toLogText(""), "");
    EXPECT_EQ(toLogText("GET /a b~!\"%"), "GET /a b~!\"%");
}

TEST(LogText, WhatIsNotPrintableIsEscaped) {
    using std::string_literals::operator""s;
    EXPECT_EQ(toLogText("a\r\nb\t\x1b[2J\x7f\0"s), "a\\x0d\\x0ab\\x09\\x1b[2J\\x7f\\x00");
    EXPECT_EQ(toLogText("\xc3\xbc\x80\xff"), "\\xc3\\xbc\\x80\\xff");
}

TEST(LogText, AnEscapeCannotBeForged) {
    EXPECT_EQ(toLogText("\\x0a"), "\\\\x0a");
}

TEST(LogText, LongTextsAreCut) {
    EXPECT_EQ(toLogText(std::string(200, 'a')), std::string(200, 'a'));
    EXPECT_EQ(toLogText(std::string(201, 'a')), std::string(200, 'a') + "...");
}

}  // namespace
