#include "common/date_text.h"

#include <string.h>
#include <time.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <optional>

#include "common/store_error.h"

namespace pim_store {

static constexpr std::string_view daylight_mark = " DST";

// The number in `digits`, nothing else: no sign, no blanks.
static std::optional<int32_t> number_of(std::string_view digits)
{
    int32_t number = 0;
    for (const char digit : digits) {
        if (digit < '0' || digit > '9') return std::nullopt;
        number = number * 10 + (digit - '0');
    }
    return number;
}

broken_down_time time_of_text(std::string_view text)
{
    const bool daylight = text.ends_with(daylight_mark);
    if (daylight) text.remove_suffix(daylight_mark.size());
    std::string whole(text);
    if (whole.size() == std::string_view("YYYY-MM-DD").size()) whole += " 00:00:00";
    if (whole.size() != std::string_view("YYYY-MM-DD HH:MM:SS").size()) return {};
    if (whole[4] != '-' || whole[7] != '-' || whole[10] != ' ' || whole[13] != ':' || whole[16] != ':') return {};

    const std::string_view view = whole;
    const auto year = number_of(view.substr(0, 4)), month = number_of(view.substr(5, 2)),
               day = number_of(view.substr(8, 2)), hour = number_of(view.substr(11, 2)),
               minute = number_of(view.substr(14, 2)), second = number_of(view.substr(17, 2));
    if (!year || !month || !day || !hour || !minute || !second) return {};

    using namespace std::chrono;
    const year_month_day date(std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                              std::chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok() || *hour > 23 || *minute > 59 || *second > 60) return {};
    const sys_days days = date;
    return {.sec = *second,
            .min = *minute,
            .hour = *hour,
            .mday = *day,
            .mon = *month - 1,
            .year = *year - 1900,
            .wday = static_cast<int32_t>(weekday(days).c_encoding()),
            .yday = static_cast<int32_t>((days - sys_days(date.year() / January / 1)).count()),
            .isdst = daylight ? 1 : 0};
}

std::string text_of_time(const broken_down_time& time)
{
    // Room for any nine words; those that are no date are told apart below.
    std::array<char, 96> text;
    std::snprintf(text.data(), text.size(), "%04lld-%02lld-%02d %02d:%02d:%02d%s", time.year + 1900LL, time.mon + 1LL,
                  time.mday, time.hour, time.min, time.sec, time.isdst > 0 ? daylight_mark.data() : "");
    const broken_down_time read_back = time_of_text(text.data());
    return memcmp(&read_back, &time, sizeof time) == 0 && time.mday != 0 ? text.data() : "";
}

broken_down_time local_time(int64_t seconds)
{
    // localtime_r() alone need not notice that the process has changed its time zone.
    tzset();
    const auto moment = static_cast<time_t>(seconds); // Of 32 bits on the device.
    tm local = {};
    if (moment != seconds || !localtime_r(&moment, &local)) throw store_failure(store_error::invalid_argument);
    return {local.tm_sec,  local.tm_min,  local.tm_hour, local.tm_mday, local.tm_mon,
            local.tm_year, local.tm_wday, local.tm_yday, local.tm_isdst};
}

} // namespace pim_store
