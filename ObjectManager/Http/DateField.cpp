#include "ObjectManager/Http/DateField.h"

#include <array>

#include "Platform/Util/TSKString.h"

namespace Http {

namespace {

// By name here, since strftime's depend on the locale.
constexpr std::array<const char*, 7> kDays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

}  // namespace

std::string formatDateField(std::time_t time) {
    std::tm utc{};
    gmtime_r(&time, &utc);
    TSKString field;
    field.sprintf("Date: %s, %02d %s %04d %02d:%02d:%02d GMT\r\n",
                  kDays.at(static_cast<std::size_t>(utc.tm_wday)), utc.tm_mday,
                  kMonths.at(static_cast<std::size_t>(utc.tm_mon)), utc.tm_year + 1900, utc.tm_hour,
                  utc.tm_min, utc.tm_sec);
    return {field.data(), field.length()};
}

const std::string& currentDateField() {
    thread_local std::time_t formattedTime = -1;
    thread_local std::string field;
    const std::time_t now = std::time(nullptr);
    if (now != formattedTime) {
        field = formatDateField(now);
        formattedTime = now;
    }
    return field;
}

}  // namespace Http
