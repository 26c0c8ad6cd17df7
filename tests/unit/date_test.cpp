// Dates between Java's milliseconds and the stores' broken-down local time.
#include <cstdint>
#include <limits>

#include "commit_values.h"
#include "pimutil.h"
#include "stored_records.h"
#include "time_zone.h"
#include "unit_test.h"

namespace date_test {

namespace {

class StoreToJava : public unit_test {};
class JavaToStore : public unit_test {};
class PimMktime : public unit_test {};
class DateField : public unit_test {};

constexpr int64_t LAST_SECOND = std::numeric_limits<int32_t>::max();  // 2038-01-19 03:14:07 UTC
constexpr int64_t FIRST_SECOND = std::numeric_limits<int32_t>::min(); // 1901-12-13 20:45:52 UTC

// A moment and its local time, all nine words of it.
struct moment_row {
    const char* when;
    const char* zone;
    int64_t seconds;
    broken_down_time local;
};

// The words: seconds, minutes, hours, day, month from 0, year from 1900, weekday from Sunday, day of year from 0, dst.
constexpr moment_row MOMENTS[] = {
    {"the epoch", UTC, 0, {0, 0, 0, 1, 0, 70, 4, 0, 0}},
    {"the epoch nine hours to the east", TOKYO, 0, {0, 0, 9, 1, 0, 70, 4, 0, 0}},
    {"the epoch in winter time", BERLIN, 0, {0, 0, 1, 1, 0, 70, 4, 0, 0}},
    {"a New Year", UTC, 1262304000, {0, 0, 0, 1, 0, 110, 5, 0, 0}},
    {"a leap day", UTC, 1709210096, {56, 34, 12, 29, 1, 124, 4, 59, 0}},
    {"a leap day nine hours to the east", TOKYO, 1709210096, {56, 34, 21, 29, 1, 124, 4, 59, 0}},
    {"the last second of winter time", BERLIN, 1711846799, {59, 59, 1, 31, 2, 124, 0, 90, 0}},
    {"the first second of summer time", BERLIN, 1711846800, {0, 0, 3, 31, 2, 124, 0, 90, 1}},
    {"the same moment where the clock stays", TOKYO, 1711846800, {0, 0, 10, 31, 2, 124, 0, 90, 0}},
    {"the last second of summer time", BERLIN, 1729990799, {59, 59, 2, 27, 9, 124, 0, 300, 1}},
    {"the first second of winter time", BERLIN, 1729990800, {0, 0, 2, 27, 9, 124, 0, 300, 0}},
    {"a summer's day", BERLIN, 1720000000, {40, 46, 11, 3, 6, 124, 3, 184, 1}},
    {"the last second there is", UTC, LAST_SECOND, {7, 14, 3, 19, 0, 138, 2, 18, 0}},
    {"the last second nine hours to the east", TOKYO, LAST_SECOND, {7, 14, 12, 19, 0, 138, 2, 18, 0}},
    {"the first second there is", UTC, FIRST_SECOND, {52, 45, 20, 13, 11, 1, 5, 346, 0}},
};

struct refused_row {
    const char* when;
    broken_down_time time;
};

// No signed 32-bit count of seconds expresses these, whatever the machine's own time_t could.
const refused_row REFUSED[] = {
    {"a field that was never set", {}},
    {"a second past the last one", {8, 14, 3, 19, 0, 138, 0, 0, 0}},
    {"a second before the first one", {51, 45, 20, 13, 11, 1, 0, 0, 0}},
    {"the year 2100", refused_time()},
    {"the year 1800", local_time(1800, 1, 1)},
};

} // namespace

// ---- Store to Java --------------------------------------------------------------------------------------------------

TEST_F(StoreToJava, IsTheMomentOfTheLocalTimeInMilliseconds)
{
    for (const moment_row& row : MOMENTS) {
        SCOPED_TRACE(row.when);
        const time_zone zone(row.zone);
        EXPECT_EQ(to_java_date(row.local), row.seconds * 1000);
        EXPECT_TRUE(is_set(row.local));
    }
}

TEST_F(StoreToJava, GivesMinusAThousandForATimeThatMktimeRefuses)
{
    const time_zone zone(UTC);
    for (const refused_row& row : REFUSED) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(to_java_date(row.time), -1000);
        EXPECT_FALSE(is_set(row.time));
    }
}

TEST_F(StoreToJava, RefusesAFieldThatWasNeverSetInEveryZone)
{
    for (const char* name : {UTC, TOKYO, BERLIN}) {
        SCOPED_TRACE(name);
        const time_zone zone(name);
        EXPECT_EQ(to_java_date({}), -1000);
        EXPECT_FALSE(is_set({}));
    }
}

