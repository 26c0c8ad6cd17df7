// Committing to-dos: how the values of a request become an organizer record, and when it is stored.
#include <limits>
#include <string>
#include <vector>

#include "commit_values.h"
#include "pimitemimpl_limo_arm.h"
#include "stored_records.h"
#include "time_zone.h"
#include "unit_test.h"

namespace todo_commit_test {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Not;

namespace {

class TodoCommit : public unit_test {
protected:
    static int32_t commit(commit_values values, int32_t recindex = 0)
    {
        return pimItemImpl_todo_commitN(values.request(recindex));
    }

    // Commits a new to-do and gives what the store holds then.
    stored_item& added(commit_values values)
    {
        const int32_t recindex = commit(values);
        EXPECT_GE(recindex, 1);
        return *platform.find_item(recindex);
    }

    time_zone utc{UTC};
};

using TodoCommitTexts = TodoCommit;
using TodoCommitOverlong = TodoCommit;
using TodoCommitNumbers = TodoCommit;
using TodoCommitFailure = TodoCommit;

struct text_row {
    const char* when;
    int32_t field;
    size_t limit;
    std::string stored_item::*stored;
};

constexpr text_row TEXTS[] = {
    {"NOTE", 104, 1024, &stored_item::description},
    {"SUMMARY", 107, 256, &stored_item::summary},
};

struct date_row {
    const char* when;
    int32_t code;
    org_date_time org_full_record::*date;
};

constexpr date_row DATES[] = {
    {"COMPLETION_DATE", 102, &org_full_record::end_date_time},
    {"DUE", 103, &org_full_record::repeat_end_or_due},
    {"REVISION", 106, &org_full_record::last_modified_time},
};

struct refusal_row {
    const char* function;
    int32_t recindex;
    const char* format;
    const char* text;
};

const refusal_row REFUSALS[] = {
    {"org_db_service_add_record_full_field", 0, "org_db_service_add_record_full_field is failed (error : %d)\n",
     "org_db_service_add_record_full_field is failed (error : 171)\n"},
    {"org_db_service_update_record_full_field", 1, "org_db_service_update_record_full_field is failed (error : %d)\n",
     "org_db_service_update_record_full_field is failed (error : 171)\n"},
};

std::string xs(size_t count)
{
    return std::string(count, 'x');
}

} // namespace

// ---- Texts ----------------------------------------------------------------------------------------------------------

TEST_F(TodoCommitTexts, GoToTheirFields)
{
    const stored_item& todo = added(commit_values().text(107, "Buy").text(104, "milk"));
    EXPECT_EQ(todo.summary, "Buy");
    EXPECT_EQ(todo.description, "milk");
    EXPECT_EQ(todo.location, "");
}

TEST_F(TodoCommitTexts, AreTakenUpToTheirLimit)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(added(commit_values().text(row.field, xs(row.limit))).*row.stored, xs(row.limit));
        EXPECT_EQ(platform.calls_of("org_db_service_disconnect_database").size(), 1u);
        start_over();
    }
}

TEST_F(TodoCommitTexts, ThatAreNullTakeTheirPlaceAndNothingElse)
{
    const stored_item& todo = added(commit_values().text(107, std::nullopt).text(104, "milk"));
    EXPECT_EQ(todo.summary, "");
    EXPECT_EQ(todo.description, "milk");
}

TEST_F(TodoCommitTexts, OfTheSameFieldReplaceEachOther)
{
    EXPECT_EQ(added(commit_values().text(107, "a longer first").text(107, "second")).summary, "second");
}

TEST_F(TodoCommitTexts, OfOtherCodesAreTracedAndIgnored)
{
    for (int32_t field : {99, 100, 101, 102, 103, 105, 106, 108, 0, -1, 0x1000000}) {
        SCOPED_TRACE(field);
        const stored_item& todo = added(commit_values().text(field, xs(2000)).text(107, "Buy"));
        EXPECT_EQ(todo.summary, "Buy");
        EXPECT_EQ(todo.description, "");
        EXPECT_EQ(todo.location, "");
        EXPECT_THAT(platform.traces,
                    Contains(trace(TRACE_STEP, "unknown field:%d\n", "unknown field:" + std::to_string(field) + "\n")));
        start_over();
    }
}

TEST_F(TodoCommitTexts, IgnoreAttributesAndValueIndexes)
{
    EXPECT_EQ(added(commit_values().text(107, "Buy", 512, -1).number(101, 1, -7)).summary, "Buy");
}

TEST_F(TodoCommitTexts, WhoseBufferCouldNotBeAllocatedAreSkipped)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        fail_allocations_of(row.limit + 1);
        const stored_item& todo = added(commit_values().text(104, "NOTE").text(107, "SUMMARY"));
        for (const text_row& text : TEXTS)
            EXPECT_EQ(todo.*text.stored, text.field == row.field ? "" : text.when) << text.when;
        start_over();
    }
}

