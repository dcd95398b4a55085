#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Pages {

/// The first sentence of a text in UTF-8, on one line: each row of spaces and line ends becomes one
/// space. A sentence ends before an empty line, and at a full stop, question mark or exclamation
/// mark that is followed by a space and then no lower-case letter. The full stop of an abbreviation
/// such as "e.g." does not end it. A sentence of more than `maxBytes` is cut between two words, or
/// else between two characters, and an ellipsis is added, which does not count.
///
/// May be called by several threads at once.
[[nodiscard]] std::string firstSentence(std::string_view text, std::size_t maxBytes);

}  // namespace Pages
