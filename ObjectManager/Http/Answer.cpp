#include "ObjectManager/Http/Answer.h"

#include <algorithm>
#include <boost/beast/core/string.hpp>
#include <string_view>
#include <utility>

#include "ObjectManager/Http/DateField.h"

namespace Http {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeadEnd = "\r\n\r\n";

// `head` ends with an empty line.
bool hasField(std::string_view head, std::string_view name) {
    for (std::size_t end = head.find(kLineEnd); end != std::string_view::npos;
         end = head.find(kLineEnd)) {
        const std::string_view line = head.substr(0, end);
        const std::string_view lineName = line.substr(0, line.find(':'));
        if (boost::beast::iequals({lineName.data(), lineName.size()}, {name.data(), name.size()}))
            return true;
        head.remove_prefix(end + kLineEnd.size());
    }
    return false;
}

}  // namespace

std::optional<Answer> Answer::make(std::string response, bool headOnly) {
    const std::string_view text = response;
    const std::size_t headEnd = text.find(kHeadEnd);
    if (!text.starts_with("HTTP/1.") || headEnd == std::string_view::npos)
        return std::nullopt;
    const std::size_t headLength = headEnd + kHeadEnd.size();

    Answer answer;
    answer.statusLineLength_ = text.find(kLineEnd) + kLineEnd.size();
    answer.fields_ = currentDateField();
    if (!hasField(text.substr(0, headLength), "Connection"))
        answer.fields_ += "Connection: close\r\n";
    answer.length_ = headOnly ? headLength : text.size();
    answer.response_ = std::move(response);
    return answer;
}

Answer::Parts Answer::unsent() const {
    const char* const begin = response_.data();
    Parts parts = {boost::asio::buffer(begin, statusLineLength_), boost::asio::buffer(fields_),
                   boost::asio::buffer(begin + statusLineLength_, length_ - statusLineLength_)};
    std::size_t skipped = sent_;
    for (boost::asio::const_buffer& part : parts) {
        const std::size_t inPart = std::min(skipped, part.size());
        part += inPart;
        skipped -= inPart;
    }
    return parts;
}

}  // namespace Http
