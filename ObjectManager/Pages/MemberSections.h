#pragma once

#include <string>

#include "ObjectManager/Pages/ClassRelations.h"
#include "ObjectManager/Pages/Layout.h"

namespace Pages {

/// The sections of a class page that list its members, inherited ones included, each with its type,
/// what its qualifiers say, the values that it may have, and its description. What is inherited can
/// be hidden, without a script. The section of methods is left out for a class without any.
///
/// The member X has the address "#property-X" or "#method-X".
///
/// Both may be called by several threads at once.
[[nodiscard]] std::string propertySection(const Repository::CimClass& cimClass,
                                          const ClassRelations& relations, Layout layout);
[[nodiscard]] std::string methodSection(const Repository::CimClass& cimClass,
                                        const ClassRelations& relations, Layout layout);

/// Whether a parameter is sent, and whether it comes back, as DSP0004 reads the qualifiers: In is
/// true and Out is false where they are not written.
[[nodiscard]] bool isInput(const urma::IQualified& parameter);
[[nodiscard]] bool isOutput(const urma::IQualified& parameter);

}  // namespace Pages
