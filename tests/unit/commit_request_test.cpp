// PIMItemImpl.commitN: from Java arrays to a commit, and back to a record index.
#include <ctime>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "commit_values.h"
#include "pimcodes.h"
#include "stored_records.h"
#include "unit_test.h"

namespace commit_request_test {

using testing::AnyOfArray;
using testing::Contains;
using testing::Each;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

constexpr char PIM_EXCEPTION[] = "javax/microedition/pim/PIMException";
constexpr char COMMIT[] = "Java_com_qvr_zek_pim_PIMItemImpl_commitN";

using texts = std::vector<std::optional<std::string>>;

// The arguments of one commitN, null arrays included.
struct java_arguments {
    jint listtype = LIST_CONTACT;
    jint recindex = 0;
    std::optional<std::vector<jint>> stringids = std::vector<jint>{0};
    std::optional<texts> strings = texts();
    std::optional<std::vector<jint>> ints = std::vector<jint>();
    std::optional<std::vector<jbyte>> bytes = std::vector<jbyte>();
    std::optional<std::vector<jlong>> longs = std::vector<jlong>{0};
    std::optional<texts> categories = texts{"0"};
    jint numcats = 0;
};

class CommitRequestTest : public unit_test {
protected:
    jint commit(const java_arguments& with)
    {
        return Java_com_qvr_zek_pim_PIMItemImpl_commitN(
            jni.env(), nullptr, with.listtype, 99, with.recindex, with.stringids ? jni.ints(*with.stringids) : nullptr,
            with.strings ? jni.byte_arrays(*with.strings) : nullptr, with.ints ? jni.ints(*with.ints) : nullptr,
            with.bytes ? jni.bytes(*with.bytes) : nullptr, with.longs ? jni.longs(*with.longs) : nullptr,
            with.categories ? jni.strings(*with.categories) : nullptr, with.numcats);
    }

    void expect_raised(const std::string& message)
    {
        ASSERT_TRUE(jni.pending);
        EXPECT_THAT(*jni.pending, exception(PIM_EXCEPTION, message));
        ASSERT_THAT(jni.constructed, SizeIs(1));
        EXPECT_EQ(jni.constructed[0]->reason, 1);
        keep_exception("the failure as it reaches Java");
    }

    // The commit failed without any word to a store.
    void expect_no_store_call()
    {
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, std::string(COMMIT) + " FAIL(%d)\n",
                                                    std::string(COMMIT) + " FAIL(-1)\n")));
    }
};

using CommitDispatch = CommitRequestTest;
using CommitTexts = CommitRequestTest;
using CommitCategories = CommitRequestTest;
using CommitCounts = CommitRequestTest;
using CommitResult = CommitRequestTest;
using CommitFailure = CommitRequestTest;

// One of each: a phone, a nickname, a birthday, two categories.
java_arguments a_contact()
{
    return {.stringids = std::vector<jint>{2, CONTACT_TEL, 0, ATTR_HOME, CONTACT_NICKNAME, 0, 0},
            .strings = texts{"030", "nick"},
            .ints = std::vector<jint>{7, 8},
            .bytes = std::vector<jbyte>{9},
            .longs = std::vector<jlong>{1, CONTACT_BIRTHDAY, 0, 0, 1262304000000},
            .categories = texts{"2", "Work", "Home"},
            .numcats = 2};
}

} // namespace

// ---- Dispatch -------------------------------------------------------------------------------------------------------

TEST_F(CommitDispatch, GoesToTheCommitOfTheList)
{
    struct row {
        const char* when;
        jint listtype;
        const char* stored_by;
    };
    for (const row& row : {row{"contacts", LIST_CONTACT, "contact_db_service_contact_add()"},
                           {"events", LIST_EVENT, "org_db_service_add_record_full_field(8)"},
                           {"to-dos", LIST_TODO, "org_db_service_add_record_full_field(9)"}}) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(commit({.listtype = row.listtype}), 1);
        EXPECT_THAT(platform.calls, Contains(row.stored_by));
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "%s ***\n", std::string(COMMIT) + " ***\n")));
        start_over();
    }
}

TEST_F(CommitDispatch, OfAnUnknownListCallsNothingAndGivesZero)
{
    for (jint listtype : {0, 4, -1, 1000}) {
        SCOPED_TRACE(listtype);
        java_arguments arguments = a_contact();
        arguments.listtype = listtype;
        EXPECT_EQ(commit(arguments), 0);
        EXPECT_THAT(platform.calls, IsEmpty());
    }
}

