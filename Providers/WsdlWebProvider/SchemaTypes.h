#pragma once

#include "Platform/Cim/ITeskType.h"

/// What a CIM type is called in schemas. The texts are constants.
///
/// Thread safety: may be used by several threads at once.
namespace SchemaTypes {

/// The text of WsdlUtil::getWsXsType.
[[nodiscard]] const char* xsType(const ITeskType& type);
/// The text of WsdlUtil::getWsCimType.
[[nodiscard]] const char* wsCimType(const ITeskType& type);

/// Whether the name of the type holds "string" or "String". Other spellings do not count, although
/// the mapping of types ignores case.
[[nodiscard]] bool isStringType(const ITeskType& type);

}  // namespace SchemaTypes
