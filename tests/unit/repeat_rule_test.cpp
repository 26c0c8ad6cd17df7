// Repeat rules: what the event list supports, and the rule of one event.
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "eventimpl_limo_arm.h"
#include "pimcodes.h"
#include "reader_frame.h"
#include "stored_records.h"
#include "time_zone.h"

namespace repeat_rule_test {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

namespace {

constexpr jint HANDLE = 77; // No function reads it.

// A store with one event that does not repeat, record 1.
class RepeatRule : public reader_frame {
protected:
    void SetUp() override
    {
        reader_frame::SetUp();
        platform.add_item(ORG_TYPE_EVENT, 1);
    }

    org_full_record& event() { return platform.find_item(1)->record; }

    static std::vector<int32_t> fields_of(int32_t recindex)
    {
        std::array<int32_t, REPEAT_FIELDS_MAX> fields = {};
        const int32_t count = EventImpl_getRepeatFieldsN(recindex, fields);
        if (count < 0) return {count};
        return {fields.begin(), fields.begin() + count};
    }

    void expect_entered(const std::string& native)
    {
        const std::string name = "Java_com_qvr_zek_pim_" + native;
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "%s ***\n", name + " ***\n")));
    }

    time_zone utc{UTC};
};

using SupportedRepeatRules = RepeatRule;
using RepeatInt = RepeatRule;
using RepeatCount = RepeatRule;
using RepeatDate = RepeatRule;
using RepeatFields = RepeatRule;

} // namespace

// ---- What the list supports -----------------------------------------------------------------------------------------

