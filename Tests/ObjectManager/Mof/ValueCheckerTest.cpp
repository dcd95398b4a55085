#include <cmath>
#include <gtest/gtest.h>
#include <initializer_list>
#include <limits>
#include <string>

#include "ObjectManager/Mof/ValueChecker.h"

namespace {

using Mof::DataType;
using Mof::Literal;
using Mof::Mismatch;
using Mof::Type;
using Mof::Value;
using Kind = Mof::Literal::Kind;

// Where the values of these tests stand; their elements stand behind it, one byte each.
constexpr std::size_t kValuePlace = 100;

Literal ofKind(Kind kind) {
    Literal literal;
    literal.kind = kind;
    return literal;
}

Literal number(std::uint64_t magnitude) {
    Literal literal = ofKind(Kind::kInteger);
    literal.magnitude = magnitude;
    return literal;
}

Literal minus(std::uint64_t magnitude) {
    Literal literal = number(magnitude);
    literal.isNegative = true;
    return literal;
}

Literal real(double value) {
    Literal literal = ofKind(Kind::kReal);
    literal.real = value;
    return literal;
}

Value scalar(Literal literal) {
    literal.position.offset = kValuePlace;
    return {
        .isArray = false, .position = {.file = 0, .offset = kValuePlace}, .literals = {literal}};
}

Value array(std::initializer_list<Literal> literals) {
    Value value = {
        .isArray = true, .position = {.file = 0, .offset = kValuePlace}, .literals = literals};
    std::size_t place = kValuePlace;
    for (Literal& literal : value.literals)
        literal.position.offset = ++place;
    return value;
}

Type typeOf(DataType dataType) {
    Type type;
    type.dataType = dataType;
    return type;
}

Type arrayOf(DataType dataType) {
    Type type = typeOf(dataType);
    type.isArray = true;
    return type;
}

Type arrayOf(DataType dataType, std::uint64_t size) {
    Type type = arrayOf(dataType);
    type.arraySize = size;
    return type;
}

// "PLACE REASON", empty where the value fits.
std::string mismatch(const Value& value, const Type& type) {
    const std::optional<Mismatch> found = findMismatch(value, type);
    return found ? std::to_string(found->position.offset) + " " + found->reason : "";
}

std::string mismatch(const Literal& literal, DataType type) {
    return mismatch(scalar(literal), typeOf(type));
}

constexpr DataType kIntegers[] = {DataType::kUint8,  DataType::kSint8,  DataType::kUint16,
                                  DataType::kSint16, DataType::kUint32, DataType::kSint32,
                                  DataType::kUint64, DataType::kSint64};

// The reason for each kind of literal that does not fit a type, one a line.
std::string kindsThatDoNotFit(DataType type) {
    std::string reasons;
    for (const Kind kind : {Kind::kNull, Kind::kBoolean, Kind::kInteger, Kind::kReal,
                            Kind::kCharacter, Kind::kString, Kind::kAlias}) {
        const std::string reason = mismatch(ofKind(kind), type);
        if (!reason.empty())
            reasons += reason + "\n";
    }
    return reasons;
}

TEST(ValueChecker, IntegersAreWholeNumbers) {
    for (const DataType type : kIntegers) {
        const std::string must = std::string("100 must be a ") + keywordOf(type) + ", not ";
        EXPECT_EQ(kindsThatDoNotFit(type), must + "a boolean\n" + must + "a real number\n" + must +
                                               "a character\n" + must + "a string\n" + must +
                                               "an alias\n");
    }
}

TEST(ValueChecker, RealsAreNumbers) {
    EXPECT_EQ(kindsThatDoNotFit(DataType::kReal32),
              "100 must be a real32, not a boolean\n"
              "100 must be a real32, not a character\n"
              "100 must be a real32, not a string\n"
              "100 must be a real32, not an alias\n");
    EXPECT_EQ(kindsThatDoNotFit(DataType::kReal64),
              "100 must be a real64, not a boolean\n"
              "100 must be a real64, not a character\n"
              "100 must be a real64, not a string\n"
              "100 must be a real64, not an alias\n");
}

TEST(ValueChecker, CharactersAreWrittenAsCharactersOrAsTheirNumbers) {
    EXPECT_EQ(kindsThatDoNotFit(DataType::kChar16),
              "100 must be a char16, not a boolean\n"
              "100 must be a char16, not a real number\n"
              "100 must be a char16, not a string\n"
              "100 must be a char16, not an alias\n");
}

TEST(ValueChecker, StringsAndDatetimesAreStrings) {
    EXPECT_EQ(kindsThatDoNotFit(DataType::kString),
              "100 must be a string, not a boolean\n"
              "100 must be a string, not a whole number\n"
              "100 must be a string, not a real number\n"
              "100 must be a string, not a character\n"
              "100 must be a string, not an alias\n");
    EXPECT_EQ(kindsThatDoNotFit(DataType::kDatetime),
              "100 must be a datetime, not a boolean\n"
              "100 must be a datetime, not a whole number\n"
              "100 must be a datetime, not a real number\n"
              "100 must be a datetime, not a character\n"
              "100 must be a datetime, not an alias\n");
}

TEST(ValueChecker, BooleansAreBooleans) {
    EXPECT_EQ(kindsThatDoNotFit(DataType::kBoolean),
              "100 must be a boolean, not a whole number\n"
              "100 must be a boolean, not a real number\n"
              "100 must be a boolean, not a character\n"
              "100 must be a boolean, not a string\n"
              "100 must be a boolean, not an alias\n");
}

TEST(ValueChecker, ReferencesAreAliasesOrPathsOfObjects) {
    EXPECT_EQ(kindsThatDoNotFit(DataType::kReference),
              "100 must be a reference, not a boolean\n"
              "100 must be a reference, not a whole number\n"
              "100 must be a reference, not a real number\n"
              "100 must be a reference, not a character\n");
}

TEST(ValueChecker, EveryIntegerFitsUpToItsLimitsAndNotBeyond) {
    struct Limits {
        DataType type;
        std::uint64_t below;
        std::uint64_t above;
    };
    constexpr Limits kLimits[] = {
        {DataType::kUint8, 0, 255},
        {DataType::kSint8, 128, 127},
        {DataType::kUint16, 0, 65535},
        {DataType::kSint16, 32768, 32767},
        {DataType::kChar16, 0, 65535},
        {DataType::kUint32, 0, 4294967295},
        {DataType::kSint32, 2147483648, 2147483647},
        {DataType::kSint64, 9223372036854775808U, 9223372036854775807U},
    };
    for (const auto& [type, below, above] : kLimits) {
        const std::string must = std::string("100 must be in the range of a ") + keywordOf(type) +
                                 ", " + (below == 0 ? "" : "-") + std::to_string(below) + " to " +
                                 std::to_string(above) + ": ";
        EXPECT_EQ(mismatch(minus(below), type), "");
        EXPECT_EQ(mismatch(number(above), type), "");
        EXPECT_EQ(mismatch(minus(below + 1), type),
                  must + "-" + std::to_string(below + 1) + " is not");
        EXPECT_EQ(mismatch(number(above + 1), type), must + std::to_string(above + 1) + " is not");
    }
}

TEST(ValueChecker, AUint64HoldsEveryNumberThatIsNotNegative) {
    EXPECT_EQ(mismatch(number(std::numeric_limits<std::uint64_t>::max()), DataType::kUint64), "");
    EXPECT_EQ(mismatch(minus(0), DataType::kUint64), "");
    EXPECT_EQ(mismatch(minus(1), DataType::kUint64),
              "100 must be in the range of a uint64, 0 to 18446744073709551615: -1 is not");
}

TEST(ValueChecker, RealsTakeEveryWholeNumber) {
    for (const DataType type : {DataType::kReal32, DataType::kReal64}) {
        EXPECT_EQ(mismatch(number(std::numeric_limits<std::uint64_t>::max()), type), "");
        EXPECT_EQ(mismatch(minus(9223372036854775808U), type), "");
    }
}

TEST(ValueChecker, AReal64HoldsEveryRealNumber) {
    EXPECT_EQ(mismatch(real(std::numeric_limits<double>::max()), DataType::kReal64), "");
    EXPECT_EQ(mismatch(real(std::numeric_limits<double>::lowest()), DataType::kReal64), "");
}

TEST(ValueChecker, AReal32HoldsRealNumbersUpToItsLimitsAndNotBeyond) {
    const double largest = std::numeric_limits<float>::max();
    const double beyond = std::nextafter(largest, HUGE_VAL);
    EXPECT_EQ(mismatch(real(largest), DataType::kReal32), "");
    EXPECT_EQ(mismatch(real(-largest), DataType::kReal32), "");
    EXPECT_EQ(mismatch(real(beyond), DataType::kReal32),
              "100 must fit into a real32: 3.402823466385289e+38 does not");
    EXPECT_EQ(mismatch(real(-beyond), DataType::kReal32),
              "100 must fit into a real32: -3.402823466385289e+38 does not");
}

TEST(ValueChecker, AnArrayIsNoScalarAndAScalarNoArray) {
    EXPECT_EQ(mismatch(array({number(1)}), typeOf(DataType::kUint8)),
              "100 must be one value, not an array");
    EXPECT_EQ(mismatch(array({}), typeOf(DataType::kUint8)), "100 must be one value, not an array");
    EXPECT_EQ(mismatch(scalar(number(1)), arrayOf(DataType::kUint8)),
              "100 must be an array, in braces");
}

TEST(ValueChecker, NullFitsArraysToo) {
    EXPECT_EQ(mismatch(scalar(Literal()), arrayOf(DataType::kUint8)), "");
    EXPECT_EQ(mismatch(scalar(Literal()), arrayOf(DataType::kUint8, 1)), "");
}

TEST(ValueChecker, EveryElementOfAnArrayMustFit) {
    const Type type = arrayOf(DataType::kUint8);
    EXPECT_EQ(mismatch(array({}), type), "");
    EXPECT_EQ(mismatch(array({number(0), Literal(), number(255)}), type), "");
    EXPECT_EQ(mismatch(array({number(0), number(256), minus(1)}), type),
              "102 must be in the range of a uint8, 0 to 255: 256 is not");
    EXPECT_EQ(mismatch(array({number(0), number(1), ofKind(Kind::kString)}), type),
              "103 must be a uint8, not a string");
}

TEST(ValueChecker, AnArrayMayHaveAsManyElementsAsItsSizeSaysAndNoMore) {
    const Type type = arrayOf(DataType::kUint8, 2);
    EXPECT_EQ(mismatch(array({}), type), "");
    EXPECT_EQ(mismatch(array({number(1), number(2)}), type), "");
    EXPECT_EQ(mismatch(array({number(1), number(2), number(3)}), type),
              "100 must have no more than 2 elements");
    EXPECT_EQ(mismatch(array({number(1), number(2)}), arrayOf(DataType::kUint8, 1)),
              "100 must have no more than 1 element");
}

}  // namespace
