#include "ObjectManager/Mof/ValueChecker.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

namespace Mof {

namespace {

// The whole numbers of a type: from -`below` to `above`.
struct IntegerRange {
    std::uint64_t below;
    std::uint64_t above;
};

template <typename Integer>
constexpr IntegerRange rangeOf() {
    using Limits = std::numeric_limits<Integer>;
    const auto above = static_cast<std::uint64_t>(Limits::max());
    return {Limits::is_signed ? above + 1 : 0, above};
}

std::optional<IntegerRange> integerRangeOf(DataType type) {
    switch (type) {
        case DataType::kUint8:
            return rangeOf<std::uint8_t>();
        case DataType::kSint8:
            return rangeOf<std::int8_t>();
        case DataType::kUint16:
        case DataType::kChar16:
            return rangeOf<std::uint16_t>();
        case DataType::kSint16:
            return rangeOf<std::int16_t>();
        case DataType::kUint32:
            return rangeOf<std::uint32_t>();
        case DataType::kSint32:
            return rangeOf<std::int32_t>();
        case DataType::kUint64:
            return rangeOf<std::uint64_t>();
        case DataType::kSint64:
            return rangeOf<std::int64_t>();
        default:
            return std::nullopt;
    }
}

const char* nameOf(Literal::Kind kind) {
    switch (kind) {
        case Literal::Kind::kNull:
            return "null";
        case Literal::Kind::kBoolean:
            return "a boolean";
        case Literal::Kind::kInteger:
            return "a whole number";
        case Literal::Kind::kReal:
            return "a real number";
        case Literal::Kind::kCharacter:
            return "a character";
        case Literal::Kind::kString:
            return "a string";
        case Literal::Kind::kAlias:
            return "an alias";
    }
    return "";
}

// Whether literals of that kind can have the type at all. Older schemas write characters as their
// numbers.
bool isOfKind(Literal::Kind kind, DataType type) {
    using Kind = Literal::Kind;
    if (kind == Kind::kNull)
        return true;
    switch (type) {
        case DataType::kReal32:
        case DataType::kReal64:
            return kind == Kind::kReal || kind == Kind::kInteger;
        case DataType::kChar16:
            return kind == Kind::kCharacter || kind == Kind::kInteger;
        case DataType::kString:
        case DataType::kDatetime:
            return kind == Kind::kString;
        case DataType::kBoolean:
            return kind == Kind::kBoolean;
        case DataType::kReference:
            return kind == Kind::kString || kind == Kind::kAlias;
        default:
            return kind == Kind::kInteger;
    }
}

std::string writtenBy(const Literal& integer) {
    return (integer.isNegative ? "-" : "") + std::to_string(integer.magnitude);
}

// As short as it can be written.
std::string writtenBy(double real) {
    char digits[32];  // the longest number needs 24
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), real);
    return {digits, end.ptr};
}

std::string tooLarge(double real, DataType type) {
    return std::string("must fit into a ") + keywordOf(type) + ": " + writtenBy(real) + " does not";
}

std::string outOfRange(const Literal& integer, const IntegerRange& range, DataType type) {
    return std::string("must be in the range of a ") + keywordOf(type) + ", " +
           (range.below == 0 ? "0" : "-" + std::to_string(range.below)) + " to " +
           std::to_string(range.above) + ": " + writtenBy(integer) + " is not";
}

// Why a literal of a fitting kind does not fit; empty where it does.
std::string rangeFault(const Literal& literal, DataType type) {
    if (literal.kind == Literal::Kind::kInteger) {
        const std::optional<IntegerRange> range = integerRangeOf(type);
        if (range && literal.magnitude > (literal.isNegative ? range->below : range->above))
            return outOfRange(literal, *range, type);
    } else if (literal.kind == Literal::Kind::kReal && type == DataType::kReal32 &&
               std::abs(literal.real) > std::numeric_limits<float>::max()) {
        return tooLarge(literal.real, type);
    }
    return {};
}

std::string article(DataType type) {
    return type == DataType::kReference ? "a reference" : std::string("a ") + keywordOf(type);
}

std::optional<Mismatch> findMismatch(const Literal& literal, DataType type) {
    if (!isOfKind(literal.kind, type)) {
        return Mismatch{literal.position,
                        "must be " + article(type) + ", not " + nameOf(literal.kind)};
    }
    std::string fault = rangeFault(literal, type);
    if (fault.empty())
        return std::nullopt;
    return Mismatch{literal.position, std::move(fault)};
}

bool isNull(const Value& value) {
    return !value.isArray && value.literals.front().kind == Literal::Kind::kNull;
}

}  // namespace

std::optional<Mismatch> findMismatch(const Value& value, const Type& type) {
    if (isNull(value))
        return std::nullopt;
    if (value.isArray != type.isArray) {
        return Mismatch{value.position, type.isArray ? "must be an array, in braces"
                                                     : "must be one value, not an array"};
    }
    for (const Literal& literal : value.literals) {
        if (std::optional<Mismatch> mismatch = findMismatch(literal, type.dataType))
            return mismatch;
    }
    if (type.arraySize && value.literals.size() > *type.arraySize) {
        return Mismatch{value.position, "must have no more than " +
                                            std::to_string(*type.arraySize) +
                                            (type.arraySize == 1U ? " element" : " elements")};
    }
    return std::nullopt;
}

}  // namespace Mof
