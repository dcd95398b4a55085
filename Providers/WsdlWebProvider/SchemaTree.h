#pragma once

#include "Platform/Soap/SOAPElement.h"
#include "Platform/Soap/SOAPQName.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"

/// How schemas are built: elements that have their parent's prefix, attributes without a prefix.
///
/// Errors: std::bad_alloc; what was built before stays.
///
/// Thread safety: a tree belongs to one thread; the shared names may be used by several at once.
namespace SchemaTree {

using Element = TSKSmrPtr<SOAPElement>;
using Name = TSKSmrPtr<SOAPQName>;

/// The names of attributes that elements share: documents have thousands of attributes, and an
/// attribute copies its name.
struct AttributeNames {
    AttributeNames();

    Name base;
    Name maxOccurs;
    Name minOccurs;
    Name name;
    Name nameSpace;
    Name nillable;
    Name processContents;
    Name ref;
    Name schemaLocation;
    Name type;
    Name value;
};

/// Made at the first call and never destroyed, since other threads may still build schemas while
/// the process runs its exit handlers.
[[nodiscard]] inline const AttributeNames& names() {
    static const AttributeNames& names = *new AttributeNames;
    return names;
}

/// The name of a child: it has its parent's prefix.
[[nodiscard]] inline Name childName(const Element& parent, const char* localName) {
    Name name(new SOAPQName(localName));
    name->setPrefix(parent->getQname()->getPrefix());
    return name;
}

/// Makes an element and appends it to its parent. All elements below a root are made here.
inline Element addChild(const Element& parent, const Name& name) {
    Element child = SOAPElement::makeElement(name);
    parent->addChildElement(child);
    return child;
}
inline Element addChild(const Element& parent, const char* localName) {
    return addChild(parent, childName(parent, localName));
}

inline void addAttribute(const Element& element, const Name& name, const char* value) {
    element->addAttribute(name, value);
}
inline void addAttribute(const Element& element, const Name& name, const TSKString& value) {
    element->addAttribute(name, value.data());
}
/// For a name that is rare.
inline void addAttribute(const Element& element, const char* name, const TSKString& value) {
    addAttribute(element, Name(new SOAPQName(name)), value);
}

}  // namespace SchemaTree
