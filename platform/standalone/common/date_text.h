// date_text.h: broken-down local times as texts that a person reads.
#pragma once

#include <broken_down_time.h>

#include <string>
#include <string_view>

namespace pim_store {

// "1985-04-12 23:20:50", with " DST" behind it while daylight saving is in force. Empty when the nine words are not
// those of a date that time_of_text() would give back unchanged, as they are when they were never set.
std::string text_of_time(const broken_down_time& time);

// The nine words of such a text, of which the time of day may be missing. All zero when it names no date.
broken_down_time time_of_text(std::string_view text);

// The local time of a moment in seconds since the epoch.
broken_down_time local_time(int64_t seconds);

} // namespace pim_store
