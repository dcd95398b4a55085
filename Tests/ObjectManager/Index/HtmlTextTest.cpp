#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Index/HtmlText.h"

namespace {

using Index::htmlText;
using Index::withoutEscapes;

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

TEST(HtmlText, EscapesAreTakenBackOnce) {
    EXPECT_EQ(withoutEscapes("a &lt;b&gt; &amp; c"), "a <b> & c");
    EXPECT_EQ(withoutEscapes("&amp;lt;"), "&lt;");
    EXPECT_EQ(withoutEscapes("&amp;amp;lt;"), "&amp;lt;");
}

TEST(HtmlText, WhatIsNoEscapeStays) {
    EXPECT_EQ(withoutEscapes(""), "");
    EXPECT_EQ(withoutEscapes("& &amp &l &lt &#60; &apos; &quot;"),
              "& &amp &l &lt &#60; &apos; &quot;");
}

}  // namespace
