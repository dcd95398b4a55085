#include "Platform/Util/TSKStreamLogSink.h"

#include <chrono>
#include <ctime>
#include <string_view>

namespace {

TSKString currentTime() {
    using std::chrono::system_clock;
    const auto now = std::chrono::floor<std::chrono::milliseconds>(system_clock::now());
    const std::time_t seconds = system_clock::to_time_t(now);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    return TSKString().sprintf("%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900,
                               utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec,
                               static_cast<int>(now.time_since_epoch().count() % 1000));
}

const char* wordFor(TeskTraceLog::Severity severity) {
    switch (severity) {
        case TeskTraceLog::SeverityError:
            return "error";
        case TeskTraceLog::SeverityWarning:
            return "warning";
        case TeskTraceLog::SeverityInformation:
            return "information";
        default:
            return "trace";
    }
}

void appendPrintable(TSKString& line, std::string_view text) {
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7f)
            line += TSKString().sprintf("\\x%02x", static_cast<unsigned int>(byte));
        else
            line += character;
    }
}

}  // namespace

TSKStreamLogSink::~TSKStreamLogSink() = default;

TSKString TSKStreamLogSink::lineOf(const TSKLogEntry& entry) {
    TSKString line = currentTime();
    line += ' ';
    line += wordFor(entry.severity);
    line += ' ';
    appendPrintable(line, entry.component);
    line += ": ";
    appendPrintable(line, entry.message);
    line += '\n';
    return line;
}

void TSKStreamLogSink::write(const TSKLogEntry& entry) {
    const TSKString line = lineOf(entry);
    // One call, so that lines of several threads do not mix: C streams lock themselves. A line that
    // cannot be written is lost.
    (void)std::fwrite(line.data(), 1, line.length(), stream_);
    (void)std::fflush(stream_);
}
