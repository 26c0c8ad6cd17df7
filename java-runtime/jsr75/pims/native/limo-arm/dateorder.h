// dateorder.h: what the date-ordered walks of events and to-dos share: of many dates, the earliest one after a bound.
#ifndef JSR75_PIM_DATEORDER_H
#define JSR75_PIM_DATEORDER_H

#include <cstdint>
#include <limits>
#include <span>

#include "pimtrace.h"

// The highest number of record positions that a date-ordered walk looks at: positions 0..1999.
inline constexpr int32_t ORG_RECORD_CNT_MAX = 2000;

// The entries that share the earliest date seen so far. At most one entry per position is ever offered, so they fit.
struct earliest_dates {
    std::span<int32_t, ORG_RECORD_CNT_MAX> entries;
    int32_t count = 0;
    int64_t best = std::numeric_limits<int64_t>::max();
};

// Offers `entry`, whose date is `value`; dates are in ms. Only dates strictly after `after` count.
inline void offer(trace_site site, earliest_dates* earliest, int64_t after, int64_t value, int32_t entry)
{
    const auto date = static_cast<long long>(value);
    if (value <= after) {
        PIM_TRACE_AT(site, TRACE_STEP, "Ignore item:%lld\n", date);
        return;
    }
    PIM_TRACE_AT(site, TRACE_STEP, "pass 1 %lld\n", date);
    if (value > earliest->best) return;
    if (value < earliest->best) {
        PIM_TRACE_AT(site, TRACE_STEP, "pass 2 %lld\n", date);
        earliest->best = value;
        earliest->count = 0;
    }
    earliest->entries[static_cast<size_t>(earliest->count++)] = entry;
}

#endif
