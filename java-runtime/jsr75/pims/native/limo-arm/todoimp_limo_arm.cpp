#include "todoimp_limo_arm.h"

#include <algorithm>

#include "pimutil.h"

// The date of a to-do in ms. A field without a date gives `previous`, the value of the record before it.
static int64_t todo_date(trace_site site, const org_full_record& record, int32_t field, int64_t previous)
{
    const auto converted = [&](const char* name, const org_date_time& date) {
        const int64_t value = to_java_date(date.time);
        PIM_TRACE_AT(site, TRACE_STEP, "mktime of %s:%lld\n", name, static_cast<long long>(value));
        return value;
    };
    switch (field) {
    case TODO_COMPLETION_DATE: return converted("T_COMPLETION_DATE", record.end_date_time);
    case TODO_DUE: return converted("T_DUE", record.repeat_end_or_due);
    case TODO_REVISION: return converted("T_REVISION", record.last_modified_time);
    case EXTENDED_FIELD_0: return converted("T_START", record.start_date_time);
    case EXTENDED_FIELD_1: return previous; // Accepted, but no date goes with it.
    default: PIM_TRACE_AT(site, TRACE_STEP, "Unsupported date field...\n"); return previous;
    }
}

int32_t ToDoListImpl_nextSortedToDoN(int32_t, int32_t field, int64_t current_date,
                                     std::span<int32_t, ORG_RECORD_CNT_MAX> found)
{
    org_full_record record = {};
    int32_t count = 0;
    int32_t error = 0;
    PIM_TRACE(TRACE_STEP, "ToDoListImpl_nextSortedToDoN {\n");
    PIM_TRACE(TRACE_STEP, "field:%d, current_date:%lld\n", field, static_cast<long long>(current_date));
    PIM_TRACE(TRACE_STEP, "Size of int:%d\n", static_cast<int>(sizeof(int32_t)));
    PIM_TRACE(TRACE_STEP, "Size of long:%d\n", static_cast<int>(sizeof(int32_t))); // The device's.
    PIM_TRACE(TRACE_STEP, "Size of jlong:%d\n", static_cast<int>(sizeof(int64_t)));
    PIM_TRACE(TRACE_STEP, "Size of long long:%d\n", static_cast<int>(sizeof(long long)));

    // Kept: this walk never opens a connection. It closes before and after its work and takes what the store provides.
    if (native_function_finalize(LIST_TODO, &record) != 1) {
        PIM_TRACE_ASSERT("final", error);
        return -1;
    }
    if (!org_db_service_get_record_count(0, ORG_TYPE_TODO, &count, &error)) {
        PIM_TRACE(TRACE_HARD, "org_db_service_get_record_count() return error: %d", error);
        return close_connection(trace_here(), LIST_TODO, &record, error, -1, -1);
    }
    if (count < 1) {
        PIM_TRACE(TRACE_STEP, "no org record available...\n");
        if (native_function_finalize(LIST_TODO, &record) != 1) {
            PIM_TRACE_ASSERT("final", error);
            return -1;
        }
    }

    PIM_TRACE(TRACE_STEP, "ORG_RECORD_CNT_MAX:%d\n", ORG_RECORD_CNT_MAX);
    earliest_dates earliest = {.entries = found};
    int64_t value = 0;
    int32_t remaining = count;
    for (int32_t position = 0; remaining > 0 && position < ORG_RECORD_CNT_MAX; ++position) {
        if (!org_db_service_init_full_record(&record, &error)) {
            PIM_TRACE(TRACE_HARD, "%s ***, org_db_service_init_org_full_record is failed (errorCode = %d)\n", __func__,
                      error);
            return -1; // Kept: without the second close.
        }
        if (!org_db_service_get_record_full_field_by_index(position, &record, &error)) continue;

        value = todo_date(trace_here(), record, field, value);
        offer(trace_here(), &earliest, current_date, value, record.index);
        --remaining;
    }

    // A count below 1 is the result itself.
    const int32_t result = count < 1 ? count : earliest.count;
    if (native_function_finalize(LIST_TODO, &record) != 1) {
        PIM_TRACE_ASSERT("final", error);
        return -1;
    }
    PIM_TRACE(TRACE_STEP, "return count:%d\n", result);
    PIM_TRACE(TRACE_STEP, "ToDoListImpl_nextSortedToDoN }\n");
    return result;
}
