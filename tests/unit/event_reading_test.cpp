// Reading events: texts, dates, the alarm, counts and field lists.
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "pimitemimpl_limo_arm.h"
#include "reader_frame.h"
#include "stored_records.h"
#include "time_zone.h"

namespace event_reading_test {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A store with one empty event, record 1.
class EventReading : public reader_frame {
protected:
    void SetUp() override
    {
        reader_frame::SetUp();
        platform.add_item(ORG_TYPE_EVENT, 1);
    }

    stored_item& event() { return *platform.find_item(1); }

    static std::string string_of(int32_t field, int32_t index = 0)
    {
        char text[ITEM_TEXT_SIZE] = {};
        EXPECT_EQ(getEventString(1, field, index, text), 1);
        return text;
    }

    static std::vector<int32_t> fields_of(int32_t recindex)
    {
        std::array<int32_t, LISTED_FIELDS_MAX> fields = {};
        const int32_t count = getField_event(recindex, fields);
        return {fields.begin(), fields.begin() + count};
    }

    // Fills every field there is.
    void fill()
    {
        event().summary = "Lunch";
        event().description = "with Ada";
        event().location = "Turin";
        for (org_date_time org_full_record::*date :
             {&org_full_record::start_date_time, &org_full_record::end_date_time, &org_full_record::alarm_time,
              &org_full_record::last_modified_time})
            (event().record.*date).time = local_time(2010, 1, 1);
    }

    time_zone utc{UTC};
};

using EventString = EventReading;
using EventDate = EventReading;
using EventAlarm = EventReading;
using EventBool = EventReading;
using EventCount = EventReading;
using EventFields = EventReading;
using EventReaders = EventReading;

struct text_row {
    const char* when;
    int32_t field;
    std::string stored_item::*text;
    size_t limit;
};

constexpr text_row TEXTS[] = {
    {"LOCATION", 103, &stored_item::location, 160},
    {"NOTE", 104, &stored_item::description, 1023},
    {"SUMMARY", 107, &stored_item::summary, 256},
};

struct date_row {
    const char* when;
    int32_t field;
    org_date_time org_full_record::*date;
};

constexpr date_row DATES[] = {
    {"END", 102, &org_full_record::end_date_time},
    {"REVISION", 105, &org_full_record::last_modified_time},
    {"START", 106, &org_full_record::start_date_time},
};

constexpr date_row ALARM = {"ALARM", 100, &org_full_record::alarm_time};

} // namespace

// ---- Strings --------------------------------------------------------------------------------------------------------

TEST_F(EventString, IsTheTextOfItsField)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        event().*row.text = "a text";
        for (int32_t index : {0, 1, -1, 1000000}) EXPECT_EQ(string_of(row.field, index), "a text") << index;
        for (const text_row& other : TEXTS) {
            if (other.field != row.field) {
                EXPECT_EQ(string_of(other.field), "") << other.when;
            }
        }
        start_over();
    }
}

TEST_F(EventString, IsWholeUpToItsLimit)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        event().*row.text = std::string(row.limit, 'x');
        EXPECT_EQ(string_of(row.field), std::string(row.limit, 'x'));
        start_over();
    }
}

TEST_F(EventString, OfANoteOf1024BytesLosesItsLast)
{
    event().description = std::string(1024, 'x');
    EXPECT_EQ(string_of(EVENT_NOTE), std::string(1023, 'x'));
}

TEST_F(EventString, IsEmptyForFieldsThatAreNoTexts)
{
    fill();
    for (int32_t field : {99, 100, 101, 102, 105, 106, 108, 109, 0, -1}) EXPECT_EQ(string_of(field), "") << field;
}

TEST_F(EventString, LeavesTheBufferAloneForAFieldWithoutText)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        char text[ITEM_TEXT_SIZE] = "as it was";
        EXPECT_EQ(getEventString(1, row.field, 0, text), 1);
        EXPECT_STREQ(text, "as it was");
    }
}

