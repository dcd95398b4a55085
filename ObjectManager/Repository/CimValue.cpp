#include "ObjectManager/Repository/CimValue.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "ObjectManager/Repository/CimType.h"

namespace Repository {

namespace {

using Mof::DataType;
using Mof::Literal;

// The type that a literal has by itself.
DataType typeOf(const Literal& literal) {
    switch (literal.kind) {
        case Literal::Kind::kBoolean:
            return DataType::kBoolean;
        case Literal::Kind::kInteger:
            return literal.isNegative ? DataType::kSint64 : DataType::kUint64;
        case Literal::Kind::kReal:
            return DataType::kReal64;
        case Literal::Kind::kCharacter:
            return DataType::kChar16;
        case Literal::Kind::kAlias:
            return DataType::kReference;
        default:
            return DataType::kString;
    }
}

// That of the first literal that is not null.
DataType typeOf(const Mof::Value& value) {
    const auto first =
        std::find_if(value.literals.begin(), value.literals.end(),
                     [](const Literal& literal) { return literal.kind != Literal::Kind::kNull; });
    return first == value.literals.end() ? DataType::kString : typeOf(*first);
}

template <typename Number>
TSKString decimal(Number number) {
    char digits[32];  // the longest number needs 24
    const std::to_chars_result end = std::to_chars(std::begin(digits), std::end(digits), number);
    return {digits, static_cast<unsigned long>(end.ptr - digits)};
}

// A character of the basic plane, in UTF-8.
TSKString utf8(std::uint16_t character) {
    TSKString text;
    const auto append = [&](unsigned byte) { text += static_cast<char>(byte); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0U | character >> 6U);
        append(0x80U | (character & 0x3FU));
    } else {
        append(0xE0U | character >> 12U);
        append(0x80U | (character >> 6U & 0x3FU));
        append(0x80U | (character & 0x3FU));
    }
    return text;
}

TSKString textOf(Literal&& literal) {
    switch (literal.kind) {
        case Literal::Kind::kNull:
            return {};
        case Literal::Kind::kBoolean:
            return literal.truth ? "true" : "false";
        case Literal::Kind::kInteger:
            return literal.isNegative && literal.magnitude != 0 ? "-" + decimal(literal.magnitude)
                                                                : decimal(literal.magnitude);
        case Literal::Kind::kReal:
            return decimal(literal.real);
        case Literal::Kind::kCharacter:
            return utf8(literal.character);
        case Literal::Kind::kString:
        case Literal::Kind::kAlias:
            break;
    }
    return std::move(literal.text);
}

TSKSmrPtr<ITeskValue> fromLiteral(Literal&& literal, DataType type) {
    if (literal.kind == Literal::Kind::kNull)
        return {};
    const bool truth = literal.truth;
    return TSKSmrPtr<CimValue>::make(CimType::of(type, false), textOf(std::move(literal)), truth);
}

}  // namespace

CimValue::CimValue(const TSKSmrPtr<ITeskType>& type, TSKString text, bool truth)
    : type_(type), text_(std::move(text)), truth_(truth) {}

TSKSmrPtr<ITeskValue> CimValue::from(bool truth) {
    return TSKSmrPtr<CimValue>::make(CimType::of(DataType::kBoolean, false),
                                     truth ? "true" : "false", truth);
}

TSKSmrPtr<ITeskValue> CimValue::from(Mof::Value&& value, std::optional<DataType> type) {
    const DataType dataType = type ? *type : typeOf(value);
    if (!value.isArray)
        return fromLiteral(std::move(value.literals.front()), dataType);
    auto array = TSKSmrPtr<CimValue>::make(CimType::of(dataType, true), TSKString(), false);
    array->elements_ = TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>>::make();
    for (Literal& literal : value.literals)
        array->elements_->append(fromLiteral(std::move(literal), dataType));
    return array;
}

}  // namespace Repository
