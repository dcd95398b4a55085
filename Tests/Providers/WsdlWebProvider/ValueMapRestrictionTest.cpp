#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/SchemaPrinting.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/HostCalls.h"

namespace {

using Element = TSKSmrPtr<SOAPElement>;
using namespace SchemaPrinting;

struct MaxLength {
    bool add = false;
    long value = 0;
};

std::string restrictionOf(const ModelType& type, const ModelValue& valueMap,
                          const MaxLength& maxLength = {}, const char* prefix = "xs") {
    return contentOf(
        [&](Element& parent) {
            WsdlUtil::addRestrictionValueMapChildElement(parent, type, valueMap, maxLength.add,
                                                         maxLength.value);
        },
        prefix);
}

// Most tests restrict a uint8.
std::string byteRestrictionOf(const ModelValue& valueMap) {
    return restrictionOf("uint8", valueMap);
}

// What is expected: for a map without ranges an enumeration, else a union of the members below.

std::string enumeration(const std::string& base, std::initializer_list<const char*> values) {
    return parentOf(element("restriction base=\"" + base + "\"",
                            facets("enumeration", values) + kAnyAttribute));
}

std::string unionWithoutWildcard(const std::string& members) {
    return parentOf(element("restriction base=\"cim:cimAnySimpleType\"",
                            element("simpleType", element("union", members))));
}

std::string unionOf(std::initializer_list<std::string> members) {
    std::string content;
    for (const std::string& member : members)
        content += member;
    return parentOf(element("restriction base=\"cim:cimAnySimpleType\"",
                            element("simpleType", element("union", content)) + kAnyAttribute));
}

std::string simpleType(const std::string& base, const std::string& content) {
    return element("simpleType", element("restriction base=\"" + base + "\"", content));
}

constexpr const char* kByte = "xs:unsignedByte";

std::string singles(std::initializer_list<const char*> values, const char* base = kByte) {
    return simpleType(base, facets("enumeration", values));
}

std::string interval(const char* lower, const char* upper, const char* base = kByte) {
    return simpleType(base, facets("minInclusive", {lower}) + facets("maxInclusive", {upper}));
}

std::string from(const char* lower, const char* base = kByte) {
    return simpleType(base, facets("minInclusive", {lower}));
}

// The values missing below a lone "..", and the interval above it.
std::string gaps(std::initializer_list<const char*> values, const std::string& above,
                 const char* base = kByte) {
    return element("simpleType", element("union", singles(values, base) + above));
}

// --- Without ranges

TEST(ValueMapRestriction, ListedValuesMakeAnEnumeration) {
    EXPECT_EQ(restrictionOf("uint16", {"0", "1", "2"}), R"(
<xs:parent>
  <xs:restriction base="cim:cimUnsignedShort">
    <xs:enumeration value="0"/>
    <xs:enumeration value="1"/>
    <xs:enumeration value="2"/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:restriction>
</xs:parent>
)");
}

TEST(ValueMapRestriction, MaxLengthStandsBeforeTheEnumeration) {
    EXPECT_EQ(restrictionOf("uint16", {"0", "1", "2"}, {.add = true, .value = 8}), R"(
<xs:parent>
  <xs:restriction base="cim:cimUnsignedShort">
    <xs:maxLength value="8"/>
    <xs:enumeration value="0"/>
    <xs:enumeration value="1"/>
    <xs:enumeration value="2"/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:restriction>
</xs:parent>
)");
}

TEST(ValueMapRestriction, MaxLengthIsIgnoredWithoutItsFlag) {
    EXPECT_EQ(restrictionOf("uint8", {"1"}, {.add = false, .value = 8}),
              enumeration("cim:cimUnsignedByte", {"1"}));
}

TEST(ValueMapRestriction, ListedHexadecimalNumbersAreConvertedUnlessTheTypeIsAString) {
    EXPECT_EQ(restrictionOf("uint16", {"0x10", "1x", "Max"}),
              enumeration("cim:cimUnsignedShort", {"16", "1", "0"}));
    EXPECT_EQ(restrictionOf("char16", {"0x10", "1x", "Max"}),
              enumeration("cim:cimChar16", {"16", "1", "0"}));
    EXPECT_EQ(restrictionOf("string", {"0x10", "1x", "Max"}),
              enumeration("cim:cimString", {"0x10", "1x", "Max"}));
}

TEST(ValueMapRestriction, SingleDotsAreNoRange) {
    EXPECT_EQ(restrictionOf("string", {"a.b", ".", ". ."}),
              enumeration("cim:cimString", {"a.b", ".", ". ."}));
}

TEST(ValueMapRestriction, ListedDuplicatesAndEmptyTextsStay) {
    EXPECT_EQ(restrictionOf("string", {"b", "", "a", "b"}),
              enumeration("cim:cimString", {"b", "", "a", "b"}));
}

TEST(ValueMapRestriction, NullEntriesOfAnEnumerationAreSkipped) {
    EXPECT_EQ(byteRestrictionOf({nullptr, "1", nullptr, "2"}),
              enumeration("cim:cimUnsignedByte", {"1", "2"}));
}

TEST(ValueMapRestriction, NullEntriesAloneLeaveOnlyAnyAttribute) {
    EXPECT_EQ(byteRestrictionOf({nullptr, nullptr}), enumeration("cim:cimUnsignedByte", {}));
}

TEST(ValueMapRestriction, AnEmptyMapLeavesTheBaseAlone) {
    const std::string base = parentOf(element("restriction base=\"cim:cimUnsignedByte\""));
    EXPECT_EQ(byteRestrictionOf({}), base);
    EXPECT_EQ(restrictionOf("uint8", {}, {.add = true, .value = 8}), base);
}

TEST(ValueMapRestriction, AMapWithoutAListLeavesTheBaseAlone) {
    EXPECT_EQ(byteRestrictionOf(ModelValue{"1", ".."}.withoutElements()),
              parentOf(element("restriction base=\"cim:cimUnsignedByte\"")));
}

TEST(ValueMapRestriction, AScalarMapAddsNothing) {
    EXPECT_EQ(byteRestrictionOf("3"), "\n<xs:parent/>\n");
    EXPECT_EQ(byteRestrictionOf("3..5"), "\n<xs:parent/>\n");
    EXPECT_EQ(byteRestrictionOf(true), "\n<xs:parent/>\n");
}

TEST(ValueMapRestriction, AMapWithoutATypeAddsNothing) {
    EXPECT_EQ(byteRestrictionOf(ModelValue{"1", "2"}.withoutType()), "\n<xs:parent/>\n");
    EXPECT_EQ(byteRestrictionOf(ModelValue{"1", ".."}.withoutType()), "\n<xs:parent/>\n");
}

// --- Unions

TEST(ValueMapRestriction, ARangeMakesAUnion) {
    EXPECT_EQ(restrictionOf("uint16", {"1", "3..5"}), R"(
<xs:parent>
  <xs:restriction base="cim:cimAnySimpleType">
    <xs:simpleType>
      <xs:union>
        <xs:simpleType>
          <xs:restriction base="xs:unsignedShort">
            <xs:enumeration value="1"/>
          </xs:restriction>
        </xs:simpleType>
        <xs:simpleType>
          <xs:restriction base="xs:unsignedShort">
            <xs:minInclusive value="3"/>
            <xs:maxInclusive value="5"/>
          </xs:restriction>
        </xs:simpleType>
      </xs:union>
    </xs:simpleType>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:restriction>
</xs:parent>
)");
}

TEST(ValueMapRestriction, ALoneDotDotAddsTheGapsBelowAndTheIntervalAbove) {
    EXPECT_EQ(byteRestrictionOf({"2", "3", "5..7", "10", ".."}), R"(
<xs:parent>
  <xs:restriction base="cim:cimAnySimpleType">
    <xs:simpleType>
      <xs:union>
        <xs:simpleType>
          <xs:restriction base="xs:unsignedByte">
            <xs:enumeration value="2"/>
            <xs:enumeration value="3"/>
          </xs:restriction>
        </xs:simpleType>
        <xs:simpleType>
          <xs:restriction base="xs:unsignedByte">
            <xs:minInclusive value="5"/>
            <xs:maxInclusive value="7"/>
          </xs:restriction>
        </xs:simpleType>
        <xs:simpleType>
          <xs:restriction base="xs:unsignedByte">
            <xs:enumeration value="10"/>
          </xs:restriction>
        </xs:simpleType>
        <xs:simpleType>
          <xs:union>
            <xs:simpleType>
              <xs:restriction base="xs:unsignedByte">
                <xs:enumeration value="0"/>
                <xs:enumeration value="1"/>
                <xs:enumeration value="4"/>
                <xs:enumeration value="5"/>
                <xs:enumeration value="6"/>
                <xs:enumeration value="7"/>
                <xs:enumeration value="8"/>
                <xs:enumeration value="9"/>
              </xs:restriction>
            </xs:simpleType>
            <xs:simpleType>
              <xs:restriction base="xs:unsignedByte">
                <xs:minInclusive value="11"/>
              </xs:restriction>
            </xs:simpleType>
          </xs:union>
        </xs:simpleType>
      </xs:union>
    </xs:simpleType>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:restriction>
</xs:parent>
)");
}

TEST(ValueMapRestriction, AUnionTakesTheParentsPrefixOrNone) {
    EXPECT_EQ(restrictionOf("uint8", {"1", ".."}, {}, nullptr), R"(
<parent>
  <restriction base="cim:cimAnySimpleType">
    <simpleType>
      <union>
        <simpleType>
          <restriction base="xs:unsignedByte">
            <enumeration value="1"/>
          </restriction>
        </simpleType>
        <simpleType>
          <union>
            <simpleType>
              <restriction base="xs:unsignedByte">
                <enumeration value="0"/>
              </restriction>
            </simpleType>
            <simpleType>
              <restriction base="xs:unsignedByte">
                <minInclusive value="2"/>
              </restriction>
            </simpleType>
          </union>
        </simpleType>
      </union>
    </simpleType>
    <anyAttribute namespace="##any" processContents="lax"/>
  </restriction>
</parent>
)");
    EXPECT_EQ(restrictionOf("uint8", {"3..5"}, {}, "xsd"), R"(
<xsd:parent>
  <xsd:restriction base="cim:cimAnySimpleType">
    <xsd:simpleType>
      <xsd:union>
        <xsd:simpleType>
          <xsd:restriction base="xs:unsignedByte">
            <xsd:minInclusive value="3"/>
            <xsd:maxInclusive value="5"/>
          </xsd:restriction>
        </xsd:simpleType>
      </xsd:union>
    </xsd:simpleType>
    <xsd:anyAttribute namespace="##any" processContents="lax"/>
  </xsd:restriction>
</xsd:parent>
)");
}

TEST(ValueMapRestriction, MaxLengthHasNoEffectOnAUnion) {
    EXPECT_EQ(restrictionOf("uint8", {"3..5"}, {.add = true, .value = 8}),
              unionOf({interval("3", "5")}));
}

TEST(ValueMapRestriction, ConsecutiveSinglesShareAMemberUntilARangeClosesIt) {
    EXPECT_EQ(
        byteRestrictionOf({"1", "2", "4..6", "8", "9", "11..", "20", "..30", "40"}),
        unionOf({singles({"1", "2"}), interval("4", "6"), singles({"8", "9"}), interval("11", "19"),
                 singles({"20"}), interval("21", "30"), singles({"40"})}));
}

TEST(ValueMapRestriction, ALoneDotDotClosesTheEnumerationToo) {
    EXPECT_EQ(byteRestrictionOf({"0", "1", "..", "5", "6"}),
              unionOf({singles({"0", "1"}), interval("2", "4"), singles({"5", "6"})}));
}

TEST(ValueMapRestriction, SinglesBeforeTheFirstRangeBelongToTheUnion) {
    EXPECT_EQ(byteRestrictionOf({"9", "8", "7..7"}),
              unionOf({singles({"9", "8"}), interval("7", "7")}));
}

TEST(ValueMapRestriction, ConsecutiveRangesAreMembersOfTheirOwn) {
    EXPECT_EQ(byteRestrictionOf({"1..2", "3..4", "3..4"}),
              unionOf({interval("1", "2"), interval("3", "4"), interval("3", "4")}));
}

TEST(ValueMapRestriction, DuplicateSinglesAreWrittenAgainAndCountedOnce) {
    EXPECT_EQ(byteRestrictionOf({"2", "2", "0x02", ".."}),
              unionOf({singles({"2", "2", "2"}), gaps({"0", "1"}, from("3"))}));
}

TEST(ValueMapRestriction, NullEntriesOfAUnionAreSkipped) {
    EXPECT_EQ(byteRestrictionOf({nullptr, "1", nullptr, "2", nullptr, "3..5", nullptr}),
              unionOf({singles({"1", "2"}), interval("3", "5")}));
}

TEST(ValueMapRestriction, TextsThatAreNoNumbersAreWrittenAsTheyAre) {
    EXPECT_EQ(byteRestrictionOf({"a<b", "", "c&d..e"}),
              unionOf({singles({"a&lt;b", ""}), interval("c&amp;d", "e")}));
}

// --- Ranges

TEST(ValueMapRestriction, AClosedRangeHasBothBoundsAsWritten) {
    EXPECT_EQ(byteRestrictionOf({"3..5"}), unionOf({interval("3", "5")}));
    EXPECT_EQ(byteRestrictionOf({"007..+9"}), unionOf({interval("007", "+9")}));
    EXPECT_EQ(byteRestrictionOf({"-9..-3"}), unionOf({interval("-9", "-3")}));
    EXPECT_EQ(byteRestrictionOf({" 1 .. 2 "}), unionOf({interval(" 1 ", " 2 ")}));
}

TEST(ValueMapRestriction, HexadecimalBoundsAreWrittenInDecimal) {
    EXPECT_EQ(byteRestrictionOf({"3..0x10"}), unionOf({interval("3", "16")}));
    EXPECT_EQ(byteRestrictionOf({"0x0F..21"}), unionOf({interval("15", "21")}));
    EXPECT_EQ(byteRestrictionOf({"0x20..0X2f"}), unionOf({interval("32", "47")}));
    EXPECT_EQ(byteRestrictionOf({"..0x10"}), unionOf({interval("0", "16")}));
    EXPECT_EQ(byteRestrictionOf({"0x10.."}), unionOf({from("16")}));
}

TEST(ValueMapRestriction, OnlyTheBoundWithAnXIsConverted) {
    EXPECT_EQ(byteRestrictionOf({"Min..Max"}), unionOf({interval("Min", "0")}));
    EXPECT_EQ(byteRestrictionOf({"Max..Min"}), unionOf({interval("0", "Min")}));
}

TEST(ValueMapRestriction, ARangeOpenBelowStartsAfterThePreviousEntry) {
    EXPECT_EQ(byteRestrictionOf({"2", "..5"}), unionOf({singles({"2"}), interval("3", "5")}));
}

TEST(ValueMapRestriction, ARangeOpenBelowInFirstPlaceStartsAt0) {
    EXPECT_EQ(byteRestrictionOf({"..5"}), unionOf({interval("0", "5")}));
    EXPECT_EQ(byteRestrictionOf({"..3", "9", "9"}),
              unionOf({interval("0", "3"), singles({"9", "9"})}));
}

TEST(ValueMapRestriction, ARangeOpenAboveEndsBeforeTheNextEntry) {
    EXPECT_EQ(byteRestrictionOf({"7..", "12"}), unionOf({interval("7", "11"), singles({"12"})}));
}

TEST(ValueMapRestriction, ARangeOpenAboveInLastPlaceHasNoUpperBound) {
    EXPECT_EQ(byteRestrictionOf({"1", "3.."}), unionOf({singles({"1"}), from("3")}));
}

TEST(ValueMapRestriction, HexadecimalNeighboursBoundOpenRanges) {
    EXPECT_EQ(byteRestrictionOf({"0x10", "..0x20"}),
              unionOf({singles({"16"}), interval("17", "32")}));
    EXPECT_EQ(byteRestrictionOf({"3..", "0X10"}), unionOf({interval("3", "15"), singles({"16"})}));
    EXPECT_EQ(byteRestrictionOf({"0x0F", "0x10..", "0x20"}),
              unionOf({singles({"15"}), interval("16", "31"), singles({"32"})}));
}

// A range counts as the number that it begins with.
TEST(ValueMapRestriction, RangesAreNeighboursToo) {
    EXPECT_EQ(byteRestrictionOf({"3..5", "..9"}),
              unionOf({interval("3", "5"), interval("4", "9")}));
    EXPECT_EQ(byteRestrictionOf({"3..", "8..9"}),
              unionOf({interval("3", "7"), interval("8", "9")}));
    EXPECT_EQ(byteRestrictionOf({"3..", "..9"}),
              unionOf({interval("3", "-1"), interval("4", "9")}));
    EXPECT_EQ(byteRestrictionOf({"0x20..0x2F", "..60"}),
              unionOf({interval("32", "47"), interval("33", "60")}));
}

// The x in the upper bound makes the lower one hexadecimal as well, when it is a neighbour.
TEST(ValueMapRestriction, AnXAnywhereInANeighbourMakesItHexadecimal) {
    EXPECT_EQ(byteRestrictionOf({"10..0x20", "..60"}),
              unionOf({interval("10", "32"), interval("17", "60")}));
    EXPECT_EQ(byteRestrictionOf({"3..", "10..0x20"}),
              unionOf({interval("3", "15"), interval("10", "32")}));
}

TEST(ValueMapRestriction, NeighboursThatAreNoNumbersCountAs0) {
    EXPECT_EQ(byteRestrictionOf({"a", "..5"}), unionOf({singles({"a"}), interval("1", "5")}));
    EXPECT_EQ(byteRestrictionOf({"3..", "a"}), unionOf({interval("3", "-1"), singles({"a"})}));
    EXPECT_EQ(byteRestrictionOf({"Max", "..5"}), unionOf({singles({"0"}), interval("1", "5")}));
}

TEST(ValueMapRestriction, TheLeadingNumberOfANeighbourCounts) {
    EXPECT_EQ(byteRestrictionOf({"4 or so", "..9"}),
              unionOf({singles({"4 or so"}), interval("5", "9")}));
    EXPECT_EQ(byteRestrictionOf({"-5", "..5"}), unionOf({singles({"-5"}), interval("-4", "5")}));
    EXPECT_EQ(byteRestrictionOf({"-9..", "-5"}), unionOf({interval("-9", "-6"), singles({"-5"})}));
}

TEST(ValueMapRestriction, NullEntriesAreNoNeighbours) {
    EXPECT_EQ(byteRestrictionOf({"2", nullptr, "..5"}),
              unionOf({singles({"2"}), interval("3", "5")}));
    EXPECT_EQ(byteRestrictionOf({"7..", nullptr, nullptr, "12"}),
              unionOf({interval("7", "11"), singles({"12"})}));
    EXPECT_EQ(byteRestrictionOf({nullptr, "..5"}), unionOf({interval("0", "5")}));
    EXPECT_EQ(byteRestrictionOf({"3..", nullptr}), unionOf({from("3")}));
    EXPECT_EQ(byteRestrictionOf({"0", nullptr, "..", nullptr, "9"}),
              unionOf({singles({"0"}), interval("1", "8"), singles({"9"})}));
}

TEST(ValueMapRestriction, ThreeDotsAreARangeOpenBelowUpToADot) {
    EXPECT_EQ(byteRestrictionOf({"2", "..."}), unionOf({singles({"2"}), interval("3", ".")}));
    EXPECT_EQ(byteRestrictionOf({"...."}), unionOf({interval("0", "..")}));
}

TEST(ValueMapRestriction, TheFirstDotDotSplitsARange) {
    EXPECT_EQ(byteRestrictionOf({"1..2..3"}), unionOf({interval("1", "2..3")}));
    EXPECT_EQ(byteRestrictionOf({"1...3"}), unionOf({interval("1", ".3")}));
    EXPECT_EQ(byteRestrictionOf({"..5.."}), unionOf({interval("0", "5..")}));
    EXPECT_EQ(byteRestrictionOf({"1..2.."}), unionOf({from("1")}));
}

TEST(ValueMapRestriction, DotDotAmongBlanksIsAClosedRange) {
    EXPECT_EQ(byteRestrictionOf({" .. "}), unionOf({interval(" ", " ")}));
}

// --- The lone ".."

TEST(ValueMapRestriction, LoneDotDotAfterHexadecimalValuesAddsGaps) {
    EXPECT_EQ(byteRestrictionOf({"0x01", "0x02", ".."}),
              unionOf({singles({"1", "2"}), gaps({"0"}, from("3"))}));
}

TEST(ValueMapRestriction, LoneDotDotAfterAllValuesAddsOnlyTheInterval) {
    EXPECT_EQ(byteRestrictionOf({"0", "1", "..", "16.."}),
              unionOf({singles({"0", "1"}), interval("2", "15"), from("16")}));
    EXPECT_EQ(byteRestrictionOf({"0", ".."}), unionOf({singles({"0"}), from("1")}));
}

TEST(ValueMapRestriction, LoneDotDotAfterListedValuesAddsGapMember) {
    EXPECT_EQ(byteRestrictionOf({"1", "2", "3", "4", ".."}),
              unionOf({singles({"1", "2", "3", "4"}), gaps({"0"}, from("5"))}));
}

TEST(ValueMapRestriction, LoneDotDotHasNoGapsWhenEnoughNumbersAreListedWhicheverTheyAre) {
    EXPECT_EQ(byteRestrictionOf({"5", "6", "1", ".."}),
              unionOf({singles({"5", "6", "1"}), from("2")}));
    EXPECT_EQ(byteRestrictionOf({"5", "6", "7", "2", ".."}),
              unionOf({singles({"5", "6", "7", "2"}), from("3")}));
    EXPECT_EQ(byteRestrictionOf({"5", "6", "3", ".."}),
              unionOf({singles({"5", "6", "3"}), gaps({"0", "1", "2"}, from("4"))}));
}

TEST(ValueMapRestriction, NegativeNumbersCountAsListed) {
    EXPECT_EQ(byteRestrictionOf({"-3", "-2", "1", ".."}),
              unionOf({singles({"-3", "-2", "1"}), from("2")}));
    EXPECT_EQ(byteRestrictionOf({"-3", "2", ".."}),
              unionOf({singles({"-3", "2"}), gaps({"0", "1"}, from("3"))}));
}

TEST(ValueMapRestriction, LoneDotDotAfterANegativeNumberHasNoGaps) {
    EXPECT_EQ(byteRestrictionOf({"-1", ".."}), unionOf({singles({"-1"}), from("0")}));
    EXPECT_EQ(byteRestrictionOf({"-5", ".."}), unionOf({singles({"-5"}), from("-4")}));
    EXPECT_EQ(byteRestrictionOf({"-0x10", ".."}), unionOf({singles({"-16"}), from("-15")}));
}

TEST(ValueMapRestriction, TextsThatAreNoNumbersCountAsListed0) {
    EXPECT_EQ(byteRestrictionOf({"Min", "1", ".."}), unionOf({singles({"Min", "1"}), from("2")}));
    EXPECT_EQ(byteRestrictionOf({"Max", "1", ".."}), unionOf({singles({"0", "1"}), from("2")}));
    EXPECT_EQ(byteRestrictionOf({"a", "b", "2", ".."}),
              unionOf({singles({"a", "b", "2"}), gaps({"1"}, from("3"))}));
}

TEST(ValueMapRestriction, RangesCountAsNotListed) {
    EXPECT_EQ(byteRestrictionOf({"0..3", "4", ".."}),
              unionOf({interval("0", "3"), singles({"4"}), gaps({"0", "1", "2", "3"}, from("5"))}));
}

TEST(ValueMapRestriction, ValuesListedAfterALoneDotDotAreGapsAllTheSame) {
    EXPECT_EQ(
        byteRestrictionOf({"3", "..", "9", "0"}),
        unionOf({singles({"3"}), gaps({"0", "1", "2"}, interval("4", "8")), singles({"9", "0"})}));
}

TEST(ValueMapRestriction, LoneDotDotEndsBeforeTheNextEntry) {
    EXPECT_EQ(byteRestrictionOf({"1", "..", "8"}),
              unionOf({singles({"1"}), gaps({"0"}, interval("2", "7")), singles({"8"})}));
    EXPECT_EQ(byteRestrictionOf({"0", "..", "0x10..0x20"}),
              unionOf({singles({"0"}), interval("1", "15"), interval("16", "32")}));
    EXPECT_EQ(byteRestrictionOf({"0", "..", "0x10"}),
              unionOf({singles({"0"}), interval("1", "15"), singles({"16"})}));
}

TEST(ValueMapRestriction, LoneDotDotAloneAdmitsEverythingFrom0) {
    EXPECT_EQ(byteRestrictionOf({".."}), unionOf({from("0")}));
    EXPECT_EQ(byteRestrictionOf({nullptr, ".."}), unionOf({from("0")}));
}

TEST(ValueMapRestriction, LoneDotDotInFirstPlaceStartsAt0) {
    EXPECT_EQ(byteRestrictionOf({"..", "4"}), unionOf({interval("0", "3"), singles({"4"})}));
}

// A neighbouring ".." counts as 0.
TEST(ValueMapRestriction, LoneDotDotTwiceBoundsItselfBy0) {
    EXPECT_EQ(byteRestrictionOf({"1", "..", ".."}),
              unionOf({singles({"1"}), gaps({"0"}, interval("2", "-1")), from("1")}));
    EXPECT_EQ(byteRestrictionOf({"..", ".."}), unionOf({interval("0", "-1"), gaps({}, from("1"))}));
}

TEST(ValueMapRestriction, LoneDotDotBetweenOtherEntriesMayComeBack) {
    EXPECT_EQ(
        byteRestrictionOf({"0", "..", "3", ".."}),
        unionOf({singles({"0"}), interval("1", "2"), singles({"3"}), gaps({"1", "2"}, from("4"))}));
}

TEST(ValueMapRestriction, LoneDotDotDirectlyAfterARangeStartsAfterItsFirstNumber) {
    EXPECT_EQ(byteRestrictionOf({"2..7", ".."}),
              unionOf({interval("2", "7"), gaps({"0", "1"}, from("3"))}));
    EXPECT_EQ(byteRestrictionOf({"2..", ".."}),
              unionOf({interval("2", "-1"), gaps({"0", "1"}, from("3"))}));
    EXPECT_EQ(byteRestrictionOf({"..7", ".."}), unionOf({interval("0", "7"), gaps({}, from("1"))}));
    EXPECT_EQ(byteRestrictionOf({"0x02..7", ".."}),
              unionOf({interval("2", "7"), gaps({"0", "1"}, from("3"))}));
}

TEST(ValueMapRestriction, LoneDotDotEnumeratesAllGapsBelowALargeNumber) {
    std::string values;
    for (int value = 0; value < 1000; ++value) {
        if (value != 500)
            values += element("enumeration value=\"" + std::to_string(value) + "\"");
    }
    EXPECT_EQ(
        restrictionOf("uint16", {"500", "1000", ".."}),
        unionOf({singles({"500", "1000"}, "xs:unsignedShort"),
                 element("simpleType", element("union", simpleType("xs:unsignedShort", values) +
                                                            from("1001", "xs:unsignedShort")))}));
}

// --- Types

TEST(ValueMapRestriction, SinglesAndRangesOfStringTypesHaveDifferentBases) {
    EXPECT_EQ(restrictionOf("string", {"1", "3..5", ".."}), R"(
<xs:parent>
  <xs:restriction base="cim:cimAnySimpleType">
    <xs:simpleType>
      <xs:union>
        <xs:simpleType>
          <xs:restriction base="xs:string">
            <xs:enumeration value="1"/>
          </xs:restriction>
        </xs:simpleType>
        <xs:simpleType>
          <xs:restriction base="cim:cimString">
            <xs:minInclusive value="3"/>
            <xs:maxInclusive value="5"/>
          </xs:restriction>
        </xs:simpleType>
        <xs:simpleType>
          <xs:union>
            <xs:simpleType>
              <xs:restriction base="xs:string">
                <xs:enumeration value="0"/>
                <xs:enumeration value="2"/>
              </xs:restriction>
            </xs:simpleType>
            <xs:simpleType>
              <xs:restriction base="cim:cimString">
                <xs:minInclusive value="4"/>
              </xs:restriction>
            </xs:simpleType>
          </xs:union>
        </xs:simpleType>
      </xs:union>
    </xs:simpleType>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:restriction>
</xs:parent>
)");
}

TEST(ValueMapRestriction, HexadecimalTextsOfAUnionAreConvertedForStringTypesToo) {
    EXPECT_EQ(
        restrictionOf("string", {"a", "Max", "0x10", "0x20..0x2F"}),
        unionOf({singles({"a", "0", "16"}, "xs:string"), interval("32", "47", "cim:cimString")}));
}

TEST(ValueMapRestriction, Char16HasTheSchemaStringAsBaseOfSinglesAndRanges) {
    EXPECT_EQ(restrictionOf("char16", {"..3", "9", "0x0B", ".."}),
              unionOf({interval("0", "3", "xs:string"), singles({"9", "11"}, "xs:string"),
                       gaps({"0", "1", "2", "3", "4", "5", "6", "7", "8", "10"},
                            from("12", "xs:string"), "xs:string")}));
}

TEST(ValueMapRestriction, AStringInCapitalsHasTheSchemaStringAsBaseOfRanges) {
    EXPECT_EQ(restrictionOf("STRING", {"1", "3..5"}),
              unionOf({singles({"1"}, "xs:string"), interval("3", "5", "xs:string")}));
}

TEST(ValueMapRestriction, ArraysAreRestrictedLikeTheirElements) {
    EXPECT_EQ(restrictionOf("sint32[]", {"1", "3.."}),
              unionOf({singles({"1"}, "xs:int"), from("3", "xs:int")}));
    EXPECT_EQ(restrictionOf("sint32[]", {"1"}), enumeration("cim:cimInt", {"1"}));
}

TEST(ValueMapRestriction, UnmappedTypesHaveNAAsBase) {
    EXPECT_EQ(restrictionOf("object", {"1", "..", "3..5"}),
              unionOf({singles({"1"}, "NA"), gaps({"0"}, interval("2", "2", "NA"), "NA"),
                       interval("3", "5", "NA")}));
    EXPECT_EQ(restrictionOf("object", {"1"}), enumeration("NA", {"1"}));
}

// --- Limits of numbers

TEST(ValueMapRestriction, TheNumberAfterTheLargestIsTheSmallest) {
    AllocationProbe::failAt(1'000'000);  // so that endless gaps come to an end
    EXPECT_EQ(byteRestrictionOf({"9223372036854775807", ".."}),
              unionOf({singles({"9223372036854775807"}), from("-9223372036854775808")}));
    EXPECT_EQ(byteRestrictionOf({"9223372036854775807", "..5"}),
              unionOf({singles({"9223372036854775807"}), interval("-9223372036854775808", "5")}));
}

TEST(ValueMapRestriction, TheNumberBeforeTheSmallestIsTheLargest) {
    EXPECT_EQ(byteRestrictionOf({"5..", "-9223372036854775808"}),
              unionOf({interval("5", "9223372036854775807"), singles({"-9223372036854775808"})}));
    EXPECT_EQ(byteRestrictionOf({"0", "..", "-9223372036854775808"}),
              unionOf({singles({"0"}), interval("1", "9223372036854775807"),
                       singles({"-9223372036854775808"})}));
}

TEST(ValueMapRestriction, NumbersSaturateAt64Bits) {
    EXPECT_EQ(byteRestrictionOf({"5..", "99999999999999999999"}),
              unionOf({interval("5", "9223372036854775806"), singles({"99999999999999999999"})}));
    EXPECT_EQ(byteRestrictionOf({"5..", "0xFFFFFFFFFFFFFFFF"}),
              unionOf({interval("5", "9223372036854775806"), singles({"9223372036854775807"})}));
    EXPECT_EQ(byteRestrictionOf({"-99999999999999999999", "..5"}),
              unionOf({singles({"-99999999999999999999"}), interval("-9223372036854775807", "5")}));
    EXPECT_EQ(byteRestrictionOf({"99999999999999999999", ".."}),
              unionOf({singles({"99999999999999999999"}), from("-9223372036854775808")}));
}

TEST(ValueMapRestriction, SaturatedNumbersCountOnce) {
    EXPECT_EQ(byteRestrictionOf({"99999999999999999998", "99999999999999999999", "2", ".."}),
              unionOf({singles({"99999999999999999998", "99999999999999999999", "2"}),
                       gaps({"0", "1"}, from("3"))}));
}

// --- Around it

TEST(ValueMapRestriction, TheRestrictionFollowsWhatTheParentHolds) {
    const std::string text = contentOf([](Element& parent) {
        for (const ModelValue& valueMap : {ModelValue{"1"}, ModelValue{"3..5"}}) {
            WsdlUtil::addElement(parent, "Name", "xs:int");
            WsdlUtil::addRestrictionValueMapChildElement(parent, ModelType("uint8"), valueMap,
                                                         false, 0);
        }
    });
    EXPECT_EQ(text, R"(
<xs:parent>
  <xs:element name="Name" type="xs:int"/>
  <xs:restriction base="cim:cimUnsignedByte">
    <xs:enumeration value="1"/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:restriction>
  <xs:element name="Name" type="xs:int"/>
  <xs:restriction base="cim:cimAnySimpleType">
    <xs:simpleType>
      <xs:union>
        <xs:simpleType>
          <xs:restriction base="xs:unsignedByte">
            <xs:minInclusive value="3"/>
            <xs:maxInclusive value="5"/>
          </xs:restriction>
        </xs:simpleType>
      </xs:union>
    </xs:simpleType>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:restriction>
</xs:parent>
)");
}

TEST(ValueMapRestriction, AFailedUnionLeavesWhatWasBuiltBefore) {
    const std::string nothing = "\n<xs:parent/>\n";
    const std::string begun = unionWithoutWildcard("");
    const std::string bareMember = element("simpleType", element("restriction"));
    const std::string untyped = unionWithoutWildcard(bareMember);
    const std::string untypedRange = unionWithoutWildcard(singles({"1"}) + bareMember);
    EXPECT_EQ(leftByFailures([](Element& parent) {
                  WsdlUtil::addRestrictionValueMapChildElement(parent, ModelType("uint8"),
                                                               ModelValue{"1", "3.."}, false, 0);
              }),
              std::vector<std::string>({nothing, begun, untyped, untypedRange}));
}

TEST(ValueMapRestriction, EveryFailureOfTheHostPasses) {
    const ModelType type("uint8");
    for (const ModelValue& valueMap :
         {ModelValue{"1", "2"}, ModelValue{"2", "5..7", nullptr, "10..", "20", ".."}}) {
        const auto build = [&] {
            Element parent = SchemaPrinting::makeElement("parent", "xs");
            WsdlUtil::addRestrictionValueMapChildElement(parent, type, valueMap, true, 8);
        };
        const std::size_t calls = HostCalls::count(build);
        EXPECT_EQ(HostCalls::failEach(build, [](const std::string&) {}), calls);
    }
}

TEST(ValueMapRestriction, LeaksNothingWhenAnAllocationFails) {
    const ModelType type("uint8");
    const ModelValue valueMap = {"2", "5..7", nullptr, "10..", "0x20", ".."};
    const auto build = [&] {
        Element parent = SchemaPrinting::makeElement("parent", "xs");
        WsdlUtil::addRestrictionValueMapChildElement(parent, type, valueMap, false, 0);
    };
    EXPECT_GE(AllocationProbe::failEachAllocation(build, [] {}), 10U);
}

}  // namespace
