#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>

#include "Platform/Soap/SOAPElement.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Threads.h"

namespace {

constexpr unsigned long kWholeTree = std::numeric_limits<unsigned long>::max();

using Element = TSKSmrPtr<SOAPElement>;

Element makeElement(const char* localName, const char* prefix = nullptr) {
    return SOAPElement::makeElement(TSKSmrPtr<SOAPQName>::make(localName, prefix));
}

Element addChild(const Element& parent, const char* localName) {
    Element child = makeElement(localName);
    parent->addChildElement(child);
    return child;
}

void addAttribute(const Element& element, const char* name, const char* value) {
    element->addAttribute(TSKSmrPtr<SOAPQName>::make(name), value);
}

std::string printed(const Element& element, unsigned long depth = kWholeTree) {
    std::ostringstream stream;
    element->printXML(stream, depth);
    return stream.str();
}

TEST(SOAPElement, PrintsAnEmptyElementClosed) {
    EXPECT_EQ(printed(makeElement("a")), "<a/>\n");
}

TEST(SOAPElement, PrintsPrefixesOfElementsAndAttributes) {
    const Element root = makeElement("schema", "xs");
    root->addAttribute(TSKSmrPtr<SOAPQName>::make("lang", "xml"), "en");
    Element child = makeElement("element", "");
    root->addChildElement(child);
    EXPECT_EQ(printed(root),
              "<xs:schema xml:lang=\"en\">\n"
              "  <element/>\n"
              "</xs:schema>\n");
}

TEST(SOAPElement, PrintsTwoSpacesALevelAndANewlineAfterEveryTag) {
    const Element root = makeElement("a");
    const Element first = addChild(root, "b");
    addChild(addChild(first, "c"), "d");
    addChild(root, "e");
    EXPECT_EQ(printed(root),
              "<a>\n"
              "  <b>\n"
              "    <c>\n"
              "      <d/>\n"
              "    </c>\n"
              "  </b>\n"
              "  <e/>\n"
              "</a>\n");
}

TEST(SOAPElement, KeepsTheOrderOfAttributesAndChildren) {
    const Element root = makeElement("a");
    addAttribute(root, "z", "1");
    addAttribute(root, "a", "2");
    addAttribute(root, "m", "3");
    addAttribute(root, "a", "2");
    for (const char* const name : {"z", "a", "z"})
        addChild(root, name);
    EXPECT_EQ(printed(root),
              "<a z=\"1\" a=\"2\" m=\"3\" a=\"2\">\n"
              "  <z/>\n"
              "  <a/>\n"
              "  <z/>\n"
              "</a>\n");
}

TEST(SOAPElement, EscapesWhatAnAttributeCannotHold) {
    const Element root = makeElement("a");
    addAttribute(root, "v", "&<>\"\t\n\r");
    EXPECT_EQ(printed(root), "<a v=\"&amp;&lt;&gt;&quot;&#9;&#10;&#13;\"/>\n");
}

TEST(SOAPElement, EscapesBetweenOrdinaryText) {
    const Element root = makeElement("a");
    addAttribute(root, "v", "&amp; it's <b>\xc3\xbc</b> 100 %s");
    EXPECT_EQ(printed(root), "<a v=\"&amp;amp; it's &lt;b&gt;\xc3\xbc&lt;/b&gt; 100 %s\"/>\n");
}

TEST(SOAPElement, PrintsEmptyAttributes) {
    const Element root = makeElement("a");
    addAttribute(root, "v", "");
    root->addAttribute(TSKSmrPtr<SOAPQName>::make("w"), nullptr);
    EXPECT_EQ(printed(root), "<a v=\"\" w=\"\"/>\n");
}

TEST(SOAPElement, AttributesOfAnyLengthArePrinted) {
    const Element element = makeElement("a");
    std::string expected = "<a";
    for (std::size_t length = 0; length < 300; length += 7) {
        const std::string value(length, static_cast<char>('a' + length % 26));
        addAttribute(element, "v", value.c_str());
        expected += " v=\"" + value + "\"";
        EXPECT_EQ(printed(element), expected + "/>\n");
    }
}

TEST(SOAPElement, LeavesOutElementsDeeperThanTheGivenDepth) {
    const Element root = makeElement("a");
    addChild(addChild(root, "b"), "c");
    addChild(root, "d");
    EXPECT_EQ(printed(root, 0), "<a/>\n");
    EXPECT_EQ(printed(root, 1), "<a>\n  <b/>\n  <d/>\n</a>\n");
    EXPECT_EQ(printed(root, 2), "<a>\n  <b>\n    <c/>\n  </b>\n  <d/>\n</a>\n");
    EXPECT_EQ(printed(root, 3), printed(root));
}

TEST(SOAPElement, AChildMayHaveTwoParents) {
    const Element root = makeElement("a");
    Element shared = makeElement("shared");
    addChild(root, "b")->addChildElement(shared);
    root->addChildElement(shared);
    EXPECT_EQ(shared.owners(), 3);
    EXPECT_EQ(printed(root),
              "<a>\n"
              "  <b>\n"
              "    <shared/>\n"
              "  </b>\n"
              "  <shared/>\n"
              "</a>\n");
}

TEST(SOAPElement, KeepsSharedChildrenAliveAndReleasesThem) {
    Element shared = makeElement("shared");
    {
        const Element first = makeElement("a");
        const Element second = makeElement("b");
        first->addChildElement(shared);
        second->addChildElement(shared);
        EXPECT_EQ(shared.owners(), 3);
    }
    EXPECT_EQ(shared.owners(), 1);
}

TEST(SOAPElement, SharesItsNameWithOthers) {
    const auto name = TSKSmrPtr<SOAPQName>::make("element", "xs");
    const Element first = SOAPElement::makeElement(name);
    const Element second = SOAPElement::makeElement(name);
    EXPECT_EQ(first->getQname(), name);
    EXPECT_EQ(second->getQname(), name);
    EXPECT_EQ(name.owners(), 3);
    addAttribute(first, "only", "first");
    EXPECT_EQ(printed(first), "<xs:element only=\"first\"/>\n");
    EXPECT_EQ(printed(second), "<xs:element/>\n");
}

TEST(SOAPElement, PrintsTheSameTextEveryTime) {
    const Element root = makeElement("a");
    addAttribute(addChild(root, "b"), "c", "d");
    EXPECT_EQ(printed(root), printed(root));
}

TEST(SOAPElement, RefusesNullPointers) {
    EXPECT_THROW((void)SOAPElement::makeElement(nullptr), TSKNullPointerException);
    const Element root = makeElement("a");
    EXPECT_THROW(root->addAttribute(nullptr, "v"), TSKNullPointerException);
    Element null;
    EXPECT_THROW(root->addChildElement(null), TSKNullPointerException);
    EXPECT_EQ(printed(root), "<a/>\n");
}

// The printer gathers text in pieces of 8,192 bytes; nothing may get lost between them.
TEST(SOAPElement, PrintsTextOfEveryLengthAroundTheSizeOfItsBuffer) {
    for (const std::size_t length :
         {8170UL, 8186UL, 8187UL, 8188UL, 8189UL, 8190UL, 8191UL, 8192UL, 8193UL, 100'000UL}) {
        const std::string value(length, 'x');
        const Element root = makeElement("a");
        addAttribute(root, "v", value.c_str());
        addAttribute(root, "w", "<");
        EXPECT_EQ(printed(root), "<a v=\"" + value + "\" w=\"&lt;\"/>\n");
    }
}

TEST(SOAPElement, PrintsDeepTrees) {
    constexpr int kDepth = 1000;
    const Element root = makeElement("e");
    Element deepest = root;
    for (int level = 1; level < kDepth; ++level)
        deepest = addChild(deepest, "e");
    std::string expected;
    for (std::size_t level = 0; level < kDepth - 1; ++level)
        expected += std::string(2 * level, ' ') + "<e>\n";
    expected += std::string(2 * (kDepth - 1), ' ') + "<e/>\n";
    for (std::size_t level = kDepth - 1; level-- > 0;)
        expected += std::string(2 * level, ' ') + "</e>\n";
    EXPECT_EQ(printed(root), expected);
}

TEST(SOAPElement, AFailedStreamIsLeftFailed) {
    const Element root = makeElement("a");
    std::ostringstream stream;
    stream.setstate(std::ios::badbit);
    root->printXML(stream, kWholeTree);
    EXPECT_TRUE(stream.bad());
    EXPECT_EQ(stream.str(), "");

    std::ostringstream throwing;
    throwing.setstate(std::ios::badbit);
    EXPECT_THROW(throwing.exceptions(std::ios::badbit), std::ios::failure);
    EXPECT_THROW(root->printXML(throwing, kWholeTree), std::ios::failure);
}

TEST(SOAPElement, LeaksNothingWhenAnAllocationFails) {
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [] {
            const Element root = makeElement("schema", "xs");
            addAttribute(root, "targetNamespace", std::string(200, 'n').c_str());
            addAttribute(addChild(root, "a child with a long name"), "name", "a");
            addChild(root, "another child with a long name");
        },
        [] {});
    EXPECT_GE(failures, 10U);
}

TEST(SOAPElement, AFailedAddLeavesTheElementAsItWas) {
    const Element root = makeElement("a");
    addChild(root, "first");  // which needs no memory of its own
    Element child = makeElement("b");
    const auto name = TSKSmrPtr<SOAPQName>::make("v");
    const std::string longValue(200, 'x');  // which has no room in the element
    AllocationProbe::failAt(1);
    EXPECT_THROW(root->addChildElement(child), std::bad_alloc);
    AllocationProbe::failAt(1);
    EXPECT_THROW(root->addAttribute(name, longValue.c_str()), std::bad_alloc);
    AllocationProbe::failAt(0);
    EXPECT_EQ(child.owners(), 1);
    EXPECT_EQ(name.owners(), 1);
    EXPECT_EQ(printed(root), "<a>\n  <first/>\n</a>\n");
}

TEST(SOAPElement, MayBePrintedByManyThreadsAtOnce) {
    const Element root = makeElement("a");
    for (int count = 0; count < 100; ++count)
        addAttribute(addChild(root, "b"), "value", "x < y");
    const std::string expected = printed(root);
    runOnThreads(8, [&](int) { EXPECT_EQ(printed(root), expected); });
}

}  // namespace
