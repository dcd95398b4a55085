#include "ObjectManager/Http/RequestHeadScanner.h"

#include <utility>

namespace Http {

namespace {

bool isForbidden(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte < 0x20 && byte != '\t' && byte != '\r' && byte != '\n') || byte == 0x7f;
}

}  // namespace

RequestHeadScanner::Progress RequestHeadScanner::scan(std::string_view received) {
    while (position_ < received.size()) {
        const char byte = received[position_];
        const Progress progress = look(byte);
        if (progress == Progress::kRefused)
            return progress;
        ++position_;
        previous_ = byte;
        if (progress == Progress::kComplete)
            return progress;
    }
    return Progress::kIncomplete;
}

// Judges the byte at `position_`.
RequestHeadScanner::Progress RequestHeadScanner::look(char byte) {
    if (position_ >= limits_.mostHeadBytes)
        return refuse(431, "The head of the request is longer than " +
                               std::to_string(limits_.mostHeadBytes) + " bytes.");
    if ((byte == '\n') != (previous_ == '\r'))
        return refuse(400, "A line does not end with a carriage return and a newline.");
    if (byte == '\n')
        return endLine();
    if (isForbidden(byte))
        return refuse(400, "The head of the request holds a control character.");
    const bool isInRequestLine = lineStart_ == headStart_ && byte != '\r';
    if (isInRequestLine && position_ - lineStart_ >= limits_.mostRequestLineBytes)
        return refuse(414, "The request line is longer than " +
                               std::to_string(limits_.mostRequestLineBytes) + " bytes.");
    return Progress::kIncomplete;
}

RequestHeadScanner::Progress RequestHeadScanner::endLine() {
    const bool isEmpty = position_ - lineStart_ == 1;
    if (isEmpty && lineStart_ > headStart_)
        return Progress::kComplete;
    lineStart_ = position_ + 1;
    if (isEmpty)
        headStart_ = lineStart_;
    return Progress::kIncomplete;
}

RequestHeadScanner::Progress RequestHeadScanner::refuse(unsigned status, std::string text) {
    refusal_ = {.status = status, .text = std::move(text)};
    return Progress::kRefused;
}

}  // namespace Http