TEST_F(CommitDispatch, HandsOverAllValues)
{
    platform.add_group(3, "Work");
    platform.add_group(4, "Home");
    EXPECT_EQ(commit(a_contact()), 1);
    const stored_contact& contact = *platform.find_contact(1);
    ASSERT_THAT(contact.phones, SizeIs(1));
    EXPECT_STREQ(contact.phones[0].number, "030");
    EXPECT_EQ(contact.phones[0].type, CONTACT_PHONE_HOME);
    EXPECT_STREQ(contact.record.nickname, "nick");
    EXPECT_EQ(contact.record.birthday.year, 110);
    EXPECT_EQ(contact.record.membership[3], 1);
    EXPECT_EQ(contact.record.membership[4], 1);
}

TEST_F(CommitDispatch, HandsOverTheRecordIndex)
{
    for (jint recindex : {7, 1}) {
        platform.add_contact(recindex);
        java_arguments arguments = a_contact();
        arguments.recindex = recindex;
        EXPECT_EQ(commit(arguments), recindex);
        EXPECT_STREQ(platform.find_contact(recindex)->record.nickname, "nick");
    }
    EXPECT_THAT(platform.calls_of("contact_db_service_contact_add"), IsEmpty());
}

TEST_F(CommitDispatch, ReleasesAllElementsWithoutCopyingBack)
{
    commit(a_contact());
    EXPECT_THAT(jni.calls_of("ReleaseIntArrayElements"), SizeIs(2));
    EXPECT_THAT(jni.calls_of("ReleaseLongArrayElements"), SizeIs(1));
    EXPECT_THAT(jni.calls_of("ReleaseByteArrayElements"), SizeIs(3)) << "two texts and the bytes";
    for (const char* function : {"ReleaseIntArrayElements", "ReleaseLongArrayElements", "ReleaseByteArrayElements"})
        EXPECT_THAT(jni.calls_of(function), Each(HasSubstr("JNI_ABORT")));
    EXPECT_THAT(jni.calls_of("ReleaseStringUTFChars"), SizeIs(3)) << "the count and two names";
}

TEST_F(CommitDispatch, TracesWhatItUnpacks)
{
    commit(a_contact());
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "stringsize = %d stringid = %d\n", "stringsize = 2 stringid = 2\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "categorysize = %d\n", "categorysize = 3\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "numbcat = %d\n", "numbcat = 2\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "category[%d] = %s\n", "category[0] = Work\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "category[%d] = %s\n", "category[1] = Home\n")));
    EXPECT_THAT(platform.traces,
                Contains(Field(&trace_message::format, "free memory start stringsize = %d realcategorysize = %d\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "returnindex : %d\n", "returnindex : 1\n")));
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "66 #########################################\n")));
    EXPECT_THAT(platform.traces, Contains(Field(&trace_message::format, "hour : %d min : %d sec : %d\n")));
}

TEST_F(CommitDispatch, TracesTheTimeOfDayInUtc)
{
    const time_t before = time(nullptr);
    commit(a_contact());
    const time_t after = time(nullptr);
    std::vector<std::string> texts;
    for (time_t moment = before; moment <= after; ++moment) {
        const auto of_day = static_cast<int>(moment % 86400);
        texts.push_back("hour : " + std::to_string(of_day / 3600) + " min : " + std::to_string(of_day / 60 % 60) +
                        " sec : " + std::to_string(of_day % 60) + "\n");
    }
    EXPECT_THAT(platform.traces, Contains(Field(&trace_message::text, AnyOfArray(texts))));
}

TEST_F(CommitDispatch, HoldsOneLocalReferenceAtATime)
{
    commit(a_contact());
    EXPECT_EQ(jni.local_reference_peak, 1u);
}

TEST_F(CommitDispatch, TakesNullArraysForEmptyOnes)
{
    for (jint listtype : {LIST_CONTACT, LIST_EVENT, LIST_TODO}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(commit({.listtype = listtype,
                          .stringids = std::nullopt,
                          .strings = std::nullopt,
                          .ints = std::nullopt,
                          .bytes = std::nullopt,
                          .longs = std::nullopt,
                          .categories = std::nullopt}),
                  1);
        EXPECT_EQ(platform.contacts.size() + platform.items.size(), 1u);
        if (listtype == LIST_CONTACT) {
            EXPECT_THAT(platform.traces, Contains(trace_text(TRACE_STEP, "stringids[0] : 0, longvalue[0] : 0\n")));
        }
        start_over();
    }
}

