#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Mof {

/// A place in a source text, as a person counts: from 1, columns in characters. A line ends with
/// LF, CR LF, or CR alone, as old files have it.
struct LineAndColumn {
    std::size_t line = 1;
    std::size_t column = 1;
};

/// A line of a source text, or what surrounds a place in a line that is too long to be shown.
struct LineExcerpt {
    std::string_view text;    ///< without the end of the line
    std::size_t skipped = 0;  ///< how many characters of the line stand in front of it
    bool continues = false;   ///< whether more of the line stands behind it
};

/// The text of a MOF file, in UTF-8 whatever it was written in.
///
/// Thread safety: immutable, may be used by several threads at once.
class SourceText {
  public:
    /// `name` stands for the file in messages. `bytes` is UTF-8, with or without a byte order mark;
    /// what is no UTF-8 is read as Latin-1 (ISO 8859-1), in which older schemas are written.
    SourceText(std::string name, std::string bytes);

    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    [[nodiscard]] std::string_view text() const noexcept { return text_; }

    /// Whether the bytes were text after all, in UTF-16. Only for a text with zero bytes.
    [[nodiscard]] bool looksLikeUtf16() const noexcept;

    /// Where the byte at `offset` stands; the end of the text for an offset behind it.
    [[nodiscard]] LineAndColumn locate(std::size_t offset) const noexcept;

    /// The line of the byte at `offset`. Valid as long as this object.
    [[nodiscard]] LineExcerpt excerptAt(std::size_t offset) const noexcept;

    /// Lines of more bytes are shown in part, with so many around the place. Files may be one line
    /// of megabytes, and each of a hundred diagnostics keeps what it shows.
    static constexpr std::size_t kLongestLine = 200;

  private:
    [[nodiscard]] std::string_view lineAt(std::size_t offset) const noexcept;
    [[nodiscard]] std::size_t startOfLine(std::size_t offset) const noexcept;

    std::string name_;
    std::string text_;
};

}  // namespace Mof
