// Committing events: how the values of a request become an organizer record, and when it is stored.
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "commit_values.h"
#include "eventimpl_limo_arm.h"
#include "pimitemimpl_limo_arm.h"
#include "stored_records.h"
#include "time_zone.h"
#include "unit_test.h"

namespace event_commit_test {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr int32_t REFUSED = 10001; // A text was too long.

class EventCommit : public unit_test {
protected:
    static int32_t commit(commit_values values, int32_t recindex = 0)
    {
        return pimItemImpl_event_commitN(values.request(recindex));
    }

    // Commits a new event and gives what the store holds then.
    stored_item& added(commit_values values)
    {
        const int32_t recindex = commit(values);
        EXPECT_GE(recindex, 1);
        return *platform.find_item(recindex);
    }

    time_zone utc{UTC};
};

using EventCommitTexts = EventCommit;
using EventCommitDates = EventCommit;
using EventCommitRepeat = EventCommit;
using EventCommitYears = EventCommit;
using EventCommitFailure = EventCommit;

struct text_row {
    const char* when;
    int32_t field;
    size_t limit;
    std::string stored_item::*stored;
    char* org_full_record::*buffer;
};

constexpr text_row TEXTS[] = {
    {"NOTE", 104, 1024, &stored_item::description, &org_full_record::description},
    {"SUMMARY", 107, 256, &stored_item::summary, &org_full_record::summary},
    {"LOCATION", 103, 160, &stored_item::location, &org_full_record::location},
};

struct date_row {
    const char* when;
    int32_t code;
    org_date_time org_full_record::*date;
};

constexpr date_row DATES[] = {
    {"START", 106, &org_full_record::start_date_time},      {"END", 102, &org_full_record::end_date_time},
    {"ALARM", 100, &org_full_record::alarm_time},           {"REVISION", 105, &org_full_record::last_modified_time},
    {"repeat end", 4, &org_full_record::repeat_end_or_due},
};

constexpr int64_t NEW_YEAR_2023 = INT64_C(1672531200000);
constexpr int64_t NEW_YEAR_2024 = INT64_C(1704067200000);

std::string xs(size_t count)
{
    return std::string(count, 'x');
}

struct refusal_row {
    const char* function;
    int32_t recindex;
    int32_t result;
    const char* format;
    const char* text;
};

const refusal_row REFUSALS[] = {
    {"org_db_service_add_record_full_field", 0, 0, "org_db_service_add_record_full_field is failed (error : 0x%X)\n",
     "org_db_service_add_record_full_field is failed (error : 0xAB)\n"},
    {"org_db_service_update_record_full_field", 1, 1,
     "org_db_service_update_record_full_field is failed (error : %d)\n",
     "org_db_service_update_record_full_field is failed (error : 171)\n"},
};

} // namespace

// ---- Texts ----------------------------------------------------------------------------------------------------------

TEST_F(EventCommitTexts, GoToTheirFields)
{
    const stored_item& event = added(commit_values().text(107, "Lunch").text(104, "with Ada").text(103, "Turin"));
    EXPECT_EQ(event.summary, "Lunch");
    EXPECT_EQ(event.description, "with Ada");
    EXPECT_EQ(event.location, "Turin");
}

TEST_F(EventCommitTexts, AreTakenUpToTheirLimit)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(added(commit_values().text(row.field, xs(row.limit))).*row.stored, xs(row.limit));
        start_over();
    }
}

TEST_F(EventCommitTexts, OneByteOverRefuseTheWholeEvent)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(commit(commit_values().text(row.field, xs(row.limit + 1))), REFUSED);
        EXPECT_THAT(platform.items, IsEmpty());
        EXPECT_THAT(platform.calls,
                    ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()",
                                "org_db_service_disconnect_database()", "org_db_service_free_full_record()"));
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "field:%d takes %d bytes\n",
                                                    "field:" + std::to_string(row.field) + " takes " +
                                                        std::to_string(row.limit) + " bytes\n")));
        EXPECT_THAT(platform.traces, Contains(traced("pim_error_code != 0 somewhere Fail..\n",
                                                     "pim_error_code != 0 somewhere Fail..\n")));
        start_over();
    }
}

