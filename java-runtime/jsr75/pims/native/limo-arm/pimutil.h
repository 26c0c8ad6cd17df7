// pimutil.h: the connection that every store access opens first and closes last, the frames that readers
// share, and the one place where dates cross between seconds and broken-down time.
#ifndef JSR75_PIM_PIMUTIL_H
#define JSR75_PIM_PIMUTIL_H

#include <cstdint>
#include <optional>

#include "contact_db_service.h"
#include "org_db_service.h"
#include "pimcodes.h"
#include "pimtrace.h"

// ---- Connections ----------------------------------------------------------------------------------------------------

// Left in the error word by native_function_initialize, or returned by native_function_finalize.
enum connection_error : int32_t {
    CONNECTION_CONTACT_NOT_OPENED = 10003,
    CONNECTION_CONTACT_NOT_CLOSED = 10005,
    CONNECTION_ORGANIZER_NOT_OPENED = 10007,
    CONNECTION_RECORD_FAILED = 10008, // init_full_record or free_full_record
    CONNECTION_NO_MEMORY = 10009,
    CONNECTION_ORGANIZER_NOT_CLOSED = 10010,
    CONNECTION_MISUSED = 10011, // no record for an organizer list, or an error word that was not 0
    CONNECTION_UNKNOWN_LIST = 10012
};

extern "C" {

// Opens a store connection for `listtype`. `record` is null for contacts; for events and to-dos it is the
// caller's zeroed record, which is prepared and given its seven text buffers. `*error` must be 0 on entry.
// Returns 1 when the caller may proceed and 0 otherwise, the reason in *error:
//   misuse, unknown list type                      0
//   the contact store cannot be opened             1, *error is CONNECTION_CONTACT_NOT_OPENED
//   the organizer store cannot be opened           0
//   the record cannot be prepared                  0
//   a text buffer cannot be allocated              1, *error is CONNECTION_NO_MEMORY; that text is left out
int32_t native_function_initialize(int32_t listtype, org_full_record* record, int32_t* error);

// Closes the connection and has the store release the record with its text buffers. Returns 1, or one of enum
// connection_error.
int32_t native_function_finalize(int32_t listtype, org_full_record* record);

// mktime() on the device: the seconds of a local time since the epoch, or -1 when it is no time that a signed 32-bit
// count of seconds can express; sign-extended. Normalises the nine words of `time` when it succeeds.
int64_t pim_mktime(broken_down_time* time);

} // extern "C"

// Points the record's texts at nothing, after a close has released their buffers.
void detach_text_buffers(org_full_record* record);

// ---- Dates ----------------------------------------------------------------------------------------------------------

// Milliseconds since the epoch as Java holds them; a time that mktime() refuses gives -1000.
int64_t to_java_date(broken_down_time time);

// Whether a date field holds a value: mktime() does not refuse it.
bool is_set(broken_down_time time);

// Milliseconds as seconds, truncated toward zero.
int64_t java_date_seconds(int64_t milliseconds);

// The local time of `seconds` since the epoch, of which the device's 32 bits count.
broken_down_time to_local_time(int64_t seconds);

// ---- Closing ----------------------------------------------------------------------------------------------------

// Closes the connection and gives `result`, or `not_closed` when it would not close. `error` is the caller's error
// word, `site` the caller that makes the check.
template <typename T>
T close_connection(trace_site site, int32_t listtype, org_full_record* record, int32_t error, T result, T not_closed)
{
    if (native_function_finalize(listtype, record) == 1) return result;
    PIM_TRACE_ASSERT_AT(site, "final", error);
    return not_closed;
}

// ---- Frames ---------------------------------------------------------------------------------------------------------
//
// Every reader opens its connection, fetches a whole record, computes with it, lets go of it, closes the
// connection and answers. The frames below do all but the computing, which is the reader's leaf: a function of the
// fetched record that touches neither store nor trace. What a reader answers when a step fails is its own rule and
// stands at its call, as one line of failure values.

template <typename T>
struct contact_failures {
    T opening;
    T fetching;
    std::optional<T> closing; // Nothing: the answer so far stands.
};

template <typename T, typename Leaf>
T read_contact(trace_site site, int32_t recindex, contact_failures<T> failing, Leaf leaf,
               const char* fetch_failed = "contact_db_service_contact_get fail : %d\n")
{
    contact_record contact = {};
    int32_t error = 0;

    if (native_function_initialize(LIST_CONTACT, nullptr, &error) != 1) {
        PIM_TRACE_ASSERT_AT(site, "initialize", error);
        return failing.opening;
    }

    T result = failing.fetching;
    if (contact_db_service_contact_get(0, recindex, 0, &contact, &error))
        result = leaf(contact);
    else
        PIM_TRACE_AT(site, TRACE_HARD, fetch_failed, error);
    contact_db_service_contact_free(&contact);

    return close_connection(site, LIST_CONTACT, nullptr, error, result, failing.closing.value_or(result));
}

template <typename T>
struct organizer_failures {
    T opening;
    std::optional<T> preparing; // Nothing: this reader does not prepare the record again before it fetches.
    T fetching;
    T closing;
};

template <typename T, typename Leaf>
T read_organizer(trace_site site, int32_t listtype, int32_t recindex, organizer_failures<T> failing, Leaf leaf,
                 const char* fetch_failed = "org_db_service_get_record_full_field_by_index fail(%d)\n")
{
    org_full_record record = {};
    int32_t error = 0;

    if (native_function_initialize(listtype, &record, &error) != 1) {
        PIM_TRACE_ASSERT_AT(site, "initialize", error);
        return failing.opening;
    }

    T result = failing.fetching;
    if (failing.preparing && !org_db_service_init_full_record(&record, &error)) {
        PIM_TRACE_AT(site, TRACE_HARD, "%s ***, org_db_service_init_org_full_record is failed (error_code = %d)\n",
                     site.function, error);
        result = *failing.preparing;
    } else if (org_db_service_get_record_full_field_by_index(recindex, &record, &error)) {
        result = leaf(record);
    } else {
        PIM_TRACE_AT(site, TRACE_HARD, fetch_failed, error);
    }

    return close_connection(site, listtype, &record, error, result, failing.closing);
}

#endif