TEST_F(CommitDispatch, TakesArraysWithoutAnElement)
{
    for (jint listtype : {LIST_CONTACT, LIST_EVENT, LIST_TODO}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(commit({.listtype = listtype,
                          .stringids = std::vector<jint>(),
                          .longs = std::vector<jlong>(),
                          .categories = texts()}),
                  1);
        start_over();
    }
}

TEST_F(CommitDispatch, TakesMoreElementsThanItsCountsSay)
{
    java_arguments arguments = a_contact();
    arguments.stringids->insert(arguments.stringids->end(), {CONTACT_ORG, 0, 0});
    arguments.strings->insert(arguments.strings->end(), "unused");
    arguments.longs->insert(arguments.longs->end(), {CONTACT_REVISION, 0, 0, 1000});
    arguments.categories->push_back("unused");
    EXPECT_EQ(commit(arguments), 1);
    EXPECT_STREQ(platform.find_contact(1)->record.company_name, "");
    EXPECT_EQ(platform.find_contact(1)->record.save_time.sec, 0);
}

// ---- Texts ----------------------------------------------------------------------------------------------------------

TEST_F(CommitTexts, AreTheBytesAsTheyAre)
{
    const std::string bytes = "caf\xc3\xa9 \xed\xa0\xbd\xed\xb8\x80 \xff";
    EXPECT_EQ(commit({.stringids = std::vector<jint>{1, CONTACT_NICKNAME, 0, 0}, .strings = texts{bytes}}), 1);
    EXPECT_EQ(platform.find_contact(1)->record.nickname, bytes);
}

TEST_F(CommitTexts, EndAtTheirFirstNul)
{
    EXPECT_EQ(commit({.stringids = std::vector<jint>{2, CONTACT_NICKNAME, 0, 0, CONTACT_ORG, 0, 0},
                      .strings = texts{std::string("nick\0name", 9), ""}}),
              1);
    EXPECT_STREQ(platform.find_contact(1)->record.nickname, "nick");
    EXPECT_STREQ(platform.find_contact(1)->record.company_name, "");
}

TEST_F(CommitTexts, ThatAreNullAreToldToTheConsoleAndSkipped)
{
    jint result = 0;
    const std::string console = console_of([&] {
        result =
            commit({.stringids = std::vector<jint>{3, CONTACT_NICKNAME, 0, 0, CONTACT_ORG, 0, 0, CONTACT_TEL, 0, 0},
                    .strings = texts{std::nullopt, "Org", std::nullopt}});
    });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(console, "\n\n jbarray=0 is number 0\n\n\n\n\n jbarray=0 is number 2\n\n\n");
    EXPECT_STREQ(platform.find_contact(1)->record.nickname, "");
    EXPECT_STREQ(platform.find_contact(1)->record.company_name, "Org");
    EXPECT_THAT(platform.find_contact(1)->phones, IsEmpty());
}

TEST_F(CommitTexts, ThatAreMissingCountAsNull)
{
    struct row {
        const char* when;
        std::vector<jint> stringids;
        std::optional<texts> strings;
        const char* nickname;
    };
    const row rows[] = {
        {"no texts at all", {1, CONTACT_NICKNAME, 0, 0}, std::nullopt, ""},
        {"an empty array of texts", {1, CONTACT_NICKNAME, 0, 0}, texts(), ""},
        {"one text for two entries", {2, CONTACT_NICKNAME, 0, 0, CONTACT_ORG, 0, 0}, texts{"nick"}, "nick"},
        {"two texts for an address", {2, CONTACT_NICKNAME, 0, 0, CONTACT_ADDR, 0, 0}, texts{"nick", "box"}, "nick"},
        {"one text for a name", {2, CONTACT_NICKNAME, 0, 0, CONTACT_NAME, 0, 0}, texts{"nick", "family"}, "nick"},
        {"none for two addresses",
         {3, CONTACT_NICKNAME, 0, 0, CONTACT_ADDR, 0, 0, CONTACT_ADDR, 0, 0},
         texts{"nick"},
         "nick"},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(commit({.stringids = row.stringids, .strings = row.strings}), 1);
        EXPECT_STREQ(platform.find_contact(1)->record.nickname, row.nickname);
        EXPECT_STREQ(platform.find_contact(1)->record.company_name, "");
        start_over();
    }
}

