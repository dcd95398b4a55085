#include "ObjectManager/Http/Response.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Host/ProviderCall.h"
#include "Platform/Util/TSKString.h"

namespace Http {

namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kVersion = "HTTP/1.1";

// Not strftime's names, which depend on the locale.
constexpr std::array<const char*, 7> kDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Whether it is one of HTTP/1.
bool beginsWithVersion(std::string_view text) {
    constexpr std::string_view kAnyVersion = "HTTP/1.";
    return text.size() > kVersion.size() && text.starts_with(kAnyVersion) &&
           Base::isDigit(text[kAnyVersion.size()]) && text[kVersion.size()] == ' ';
}

bool describesBody(std::string_view field) {
    return Base::startsWithIgnoringCase(field, "Content-") ||
           Base::equalsIgnoringCase(field, "Transfer-Encoding") ||
           Base::equalsIgnoringCase(field, "ETag");
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

std::optional<Response> Response::make(std::string text) {
    const std::size_t headerLength = Host::headerLength(text);
    if (headerLength == 0 || !beginsWithVersion(text))
        return std::nullopt;
    text.replace(0, kVersion.size(), kVersion);

    Response response;
    response.statusLineLength_ = text.find(kLineEnd) + kLineEnd.size();
    response.headerLength_ = headerLength;
    response.text_ = std::move(text);
    response.addedFields_ = currentDateField();
    if (!response.field("Connection"))
        response.addField("Connection", "close");
    return response;
}

unsigned Response::status() const noexcept {
    const std::string_view line = std::string_view(text_).substr(0, statusLineLength_);
    const std::size_t start = std::min(kVersion.size() + 1, line.size());
    unsigned status = 0;
    std::from_chars(line.data() + start, line.data() + line.size(), status);
    return status;
}

std::optional<std::string_view> Response::field(std::string_view name) const noexcept {
    const std::string_view line = lineOf(name);
    if (line.empty())
        return std::nullopt;
    const std::size_t colon = std::min(line.find(':'), line.size());
    return Base::trimmed(line.substr(std::min(colon + 1, line.size())));
}

// The first field of that name that the provider wrote, without its line end; empty if there is
// none.
std::string_view Response::lineOf(std::string_view name) const noexcept {
    std::string_view lines = std::string_view(text_).substr(0, headerLength_);
    for (lines.remove_prefix(statusLineLength_); !lines.empty();
         lines.remove_prefix(lines.find(kLineEnd) + kLineEnd.size())) {
        const std::string_view line = lines.substr(0, lines.find(kLineEnd));
        if (Base::equalsIgnoringCase(line.substr(0, line.find(':')), name))
            return line;
    }
    return {};
}

std::string_view Response::body() const noexcept {
    return std::string_view(text_).substr(headerLength_);
}

void Response::addField(std::string_view name, std::string_view value) {
    addedFields_ += name;
    addedFields_ += ": ";
    addedFields_ += value;
    addedFields_ += kLineEnd;
}

// The line of Content-Length moves to the added fields, which makes room for the text: no second
// copy of a large body is made.
void Response::insertIntoBody(std::size_t position, std::string_view text) {
    constexpr std::string_view kName = "Content-Length";
    if (const std::string_view line = lineOf(kName); !line.empty()) {
        addField(kName, std::to_string(body().size() + text.size()));
        const std::size_t length = line.size() + kLineEnd.size();
        text_.erase(static_cast<std::size_t>(line.data() - text_.data()), length);
        headerLength_ -= length;
    }
    text_.insert(headerLength_ + position, text);
}

void Response::setBody(std::string_view contentType, std::string_view body) {
    std::string text = text_.substr(0, statusLineLength_);
    std::string_view lines = std::string_view(text_).substr(0, headerLength_ - kLineEnd.size());
    for (lines.remove_prefix(statusLineLength_); !lines.empty();) {
        const std::string_view line = lines.substr(0, lines.find(kLineEnd) + kLineEnd.size());
        const std::string_view name = line.substr(0, line.find(':'));
        if (!describesBody(name))
            text += line;
        lines.remove_prefix(line.size());
    }
    text += "Content-Type: " + std::string(contentType);
    text += "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    headerLength_ = text.size();
    text += body;
    text_ = std::move(text);
}

void Response::dropBody() {
    text_ = std::string(text_, 0, headerLength_);
}

Response::Parts Response::unsent() const {
    const char* const begin = text_.data();
    Parts parts = {
        boost::asio::buffer(begin, statusLineLength_), boost::asio::buffer(addedFields_),
        boost::asio::buffer(begin + statusLineLength_, text_.size() - statusLineLength_)};
    std::size_t skipped = sent_;
    for (boost::asio::const_buffer& part : parts) {
        const std::size_t inPart = std::min(skipped, part.size());
        part += inPart;
        skipped -= inPart;
    }
    return parts;
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