TEST_F(EventCommitTexts, ThatAreTooLongLeaveAStoredEventAsItWas)
{
    platform.add_item(ORG_TYPE_EVENT, 1, "old").record.repeat_term = 2;
    EXPECT_EQ(commit(commit_values().text(107, xs(257)).text(103, "Turin"), 1), REFUSED);
    EXPECT_EQ(platform.find_item(1)->summary, "old");
    EXPECT_EQ(platform.find_item(1)->location, "");
    EXPECT_EQ(platform.find_item(1)->record.repeat_term, 2);
}

TEST_F(EventCommitTexts, BehindOneThatIsTooLongAreStillProcessed)
{
    // A second refusal says nothing new, and neither do the long values.
    EXPECT_EQ(commit(commit_values().text(107, xs(257)).text(104, xs(1025)).text(103, "Turin").number(999, 0)),
              REFUSED);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "unknown long field:%d\n", "unknown long field:999\n")));
}

TEST_F(EventCommitTexts, ThatAreNullTakeTheirPlaceAndNothingElse)
{
    const stored_item& event =
        added(commit_values().text(107, std::nullopt).text(104, "with Ada").text(103, std::nullopt));
    EXPECT_EQ(event.summary, "");
    EXPECT_EQ(event.description, "with Ada");
    EXPECT_EQ(event.location, "");
}

TEST_F(EventCommitTexts, OfTheSameFieldReplaceEachOther)
{
    EXPECT_EQ(added(commit_values().text(107, "a longer first").text(107, "second")).summary, "second");
    EXPECT_EQ(added(commit_values().text(107, "first").text(107, "")).summary, "");
}

TEST_F(EventCommitTexts, OfOtherCodesTakeOneTextAndAreIgnored)
{
    for (int32_t field : {99, 100, 101, 102, 105, 106, 108, 4, 0, -1, 0x1000000}) {
        SCOPED_TRACE(field);
        const stored_item& event = added(commit_values().text(field, xs(2000)).text(107, "Lunch"));
        EXPECT_EQ(event.summary, "Lunch");
        EXPECT_EQ(event.description, "");
        EXPECT_EQ(event.location, "");
        start_over();
    }
}

TEST_F(EventCommitTexts, IgnoreAttributesAndValueIndexes)
{
    EXPECT_EQ(added(commit_values().text(107, "Lunch", 512, -1).number(106, 0, -7)).summary, "Lunch");
}

TEST_F(EventCommitTexts, WhoseBufferCouldNotBeAllocatedAreSkipped)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        fail_allocations_of(row.limit + 1);
        commit_values values;
        for (const text_row& text : TEXTS) values.text(text.field, text.when);
        const stored_item& event = added(values);
        for (const text_row& text : TEXTS)
            EXPECT_EQ(event.*text.stored, text.field == row.field ? "" : text.when) << text.when;
        start_over();
    }
}

TEST_F(EventCommitTexts, AreTooLongWhetherOrNotTheirBufferCouldBeAllocated)
{
    fail_allocations_of(257);
    EXPECT_EQ(commit(commit_values().text(107, xs(257))), REFUSED);
    EXPECT_THAT(platform.items, IsEmpty());
}

// ---- Dates ----------------------------------------------------------------------------------------------------------

