// organizerrecord.h: where the values of events and to-dos lie in the organizer's full record. One row per field serves
// the readers, the counters, the commits and the search.
#ifndef JSR75_PIM_ORGANIZERRECORD_H
#define JSR75_PIM_ORGANIZERRECORD_H

#include <cstdint>
#include <cstring>
#include <string_view>

#include "org_db_service.h"
#include "pimcodes.h"

// A text field: where it lies, and how many bytes it takes without terminator.
struct organizer_text {
    int32_t field;
    char* org_full_record::*text;
    size_t limit;
};

// A date field.
struct organizer_date {
    int32_t field;
    org_date_time org_full_record::*date;
};

inline constexpr organizer_text EVENT_TEXTS[] = {
    {EVENT_NOTE, &org_full_record::description, ORG_DESCRIPTION_MAX},
    {EVENT_SUMMARY, &org_full_record::summary, ORG_SUMMARY_MAX},
    {EVENT_LOCATION, &org_full_record::location, ORG_LOCATION_MAX},
};

inline constexpr organizer_date EVENT_DATES[] = {
    {EVENT_ALARM, &org_full_record::alarm_time},
    {EVENT_END, &org_full_record::end_date_time},
    {EVENT_REVISION, &org_full_record::last_modified_time},
    {EVENT_START, &org_full_record::start_date_time},
};

inline constexpr organizer_text TODO_TEXTS[] = {
    {TODO_NOTE, &org_full_record::description, ORG_DESCRIPTION_MAX},
    {TODO_SUMMARY, &org_full_record::summary, ORG_SUMMARY_MAX},
};

inline constexpr organizer_date TODO_DATES[] = {
    {TODO_COMPLETION_DATE, &org_full_record::end_date_time},
    {TODO_DUE, &org_full_record::repeat_end_or_due},
    {TODO_REVISION, &org_full_record::last_modified_time},
};

// The row of `field`, or null for a field that the table does not hold.
template <typename Row, size_t size>
constexpr const Row* find_field(const Row (&rows)[size], int32_t field)
{
    for (const Row& row : rows)
        if (row.field == field) return &row;
    return nullptr;
}

// The text of one field; a buffer that could not be allocated reads as empty.
inline std::string_view organizer_text_of(const org_full_record& record, const organizer_text& row)
{
    const char* text = record.*row.text;
    return text != nullptr ? std::string_view(text, strnlen(text, row.limit)) : std::string_view();
}

inline const broken_down_time& organizer_time_of(const org_full_record& record, const organizer_date& row)
{
    return (record.*row.date).time;
}

// Whether the store knows this level of priority; a negative one is out of range too.
constexpr bool is_known_priority(int32_t priority)
{
    return priority >= ORG_PRIORITY_LOW && priority <= ORG_PRIORITY_HIGH;
}

#endif
