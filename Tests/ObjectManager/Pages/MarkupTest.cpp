#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Pages/Markup.h"
#include "Tests/Support/MofModel.h"

namespace {

TEST(Markup, EmptyLinesSeparateParagraphs) {
    EXPECT_EQ(Pages::paragraphs("a\nb\n\nc \n \t\r\n\n d\n"), "<p>a\nb</p>\n<p>c</p>\n<p>d</p>\n");
    EXPECT_EQ(Pages::paragraphs(" \n\n "), "");
    EXPECT_EQ(Pages::paragraphs(""), "");
}

TEST(Markup, TextsAreEscaped) {
    EXPECT_EQ(Pages::paragraphs("<b>\"&amp;\"\x01\xFF"),
              "<p>&lt;b&gt;&quot;&amp;amp;&quot;\xEF\xBF\xBD\xEF\xBF\xBD</p>\n");
    EXPECT_EQ(Pages::badge("<a>"), " <span class=\"badge \">&lt;a&gt;</span>");
    EXPECT_EQ(Pages::code("<a>"), "<code>&lt;a&gt;</code>");
}

TEST(Markup, OnlyLongTextsAreFolded) {
    const std::string text = "One. " + std::string(235, 'B');
    EXPECT_EQ(Pages::foldedText(text), "<p>" + text + "</p>\n");
    EXPECT_EQ(Pages::foldedText(text + "B"),
              "<details class=text><summary><span>One.</span></summary>\n<p>" + text +
                  "B</p>\n</details>\n");
    const std::string marks = Pages::foldedText("<<. " + std::string(300, '<'));
    EXPECT_EQ(marks.find("<span>&lt;&lt;.</span>"), 29U);
}

TEST(Markup, ClassesThatThereAreAreLinks) {
    const MofModel model("class TST_Thing {};");
    const Pages::ClassRelations relations(model.nameSpace());
    const auto served = Pages::Layout::kServed;
    EXPECT_EQ(Pages::classLink(relations, served, "tst_thing"), "<a href=TST_Thing>TST_Thing</a>");
    EXPECT_EQ(Pages::classLink(relations, Pages::Layout::kExported, "TST_Thing"),
              "<a href=TST_Thing.html>TST_Thing</a>");
    EXPECT_EQ(Pages::classLink(relations, served, "<b>"), "&lt;b&gt;");
    EXPECT_EQ(Pages::mentionLink(relations, served, "TST_Thing.A<"),
              "<a href=TST_Thing>TST_Thing</a>.A&lt;");
    EXPECT_EQ(Pages::mentionLink(relations, served, "TST_Thing|A"),
              "<a href=TST_Thing>TST_Thing</a>|A");
    EXPECT_EQ(Pages::mentionLink(relations, served, "no class"), "no class");
}

}  // namespace
