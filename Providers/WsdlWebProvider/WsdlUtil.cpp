#include "Providers/WsdlWebProvider/WsdlUtil.h"

#include <limits>

#include "Platform/Util/TSKValSlistIterator.h"
#include "Providers/WsdlWebProvider/IntrinsicMethods.h"
#include "Providers/WsdlWebProvider/SchemaTree.h"
#include "Providers/WsdlWebProvider/SchemaTypes.h"
#include "Providers/WsdlWebProvider/Tags.h"

using namespace SchemaTree;
using SchemaTypes::wsCimType;

namespace {

template <typename Definition, typename Visit>
void forEach(const CI_AutoPtr_U<urma::Iterator<const Definition&>>& iterator, const Visit& visit) {
    for (; iterator->hasCurrent(); iterator->advance())
        visit(iterator->current());
}

// The text of the last Description written on a definition, empty without one.
template <typename Definition>
TSKString descriptionOf(const Definition& definition) {
    TSKString description;
    forEach(definition.getQualifiers(false), [&](const urma::IQualifier& qualifier) {
        if (qualifier.hasValue() && qualifier.getName().isEqualCaseInsensitive("Description"))
            description = qualifier.getValue()->toString();
    });
    return description;
}

bool isTrue(const urma::IQualifier* qualifier) {
    if (qualifier == nullptr)
        return false;
    const TSKSmrPtr<ITeskValue> value = qualifier->getValue();
    return value && value->toBoolean();
}

// Gives an element its type: a named one, or an anonymous one with the restrictions of those of the
// two qualifiers that are not null.
void addType(const Element& element, const ITeskType& type, const urma::IQualifier* maxLen,
             const urma::IQualifier* valueMap) {
    if (maxLen == nullptr && valueMap == nullptr) {
        addAttribute(element, names().type, wsCimType(type));
        return;
    }
    const Element complexType = addChild(element, TAG_COMPLEX_TYPE);
    Element simpleContent = addChild(complexType, TAG_SIMPLE_CONTENT);
    if (maxLen != nullptr)
        WsdlUtil::addRestrictionMaxLenChildElement(simpleContent, type, *maxLen->getValue());
    if (valueMap != nullptr)
        WsdlUtil::addRestrictionValueMapChildElement(simpleContent, type, *valueMap->getValue(),
                                                     false, 0);
}

void addNillable(const Element& element) {
    addAttribute(element, names().nillable, "true");
}

// The same, and lets the value be nil unless it is a scalar that must be there.
void addTypeAndNillability(const Element& element, const ITeskType& type,
                           const urma::IQualifier* maxLen, const urma::IQualifier* valueMap,
                           bool mandatory) {
    addType(element, type, maxLen, valueMap);
    if (type.isArray() || !mandatory)
        addNillable(element);
}

// The functions that declare many elements hand in their name, so that the elements share it
// (Benchmarks, DocumentBenchmark).

void addProperty(const Element& parent, const Name& elementName,
                 const urma::IPropertyDef& property) {
    Element element = addChild(parent, elementName);
    addAttribute(element, names().name, property.getName());
    WsdlUtil::addPropertyTypeElement(element, property);
}

void addParameter(const Element& sequence, const Name& elementName,
                  const urma::IParameterDef& parameter) {
    Element element = addChild(sequence, elementName);
    addAttribute(element, names().name, parameter.getName());
    WsdlUtil::addMethodParamterTypeElement(element, parameter);
}

// A global element with an anonymous type; returns its sequence.
Element addSequenceElement(const Element& parent, const Name& elementName, const TSKString& name) {
    const Element element = addChild(parent, elementName);
    addAttribute(element, names().name, name);
    return addChild(addChild(element, TAG_COMPLEX_TYPE), TAG_SEQUENCE);
}

void addMethod(const Element& parent, const Name& elementName, const urma::IMethodDef& method) {
    const TSKString name = method.getName();
    const Element input = addSequenceElement(parent, elementName, name + kInputSuffix);
    const Element output = addSequenceElement(parent, elementName, name + kOutputSuffix);
    forEach(method.getParameters(), [&](const urma::IParameterDef& parameter) {
        const bool isInput = isTrue(parameter.getQualifier("In", true));
        const bool isOutput = isTrue(parameter.getQualifier("Out", true));
        if (isInput)
            addParameter(input, elementName, parameter);
        if (isOutput)
            addParameter(output, elementName, parameter);
    });
    const Element returnValue = addChild(output, elementName);
    addAttribute(returnValue, names().name, "ReturnValue");
    addAttribute(returnValue, names().type, wsCimType(method.getReturnType()));
    addNillable(returnValue);
}

TSKString classTypeName(const TSKString& className) {
    return "class:" + className + "_Type";
}

Element makeSchema() {
    return SOAPElement::makeElement(TSKSmrPtr<SOAPQName>(new SOAPQName(TAG_SCHEMA, TAG_XS)));
}

void addCommonImport(Element& root) {
    WsdlUtil::addImportEelement(root, TAG_CIM_VALUE, TSKString(TAG_CIM_VALUE) + ".xsd");
}

// The body elements of the intrinsic operations that carry a whole instance.
void addIntrinsicElements(Element& root, const TSKString& type) {
    forEachIntrinsicMethod([&](const IntrinsicMethodInfo& method) {
        if (isOwnElement(method.inputMessage))
            WsdlUtil::addElement(root, TSKString(method.name) + kInputSuffix, type);
        if (isOwnElement(method.outputMessage))
            WsdlUtil::addElement(root, TSKString(method.name) + kOutputSuffix, type);
    });
}

void addClassImports(Element& root, const TSKString& baseAddress,
                     const WsdlUtil::ClassList& classes) {
    const TSKString nameSpace = baseAddress.left(baseAddress.length() - 1);
    TSKValSlistIterator<TSKSmrPtr<ITeskClass>> next(classes);
    while (next()) {
        if (next.key())
            WsdlUtil::addImportEelement(root, nameSpace,
                                        nameSpace + "/" + next.key()->getName() + ".xsd");
    }
}

// The WSDL documents of all classes. The types of each hold the schemas of those before, too.
TSKString wsdlDocuments(const TSKString& url, const TSKString& ns,
                        const WsdlUtil::ClassList& classes) {
    const bool wrapped = classes.entries() > 1;
    TSKString documents;
    std::stringstream schemas;
    schemas.exceptions(std::ios_base::badbit);
    if (wrapped)
        documents += "<wsdl_definitions>\n";
    TSKValSlistIterator<TSKSmrPtr<ITeskClass>> next(classes);
    while (next()) {
        const ITeskClass& cimClass = *next.key();
        WsdlUtil::streamXsdDefinition(schemas, next.key());
        WSDLFile wsdl(cimClass.getName(), url, ns, schemas.str().c_str());
        wsdl.setDocumentation(descriptionOf(cimClass));
        WsdlUtil::enumerateExtrinsicsMethods(cimClass.getMethods(true), wsdl);
        documents += wsdl.toString(false);
    }
    if (wrapped)
        documents += "</wsdl_definitions>\n";
    return documents;
}

void printWhole(const Element& root, std::ostream& stream) {
    root->printXML(stream, std::numeric_limits<unsigned long>::max());
}

}  // namespace

