#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Index {

/// The first sentence of a text in UTF-8, on one line: blanks and line ends in a row become one
/// blank. A sentence ends before an empty line, or with a full stop, question or exclamation mark
/// that a blank follows and then no small letter, unless the word is an abbreviation such as
/// "e.g.". One of more than `mostBytes` is cut between two words, or else between two characters,
/// and ends with "..." as one character, which does not count.
[[nodiscard]] std::string firstSentence(std::string_view text, std::size_t mostBytes);

}  // namespace Index
