// The categories of a list: their names and how many there may be.
#include "pimlistimpl_limo_arm.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "unit_test.h"

namespace category_list_test {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

class ListCategories : public unit_test {
protected:
    int32_t list(int32_t listtype = LIST_CONTACT)
    {
        std::array<category_name, LIST_CATEGORIES_MAX> slots = {};
        const int32_t count = pimlistImpl_getCategoriesN(listtype, 9, slots);
        names.clear();
        for (int32_t i = 0; i < count; ++i) names.emplace_back(slots[static_cast<size_t>(i)].text);
        return count;
    }

    void add_groups(const std::vector<std::string>& group_names)
    {
        for (const std::string& name : group_names)
            platform.add_group(static_cast<int32_t>(platform.groups.size()), name);
    }

    std::vector<std::string> names;
};

using MaxCategoriesOfList = unit_test;

class ListCategoriesNative : public ListCategories {
protected:
    jobjectArray call(int32_t listtype = LIST_CONTACT)
    {
        return Java_com_qvr_zek_pim_PIMListImpl_getCategoriesN(jni.env(), nullptr, listtype, 0);
    }
};

} // namespace

// ---- The port -------------------------------------------------------------------------------------------------------

TEST_F(ListCategories, GivesTheNamesInTheStoresOrder)
{
    platform.add_group(7, "Work");
    platform.add_group(2, "Home");
    platform.add_group(29, "Z\xc3\xbcrich");
    EXPECT_EQ(list(), 3);
    EXPECT_THAT(names, ElementsAre("Home", "Work", "Z\xc3\xbcrich"));
    EXPECT_THAT(platform.calls,
                ElementsAre("contact_db_service_connect()", "contact_db_service_group_get_count()",
                            "contact_db_service_group_get_all_records(3)", "contact_db_service_disconnect()"));
    EXPECT_EQ(allocation_sizes(), std::vector<size_t>{3 * 1352});
}

TEST_F(ListCategories, TakesRoomForOneGroup)
{
    add_groups({"Work"});
    EXPECT_EQ(list(), 1);
    EXPECT_EQ(allocation_sizes(), std::vector<size_t>{1352});
}

TEST_F(ListCategories, LeavesTheSlotsBehindTheLastNameAlone)
{
    add_groups({"Work", "Home"});
    std::array<category_name, LIST_CATEGORIES_MAX> slots = {};
    slots[2].text[0] = '#';
    slots[2].text[1] = '\0';
    EXPECT_EQ(pimlistImpl_getCategoriesN(LIST_CONTACT, 9, slots), 2);
    EXPECT_STREQ(slots[2].text, "#");
}

TEST_F(ListCategories, TracesItsSteps)
{
    add_groups({"Work", "Home"});
    list();
    EXPECT_THAT(platform.traces.at(0), trace(TRACE_STEP, "%s\n", "pimlistImpl_getCategoriesN\n"));
    for (const char* format :
         {"contact_db_service_group_get_count = %d\n", "contact_db_service_group_get_all_records:group_count = %d\n",
          "return group count is %d\n"}) {
        std::string text = format;
        text.replace(text.find("%d"), 2, "2");
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, format, text)));
    }
    EXPECT_EQ(platform.traces.back().text, "return group count is 2\n");
}

TEST_F(ListCategories, AreTheContactStoresWhateverTheListType)
{
    for (int32_t listtype : {1, 2, 3, 0, 4}) {
        SCOPED_TRACE(listtype);
        add_groups({"Work"});
        EXPECT_EQ(list(listtype), 1);
        EXPECT_THAT(names, ElementsAre("Work"));
        EXPECT_EQ(platform.calls.front(), "contact_db_service_connect()");
        start_over();
    }
}

TEST_F(ListCategories, AreNoneInAStoreWithoutGroups)
{
    EXPECT_EQ(list(), 0);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_get_all_records"), IsEmpty());
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(ListCategories, FillTheListToItsLimit)
{
    std::vector<std::string> thirty;
    for (int i = 0; i < 30; ++i) thirty.push_back("Category " + std::to_string(i));
    add_groups(thirty);
    EXPECT_EQ(list(), 30);
    EXPECT_THAT(names, ElementsAreArray(thirty));
}

TEST_F(ListCategories, StopAtTheLimitInAStoreWithMore)
{
    for (int32_t key = 0; key < 35; ++key) platform.add_group(key, "Category " + std::to_string(key));
    EXPECT_EQ(list(), 30);
    EXPECT_EQ(names.back(), "Category 29");
}

TEST_F(ListCategories, ComeBackWholeWithSixtyFourBytes)
{
    const std::string longest(64, 'x');
    add_groups({longest, "next", longest});
    EXPECT_EQ(list(), 3);
    EXPECT_THAT(names, ElementsAre(longest, "next", longest));
}

TEST_F(ListCategories, FailForANameThatIsTooLongAndLeaveNothingBehind)
{
    for (size_t length : {65u, 66u, 200u, 1343u}) {
        SCOPED_TRACE(length);
        add_groups({"Work", std::string(length, 'x')});
        EXPECT_EQ(list(), -1);
        EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
        start_over();
    }
}

TEST_F(ListCategories, FailForANameThatFillsTheRecordToItsEnd)
{
    add_groups({"Work"});
    platform.alter_group = [](contact_group_record& group) {
        char* const bytes = reinterpret_cast<char*>(&group);
        std::fill(bytes + offsetof(contact_group_record, name), bytes + sizeof group, 'x');
    };
    EXPECT_EQ(list(), -1);
}

TEST_F(ListCategories, AreEmptyNamesForRecordsThatTheStoreDidNotFill)
{
    add_groups({"Work"});
    platform.reported_counts["contact_db_service_group_get_count"] = 2;
    EXPECT_EQ(list(), 2);
    EXPECT_THAT(names, ElementsAre("Work", ""));
}

TEST_F(ListCategories, AreNoneWhenTheStoreCountsFewerThanNoGroups)
{
    add_groups({"Work"});
    platform.reported_counts["contact_db_service_group_get_count"] = -1;
    EXPECT_LE(list(), 0);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_get_all_records"), IsEmpty());
}

TEST_F(ListCategories, FailWhenTheConnectionIsRefused)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(list(), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistImpl_getCategoriesN", "initialize", 10011)));
}

TEST_F(ListCategories, AreReadWithoutAConnection)
{
    add_groups({"Work"});
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(list(), 1);
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(ListCategories, FailWhenGroupsCannotBeCounted)
{
    add_groups({"Work"});
    platform.fail("contact_db_service_group_get_count", 61);
    EXPECT_EQ(list(), -1);
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_group_get_count()",
                                            "contact_db_service_disconnect()"));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "contact_db_service_group_get_all_records:group_count = %d\n",
                               "contact_db_service_group_get_all_records:group_count = 0\n")));
}

