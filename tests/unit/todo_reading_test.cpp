// Reading to-dos: texts, dates, priority, completion, counts and field lists.
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "pimitemimpl_limo_arm.h"
#include "reader_frame.h"
#include "stored_records.h"
#include "time_zone.h"

namespace todo_reading_test {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// A store with one empty to-do, record 1.
class TodoReading : public reader_frame {
protected:
    void SetUp() override
    {
        reader_frame::SetUp();
        platform.add_item(ORG_TYPE_TODO, 1);
    }

    stored_item& todo() { return *platform.find_item(1); }

    static std::string string_of(int32_t field, int32_t index = 0)
    {
        char text[ITEM_TEXT_SIZE] = {};
        EXPECT_EQ(getTodoString(1, field, index, text), 1);
        return text;
    }

    static std::vector<int32_t> fields_of(int32_t recindex)
    {
        std::array<int32_t, LISTED_FIELDS_MAX> fields = {};
        const int32_t count = getField_todo(recindex, fields);
        return {fields.begin(), fields.begin() + count};
    }

    // Fills every field there is.
    void fill()
    {
        todo().summary = "Buy";
        todo().description = "milk";
        todo().record.priority = 2;
        todo().record.completed = 1;
        for (org_date_time org_full_record::*date :
             {&org_full_record::end_date_time, &org_full_record::repeat_end_or_due,
              &org_full_record::last_modified_time})
            (todo().record.*date).time = local_time(2010, 1, 1);
    }

    time_zone utc{UTC};
};

using TodoString = TodoReading;
using TodoDate = TodoReading;
using TodoPriority = TodoReading;
using TodoCompleted = TodoReading;
using TodoCount = TodoReading;
using TodoFields = TodoReading;
using TodoReaders = TodoReading;

struct text_row {
    const char* when;
    int32_t field;
    std::string stored_item::*text;
    size_t limit;
};

constexpr text_row TEXTS[] = {
    {"NOTE", 104, &stored_item::description, 1023},
    {"SUMMARY", 107, &stored_item::summary, 256},
};

struct date_row {
    const char* when;
    int32_t field;
    org_date_time org_full_record::*date;
};

constexpr date_row DATES[] = {
    {"COMPLETION_DATE", 102, &org_full_record::end_date_time},
    {"DUE", 103, &org_full_record::repeat_end_or_due},
    {"REVISION", 106, &org_full_record::last_modified_time},
};

constexpr int32_t LARGEST = std::numeric_limits<int32_t>::max(), SMALLEST = std::numeric_limits<int32_t>::min();

} // namespace

// ---- Strings --------------------------------------------------------------------------------------------------------

TEST_F(TodoString, IsTheTextOfItsField)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        todo().*row.text = "a text";
        for (int32_t index : {0, 1, -1, 1000000}) EXPECT_EQ(string_of(row.field, index), "a text") << index;
        for (const text_row& other : TEXTS) {
            if (other.field != row.field) {
                EXPECT_EQ(string_of(other.field), "") << other.when;
            }
        }
        start_over();
    }
}

TEST_F(TodoString, IsWholeUpToItsLimit)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        todo().*row.text = std::string(row.limit, 'x');
        EXPECT_EQ(string_of(row.field), std::string(row.limit, 'x'));
        start_over();
    }
}

TEST_F(TodoString, OfANoteOf1024BytesLosesItsLast)
{
    todo().description = std::string(1024, 'x');
    EXPECT_EQ(string_of(TODO_NOTE), std::string(1023, 'x'));
}

TEST_F(TodoString, IsEmptyForFieldsThatAreNoTexts)
{
    fill();
    todo().location = "a text that no to-do hands out";
    for (int32_t field : {99, 100, 101, 102, 103, 105, 106, 108, 0, -1}) EXPECT_EQ(string_of(field), "") << field;
}

TEST_F(TodoString, LeavesTheBufferAloneForAFieldWithoutText)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        char text[ITEM_TEXT_SIZE] = "as it was";
        EXPECT_EQ(getTodoString(1, row.field, 0, text), 1);
        EXPECT_STREQ(text, "as it was");
    }
}

TEST_F(TodoString, LeavesTheBufferAloneForARecordThatIsNotThere)
{
    char text[ITEM_TEXT_SIZE] = "as it was";
    EXPECT_EQ(getTodoString(4711, TODO_SUMMARY, 0, text), 0);
    EXPECT_STREQ(text, "as it was");
}

