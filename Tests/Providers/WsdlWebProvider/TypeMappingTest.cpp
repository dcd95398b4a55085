#include <gtest/gtest.h>
#include <string>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/HostCalls.h"

namespace {

using WsdlUtil::getWsCimType;
using WsdlUtil::getWsXsType;

struct Mapping {
    const char* lower;
    const char* upper;
    const char* mixed;
    const char* xsType;
    const char* cimType;
};

constexpr Mapping kMappings[] = {
    {"string", "STRING", "String", "xs:string", "cim:cimString"},
    {"char16", "CHAR16", "Char16", "xs:string", "cim:cimChar16"},
    {"datetime", "DATETIME", "dateTime", "xs:dateTime", "cim:cimDateTime"},
    {"real64", "REAL64", "Real64", "xs:double", "cim:cimDouble"},
    {"real32", "REAL32", "reaL32", "xs:float", "cim:cimFloat"},
    {"boolean", "BOOLEAN", "Boolean", "xs:boolean", "cim:cimBoolean"},
    {"sint64", "SINT64", "SInt64", "xs:long", "cim:cimLong"},
    {"uint64", "UINT64", "UInt64", "xs:unsignedLong", "cim:cimUnsignedLong"},
    {"sint32", "SINT32", "Sint32", "xs:int", "cim:cimInt"},
    {"uint32", "UINT32", "uInt32", "xs:unsignedInt", "cim:cimUnsignedInt"},
    {"sint16", "SINT16", "sinT16", "xs:short", "cim:cimShort"},
    {"uint16", "UINT16", "Uint16", "xs:unsignedShort", "cim:cimUnsignedShort"},
    {"sint8", "SINT8", "SInt8", "xs:byte", "cim:cimByte"},
    {"uint8", "UINT8", "UinT8", "xs:unsignedByte", "cim:cimUnsignedByte"},
};

void expectMapping(const std::string& type, const char* xsType, const char* cimType) {
    EXPECT_EQ(getWsXsType(ModelType(type)), xsType) << "of \"" << type << '"';
    EXPECT_EQ(getWsCimType(ModelType(type)), cimType) << "of \"" << type << '"';
}

TEST(TypeMapping, MapsEveryTypeInAnyCase) {
    for (const Mapping& mapping : kMappings) {
        for (const char* const name : {mapping.lower, mapping.upper, mapping.mixed})
            expectMapping(name, mapping.xsType, mapping.cimType);
    }
}

TEST(TypeMapping, ArraysMapLikeTheirElements) {
    for (const Mapping& mapping : kMappings) {
        for (const char* const name : {mapping.lower, mapping.upper, mapping.mixed})
            expectMapping(std::string(name) + "[]", mapping.xsType, mapping.cimType);
    }
}

TEST(TypeMapping, ReferencesMapToTheReferenceTypeWhateverTheirName) {
    for (const char* const type :
         {"CIM_Foo ref", "CIM_Foo ref[]", "string ref", "uint16 ref", "boolean ref[]"})
        expectMapping(type, "cim:cimReference", "cim:cimReference");
}

TEST(TypeMapping, UnknownNamesMapToNA) {
    for (const char* const name :
         {"object", "instance", "uint128", "void", "CIM_Foo", "NA", "bool", "object[]", "",
          // with spaces
          " uint8", "uint8 ", " uint8 ", "\tstring", " ",
          // parts and extensions of known ones
          "uint", "uint1", "uint160", "strings", "mystring", "real", "char"})
        expectMapping(name, "NA", "NA");
}

TEST(TypeMapping, FailuresOfTheTypePass) {
    const ModelType type("uint8");
    const auto ignore = [](const std::string&) {};
    EXPECT_GE(HostCalls::failEach([&] { (void)getWsXsType(type); }, ignore), 1U);
    EXPECT_GE(HostCalls::failEach([&] { (void)getWsCimType(type); }, ignore), 1U);
}

}  // namespace
