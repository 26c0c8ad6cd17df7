// Walking events and to-dos in the order of their dates.
#include <algorithm>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "eventimpl_limo_arm.h"
#include "pimcodes.h"
#include "stored_records.h"
#include "time_zone.h"
#include "todoimp_limo_arm.h"
#include "unit_test.h"

namespace sorted_enumeration_test {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

constexpr jint HANDLE = 77; // No function reads it.

constexpr int64_t DAY = 86400000; // In milliseconds.
constexpr int64_t BEFORE_ALL = std::numeric_limits<int64_t>::min();

constexpr char FETCH[] = "org_db_service_get_record_full_field_by_index";

// The local time of the n-th day from the epoch in UTC.
broken_down_time day(int32_t n)
{
    return local_time(1970, 1, 1 + n);
}

class SortedWalk : public unit_test {
protected:
    time_zone utc{UTC};
};

class SortedTodos : public SortedWalk {
protected:
    // A to-do at a position of the store, due on the n-th day.
    void add_due(int32_t position, int32_t due)
    {
        platform.add_item(ORG_TYPE_TODO, position).record.repeat_end_or_due.time = day(due);
    }

    // What the scan finds: its result, and behind it what it wrote.
    std::vector<int32_t> found(int32_t field, int64_t current_date)
    {
        std::vector<int32_t> buffer(ORG_RECORD_CNT_MAX, -7);
        const int32_t count =
            ToDoListImpl_nextSortedToDoN(HANDLE, field, current_date, std::span<int32_t, ORG_RECORD_CNT_MAX>(buffer));
        std::vector<int32_t> result = {count};
        if (count > 0) result.insert(result.end(), buffer.begin(), buffer.begin() + count);
        return result;
    }
};

class SortedEvents : public SortedWalk {
protected:
    // An event at a position of the store that starts on the n-th day.
    void add_start(int32_t position, int32_t start)
    {
        platform.add_item(ORG_TYPE_EVENT, position).record.start_date_time.time = day(start);
    }

    // What the scan finds: its result, and behind it the entries of its buffer.
    std::vector<int32_t> found(int64_t after)
    {
        int32_t* buffer = nullptr;
        const int32_t count = EventListImpl_nextSortedEventN(after, &buffer);
        std::vector<int32_t> result = {count};
        if (count > 0) result.insert(result.end(), buffer, buffer + count);
        platform_free(buffer);
        return result;
    }
};

using SortedTodosNative = SortedTodos;
using SortedEventsNative = SortedEvents;

std::vector<std::string> times(size_t count, const std::vector<std::string>& calls)
{
    std::vector<std::string> repeated;
    for (size_t i = 0; i < count; ++i) repeated.insert(repeated.end(), calls.begin(), calls.end());
    return repeated;
}

} // namespace

// ---- To-dos ---------------------------------------------------------------------------------------------------------

TEST_F(SortedTodos, AreFoundDateByDateAndTiesTogether)
{
    add_due(1, 20);
    add_due(2, 10);
    add_due(3, 20);
    EXPECT_THAT(found(TODO_DUE, 5 * DAY), ElementsAre(1, 2));
    EXPECT_THAT(found(TODO_DUE, 10 * DAY), ElementsAre(2, 1, 3)) << "in the order of their positions";
    EXPECT_THAT(found(TODO_DUE, 20 * DAY), ElementsAre(0));
}

TEST_F(SortedTodos, MustBeStrictlyLater)
{
    add_due(1, 10);
    EXPECT_THAT(found(TODO_DUE, 10 * DAY - 1), ElementsAre(1, 1));
    EXPECT_THAT(found(TODO_DUE, 10 * DAY), ElementsAre(0));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "Ignore item:%lld\n", "Ignore item:864000000\n")));
}