TEST_F(TodoString, IsEmptyWhereItsBufferCouldNotBeAllocated)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        fill();
        fail_allocations_of(row.field == TODO_NOTE ? 1025 : 257);
        EXPECT_EQ(string_of(row.field), "");
        EXPECT_EQ(count_values_todo(1, row.field), 0);
        start_over();
    }
}

// ---- Dates, priority and completion ---------------------------------------------------------------------------------

TEST_F(TodoDate, IsTheDateOfItsFieldInMilliseconds)
{
    for (const date_row& row : DATES) {
        SCOPED_TRACE(row.when);
        (todo().record.*row.date).time = local_time(2010, 1, 1);
        for (int32_t index : {0, 1, -1}) EXPECT_EQ(getTodoDate(1, row.field, index), INT64_C(1262304000000)) << index;
        const std::string code = std::to_string(row.field);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "getTodoDate recindex = %d field = %d index = %d\n",
                                                    "getTodoDate recindex = 1 field = " + code + " index = 0\n")));
        for (const date_row& other : DATES) {
            if (other.field != row.field) {
                EXPECT_EQ(getTodoDate(1, other.field, 0), -1000) << other.when;
            }
        }
        start_over();
    }
}

TEST_F(TodoDate, GoesByTheZoneOfTheDevice)
{
    todo().record.repeat_end_or_due.time = local_time(2024, 2, 29, 21, 34, 56);
    const time_zone zone(TOKYO);
    EXPECT_EQ(getTodoDate(1, TODO_DUE, 0), INT64_C(1709210096000));
}

TEST_F(TodoDate, IsMinusAThousandForADateThatWasNeverSetOrThatMktimeRefuses)
{
    for (const date_row& row : DATES) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(getTodoDate(1, row.field, 0), -1000);
        (todo().record.*row.date).time = refused_time();
        EXPECT_EQ(getTodoDate(1, row.field, 0), -1000);
    }
}

TEST_F(TodoDate, IsZeroForAnyOtherField)
{
    fill();
    for (int32_t field : {99, 100, 101, 104, 105, 107, 108, 0, -1}) EXPECT_EQ(getTodoDate(1, field, 0), 0) << field;
}

TEST_F(TodoPriority, IsTheStoresLevelWhereItIsOne)
{
    struct row {
        int32_t stored, read, count;
    };
    for (const row& row : {row{0, 0, 1},
                           {1, 1, 1},
                           {2, 2, 1},
                           {3, 0, 0},
                           {5, 0, 0},
                           {9, 0, 0},
                           {-1, 0, 0},
                           {LARGEST, 0, 0},
                           {SMALLEST, 0, 0}}) {
        SCOPED_TRACE(row.stored);
        todo().record.priority = row.stored;
        EXPECT_EQ(getTodoInt(1, TODO_PRIORITY, 0), row.read);
        EXPECT_EQ(count_values_todo(1, TODO_PRIORITY), row.count);
    }
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "getTodoInt ORG_PRIORITY_LOW %d and ORG_PRIORITY_HIGH %d ",
                                                "getTodoInt ORG_PRIORITY_LOW 0 and ORG_PRIORITY_HIGH 2 ")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "getTodoInt recindex = %d field = %d index = %d\n",
                                                "getTodoInt recindex = 1 field = 105 index = 0\n")));
}

TEST_F(TodoPriority, IsTheOnlyNumberOfAToDo)
{
    fill();
    for (int32_t field : {99, 100, 101, 102, 103, 104, 106, 107, 108, 0, -1})
        EXPECT_EQ(getTodoInt(1, field, 0), 0) << field;
}

TEST_F(TodoCompleted, IsWhetherTheFlagIsNotZero)
{
    for (int32_t flag : {1, 2, -1, 256, LARGEST, SMALLEST}) {
        todo().record.completed = flag;
        EXPECT_EQ(getTodoBool(1, TODO_COMPLETED, 0), 1) << flag;
    }
    todo().record.completed = 0;
    EXPECT_EQ(getTodoBool(1, TODO_COMPLETED, 0), 0);
}

TEST_F(TodoCompleted, IsTheOnlyBooleanOfAToDo)
{
    fill();
    for (int32_t field : {99, 100, 102, 103, 104, 105, 106, 107, 108, 0, -1})
        EXPECT_EQ(getTodoBool(1, field, 0), 0) << field;
}