void WsdlUtil::addRestrictionMaxLenChildElement(TSKSmrPtr<SOAPElement>& parent,
                                                const ITeskType& type, const ITeskValue& maxLen) {
    Element restriction = addChild(parent, TAG_RESTRICTION);
    addAttribute(restriction, names().base, wsCimType(type));
    const Element maxLength = addChild(restriction, TAG_MAX_LENGTH);
    addAttribute(maxLength, names().value, maxLen.toString());
    addAnyAttributeChildElement(restriction);
}

void WsdlUtil::addPropertyElement(TSKSmrPtr<SOAPElement>& parent,
                                  const urma::IPropertyDef& property) {
    addProperty(parent, childName(parent, TAG_ELEMENT), property);
}

void WsdlUtil::addPropertyTypeElement(TSKSmrPtr<SOAPElement>& element,
                                      const urma::IPropertyDef& property) {
    const bool key = isTrue(property.getQualifier("Key", true));
    const bool required = isTrue(property.getQualifier("Required", true));
    const urma::IQualifier* const maxLen = property.getQualifier("MaxLen", true);
    const urma::IQualifier* const valueMap = property.getQualifier("ValueMap", false);
    // A value map takes the place of a maximum length.
    addTypeAndNillability(element, property.getType(), valueMap == nullptr ? maxLen : nullptr,
                          valueMap, key || required);
}

void WsdlUtil::addElementAttributeMinMaxOccurs(TSKSmrPtr<SOAPElement>& element,
                                               const urma::IPropertyDef& property) {
    const bool key = isTrue(property.getQualifier("Key", true));
    const bool required = isTrue(property.getQualifier("Required", true));
    const bool array = property.getType().isArray();
    if (array || !(key || required))
        addAttribute(element, names().minOccurs, "0");
    if (array)
        addAttribute(element, names().maxOccurs, "unbounded");
}

void WsdlUtil::addMethodsElement(TSKSmrPtr<SOAPElement>& parent,
                                 const TSKSmrPtr<ITeskClass>& cimClass) {
    if (!cimClass)
        return;
    const Name elementName = childName(parent, TAG_ELEMENT);
    forEach(cimClass->getMethods(true),
            [&](const urma::IMethodDef& method) { addMethod(parent, elementName, method); });
}

void WsdlUtil::addMethodElement(TSKSmrPtr<SOAPElement>& parent, const urma::IMethodDef& method) {
    addMethod(parent, childName(parent, TAG_ELEMENT), method);
}

void WsdlUtil::addMethodParamterElement(TSKSmrPtr<SOAPElement>& sequence,
                                        const urma::IParameterDef& parameter) {
    addParameter(sequence, childName(sequence, TAG_ELEMENT), parameter);
}