TEST_F(CommitTexts, ThatAreMissingCountAsNullForEventsAndToDos)
{
    for (jint listtype : {LIST_EVENT, LIST_TODO}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(commit({.listtype = listtype,
                          .stringids = std::vector<jint>{3, 107, 0, 0, 104, 0, 0, 107, 0, 0},
                          .strings = texts{"summary"}}),
                  1);
        EXPECT_EQ(platform.find_item(1)->summary, "summary");
        EXPECT_EQ(platform.find_item(1)->description, "");
        start_over();
    }
}

TEST_F(CommitTexts, MayBeMany)
{
    java_arguments arguments;
    arguments.stringids = std::vector<jint>{500};
    for (int i = 0; i < 500; ++i) {
        arguments.stringids->insert(arguments.stringids->end(), {CONTACT_NICKNAME, 0, 0});
        arguments.strings->push_back("nick " + std::to_string(i));
    }
    EXPECT_EQ(commit(arguments), 1);
    EXPECT_STREQ(platform.find_contact(1)->record.nickname, "nick 499");
}

// ---- Counts ---------------------------------------------------------------------------------------------------------

TEST_F(CommitCounts, OfStringEntriesThatTheArrayDoesNotHoldFailTheCommit)
{
    constexpr jint LARGEST = std::numeric_limits<jint>::max(), SMALLEST = std::numeric_limits<jint>::min();
    const std::vector<jint> arrays[] = {{1},
                                        {1, CONTACT_NICKNAME},
                                        {1, CONTACT_NICKNAME, 0},
                                        {2, CONTACT_NICKNAME, 0, 0},
                                        {2, CONTACT_NICKNAME, 0, 0, CONTACT_ORG, 0},
                                        {-1, CONTACT_NICKNAME, 0, 0},
                                        {LARGEST, CONTACT_NICKNAME, 0, 0},
                                        {SMALLEST, CONTACT_NICKNAME, 0, 0},
                                        {LARGEST / 3 + 1, CONTACT_NICKNAME, 0, 0}};
    for (const std::vector<jint>& stringids : arrays) {
        for (jint listtype : {LIST_CONTACT, LIST_EVENT, LIST_TODO}) {
            SCOPED_TRACE(testing::PrintToString(stringids));
            EXPECT_EQ(commit({.listtype = listtype, .stringids = stringids, .strings = texts{"a", "b"}}), -1);
            expect_no_store_call();
            EXPECT_THAT(platform.traces,
                        Contains(trace(TRACE_HARD, "stringids holds no %d entries\n",
                                       "stringids holds no " + std::to_string(stringids[0]) + " entries\n")));
            start_over();
        }
    }
}

TEST_F(CommitCounts, OfLongEntriesThatTheArrayDoesNotHoldFailTheCommit)
{
    constexpr jlong LARGEST = std::numeric_limits<jlong>::max(), SMALLEST = std::numeric_limits<jlong>::min();
    const std::vector<jlong> arrays[] = {{1},
                                         {1, CONTACT_BIRTHDAY, 0, 0},
                                         {2, CONTACT_BIRTHDAY, 0, 0, 0},
                                         {2, CONTACT_BIRTHDAY, 0, 0, 0, CONTACT_REVISION, 0, 0},
                                         {-1, CONTACT_BIRTHDAY, 0, 0, 0},
                                         {LARGEST, CONTACT_BIRTHDAY, 0, 0, 0},
                                         {SMALLEST, CONTACT_BIRTHDAY, 0, 0, 0},
                                         {LARGEST / 4 + 1, CONTACT_BIRTHDAY, 0, 0, 0},
                                         {INT64_C(1) << 32, CONTACT_BIRTHDAY, 0, 0, 0},
                                         {(INT64_C(1) << 32) + 1, CONTACT_BIRTHDAY, 0, 0, 0}};
    for (const std::vector<jlong>& longs : arrays) {
        for (jint listtype : {LIST_CONTACT, LIST_EVENT, LIST_TODO}) {
            SCOPED_TRACE(testing::PrintToString(longs));
            EXPECT_EQ(commit({.listtype = listtype, .longs = longs}), -1);
            expect_no_store_call();
            EXPECT_THAT(platform.traces,
                        Contains(trace(TRACE_HARD, "longvalue holds no %lld entries\n",
                                       "longvalue holds no " + std::to_string(longs[0]) + " entries\n")));
            start_over();
        }
    }
}

// ---- Categories -----------------------------------------------------------------------------------------------------