// ---- Texts that are too long ----------------------------------------------------------------------------------------

// Kept: the to-do is stored without them, after a first close and before a second one.
TEST_F(TodoCommitOverlong, TextsAreDroppedFromATodoThatIsStored)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        const stored_item& todo = added(commit_values().text(row.field, xs(row.limit + 1)).number(103, 0));
        EXPECT_EQ(todo.*row.stored, "");
        EXPECT_EQ(todo.record.repeat_end_or_due.time, (broken_down_time{0, 0, 0, 1, 0, 70, 4, 0, 0}));
        EXPECT_EQ(todo.record.kind, 2);
        EXPECT_THAT(platform.calls,
                    ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()",
                                "org_db_service_disconnect_database()", "org_db_service_free_full_record()",
                                "org_db_service_add_record_full_field(9)", "org_db_service_disconnect_database()",
                                "org_db_service_free_full_record()"));
        start_over();
    }
}

TEST_F(TodoCommitOverlong, TextsDropNoOther)
{
    struct row {
        const char* when;
        commit_values values;
        std::string summary, description;
    };
    const row rows[] = {
        {"the summary, before the note", commit_values().text(107, xs(300)).text(104, "milk"), "", "milk"},
        {"the summary, behind the note", commit_values().text(104, "milk").text(107, xs(300)), "", "milk"},
        {"the note, behind the summary", commit_values().text(107, "Buy").text(104, xs(1025)), "Buy", ""},
        {"the note, before a full summary", commit_values().text(104, xs(5000)).text(107, xs(256)), xs(256), ""},
        {"both", commit_values().text(107, xs(257)).text(104, xs(1025)), "", ""},
        {"the second of two summaries", commit_values().text(107, "first").text(107, xs(257)), "first", ""},
        {"the first of two summaries", commit_values().text(107, xs(257)).text(107, "second"), "second", ""},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        const stored_item added_todo = added(row.values);
        EXPECT_EQ(added_todo.summary, row.summary);
        EXPECT_EQ(added_todo.description, row.description);
        start_over();

        platform.add_item(ORG_TYPE_TODO, 1, "old").description = "old";
        EXPECT_EQ(commit(row.values, 1), 1);
        EXPECT_EQ(platform.find_item(1)->summary, row.summary);
        EXPECT_EQ(platform.find_item(1)->description, row.description);
        EXPECT_EQ(platform.calls_of("org_db_service_disconnect_database").size(), 2u);
        start_over();
    }
}

TEST_F(TodoCommitOverlong, TextsLeaveNothingReleasedInTheRecord)
{
    int releases = 0;
    platform.before_call = [&](const std::string& call) {
        if (call == "org_db_service_add_record_full_field(9)") {
            EXPECT_EQ(unreleased_blocks(), 0u);
        }
        if (call != "org_db_service_free_full_record()") return;
        ++releases;
        EXPECT_EQ(unreleased_blocks(), releases == 1 ? 7u : 0u);
    };
    added(commit_values().text(107, xs(300)).text(104, "milk"));
    EXPECT_EQ(releases, 2);
}

TEST_F(TodoCommitOverlong, TextsDoNotBringBackOneWhoseBufferCouldNotBeAllocated)
{
    fail_allocations_of(1025);
    EXPECT_EQ(added(commit_values().text(104, "milk").text(107, xs(300))).description, "");
}

TEST_F(TodoCommitOverlong, TextsFailTheCommitWhenTheFirstCloseFails)
{
    for (const char* function : {"org_db_service_disconnect_database", "org_db_service_free_full_record"}) {
        SCOPED_TRACE(function);
        platform.fail_call(function, 1, 91);
        EXPECT_EQ(commit(commit_values().text(107, xs(300))), -1);
        EXPECT_THAT(platform.items, IsEmpty());
        EXPECT_EQ(platform.calls_of("org_db_service_disconnect_database").size(), 1u);
        EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_todo_commitN")));
        keep_blocks("a connection that would not close keeps the record's buffers");
        start_over();
    }
}

TEST_F(TodoCommitOverlong, TextsFailTheCommitWhenTheSecondCloseFails)
{
    platform.fail_call("org_db_service_disconnect_database", 2, 92);
    EXPECT_EQ(commit(commit_values().text(107, xs(300)).text(104, "milk")), -1);
    EXPECT_EQ(platform.items.back().description, "milk");
    EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_todo_commitN")));
}

