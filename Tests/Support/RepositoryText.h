#pragma once

#include <string>

#include "Platform/Cim/ITeskClass.h"
#include "Platform/Cim/ITeskValue.h"

// Definitions as texts to compare.

/// "null" for a null pointer; an array in braces: "{1, null}".
[[nodiscard]] std::string textOf(const ITeskValue* value);

/// "uint8", "uint8[]", "ref".
[[nodiscard]] std::string textOf(const ITeskType& type);

/// "Key(true) Values({a, b}) Empty(null)", in the order in which they are listed.
[[nodiscard]] std::string qualifiersOf(const urma::IQualified& definition, bool includePropagated);

/// Names, in the order in which they are listed, with spaces between them.
[[nodiscard]] std::string propertiesOf(const ITeskClass& cimClass, bool includeInherited);
[[nodiscard]] std::string methodsOf(const ITeskClass& cimClass, bool includeInherited);
[[nodiscard]] std::string parametersOf(const urma::IMethodDef& method);

/// What a class lists, or a method takes, under exactly that name.
/// Errors: std::out_of_range when there is none.
[[nodiscard]] const urma::IPropertyDef& propertyOf(const ITeskClass& cimClass, const char* name);
[[nodiscard]] const urma::IMethodDef& methodOf(const ITeskClass& cimClass, const char* name);
[[nodiscard]] const urma::IParameterDef& parameterOf(const urma::IMethodDef& method,
                                                     const char* name);