TEST_F(CommitCategories, AreSkippedEntirelyForACountOfNoneOrLess)
{
    for (jint numcats : {0, -1, std::numeric_limits<jint>::min()}) {
        SCOPED_TRACE(numcats);
        platform.add_group(3, "Work");
        EXPECT_EQ(commit({.categories = texts{"2", "Work", "Home"}, .numcats = numcats}), 1);
        EXPECT_EQ(platform.find_contact(1)->record.membership[3], 0);
        EXPECT_THAT(jni.calls_of("GetStringUTFChars"), IsEmpty());
        EXPECT_THAT(platform.calls_of("contact_db_service_group_search"), IsEmpty());
        start_over();
    }
}

TEST_F(CommitCategories, RaiseWhenTheirCountIsAnother)
{
    struct row {
        const char* when;
        std::optional<texts> categories;
        jint numcats;
    };
    const row rows[] = {
        {"the text says more", texts{"3", "a", "b", "c"}, 2},
        {"the text says fewer", texts{"1", "a", "b"}, 2},
        {"the text is no number", texts{"two", "a", "b"}, 2},
        {"the text is empty", texts{"", "a"}, 1},
        {"the text is null", texts{std::nullopt, "a"}, 1},
        {"a name is missing", texts{"2", "a"}, 2},
        {"all names are missing", texts{"1"}, 1},
        {"the array is empty", texts(), 1},
        {"the array is null", std::nullopt, 1},
        {"the count is huge", texts{"2147483647", "a"}, std::numeric_limits<jint>::max()},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        java_arguments arguments = a_contact();
        arguments.categories = row.categories;
        arguments.numcats = row.numcats;
        EXPECT_EQ(commit(arguments), -1);
        expect_raised("Error : numcat != categorycount");
        expect_no_store_call();
        EXPECT_THAT(platform.traces,
                    Contains(traced("Exception : numcats commit...\n", "Exception : numcats commit...\n")));
        start_over();
    }
}

TEST_F(CommitCategories, ReadTheirCountAsDecimalText)
{
    for (const char* count : {"2", " 2", "2 of them", "+2", "02"}) {
        SCOPED_TRACE(count);
        java_arguments arguments = a_contact();
        arguments.categories = texts{count, "Work", "Home"};
        EXPECT_EQ(commit(arguments), 1);
        start_over();
    }
}

TEST_F(CommitCategories, ThatAreNullAreSkipped)
{
    platform.add_group(3, "Work");
    EXPECT_EQ(commit({.categories = texts{"3", std::nullopt, "Work", std::nullopt}, .numcats = 3}), 1);
    EXPECT_EQ(platform.find_contact(1)->record.membership[3], 1);
}

TEST_F(CommitCategories, MayBeMany)
{
    platform.add_group(3, "Work");
    texts names = {"500"};
    for (int i = 0; i < 499; ++i) names.push_back("name " + std::to_string(i));
    names.emplace_back("Work");
    EXPECT_EQ(commit({.categories = names, .numcats = 500}), 1);
    EXPECT_EQ(platform.find_contact(1)->record.membership[3], 1);
}

// ---- Results --------------------------------------------------------------------------------------------------------

TEST_F(CommitResult, IsARecordIndexUpToTenThousand)
{
    platform.add_contact(9999);
    EXPECT_EQ(commit(a_contact()), 10000);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "returnindex : %d\n", "returnindex : 10000\n")));
    EXPECT_FALSE(jni.pending);
}

TEST_F(CommitResult, AboveTenThousandIsAFailureWithoutAnException)
{
    platform.add_contact(10000);
    EXPECT_EQ(commit(a_contact()), -1);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, std::string(COMMIT) + " FAIL(%d)\n",
                                                std::string(COMMIT) + " FAIL(10001)\n")));
    EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, "returnindex : %d\n"))));
    EXPECT_FALSE(jni.pending);
}

TEST_F(CommitResult, OfAValueThatDoesNotFitIsAFailureWithoutAnException)
{
    struct row {
        const char* when;
        jint listtype;
        jint field;
        size_t length;
    };
    for (const row& row :
         {row{"a phone", LIST_CONTACT, CONTACT_TEL, 42}, {"a summary", LIST_EVENT, EVENT_SUMMARY, 257}}) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(commit({.listtype = row.listtype,
                          .stringids = std::vector<jint>{1, row.field, 0, 0},
                          .strings = texts{std::string(row.length, 'x')}}),
                  -1);
        EXPECT_THAT(platform.traces, Contains(Field(&trace_message::text, std::string(COMMIT) + " FAIL(10001)\n")));
        EXPECT_FALSE(jni.pending);
        start_over();
    }
}

