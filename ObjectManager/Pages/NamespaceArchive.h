#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "ObjectManager/Repository/CimNamespace.h"

namespace Pages {

/// The document at a path of the service, such as "/root/cimv2/CIM_Foo.wsdl", without percent
/// encodings; nothing where there is none any more.
using DocumentSource = std::function<std::optional<std::string>(const std::string& path)>;

/// Writes all documents of a namespace to `sink` as a ZIP archive, part by part:
///
///     README.txt                what there is, and how to do without a network
///     catalog.xml               an XML catalog of the schemas that documents import
///     root/cimv2/CIM_Foo.wsdl   as it is served
///     root/cimv2/CIM_Foo.xsd
///
/// Errors: TeskBaseException when there is more than such an archive can hold; whatever `source`
/// and `sink` throw.
///
/// May be called by several threads at once.
void writeNamespaceArchive(const Repository::CimNamespace& nameSpace, const DocumentSource& source,
                           const std::function<void(std::string_view bytes)>& sink);

}  // namespace Pages
