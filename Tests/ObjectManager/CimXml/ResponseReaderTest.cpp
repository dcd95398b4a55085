#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>

#include "ObjectManager/CimXml/ResponseReader.h"
#include "ObjectManager/CimXml/ServerError.h"
#include "Tests/ObjectManager/CimXml/Messages.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

using CimXml::Attribute;
using CimXml::Element;
using CimXml::ServerError;
using CimXml::Tag;

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    for (std::size_t number = 0; number < count; ++number)
        all += text;
    return all;
}

// "7(NAME|text)": tag, name, text and elements within.
std::string shownElement(const Element& element) {
    std::string text = std::to_string(static_cast<int>(element.tag())) + "(" +
                       std::string(element.attribute(Attribute::kName).value_or("")) +
                       (element.text().empty() ? "" : "|" + std::string(element.text())) +
                       (element.isPropagated() ? "|propagated" : "");
    for (const Element child : element.children())
        text += " " + shownElement(child);
    return text + ")";
}

// The results of a response to "EnumerateClasses" that comes in parts, or the error.
std::string read(std::string_view response, std::size_t partSize, const CimXml::Limits& limits) {
    std::string results;
    try {
        CimXml::ResponseReader reader("EnumerateClasses", limits, [&](const Element& element) {
            results += (results.empty() ? "" : " ") + shownElement(element);
        });
        for (; !response.empty(); response.remove_prefix(std::min(partSize, response.size())))
            reader.read(response.substr(0, partSize));
        reader.finish();
    } catch (const ServerError& error) {
        return "error: " + std::string(error.getMessage());
    }
    return results;
}

std::string read(const std::string& response, const CimXml::Limits& limits = {}) {
    return read(response, response.size() + 1, limits);
}

std::string readClasses(const std::string& results, const CimXml::Limits& limits = {}) {
    return read(responseTo("EnumerateClasses", results), limits);
}

std::string tag(Tag tag) {
    return std::to_string(static_cast<int>(tag));
}

TEST(CimXmlResponseReader, HandsOverEachResultWithAllThatIsInIt) {
    EXPECT_EQ(readClasses("\n<CLASS NAME=\"A\"> <QUALIFIER NAME=\"Q\" PROPAGATED=\"true\">"
                          "<VALUE>x</VALUE></QUALIFIER></CLASS>\n<CLASS NAME=\"B\"/>"),
              tag(Tag::kClass) + "(A " + tag(Tag::kQualifier) + "(Q|propagated " +
                  tag(Tag::kValue) + "(|x))) " + tag(Tag::kClass) + "(B)");
}

TEST(CimXmlResponseReader, AResponseMayHaveNoResult) {
    EXPECT_EQ(readClasses(""), "");
    EXPECT_EQ(read(responseWith("EnumerateClasses", "")), "");
}

TEST(CimXmlResponseReader, TextsKeepSpacesReferencesAndSections) {
    const std::string value = tag(Tag::kClass) + "(A " + tag(Tag::kValue) + "(|";
    const auto readValue = [](const std::string& text) {
        return readClasses("<CLASS NAME=\"A\"><VALUE>" + text + "</VALUE></CLASS>");
    };
    EXPECT_EQ(readValue(" a  b\n"), value + " a  b\n))");
    EXPECT_EQ(readValue("   "), value + "   ))");
    EXPECT_EQ(readValue("&lt;&amp;&gt;&quot;&apos;&#10;&#x41;&#xE9;"),
              value + "<&>\"'\nA\xC3\xA9))");
    EXPECT_EQ(readValue("a<![CDATA[<b>&amp;]]>c"), value + "a<b>&amp;c))");
    EXPECT_EQ(readValue("a<!-- c --><?p?>b"), value + "ab))");
    EXPECT_EQ(readValue("\xE2\x82\xAC"), value + "\xE2\x82\xAC))");
}

TEST(CimXmlResponseReader, ReadsTheSameInPartsOfAnySize) {
    const std::string response =
        responseTo("EnumerateClasses",
                   "<CLASS NAME=\"A&amp;&#xE9;\"><VALUE>&lt;x<![CDATA[y]]>\xE2\x82\xAC"
                   "</VALUE><!-- z --><VALUE.NULL/></CLASS>");
    const std::string whole = read(response);
    EXPECT_TRUE(whole.starts_with(tag(Tag::kClass) + "(A&\xC3\xA9 ")) << whole;
    for (std::size_t size = 1; size < response.size(); ++size)
        EXPECT_EQ(read(response, size, {}), whole) << size;
}

TEST(CimXmlResponseReader, IsNotCimXmlWhereverItIsCutShort) {
    const std::string response =
        responseTo("EnumerateClasses",
                   "<CLASS NAME=\"A\"><VALUE>&lt;<![CDATA[y]]>\xE2\x82\xAC</VALUE></CLASS>");
    const std::size_t end = response.rfind('>') + 1;
    for (std::size_t length = 0; length < end; ++length) {
        EXPECT_NE(read(response.substr(0, length)).find("error: the response is not CIM-XML"),
                  std::string::npos)
            << length;
    }
    EXPECT_EQ(read(response.substr(0, end)), read(response));
}

