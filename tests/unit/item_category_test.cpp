// The categories of one item.
#include "pimitemimpl_limo_arm.h"

#include <array>
#include <string>
#include <vector>

#include "unit_test.h"

namespace item_category_test {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

class ItemCategories : public unit_test {
protected:
    void SetUp() override
    {
        unit_test::SetUp();
        stored_contact& contact = platform.add_contact(7);
        contact.phones.emplace_back(); // So that the record has something to release.
    }

    // Groups by key, with contact 7 a member of each.
    void join(const std::vector<std::pair<int32_t, std::string>>& groups)
    {
        for (const auto& [key, name] : groups) {
            platform.add_group(key, name);
            platform.add_members(key, {7});
        }
    }

    int32_t list(int32_t recindex = 7, int32_t listtype = LIST_CONTACT)
    {
        std::array<category_name, LIST_CATEGORIES_MAX> slots = {};
        const int32_t count = pimItemImpl_getCategoriesN(listtype, 9, recindex, slots);
        names.clear();
        for (int32_t i = 0; i < count; ++i) names.emplace_back(slots[static_cast<size_t>(i)].text);
        return count;
    }

    std::vector<std::string> names;
};

class ItemCategoriesNative : public ItemCategories {
protected:
    jobjectArray call(int32_t recindex = 7, int32_t listtype = LIST_CONTACT)
    {
        return Java_com_qvr_zek_pim_PIMItemImpl_getCategoriesN(jni.env(), nullptr, listtype, 0, recindex);
    }
};

using MaxCategoriesOfItem = unit_test;

} // namespace

// ---- The port -------------------------------------------------------------------------------------------------------

TEST_F(ItemCategories, GiveTheNamesInKeyOrder)
{
    join({{29, "Last"}, {0, "First"}, {4, "Work"}});
    EXPECT_EQ(list(), 3);
    EXPECT_THAT(names, ElementsAre("First", "Work", "Last"));
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get(7)",
                                            "contact_db_service_group_get_count()", "contact_db_service_group_get(0)",
                                            "contact_db_service_group_get(4)", "contact_db_service_group_get(29)",
                                            "contact_db_service_contact_free()", "contact_db_service_disconnect()"));
}

TEST_F(ItemCategories, TraceEntryAndEveryName)
{
    join({{4, "Work"}});
    list();
    EXPECT_THAT(platform.traces.at(0), trace_line(TRACE_STEP, "pimItemImpl_getCategoriesN\n"));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "contact_group_record.name : %s\n", "contact_group_record.name : Work\n")));
    EXPECT_EQ(platform.traces.at(0).path, "java-runtime/jsr75/pims/native/limo-arm/pimitemimpl_limo_arm.cpp");
}

TEST_F(ItemCategories, AreNoneForAContactInNoGroup)
{
    platform.add_group(0, "Work");
    EXPECT_EQ(list(), 0);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_get"), IsEmpty());
}

TEST_F(ItemCategories, AreNoneInAStoreWithoutGroups)
{
    platform.add_members(3, {7});
    EXPECT_EQ(list(), 0);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_get"), IsEmpty());
}

TEST_F(ItemCategories, FillTheListToItsLimit)
{
    std::vector<std::string> thirty;
    for (int32_t key = 0; key < 30; ++key) {
        thirty.push_back("Category " + std::to_string(key));
        join({{key, thirty.back()}});
    }
    EXPECT_EQ(list(), 30);
    EXPECT_THAT(names, ElementsAreArray(thirty));
}

TEST_F(ItemCategories, CountEveryMembershipByteThatIsNotZero)
{
    join({{0, "One"}, {1, "Two"}, {2, "Three"}});
    platform.find_contact(7)->record.membership[1] = 2;
    platform.find_contact(7)->record.membership[2] = 255;
    EXPECT_EQ(list(), 3);
}

TEST_F(ItemCategories, LookAtNoMembershipByteBehindTheLastKey)
{
    join({{29, "Last"}});
    for (int32_t key = 30; key < 35; ++key) join({{key, "Beyond"}});
    EXPECT_EQ(list(), 1);
    EXPECT_THAT(names, ElementsAre("Last"));
}

TEST_F(ItemCategories, SkipAGroupThatCannotBeRead)
{
    join({{1, "One"}, {2, "Two"}});
    platform.add_members(0, {7}); // No group bears this key.
    EXPECT_EQ(list(), 2);
    EXPECT_THAT(names, ElementsAre("One", "Two"));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "contact_db_service_group_get is failed (error code :%d)\n",
                                                "contact_db_service_group_get is failed (error code :101)\n")));
}

TEST_F(ItemCategories, LeaveOutAGroupWithoutAName)
{
    join({{1, ""}, {2, "Two"}});
    EXPECT_EQ(list(), 1);
    EXPECT_THAT(names, ElementsAre("Two"));
}

TEST_F(ItemCategories, StopWhenAsManyWereFoundAsTheStoreHolds)
{
    join({{1, "One"}, {2, "Two"}, {3, "Three"}});
    platform.reported_counts["contact_db_service_group_get_count"] = 2;
    EXPECT_EQ(list(), 2);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_get"),
                ElementsAre("contact_db_service_group_get(1)", "contact_db_service_group_get(2)"));
}

TEST_F(ItemCategories, AreNoneWhenTheStoreCountsFewerThanNoGroups)
{
    join({{1, "One"}});
    platform.reported_counts["contact_db_service_group_get_count"] = -1;
    EXPECT_EQ(list(), 0);
}

TEST_F(ItemCategories, ComeBackWholeWithSixtyThreeBytes)
{
    const std::string longest(63, 'x');
    join({{1, longest}, {2, "next"}});
    EXPECT_EQ(list(), 2);
    EXPECT_THAT(names, ElementsAre(longest, "next"));
}

