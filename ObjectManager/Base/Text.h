#pragma once

#include <cstddef>
#include <exception>
#include <span>
#include <string>
#include <string_view>

// Texts as people and other formats read them. All functions may be called by several threads at
// once.

namespace Base {

/// `"text"`, as a name stands in a message. Nothing is escaped. Call it as Base::quoted: without
/// the namespace a std::string finds std::quoted, which <filesystem> brings in.
[[nodiscard]] std::string quoted(std::string_view text);

/// `text` as one word of a shell command: in single quotes where it needs them.
[[nodiscard]] std::string shellQuoted(std::string_view text);

/// The texts in a row, with `separator` between them; `lastSeparator` before the last one, as in
/// joined(names, ", ", " or "): "a, b or c".
[[nodiscard]] std::string joined(std::span<const std::string> texts, std::string_view separator,
                                 std::string_view lastSeparator);
[[nodiscard]] std::string joined(std::span<const std::string> texts, std::string_view separator);

/// "1,234,567".
[[nodiscard]] std::string withSeparators(std::size_t number);

/// "1 class", "1,438 classes".
[[nodiscard]] std::string counted(std::size_t number, std::string_view singular,
                                  std::string_view plural);

/// "512 bytes", "43.1 KB", "1.2 MB": thousands, not 1,024s.
[[nodiscard]] std::string bytesText(std::size_t bytes);

/// "0.52 s".
[[nodiscard]] std::string secondsText(double seconds);

/// Why something failed, as a message says it: that of a TeskBaseException, in plain words that
/// memory ran out, else what(). Lives as long as the exception.
[[nodiscard]] std::string_view reasonOf(const std::exception& error) noexcept;

/// `text` as it may stand in a line of the log, whoever it comes from: bytes that are not printable
/// ASCII become \xHH, a backslash becomes \\; after 200 bytes "..." stands for the rest.
[[nodiscard]] std::string logText(std::string_view text);

/// A path as it stands in a relative URI (RFC 3986): slashes, letters, digits and "-._~" stay,
/// other bytes become %HH. The result needs no quotes as the value of an HTML attribute, and no
/// escaping.
[[nodiscard]] std::string percentEncodedPath(std::string_view path);

/// `text` such that a browser shows it as it is, in an element or in a quoted attribute. What HTML
/// cannot hold, control characters and bytes that are not UTF-8, becomes U+FFFD.
[[nodiscard]] std::string htmlText(std::string_view text);

/// Whether xmlText() would change `text`. Faster than a call of that: most texts need no escapes.
[[nodiscard]] bool needsXmlEscapes(std::string_view text) noexcept;

/// `text` with "&amp;", "&lt;" and "&gt;" for the characters that are markup in the content of an
/// XML element. Everything else stays as it is, also what XML does not allow.
[[nodiscard]] std::string xmlText(std::string_view text);

}  // namespace Base