TEST_F(SortedTodos, AreOrderedByTheDateOfTheField)
{
    struct row {
        const char* name;
        int32_t field;
        org_date_time org_full_record::*date;
    };
    const row rows[] = {
        {"T_COMPLETION_DATE", 102, &org_full_record::end_date_time},
        {"T_DUE", 103, &org_full_record::repeat_end_or_due},
        {"T_REVISION", 106, &org_full_record::last_modified_time},
        {"T_START", 0x1000000, &org_full_record::start_date_time},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.name);
        (platform.add_item(ORG_TYPE_TODO, 1).record.*row.date).time = day(9);
        (platform.add_item(ORG_TYPE_TODO, 2).record.*row.date).time = day(7);
        EXPECT_THAT(found(row.field, 0), ElementsAre(1, 2));
        EXPECT_THAT(platform.traces,
                    Contains(Field(&trace_message::text, "mktime of " + std::string(row.name) + ":604800000\n")));
        // All the other dates were never set.
        for (int32_t other : {102, 103, 106, 0x1000000})
            if (other != row.field) {
                EXPECT_THAT(found(other, 0), ElementsAre(0)) << other;
            }
        start_over();
    }
}

TEST_F(SortedTodos, WithoutADateCountAsASecondBeforeTheEpoch)
{
    platform.add_item(ORG_TYPE_TODO, 1);
    EXPECT_THAT(found(TODO_DUE, -1001), ElementsAre(1, 1));
    EXPECT_THAT(found(TODO_DUE, -1000), ElementsAre(0));
}

TEST_F(SortedTodos, ByAFieldWithoutADateShareTheValueZero)
{
    for (int32_t field : {0x1000001, 101, 104, 105, 107, 0, -1}) {
        SCOPED_TRACE(field);
        add_due(1, 10);
        add_due(2, 20);
        EXPECT_THAT(found(field, 0), ElementsAre(0));
        EXPECT_THAT(found(field, -1), ElementsAre(2, 1, 2));
        const auto unsupported = trace(TRACE_STEP, "Unsupported date field...\n", "Unsupported date field...\n");
        if (field == 0x1000001)
            EXPECT_THAT(platform.traces, Not(Contains(unsupported)));
        else
            EXPECT_THAT(platform.traces, Contains(unsupported).Times(4));
        start_over();
    }
}

TEST_F(SortedTodos, AreTracedStepByStep)
{
    add_due(1, 10);
    found(TODO_DUE, DAY);
    std::vector<std::string> lines;
    for (const trace_message& message : platform.traces)
        if (message.function == "ToDoListImpl_nextSortedToDoN") lines.push_back(message.text);
    EXPECT_THAT(lines, ElementsAre("ToDoListImpl_nextSortedToDoN {\n", "field:103, current_date:86400000\n",
                                   "Size of int:4\n", "Size of long:4\n", "Size of jlong:8\n", "Size of long long:8\n",
                                   "ORG_RECORD_CNT_MAX:2000\n", "mktime of T_DUE:864000000\n", "pass 1 864000000\n",
                                   "pass 2 864000000\n", "return count:1\n", "ToDoListImpl_nextSortedToDoN }\n"));
}

// Kept: the scan never opens a connection. It closes before and after its work.
TEST_F(SortedTodos, AreReadWithoutOpeningAConnection)
{
    add_due(1, 10);
    add_due(2, 20);
    found(TODO_DUE, 0);
    EXPECT_THAT(platform.calls,
                ElementsAre("org_db_service_disconnect_database()", "org_db_service_free_full_record()",
                            "org_db_service_get_record_count(9)", "org_db_service_init_full_record()",
                            "org_db_service_get_record_full_field_by_index(0)", "org_db_service_init_full_record()",
                            "org_db_service_get_record_full_field_by_index(1)", "org_db_service_init_full_record()",
                            "org_db_service_get_record_full_field_by_index(2)", "org_db_service_disconnect_database()",
                            "org_db_service_free_full_record()"));
}

