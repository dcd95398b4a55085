#pragma once

#include <string_view>

// What the index page holds besides the classes. None of it depends on them.

namespace Index {

/// The text of IndexPage.css and of IndexPage.js.
extern const std::string_view kPageStyle;
extern const std::string_view kPageScript;

}  // namespace Index
