#include "Providers/WsdlWebProvider/SchemaTypes.h"

#include "Providers/WsdlWebProvider/WsdlUtil.h"

namespace {

struct TypeMapping {
    const char* cimName;
    const char* xsType;
    const char* wsCimType;
};

constexpr TypeMapping kTypeMappings[] = {
    {"string", "xs:string", "cim:cimString"},
    {"char16", "xs:string", "cim:cimChar16"},
    {"datetime", "xs:dateTime", "cim:cimDateTime"},
    {"real64", "xs:double", "cim:cimDouble"},
    {"real32", "xs:float", "cim:cimFloat"},
    {"Boolean", "xs:boolean", "cim:cimBoolean"},
    {"sint64", "xs:long", "cim:cimLong"},
    {"uint64", "xs:unsignedLong", "cim:cimUnsignedLong"},
    {"sint32", "xs:int", "cim:cimInt"},
    {"uint32", "xs:unsignedInt", "cim:cimUnsignedInt"},
    {"sint16", "xs:short", "cim:cimShort"},
    {"uint16", "xs:unsignedShort", "cim:cimUnsignedShort"},
    {"sint8", "xs:byte", "cim:cimByte"},
    {"uint8", "xs:unsignedByte", "cim:cimUnsignedByte"},
};

constexpr const char* kReferenceType = "cim:cimReference";
constexpr const char* kUnmappedType = "NA";

const char* mapType(const ITeskType& type, const char* TypeMapping::*column) {
    if (type.isReference())
        return kReferenceType;
    const TSKString name = type.getTypeName();
    for (const TypeMapping& mapping : kTypeMappings) {
        if (name.equalsIgnoreCase(mapping.cimName))
            return mapping.*column;
    }
    return kUnmappedType;
}

}  // namespace

const char* SchemaTypes::xsType(const ITeskType& type) {
    return mapType(type, &TypeMapping::xsType);
}

const char* SchemaTypes::wsCimType(const ITeskType& type) {
    return mapType(type, &TypeMapping::wsCimType);
}

bool SchemaTypes::isStringType(const ITeskType& type) {
    return type.getTypeName().find("string", 0) >= 0 || type.getTypeName().find("String", 0) >= 0;
}

TSKString WsdlUtil::getWsXsType(const ITeskType& type) {
    return SchemaTypes::xsType(type);
}

TSKString WsdlUtil::getWsCimType(const ITeskType& type) {
    return SchemaTypes::wsCimType(type);
}