TEST_F(TodoCommitOverlong, TextsFailTheCommitWhenTheStoreRefusesIt)
{
    for (const refusal_row& row : REFUSALS) {
        SCOPED_TRACE(row.function);
        platform.add_item(ORG_TYPE_TODO, 1, "old");
        platform.fail(row.function, 171);
        EXPECT_EQ(commit(commit_values().text(107, xs(300)).text(104, "milk"), row.recindex), -1);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, row.format, row.text)));
        EXPECT_EQ(platform.calls_of("org_db_service_disconnect_database").size(), 2u);
        EXPECT_EQ(platform.find_item(1)->summary, "old");
        start_over();
    }
}

// ---- Numbers and dates ----------------------------------------------------------------------------------------------

TEST_F(TodoCommitNumbers, CompleteATodoWhenTheValueIsExactlyOne)
{
    struct row {
        int64_t value;
        int32_t completed;
    };
    for (const row& row : {row{1, 1}, {0, 0}, {2, 0}, {-1, 0}, {(INT64_C(1) << 32) + 1, 0}})
        EXPECT_EQ(added(commit_values().number(101, row.value)).record.completed, row.completed) << row.value;
    EXPECT_EQ(added(commit_values().number(101, 1).number(101, 2)).record.completed, 0) << "the last one counts";
}

TEST_F(TodoCommitNumbers, KeepAPriorityAsItIs)
{
    struct row {
        int64_t value;
        int32_t stored, read;
    };
    for (const row& row :
         {row{0, 0, 0}, {1, 1, 1}, {2, 2, 2}, {5, 5, 0}, {9, 9, 0}, {-1, -1, 0}, {(INT64_C(1) << 32) + 2, 2, 2}}) {
        SCOPED_TRACE(row.value);
        const stored_item& todo = added(commit_values().number(105, row.value));
        EXPECT_EQ(todo.record.priority, row.stored);
        EXPECT_EQ(getTodoInt(todo.record.index, TODO_PRIORITY, 0), row.read);
    }
}

TEST_F(TodoCommitNumbers, KeepDatesAsLocalTime)
{
    const time_zone zone(BERLIN);
    for (const date_row& row : DATES) {
        SCOPED_TRACE(row.when);
        const stored_item& todo = added(commit_values().number(row.code, INT64_C(1720000000999)));
        for (const date_row& other : DATES) {
            const org_date_time& date = todo.record.*other.date;
            EXPECT_EQ(date.time, other.code == row.code ? (broken_down_time{40, 46, 11, 3, 6, 124, 3, 184, 1})
                                                        : broken_down_time())
                << other.when;
            EXPECT_EQ(date.gmtoff, 0);
            EXPECT_EQ(date.zone, 0u);
        }
    }
}

TEST_F(TodoCommitNumbers, KeepACompletionDateOfZeroAsTheEpoch)
{
    const time_zone zone(TOKYO);
    EXPECT_EQ(added(commit_values().number(102, 0)).record.end_date_time.time,
              (broken_down_time{0, 0, 9, 1, 0, 70, 4, 0, 0}));
}

TEST_F(TodoCommitNumbers, OfOtherCodesAreIgnoredWithoutATrace)
{
    for (int32_t code : {0, 4, 5, 6, 99, 100, 104, 107, 108, -1}) {
        SCOPED_TRACE(code);
        const stored_item todo = added(commit_values().number(code, INT64_C(1720000000000)));
        org_full_record untouched = {};
        untouched.index = todo.record.index;
        untouched.kind = 2;
        EXPECT_EQ(bytes_of(todo.record), bytes_of(untouched));
        EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::text, testing::HasSubstr("unknown")))));
        start_over();
    }
}

// ---- Storing --------------------------------------------------------------------------------------------------------

TEST_F(TodoCommit, AddsANewTodoForAnIndexBelowOne)
{
    for (int32_t recindex : {0, -1, std::numeric_limits<int32_t>::min()}) {
        SCOPED_TRACE(recindex);
        platform.add_item(ORG_TYPE_EVENT, 4);
        EXPECT_EQ(commit(commit_values().text(107, "Buy"), recindex), 5) << "the index that the store gave it";
        EXPECT_EQ(platform.find_item(5)->type, ORG_TYPE_TODO);
        EXPECT_EQ(platform.find_item(5)->record.kind, 2);
        EXPECT_THAT(platform.calls,
                    ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()",
                                "org_db_service_add_record_full_field(9)", "org_db_service_disconnect_database()",
                                "org_db_service_free_full_record()"));
        start_over();
    }
}

TEST_F(TodoCommit, IsTracedFirstInItsName)
{
    added(commit_values());
    EXPECT_THAT(platform.traces.front(), AllOf(Field(&trace_message::function, "pimItemImpl_todo_commitN"),
                                               Field(&trace_message::calls_before, 0u)));
}