TEST_F(EventString, LeavesTheBufferAloneForARecordThatIsNotThere)
{
    char text[ITEM_TEXT_SIZE] = "as it was";
    EXPECT_EQ(getEventString(4711, EVENT_SUMMARY, 0, text), 0);
    EXPECT_STREQ(text, "as it was");
}

TEST_F(EventString, IsEmptyWhereItsBufferCouldNotBeAllocated)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        fill();
        const size_t limit = row.field == EVENT_NOTE ? 1024 : row.limit;
        fail_allocations_of(limit + 1);
        EXPECT_EQ(string_of(row.field), "");
        EXPECT_EQ(count_values_event(1, row.field), 0);
        start_over();
    }
}

// ---- Dates and the alarm --------------------------------------------------------------------------------------------

TEST_F(EventDate, IsTheDateOfItsFieldInMilliseconds)
{
    for (const date_row& row : DATES) {
        SCOPED_TRACE(row.when);
        (event().record.*row.date).time = local_time(2010, 1, 1);
        for (int32_t index : {0, 1, -1}) EXPECT_EQ(getEventDate(1, row.field, index), INT64_C(1262304000000)) << index;
        const std::string code = std::to_string(row.field);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "getEventDate recindex = %d field = %d index = %d\n",
                                                    "getEventDate recindex = 1 field = " + code + " index = 0\n")));
        for (const date_row& other : DATES) {
            if (other.field != row.field) {
                EXPECT_EQ(getEventDate(1, other.field, 0), -1000) << other.when;
            }
        }
        start_over();
    }
}

TEST_F(EventDate, GoesByTheZoneOfTheDevice)
{
    event().record.start_date_time.time = local_time(2024, 7, 3, 11, 46, 40, 1);
    const time_zone zone(BERLIN);
    EXPECT_EQ(getEventDate(1, EVENT_START, 0), INT64_C(1720000000000));
}

TEST_F(EventDate, PreparesTheRecordASecondTimeBeforeItFetches)
{
    getEventDate(1, EVENT_START, 0);
    EXPECT_THAT(platform.calls,
                ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()",
                            "org_db_service_init_full_record()", "org_db_service_get_record_full_field_by_index(1)",
                            "org_db_service_disconnect_database()", "org_db_service_free_full_record()"));
}

TEST_F(EventDate, IsMinusAThousandForADateThatWasNeverSetOrThatMktimeRefuses)
{
    for (const date_row& row : DATES) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(getEventDate(1, row.field, 0), -1000);
        (event().record.*row.date).time = refused_time();
        EXPECT_EQ(getEventDate(1, row.field, 0), -1000);
    }
}

TEST_F(EventDate, IsZeroForAnyOtherFieldTheAlarmIncluded)
{
    fill();
    for (int32_t field : {99, 100, 101, 103, 104, 107, 108, 0, -1}) EXPECT_EQ(getEventDate(1, field, 0), 0) << field;
}

TEST_F(EventAlarm, IsItsMillisecondsInThirtyTwoBits)
{
    struct row {
        const char* when;
        broken_down_time alarm;
        int32_t expected;
    };
    const row rows[] = {
        {"a New Year", local_time(2010, 1, 1), -416385024},
        {"the epoch", local_time(1970, 1, 1), 0},
        {"the last that does not wrap", local_time(1970, 1, 25, 20, 31, 23), 2147483000},
        {"the first that wraps", local_time(1970, 1, 25, 20, 31, 24), -2147483296},
        {"one that was never set", {}, -1000},
        {"one that mktime refuses", refused_time(), -1000},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        event().record.alarm_time.time = row.alarm;
        EXPECT_EQ(getEventInt(1, EVENT_ALARM, 0), row.expected);
        EXPECT_EQ(getEventInt(1, EVENT_ALARM, 5), row.expected);
    }
}