TEST_F(SupportedRepeatRules, HaveFourFrequencies)
{
    jintArray array = Java_com_qvr_zek_pim_EventListImpl_getSupportedRepeatRuleFrequenciesN(jni.env(), nullptr);
    EXPECT_THAT(jni.values(array), ElementsAre(16, 17, 18, 19));
    expect_entered("EventListImpl_getSupportedRepeatRuleFrequenciesN");
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(SupportedRepeatRules, HaveTheFieldCombinationsOfTheirFrequency)
{
    struct row {
        const char* when;
        jint frequency;
        std::vector<jint> combinations;
    };
    const row rows[] = {
        {"DAILY", 16, {224}},
        {"WEEKLY", 17, {226}},
        {"MONTHLY", 18, {225, 242}},
        {"YEARLY", 19, {228, 233, 250}},
        {"before DAILY", 15, {0}},
        {"behind YEARLY", 20, {0}},
        {"none", 0, {0}},
        {"negative", -1, {0}},
        {"a stored term", 1, {0}},
        {"huge", std::numeric_limits<jint>::max(), {0}},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        jintArray array =
            Java_com_qvr_zek_pim_EventListImpl_getSupportedRepeatRuleFieldsN(jni.env(), nullptr, row.frequency);
        EXPECT_EQ(jni.values(array), row.combinations);
        expect_entered("EventListImpl_getSupportedRepeatRuleFieldsN");
        EXPECT_THAT(platform.calls, IsEmpty());
        start_over();
    }
}

// ---- Ints -----------------------------------------------------------------------------------------------------------

TEST_F(RepeatInt, OfFrequencyIsTheOneOfTheStoredTerm)
{
    struct row {
        int32_t term, frequency;
    };
    for (const row& row : {row{0, -1},
                           {1, 16},
                           {2, 17},
                           {3, 18},
                           {4, 19},
                           {5, 0},
                           {-1, 0},
                           {16, 0},
                           {std::numeric_limits<int32_t>::max(), 0},
                           {std::numeric_limits<int32_t>::min(), 0}}) {
        event().repeat_term = row.term;
        EXPECT_EQ(EventImpl_getRepeatIntN(1, 5), row.frequency) << row.term;
    }
}

TEST_F(RepeatInt, OfIntervalIsTheStoredOne)
{
    for (int32_t interval : {0, 1, 2, -1, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()}) {
        event().repeat_interval = interval;
        EXPECT_EQ(EventImpl_getRepeatIntN(1, 6), interval);
    }
}

TEST_F(RepeatInt, OfFieldsThatAreNotStoredIsOne)
{
    for (int32_t term : {0, 1, 2, 3, 4}) {
        event().repeat_term = term;
        for (int32_t field : {1, 2, 3, 7, 8}) EXPECT_EQ(EventImpl_getRepeatIntN(1, field), 1) << field;
    }
}

TEST_F(RepeatInt, OfTheEndAndOfUnknownFieldsIsZero)
{
    event().repeat_end_or_due.time = local_time(2010, 1, 1);
    event().repeat_interval = 3;
    for (int32_t field : {4, 9, 10, 100, 1000000, -1}) EXPECT_EQ(EventImpl_getRepeatIntN(1, field), 0) << field;
}

TEST_F(RepeatInt, PassesThroughTheNativeUnchanged)
{
    event().repeat_term = 2;
    event().repeat_interval = 2;
    EXPECT_EQ(Java_com_qvr_zek_pim_EventImpl_getRepeatIntN(jni.env(), nullptr, HANDLE, 1, 5), 17);
    EXPECT_EQ(Java_com_qvr_zek_pim_EventImpl_getRepeatIntN(jni.env(), nullptr, HANDLE, 1, 6), 2);
    EXPECT_EQ(Java_com_qvr_zek_pim_EventImpl_getRepeatIntN(jni.env(), nullptr, HANDLE, 1, 2), 1);
    EXPECT_EQ(Java_com_qvr_zek_pim_EventImpl_getRepeatIntN(jni.env(), nullptr, HANDLE, 4711, 5), 0);
    expect_entered("EventImpl_getRepeatIntN");
}

// ---- Count ----------------------------------------------------------------------------------------------------------

// Kept: nine words from the term on are read as one time: term, interval, the word behind them and the first six of
// the repetition's end as seconds, minutes, hours, day, month, year, weekday, day of year and daylight saving.
TEST_F(RepeatCount, IsTheTermIntervalAndEndReadAsOneTime)
{
    struct row {
        const char* when;
        int32_t term, interval, behind;
        broken_down_time end;
        int32_t expected;
    };
    const row rows[] = {
        {"the words of 1970-01-01 03:02:04", 4, 2, 3, {1, 0, 70, 0, 0, 0, 0, 0, 0}, 3 * 3600 + 2 * 60 + 4},
        {"the words of 2010-01-01 00:01:01", 1, 1, 0, {1, 0, 110, 0, 0, 0, 0, 0, 0}, 1262304000 + 61},
        {"words that are normalised", 2, 90, 25, {0, 12, 109, 4, 4, 0, 0, 0, 0}, 1262217600 + 25 * 3600 + 90 * 60 + 2},
        {"the epoch itself", 0, 0, 0, {1, 0, 70, 0, 0, 0, 0, 0, 0}, 0},
        {"before the epoch", 0, 0, 0, {1, 0, 69, 0, 0, 0, 0, 0, 0}, 0},
        {"never set", 0, 0, 0, {}, 0},
        {"past the last second", 0, 0, 0, {1, 0, 200, 0, 0, 0, 0, 0, 0}, 0},
        // Seconds, minutes and hours of an ordinary end are no day, month and year in the range of seconds.
        {"an ordinary end", 2, 2, 0, local_time(2024, 1, 1), 0},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        event().repeat_term = row.term;
        event().repeat_interval = row.interval;
        event().opaque_188 = row.behind;
        event().repeat_end_or_due.time = row.end;
        EXPECT_EQ(EventImpl_getRepeatIntN(1, 0), row.expected);
    }
}

TEST_F(RepeatCount, GoesByTheZoneOfTheDevice)
{
    event().repeat_end_or_due.time = {1, 0, 110, 0, 0, 0, 0, 0, 0};
    const time_zone zone(TOKYO);
    EXPECT_EQ(EventImpl_getRepeatIntN(1, 0), 1262304000 - 9 * 3600);
}

TEST_F(RepeatCount, ReadsTheSixthWordOfTheEndAsDaylightSaving)
{
    const time_zone zone(BERLIN);
    event().repeat_end_or_due.time = {1, 6, 110, 0, 0, 1, 0, 0, 0};
    const int32_t summer = EventImpl_getRepeatIntN(1, 0);
    event().repeat_end_or_due.time.year = 0;
    EXPECT_EQ(EventImpl_getRepeatIntN(1, 0), summer + 3600);
    EXPECT_EQ(summer, 1277935200) << "2010-07-01 00:00:00 in summer time";
}

// ---- End ------------------------------------------------------------------------------------------------------------

TEST_F(RepeatDate, OfTheEndIsInSeconds)
{
    event().repeat_end_or_due.time = local_time(2010, 1, 1);
    EXPECT_EQ(EventImpl_getRepeatDateN(1, 4), 1262304000);
    EXPECT_EQ(Java_com_qvr_zek_pim_EventImpl_getRepeatDateN(jni.env(), nullptr, HANDLE, 1, 4), 1262304000);
    expect_entered("EventImpl_getRepeatDateN");

    event().repeat_end_or_due.time = local_time(1960, 1, 1);
    EXPECT_EQ(EventImpl_getRepeatDateN(1, 4), -315619200) << "with all its bits";
}

TEST_F(RepeatDate, OfAnEndThatWasNeverSetOrThatMktimeRefusesIsMinusOne)
{
    EXPECT_EQ(EventImpl_getRepeatDateN(1, 4), -1);
    event().repeat_end_or_due.time = refused_time();
    EXPECT_EQ(EventImpl_getRepeatDateN(1, 4), -1);
}

TEST_F(RepeatDate, OfOtherFieldsIsZero)
{
    event().repeat_end_or_due.time = local_time(2010, 1, 1);
    for (int32_t field : {0, 1, 2, 3, 5, 6, 7, 8, 9, 102, -1})
        EXPECT_EQ(EventImpl_getRepeatDateN(1, field), 0) << field;
}

// ---- Fields ---------------------------------------------------------------------------------------------------------

TEST_F(RepeatFields, AreThoseOfTheTermWithTheEndFirst)
{
    struct row {
        const char* when;
        int32_t term;
        std::vector<int32_t> fields;
    };
    const row rows[] = {
        {"daily", 1, {6}},
        {"weekly", 2, {6, 2}},
        {"monthly", 3, {6, 1, 8, 2}},
        {"yearly", 4, {6, 3, 7, 8, 2, 1}},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        event().repeat_term = row.term;
        EXPECT_EQ(fields_of(1), row.fields);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP,
                                                    "qm4ruv : EventImpl_getRepeatFieldsN.org_sch_record.repeat_term "
                                                    "is %d\n",
                                                    "qm4ruv : EventImpl_getRepeatFieldsN.org_sch_record.repeat_term "
                                                    "is " +
                                                        std::to_string(row.term) + "\n")));
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "qm4ruv : EventImpl_getRepeatFieldsN.numFieldsSet %d\n",
                                                    "qm4ruv : EventImpl_getRepeatFieldsN.numFieldsSet " +
                                                        std::to_string(row.fields.size()) + "\n")));

        event().repeat_end_or_due.time = local_time(2010, 1, 1);
        std::vector<int32_t> with_end = {4};
        with_end.insert(with_end.end(), row.fields.begin(), row.fields.end());
        EXPECT_EQ(fields_of(1), with_end);
        start_over();
    }
}

