#include "ObjectManager/Pages/Layout.h"

#include <algorithm>

#include "ObjectManager/Base/Text.h"

namespace Pages {

using Base::percentEncodedPath;

std::string pathOfClassPage(Layout layout, std::string_view nameSpace, std::string_view className) {
    return (layout == Layout::kServed ? "-/" : "") + percentEncodedPath(nameSpace) + "/" +
           siblingPage(layout, className);
}

std::string_view pathOfSearchData(Layout layout) noexcept {
    return layout == Layout::kServed ? "-/search.js" : "search.js";
}

std::string pathOfDocument(std::string_view nameSpace, std::string_view className) {
    return percentEncodedPath(nameSpace) + "/" + percentEncodedPath(className);
}

std::string pathOfArchive(std::string_view nameSpace) {
    return "-/" + percentEncodedPath(nameSpace) + ".zip";
}

std::string siblingPage(Layout layout, std::string_view className) {
    return percentEncodedPath(className) + (layout == Layout::kServed ? "" : ".html");
}

std::string wayToTop(Layout layout, std::string_view nameSpace) {
    const auto slashes = std::ranges::count(nameSpace, '/');
    std::string way;
    for (auto left = slashes + (layout == Layout::kServed ? 2 : 1); left > 0; --left)
        way += "../";
    return way;
}

std::string_view pathOfIndex(Layout layout) noexcept {
    return layout == Layout::kServed ? "" : "index.html";
}

}  // namespace Pages
