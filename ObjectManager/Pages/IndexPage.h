#pragma once

#include <string>
#include <string_view>

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
/// All functions may be called by several threads at once.
[[nodiscard]] std::string makeIndexPage(const Repository::ClassRepository& repository);

/// The value of the header field Content-Security-Policy that goes with the page. The page itself
/// holds the same policy without `frame-ancestors`, which browsers accept only in the header field.
[[nodiscard]] std::string contentSecurityPolicy();

/// How a content security policy names an inline script or style that a browser may use:
/// 'sha256-...', with the quotes, for the exact bytes between its tags.
/// Errors: TeskBaseException when the cryptographic library does not work.
[[nodiscard]] std::string sourceHash(std::string_view text);

}  // namespace Pages
