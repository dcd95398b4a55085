#pragma once

#include <string>

#include "ObjectManager/Pages/Layout.h"
#include "ObjectManager/Repository/ClassRepository.h"

namespace Pages {

/// The page that lists all namespaces and classes of a repository, each class with a link to its
/// page and the first sentence of its description. HTML in UTF-8, in one piece, with the policy
/// PageKind::kIndex.
///
/// Without script it is the list. Its script adds links to the documents, a tree by inheritance,
/// and a search, for which it loads what makeSearchData makes when somebody begins to search. The
/// fragment "#filter=WORDS" fills in the search, so that results can be linked to.
///
/// May be called by several threads at once.
[[nodiscard]] std::string makeIndexPage(const Repository::ClassRepository& repository,
                                        Layout layout);

}  // namespace Pages
