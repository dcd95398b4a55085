#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Comparison {

/// What can change for the clients of a model; Docs/compatibility.md gives the reasons. First those
/// that break a client that was right before.
enum class Rule : std::uint8_t {
    kClassRemoved,
    kNamespaceChanged,  ///< the XML namespace of the elements
    kAddressChanged,    ///< of the service
    kPropertyRemoved,
    kMethodRemoved,
    kParameterRemoved,  ///< from a request or a response, the return value included
    kParameterAdded,    ///< to a request: all parameters are sent
    kRequiredAdded,     ///< a value that must be there
    kTypeChanged,
    kArrayChanged,
    kOrderChanged,  ///< in a sequence, where XML Schema demands the order
    kValuesNarrowed,
    kLengthLowered,
    kMessageChanged,  ///< another element is the body
    kClassAdded,
    kPropertyAdded,
    kMethodAdded,
    kResultAdded,  ///< a parameter in a response
    kRequiredRemoved,
    kValuesWidened,
    kLengthRaised,
};

/// A difference between two versions of a model.
struct Change {
    Rule rule = Rule::kClassRemoved;
    std::string nameSpace;
    std::string className;
    std::string member;   ///< the property, method or "Method.Parameter"; empty for the whole class
    std::string message;  ///< a sentence without a full stop

    friend bool operator==(const Change&, const Change&) = default;
};

/// Whether a client that was right before may fail.
[[nodiscard]] bool isBreaking(Rule rule) noexcept;

/// A word for programs: "property-removed".
[[nodiscard]] const char* nameOf(Rule rule) noexcept;

/// The rule of that name, if there is one.
[[nodiscard]] std::optional<Rule> ruleOf(std::string_view name) noexcept;

/// "root/cimv2:CIM_Foo.Bar".
[[nodiscard]] std::string placeOf(const Change& change);

/// "breaking: root/cimv2:CIM_Foo.Bar: MESSAGE (type-changed)", without a newline.
[[nodiscard]] std::string toText(const Change& change);

/// Whether one belongs before another in a list: breaking ones first, then by namespace, class,
/// member and rule.
[[nodiscard]] bool isBefore(const Change& left, const Change& right) noexcept;

}  // namespace Comparison
