#include "ObjectManager/Http/Response.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "Platform/Util/TSKString.h"

namespace Http {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kHeaderEnd = "\r\n\r\n";

// Not strftime's names, which depend on the locale.
constexpr std::array<const char*, 7> kDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// `header` ends with an empty line.
bool hasField(std::string_view header, std::string_view name) {
    for (std::size_t end = header.find(kLineEnd); end != std::string_view::npos;
         end = header.find(kLineEnd)) {
        const std::string_view line = header.substr(0, end);
        if (Base::equalsIgnoringCase(line.substr(0, line.find(':')), name))
            return true;
        header.remove_prefix(end + kLineEnd.size());
    }
    return false;
}

// Formats once per second and thread. Valid until the next call by the same thread.
const std::string& currentDateField() {
    thread_local std::time_t formattedTime = -1;
    thread_local std::string field;
    const std::time_t now = std::time(nullptr);
    if (now != formattedTime) {
        field = dateField(now);
        formattedTime = now;
    }
    return field;
}

}  // namespace

std::optional<Response> Response::make(std::string text, bool withoutBody) {
    const std::string_view view = text;
    const std::size_t headerEnd = view.find(kHeaderEnd);
    if (!view.starts_with("HTTP/1.") || headerEnd == std::string_view::npos)
        return std::nullopt;
    const std::size_t headerLength = headerEnd + kHeaderEnd.size();

    Response response;
    response.statusLineLength_ = view.find(kLineEnd) + kLineEnd.size();
    response.headerLength_ = headerLength;
    response.addedFields_ = currentDateField();
    if (!hasField(view.substr(0, headerLength), "Connection"))
        response.addedFields_ += "Connection: close\r\n";
    response.length_ = withoutBody ? headerLength : view.size();
    response.text_ = std::move(text);
    return response;
}

Response::Parts Response::unsent() const {
    const char* const begin = text_.data();
    Parts parts = {boost::asio::buffer(begin, statusLineLength_), boost::asio::buffer(addedFields_),
                   boost::asio::buffer(begin + statusLineLength_, length_ - statusLineLength_)};
    std::size_t skipped = sent_;
    for (boost::asio::const_buffer& part : parts) {
        const std::size_t inPart = std::min(skipped, part.size());
        part += inPart;
        skipped -= inPart;
    }
    return parts;
}

unsigned Response::status() const noexcept {
    constexpr std::size_t kStart = std::string_view("HTTP/1.1 ").size();
    unsigned status = 0;
    std::from_chars(text_.data() + std::min(kStart, text_.size()), text_.data() + text_.size(),
                    status);
    return status;
}

std::size_t Response::sentBodyBytes() const noexcept {
    const std::size_t before = headerLength_ + addedFields_.size();
    return sent_ - std::min(sent_, before);
}

std::string dateField(std::time_t time) {
    std::tm utc{};
    gmtime_r(&time, &utc);
    TSKString field;
    field.sprintf("Date: %s, %02d %s %04d %02d:%02d:%02d GMT\r\n",
                  kDays.at(static_cast<std::size_t>(utc.tm_wday)), utc.tm_mday,
                  kMonths.at(static_cast<std::size_t>(utc.tm_mon)), utc.tm_year + 1900, utc.tm_hour,
                  utc.tm_min, utc.tm_sec);
    return {field.data(), field.length()};
}

}  // namespace Http