TEST(CimXmlResponseReader, AnErrorOfTheOperationHasItsNumberAndName) {
    EXPECT_EQ(read(errorResponseTo("EnumerateClasses", "3", "no such &quot;x&quot;\x7F")),
              "error: CIM_ERR_INVALID_NAMESPACE (3): no such \"x\"\\x7f");
    EXPECT_EQ(read(errorResponseTo("EnumerateClasses", "99", "")), "error: status 99");
    EXPECT_EQ(read(responseWith("EnumerateClasses",
                                "<ERROR CODE=\"7\"><INSTANCE CLASSNAME=\"CIM_Error\"/></ERROR>")),
              "error: CIM_ERR_NOT_SUPPORTED (7)");
    EXPECT_EQ(read(errorResponseTo("EnumerateClasses", "no", "x")),
              "error: the response is not CIM-XML: its error has the code \"no\"");
}

TEST(CimXmlResponseReader, RefusesWhatIsNoResponseToTheRequest) {
    constexpr const char* kNotCimXml = "error: the response is not CIM-XML: ";
    const struct {
        std::string response;
        const char* reason;
    } kCases[] = {
        {"<html/>", "found the element \"html\", expected CIM"},
        {"<x:CIM xmlns:x=\"urn:x\"/>", "found the element \"CIM\", expected CIM"},
        {"<CIM><DECLARATION/></CIM>", "found the element \"DECLARATION\", expected MESSAGE"},
        {"<CIM/>", "it holds no response"},
        {"<CIM><MESSAGE ID=\"2\" PROTOCOLVERSION=\"1.0\"/></CIM>",
         "it is a response to the message \"2\""},
        {"<CIM><MESSAGE ID=\"1\" PROTOCOLVERSION=\"2.0\"/></CIM>",
         "its protocol version is \"2.0\""},
        {"<CIM><MESSAGE ID=\"1\" PROTOCOLVERSION=\"1.0\"><SIMPLEREQ/></MESSAGE></CIM>",
         "found the element \"SIMPLEREQ\", expected SIMPLERSP"},
        {responseTo("GetClass", ""), "it is a response to the operation \"GetClass\""},
        {responseWith("EnumerateClasses", "<IRETURNVALUE/><IRETURNVALUE/>"),
         "it holds more than one result"},
        {responseTo("EnumerateClasses", "<CLASS><VALUE>a<X/></VALUE></CLASS>"),
         "the element \"X\" is inside of a text"},
        {"", "it is cut short"},
        {"<CIM>", "it is cut short"},
        {responseTo("EnumerateClasses", "") + "x",
         "line 7, column 1: Extra content at the end of the document"},
        {responseTo("EnumerateClasses", "&x;"), "line 4, column 70: Entity 'x' not defined"},
        {responseTo("EnumerateClasses", "\xFF"),
         "line 4, column 67: Input is not proper UTF-8, indicate encoding ! Bytes: 0xFF 0x3C 0x2F "
         "0x49"},
    };
    for (const auto& [response, reason] : kCases)
        EXPECT_EQ(read(response), kNotCimXml + std::string(reason)) << response;
}

TEST(CimXmlResponseReader, EntitiesAndDocumentTypesAreRefused) {
    const std::string refusal =
        "error: the response is not CIM-XML: it has a document type declaration";
    EXPECT_EQ(read("<!DOCTYPE CIM><CIM/>"), refusal);
    EXPECT_EQ(read("<!DOCTYPE CIM SYSTEM \"file:///etc/passwd\"><CIM/>"), refusal);
    EXPECT_EQ(read("<!DOCTYPE CIM [<!ENTITY a \"x\"><!ENTITY b \"&a;&a;\">]><CIM>&b;</CIM>"),
              refusal);
}

TEST(CimXmlResponseReader, IsReadAsUtf8WhateverItSaysOfItself) {
    const std::string response = responseTo("EnumerateClasses", "<CLASS NAME=\"\xC3\xA9\"/>");
    const std::string result = tag(Tag::kClass) + "(\xC3\xA9)";
    EXPECT_EQ(read(response), result);
    EXPECT_EQ(read("\xEF\xBB\xBF" + response), result);
    std::string latin = response;
    latin.replace(latin.find("utf-8"), 5, "ISO-8859-1");
    EXPECT_EQ(read(latin), result);
    std::string wide;
    for (const char byte : std::string("<CIM/>"))
        wide += {byte, '\0'};
    EXPECT_TRUE(read(wide).starts_with("error: the response is not CIM-XML"));
    EXPECT_TRUE(read("\xFF\xFE" + wide).starts_with("error: the response is not CIM-XML"));
}

TEST(CimXmlResponseReader, UnknownElementsAreNamedAndTheirContentIsSkipped) {
    EXPECT_EQ(
        readClasses("<CLASS NAME=\"A\"><ODD><CLASS NAME=\"B\"/>x</ODD><VALUE/></CLASS><ODD/>"),
        tag(Tag::kClass) + "(A " + tag(Tag::kUnknown) + "(ODD) " + tag(Tag::kValue) + "()) " +
            tag(Tag::kUnknown) + "(ODD)");
}