// Other rules than for properties: Key and Required count by their presence and only together, and
// both restrictions stand side by side.
void WsdlUtil::addMethodParamterTypeElement(TSKSmrPtr<SOAPElement>& element,
                                            const urma::IParameterDef& parameter) {
    const bool key = parameter.getQualifier("Key", false) != nullptr;
    const bool required = parameter.getQualifier("Required", false) != nullptr;
    const urma::IQualifier* const maxLen = parameter.getQualifier("MaxLen", true);
    const urma::IQualifier* const valueMap = parameter.getQualifier("ValueMap", false);
    addTypeAndNillability(element, parameter.getType(), maxLen, valueMap, key && required);
}

void WsdlUtil::addClassStructureElement(TSKSmrPtr<SOAPElement>& root,
                                        const TSKSmrPtr<ITeskClass>& cimClass) {
    if (!cimClass)
        return;
    const TSKString name = cimClass->getName();
    Element complexType = addChild(root, TAG_COMPLEX_TYPE);
    addAttribute(complexType, names().name, name + "_Type");
    Element sequence = addChild(complexType, TAG_SEQUENCE);
    const Name elementName = childName(sequence, TAG_ELEMENT);
    bool hasProperties = false;
    forEach(cimClass->getProperties(true), [&](const urma::IPropertyDef& property) {
        Element reference = addChild(sequence, elementName);
        addAttribute(reference, names().ref, "class:" + property.getName());
        addElementAttributeMinMaxOccurs(reference, property);
        hasProperties = true;
    });
    if (hasProperties)
        addOpenContentChildElement(sequence);
    addAnyAttributeChildElement(complexType);
    addElement(root, name, classTypeName(name));
}

void WsdlUtil::addClassDefElement(TSKSmrPtr<SOAPElement>& root,
                                  const TSKSmrPtr<ITeskClass>& cimClass, bool declareNamespaces) {
    if (!cimClass)
        return;
    const TSKString classNamespace = TAG_CLASS_VALUE + cimClass->getName();
    addAttribute(root, TAG_TARGET_NS, classNamespace);
    if (declareNamespaces) {
        const TSKString declaration = TSKString(TAG_XMLNS) + ":";
        addAttribute(root, (declaration + TAG_XS).data(), TAG_XS_VALUE);
        addAttribute(root, (declaration + TAG_CLASS).data(), classNamespace);
        addAttribute(root, (declaration + TAG_CIM).data(), TAG_CIM_VALUE);
    }
    const Name elementName = childName(root, TAG_ELEMENT);
    forEach(cimClass->getProperties(true),
            [&](const urma::IPropertyDef& property) { addProperty(root, elementName, property); });
    addClassStructureElement(root, cimClass);
    addMethodsElement(root, cimClass);
}

int WsdlUtil::streamXsdDefinition(std::stringstream& stream,
                                  const TSKSmrPtr<ITeskClass>& cimClass) {
    Element root = makeSchema();
    addCommonImport(root);
    const TSKString wsmanSchema = TSKString(TAG_WSMAN_VALUE) + ".xsd";
    addImportEelement(root, wsmanSchema, wsmanSchema);
    addImportEelement(root, URI_WST, URI_WST_XSD);
    addImportEelement(root, URI_WSEN, URI_WSEN_XSD);
    addImportEelement(root, URI_CIMBINDING_XSD, URI_CIMBINDING_XSD);
    if (!cimClass)
        return 0;
    addClassDefElement(root, cimClass, false);
    addIntrinsicElements(root, classTypeName(cimClass->getName()));
    printWhole(root, stream);
    return 1;
}

int WsdlUtil::streamXsdDefinitions(std::stringstream& stream, const TSKString& baseAddress,
                                   const TSKSmrPtr<ClassList>& classes) {
    Element root = makeSchema();
    addCommonImport(root);
    if (classes) {
        if (classes->entries() > 1) {
            addClassImports(root, baseAddress, *classes);
        } else {
            TSKValSlistIterator<TSKSmrPtr<ITeskClass>> next(*classes);
            while (next())
                addClassDefElement(root, next.key(), true);
        }
    }
    printWhole(root, stream);
    return 1;
}

int WsdlUtil::streamDefinitions(std::stringstream& stream, const TSKString& url,
                                const TSKString& ns, const TSKSmrPtr<ClassList>& classes) {
    const TSKString output = wsdlDocuments(url, ns, *classes);
    stream.write(output.data(), static_cast<std::streamsize>(output.length()));
    return 1;
}

void WsdlUtil::enumerateExtrinsicsMethods(
    const CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>>& methods, WSDLFile& wsdl) {
    forEach(methods, [&](const urma::IMethodDef& method) {
        const TSKString documentation = descriptionOf(method);
        const bool hasParameters = method.getParameters()->hasCurrent();
        wsdl.addMessage(method.getName(), hasParameters, documentation);
    });
}
