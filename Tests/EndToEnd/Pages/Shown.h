#pragma once

#include <string>
#include <vector>

/// A page as a browser holds it.
struct Shown {
    std::string dom;      ///< as HTML, when all scripts have run
    std::string console;  ///< what the browser's console says, policies that were violated too

    /// Of the classes that can be seen.
    [[nodiscard]] std::vector<std::string> names() const;
    [[nodiscard]] std::string title() const;
    /// What stands beside the filter.
    [[nodiscard]] std::string count() const;

    /// The first group of each match in the HTML.
    [[nodiscard]] std::vector<std::string> found(const char* pattern) const;
};
