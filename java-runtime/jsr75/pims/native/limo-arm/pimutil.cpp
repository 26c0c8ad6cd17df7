#include "pimutil.h"

#include <ctime>

#include "pimnativeutil.h"

// ---- Connections ----------------------------------------------------------------------------------------------------

namespace {

// A text of the organizer record and the bytes it may hold.
struct text_buffer {
    char* org_full_record::*text;
    size_t limit;
};

// In the order in which they are attached.
constexpr text_buffer TEXT_BUFFERS[] = {
    {&org_full_record::summary, ORG_SUMMARY_MAX},   {&org_full_record::description, ORG_DESCRIPTION_MAX},
    {&org_full_record::location, ORG_LOCATION_MAX}, {&org_full_record::text_172, ORG_TEXT_172_MAX},
    {&org_full_record::text_340, ORG_TEXT_340_MAX}, {&org_full_record::text_344, ORG_TEXT_344_MAX},
    {&org_full_record::text_348, ORG_TEXT_348_MAX},
};

} // namespace

static const char* organizer_list_name(int32_t listtype)
{
    return listtype == LIST_EVENT ? "EVENT" : "TODO";
}

// A buffer that cannot be had leaves its pointer null: its text reads as empty and is not stored.
static void attach_text_buffers(org_full_record* record, int32_t* error)
{
    for (const text_buffer& buffer : TEXT_BUFFERS) {
        // One byte more than the limit, for the terminator of a text of the full length.
        record->*buffer.text = allocate_zeroed<char>(buffer.limit + 1).release();
        if (record->*buffer.text == nullptr) *error = CONNECTION_NO_MEMORY;
    }
}

void detach_text_buffers(org_full_record* record)
{
    for (const text_buffer& buffer : TEXT_BUFFERS) record->*buffer.text = nullptr;
}

int32_t native_function_initialize(int32_t listtype, org_full_record* record, int32_t* error)
{
    const bool is_organizer_list = listtype == LIST_EVENT || listtype == LIST_TODO;
    if ((is_organizer_list && record == nullptr) || *error != 0) {
        *error = CONNECTION_MISUSED;
        return 0;
    }

    if (listtype == LIST_CONTACT) {
        PIM_TRACE(TRACE_STEP, "%s CONTACT ***\n", __func__);
        if (!contact_db_service_connect(error)) {
            PIM_TRACE(TRACE_HARD, "%s contact_db_service_connect is failed (%d) ***\n", __func__, *error);
            *error = CONNECTION_CONTACT_NOT_OPENED;
        }
        // Kept: contacts proceed without a connection; only the error word tells.
        return 1;
    }

    if (is_organizer_list) {
        PIM_TRACE(TRACE_STEP, "%s %s ***\n", __func__, organizer_list_name(listtype));
        if (!org_db_service_connect_database(error)) {
            PIM_TRACE(TRACE_HARD, "%s org_db_service_connect_database is failed (%d) ***\n", __func__, *error);
            *error = CONNECTION_ORGANIZER_NOT_OPENED;
            return 0;
        }
        if (!org_db_service_init_full_record(record, error)) {
            PIM_TRACE(TRACE_HARD, "%s ***, org_db_service_init_full_record is failed (%d)\n", __func__, *error);
            *error = CONNECTION_RECORD_FAILED;
            return 0;
        }
        attach_text_buffers(record, error);
        return 1;
    }

    PIM_TRACE(TRACE_HARD, "%s type is not matched ***\n", __func__);
    *error = CONNECTION_UNKNOWN_LIST;
    return 0;
}

int32_t native_function_finalize(int32_t listtype, org_full_record* record)
{
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "%s ***\n", __func__);

    switch (listtype) {
    case LIST_CONTACT:
        if (!contact_db_service_disconnect(&error)) {
            PIM_TRACE(TRACE_HARD, "%s contact_db_service_disconnect is failed (error_code : %d) ***\n", __func__,
                      error);
            return CONNECTION_CONTACT_NOT_CLOSED;
        }
        return 1;

    case LIST_EVENT:
    case LIST_TODO:
        PIM_TRACE(TRACE_STEP, "%s %s ***\n", __func__, organizer_list_name(listtype));
        if (!org_db_service_disconnect_database(&error)) {
            // Kept: a connection that would not close keeps the record and its buffers too.
            PIM_TRACE(TRACE_HARD, "%s org_db_service_disconnect_database is failed (error_code : %d) ***\n", __func__,
                      error);
            return CONNECTION_ORGANIZER_NOT_CLOSED;
        }
        if (!org_db_service_free_full_record(record, &error)) {
            PIM_TRACE(TRACE_HARD, "%s ***, org_db_service_free_full_record is failed (%d)\n", __func__, error);
            return CONNECTION_RECORD_FAILED;
        }
        return 1;

    default: PIM_TRACE(TRACE_HARD, "%s type is not matched ***\n", __func__); return CONNECTION_UNKNOWN_LIST;
    }
}

// ---- Dates ----------------------------------------------------------------------------------------------------------

static tm to_libc(const broken_down_time& time)
{
    tm words = {};
    words.tm_sec = time.sec;
    words.tm_min = time.min;
    words.tm_hour = time.hour;
    words.tm_mday = time.mday;
    words.tm_mon = time.mon;
    words.tm_year = time.year;
    words.tm_wday = time.wday;
    words.tm_yday = time.yday;
    words.tm_isdst = time.isdst;
    return words;
}

static broken_down_time from_libc(const tm& words)
{
    return {words.tm_sec,  words.tm_min,  words.tm_hour, words.tm_mday, words.tm_mon,
            words.tm_year, words.tm_wday, words.tm_yday, words.tm_isdst};
}

int64_t pim_mktime(broken_down_time* time)
{
    tm words = to_libc(*time);
    const int64_t seconds = mktime(&words);
    // A wider time_t than the device's must not express what the device cannot.
    if (seconds < INT32_MIN || seconds > INT32_MAX) return -1;
    if (seconds != -1) *time = from_libc(words);
    return seconds;
}

int64_t to_java_date(broken_down_time time)
{
    return pim_mktime(&time) * 1000;
}

bool is_set(broken_down_time time)
{
    return pim_mktime(&time) != -1;
}

int64_t java_date_seconds(int64_t milliseconds)
{
    return milliseconds / 1000;
}

broken_down_time to_local_time(int64_t seconds)
{
    const time_t device_seconds = static_cast<int32_t>(seconds);
    tm words = {};
    // localtime() shares one result between threads. Its re-entrant twin may skip what localtime() does first.
    tzset();
    localtime_r(&device_seconds, &words);
    return from_libc(words);
}