TEST(CimXmlResponseReader, WhatTheCallerThrowsComesOut) {
    const CimXml::Limits limits;
    CimXml::ResponseReader reader("EnumerateClasses", limits,
                                  [](const Element&) { throw std::runtime_error("enough"); });
    EXPECT_THROW(reader.read(responseTo("EnumerateClasses", "<CLASS/>")), std::runtime_error);
}

// Limits, at N and N + 1.

TEST(CimXmlResponseReader, LimitsTheBytesOfAResponse) {
    CimXml::Limits limits;
    const std::string response = responseTo("EnumerateClasses", "");
    limits.maxResponseSize = response.size();
    EXPECT_EQ(read(response, 7, limits), "");
    limits.maxResponseSize = response.size() - 1;
    EXPECT_EQ(read(response, 7, limits), "error: the response has more than 247 bytes");
}

TEST(CimXmlResponseReader, LimitsTheNestingOfElements) {
    CimXml::Limits limits;
    limits.maxDepth = 7;
    EXPECT_NE(readClasses("<CLASS><QUALIFIER/></CLASS>", limits), "");
    const char* const error = "error: elements are nested in more than 7 others";
    EXPECT_EQ(readClasses("<CLASS><QUALIFIER><VALUE/></QUALIFIER></CLASS>", limits), error);
    EXPECT_EQ(readClasses("<ODD><ODD><ODD/></ODD></ODD>", limits), error);
}

TEST(CimXmlResponseReader, LimitsTheNumberOfResults) {
    CimXml::Limits limits;
    limits.maxResults = 2;
    EXPECT_FALSE(readClasses("<CLASS/><CLASS/>", limits).starts_with("error"));
    EXPECT_EQ(readClasses("<CLASS/><CLASS/><CLASS/>", limits),
              "error: the response holds more than 2 results");
}

TEST(CimXmlResponseReader, LimitsTheLengthOfAttributes) {
    CimXml::Limits limits;
    limits.maxAttributeSize = 20;
    EXPECT_FALSE(
        readClasses("<CLASS NAME=\"" + std::string(20, 'x') + "\"/>", limits).starts_with("error"));
    EXPECT_EQ(readClasses("<CLASS NAME=\"" + std::string(21, 'x') + "\"/>", limits),
              "error: an attribute has more than 20 bytes");
}

TEST(CimXmlResponseReader, LimitsTheNumberOfAttributes) {
    std::string attributes;
    for (int number = 1; number <= 33; ++number) {
        attributes += " a" + std::to_string(number) + "=\"\"";
        EXPECT_EQ(readClasses("<CLASS" + attributes + "/>").starts_with("error"), number == 33);
    }
    EXPECT_EQ(readClasses("<CLASS" + attributes + "/>"),
              "error: an element has more than 32 attributes");
}

TEST(CimXmlResponseReader, LimitsTheBytesOfAClass) {
    CimXml::Limits limits;
    limits.maxClassSize = 1000;
    EXPECT_EQ(readClasses("<CLASS><VALUE>" + std::string(1000, 'x') + "</VALUE></CLASS>", limits),
              "error: a class has more than 1,000 bytes");
    EXPECT_EQ(readClasses("<CLASS>" + repeated("<VALUE/>", 1000) + "</CLASS>", limits),
              "error: a class has more than 1,000 bytes");
    EXPECT_FALSE(
        readClasses(repeated("<CLASS><VALUE>" + std::string(900, 'x') + "</VALUE></CLASS>", 3),
                    limits)
            .starts_with("error"));
}

// A tag of megabytes would take the parser time by the square of its attributes.
TEST(CimXmlResponseReader, LimitsTheLengthOfTagsAndComments) {
    const std::string error = "error: a tag or a comment has more than 16,384 bytes";
    EXPECT_EQ(readClasses("<CLASS" + repeated(" a=\"\"", 100'000)), error);
    EXPECT_EQ(readClasses("<!-- " + std::string(40'000, 'x')), error);
    EXPECT_EQ(readClasses("<?p " + std::string(40'000, 'x')), error);
    EXPECT_EQ(readClasses("<" + std::string(40'000, 'x')), error);
}

TEST(CimXmlResponseReader, TextsMayBeLongerThanTags) {
    const std::string text(1'000'000, 'x');
    EXPECT_EQ(readClasses("<CLASS><VALUE>" + text + "</VALUE></CLASS>").size(),
              text.size() + std::string("2( 21(|))").size());
}

TEST(CimXmlResponseReader, AFailedAllocationIsReported) {
    const std::string response =
        responseTo("EnumerateClasses",
                   "<CLASS NAME=\"A\"><VALUE>" + std::string(1000, 'x') + "</VALUE></CLASS>");
    const std::string whole = read(response);
    EXPECT_GT(AllocationProbe::failEachAllocation([&] { EXPECT_EQ(read(response, 50, {}), whole); },
                                                  [] {}),
              3U);
}

}  // namespace