// Kept: an empty store is closed three times.
TEST_F(SortedTodos, OfAnEmptyStoreAreNoneAfterThreeCloses)
{
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(0));
    const std::vector<std::string> close = {"org_db_service_disconnect_database()",
                                            "org_db_service_free_full_record()"};
    std::vector<std::string> calls = close;
    calls.emplace_back("org_db_service_get_record_count(9)");
    for (const std::string& call : times(2, close)) calls.push_back(call);
    EXPECT_EQ(platform.calls, calls);
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "no org record available...\n", "no org record available...\n")));
}

TEST_F(SortedTodos, AreANegativeCountWhereTheStoreCountsSo)
{
    add_due(1, 10);
    platform.reported_counts["org_db_service_get_record_count"] = -5;
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(-5));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "no org record available...\n", "no org record available...\n")));
    EXPECT_THAT(platform.calls_of("org_db_service_disconnect_database"), SizeIs(3));
    EXPECT_THAT(platform.calls_of(FETCH), IsEmpty());
}

TEST_F(SortedTodos, AreMinusOneWhenTheSecondCloseFails)
{
    for (const bool counted : {true, false}) {
        SCOPED_TRACE(counted ? "an empty store" : "they cannot be counted");
        if (!counted) platform.fail("org_db_service_get_record_count", 32);
        platform.fail_call("org_db_service_disconnect_database", 2, 35);
        EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(-1));
        EXPECT_THAT(platform.traces, Contains(failed_close("ToDoListImpl_nextSortedToDoN")));
        EXPECT_EQ(platform.calls.back(), "org_db_service_disconnect_database()");
        start_over();
    }
}

TEST_F(SortedTodos, AreReadUntilAllOfThemWereSeen)
{
    add_due(0, 10);
    add_due(3, 20);
    found(TODO_DUE, 0);
    EXPECT_THAT(platform.calls_of(FETCH), SizeIs(4)) << "positions 1 and 2 hold no to-do and count for none";
}

TEST_F(SortedTodos, AreSoughtAtTwoThousandPositionsAtMost)
{
    add_due(1999, 20);
    add_due(2000, 10);
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(1, 1999));
    EXPECT_THAT(platform.calls_of(FETCH), SizeIs(2000));
    EXPECT_EQ(platform.calls_of(FETCH).back(), "org_db_service_get_record_full_field_by_index(1999)");
}

TEST_F(SortedTodos, MayAllShareOneDate)
{
    for (int32_t position = 0; position < 2000; ++position) add_due(position, 10);
    const std::vector<int32_t> ties = found(TODO_DUE, 0);
    ASSERT_THAT(ties, SizeIs(2001));
    EXPECT_EQ(ties.front(), 2000);
    EXPECT_EQ(ties.back(), 1999);

    jintArray array = Java_com_qvr_zek_pim_ToDoListImpl_nextSortedToDoN(jni.env(), nullptr, HANDLE, TODO_DUE, 9 * DAY);
    EXPECT_EQ(jni.values(array), std::vector<jint>(ties.begin() + 1, ties.end()));
}

TEST_F(SortedTodos, AreReportedByTheIndexInTheirRecords)
{
    add_due(1, 10);
    platform.alter_item = [](org_full_record& record) { record.index = 4711; };
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(1, 4711));
}

TEST_F(SortedTodos, AreNotMixedWithEvents)
{
    add_due(1, 20);
    platform.add_item(ORG_TYPE_EVENT, 0).record.repeat_end_or_due.time = day(10);
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(1, 1));
}

TEST_F(SortedTodos, GoByTheZoneOfTheDevice)
{
    add_due(1, 10);
    const time_zone zone(TOKYO);
    EXPECT_THAT(found(TODO_DUE, 10 * DAY - 9 * 3600000 - 1), ElementsAre(1, 1));
    EXPECT_THAT(found(TODO_DUE, 10 * DAY - 9 * 3600000), ElementsAre(0));
}

TEST_F(SortedTodos, TakeTheLargestTimesForBounds)
{
    add_due(1, 10);
    EXPECT_THAT(found(TODO_DUE, BEFORE_ALL), ElementsAre(1, 1));
    EXPECT_THAT(found(TODO_DUE, std::numeric_limits<int64_t>::max()), ElementsAre(0));
}

