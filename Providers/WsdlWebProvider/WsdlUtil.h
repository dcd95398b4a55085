#pragma once

#include <sstream>

#include "Platform/Cim/ITeskClass.h"
#include "Platform/Cim/ITeskType.h"
#include "Platform/Cim/ITeskValue.h"
#include "Platform/Soap/SOAPElement.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"
#include "Platform/Util/TSKValSlist.h"

/// An operation that every class offers: WS-Transfer's and WS-Enumeration's (September 2004).
struct IntrinsicMethodInfo {
    /// The operation's name and the stem of its messages' names; null ends the table.
    const char* name;
    /// The SOAP action of the request.
    const char* action;
    /// The element of the request's body: null for an empty body, "*" for the element
    /// `class:NAME_INPUT`, else the element's qualified name.
    const char* inputMessage;
    /// The same for the response; "*" stands for `class:NAME_OUTPUT`.
    const char* outputMessage;
    /// Whether the request names an instance in a SelectorSet header.
    bool includeSelectorSet;
};

/// The operations in the order of the documents, ended by a row without a name.
extern const IntrinsicMethodInfo IntrinsicMethodsInfo[];

/// The WSDL 1.1 description of one class: filled section by section, then rendered.
///
/// Names, texts and addresses are inserted as they are; none is escaped or checked, so a name or a
/// description that holds markup makes markup.
///
/// Errors: std::bad_alloc only.
///
/// Thread safety: belongs to one thread.
class WSDLFile {
  public:
    /// Describes the class `className` of the namespace `ns`. `address` is that of the service, to
    /// which "wsman" is appended as it is; `xsdText` is the content of the types section,
    /// zero-terminated, and null is the empty text.
    WSDLFile(const TSKString& className, const TSKString& address, const TSKString& ns,
             const char* xsdText);

    /// The setters change what is rendered from now on; a section that is already built keeps what
    /// it was built from.
    void setNS(const TSKString& ns);
    void setDocumentation(const TSKString& text);
    void setURL(const TSKString& address);
    void setServiceName(const TSKString& name);

    [[nodiscard]] TSKString getServiceName() const { return serviceName; }
    [[nodiscard]] TSKString getDocumentation() const { return serviceDocumentation; }
    [[nodiscard]] TSKString getURL() const { return url; }
    [[nodiscard]] TSKString getNS() const { return cimNS; }
    [[nodiscard]] TSKString getFileName() const;

    [[nodiscard]] TSKString getTypes() const { return eTypes; }
    /// The messages of the SOAP headers and of the methods added so far.
    [[nodiscard]] TSKString getMessages() const { return eMessages; }
    /// The messages of the operations of IntrinsicMethodsInfo.
    [[nodiscard]] TSKString getInstrinsicsMessages() const { return instrinsicsMessages; }

    /// Adds a method of the class: its messages and its operations of port type and binding. Its
    /// body elements are referred to whether it has parameters or not. An empty `documentation`
    /// leaves the element out. Nothing checks for a method of the same name.
    void addMessage(const TSKString& name, bool hasParameters, const TSKString& documentation);

    /// Whole elements, rendered anew at each call.
    [[nodiscard]] TSKString getPortType() const;
    [[nodiscard]] TSKString getBinding() const;
    [[nodiscard]] TSKString getService() const;

    /// The whole document, with or without the XML declaration in front.
    [[nodiscard]] TSKString toString(bool withXmlDeclaration) const;

  private:
    TSKString serviceName;
    TSKString serviceDocumentation;
    TSKString url;
    TSKString urlNS;
    TSKString urlName;
    TSKString cimNS;
    TSKString eTypes;
    TSKString eMessages;
    TSKString instrinsicsMessages;
    TSKString ePortType;
    TSKString eOperations;
};

