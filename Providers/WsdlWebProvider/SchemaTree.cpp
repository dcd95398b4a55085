#include "Providers/WsdlWebProvider/SchemaTree.h"

#include "Providers/WsdlWebProvider/Tags.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"

using namespace SchemaTree;

SchemaTree::AttributeNames::AttributeNames()
    : base(new SOAPQName(TAG_BASE)),
      maxOccurs(new SOAPQName(TAG_MAX_OCCURS)),
      minOccurs(new SOAPQName(TAG_MIN_OCCURS)),
      name(new SOAPQName(TAG_NAME)),
      nameSpace(new SOAPQName(TAG_NS)),
      nillable(new SOAPQName("nillable")),
      processContents(new SOAPQName("processContents")),
      ref(new SOAPQName("ref")),
      schemaLocation(new SOAPQName(TAG_SCHEMA_LOCATION)),
      type(new SOAPQName(TAG_TYPE)),
      value(new SOAPQName(TAG_VALUE)) {}

void WsdlUtil::addElementAttribute(TSKSmrPtr<SOAPElement>& element, const TSKString& name,
                                   const TSKString& value) {
    addAttribute(element, name.data(), value);
}

void WsdlUtil::addElement(TSKSmrPtr<SOAPElement>& parent, const TSKString& name,
                          const TSKString& type) {
    Element element = addChild(parent, TAG_ELEMENT);
    addAttribute(element, names().name, name);
    addAttribute(element, names().type, type);
}

void WsdlUtil::addAnyAttributeChildElement(TSKSmrPtr<SOAPElement>& parent) {
    Element wildcard = addChild(parent, "anyAttribute");
    addAttribute(wildcard, names().nameSpace, "##any");
    addAttribute(wildcard, names().processContents, "lax");
}

void WsdlUtil::addOpenContentChildElement(TSKSmrPtr<SOAPElement>& parent) {
    Element wildcard = addChild(parent, "any");
    addAttribute(wildcard, names().nameSpace, "##other");
    addAttribute(wildcard, names().processContents, "lax");
    addAttribute(wildcard, names().minOccurs, "0");
    addAttribute(wildcard, names().maxOccurs, "unbounded");
}

void WsdlUtil::addImportEelement(TSKSmrPtr<SOAPElement>& parent, const TSKString& nameSpace,
                                 const TSKString& schemaLocation) {
    Element import = addChild(parent, TAG_IMPORT);
    addAttribute(import, names().nameSpace, nameSpace);
    addAttribute(import, names().schemaLocation, schemaLocation);
}
