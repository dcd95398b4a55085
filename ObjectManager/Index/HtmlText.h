#pragma once

#include <string>
#include <string_view>

namespace Index {

/// `text` such that a browser shows it as it is, in an element or in a quoted attribute. What HTML
/// cannot hold, control characters and bytes that are no UTF-8, becomes U+FFFD, the replacement
/// character.
[[nodiscard]] std::string htmlText(std::string_view text);

/// The inverse of the escaping of Description texts in a repository (see RepositoryOptions).
[[nodiscard]] std::string withoutEscapes(std::string_view markup);

}  // namespace Index
