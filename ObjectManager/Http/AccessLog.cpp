#include "ObjectManager/Http/AccessLog.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Http/Options.h"

namespace Http {

namespace {

constexpr std::size_t kMaxText = 4096;
// Of a line without long texts.
constexpr std::size_t kUsualLength = 512;

void appendEscaped(std::string& line, std::string_view text, bool isQuoted) {
    if (text.empty()) {
        line += '-';
        return;
    }
    for (const char byte : text.substr(0, kMaxText)) {
        const bool isPlain = Base::isPrintable(byte) && byte != '"' && byte != '\\';
        if (isPlain && (isQuoted || byte != ' ')) {
            line += byte;
            continue;
        }
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        const auto code = static_cast<unsigned char>(byte);
        line += "\\x";
        line += kDigits[code >> 4U];
        line += kDigits[code & 0xFU];
    }
    if (text.size() > kMaxText)
        line += "...";
}

void appendQuoted(std::string& line, std::string_view text) {
    line += " \"";
    appendEscaped(line, text, true);
    line += '"';
}

// Not strftime's names, which depend on the locale. Formats once a second and thread.
void appendTime(std::string& line, std::time_t time) {
    static constexpr std::array<const char*, 12> kMonths = {
        "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    thread_local std::time_t formattedTime = -1;
    thread_local char text[64] = {};
    if (time != formattedTime) {
        std::tm utc{};
        gmtime_r(&time, &utc);
        (void)std::snprintf(text, sizeof text, " [%02d/%s/%04d:%02d:%02d:%02d +0000]", utc.tm_mday,
                            kMonths.at(static_cast<std::size_t>(utc.tm_mon)), utc.tm_year + 1900,
                            utc.tm_hour, utc.tm_min, utc.tm_sec);
        formattedTime = time;
    }
    line += text;
}

std::string_view fieldOf(const TSKHTTPRequest* request, const char* name) {
    if (request != nullptr) {
        for (const TSKHTTPRequest::HeaderField& field : request->getHeaderFields()) {
            if (field.name.equalsIgnoreCase(name))
                return field.value;
        }
    }
    return {};
}

}  // namespace

std::string accessLogLine(const Exchange& exchange, std::string_view user, std::time_t time) {
    std::string line;
    line.reserve(kUsualLength);
    line += exchange.client.toString();
    line += " - ";
    appendEscaped(line, user, false);
    appendTime(line, time);
    appendQuoted(line, exchange.requestLine);
    line += ' ';
    line += std::to_string(exchange.status);
    line += ' ';
    line += exchange.bodyBytes == 0 ? "-" : std::to_string(exchange.bodyBytes);
    appendQuoted(line, fieldOf(exchange.request, "Referer"));
    appendQuoted(line, fieldOf(exchange.request, "User-Agent"));
    line += '\n';
    return line;
}

AccessLog::AccessLog(const std::string& path) : file_(path == "-" ? "/dev/stdout" : path) {}

void AccessLog::write(const Exchange& exchange, std::string_view user) {
    const std::uint64_t lost = file_.write(accessLogLine(exchange, user, std::time(nullptr)));
    if (lost != 0) {
        Base::log(kLogComponent, TeskTraceLog::SeverityWarning,
                  Base::counted(lost, "line", "lines") +
                      " of the access log could not be written until now");
    }
}

}  // namespace Http