TEST_F(TodoCommit, LooksAtNoEntryBehindTheCounts)
{
    const stored_item& todo = added(commit_values()
                                        .text(TODO_NOTE, "note")
                                        .text(TODO_SUMMARY, "behind")
                                        .number(TODO_DUE, 0)
                                        .number(TODO_COMPLETION_DATE, 5000)
                                        .without_counting_the_last());
    EXPECT_EQ(todo.description, "note");
    EXPECT_EQ(todo.summary, "");
    EXPECT_EQ(todo.record.repeat_end_or_due.time.year, 70);
    EXPECT_EQ(todo.record.end_date_time.time.year, 0);
}

TEST_F(TodoCommit, ReplacesTheWholeStoredTodo)
{
    stored_item& todo = platform.add_item(ORG_TYPE_TODO, 3, "old");
    todo.description = "old";
    todo.record.completed = 1;
    todo.record.priority = 2;
    for (const date_row& row : DATES) (todo.record.*row.date).time = local_time(2010, 1, 1);

    EXPECT_EQ(commit(commit_values().text(107, "new"), 3), 3);
    const stored_item& stored = *platform.find_item(3);
    EXPECT_EQ(stored.summary, "new");
    EXPECT_EQ(stored.description, "");
    org_full_record expected = {};
    expected.index = 3;
    expected.kind = 2;
    EXPECT_EQ(bytes_of(stored.record), bytes_of(expected));
    EXPECT_THAT(platform.calls_between_connections(), ElementsAre("org_db_service_update_record_full_field(3)"));
}

TEST_F(TodoCommit, LeavesYearsAlone)
{
    const stored_item& todo =
        added(commit_values().number(102, 0).number(103, INT64_C(1720000000000)).number(106, INT64_C(1720000000000)));
    EXPECT_EQ(todo.record.end_date_time.time.year, 70);
    EXPECT_EQ(todo.record.repeat_end_or_due.time.year, 124);
}

// ---- Failures -------------------------------------------------------------------------------------------------------

TEST_F(TodoCommitFailure, IsMinusOneWhenTheStoreCannotBeOpened)
{
    platform.fail("org_db_service_connect_database", 81);
    EXPECT_EQ(commit(commit_values().text(107, "Buy")), -1);
    EXPECT_THAT(platform.calls, ElementsAre("org_db_service_connect_database()"));
    start_over();

    platform.fail("org_db_service_init_full_record", 82);
    EXPECT_EQ(commit(commit_values().text(107, "Buy")), -1);
    EXPECT_THAT(platform.calls_of("org_db_service_add_record_full_field"), IsEmpty());
    keep_connection("a refused opening is not followed by a close");
}

TEST_F(TodoCommitFailure, OfTheStoreIsMinusOneAfterOneClose)
{
    for (const refusal_row& row : REFUSALS) {
        SCOPED_TRACE(row.function);
        platform.add_item(ORG_TYPE_TODO, 1, "old");
        platform.fail(row.function, 171);
        EXPECT_EQ(commit(commit_values().text(107, "new"), row.recindex), -1);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, row.format, row.text)));
        EXPECT_EQ(platform.calls_of("org_db_service_disconnect_database").size(), 1u);
        EXPECT_EQ(platform.calls_of("org_db_service_free_full_record").size(), 1u);
        EXPECT_EQ(platform.find_item(1)->summary, "old");
        start_over();
    }
}

TEST_F(TodoCommitFailure, OfTheStoreIsMinusOneWhateverTheCloseReturns)
{
    for (const refusal_row& row : REFUSALS) {
        SCOPED_TRACE(row.function);
        platform.add_item(ORG_TYPE_TODO, 1, "old");
        platform.fail(row.function, 171);
        platform.fail("org_db_service_disconnect_database", 83);
        EXPECT_EQ(commit(commit_values().text(107, "new"), row.recindex), -1);
        EXPECT_EQ(platform.calls_of("org_db_service_disconnect_database").size(), 1u);
        keep_blocks("a connection that would not close keeps the record's buffers");
        start_over();
    }
}

TEST_F(TodoCommitFailure, OfTheCloseIsMinusOneThoughTheTodoIsStored)
{
    for (const char* function : {"org_db_service_disconnect_database", "org_db_service_free_full_record"}) {
        for (int32_t recindex : {0, 1}) {
            SCOPED_TRACE(testing::Message() << function << ", record " << recindex);
            platform.add_item(ORG_TYPE_TODO, 1);
            platform.fail(function, 84);
            EXPECT_EQ(commit(commit_values().text(107, "new"), recindex), -1);
            EXPECT_EQ(platform.items.back().summary, "new");
            EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_todo_commitN")));
            keep_blocks("a connection that would not close keeps the record's buffers");
            start_over();
        }
    }
}

} // namespace todo_commit_test
