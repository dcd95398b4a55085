#include "ObjectManager/Mof/Diagnostics.h"

#include <algorithm>
#include <string_view>

#include "ObjectManager/Base/Utf8.h"

namespace Mof {

namespace {

constexpr std::string_view kLeftOut = "...";

// A question mark for each control character but tabs, which do no harm: texts and file names come
// from strangers, and a terminal would obey them.
std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto [code, length] = Base::decodeCodePoint(text);
        const std::string_view bytes = text.substr(0, std::max<std::size_t>(length, 1));
        if (length > 0 && Base::isControlCode(code) && code != '\t')
            result += '?';
        else
            result += bytes;
        text.remove_prefix(bytes.size());
    }
    return result;
}

// Spaces below the first `count` characters, and a tab below a tab, so that the caret appears below
// its place.
std::string indentBelow(std::string_view line, std::size_t count) {
    std::string indent;
    for (const char byte : line) {
        if (Base::isContinuation(byte))
            continue;
        if (indent.size() == count)
            break;
        indent += byte == '\t' ? '\t' : ' ';
    }
    return indent;
}

// Thread safety: belongs to one thread.
class FilePlaces : public Places {
  public:
    explicit FilePlaces(const std::vector<SourceText>& files) : files_(files) {}

    [[nodiscard]] Diagnostic diagnosticAt(const Position& position) const override {
        const SourceText& file = files_.at(position.file);
        const LineExcerpt excerpt = file.excerptAt(position.offset);
        return {
            .file = file.name(),
            .place = file.locate(position.offset),
            .message = "",
            .sourceLine = std::string(excerpt.text),
            .skipped = excerpt.skipped,
            .continues = excerpt.continues,
        };
    }

    [[nodiscard]] std::string nameOf(const Position& position) const override {
        const SourceText& file = files_.at(position.file);
        const LineAndColumn place = file.locate(position.offset);
        return file.name() + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
    }

  private:
    const std::vector<SourceText>& files_;
};

}  // namespace

std::string Diagnostic::toString() const {
    std::string text = printable(file) + ":";
    if (place.line > 0)
        text += std::to_string(place.line) + ":" + std::to_string(place.column) + ":";
    text += severity == Severity::kError ? " error: " : " warning: ";
    text += printable(message) + "\n";
    if (sourceLine.empty())
        return text;
    const std::size_t inFront = place.column - std::min(place.column, skipped + 1);
    std::string line = printable(sourceLine);
    std::string indent = indentBelow(line, inFront);
    if (skipped > 0) {
        line.insert(0, kLeftOut);
        indent.insert(0, kLeftOut.size(), ' ');
    }
    if (continues)
        line += kLeftOut;
    return text + line + "\n" + indent + "^\n";
}

Reporter::Reporter(const std::vector<SourceText>& files, std::vector<Diagnostic>& diagnostics,
                   const DiagnosticLimits& limits)
    : Reporter(std::make_unique<FilePlaces>(files), diagnostics, limits) {}

void Reporter::error(const Position& position, const std::string& message) {
    add(Severity::kError, position, message);
    countError();
}

void Reporter::errorOfFile(const std::string& file, const std::string& message) {
    diagnostics_.push_back({
        .severity = Severity::kError,
        .file = file,
        .place = {.line = 0, .column = 0},
        .message = shortened(message),
        .sourceLine = "",
    });
    countError();
}

void Reporter::warning(const Position& position, std::string message) {
    if (warnings_ == limits_.maxWarnings)
        return;
    if (++warnings_ == limits_.maxWarnings)
        message += " (many warnings, the rest is not shown)";
    add(Severity::kWarning, position, message);
}

void Reporter::add(Severity severity, const Position& position, const std::string& message) {
    Diagnostic diagnostic = places_->diagnosticAt(position);
    diagnostic.severity = severity;
    diagnostic.message = shortened(message);
    diagnostics_.push_back(std::move(diagnostic));
}

void Reporter::countError() {
    if (++errors_ < limits_.maxErrors)
        return;
    diagnostics_.back().message += " (too many errors, the rest is not read)";
    throw TooManyErrors();
}

std::string Reporter::shortened(const std::string& message) const {
    if (message.size() <= limits_.maxMessageSize)
        return message;
    return message.substr(0, Base::startOfCharacter(message, limits_.maxMessageSize)) + "...";
}

}  // namespace Mof
