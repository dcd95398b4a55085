#include "ObjectManager/Mof/Reporter.h"

#include <utility>

#include "ObjectManager/Mof/Utf8.h"

namespace Mof {

namespace {

std::string shortened(std::string message) {
    if (message.size() <= Reporter::kLongestMessage)
        return message;
    return message.substr(0, startOfCharacter(message, Reporter::kLongestMessage)) + "...";
}

}  // namespace

void Reporter::error(const Position& position, std::string message) {
    add(Severity::kError, position, std::move(message));
    countError();
}

void Reporter::errorOfFile(const std::string& file, std::string message) {
    compilation_.diagnostics.push_back({
        .severity = Severity::kError,
        .file = file,
        .place = {.line = 0, .column = 0},
        .message = shortened(std::move(message)),
        .sourceLine = "",
    });
    countError();
}

void Reporter::warning(const Position& position, std::string message) {
    if (warnings_ == kMostWarnings)
        return;
    if (++warnings_ == kMostWarnings)
        message += " (many warnings, the rest is not shown)";
    add(Severity::kWarning, position, std::move(message));
}

std::string Reporter::nameOf(const Position& position) const {
    const SourceText& file = compilation_.files.at(position.file);
    const LineAndColumn place = file.locate(position.offset);
    return file.name() + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

void Reporter::add(Severity severity, const Position& position, std::string message) {
    const SourceText& file = compilation_.files.at(position.file);
    const LineExcerpt excerpt = file.excerptAt(position.offset);
    compilation_.diagnostics.push_back({
        .severity = severity,
        .file = file.name(),
        .place = file.locate(position.offset),
        .message = shortened(std::move(message)),
        .sourceLine = std::string(excerpt.text),
        .skipped = excerpt.skipped,
        .continues = excerpt.continues,
    });
}

void Reporter::countError() {
    if (++errors_ < mostErrors_)
        return;
    compilation_.diagnostics.back().message += " (too many errors, the rest is not read)";
    throw TooManyErrors();
}

}  // namespace Mof