TEST_F(EventCommitDates, GoToTheirFieldsAsLocalTime)
{
    const broken_down_time expected = {40, 46, 11, 3, 6, 124, 3, 184, 1};
    const time_zone zone(BERLIN);
    for (const date_row& row : DATES) {
        SCOPED_TRACE(row.when);
        // Where it matters, the end lies behind the start.
        commit_values values;
        if (row.code == 106) values.number(102, INT64_C(1720000000000));
        const stored_item& event = added(values.number(row.code, INT64_C(1720000000999)));
        for (const date_row& other : DATES) {
            if (other.code == row.code) {
                EXPECT_EQ((event.record.*other.date).time, expected);
            } else if (!(row.code == 106 && other.code == 102)) {
                EXPECT_EQ((event.record.*other.date).time, broken_down_time()) << other.when;
            }
            EXPECT_EQ((event.record.*other.date).gmtoff, 0);
            EXPECT_EQ((event.record.*other.date).zone, 0u);
        }
        start_over();
    }
}

TEST_F(EventCommitDates, AreCutToSecondsAndToThirtyTwoBits)
{
    struct row {
        const char* when;
        int64_t milliseconds;
        broken_down_time stored;
    };
    const row rows[] = {
        {"the epoch", 0, {0, 0, 0, 1, 0, 70, 4, 0, 0}},
        {"a millisecond before it", -1, {0, 0, 0, 1, 0, 70, 4, 0, 0}},
        {"a second before it", -1000, {59, 59, 23, 31, 11, 69, 3, 364, 0}},
        {"past 2038", INT64_C(2147483648000), {52, 45, 20, 13, 11, 1, 5, 346, 0}},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        for (const date_row& date : DATES) {
            if (date.code == 106) continue; // Its year depends on the end's.
            EXPECT_EQ((added(commit_values().number(date.code, row.milliseconds)).record.*date.date).time, row.stored)
                << date.when;
        }
    }
}

TEST_F(EventCommitDates, OfARevisionAreNormal)
{
    const time_zone zone(TOKYO);
    const org_date_time revision = added(commit_values().number(105, 0)).record.last_modified_time;
    EXPECT_EQ(revision.time, (broken_down_time{0, 0, 9, 1, 0, 70, 4, 0, 0}));
    EXPECT_EQ(revision.gmtoff, 0);
    EXPECT_EQ(revision.zone, 0u);
}

TEST_F(EventCommitDates, OfUnknownCodesAreTracedAndIgnored)
{
    for (int32_t code : {0, 1, 2, 3, 7, 8, 99, 101, 103, 104, 107, 108, -1}) {
        SCOPED_TRACE(code);
        const stored_item event = added(commit_values().number(code, INT64_C(1720000000000)));
        org_full_record untouched = {};
        untouched.index = event.record.index;
        untouched.kind = 1;
        EXPECT_EQ(bytes_of(event.record), bytes_of(untouched));
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "unknown long field:%d\n",
                                                    "unknown long field:" + std::to_string(code) + "\n")));
        start_over();
    }
}

// ---- Repeat rules ---------------------------------------------------------------------------------------------------

TEST_F(EventCommitRepeat, KeepsTheFrequencyAsItsTerm)
{
    struct row {
        int64_t value;
        int32_t term;
    };
    const row rows[] = {{16, 1},
                        {17, 2},
                        {18, 3},
                        {19, 4},
                        {20, 0},
                        {15, 0},
                        {0, 0},
                        {-1, 0},
                        {16 + (INT64_C(1) << 32), 0},
                        {std::numeric_limits<int64_t>::max(), 0},
                        {std::numeric_limits<int64_t>::min(), 0}};
    for (const row& row : rows) {
        SCOPED_TRACE(row.value);
        const stored_item& event = added(commit_values().number(5, row.value));
        EXPECT_EQ(event.record.repeat_term, row.term);
        EXPECT_EQ(event.record.repeat_interval, 1) << "in every case";
    }
}

TEST_F(EventCommitRepeat, LeavesTheTermAtAFrequencyThereIsNot)
{
    const stored_item& event = added(commit_values().number(5, 18).number(6, 4).number(5, 20));
    EXPECT_EQ(event.record.repeat_term, 3);
    EXPECT_EQ(event.record.repeat_interval, 1);
}