TEST_F(EventAlarm, IsTheOnlyNumberOfAnEvent)
{
    fill();
    for (int32_t field : {99, 101, 102, 103, 104, 105, 106, 107, 108, 0, -1})
        EXPECT_EQ(getEventInt(1, field, 0), 0) << field;
}

TEST_F(EventBool, IsFalseForAnythingWithoutTouchingTheStore)
{
    for (int32_t recindex : {1, 4711, 0, -1})
        for (int32_t field = 95; field < 112; ++field) EXPECT_EQ(getEventBool(recindex, field, 0), 0) << field;
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "%s ***\n", "getEventBool ***\n")));
}

// ---- Counts and field lists -----------------------------------------------------------------------------------------

TEST_F(EventCount, OfATextGoesByItsFirstByte)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(count_values_event(1, row.field), 0);
        event().*row.text = "x";
        EXPECT_EQ(count_values_event(1, row.field), 1);
        EXPECT_THAT(platform.traces,
                    Contains(trace(TRACE_STEP, "count_values_event, recindex=%d, field = %d\n",
                                   "count_values_event, recindex=1, field = " + std::to_string(row.field) + "\n")));
        start_over();
    }
}

TEST_F(EventCount, OfADateGoesByWhetherMktimeTakesIt)
{
    std::vector<date_row> rows(std::begin(DATES), std::end(DATES));
    rows.push_back(ALARM);
    for (const date_row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(count_values_event(1, row.field), 0) << "never set";
        (event().record.*row.date).time = local_time(2010, 1, 1);
        EXPECT_EQ(count_values_event(1, row.field), 1);
        (event().record.*row.date).time = refused_time();
        EXPECT_EQ(count_values_event(1, row.field), 0);
        start_over();
    }
}

TEST_F(EventCount, OfAnyOtherCodeIsZero)
{
    fill();
    for (int32_t field : {99, 101, 108, 109, 0, -1, 0x1000000}) EXPECT_EQ(count_values_event(1, field), 0) << field;
}

TEST_F(EventFields, AreListedInTheirFixedOrder)
{
    fill();
    EXPECT_THAT(fields_of(1), ElementsAre(103, 104, 107, 100, 102, 105, 106));
    EXPECT_EQ(platform.calls_of("org_db_service_connect_database").size(), 7u);
}

TEST_F(EventFields, LeaveOutAnEmptyNote)
{
    fill();
    event().description = "";
    EXPECT_THAT(fields_of(1), ElementsAre(103, 107, 100, 102, 105, 106));
}

TEST_F(EventFields, AreNoneForAnEmptyRecordAndForOneThatIsNotThere)
{
    EXPECT_THAT(fields_of(1), IsEmpty());
    EXPECT_THAT(fields_of(4711), IsEmpty());
}

TEST_F(EventFields, AreAllListedWhenTheStoreCannotBeOpened)
{
    platform.fail("org_db_service_connect_database", 1);
    EXPECT_THAT(fields_of(1), ElementsAre(103, 104, 107, 100, 102, 105, 106)) << "a count of -1 is not 0";
}

// ---- When the store fails -------------------------------------------------------------------------------------------

TEST_F(EventReaders, AnswerEachInItsOwnWayWhenAStepFails)
{
    char text[ITEM_TEXT_SIZE] = {};
    const reader_row rows[] = {
        {"getEventString", [&] { return getEventString(1, EVENT_SUMMARY, 0, text); }, 1, {}, 0, 1, 1},
        {"getEventInt", [] { return getEventInt(1, EVENT_ALARM, 0); }, -1, {}, 0, -1, -1},
        {"getEventDate", [] { return getEventDate(1, EVENT_START, 0); }, -1, -1, 0, -1, -1},
        {"count_values_event",
         [] { return count_values_event(1, EVENT_SUMMARY); },
         -1,
         {},
         0,
         -1,
         -1,
         "org_db_service_get_record_full_field_by_index Fail..\n"},
    };
    for (const reader_row& row : rows) expect_organizer_failures(row, LIST_EVENT, [&] { fill(); });
}

} // namespace event_reading_test