// The one moment that a count of seconds cannot tell from a failure.
TEST_F(StoreToJava, TakesTheSecondBeforeTheEpochForAFieldThatWasNeverSet)
{
    const time_zone zone(UTC);
    const broken_down_time time = local_time(1969, 12, 31, 23, 59, 59);
    EXPECT_EQ(to_java_date(time), -1000);
    EXPECT_FALSE(is_set(time));
}

TEST_F(StoreToJava, HonoursTheStoredDaylightSavingFlag)
{
    const time_zone zone(BERLIN);
    EXPECT_EQ(to_java_date(local_time(2024, 10, 27, 2, 30, 0, 1)), 1729989000 * INT64_C(1000));
    EXPECT_EQ(to_java_date(local_time(2024, 10, 27, 2, 30, 0, 0)), 1729992600 * INT64_C(1000));
    // Winter's clock in summer: an hour later by the clock on the wall.
    EXPECT_EQ(to_java_date(local_time(2024, 7, 3, 11, 46, 40, 1)), 1720000000 * INT64_C(1000));
    EXPECT_EQ(to_java_date(local_time(2024, 7, 3, 11, 46, 40, 0)), 1720003600 * INT64_C(1000));
    EXPECT_EQ(to_java_date(local_time(2024, 7, 3, 11, 46, 40, -1)), 1720000000 * INT64_C(1000));
}

TEST_F(StoreToJava, MultipliesInSixtyFourBits)
{
    const time_zone zone(UTC);
    EXPECT_EQ(to_java_date({7, 14, 3, 19, 0, 138, 0, 0, 0}), INT64_C(2147483647000));
    EXPECT_EQ(to_java_date({52, 45, 20, 13, 11, 1, 0, 0, 0}), INT64_C(-2147483648000));
}

// ---- Java to store --------------------------------------------------------------------------------------------------

TEST_F(JavaToStore, IsTheLocalTimeOfTheMoment)
{
    for (const moment_row& row : MOMENTS) {
        SCOPED_TRACE(row.when);
        const time_zone zone(row.zone);
        EXPECT_EQ(to_local_time(row.seconds), row.local);
    }
}

TEST_F(JavaToStore, FollowsAChangeOfTheZone)
{
    for (const char* name : {UTC, TOKYO, BERLIN, UTC}) {
        SCOPED_TRACE(name);
        const time_zone zone(name);
        const int32_t expected = name == TOKYO ? 9 : name == BERLIN ? 1 : 0;
        EXPECT_EQ(to_local_time(0).hour, expected);
    }
}

// Whoever changes the zone need not tell libc.
TEST_F(JavaToStore, FollowsAChangeOfTheZoneThatOnlyTheEnvironmentKnows)
{
    const time_zone zone(UTC);
    EXPECT_EQ(to_local_time(0).hour, 0);
    setenv("TZ", TOKYO, 1);
    EXPECT_EQ(to_local_time(0).hour, 9);
}

TEST_F(JavaToStore, CutsMillisecondsTowardZero)
{
    struct row {
        int64_t milliseconds;
        int64_t seconds;
    };
    const row rows[] = {
        {0, 0},
        {1, 0},
        {999, 0},
        {1000, 1},
        {1999, 1},
        {-1, 0},
        {-999, 0},
        {-1000, -1},
        {-1999, -1},
        {1234567, 1234},
        {INT64_MAX, INT64_C(9223372036854775)},
        {INT64_MIN, INT64_C(-9223372036854775)},
    };
    for (const row& row : rows) EXPECT_EQ(java_date_seconds(row.milliseconds), row.seconds) << row.milliseconds;
}

TEST_F(JavaToStore, KeepsTheLowThirtyTwoBitsOfTheSeconds)
{
    const time_zone zone(UTC);
    struct row {
        const char* when;
        int64_t seconds;
        int64_t kept;
    };
    const row rows[] = {
        {"a second past 2038 wraps to 1901", LAST_SECOND + 1, FIRST_SECOND},
        {"a second before 1901 wraps to 2038", FIRST_SECOND - 1, LAST_SECOND},
        {"a whole turn is the epoch", INT64_C(1) << 32, 0},
        {"a turn and a bit", (INT64_C(1) << 32) + 1262304000, 1262304000},
        {"the largest", INT64_MAX, -1},
        {"the smallest", INT64_MIN, 0},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(to_local_time(row.seconds), to_local_time(row.kept));
    }
    EXPECT_EQ(to_local_time(LAST_SECOND + 1), (broken_down_time{52, 45, 20, 13, 11, 1, 5, 346, 0}));
}

// ---- pim_mktime -----------------------------------------------------------------------------------------------------

