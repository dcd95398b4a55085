#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Mof {

/// A place in a source text, as a person counts: from 1, columns in characters.
struct LineAndColumn {
    std::size_t line = 1;
    std::size_t column = 1;
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

    /// Where the byte at `offset` stands; the end of the text for an offset behind it.
    [[nodiscard]] LineAndColumn locate(std::size_t offset) const noexcept;

    /// The line of the byte at `offset`, without its end.
    [[nodiscard]] std::string_view lineAt(std::size_t offset) const noexcept;

  private:
    [[nodiscard]] std::size_t startOfLine(std::size_t offset) const noexcept;

    std::string name_;
    std::string text_;
};

}  // namespace Mof
