#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "ObjectManager/Mof/FileParser.h"
#include "ObjectManager/Repository/CimValue.h"
#include "Platform/Util/TSKValSlistIterator.h"
#include "Tests/Support/RepositoryText.h"

namespace {

using Mof::DataType;

TEST(CimType, NamesAreTheKeywordsInLowerCase) {
    std::string names;
    for (int number = 0; number <= static_cast<int>(DataType::kReference); ++number) {
        for (const bool isArray : {false, true}) {
            const TSKSmrPtr<ITeskType>& type =
                Repository::CimType::of(static_cast<DataType>(number), isArray);
            EXPECT_EQ(type->isArray(), isArray);
            EXPECT_EQ(type->isReference(), number == static_cast<int>(DataType::kReference));
            names += type->getTypeName().data() + std::string(type->isArray() ? "[] " : " ");
        }
    }
    EXPECT_EQ(names,
              "uint8 uint8[] sint8 sint8[] uint16 uint16[] sint16 sint16[] uint32 uint32[] sint32 "
              "sint32[] uint64 uint64[] sint64 sint64[] real32 real32[] real64 real64[] char16 "
              "char16[] string string[] boolean boolean[] datetime datetime[] ref ref[] ");
}

TEST(CimType, EachExistsOnce) {
    EXPECT_EQ(Repository::CimType::of(DataType::kUint8, true),
              Repository::CimType::of(DataType::kUint8, true));
    EXPECT_FALSE(Repository::CimType::of(DataType::kUint8, true) ==
                 Repository::CimType::of(DataType::kUint8, false));
}

// The value of a qualifier that is written in that way.
TSKSmrPtr<ITeskValue> valueOf(const std::string& mof, std::optional<DataType> type = {}) {
    const auto fail = [](std::size_t, const std::string& message) { ADD_FAILURE() << message; };
    const std::string text = "[Q " + mof + "] class A_B {};";
    Mof::FileDeclarations declarations =
        Mof::FileParser(fail, fail).parse(Mof::SourceText("a.mof", text), 0);
    return Repository::CimValue::from(std::move(*declarations.classes.at(0).qualifiers.at(0).value),
                                      type);
}

// "TYPE TEXT"
std::string shown(const TSKSmrPtr<ITeskValue>& value) {
    return textOf(*value->getType()) + " " + textOf(value.get());
}

std::string shown(const std::string& mof, std::optional<DataType> type = {}) {
    return shown(valueOf(mof, type));
}

TEST(CimValue, StringsAreAsTheyAre) {
    EXPECT_EQ(shown(R"(("a <b> & \"c\"\n" " d"))"), "string a <b> & \"c\"\n d");
    EXPECT_EQ(shown("(\"\")"), "string ");
    EXPECT_EQ(shown("(\"gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x98\x80\")"),
              "string gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x98\x80");
}

TEST(CimValue, WholeNumbersAreDecimal) {
    EXPECT_EQ(shown("(18446744073709551615)"), "uint64 18446744073709551615");
    EXPECT_EQ(shown("(-9223372036854775808)"), "sint64 -9223372036854775808");
    EXPECT_EQ(shown("(0xFF)", DataType::kUint8), "uint8 255");
    EXPECT_EQ(shown("(-0x80)", DataType::kSint8), "sint8 -128");
    EXPECT_EQ(shown("(017)", DataType::kUint32), "uint32 15");
    EXPECT_EQ(shown("(101b)", DataType::kUint32), "uint32 5");
    EXPECT_EQ(shown("(+7)", DataType::kUint32), "uint32 7");
}

TEST(CimValue, ZeroHasNoSign) {
    EXPECT_EQ(shown("(0)", DataType::kSint8), "sint8 0");
    EXPECT_EQ(shown("(-0)", DataType::kSint8), "sint8 0");
    EXPECT_EQ(shown("(-0x0)", DataType::kSint8), "sint8 0");
}

TEST(CimValue, RealNumbersAreDecimal) {
    EXPECT_EQ(shown("(1.5)", DataType::kReal32), "real32 1.5");
    EXPECT_EQ(shown("(-0.25)"), "real64 -0.25");
    EXPECT_EQ(shown("(0.1)"), "real64 0.1");
    EXPECT_EQ(shown("(2.0)"), "real64 2");
    EXPECT_EQ(shown("(5)", DataType::kReal64), "real64 5");
}

