#pragma once

#include <string>
#include <string_view>

namespace Index {

/// By what a content security policy lets a browser use an inline script or style: 'sha256-...',
/// with the quotes, for the very bytes that stand between its tags.
/// Errors: TeskBaseException when the cryptographic library does not work.
[[nodiscard]] std::string sourceHash(std::string_view text);

}  // namespace Index
