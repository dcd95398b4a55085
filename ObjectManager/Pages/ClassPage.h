#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Pages/ClassRelations.h"
#include "ObjectManager/Pages/Layout.h"

namespace Pages {

/// The page of one class, for those who program against it: what it is, its place among the other
/// classes, its properties and methods, and example requests. HTML in UTF-8, in one piece, with the
/// policy PageKind::kClass; all but the copy buttons works without script.
///
/// `service` is where the service is, such as "https://cim.example.org:5986". Everything
/// else comes from `cimClass` and from `relations`, those of its namespace.
///
/// May be called by several threads at once.
[[nodiscard]] std::string makeClassPage(const Repository::CimClass& cimClass,
                                        const ClassRelations& relations, Layout layout,
                                        std::string_view service);

/// The URI of a class: its XML namespace, and the resource that requests name.
[[nodiscard]] std::string classUri(std::string_view className);

}  // namespace Pages