TEST_F(EventCommitRepeat, KeepsAnIntervalOnlyBehindItsFrequency)
{
    const stored_item behind = added(commit_values().number(5, 17).number(6, 3));
    EXPECT_EQ(behind.record.repeat_term, 2);
    EXPECT_EQ(behind.record.repeat_interval, 3);
    const stored_item before = added(commit_values().number(6, 3).number(5, 17));
    EXPECT_EQ(before.record.repeat_term, 2);
    EXPECT_EQ(before.record.repeat_interval, 1);
    EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, "unknown long field:%d\n"))));
}

TEST_F(EventCommitRepeat, KeepsTheLowThirtyTwoBitsOfAnInterval)
{
    struct row {
        int64_t value;
        int32_t interval;
    };
    for (const row& row : {row{0, 0},
                           {-1, -1},
                           {(INT64_C(1) << 32) + 5, 5},
                           {INT64_C(1) << 31, std::numeric_limits<int32_t>::min()},
                           {std::numeric_limits<int64_t>::max(), -1}})
        EXPECT_EQ(added(commit_values().number(6, row.value)).record.repeat_interval, row.interval) << row.value;
}

TEST_F(EventCommitRepeat, ReadsBackAsCommitted)
{
    const int32_t recindex =
        commit(commit_values().number(5, 17).number(6, 2).number(4, NEW_YEAR_2024).number(106, 0).number(102, 0));
    std::array<int32_t, REPEAT_FIELDS_MAX> fields = {};
    EXPECT_EQ(EventImpl_getRepeatFieldsN(recindex, fields), 3);
    EXPECT_EQ(EventImpl_getRepeatIntN(recindex, REPEAT_FREQUENCY), 17);
    EXPECT_EQ(EventImpl_getRepeatIntN(recindex, REPEAT_INTERVAL), 2);
    EXPECT_EQ(EventImpl_getRepeatDateN(recindex, REPEAT_END), NEW_YEAR_2024 / 1000);
}

// ---- Years ----------------------------------------------------------------------------------------------------------

TEST_F(EventCommitYears, MoveAStartBehindTheEndsYearTo1900)
{
    const stored_item& event = added(commit_values().number(106, NEW_YEAR_2024).number(102, NEW_YEAR_2023));
    EXPECT_EQ(event.record.start_date_time.time, (broken_down_time{0, 0, 0, 1, 0, 0, 1, 0, 0}));
    EXPECT_EQ(event.record.end_date_time.time, (broken_down_time{0, 0, 0, 1, 0, 123, 0, 0, 0}));
}

TEST_F(EventCommitYears, LeaveAnEndEarlierInTheSameYear)
{
    const stored_item& event = added(commit_values().number(106, NEW_YEAR_2024 + 86400000).number(102, NEW_YEAR_2024));
    EXPECT_EQ(event.record.start_date_time.time, (broken_down_time{0, 0, 0, 2, 0, 124, 2, 1, 0}));
    EXPECT_EQ(event.record.end_date_time.time, (broken_down_time{0, 0, 0, 1, 0, 124, 1, 0, 0}));
}

TEST_F(EventCommitYears, LeaveAnEndInALaterYear)
{
    const stored_item& event = added(commit_values().number(106, NEW_YEAR_2023).number(102, NEW_YEAR_2024));
    EXPECT_EQ(event.record.start_date_time.time.year, 123);
    EXPECT_THAT(platform.traces, Contains(trace_text(TRACE_STEP, "start year 123, end year 124\n")));
}

TEST_F(EventCommitYears, MoveAStartWithoutAnEndTo1900)
{
    EXPECT_EQ(added(commit_values().number(106, NEW_YEAR_2024)).record.start_date_time.time.year, 0)
        << "the end that was never set stands at 1900";
}

TEST_F(EventCommitYears, AreComparedAfterAllValuesAreIn)
{
    const stored_item& event =
        added(commit_values().number(102, NEW_YEAR_2023).number(106, NEW_YEAR_2024).number(102, NEW_YEAR_2024));
    EXPECT_EQ(event.record.start_date_time.time.year, 124);
}

