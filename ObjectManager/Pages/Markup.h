#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Pages/ClassRelations.h"
#include "ObjectManager/Pages/Layout.h"

// Pieces of HTML of which class pages are made. Texts come in as MOF files have them, and are
// escaped here. All functions may be called by several threads at once.

namespace Pages {

/// A text with its paragraphs, which empty lines separate; the lines within a paragraph stay.
/// Empty for a text without words.
[[nodiscard]] std::string paragraphs(std::string_view text);

/// The same, with all but the first sentence folded away where the text is long.
[[nodiscard]] std::string foldedText(std::string_view text);

/// The link to the page of a class, whatever the case of the name; the name alone where the
/// namespace has no such class.
[[nodiscard]] std::string classLink(const ClassRelations& relations, Layout layout,
                                    std::string_view className);

/// As classLink, for a text that begins with the name of a class, and goes on with a member of it:
/// "CIM_Foo", "CIM_Foo.Bar", "CIM_Foo|Bar".
[[nodiscard]] std::string mentionLink(const ClassRelations& relations, Layout layout,
                                      std::string_view mention);

/// `kind` is a class of the style.
[[nodiscard]] std::string badge(std::string_view text, const char* kind = "");

[[nodiscard]] std::string code(std::string_view text);

}  // namespace Pages