TEST(CimValue, RealNumbersOfAnySizeKeepTheirValue) {
    for (const char* const number :
         {"1.0e300", "-1.7976931348623157e308", "2.2250738585072014e-308", "4.9e-324",
          "0.1234567890123456789", "123456789.125"}) {
        const TSKSmrPtr<ITeskValue> value = valueOf(std::string("(") + number + ")");
        EXPECT_EQ(std::strtod(value->toString().data(), nullptr), std::strtod(number, nullptr));
    }
}

TEST(CimValue, BooleansAreWords) {
    EXPECT_EQ(shown("(TRUE)"), "boolean true");
    EXPECT_EQ(shown("(False)"), "boolean false");
    EXPECT_EQ(shown(Repository::CimValue::from(true)), "boolean true");
    EXPECT_EQ(shown(Repository::CimValue::from(false)), "boolean false");
}

TEST(CimValue, OnlyTheBooleanTrueIsTrue) {
    EXPECT_TRUE(valueOf("(true)")->toBoolean());
    EXPECT_TRUE(Repository::CimValue::from(true)->toBoolean());
    EXPECT_FALSE(Repository::CimValue::from(false)->toBoolean());
    for (const char* const other : {"(false)", "(1)", "(\"true\")", "(1.0)", "('t')", "{true}"})
        EXPECT_FALSE(valueOf(other)->toBoolean()) << other;
}

TEST(CimValue, CharactersAreUtf8) {
    EXPECT_EQ(shown("('A')"), "char16 A");
    EXPECT_EQ(shown("('\\x7F')"), "char16 \x7F");
    EXPECT_EQ(shown("('\\x80')"), "char16 \xC2\x80");
    EXPECT_EQ(shown("('\xC3\xBC')"), "char16 \xC3\xBC");
    EXPECT_EQ(shown("('\\x7FF')"), "char16 \xDF\xBF");
    EXPECT_EQ(shown("('\\x800')"), "char16 \xE0\xA0\x80");
    EXPECT_EQ(shown("('\\xFFFD')"), "char16 \xEF\xBF\xBD");
}

TEST(CimValue, AliasesAreReferences) {
    EXPECT_EQ(shown("($Alias)"), "ref $Alias");
}

TEST(CimValue, NullIsNoValue) {
    EXPECT_TRUE(valueOf("(null)").isNull());
    EXPECT_TRUE(valueOf("(null)", DataType::kUint8).isNull());
}

TEST(CimValue, ArraysHaveElementsAndNoText) {
    const TSKSmrPtr<ITeskValue> value = valueOf("{\"a\", null, \"\"}");
    EXPECT_EQ(shown(value), "string[] {a, null, }");
    EXPECT_EQ(value->toString(), "");
    EXPECT_EQ(value->getArrayValues()->entries(), 3U);
}

TEST(CimValue, AnArrayMayBeEmpty) {
    EXPECT_EQ(shown("{}"), "string[] {}");
    EXPECT_EQ(shown("{}", DataType::kUint8), "uint8[] {}");
}

TEST(CimValue, AScalarHasNoElements) {
    EXPECT_TRUE(valueOf("(1)")->getArrayValues().isNull());
}

TEST(CimValue, ElementsHaveTheTypeOfTheArray) {
    const TSKSmrPtr<ITeskValue> value = valueOf("{1, -1}", DataType::kSint8);
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> element(*value->getArrayValues());
    std::string elements;
    while (element())
        elements += shown(element.key()) + ";";
    EXPECT_EQ(elements, "sint8 1;sint8 -1;");
}

TEST(CimValue, WithoutADeclarationTheFirstLiteralThatIsNotNullTellsTheType) {
    EXPECT_EQ(shown("{null, 1, -1}"), "uint64[] {null, 1, -1}");
    EXPECT_EQ(shown("{null, true}"), "boolean[] {null, true}");
    EXPECT_EQ(shown("{null}"), "string[] {null}");
}

}  // namespace