TEST_F(SortedTodos, AreMinusOneWhenTheFirstCloseFails)
{
    for (const char* function : {"org_db_service_disconnect_database", "org_db_service_free_full_record"}) {
        SCOPED_TRACE(function);
        add_due(1, 10);
        platform.fail_call(function, 1, 21);
        EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(-1));
        EXPECT_THAT(platform.calls_of("org_db_service_get_record_count"), IsEmpty());
        EXPECT_THAT(platform.traces, Contains(failed_close("ToDoListImpl_nextSortedToDoN")));
        start_over();
    }
}

TEST_F(SortedTodos, AreMinusOneWhenTheyCannotBeCounted)
{
    add_due(1, 10);
    platform.fail("org_db_service_get_record_count", 22);
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(-1));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "org_db_service_get_record_count() return error: %d",
                                                "org_db_service_get_record_count() return error: 22")));
    EXPECT_THAT(platform.calls_of("org_db_service_disconnect_database"), SizeIs(2)) << "closed again";
    EXPECT_THAT(platform.calls_of(FETCH), IsEmpty());
}

TEST_F(SortedTodos, AreMinusOneWhenAnEmptyStoreCannotBeClosed)
{
    platform.fail_call("org_db_service_disconnect_database", 2, 23);
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(-1));
    EXPECT_THAT(platform.calls_of("org_db_service_disconnect_database"), SizeIs(2));
}

TEST_F(SortedTodos, AreMinusOneAtOnceWhenARecordCannotBePrepared)
{
    add_due(1, 10);
    platform.fail_call("org_db_service_init_full_record", 2, 24);
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(-1));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "%s ***, org_db_service_init_org_full_record is failed (errorCode = %d)\n",
                               "ToDoListImpl_nextSortedToDoN ***, org_db_service_init_org_full_record is failed "
                               "(errorCode = 24)\n")));
    EXPECT_THAT(platform.calls_of("org_db_service_disconnect_database"), SizeIs(1)) << "not closed again";
}

TEST_F(SortedTodos, SkipARecordThatCannotBeReadWithoutCountingIt)
{
    add_due(0, 10);
    add_due(1, 20);
    platform.fail_call(FETCH, 1, 25);
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(1, 1));
    EXPECT_THAT(platform.calls_of(FETCH), SizeIs(2000)) << "one more is always sought";
}

TEST_F(SortedTodos, AreMinusOneWhenTheLastCloseFails)
{
    add_due(1, 10);
    platform.fail_call("org_db_service_disconnect_database", 2, 26);
    EXPECT_THAT(found(TODO_DUE, 0), ElementsAre(-1));
    EXPECT_THAT(platform.traces, Contains(failed_close("ToDoListImpl_nextSortedToDoN")));
    EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, "return count:%d\n"))));
}

TEST_F(SortedTodosNative, AreAnArrayOfTheirIndexes)
{
    add_due(4, 10);
    add_due(7, 10);
    jintArray array = Java_com_qvr_zek_pim_ToDoListImpl_nextSortedToDoN(jni.env(), nullptr, HANDLE, TODO_DUE, 0);
    EXPECT_THAT(jni.values(array), ElementsAre(4, 7));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_ToDoListImpl_nextSortedToDoN ***\n")));
}

TEST_F(SortedTodosNative, AreAnEmptyArrayWithoutAnyAndOnFailure)
{
    const auto expect_empty = [&] {
        jintArray array = Java_com_qvr_zek_pim_ToDoListImpl_nextSortedToDoN(jni.env(), nullptr, HANDLE, TODO_DUE, 0);
        ASSERT_NE(array, nullptr);
        EXPECT_THAT(jni.values(array), IsEmpty());
    };
    expect_empty();
    platform.fail("org_db_service_get_record_count", 1);
    expect_empty();
    start_over();
    platform.reported_counts["org_db_service_get_record_count"] = -5;
    expect_empty();
}

// ---- Events ---------------------------------------------------------------------------------------------------------