// ---- Storing --------------------------------------------------------------------------------------------------------

TEST_F(EventCommit, AddsANewEventForAnIndexBelowOne)
{
    for (int32_t recindex : {0, -1, std::numeric_limits<int32_t>::min()}) {
        SCOPED_TRACE(recindex);
        platform.add_item(ORG_TYPE_TODO, 4);
        EXPECT_EQ(commit(commit_values().text(107, "Lunch"), recindex), 5) << "the index that the store gave it";
        EXPECT_EQ(platform.find_item(5)->type, ORG_TYPE_EVENT);
        EXPECT_EQ(platform.find_item(5)->record.kind, 1);
        EXPECT_THAT(platform.calls,
                    ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()",
                                "org_db_service_add_record_full_field(8)", "org_db_service_disconnect_database()",
                                "org_db_service_free_full_record()"));
        EXPECT_THAT(platform.traces,
                    Contains(trace(TRACE_STEP, "Before add in event----->recindex %d\n",
                                   "Before add in event----->recindex " + std::to_string(recindex) + "\n")));
        EXPECT_THAT(platform.traces, Contains(Field(&trace_message::format, "org_sch_record.index=%d, index=%d\n")));
        start_over();
    }
}

TEST_F(EventCommit, IsTracedFirstInItsName)
{
    added(commit_values());
    EXPECT_THAT(platform.traces.front(), AllOf(Field(&trace_message::function, "pimItemImpl_event_commitN"),
                                               Field(&trace_message::calls_before, 0u)));
}

TEST_F(EventCommit, LooksAtNoEntryBehindTheCounts)
{
    const stored_item& event = added(commit_values()
                                         .text(EVENT_NOTE, "note")
                                         .text(EVENT_SUMMARY, "behind")
                                         .number(EVENT_END, 0)
                                         .number(EVENT_ALARM, 5000)
                                         .without_counting_the_last());
    EXPECT_EQ(event.description, "note");
    EXPECT_EQ(event.summary, "");
    EXPECT_EQ(event.record.end_date_time.time.year, 70);
    EXPECT_EQ(event.record.alarm_time.time.year, 0);
}

TEST_F(EventCommit, ReplacesTheWholeStoredEvent)
{
    stored_item& event = platform.add_item(ORG_TYPE_EVENT, 3, "old");
    event.description = "old";
    event.location = "old";
    event.record.repeat_term = 2;
    event.record.repeat_interval = 5;
    for (const date_row& row : DATES) (event.record.*row.date).time = local_time(2010, 1, 1);

    EXPECT_EQ(commit(commit_values().text(107, "new"), 3), 3);
    const stored_item& stored = *platform.find_item(3);
    EXPECT_EQ(stored.summary, "new");
    EXPECT_EQ(stored.description, "");
    EXPECT_EQ(stored.location, "");
    org_full_record expected = {};
    expected.index = 3;
    expected.kind = 1;
    EXPECT_EQ(bytes_of(stored.record), bytes_of(expected));
    EXPECT_THAT(platform.calls_between_connections(), ElementsAre("org_db_service_update_record_full_field(3)"));
}

TEST_F(EventCommit, ReadsNeitherByteNorIntValues)
{
    commit_values values;
    CommitRequest request = values.text(107, "Lunch").request(0);
    request.intvalue = nullptr;
    request.bytevalue = nullptr;
    EXPECT_GE(pimItemImpl_event_commitN(request), 1);
}

// ---- Failures -------------------------------------------------------------------------------------------------------

TEST_F(EventCommitFailure, IsMinusOneWhenTheStoreCannotBeOpened)
{
    platform.fail("org_db_service_connect_database", 81);
    EXPECT_EQ(commit(commit_values().text(107, "Lunch")), -1);
    EXPECT_THAT(platform.calls, ElementsAre("org_db_service_connect_database()"));
    EXPECT_THAT(platform.traces, Contains(assertion("pimItemImpl_event_commitN", "initialize", 10007)));
    start_over();

    platform.fail("org_db_service_init_full_record", 82);
    EXPECT_EQ(commit(commit_values().text(107, "Lunch")), -1);
    EXPECT_THAT(platform.traces, Contains(assertion("pimItemImpl_event_commitN", "initialize", 10008)));
    keep_connection("a refused opening is not followed by a close");
}

