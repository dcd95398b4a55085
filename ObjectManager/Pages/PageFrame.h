#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Pages {

/// What differs between the pages in style and script.
enum class PageKind : std::uint8_t { kIndex, kClass };

/// A page in HTML, in UTF-8, around the content of its body. Style, script and icon are in the page
/// itself, and its policy lets a browser use nothing else; only the index page may load the search
/// data, from where the page itself comes from.
///
/// All functions may be called by several threads at once.
[[nodiscard]] std::string framedPage(PageKind kind, std::string_view title, std::string_view body);

/// The value of the header field Content-Security-Policy that goes with a page. The page itself
/// holds the same policy without `frame-ancestors`, which browsers accept only in the header field.
[[nodiscard]] std::string contentSecurityPolicy(PageKind kind);

/// How a content security policy names an inline script or style that a browser may use:
/// 'sha256-...', with the quotes, for the exact bytes between its tags.
/// Errors: TeskBaseException when the cryptographic library does not work.
[[nodiscard]] std::string sourceHash(std::string_view text);

}  // namespace Pages