TEST_F(SortedEvents, AreCountedDateByDateAndTiesTogether)
{
    add_start(1, 20);
    add_start(2, 10);
    add_start(3, 20);
    EXPECT_EQ(found(5 * DAY).front(), 1);
    EXPECT_EQ(found(10 * DAY).front(), 2);
    EXPECT_EQ(found(20 * DAY).front(), -1);
}

// Kept: the second pass compares seconds with milliseconds, so of the events counted none is named.
TEST_F(SortedEvents, AreCountedButNotNamed)
{
    add_start(1, 20);
    add_start(2, 10);
    add_start(3, 20);
    EXPECT_THAT(found(5 * DAY), ElementsAre(1, 0));
    EXPECT_THAT(found(10 * DAY), ElementsAre(2, 0, 0));
}

TEST_F(SortedEvents, AreNamedAtTheEpochWhereSecondsAndMillisecondsAgree)
{
    add_start(4, 0);
    add_start(5, 10);
    add_start(6, 0);
    EXPECT_THAT(found(-1), ElementsAre(2, 4, 6));
}

TEST_F(SortedEvents, MustStartStrictlyLater)
{
    add_start(1, 10);
    EXPECT_EQ(found(10 * DAY - 1).front(), 1);
    EXPECT_EQ(found(10 * DAY).front(), -1);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "Ignore item:%lld\n", "Ignore item:864000000\n")));
}

TEST_F(SortedEvents, WithoutAStartCountAsASecondBeforeTheEpoch)
{
    platform.add_item(ORG_TYPE_EVENT, 1);
    EXPECT_EQ(found(-1001).front(), 1);
    EXPECT_EQ(found(-1000).front(), -1);
}

TEST_F(SortedEvents, AreReadInTwoPassesOverOneConnection)
{
    add_start(1, 20);
    add_start(2, 10);
    add_start(4, 10);
    found(0);
    EXPECT_THAT(
        platform.calls,
        ElementsAre(
            "org_db_service_connect_database()", "org_db_service_init_full_record()",
            "org_db_service_get_record_count(8)", "org_db_service_get_record_full_field_by_index(0)",
            "org_db_service_get_record_full_field_by_index(1)", "org_db_service_get_record_full_field_by_index(2)",
            "org_db_service_get_record_full_field_by_index(3)", "org_db_service_get_record_full_field_by_index(4)",
            "org_db_service_get_record_full_field_by_index(2)", "org_db_service_get_record_full_field_by_index(4)",
            "org_db_service_disconnect_database()", "org_db_service_free_full_record()"));
}

TEST_F(SortedEvents, AreTracedStepByStep)
{
    add_start(1, 10);
    found(0);
    EXPECT_THAT(platform.traces.front(), AllOf(Field(&trace_message::function, "EventListImpl_nextSortedEventN"),
                                               Field(&trace_message::calls_before, 0u)));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "pass 1 %lld\n", "pass 1 864000000\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "pass 2 %lld\n", "pass 2 864000000\n")));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "qm4ruv  : EventListImpl_nextSortedEventN.nextEventsCount is %d\n",
                               "qm4ruv  : EventListImpl_nextSortedEventN.nextEventsCount is 1\n")));
}

TEST_F(SortedEvents, HaveABufferOfOneEntryMoreThanTheyAre)
{
    add_start(1, 10);
    add_start(2, 10);
    found(0);
    EXPECT_THAT(allocation_sizes(), Contains(3 * sizeof(int32_t)));
}

TEST_F(SortedEvents, AreSoughtAtTwoThousandPositionsAtMost)
{
    add_start(1999, 20);
    add_start(2000, 10);
    EXPECT_EQ(found(0).front(), 1);
    EXPECT_THAT(platform.calls_of(FETCH), SizeIs(2001)) << "and the one found once more";
}

TEST_F(SortedEvents, MayAllShareOneDate)
{
    for (int32_t position = 0; position < 2000; ++position) add_start(position, 10);
    EXPECT_EQ(found(0), [] {
        std::vector<int32_t> expected(2001, 0);
        expected.front() = 2000;
        return expected;
    }());
}

