#pragma once

#include <string>

#include "ObjectManager/Pages/ClassRelations.h"
#include "ObjectManager/Pages/Layout.h"

namespace Pages {

/// Two pictures of the place of a class among the others, as inline SVG that the style of the page
/// colours: what it extends and what extends it; and the classes that it associates, and the
/// associations with it and its superclasses, with what they lead to. Each class is a link to its
/// page. The second is left out where there would be nothing in it.
///
/// Pictures stay small, whatever the model: of what is too much, the page has the list. They fit a
/// phone, whatever the names and the fonts are.
///
/// May be called by several threads at once.
[[nodiscard]] std::string pictureOf(const Repository::CimClass& cimClass,
                                    const ClassRelations& relations, Layout layout);

}  // namespace Pages
