#pragma once

#include <string>

#include "ObjectManager/Pages/Layout.h"
#include "ObjectManager/Repository/ClassRepository.h"

namespace Pages {

/// What the index page searches beyond the names of classes: the descriptions of all classes, and
/// the properties and methods that each declares, with their descriptions. A script in UTF-8 that
/// calls the function teskClasses of the page with the data as its argument:
///
///     {"suffix": "", "namespaces": [
///       {"name": "root/cimv2", "pages": "-/root/cimv2/", "classes": [
///         ["CIM_Foo", "CIM_Super", "description", [["Property", 0, "description"],
///                                                  ["Method", 1, "description"]]]]}]}
///
/// where a page is at "pages", the encoded name and "suffix". A script and not plain JSON, since a
/// page that is opened from a disk may load nothing else.
///
/// May be called by several threads at once.
[[nodiscard]] std::string makeSearchData(const Repository::ClassRepository& repository,
                                         Layout layout);

/// `text` as a literal of JSON and of JavaScript, with its quotes. It ends no element of HTML. What
/// is not UTF-8 becomes U+FFFD.
[[nodiscard]] std::string scriptText(std::string_view text);

}  // namespace Pages
