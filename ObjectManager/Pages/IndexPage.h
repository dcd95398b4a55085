#pragma once

#include <string>

#include "ObjectManager/Repository/ClassRepository.h"

namespace Pages {

/// The page that lists all namespaces and classes of a repository, each class with its superclass,
/// the first sentence of its description and links to its two documents, with a filter. HTML in
/// UTF-8, in one piece: it needs no other file.
///
/// The links are relative ("root/cimv2/CIM_Foo.wsdl"), so that the page works in a directory of
/// exported documents as well as at the root of the service. The fragment "#filter=WORDS" fills in
/// the filter, so that a filtered list can be linked to.
///
/// May be called by several threads at once.
[[nodiscard]] std::string makeIndexPage(const Repository::ClassRepository& repository);

}  // namespace Pages
