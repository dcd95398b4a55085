#include "ObjectManager/Comparison/Change.h"

#include <tuple>

namespace Comparison {

bool isBreaking(Rule rule) noexcept {
    return rule < Rule::kClassAdded;
}

const char* nameOf(Rule rule) noexcept {
    switch (rule) {
        case Rule::kClassRemoved:
            return "class-removed";
        case Rule::kNamespaceChanged:
            return "namespace-changed";
        case Rule::kAddressChanged:
            return "address-changed";
        case Rule::kPropertyRemoved:
            return "property-removed";
        case Rule::kMethodRemoved:
            return "method-removed";
        case Rule::kParameterRemoved:
            return "parameter-removed";
        case Rule::kParameterAdded:
            return "parameter-added";
        case Rule::kRequiredAdded:
            return "required-added";
        case Rule::kTypeChanged:
            return "type-changed";
        case Rule::kArrayChanged:
            return "array-changed";
        case Rule::kOrderChanged:
            return "order-changed";
        case Rule::kValuesNarrowed:
            return "values-narrowed";
        case Rule::kLengthLowered:
            return "length-lowered";
        case Rule::kMessageChanged:
            return "message-changed";
        case Rule::kClassAdded:
            return "class-added";
        case Rule::kPropertyAdded:
            return "property-added";
        case Rule::kMethodAdded:
            return "method-added";
        case Rule::kResultAdded:
            return "result-added";
        case Rule::kRequiredRemoved:
            return "required-removed";
        case Rule::kValuesWidened:
            return "values-widened";
        case Rule::kLengthRaised:
            return "length-raised";
    }
    return "unknown";
}

std::optional<Rule> ruleOf(std::string_view name) noexcept {
    for (int number = 0; number <= static_cast<int>(Rule::kLengthRaised); ++number) {
        const auto rule = static_cast<Rule>(number);
        if (name == nameOf(rule))
            return rule;
    }
    return std::nullopt;
}

std::string placeOf(const Change& change) {
    std::string place = change.nameSpace + ":" + change.className;
    if (!change.member.empty())
        place += "." + change.member;
    return place;
}

std::string toText(const Change& change) {
    return std::string(isBreaking(change.rule) ? "breaking: " : "compatible: ") + placeOf(change) +
           ": " + change.message + " (" + nameOf(change.rule) + ")";
}

bool isBefore(const Change& left, const Change& right) noexcept {
    const auto key = [](const Change& change) {
        return std::tuple(!isBreaking(change.rule), std::string_view(change.nameSpace),
                          std::string_view(change.className), std::string_view(change.member),
                          change.rule, std::string_view(change.message));
    };
    return key(left) < key(right);
}

}  // namespace Comparison