// Kept: an empty store is disconnected from, but the record with its buffers is not released.
TEST_F(SortedEvents, OfAnEmptyStoreAreNoneWithTheRecordLeftUnreleased)
{
    EXPECT_THAT(found(0), ElementsAre(0));
    EXPECT_THAT(platform.calls,
                ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()",
                            "org_db_service_get_record_count(8)", "org_db_service_disconnect_database()"));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "B-StoredEvent count is 0\n", "B-StoredEvent count is 0\n")));
    EXPECT_EQ(unreleased_blocks(), 7u);
    keep_blocks("the record of an empty store is not released");
}

TEST_F(SortedEvents, AreMinusOneWhereTheStoreCountsThemBelowZero)
{
    add_start(1, 10);
    platform.reported_counts["org_db_service_get_record_count"] = -5;
    EXPECT_THAT(found(0), ElementsAre(-1));
    EXPECT_THAT(platform.calls_of(FETCH), IsEmpty());
}

TEST_F(SortedEvents, AreMinusOneWhenTheStoreCannotBeOpened)
{
    platform.fail("org_db_service_connect_database", 31);
    EXPECT_THAT(found(0), ElementsAre(-1));
    EXPECT_THAT(platform.calls, ElementsAre("org_db_service_connect_database()"));
    EXPECT_THAT(platform.traces, Contains(assertion("EventListImpl_nextSortedEventN", "initialize", 10007)));
}

TEST_F(SortedEvents, AreMinusOneWhenTheyCannotBeCounted)
{
    add_start(1, 10);
    platform.fail("org_db_service_get_record_count", 32);
    EXPECT_THAT(found(0), ElementsAre(-1));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "org_db_service_get_record_count() error occured [error_code:%d]\n",
                               "org_db_service_get_record_count() error occured [error_code:32]\n")));
    EXPECT_EQ(platform.calls.back(), "org_db_service_free_full_record()");
}

TEST_F(SortedEvents, SkipARecordThatCannotBeReadInTheFirstPass)
{
    add_start(0, 10);
    add_start(1, 20);
    platform.fail_call(FETCH, 1, 33);
    EXPECT_EQ(found(0).front(), 1);
    EXPECT_THAT(platform.calls_of(FETCH), SizeIs(2001)) << "one more is always sought, and the one found is read again";
}

TEST_F(SortedEvents, AreCountedThoughOneCannotBeReadInTheSecondPass)
{
    add_start(0, 0);
    add_start(1, 0);
    platform.fail_call(FETCH, 3, 34);
    EXPECT_THAT(found(-1), ElementsAre(2, 1, 0)) << "the other one's index comes first";
    EXPECT_THAT(
        platform.traces,
        Contains(trace(TRACE_HARD, "org_db_service_get_record_full_field_by_index() error occured [error_code:%d]\n",
                       "org_db_service_get_record_full_field_by_index() error occured [error_code:34]\n")));
}

TEST_F(SortedEvents, AreMinusOneWhenTheBufferCannotBeAllocated)
{
    add_start(1, 10);
    fail_allocation(8); // Behind the record's seven buffers.
    EXPECT_THAT(found(0), ElementsAre(-1));
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_HARD, "memory allocation failed..\n")));
    EXPECT_EQ(platform.calls.back(), "org_db_service_free_full_record()");
}

TEST_F(SortedEvents, AreMinusOneWhenTheCloseFails)
{
    for (const char* function : {"org_db_service_disconnect_database", "org_db_service_free_full_record"}) {
        SCOPED_TRACE(function);
        add_start(1, 10);
        platform.fail(function, 35);
        EXPECT_THAT(found(0), ElementsAre(-1));
        EXPECT_THAT(platform.traces, Contains(failed_close("EventListImpl_nextSortedEventN")));
        // The count is told of a success alone.
        EXPECT_THAT(platform.traces,
                    Not(Contains(Field(&trace_message::format,
                                       "qm4ruv  : EventListImpl_nextSortedEventN.nextEventsCount is %d\n"))));
        keep_blocks("a connection that would not close keeps the record's buffers");
        start_over();
    }
}

