#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/CimXml/Element.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

using CimXml::Attribute;
using CimXml::Element;
using CimXml::ElementRecorder;
using CimXml::Tag;

// <PROPERTY NAME="P" PROPAGATED="true"><QUALIFIER NAME="Q" PROPAGATED="..."><VALUE>x</VALUE>...
void record(ElementRecorder& recorder, const char* propagated, const char* qualifierPropagated) {
    recorder.begin(Tag::kProperty);
    recorder.attribute(Attribute::kPropagated, propagated);
    recorder.attribute(Attribute::kName, "P");
    recorder.begin(Tag::kQualifier);
    recorder.attribute(Attribute::kName, "Q");
    recorder.attribute(Attribute::kPropagated, qualifierPropagated);
    recorder.begin(Tag::kValue);
    recorder.text("x");
    recorder.text("yz");
    recorder.end();
    recorder.end();
    recorder.begin(Tag::kValue);
    recorder.end();
    recorder.end();
}

TEST(CimXmlElement, HasWhatWasRecorded) {
    ElementRecorder recorder;
    record(recorder, "TRUE", "false");
    EXPECT_FALSE(recorder.isOpen());
    const Element element = recorder.element();
    EXPECT_EQ(element.tag(), Tag::kProperty);
    EXPECT_TRUE(element.isPropagated());
    EXPECT_EQ(element.attribute(Attribute::kName), "P");
    EXPECT_EQ(element.attribute(Attribute::kType), std::nullopt);
    EXPECT_EQ(element.text(), "");
    EXPECT_EQ(element.count(), 4U);
    auto child = element.children().begin();
    EXPECT_EQ((*child).tag(), Tag::kQualifier);
    EXPECT_FALSE((*child).isPropagated());
    EXPECT_EQ((*(*child).children().begin()).text(), "xyz");
    ++child;
    EXPECT_EQ((*child).tag(), Tag::kValue);
    EXPECT_EQ((*child).text(), "");
    ++child;
    EXPECT_EQ(child, element.children().end());
}

TEST(CimXmlElement, IsEqualToOneThatDiffersInItsOwnMarkAlone) {
    const auto bodyOf = [](const char* propagated, const char* qualifierPropagated) {
        ElementRecorder recorder;
        record(recorder, propagated, qualifierPropagated);
        return std::string(recorder.element().body());
    };
    EXPECT_EQ(bodyOf("true", "true"), bodyOf("false", "true"));
    EXPECT_NE(bodyOf("true", "true"), bodyOf("true", "false"));
}

TEST(CimXmlElement, HoldsTextsWithAnyBytes) {
    ElementRecorder recorder;
    const std::string text("\0\xFF<>\n", 5);
    recorder.begin(Tag::kValue);
    recorder.attribute(Attribute::kName, text);
    recorder.text(text);
    recorder.end();
    EXPECT_EQ(recorder.element().text(), text);
    EXPECT_EQ(recorder.element().attribute(Attribute::kName), text);
}

// The tables of names are made when the first one is looked up: in this process, here.
TEST(CimXmlElement, ALookUpWithoutMemoryIsReported) {
    (void)AllocationProbe::failEachAllocation(
        [] {
            EXPECT_EQ(CimXml::tagOf("CLASS"), Tag::kClass);
            EXPECT_EQ(CimXml::attributeOf("NAME"), Attribute::kName);
        },
        [] {});
}

}  // namespace
