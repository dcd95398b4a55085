#pragma once

/// What the documents call their elements, attributes, prefixes and namespaces. All are constants:
/// nothing is made when the library is loaded, and nothing is destroyed when the process ends.

inline constexpr const char* TAG_SIMPLE_TYPE = "simpleType";
inline constexpr const char* TAG_RESTRICTION = "restriction";
inline constexpr const char* TAG_BASE = "base";
inline constexpr const char* TAG_MIN_INCLUSIVE = "minInclusive";
inline constexpr const char* TAG_VALUE = "value";
inline constexpr const char* TAG_MAX_INCLUSIVE = "maxInclusive";
inline constexpr const char* TAG_UNION = "union";
inline constexpr const char* TAG_ENUMERATTION = "enumeration";
inline constexpr const char* TAG_MAX_LENGTH = "maxLength";
inline constexpr const char* TAG_ELEMENT = "element";
inline constexpr const char* TAG_NAME = "name";
inline constexpr const char* TAG_TYPE = "type";
inline constexpr const char* TAG_COMPLEX_TYPE = "complexType";
inline constexpr const char* TAG_SIMPLE_CONTENT = "simpleContent";
inline constexpr const char* TAG_MIN_OCCURS = "minOccurs";
inline constexpr const char* TAG_MAX_OCCURS = "maxOccurs";
inline constexpr const char* TAG_SEQUENCE = "sequence";
inline constexpr const char* TAG_TARGET_NS = "targetNamespace";
inline constexpr const char* TAG_XS = "xs";
inline constexpr const char* TAG_XMLNS = "xmlns";
inline constexpr const char* TAG_XS_VALUE = "http://www.w3.org/2001/XMLSchema";
inline constexpr const char* TAG_CLASS = "class";
// The class's name is appended to it.
inline constexpr const char* TAG_CLASS_VALUE = "http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/";
inline constexpr const char* TAG_CIM = "cim";
inline constexpr const char* TAG_CIM_VALUE = "http://schemas.dmtf.org/wbem/wscim/1/common";
inline constexpr const char* TAG_IMPORT = "import";
inline constexpr const char* TAG_NS = "namespace";
inline constexpr const char* TAG_SCHEMA_LOCATION = "schemaLocation";
inline constexpr const char* TAG_SCHEMA = "schema";
inline constexpr const char* TAG_WSMAN_VALUE = "http://schemas.dmtf.org/wbem/wsman/1/wsman";
inline constexpr const char* TAG_SOAP12_VALUE = "http://schemas.xmlsoap.org/wsdl/soap12/";
inline constexpr const char* TAG_SOAP = "soap";

inline constexpr const char* URI_WSMAN_XSD = "http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd";
inline constexpr const char* URI_CIMBINDING_XSD =
    "http://schemas.dmtf.org/wbem/wsman/1/cimbinding.xsd";
// The class's name, "/" and the method's name are appended to it. Unlike TAG_CLASS_VALUE it is
// written "ws-cim".
inline constexpr const char* URI_WSCIM_ACTION_BASE =
    "http://schemas.dmtf.org/wbem/ws-cim/1/cim-schema/2/";
inline constexpr const char* URI_WSDL = "http://schemas.xmlsoap.org/wsdl/";
inline constexpr const char* URI_SOAP_HTTP = "http://schemas.xmlsoap.org/soap/http";
inline constexpr const char* URI_WSA = "http://schemas.xmlsoap.org/ws/2004/08/addressing";
inline constexpr const char* URI_WST = "http://schemas.xmlsoap.org/ws/2004/09/transfer";
inline constexpr const char* URI_WST_XSD =
    "http://schemas.xmlsoap.org/ws/2004/09/transfer/transfer.xsd";
inline constexpr const char* URI_WSEN = "http://schemas.xmlsoap.org/ws/2004/09/enumeration";
inline constexpr const char* URI_WSEN_XSD =
    "http://schemas.xmlsoap.org/ws/2004/09/enumeration/enumeration.xsd";