TEST_F(SortedEvents, AreMinusOneWhenTheCloseFailsBehindAnotherFailure)
{
    struct row {
        const char* when;
        std::function<void()> arrange;
    };
    const row rows[] = {
        {"they cannot be counted", [&] { platform.fail("org_db_service_get_record_count", 32); }},
        {"none is later", [] {}},
        {"the buffer cannot be allocated",
         [&] {
             add_start(2, 10);
             fail_allocation(8);
         }},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        add_start(1, 0);
        row.arrange();
        platform.fail("org_db_service_free_full_record", 35);
        EXPECT_THAT(found(0), ElementsAre(-1));
        EXPECT_THAT(platform.traces, Contains(failed_close("EventListImpl_nextSortedEventN")));
        keep_blocks("a record that would not be released");
        start_over();
    }
}

TEST_F(SortedEventsNative, AreAnArrayOfTheirNumberWhoseBlockIsNotReleased)
{
    add_start(4, 0);
    add_start(5, 0);
    jintArray array = Java_com_qvr_zek_pim_EventListImpl_nextSortedEventN(jni.env(), nullptr, HANDLE, -1);
    EXPECT_THAT(jni.values(array), ElementsAre(4, 5));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_EventListImpl_nextSortedEventN ***\n")));
    EXPECT_EQ(unreleased_blocks(), 1u);
    keep_blocks("the native does not release the scan's block");
}

TEST_F(SortedEventsNative, AreAnArrayOfTheOnlyOne)
{
    add_start(4, 0);
    jintArray array = Java_com_qvr_zek_pim_EventListImpl_nextSortedEventN(jni.env(), nullptr, HANDLE, -1);
    EXPECT_THAT(jni.values(array), ElementsAre(4));
    keep_blocks("the native does not release the scan's block");
}

TEST_F(SortedEventsNative, AreZerosWhereNoneIsNamed)
{
    add_start(4, 10);
    add_start(5, 10);
    jintArray array = Java_com_qvr_zek_pim_EventListImpl_nextSortedEventN(jni.env(), nullptr, HANDLE, 0);
    EXPECT_THAT(jni.values(array), ElementsAre(0, 0));
    keep_blocks("the native does not release the scan's block");
}

TEST_F(SortedEventsNative, AreAnEmptyArrayOfAnEmptyStore)
{
    jintArray array = Java_com_qvr_zek_pim_EventListImpl_nextSortedEventN(jni.env(), nullptr, HANDLE, 0);
    ASSERT_NE(array, nullptr);
    EXPECT_THAT(jni.values(array), IsEmpty());
    keep_blocks("the record of an empty store is not released");
}

// Kept: a negative count goes to the virtual machine as it is.
TEST_F(SortedEventsNative, LeaveWhatTheMachineMakesOfANegativeCount)
{
    add_start(1, 10);
    EXPECT_EQ(Java_com_qvr_zek_pim_EventListImpl_nextSortedEventN(jni.env(), nullptr, HANDLE, 10 * DAY), nullptr);
    EXPECT_THAT(jni.calls, ElementsAre("NewIntArray(-1)"));
    ASSERT_TRUE(jni.pending);
    EXPECT_EQ(jni.pending->class_name, "java/lang/NegativeArraySizeException");
    keep_exception("the machine's own");
}

TEST_F(SortedEventsNative, AreNullWhenTheMachineHasNoArray)
{
    add_start(1, 10);
    jni.fail("NewIntArray");
    EXPECT_EQ(Java_com_qvr_zek_pim_EventListImpl_nextSortedEventN(jni.env(), nullptr, HANDLE, 0), nullptr);
    EXPECT_THAT(jni.calls_of("SetIntArrayRegion"), IsEmpty());
    keep_exception("the machine's own, for want of memory");
    keep_blocks("the native does not release the scan's block");
}

} // namespace sorted_enumeration_test