TEST_F(CommitResult, OfAStoreThatRefusesIsAFailureWithoutAnException)
{
    platform.fail("contact_db_service_contact_add", 1);
    EXPECT_EQ(commit(a_contact()), -1);
    EXPECT_THAT(platform.traces, Contains(Field(&trace_message::text, std::string(COMMIT) + " FAIL(-1)\n")));
    EXPECT_FALSE(jni.pending);
}

TEST_F(CommitResult, OfAnEventThatTheStoreRefusesIsZero)
{
    platform.fail("org_db_service_add_record_full_field", 1);
    EXPECT_EQ(commit({.listtype = LIST_EVENT}), 0);
}

// ---- Allocations ----------------------------------------------------------------------------------------------------

TEST_F(CommitFailure, OfAPointerArraysAllocationIsTracedWithoutAnException)
{
    struct row {
        const char* when;
        java_arguments arguments;
    };
    java_arguments texts_only = a_contact(), categories_only;
    texts_only.numcats = 0;
    categories_only.categories = texts{"1", "Work"};
    categories_only.numcats = 1;
    for (const row& row : {row{"texts", texts_only}, {"categories", categories_only}}) {
        SCOPED_TRACE(row.when);
        fail_allocation(1);
        EXPECT_EQ(commit(row.arguments), -1);
        EXPECT_TRUE(allocation_failed());
        EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_HARD, "memory allocation failed..\n")));
        EXPECT_FALSE(jni.pending);
        expect_no_store_call();
        start_over();
    }
}

TEST_F(CommitFailure, OfATextsAllocationRaises)
{
    for (const char* text : {"030", "nick"}) {
        SCOPED_TRACE(text);
        fail_allocations_of(std::string(text).size() + 1);
        EXPECT_EQ(commit(a_contact()), -1);
        expect_raised("Error : malloc ERROR");
        expect_no_store_call();
        EXPECT_THAT(platform.traces, Contains(traced("Exception : commit...\n", "Exception : commit...\n")));
        start_over();
    }
}

TEST_F(CommitFailure, OfACategorysAllocationRaises)
{
    for (const char* name : {"first category", "the second category"}) {
        SCOPED_TRACE(name);
        fail_allocations_of(std::string(name).size() + 1);
        java_arguments arguments = a_contact();
        arguments.categories = texts{"2", "first category", "the second category"};
        EXPECT_EQ(commit(arguments), -1);
        expect_raised("Error : malloc ERROR");
        expect_no_store_call();
        EXPECT_THAT(platform.traces,
                    Contains(traced("Exception : numcats commit...\n", "Exception : numcats commit...\n")));
        start_over();
    }
}

// Each allocation of the unpacking fails in turn.
TEST_F(CommitFailure, OfAnyAllocationOfTheUnpackingLeavesNothingBehind)
{
    java_arguments arguments = a_contact();
    arguments.listtype = 4; // Nothing but the unpacking.
    for (int nth = 1;; ++nth) {
        SCOPED_TRACE(nth);
        fail_allocation(nth);
        const jint result = commit(arguments);
        if (!allocation_failed()) {
            EXPECT_EQ(result, 0);
            EXPECT_GE(nth, 6) << "two pointer arrays, two texts and two names";
            break;
        }
        EXPECT_EQ(result, -1);
        if (jni.pending) keep_exception("the failure as it reaches Java");
        start_over();
    }
}

TEST_F(CommitFailure, OfTheMachineToHandOutItsElementsLeavesItsOwnException)
{
    for (const char* function :
         {"GetIntArrayElements", "GetByteArrayElements", "GetLongArrayElements", "GetStringUTFChars"}) {
        for (int nth = 1; nth <= 3; ++nth) {
            SCOPED_TRACE(testing::Message() << function << " " << nth);
            jni.fail_call(function, nth);
            const jint result = commit(a_contact());
            if (jni.failed_call().empty()) {
                EXPECT_EQ(result, 1);
            } else {
                EXPECT_EQ(result, -1);
                ASSERT_TRUE(jni.pending);
                EXPECT_EQ(jni.pending->class_name, "java/lang/OutOfMemoryError");
                EXPECT_THAT(platform.calls, IsEmpty());
                EXPECT_THAT(platform.traces,
                            Contains(trace_text(TRACE_HARD, "Java_com_qvr_zek_pim_PIMItemImpl_commitN FAIL(-1)\n")));
                keep_exception("the machine's own");
            }
            start_over();
        }
    }
}

} // namespace commit_request_test