// ---- Counts and field lists -----------------------------------------------------------------------------------------

TEST_F(TodoCount, OfATextGoesByItsFirstByte)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(count_values_todo(1, row.field), 0);
        todo().*row.text = "x";
        EXPECT_EQ(count_values_todo(1, row.field), 1);
        EXPECT_THAT(platform.traces,
                    Contains(trace(TRACE_STEP, "count_values_todo recindex = %d field = %d\n",
                                   "count_values_todo recindex = 1 field = " + std::to_string(row.field) + "\n")));
        start_over();
    }
}

TEST_F(TodoCount, OfADateGoesByWhetherMktimeTakesIt)
{
    for (const date_row& row : DATES) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(count_values_todo(1, row.field), 0) << "never set";
        (todo().record.*row.date).time = local_time(2010, 1, 1);
        EXPECT_EQ(count_values_todo(1, row.field), 1);
        (todo().record.*row.date).time = refused_time();
        EXPECT_EQ(count_values_todo(1, row.field), 0);
        start_over();
    }
}

TEST_F(TodoCount, OfCompletedIsAlwaysOne)
{
    for (int32_t flag : {0, 1, -1}) {
        todo().record.completed = flag;
        EXPECT_EQ(count_values_todo(1, TODO_COMPLETED), 1) << flag;
    }
}

TEST_F(TodoCount, OfAnyOtherCodeIsZero)
{
    fill();
    for (int32_t field : {99, 100, 108, 109, 0, -1, 0x1000000}) EXPECT_EQ(count_values_todo(1, field), 0) << field;
}

TEST_F(TodoFields, AreListedInTheirFixedOrder)
{
    fill();
    EXPECT_THAT(fields_of(1), ElementsAre(104, 107, 101, 102, 103, 106, 105));
    EXPECT_EQ(platform.calls_of("org_db_service_connect_database").size(), 7u);
}

TEST_F(TodoFields, OfAnEmptyToDoAreCompletedAndPriority)
{
    EXPECT_THAT(fields_of(1), ElementsAre(101, 105));
    todo().record.priority = 5;
    EXPECT_THAT(fields_of(1), ElementsAre(101));
}

TEST_F(TodoFields, AreNoneForARecordThatIsNotThere)
{
    EXPECT_THAT(fields_of(4711), IsEmpty());
}

TEST_F(TodoFields, AreAllListedWhenTheStoreCannotBeOpened)
{
    platform.fail("org_db_service_connect_database", 1);
    EXPECT_THAT(fields_of(1), ElementsAre(104, 107, 101, 102, 103, 106, 105)) << "a count of -1 is not 0";
}

// ---- When the store fails -------------------------------------------------------------------------------------------

TEST_F(TodoReaders, AnswerEachInItsOwnWayWhenAStepFails)
{
    char text[ITEM_TEXT_SIZE] = {};
    const reader_row rows[] = {
        {"getTodoString",
         [&] { return getTodoString(1, TODO_SUMMARY, 0, text); },
         1,
         {},
         0,
         1,
         1,
         "org_db_service_get_record_full_field_by_index() failed...\n"},
        {"getTodoInt", [] { return getTodoInt(1, TODO_PRIORITY, 0); }, -1, -1, 0, -1, -1},
        // Kept: a store that cannot be reached reads as completed.
        {"getTodoBool", [] { return getTodoBool(1, TODO_COMPLETED, 0); }, 1, 1, 0, 1, 1},
        {"getTodoDate", [] { return getTodoDate(1, TODO_DUE, 0); }, -1, -1, 0, -1, -1},
        {"count_values_todo", [] { return count_values_todo(1, TODO_COMPLETED); }, -1, {}, 0, -1, -1},
    };
    for (const reader_row& row : rows) expect_organizer_failures(row, LIST_TODO, [&] { fill(); });
}

TEST_F(TodoReaders, ReadAsCompletedWhenTheStoreCannotBeReached)
{
    todo().record.completed = 0;
    platform.fail("org_db_service_connect_database", 1);
    EXPECT_EQ(getTodoBool(1, TODO_COMPLETED, 0), 1);
    EXPECT_EQ(getTodoBool(1, 999, 0), 1) << "of any field";
}

} // namespace todo_reading_test
