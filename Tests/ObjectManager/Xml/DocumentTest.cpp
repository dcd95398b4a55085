#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "ObjectManager/Xml/Document.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Threads.h"

namespace {

using Xml::Document;

// Why a text is not well-formed; "none" when it is.
std::string errorIn(std::string_view text) {
    const Document document(text);
    EXPECT_EQ(document.fault().has_value(), document.root() == nullptr);
    return document.fault().value_or("none");
}

std::string repeated(const std::string& text, int count) {
    std::string all;
    for (int number = 0; number < count; ++number)
        all += text;
    return all;
}

TEST(XmlDocument, ReadsElementsAndAttributes) {
    const Document document(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<a:list xmlns:a=\"urn:a\" name='q&amp;\"'><!-- one -->"
        "<item a:name=\"no\"/></a:list>\n");
    ASSERT_EQ(document.fault(), std::nullopt);
    const xmlNode& list = *document.root();
    EXPECT_TRUE(Xml::isElement(list));
    EXPECT_EQ(Xml::localName(list), "list");
    EXPECT_EQ(Xml::attribute(list, "name"), "q&\"");
    EXPECT_EQ(Xml::attribute(list, "nothing"), "");
    ASSERT_NE(list.children, nullptr);
    EXPECT_FALSE(Xml::isElement(*list.children));
    const xmlNode& item = *list.children->next;
    EXPECT_EQ(Xml::localName(item), "item");
    EXPECT_EQ(Xml::attribute(item, "name"), "");
}

TEST(XmlDocument, SaysWhereAndHowATextIsMalformed) {
    EXPECT_EQ(errorIn(""), "line 1, column 1: Document is empty");
    EXPECT_EQ(errorIn(" \n "), "line 2, column 2: Start tag expected, '<' not found");
    EXPECT_EQ(errorIn({}), "it is empty");
    EXPECT_EQ(errorIn("text"), "line 1, column 1: Start tag expected, '<' not found");
    EXPECT_EQ(errorIn("<a>"), "line 1, column 4: Premature end of data in tag a line 1");
    EXPECT_EQ(errorIn("<a>\n<b></a>\n</b>"),
              "line 2, column 8: Opening and ending tag mismatch: b line 2 and a");
    EXPECT_EQ(errorIn("<a></a><b/>"), "line 1, column 8: Extra content at the end of the document");
    EXPECT_EQ(errorIn("<a>\n x & y</a>"), "line 2, column 5: xmlParseEntityRef: no name");
    EXPECT_EQ(errorIn("<a>&nbsp;</a>"), "line 1, column 10: Entity 'nbsp' not defined");
    EXPECT_EQ(errorIn("<a>&#1;</a>"), "line 1, column 8: xmlParseCharRef: invalid xmlChar value 1");
    EXPECT_EQ(errorIn("<a>1 < 2</a>"), "line 1, column 7: StartTag: invalid element name");
    EXPECT_EQ(errorIn("<a b=\"<\"/>"),
              "line 1, column 7: Unescaped '<' not allowed in attributes values");
    EXPECT_EQ(errorIn("<a b=\"1\" b=\"2\"/>"), "line 1, column 15: Attribute b redefined");
    EXPECT_EQ(errorIn("<a b=1/>"), "line 1, column 6: AttValue: \" or ' expected");
    EXPECT_EQ(errorIn("<a\n  \x01/>"), "line 2, column 3: Couldn't find end of Start Tag a line 1");
    EXPECT_EQ(errorIn("<a>\n\xFF</a>"),
              "line 2, column 1: Input is not proper UTF-8, indicate encoding ! Bytes: 0xFF 0x3C "
              "0x2F 0x61");
    EXPECT_EQ(errorIn("<a>]]></a>"), "line 1, column 4: Sequence ']]>' not allowed in content");
    EXPECT_EQ(errorIn("<a><!-- -- --></a>"),
              "line 1, column 9: Double hyphen within comment: <!--");
    EXPECT_EQ(errorIn("\n<?xml version=\"1.0\"?><a/>"),
              "line 2, column 6: XML declaration allowed only at the start of the document");
    EXPECT_EQ(errorIn(std::string_view("<a>\0</a>", 8)),
              "line 1, column 4: Premature end of data in tag a line 1");
}

// Nothing is known of what the prefix stands for.
TEST(XmlDocument, PrefixesMustBeDeclared) {
    EXPECT_EQ(errorIn("<a>\n  <b:c/></a>"),
              "line 2, column 7: Namespace prefix b on c is not defined");
    EXPECT_EQ(errorIn("<a b:c='1'/>"),
              "line 1, column 11: Namespace prefix b for c on a is not defined");
}

TEST(XmlDocument, NamesOfNamespacesMayBeAnyText) {
    EXPECT_EQ(errorIn("<a:b xmlns:a='http://example.org/\xC3\xA9'/>"), "none");
    EXPECT_EQ(errorIn("<a:b xmlns:a='relative'/>"), "none");
}

TEST(XmlDocument, NamesTheFirstFaultNotItsConsequences) {
    EXPECT_EQ(errorIn("<a>\n<b>\n</c>\n</b>\n</a>\n"),
              "line 3, column 5: Opening and ending tag mismatch: b line 2 and c");
}

TEST(XmlDocument, IsMalformedWhereverItIsCutShort) {
    const std::string text = "<a b='1'>&amp;<c:d xmlns:c='urn:x'/>\xC3\xA9<!--e--></a>";
    EXPECT_EQ(errorIn(text), "none");
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_NE(errorIn(text.substr(0, length)), "none") << length;
}

TEST(XmlDocument, ReadsHugeTextsAndDeepElements) {
    const std::string tenMillion(10'000'001, 'x');
    EXPECT_EQ(errorIn("<a>" + tenMillion + "</a>"), "none");
    EXPECT_EQ(errorIn("<a b=\"" + tenMillion + "\"/>"), "none");
    constexpr int kDepth = 100'000;
    EXPECT_EQ(errorIn(repeated("<a>", kDepth) + repeated("</a>", kDepth)), "none");
}

TEST(XmlDocument, RefusesWhatIsLargerThanTheParserCounts) {
    // Only the size is looked at.
    const std::string_view text("<a/>", std::size_t{std::numeric_limits<int>::max()} + 1);
    EXPECT_EQ(errorIn(text), "it is larger than 2 GiB");
}

TEST(XmlDocument, FetchesNothing) {
    const TemporaryDirectory directory;
    const std::string file = directory.write("secret.txt", "secret");
    EXPECT_EQ(errorIn("<!DOCTYPE a [<!ENTITY e SYSTEM \"" + file + "\">]>\n<a>&e;</a>"),
              "line 2, column 7: Entity 'e' not defined");
    const std::string grammar = directory.write("a.dtd", "<!ENTITY e 'secret'>");
    EXPECT_EQ(errorIn("<!DOCTYPE a SYSTEM \"" + grammar + "\">\n<a>&e;</a>"),
              "line 2, column 7: Entity 'e' not defined");
    EXPECT_EQ(errorIn("<!DOCTYPE a [\n<!ENTITY % e SYSTEM 'http://localhost/a.dtd'>\n%e;]>\n<a/>"),
              "line 3, column 4: PEReference: %e; not found");
    EXPECT_EQ(errorIn("<!DOCTYPE a>\n<a/>"), "none");
}

// Ten entities of ten references each to the one before, which would be ten thousand million
// characters.
TEST(XmlDocument, EntitiesDoNotMultiply) {
    std::string declarations = "<!DOCTYPE a [<!ENTITY e0 'x'>\n";
    for (int number = 1; number <= 10; ++number) {
        declarations += "<!ENTITY e" + std::to_string(number) + " '" +
                        repeated("&e" + std::to_string(number - 1) + ";", 10) + "'>\n";
    }
    declarations += "]>\n";
    EXPECT_EQ(errorIn(declarations + "<a>&e10;</a>"),
              "line 13, column 9: Entity 'e10' not defined");
    EXPECT_EQ(errorIn(declarations + "<a b='&e10;'/>"),
              "line 13, column 12: Entity 'e10' not defined");
}

TEST(XmlDocument, AreReadByManyThreadsAtOnce) {
    runOnThreads(8, [](int index) {
        for (int round = 0; round < 50; ++round) {
            EXPECT_EQ(errorIn("<a>" + repeated("<b/>\n", index) + "</a>"), "none");
            EXPECT_EQ(errorIn("<a>" + repeated("\n", index) + "<"),
                      "line " + std::to_string(index + 1) + ", column " +
                          std::to_string(index == 0 ? 5 : 2) + ": StartTag: invalid element name");
        }
    });
}

}  // namespace
