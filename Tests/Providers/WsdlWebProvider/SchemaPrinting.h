#pragma once

#include <cstddef>
#include <initializer_list>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Soap/SOAPElement.h"
#include "Tests/Support/HostCalls.h"

/// What the tests of the schema functions need to state a piece of schema as printed text.
///
/// The printed text begins with a newline, so that the expected one can begin on its own line.
namespace SchemaPrinting {

/// An element without content; a null `prefix` makes a name without one.
[[nodiscard]] inline TSKSmrPtr<SOAPElement> makeElement(const char* localName, const char* prefix) {
    return SOAPElement::makeElement(TSKSmrPtr<SOAPQName>::make(localName, prefix));
}

[[nodiscard]] inline std::string printed(const TSKSmrPtr<SOAPElement>& element) {
    std::ostringstream stream;
    stream << '\n';
    element->printXML(stream, std::numeric_limits<unsigned long>::max());
    return stream.str();
}

/// What `build` makes of an empty element named "parent", printed with that element.
template <typename Build>
[[nodiscard]] std::string contentOf(const Build& build, const char* prefix = "xs") {
    TSKSmrPtr<SOAPElement> parent = makeElement("parent", prefix);
    build(parent);
    return printed(parent);
}

/// What is left of an empty element named "parent" when `build` fails at its 1st, 2nd, 3rd … call
/// into the test's object manager: the printed element, once for failures that leave the same.
template <typename Build>
[[nodiscard]] std::vector<std::string> leftByFailures(const Build& build) {
    std::vector<std::string> left;
    TSKSmrPtr<SOAPElement> parent;
    HostCalls::failEach(
        [&] {
            parent = makeElement("parent", "xs");
            build(parent);
        },
        [&](const std::string& /*operation*/) {
            if (std::string text = printed(parent); left.empty() || left.back() != text)
                left.push_back(std::move(text));
        });
    return left;
}

/// Expected text: the element `xs:START`, where START is the local name and the attributes as they
/// are written, around the lines of `content`.
[[nodiscard]] inline std::string element(const std::string& start,
                                         const std::string& content = "") {
    if (content.empty())
        return "<xs:" + start + "/>\n";
    std::string text = "<xs:" + start + ">\n";
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);)
        text += "  " + line + "\n";
    return text + "</xs:" + start.substr(0, start.find(' ')) + ">\n";
}

/// Expected text: the facets NAME with these values.
[[nodiscard]] inline std::string facets(const std::string& name,
                                        std::initializer_list<const char*> values) {
    std::string text;
    for (const char* const value : values)
        text += element(name + " value=\"" + value + "\"");
    return text;
}

/// Expected text: contentOf something that adds `content` to the parent.
[[nodiscard]] inline std::string parentOf(const std::string& content) {
    std::string text = "\n";
    text += element("parent", content);
    return text;
}

/// Expected text: the wildcard for attributes of any namespace.
inline const std::string kAnyAttribute =
    element(R"(anyAttribute namespace="##any" processContents="lax")");

// Expected text: contentOf the element P of a property or parameter, which is a string.

inline constexpr const char* kText = R"(
<xs:parent>
  <xs:element name="P" type="cim:cimString"/>
</xs:parent>
)";

inline constexpr const char* kNillableText = R"(
<xs:parent>
  <xs:element name="P" type="cim:cimString" nillable="true"/>
</xs:parent>
)";

/// With an anonymous type; `attributes` is one of the next two.
[[nodiscard]] inline std::string restricted(const char* attributes,
                                            const std::string& restrictions) {
    return parentOf(element("element " + std::string(attributes),
                            element("complexType", element("simpleContent", restrictions))));
}

inline constexpr const char* kNillable = R"(name="P" nillable="true")";
inline constexpr const char* kNotNillable = R"(name="P")";

/// The restrictions of MaxLen 8 and of the ValueMap "on", "off".
inline const std::string kMaxLen8 =
    element(R"(restriction base="cim:cimString")", facets("maxLength", {"8"}) + kAnyAttribute);
inline const std::string kOnOff = element(R"(restriction base="cim:cimString")",
                                          facets("enumeration", {"on", "off"}) + kAnyAttribute);

}  // namespace SchemaPrinting
