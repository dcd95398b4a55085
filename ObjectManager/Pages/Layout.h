#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Pages {

/// Where pages and documents are, seen from the top: the root of the service, or the directory of
/// an export. All addresses are relative, and may stand in an attribute as they are.
///
///                     served                      exported
///     index page      /                           index.html
///     class page      /-/root/cimv2/CIM_Foo       root/cimv2/CIM_Foo.html
///     search data     /-/search.js                search.js
///     documents       /root/cimv2/CIM_Foo.wsdl    root/cimv2/CIM_Foo.wsdl
///     all of them     /-/root/cimv2.zip
///
/// All functions may be called by several threads at once.
enum class Layout : std::uint8_t { kServed, kExported };

/// From the index page.
[[nodiscard]] std::string pathOfClassPage(Layout layout, std::string_view nameSpace,
                                          std::string_view className);
[[nodiscard]] std::string_view pathOfSearchData(Layout layout) noexcept;

/// From the index page: "root/cimv2/CIM_Foo", to which ".wsdl" or ".xsd" is added.
[[nodiscard]] std::string pathOfDocument(std::string_view nameSpace, std::string_view className);

/// From the index page, which is served: all documents of a namespace as an archive.
[[nodiscard]] std::string pathOfArchive(std::string_view nameSpace);

/// From the page of a class of the namespace: the page of another class of it, and the top, such as
/// "../../", to which the paths above are added.
[[nodiscard]] std::string siblingPage(Layout layout, std::string_view className);
[[nodiscard]] std::string wayToTop(Layout layout, std::string_view nameSpace);

/// From the top.
[[nodiscard]] std::string_view pathOfIndex(Layout layout) noexcept;

}  // namespace Pages
