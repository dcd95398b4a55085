#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Repository/CimQualifiers.h"

// What pages tell of the qualifiers of a class or a member, propagated ones included. All functions
// may be called by several threads at once.

namespace Pages {

/// The value as text; empty without one.
[[nodiscard]] std::string textOf(const urma::IQualified& definition, const char* qualifier);

/// The values of an array; one for a qualifier that is no array, none without it.
[[nodiscard]] std::vector<std::string> textsOf(const urma::IQualified& definition,
                                               const char* qualifier);

/// The text of the Description, as it was declared.
template <typename Definition>
[[nodiscard]] std::string descriptionOf(const Definition& definition) {
    const Repository::CimQualifier* const found = definition.getQualifier("Description", true);
    return found == nullptr || found->value() == nullptr ? "" : std::string(found->value()->text());
}

/// A value that a property, a parameter or a method may have.
struct NamedValue {
    std::string value;
    std::string name;  ///< empty without one
};

/// As ValueMap and Values say, or else BitMap and BitValues; without the first of these, values
/// count from 0.
[[nodiscard]] std::vector<NamedValue> namedValuesOf(const urma::IQualified& definition);

}  // namespace Pages
