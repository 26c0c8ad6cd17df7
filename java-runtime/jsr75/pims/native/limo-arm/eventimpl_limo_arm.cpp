#include "eventimpl_limo_arm.h"

#include <algorithm>
#include <cstring>

#include "dateorder.h"
#include "pimnativeutil.h"
#include "pimutil.h"

// ---- Date order -----------------------------------------------------------------------------------------------------

// Collects the positions of the events that start earliest after `after`.
static void find_earliest_starts(trace_site site, int32_t event_count, int64_t after, org_full_record* record,
                                 earliest_dates* earliest)
{
    int32_t error = 0;
    int32_t remaining = event_count;
    for (int32_t position = 0; remaining > 0 && position < ORG_RECORD_CNT_MAX; ++position) {
        if (!org_db_service_get_record_full_field_by_index(position, record, &error)) continue;
        offer(site, earliest, after, to_java_date(record->start_date_time.time), position);
        --remaining;
    }
}

// Writes the record indexes behind the positions to `found`.
// Kept: a start in seconds is compared with the low 32 bits of the date in milliseconds, so in practice
// no index is written and the entries stay 0.
static void keep_matching_starts(trace_site site, const earliest_dates& earliest, org_full_record* record,
                                 int32_t* found)
{
    const auto wanted = static_cast<int32_t>(static_cast<uint32_t>(earliest.best));
    int32_t kept = 0;
    int32_t error = 0;
    for (const int32_t position : earliest.entries.first(static_cast<size_t>(earliest.count))) {
        if (!org_db_service_get_record_full_field_by_index(position, record, &error)) {
            PIM_TRACE_AT(site, TRACE_HARD,
                         "org_db_service_get_record_full_field_by_index() error occured [error_code:%d]\n", error);
            continue;
        }
        if (pim_mktime(&record->start_date_time.time) == wanted) found[kept++] = record->index;
    }
}

int32_t EventListImpl_nextSortedEventN(int64_t after, int32_t** found)
{
    org_full_record record = {};
    int32_t positions[ORG_RECORD_CNT_MAX];
    int32_t count = 0;
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "%s, after = %lld\n", __func__, static_cast<long long>(after));

    if (native_function_initialize(LIST_EVENT, &record, &error) != 1) {
        PIM_TRACE_ASSERT("initialize", error);
        return -1;
    }
    if (!org_db_service_get_record_count(0, ORG_TYPE_EVENT, &count, &error)) {
        PIM_TRACE(TRACE_HARD, "org_db_service_get_record_count() error occured [error_code:%d]\n", error);
        return close_connection(trace_here(), LIST_EVENT, &record, error, -1, -1);
    }
    if (count == 0) {
        PIM_TRACE(TRACE_STEP, "B-StoredEvent count is 0\n");
        org_db_service_disconnect_database(&error); // Kept: the record is not freed here.
        return 0;
    }

    earliest_dates earliest = {.entries = positions};
    find_earliest_starts(trace_here(), count, after, &record, &earliest);
    if (earliest.count == 0) return close_connection(trace_here(), LIST_EVENT, &record, error, -1, -1);

    *found = allocate_zeroed<int32_t>(static_cast<size_t>(earliest.count) + 1).release();
    if (*found == nullptr) {
        PIM_TRACE(TRACE_HARD, "memory allocation failed..\n");
        return close_connection(trace_here(), LIST_EVENT, &record, error, -1, -1);
    }
    keep_matching_starts(trace_here(), earliest, &record, *found);

    if (native_function_finalize(LIST_EVENT, &record) != 1) {
        PIM_TRACE_ASSERT("final", error);
        return -1;
    }
    PIM_TRACE(TRACE_STEP, "qm4ruv  : EventListImpl_nextSortedEventN.nextEventsCount is %d\n", earliest.count);
    return earliest.count;
}

// ---- Repeat rules ---------------------------------------------------------------------------------------------------

// Kept: COUNT is the nine words from the repeat term on, term, interval and part of the end date, read as one time.
static int32_t repeat_count(const org_full_record& record)
{
    broken_down_time time;
    std::memcpy(&time, reinterpret_cast<const char*>(&record) + offsetof(org_full_record, repeat_term), sizeof time);
    return static_cast<int32_t>(std::max<int64_t>(pim_mktime(&time), 0));
}

static int32_t java_frequency(int32_t repeat_term)
{
    switch (repeat_term) {
    case ORG_REPEAT_NONE: return -1;
    case ORG_REPEAT_DAILY: return FREQUENCY_DAILY;
    case ORG_REPEAT_WEEKLY: return FREQUENCY_WEEKLY;
    case ORG_REPEAT_MONTHLY: return FREQUENCY_MONTHLY;
    case ORG_REPEAT_YEARLY: return FREQUENCY_YEARLY;
    default: return 0;
    }
}

