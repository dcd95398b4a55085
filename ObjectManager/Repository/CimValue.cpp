#include "ObjectManager/Repository/CimValue.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <utility>
#include <vector>

#include "ObjectManager/Base/Utf8.h"

namespace Repository {

namespace {

using Mof::DataType;
using Mof::Literal;

constexpr auto kLastDataType = static_cast<std::size_t>(DataType::kReference);

// Each type, followed by the array of it.
std::vector<TSKSmrPtr<ITeskType>> allTypes() {
    std::vector<TSKSmrPtr<ITeskType>> types;
    for (std::size_t number = 0; number <= kLastDataType; ++number) {
        for (const bool isArray : {false, true})
            types.emplace_back(TSKSmrPtr<CimType>::make(static_cast<DataType>(number), isArray));
    }
    return types;
}

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

TSKString characterText(std::uint16_t character) {
    TSKString text;
    Base::appendCodePoint(text, character);
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
            return characterText(literal.character);
        case Literal::Kind::kString:
        case Literal::Kind::kAlias:
            break;
    }
    return std::move(literal.text);
}

TSKSmrPtr<CimValue> fromLiteral(Literal&& literal, DataType type) {
    if (literal.kind == Literal::Kind::kNull)
        return {};
    const bool truth = literal.truth;
    return TSKSmrPtr<CimValue>::make(CimType::of(type, false), textOf(std::move(literal)), truth);
}

}  // namespace

const TSKSmrPtr<ITeskType>& CimType::of(DataType dataType, bool isArray) {
    static const std::vector<TSKSmrPtr<ITeskType>> kTypes = allTypes();
    return kTypes[2 * static_cast<std::size_t>(dataType) + (isArray ? 1 : 0)];
}

CimValue::CimValue(const TSKSmrPtr<ITeskType>& type, TSKString text, bool truth)
    : type_(type), text_(std::move(text)), truth_(truth) {}

TSKSmrPtr<CimValue> CimValue::from(bool truth) {
    return TSKSmrPtr<CimValue>::make(CimType::of(DataType::kBoolean, false),
                                     truth ? "true" : "false", truth);
}

TSKSmrPtr<CimValue> CimValue::from(Mof::Value&& value, std::optional<DataType> type) {
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