// Kept: the store's refusal is visible in the trace alone, and the connection is closed twice.
TEST_F(EventCommitFailure, OfTheStoreIsAnsweredAsASuccessAfterASecondClose)
{
    for (const refusal_row& row : REFUSALS) {
        SCOPED_TRACE(row.function);
        platform.add_item(ORG_TYPE_EVENT, 1, "old");
        platform.fail(row.function, 171);
        EXPECT_EQ(commit(commit_values().text(107, "new"), row.recindex), row.result);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, row.format, row.text)));
        EXPECT_EQ(platform.calls_of("org_db_service_disconnect_database").size(), 2u);
        EXPECT_EQ(platform.calls_of("org_db_service_free_full_record").size(), 2u);
        EXPECT_EQ(platform.find_item(1)->summary, "old");
        start_over();
    }
}

// The platform's own copy of the record may keep what it likes; ours points at nothing released.
TEST_F(EventCommitFailure, OfTheStoreLeavesNoReleasedTextInTheRecord)
{
    for (const refusal_row& row : REFUSALS) {
        SCOPED_TRACE(row.function);
        platform.add_item(ORG_TYPE_EVENT, 1);
        platform.fail(row.function, 171);
        int releases = 0;
        platform.before_call = [&](const std::string& call) {
            if (call != "org_db_service_free_full_record()") return;
            ++releases;
            EXPECT_EQ(unreleased_blocks(), releases == 1 ? 7u : 0u);
        };
        commit(commit_values().text(107, "new"), row.recindex);
        EXPECT_EQ(releases, 2);
        start_over();
    }
}

TEST_F(EventCommitFailure, OfTheStoreIsMinusOneWhenACloseFailsToo)
{
    for (const refusal_row& row : REFUSALS) {
        for (int close : {1, 2}) {
            SCOPED_TRACE(testing::Message() << row.function << ", close " << close);
            platform.add_item(ORG_TYPE_EVENT, 1);
            platform.fail(row.function, 171);
            platform.fail_call("org_db_service_disconnect_database", close, 83);
            EXPECT_EQ(commit(commit_values().text(107, "new"), row.recindex), -1);
            EXPECT_EQ(platform.calls_of("org_db_service_disconnect_database").size(), static_cast<size_t>(close));
            EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_event_commitN")));
            if (close == 1) keep_blocks("a connection that would not close keeps the record's buffers");
            start_over();
        }
    }
}

TEST_F(EventCommitFailure, OfTheCloseIsMinusOneThoughTheEventIsStored)
{
    for (const char* function : {"org_db_service_disconnect_database", "org_db_service_free_full_record"}) {
        for (int32_t recindex : {0, 1}) {
            SCOPED_TRACE(testing::Message() << function << ", record " << recindex);
            platform.add_item(ORG_TYPE_EVENT, 1);
            platform.fail(function, 84);
            EXPECT_EQ(commit(commit_values().text(107, "new"), recindex), -1);
            EXPECT_EQ(platform.items.back().summary, "new");
            EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_event_commitN")));
            keep_blocks("a connection that would not close keeps the record's buffers");
            start_over();
        }
    }
}

TEST_F(EventCommitFailure, OfTheCloseBehindATextThatIsTooLongIsMinusOne)
{
    platform.fail("org_db_service_disconnect_database", 85);
    EXPECT_EQ(commit(commit_values().text(107, xs(257))), -1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_event_commitN")));
    EXPECT_EQ(platform.calls_of("org_db_service_disconnect_database").size(), 1u);
    keep_blocks("a connection that would not close keeps the record's buffers");
}

} // namespace event_commit_test