TEST_F(PimMktime, GivesSecondsSignExtended)
{
    for (const moment_row& row : MOMENTS) {
        SCOPED_TRACE(row.when);
        const time_zone zone(row.zone);
        broken_down_time time = row.local;
        EXPECT_EQ(pim_mktime(&time), row.seconds);
        EXPECT_EQ(time, row.local) << "a normal time stays as it is";
    }
}

TEST_F(PimMktime, NormalisesItsField)
{
    struct row {
        const char* when;
        broken_down_time time;
        int64_t seconds;
        broken_down_time normal;
    };
    const row rows[] = {
        {"a fourteenth month", {0, 0, 0, 1, 13, 109, 0, 0, 0}, 1264982400, {0, 0, 0, 1, 1, 110, 1, 31, 0}},
        {"the day before the first", {0, 0, 0, 0, 0, 110, 0, 0, 0}, 1262217600, {0, 0, 0, 31, 11, 109, 4, 364, 0}},
        {"ninety seconds", {90, 0, 0, 1, 0, 110, 0, 0, 0}, 1262304090, {30, 1, 0, 1, 0, 110, 5, 0, 0}},
        {"a wrong weekday", {0, 0, 0, 1, 0, 110, 3, 200, 0}, 1262304000, {0, 0, 0, 1, 0, 110, 5, 0, 0}},
        {"the epoch, from the day before", {0, 0, 24, 31, 11, 69, 0, 0, 0}, 0, {0, 0, 0, 1, 0, 70, 4, 0, 0}},
        {"two seconds before the epoch", {-2, 0, 0, 1, 0, 70, 0, 0, 0}, -2, {58, 59, 23, 31, 11, 69, 3, 364, 0}},
    };
    const time_zone zone(UTC);
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        broken_down_time time = row.time;
        EXPECT_EQ(pim_mktime(&time), row.seconds);
        EXPECT_EQ(time, row.normal);
    }
}

TEST_F(PimMktime, MovesATimeThatTheClockSkips)
{
    const time_zone zone(BERLIN);
    // Winter's half past two on the day that goes from two to three: an hour of summer's clock later.
    broken_down_time time = local_time(2024, 3, 31, 2, 30, 0, 0);
    EXPECT_EQ(pim_mktime(&time), 1711848600);
    EXPECT_EQ(time, (broken_down_time{0, 30, 3, 31, 2, 124, 0, 90, 1}));
}

TEST_F(PimMktime, RefusesWhatThirtyTwoBitsCannotExpress)
{
    const time_zone zone(UTC);
    for (const refused_row& row : REFUSED) {
        SCOPED_TRACE(row.when);
        broken_down_time time = row.time;
        EXPECT_EQ(pim_mktime(&time), -1);
    }
}

// ---- Through a store ------------------------------------------------------------------------------------------------

TEST_F(DateField, ReadsBackWhatWasCommitted)
{
    struct row {
        const char* when;
        int64_t committed;
        int64_t read;
    };
    const row rows[] = {
        {"the epoch", 0, 0},
        {"milliseconds are lost", 1234567, 1234000},
        {"a millisecond before the epoch is the epoch", -1, 0},
        {"a second before the epoch reads as never set", -1000, -1000},
        {"two seconds before the epoch", -2000, -2000},
        {"a New Year", INT64_C(1262304000000), INT64_C(1262304000000)},
        {"the last moment", INT64_C(2147483647999), INT64_C(2147483647000)},
        {"past 2038 it wraps to 1901", INT64_C(2147483648000), INT64_C(-2147483648000)},
        {"summer time", INT64_C(1720000000000), INT64_C(1720000000000)},
        {"the ambiguous hour, first time", INT64_C(1729989000000), INT64_C(1729989000000)},
        {"the ambiguous hour, second time", INT64_C(1729992600000), INT64_C(1729992600000)},
    };
    for (const char* name : {UTC, TOKYO, BERLIN}) {
        const time_zone zone(name);
        for (const row& row : rows) {
            SCOPED_TRACE(testing::Message() << row.when << " in " << name);
            const int32_t recindex =
                pimItemImpl_todo_commitN(commit_values().number(TODO_DUE, row.committed).request(0));
            EXPECT_EQ(getTodoDate(recindex, TODO_DUE, 0), row.read);
        }
    }
}

TEST_F(DateField, KeepsItsOffsetAndZoneWords)
{
    const time_zone zone(TOKYO);
    const int32_t recindex = pimItemImpl_todo_commitN(commit_values().number(TODO_DUE, 0).request(0));
    const org_date_time& due = platform.find_item(recindex)->record.repeat_end_or_due;
    EXPECT_EQ(due.time, (broken_down_time{0, 0, 9, 1, 0, 70, 4, 0, 0}));
    EXPECT_EQ(due.gmtoff, 0);
    EXPECT_EQ(due.zone, 0u);
}

} // namespace date_test