/// Turns class definitions into XML Schema (DSP0230, WS-CIM mapping) and into WSDL documents.
///
/// The functions that build schema elements append to the element that they are given: children
/// last, with its prefix, attributes without a prefix. Missing or empty input makes fewer elements,
/// never an error; but a MaxLen or ValueMap qualifier without a value throws
/// TSKNullPointerException. What an object of the host throws passes; what was built before stays.
///
/// A stream that a document is written to tells of its errors itself: unless it is told to throw
/// (std::ios_base::badbit), a document may be cut short, when there is no memory for instance.
///
/// Thread safety: the functions keep no state; a definition may be used by several threads at once,
/// an element or a stream belongs to one.
namespace WsdlUtil {

using ClassList = TSKValSlist<TSKSmrPtr<ITeskClass>>;

// Types. Both return "NA" for a type that has no mapping; whether it is an array makes no
// difference.

/// The XML Schema type, such as "xs:unsignedShort".
[[nodiscard]] TSKString getWsXsType(const ITeskType& type);
/// The type of the WS-CIM common schema, such as "cim:cimUnsignedShort".
[[nodiscard]] TSKString getWsCimType(const ITeskType& type);

// Elements and attributes.

void addElementAttribute(TSKSmrPtr<SOAPElement>& element, const TSKString& name,
                         const TSKString& value);
/// An element declaration of a named type.
void addElement(TSKSmrPtr<SOAPElement>& parent, const TSKString& name, const TSKString& type);
/// The wildcard for attributes of any namespace.
void addAnyAttributeChildElement(TSKSmrPtr<SOAPElement>& parent);
/// The wildcard for any number of elements of other namespaces.
void addOpenContentChildElement(TSKSmrPtr<SOAPElement>& parent);
void addImportEelement(TSKSmrPtr<SOAPElement>& parent, const TSKString& nameSpace,
                       const TSKString& schemaLocation);

// Restrictions, from the qualifiers of a property or parameter of the CIM type `type`.

/// From MaxLen.
void addRestrictionMaxLenChildElement(TSKSmrPtr<SOAPElement>& parent, const ITeskType& type,
                                      const ITeskValue& maxLen);
/// From a list of permitted values. `maxLength` counts only with `addMaxLength`. A list without
/// elements makes a restriction without content, whatever the flags say.
void addRestrictionEnumerationChildElement(TSKSmrPtr<SOAPElement>& parent, const ITeskType& type,
                                           const ITeskValue& values, bool addAnyAttribute,
                                           bool addMaxLength, long maxLength);
/// From an interval; an empty bound leaves its side open.
void addSimpleTypeRestrictionChildElement(TSKSmrPtr<SOAPElement>& parent, const ITeskType& type,
                                          const TSKString& minValue, const TSKString& maxValue);
/// From ValueMap: an enumeration, or with ranges ("3..5", "..5", "3..", "..") a union of
/// enumerations and intervals. `addMaxLength` and `maxLength` are for the enumeration alone. A
/// value that is no array or has no type adds nothing.
///
/// Costs time and memory in proportion to the number before a lone "..", since the values that are
/// missing below it are enumerated.
void addRestrictionValueMapChildElement(TSKSmrPtr<SOAPElement>& parent, const ITeskType& type,
                                        const ITeskValue& valueMap, bool addMaxLength,
                                        long maxLength);

// Properties.

/// The global element of a property.
void addPropertyElement(TSKSmrPtr<SOAPElement>& parent, const urma::IPropertyDef& property);
/// Type and nillability of a property's element.
void addPropertyTypeElement(TSKSmrPtr<SOAPElement>& element, const urma::IPropertyDef& property);
/// How often a property occurs in an instance.
void addElementAttributeMinMaxOccurs(TSKSmrPtr<SOAPElement>& element,
                                     const urma::IPropertyDef& property);

// Methods.

/// The global elements of all methods of a class, inherited ones included. Nothing for null.
void addMethodsElement(TSKSmrPtr<SOAPElement>& parent, const TSKSmrPtr<ITeskClass>& cimClass);
/// The elements of a method's request and response.
void addMethodElement(TSKSmrPtr<SOAPElement>& parent, const urma::IMethodDef& method);
void addMethodParamterElement(TSKSmrPtr<SOAPElement>& sequence,
                              const urma::IParameterDef& parameter);
/// Type and nillability of a parameter's element.
void addMethodParamterTypeElement(TSKSmrPtr<SOAPElement>& element,
                                  const urma::IParameterDef& parameter);

// Classes.

/// The complex type of a class and its element. Nothing for null.
void addClassStructureElement(TSKSmrPtr<SOAPElement>& root, const TSKSmrPtr<ITeskClass>& cimClass);
/// Everything that a class declares: target namespace, properties, structure, methods. Nothing for
/// null.
void addClassDefElement(TSKSmrPtr<SOAPElement>& root, const TSKSmrPtr<ITeskClass>& cimClass,
                        bool declareNamespaces);

// Documents.

/// Writes the schema of a class as a WSDL document embeds it: the prefixes are those that the WSDL
/// document declares. Returns 1; 0 for null, which writes nothing.
int streamXsdDefinition(std::stringstream& stream, const TSKSmrPtr<ITeskClass>& cimClass);

/// Writes one schema document: of a single class its declarations, of several an import each. The
/// namespace of the imports is `baseAddress` less its last character. Null classes are skipped, a
/// null list is an empty one. Returns 1.
int streamXsdDefinitions(std::stringstream& stream, const TSKString& baseAddress,
                         const TSKSmrPtr<ClassList>& classes);

/// Writes a WSDL document for each class; several are wrapped in one element, and the types of each
/// repeat the schemas of those before. `url` and `ns` as in WSDLFile. Returns 1.
/// Errors: TSKNullPointerException for a null list or a null class.
int streamDefinitions(std::stringstream& stream, const TSKString& url, const TSKString& ns,
                      const TSKSmrPtr<ClassList>& classes);

/// Adds every method of a class to its WSDL description. Walks the iterator to its end.
void enumerateExtrinsicsMethods(
    const CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>>& methods, WSDLFile& wsdl);

}  // namespace WsdlUtil