TEST_F(RepeatFields, HaveNoEndThatIsNotBehindTheEpoch)
{
    event().repeat_term = 1;
    for (const broken_down_time& end :
         {broken_down_time(), refused_time(), local_time(1970, 1, 1), local_time(1969, 12, 31)}) {
        event().repeat_end_or_due.time = end;
        EXPECT_THAT(fields_of(1), ElementsAre(6)) << testing::PrintToString(end);
    }
    event().repeat_end_or_due.time = local_time(1970, 1, 1, 0, 0, 1);
    EXPECT_THAT(fields_of(1), ElementsAre(4, 6));
}

TEST_F(RepeatFields, AreMinusOneForAnEventThatDoesNotRepeatWhateverItsEnd)
{
    event().repeat_end_or_due.time = local_time(2010, 1, 1);
    for (int32_t term : {0, 5, -1, 16, std::numeric_limits<int32_t>::max()}) {
        event().repeat_term = term;
        EXPECT_THAT(fields_of(1), ElementsAre(-1)) << term;
    }
}

TEST_F(RepeatFields, ThroughTheNativeAreAnArrayOfTheirNumber)
{
    event().repeat_term = 4;
    event().repeat_end_or_due.time = local_time(2010, 1, 1);
    jintArray array = Java_com_qvr_zek_pim_EventImpl_getRepeatFieldsN(jni.env(), nullptr, HANDLE, 1);
    EXPECT_THAT(jni.values(array), ElementsAre(4, 6, 3, 7, 8, 2, 1));
    expect_entered("EventImpl_getRepeatFieldsN");
}