static int32_t repeat_value(const org_full_record& record, int32_t field)
{
    switch (field) {
    case REPEAT_COUNT: return repeat_count(record);
    case REPEAT_FREQUENCY: return java_frequency(record.repeat_term);
    case REPEAT_INTERVAL: return record.repeat_interval;
    case REPEAT_DAY_IN_MONTH:
    case REPEAT_DAY_IN_WEEK:
    case REPEAT_DAY_IN_YEAR:
    case REPEAT_MONTH_IN_YEAR:
    case REPEAT_WEEK_IN_MONTH: return 1; // Not stored.
    default: return 0;
    }
}

int32_t EventImpl_getRepeatIntN(int32_t recindex, int32_t field)
{
    PIM_TRACE(TRACE_STEP, "%s, recindex = %d, field = %d\n", __func__, recindex, field);
    return read_organizer<int32_t>(trace_here(), LIST_EVENT, recindex,
                                   {.opening = -1, .preparing = std::nullopt, .fetching = 0, .closing = -1},
                                   [&](const org_full_record& record) { return repeat_value(record, field); });
}

static int64_t repeat_end_seconds(const org_full_record& record)
{
    broken_down_time end = record.repeat_end_or_due.time;
    return pim_mktime(&end);
}

int64_t EventImpl_getRepeatDateN(int32_t recindex, int32_t field)
{
    PIM_TRACE(TRACE_STEP, "%s, recindex = %d, field = %d\n", __func__, recindex, field);
    // Kept: seconds, where every other date reader gives milliseconds.
    return read_organizer<int64_t>(
        trace_here(), LIST_EVENT, recindex, {.opening = -1, .preparing = std::nullopt, .fetching = 0, .closing = -1},
        [&](const org_full_record& record) -> int64_t { return field == REPEAT_END ? repeat_end_seconds(record) : 0; });
}

// What an event that repeats at this term has a value for, besides the end of its repetition.
static std::span<const int32_t> fields_of_term(int32_t repeat_term)
{
    static constexpr int32_t DAILY[] = {REPEAT_INTERVAL};
    static constexpr int32_t WEEKLY[] = {REPEAT_INTERVAL, REPEAT_DAY_IN_WEEK};
    static constexpr int32_t MONTHLY[] = {REPEAT_INTERVAL, REPEAT_DAY_IN_MONTH, REPEAT_WEEK_IN_MONTH,
                                          REPEAT_DAY_IN_WEEK};
    static constexpr int32_t YEARLY[] = {REPEAT_INTERVAL,      REPEAT_DAY_IN_YEAR, REPEAT_MONTH_IN_YEAR,
                                         REPEAT_WEEK_IN_MONTH, REPEAT_DAY_IN_WEEK, REPEAT_DAY_IN_MONTH};
    switch (repeat_term) {
    case ORG_REPEAT_DAILY: return DAILY;
    case ORG_REPEAT_WEEKLY: return WEEKLY;
    case ORG_REPEAT_MONTHLY: return MONTHLY;
    case ORG_REPEAT_YEARLY: return YEARLY;
    default: return {};
    }
}

static int32_t list_repeat_fields(const org_full_record& record, std::span<int32_t, REPEAT_FIELDS_MAX> fields)
{
    const std::span<const int32_t> of_term = fields_of_term(record.repeat_term);
    if (of_term.empty()) return -1; // An event that does not repeat has no repeat fields, whatever its end date.

    size_t listed = 0;
    if (repeat_end_seconds(record) > 0) fields[listed++] = REPEAT_END;
    for (const int32_t field : of_term) fields[listed++] = field;
    return static_cast<int32_t>(listed);
}

int32_t EventImpl_getRepeatFieldsN(int32_t recindex, std::span<int32_t, REPEAT_FIELDS_MAX> fields)
{
    const trace_site site = trace_here();
    const int32_t listed = read_organizer<int32_t>(
        site, LIST_EVENT, recindex, {.opening = -1, .preparing = std::nullopt, .fetching = -1, .closing = -1},
        [&](const org_full_record& record) {
            PIM_TRACE_AT(site, TRACE_STEP, "qm4ruv : EventImpl_getRepeatFieldsN.org_sch_record.repeat_term is %d\n",
                         record.repeat_term);
            return list_repeat_fields(record, fields);
        });
    PIM_TRACE(TRACE_STEP, "qm4ruv : EventImpl_getRepeatFieldsN.numFieldsSet %d\n", listed);
    return listed;
}