TEST_F(ItemCategories, FailForANameOfSixtyFourBytesThoughTheListAcceptsIt)
{
    for (size_t length : {64u, 65u, 200u, 1343u}) {
        SCOPED_TRACE(length);
        join({{1, "One"}, {2, std::string(length, 'x')}});
        EXPECT_EQ(list(), -1);
        EXPECT_THAT(platform.traces, Contains(traced("contact_group_record.name overflow..\n",
                                                     "contact_group_record.name overflow..\n")));
        EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
        EXPECT_EQ(platform.calls.at(platform.calls.size() - 2), "contact_db_service_contact_free()");
        start_over();
    }
}

TEST_F(ItemCategories, AreNoneForAContactThatCannotBeRead)
{
    EXPECT_EQ(list(70), 0);
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "contact_db_service_contact_get is failed (error code :%d)\n",
                               "contact_db_service_contact_get is failed (error code :101)\n")));
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get(70)",
                                            "contact_db_service_contact_free()", "contact_db_service_disconnect()"));
}

TEST_F(ItemCategories, FailForAnUnreadableContactWhenTheConnectionCannotBeClosedEither)
{
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(list(70), -1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_getCategoriesN")));
}

TEST_F(ItemCategories, AreNoneWhenGroupsCannotBeCounted)
{
    join({{1, "One"}});
    platform.fail("contact_db_service_group_get_count", 61);
    EXPECT_EQ(list(), 0);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_get"), IsEmpty());
}

TEST_F(ItemCategories, FailWhenTheConnectionIsRefused)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(list(), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimItemImpl_getCategoriesN", "initialize", 10011)));
}

TEST_F(ItemCategories, AreReadWithoutAConnection)
{
    join({{1, "One"}});
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(list(), 1);
}

TEST_F(ItemCategories, FailWhenTheConnectionCannotBeClosed)
{
    join({{1, "One"}});
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(list(), -1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_getCategoriesN")));
}

TEST_F(ItemCategories, AreAContactsWhateverTheListType)
{
    for (int32_t listtype : {1, 2, 3, 0, 4}) {
        SCOPED_TRACE(listtype);
        join({{1, "One"}});
        EXPECT_EQ(list(7, listtype), 1);
        EXPECT_THAT(names, ElementsAre("One"));
        EXPECT_EQ(platform.calls.front(), "contact_db_service_connect()");
        start_over();
    }
}

// ---- The natives ----------------------------------------------------------------------------------------------------

TEST_F(ItemCategoriesNative, MakesAStringOfEveryName)
{
    join({{1, "One"}, {4, std::string(63, 'x')}});
    jobjectArray array = call();
    EXPECT_THAT(jni.texts(array), ElementsAre("One", std::string(63, 'x')));
    EXPECT_EQ(jni.element_class(array), "java/lang/String");
    EXPECT_THAT(platform.traces.front(),
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMItemImpl_getCategoriesN ***\n"));
}

TEST_F(ItemCategoriesNative, LetsGoOfEveryElementAtOnce)
{
    for (int32_t key = 0; key < 30; ++key) join({{key, "Category"}});
    EXPECT_EQ(jni.texts(call()).size(), 30u);
    EXPECT_LE(jni.local_reference_peak, 4u);
}

TEST_F(ItemCategoriesNative, GivesAnEmptyArrayForNoneAndForEveryFailure)
{
    for (const char* failing : {"nothing", "contact_db_service_contact_get", "contact_db_service_group_get_count",
                                "contact_db_service_group_get", "contact_db_service_disconnect"}) {
        SCOPED_TRACE(failing);
        if (failing != std::string("nothing")) join({{1, "One"}});
        platform.fail(failing, 60);
        jobjectArray array = call();
        ASSERT_NE(array, nullptr);
        EXPECT_THAT(jni.texts(array), IsEmpty());
        EXPECT_EQ(jni.element_class(array), "java/lang/String");
        start_over();
    }
}

TEST_F(ItemCategoriesNative, ReadsTheContactOfThatIndexForEventsAndToDos)
{
    join({{1, "One"}});
    platform.add_item(ORG_TYPE_EVENT, 7);
    EXPECT_THAT(jni.texts(call(7, LIST_EVENT)), ElementsAre("One"));
    EXPECT_THAT(jni.texts(call(7, LIST_TODO)), ElementsAre("One"));
}

TEST_F(ItemCategoriesNative, IsNullWithTheMachinesErrorWhenTheArrayCannotBeMade)
{
    for (const char* failing : {"FindClass", "NewObjectArray", "NewStringUTF"}) {
        SCOPED_TRACE(failing);
        join({{1, "One"}});
        jni.fail(failing);
        EXPECT_EQ(call(), nullptr);
        ASSERT_TRUE(jni.pending);
        EXPECT_EQ(jni.pending->thrown_by, failing);
        keep_exception("the machine's own error goes on to Java");
        start_over();
    }
}

TEST_F(MaxCategoriesOfItem, IsOneForContactsThoughTheListHasThirty)
{
    struct {
        const char* when;
        int32_t listtype, expected;
    } const rows[] = {{"contacts", 1, 1}, {"events", 2, 0}, {"to-dos", 3, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_maxCategoriesN(jni.env(), nullptr, row.listtype, 0), row.expected);
        EXPECT_THAT(platform.traces.at(0),
                    trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMItemImpl_maxCategoriesN ***\n"));
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(jni.calls, IsEmpty());
        start_over();
    }
}

TEST_F(MaxCategoriesOfItem, RaisesForAnUnknownList)
{
    for (int32_t listtype : {0, 4, 5, -1}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMItemImpl_maxCategoriesN(jni.env(), nullptr, listtype, 0), 0);
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

} // namespace item_category_test
