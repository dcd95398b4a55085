#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Mof {

/// A place in a source text for a person: counted from 1, columns in characters. A line ends with
/// LF, CR LF, or, in old files, CR alone.
struct LineAndColumn {
    std::size_t line = 1;
    std::size_t column = 1;
};

/// A line of a source text, or the part of a long line around a place.
struct LineExcerpt {
    std::string_view text;    ///< without the end of the line
    std::size_t skipped = 0;  ///< the number of characters of the line before it
    bool continues = false;   ///< whether the line goes on after it
};

/// The text of a MOF file, in UTF-8 whatever it was written in.
///
/// Thread safety: immutable, may be used by several threads at once.
class SourceText {
  public:
    /// `name` is the name of the file in messages. `bytes` is UTF-8, with or without a byte order
    /// mark; anything else is read as Latin-1 (ISO 8859-1), in which older schemas are written.
    SourceText(std::string name, std::string bytes);

    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    [[nodiscard]] std::string_view text() const noexcept { return text_; }

    /// Whether the bytes are probably text in UTF-16. Only for a text with zero bytes.
    [[nodiscard]] bool looksLikeUtf16() const noexcept;

    /// The place of the byte at `offset`; the end of the text for an offset beyond it.
    [[nodiscard]] LineAndColumn locate(std::size_t offset) const noexcept;

    /// The line of the byte at `offset`. Valid as long as this object.
    [[nodiscard]] LineExcerpt excerptAt(std::size_t offset) const noexcept;

    /// The size of an excerpt in bytes. A file may be one line of megabytes, and each of a hundred
    /// diagnostics keeps a copy of its excerpt.
    static constexpr std::size_t kMaxExcerpt = 200;

  private:
    [[nodiscard]] std::string_view lineAt(std::size_t offset) const noexcept;
    [[nodiscard]] std::size_t startOfLine(std::size_t offset) const noexcept;

    std::string name_;
    std::string text_;
};

}  // namespace Mof