TEST_F(RepeatFields, ThroughTheNativeAreAnEmptyArrayWhereThereAreNone)
{
    for (int32_t recindex : {1, 4711}) {
        jintArray array = Java_com_qvr_zek_pim_EventImpl_getRepeatFieldsN(jni.env(), nullptr, HANDLE, recindex);
        ASSERT_NE(array, nullptr) << recindex;
        EXPECT_THAT(jni.values(array), IsEmpty()) << recindex;
    }
}

TEST_F(RepeatRule, IsTracedFirstInTheReadersName)
{
    const auto entry_of = [](const char* function) {
        return AllOf(Field(&trace_message::function, function), Field(&trace_message::calls_before, 0u));
    };
    EventImpl_getRepeatIntN(1, 6);
    EXPECT_THAT(platform.traces.front(), entry_of("EventImpl_getRepeatIntN"));
    start_over();
    EventImpl_getRepeatDateN(1, 4);
    EXPECT_THAT(platform.traces.front(), entry_of("EventImpl_getRepeatDateN"));
}

TEST_F(RepeatRule, HasNoExceptDates)
{
    jlongArray array = Java_com_qvr_zek_pim_EventImpl_getRepeatExceptDatesN(jni.env(), nullptr, HANDLE, 1);
    ASSERT_NE(array, nullptr);
    EXPECT_THAT(jni.values(array), IsEmpty());
    EXPECT_THAT(platform.calls, IsEmpty());
    expect_entered("EventImpl_getRepeatExceptDatesN");
}

// ---- When the store fails -------------------------------------------------------------------------------------------

TEST_F(RepeatRule, IsAnsweredByEachReaderInItsOwnWayWhenAStepFails)
{
    std::array<int32_t, REPEAT_FIELDS_MAX> fields = {};
    const reader_row rows[] = {
        {"EventImpl_getRepeatIntN", [] { return EventImpl_getRepeatIntN(1, 5); }, -1, {}, 0, -1, -1},
        {"EventImpl_getRepeatDateN", [] { return EventImpl_getRepeatDateN(1, 4); }, -1, {}, 0, -1, -1},
        {"EventImpl_getRepeatFieldsN", [&] { return EventImpl_getRepeatFieldsN(1, fields); }, -1, {}, -1, -1, -1},
    };
    for (const reader_row& row : rows) {
        expect_organizer_failures(row, LIST_EVENT, [&] {
            event().repeat_term = 2;
            event().repeat_end_or_due.time = local_time(2010, 1, 1);
        });
    }
}

} // namespace repeat_rule_test