TEST_F(ListCategories, FailWhenTheRecordsCannotBeAllocated)
{
    add_groups({"Work"});
    fail_allocation(1);
    EXPECT_EQ(list(), -1);
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_RECOVERABLE, "memory allocation failed..\n")));
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_group_get_count()",
                                            "contact_db_service_disconnect()"));
}

TEST_F(ListCategories, FailWhenTheRecordsCannotBeRead)
{
    add_groups({"Work"});
    platform.fail("contact_db_service_group_get_all_records", 62);
    EXPECT_EQ(list(), -1);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "contact_db_service_group_get_all_records fail(%d)\n",
                                                "contact_db_service_group_get_all_records fail(62)\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(ListCategories, FailWhenTheConnectionCannotBeClosed)
{
    add_groups({"Work"});
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(list(), -1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_getCategoriesN")));
}

// ---- The natives ----------------------------------------------------------------------------------------------------

TEST_F(ListCategoriesNative, MakesAStringOfEveryName)
{
    std::vector<std::string> thirty;
    for (int i = 0; i < 30; ++i) thirty.push_back("Category " + std::to_string(i));
    thirty[7] = std::string(64, 'x');
    add_groups(thirty);
    jobjectArray array = call();
    EXPECT_THAT(jni.texts(array), ElementsAreArray(thirty));
    EXPECT_EQ(jni.element_class(array), "java/lang/String");
    EXPECT_LE(jni.local_reference_peak, 4u);
    EXPECT_THAT(platform.traces.at(0),
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_getCategoriesN ***\n"));
}

TEST_F(ListCategoriesNative, GivesAnEmptyArrayForNoneAndForEveryFailure)
{
    for (const char* failing : {"nothing", "contact_db_service_group_get_count",
                                "contact_db_service_group_get_all_records", "contact_db_service_disconnect"}) {
        SCOPED_TRACE(failing);
        if (failing != std::string("nothing")) add_groups({"Work"});
        platform.fail(failing, 60);
        jobjectArray array = call();
        ASSERT_NE(array, nullptr);
        EXPECT_THAT(jni.texts(array), IsEmpty());
        EXPECT_EQ(jni.element_class(array), "java/lang/String");
        start_over();
    }
}

TEST_F(ListCategoriesNative, AnswersForEventsWithTheContactStoresCategories)
{
    add_groups({"Work"});
    EXPECT_THAT(jni.texts(call(LIST_EVENT)), ElementsAre("Work"));
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_maxCategoriesN(jni.env(), nullptr, LIST_EVENT, 0), 0);
}

TEST_F(ListCategoriesNative, IsNullWithTheMachinesErrorWhenTheArrayCannotBeMade)
{
    for (const char* failing : {"FindClass", "NewObjectArray", "NewStringUTF"}) {
        SCOPED_TRACE(failing);
        add_groups({"Work"});
        jni.fail(failing);
        EXPECT_EQ(call(), nullptr);
        ASSERT_TRUE(jni.pending);
        EXPECT_EQ(jni.pending->thrown_by, failing);
        keep_exception("the machine's own error goes on to Java");
        start_over();
    }
}

TEST_F(MaxCategoriesOfList, IsThirtyForContactsAndNoneForTheOthers)
{
    struct {
        const char* when;
        int32_t listtype, expected;
    } const rows[] = {{"contacts", 1, 30}, {"events", 2, 0}, {"to-dos", 3, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_maxCategoriesN(jni.env(), nullptr, row.listtype, 0), row.expected);
        EXPECT_THAT(platform.traces.at(0),
                    trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_maxCategoriesN ***\n"));
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(jni.calls, IsEmpty());
        start_over();
    }
}

TEST_F(MaxCategoriesOfList, RaisesForAnUnknownList)
{
    for (int32_t listtype : {0, 4, -1}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_maxCategoriesN(jni.env(), nullptr, listtype, 0), 0);
        ASSERT_TRUE(jni.pending);
        EXPECT_THAT(*jni.pending, exception("javax/microedition/pim/PIMException", "Not supported list type"));
        ASSERT_EQ(jni.constructed.size(), 1u);
        EXPECT_EQ(jni.constructed[0]->reason, PIM_GENERAL_ERROR);
        EXPECT_THAT(platform.traces,
                    Contains(trace(TRACE_HARD, "Not supported listtype\n", "Not supported listtype\n")));
        keep_exception("raised on purpose");
        start_over();
    }
}

} // namespace category_list_test
