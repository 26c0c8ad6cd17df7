// Adding, renaming, deleting and testing categories.
#include "pimlistimpl_limo_arm.h"

#include <cstring>
#include <string>
#include <vector>

#include "unit_test.h"

namespace category_edit_test {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

class AddCategory : public unit_test {
protected:
    static int32_t add(const char* name, int32_t listtype = LIST_CONTACT)
    {
        return pimlistImpl_addCategoryN(listtype, 9, name);
    }
};

class RenameCategory : public unit_test {
protected:
    static int32_t rename(const char* from, const char* to, int32_t listtype = LIST_CONTACT)
    {
        return pimlistImpl_renameCategoryN(listtype, 9, from, to);
    }
};

class DeleteCategory : public unit_test {
protected:
    static constexpr int32_t WORK = 4; // The key index of the category "Work".

    // Four contacts: two at work, one of these at home too, one at home only, one in no category.
    void SetUp() override
    {
        unit_test::SetUp();
        for (int32_t index : {1, 2, 3, 4}) platform.add_contact(index);
        platform.add_group(0, "Home");
        platform.add_group(WORK, "Work");
        platform.add_members(0, {2, 3});
        platform.add_members(WORK, {1, 2});
    }

    static int32_t remove(const char* name, int32_t with_contacts = 0, int32_t listtype = LIST_CONTACT)
    {
        return pimlistImpl_deleteCategoryN(listtype, 9, name, with_contacts);
    }
};

class IsCategory : public unit_test {
protected:
    void SetUp() override
    {
        unit_test::SetUp();
        platform.add_group(4, "Work");
    }

    static int32_t is_category(const char* name, int32_t listtype = LIST_CONTACT)
    {
        return pimlistImpl_isCategoryN(listtype, 9, name);
    }
};

// The natives' tests add a machine to the ports'.
using AddCategoryNative = AddCategory;
using RenameCategoryNative = RenameCategory;
using DeleteCategoryNative = DeleteCategory;
using IsCategoryNative = IsCategory;

const std::string LONGEST(64, 'x');
const std::string TOO_LONG(65, 'x');

} // namespace

// ---- Adding ---------------------------------------------------------------------------------------------------------

TEST_F(AddCategory, AddsAGroup)
{
    platform.add_group(0, "Home");
    EXPECT_EQ(add("Work"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Home", "Work"));
    EXPECT_THAT(platform.calls,
                ElementsAre("contact_db_service_connect()", "contact_db_service_group_exist_same_name(\"Work\")",
                            "contact_db_service_group_add(\"Work\")", "contact_db_service_group_get_count()",
                            "contact_db_service_disconnect()"));
}

TEST_F(AddCategory, TracesItsSteps)
{
    add("Work");
    EXPECT_THAT(platform.traces.at(0),
                trace(TRACE_STEP, "%s, addCategoryName = %s\n", "pimlistImpl_addCategoryN, addCategoryName = Work\n"));
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "contact_db_service_group_add succeed\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "group total count : %d\n", "group total count : 1\n")));
    EXPECT_THAT(platform.traces.back(),
                trace(TRACE_STEP, "%s return TRUE\n", "pimlistImpl_addCategoryN return TRUE\n"));
}

TEST_F(AddCategory, LeavesTheRestOfTheRecordZero)
{
    add("Work");
    contact_group_record expected = {};
    std::strcpy(expected.name, "Work");
    EXPECT_EQ(std::memcmp(&platform.groups.at(0), &expected, sizeof expected), 0);
}

TEST_F(AddCategory, RefusesEventsAndToDos)
{
    for (int32_t listtype : {2, 3, 0, 4}) EXPECT_EQ(add("Work", listtype), 0) << listtype;
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(AddCategory, RefusesANullName)
{
    EXPECT_EQ(add(nullptr), 0);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(traced("addCategoryName  is NULL\n", "addCategoryName  is NULL\n")));
}

TEST_F(AddCategory, RefusesACommaAnywhere)
{
    for (const char* name : {",", ",Work", "Wo,rk", "Work,"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(add(name), 0);
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(platform.traces, Contains(traced("strstr(addCategoryName, \",\")  is false \n",
                                                     "strstr(addCategoryName, \",\")  is false \n")));
        EXPECT_EQ(pimlistImpl_isCategoryN(LIST_CONTACT, 9, name), 0);
        start_over();
    }
}

TEST_F(AddCategory, AcceptsSixtyFourBytesAndNoMore)
{
    EXPECT_EQ(add(LONGEST.c_str()), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre(LONGEST));
    start_over();

    EXPECT_EQ(add(TOO_LONG.c_str()), 0);
    EXPECT_THAT(platform.groups, IsEmpty());
    EXPECT_THAT(platform.calls_of("contact_db_service_group_add"), IsEmpty());
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(AddCategory, SucceedsForANameTooLongWhenTheConnectionCannotBeClosed)
{
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(add(TOO_LONG.c_str()), 1);
    EXPECT_THAT(platform.groups, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_addCategoryN")));
}

TEST_F(AddCategory, AcceptsAnEmptyName)
{
    EXPECT_EQ(add(""), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre(""));
}

TEST_F(AddCategory, SucceedsForANameThatIsThereAlready)
{
    platform.add_group(3, "Work");
    EXPECT_EQ(add("Work"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Work"));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "contact group exist same name..\n", "contact group exist same name..\n")));
    EXPECT_THAT(platform.traces.back(),
                trace(TRACE_STEP, "%s return TRUE\n", "pimlistImpl_addCategoryN return TRUE\n"));
}

TEST_F(AddCategory, TakesAnyFlagThatIsNotZeroForThere)
{
    platform.reported_same_name = 0x80;
    EXPECT_EQ(add("Work"), 1);
    EXPECT_THAT(platform.groups, IsEmpty());
}

TEST_F(AddCategory, AddsNothingWhenTheNameCannotBeLookedUp)
{
    platform.fail("contact_db_service_group_exist_same_name", 63);
    EXPECT_EQ(add("Work"), 1);
    EXPECT_THAT(platform.groups, IsEmpty());
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "contact_db_service_group_exist_same_name false - same name exist\n",
                               "contact_db_service_group_exist_same_name false - same name exist\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(AddCategory, SucceedsWhenTheConnectionIsRefused)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(add("Work"), 1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistImpl_addCategoryN", "initialize", 10011)));
}

TEST_F(AddCategory, AddsWithoutAConnection)
{
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(add("Work"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Work"));
}

TEST_F(AddCategory, FailsWhenTheStoreRefusesTheGroup)
{
    platform.fail("contact_db_service_group_add", 64);
    EXPECT_EQ(add("Work"), 0);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_RECOVERABLE, "contact_db_service_group_add fail..(%d)\n",
                                                "contact_db_service_group_add fail..(64)\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(AddCategory, SucceedsForARefusedGroupWhenTheConnectionCannotBeClosed)
{
    platform.fail("contact_db_service_group_add", 64);
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(add("Work"), 1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_addCategoryN")));
}

TEST_F(AddCategory, LeavesTheLimitOfThirtyToTheStore)
{
    for (int32_t key = 0; key < 30; ++key) platform.add_group(key, "Category " + std::to_string(key));
    EXPECT_EQ(add("Work"), 0);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_add"), SizeIs(1));
}

TEST_F(AddCategory, OnlyTracesTheCountAfterwards)
{
    platform.fail("contact_db_service_group_get_count", 61);
    EXPECT_EQ(add("Work"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Work"));
}

TEST_F(AddCategory, SucceedsWhenTheConnectionCannotBeClosed)
{
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(add("Work"), 1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_addCategoryN")));
    EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, "%s return TRUE\n"))));
}

// ---- Renaming -------------------------------------------------------------------------------------------------------

TEST_F(RenameCategory, RewritesTheGroupUnderItsKey)
{
    platform.add_group(1, "Home");
    platform.add_group(4, "Work");
    platform.add_group(6, "Club");
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Home", "Office", "Club"));
    EXPECT_STREQ(platform.groups.at(4).name, "Office");
}

TEST_F(RenameCategory, TriesTheKeysInTurnUntilAllGroupsWereSeen)
{
    platform.add_group(1, "Home");
    platform.add_group(3, "Work");
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("contact_db_service_connect()", "contact_db_service_group_get_count()",
                            "contact_db_service_group_get(0)", "contact_db_service_group_get(1)",
                            "contact_db_service_group_get(2)", "contact_db_service_group_get(3)",
                            "contact_db_service_group_update(3, \"Office\")", "contact_db_service_disconnect()"));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "contact_db_service_group_get is fail..\n",
                                                "contact_db_service_group_get is fail..\n")));
}

TEST_F(RenameCategory, TriesNoKeyAboveTwentyNine)
{
    platform.add_group(29, "Work");
    platform.reported_counts["contact_db_service_group_get_count"] = 5;
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Office"));
    EXPECT_THAT(platform.calls_of("contact_db_service_group_get"), SizeIs(30));
    EXPECT_EQ(platform.calls_of("contact_db_service_group_get").back(), "contact_db_service_group_get(29)");
}

TEST_F(RenameCategory, TracesItsSteps)
{
    platform.add_group(0, "Work");
    rename("Work", "Office");
    EXPECT_THAT(platform.traces.at(0), trace(TRACE_STEP, "%s\n", "pimlistImpl_renameCategoryN\n"));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "pimlistImpl_renameCategoryN.oldCategory=%s\n",
                                                "pimlistImpl_renameCategoryN.oldCategory=Work\n")));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "pimlistImpl_renameCategoryN.contact_group_record.name=%s\n",
                               "pimlistImpl_renameCategoryN.contact_group_record.name=Office\n")));
}

TEST_F(RenameCategory, RenamesEveryGroupOfThatName)
{
    platform.add_group(0, "Work");
    platform.add_group(2, "Home");
    platform.add_group(5, "Work");
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Office", "Home", "Office"));
}

TEST_F(RenameCategory, ComparesTheNameByteForByte)
{
    platform.add_group(0, "work");
    platform.add_group(1, "Works");
    platform.add_group(2, "Wor");
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("work", "Works", "Wor"));
}

TEST_F(RenameCategory, MayMakeTwoGroupsOfOneName)
{
    platform.add_group(0, "Work");
    platform.add_group(1, "Home");
    EXPECT_EQ(rename("Work", "Home"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Home", "Home"));
    EXPECT_THAT(platform.calls_of("contact_db_service_group_exist_same_name"), IsEmpty());
}

TEST_F(RenameCategory, AcceptsAComma)
{
    platform.add_group(0, "Work");
    EXPECT_EQ(rename("Work", "Work, old"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Work, old"));
}

TEST_F(RenameCategory, AcceptsSixtyFourBytesAndNoMore)
{
    platform.add_group(0, "Work");
    EXPECT_EQ(rename("Work", LONGEST.c_str()), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre(LONGEST));
    start_over();

    platform.add_group(0, "Work");
    EXPECT_EQ(rename("Work", TOO_LONG.c_str()), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Work"));
    EXPECT_THAT(platform.calls_of("contact_db_service_group_update"), IsEmpty());
    EXPECT_THAT(platform.traces,
                Contains(traced("newCategory length is out of bound\n", "newCategory length is out of bound\n")));
}

TEST_F(RenameCategory, ReplacesTheWholeNameByAShorterOne)
{
    platform.add_group(0, LONGEST);
    EXPECT_EQ(rename(LONGEST.c_str(), "y"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("y"));
}

TEST_F(RenameCategory, DoesNotLookAtTheListType)
{
    for (int32_t listtype : {2, 3, 0, 4}) {
        SCOPED_TRACE(listtype);
        platform.add_group(0, "Work");
        EXPECT_EQ(rename("Work", "Office", listtype), 1);
        EXPECT_THAT(platform.group_names(), ElementsAre("Office"));
        start_over();
    }
}

TEST_F(RenameCategory, SucceedsWithoutSuchACategory)
{
    platform.add_group(0, "Home");
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Home"));
}

TEST_F(RenameCategory, TriesNoKeyInAStoreWithoutGroups)
{
    for (int count : {0, -1}) {
        platform.reported_counts["contact_db_service_group_get_count"] = count;
        EXPECT_EQ(rename("Work", "Office"), 1);
        EXPECT_THAT(platform.calls_of("contact_db_service_group_get"), IsEmpty());
    }
}

TEST_F(RenameCategory, SucceedsWhenGroupsCannotBeCounted)
{
    platform.add_group(0, "Work");
    platform.fail("contact_db_service_group_get_count", 61);
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Work"));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(RenameCategory, SucceedsWhenTheConnectionIsRefused)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistImpl_renameCategoryN", "initialize", 10011)));
}

TEST_F(RenameCategory, RenamesWithoutAConnection)
{
    platform.add_group(0, "Work");
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Office"));
}

TEST_F(RenameCategory, FailsAtTheFirstGroupThatTheStoreRefuses)
{
    platform.add_group(0, "Work");
    platform.add_group(1, "Work");
    platform.fail("contact_db_service_group_update", 65);
    EXPECT_EQ(rename("Work", "Office"), 0);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_update"), SizeIs(1));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "contact_db_service_group_update is failed error_code = %d\n",
                               "contact_db_service_group_update is failed error_code = 65\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(RenameCategory, SucceedsForARefusedGroupWhenTheConnectionCannotBeClosed)
{
    platform.add_group(0, "Work");
    platform.fail("contact_db_service_group_update", 65);
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_renameCategoryN")));
}

TEST_F(RenameCategory, SucceedsWhenTheConnectionCannotBeClosed)
{
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(rename("Work", "Office"), 1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_renameCategoryN")));
}

// ---- Deleting -------------------------------------------------------------------------------------------------------

TEST_F(DeleteCategory, DeletesTheGroupAndKeepsItsContacts)
{
    EXPECT_EQ(remove("Work"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Home"));
    EXPECT_THAT(platform.contact_indexes(), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_group_get_count()",
                                            "contact_db_service_group_search(\"Work\", 30, 0, 2, 1)",
                                            "contact_db_service_group_delete(4)", "contact_db_service_disconnect()"));
    EXPECT_THAT(allocation_sizes(), Contains(size_t{2 * 1352}));
}

TEST_F(DeleteCategory, DeletesEveryMemberWithItAlsoThoseOfOtherGroups)
{
    EXPECT_EQ(remove("Work", 1), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Home"));
    EXPECT_THAT(platform.contact_indexes(), ElementsAre(3, 4));
    EXPECT_THAT(platform.calls,
                ElementsAre("contact_db_service_connect()", "contact_db_service_group_get_count()",
                            "contact_db_service_group_search(\"Work\", 30, 0, 2, 1)",
                            "contact_db_service_group_get_members(4, 10000)", "contact_db_service_contact_delete(1)",
                            "contact_db_service_contact_delete(2)", "contact_db_service_group_delete(4)",
                            "contact_db_service_disconnect()"));
}

TEST_F(DeleteCategory, TracesItsSteps)
{
    remove("Work", 1);
    EXPECT_THAT(platform.traces.at(0), trace(TRACE_STEP, "%s\n", "pimlistImpl_deleteCategoryN\n"));
    for (const char* text :
         {"contact_db_service_group_get_count = 2\n", "DB query [Work]\n", "search group_count is 1\n",
          "MATCH!! deleteCategoryName & contact_group_array[i].name (Work)\n",
          "contact_db_service_group_get.contact_group_array[i].group_key.index = 4\n", "deleteUnassignedItems TRUE, \n",
          "contact_get_group_members OK\n", "contact_db_service_contact_delete index = 1\n",
          "contact_db_service_contact_delete index = 2\n", "deleting group name= Work\n",
          "contact_db_service_group_delete succeed\n"})
        EXPECT_THAT(platform.traces, Contains(trace_text(TRACE_STEP, text)));
}

TEST_F(DeleteCategory, RefusesWhatCannotBeACategory)
{
    struct {
        const char* when;
        const char* name;
        int32_t listtype;
    } const rows[] = {
        {"events", "Work", 2}, {"to-dos", "Work", 3},    {"unknown list", "Work", 0},  {"null name", nullptr, 1},
        {"empty name", "", 1}, {"only a comma", ",", 1}, {"with a comma", "Wo,rk", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(remove(row.name, 1, row.listtype), 0);
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(platform.group_names(), ElementsAre("Home", "Work"));
    }
}

TEST_F(DeleteCategory, DeletesOnlyTheFirstOfSeveralOfThatName)
{
    platform.add_group(6, "Work");
    platform.add_members(6, {4});
    EXPECT_EQ(remove("Work", 1), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Home", "Work"));
    EXPECT_TRUE(platform.groups.contains(6));
    EXPECT_THAT(platform.contact_indexes(), ElementsAre(3, 4));
}

TEST_F(DeleteCategory, DeletesTheOnlyOne)
{
    platform.groups.erase(platform.groups.begin());
    EXPECT_EQ(remove("Work"), 1);
    EXPECT_THAT(platform.groups, IsEmpty());
    EXPECT_THAT(allocation_sizes(), ElementsAre(1352));
}

TEST_F(DeleteCategory, DeletesNothingWithoutSuchACategory)
{
    EXPECT_EQ(remove("Nowhere", 1), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Home", "Work"));
    EXPECT_THAT(platform.contact_indexes(), SizeIs(4));
    EXPECT_THAT(platform.calls_of("contact_db_service_group_delete"), IsEmpty());
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(DeleteCategory, FindsNothingForANameThatTheQueryCannotHold)
{
    platform.add_group(7, std::string(127, 'x'));
    for (size_t length : {128u, 129u, 5000u}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(remove(std::string(length, 'x').c_str(), 1), 1);
        EXPECT_THAT(platform.calls_of("contact_db_service_group_search"), IsEmpty());
        EXPECT_THAT(platform.calls_of("contact_db_service_group_delete"), IsEmpty());
    }
}

TEST_F(DeleteCategory, FindsANameThatJustFitsTheQuery)
{
    const std::string name(127, 'x');
    platform.add_group(7, name);
    EXPECT_EQ(remove(name.c_str()), 1);
    EXPECT_FALSE(platform.groups.contains(7));
}

TEST_F(DeleteCategory, AsksNoFurtherInAStoreWithoutGroups)
{
    for (int count : {0, -1}) {
        SCOPED_TRACE(count);
        platform.reported_counts["contact_db_service_group_get_count"] = count;
        EXPECT_EQ(remove("Work", 1), 1);
        EXPECT_THAT(platform.calls_of("contact_db_service_group_search"), IsEmpty());
        EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
    }
}

TEST_F(DeleteCategory, SucceedsWhenTheConnectionIsRefused)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(remove("Work"), 1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistImpl_deleteCategoryN", "initialize", 10011)));
}

TEST_F(DeleteCategory, DeletesWithoutAConnection)
{
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(remove("Work"), 1);
    EXPECT_THAT(platform.group_names(), ElementsAre("Home"));
}

TEST_F(DeleteCategory, SucceedsWhenGroupsCannotBeCounted)
{
    platform.fail("contact_db_service_group_get_count", 61);
    EXPECT_EQ(remove("Work"), 1);
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_group_get_count()",
                                            "contact_db_service_disconnect()"));
}

TEST_F(DeleteCategory, FailsWhenTheRecordsCannotBeAllocated)
{
    fail_allocations_of(2 * 1352);
    EXPECT_EQ(remove("Work"), 0);
    EXPECT_TRUE(allocation_failed());
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_RECOVERABLE, "memory allocation failed..\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
    EXPECT_THAT(platform.group_names(), ElementsAre("Home", "Work"));
}

TEST_F(DeleteCategory, FailsWhenTheMemberListCannotBeAllocated)
{
    fail_allocation(2);
    EXPECT_EQ(remove("Work", 1), 0);
    EXPECT_TRUE(allocation_failed());
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_RECOVERABLE, "memory allocation failed..\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
    EXPECT_THAT(platform.group_names(), ElementsAre("Home", "Work"));
    EXPECT_THAT(platform.contact_indexes(), SizeIs(4));
}

TEST_F(DeleteCategory, SucceedsWithoutMemoryWhenTheConnectionCannotBeClosed)
{
    fail_allocations_of(2 * 1352);
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(remove("Work"), 1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_deleteCategoryN")));
}

TEST_F(DeleteCategory, LeavesNothingBehindWhicheverAllocationFails)
{
    for (int nth = 1;; ++nth) {
        SCOPED_TRACE(nth);
        fail_allocation(nth);
        remove("Work", 1);
        const bool failed = allocation_failed();
        EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
        start_over();
        if (!failed) break;
    }
}

TEST_F(DeleteCategory, FailsWhenTheSearchDoes)
{
    platform.fail("contact_db_service_group_search", 66);
    EXPECT_EQ(remove("Work"), 0);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "contact_db_service_group_search fail..(%d)\n",
                                                "contact_db_service_group_search fail..(66)\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(DeleteCategory, SucceedsAfterAFailedSearchWhenTheConnectionCannotBeClosed)
{
    platform.fail("contact_db_service_group_search", 66);
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(remove("Work"), 1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_deleteCategoryN")));
}

TEST_F(DeleteCategory, KeepsTheContactsWhenMembersCannotBeListed)
{
    platform.fail("contact_db_service_group_get_members", 67);
    EXPECT_EQ(remove("Work", 1), 1);
    EXPECT_THAT(platform.contact_indexes(), SizeIs(4));
    EXPECT_THAT(platform.group_names(), ElementsAre("Home"));
    EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, "contact_get_group_members OK\n"))));
}

TEST_F(DeleteCategory, GoesOnAfterAMemberThatCannotBeDeleted)
{
    platform.fail_call("contact_db_service_contact_delete", 1, 68);
    EXPECT_EQ(remove("Work", 1), 1);
    EXPECT_THAT(platform.contact_indexes(), ElementsAre(1, 3, 4));
    EXPECT_THAT(platform.group_names(), ElementsAre("Home"));
}

TEST_F(DeleteCategory, DeletesMoreMembersThanThreeThousand)
{
    std::vector<int32_t> members;
    for (int32_t index = 1; index <= 3001; ++index) members.push_back(index);
    platform.reported_members[WORK] = members;
    EXPECT_EQ(remove("Work", 1), 1);
    EXPECT_THAT(platform.calls_of("contact_db_service_contact_delete"), SizeIs(3001));
}

TEST_F(DeleteCategory, ReadsNoMemberPastItsListWhateverTheStoreCounts)
{
    platform.reported_counts["contact_db_service_group_get_members"] = 1000000;
    EXPECT_EQ(remove("Work", 1), 1);
    EXPECT_LE(platform.calls_of("contact_db_service_contact_delete").size(), 10000u);
    start_over();

    platform.reported_counts["contact_db_service_group_get_members"] = -1;
    EXPECT_EQ(remove("Work", 1), 1);
    EXPECT_THAT(platform.calls_of("contact_db_service_contact_delete"), IsEmpty());
}

TEST_F(DeleteCategory, SucceedsWhenTheGroupCannotBeDeleted)
{
    platform.fail("contact_db_service_group_delete", 69);
    EXPECT_EQ(remove("Work"), 1);
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_RECOVERABLE, "contact_db_service_group_delete is failed(error_code :%d)\n",
                               "contact_db_service_group_delete is failed(error_code :69)\n")));
    EXPECT_THAT(platform.traces,
                Not(Contains(Field(&trace_message::format, "contact_db_service_group_delete succeed\n"))));
}

TEST_F(DeleteCategory, SucceedsWhenTheConnectionCannotBeClosed)
{
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(remove("Work"), 1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_deleteCategoryN")));
}

// ---- Testing --------------------------------------------------------------------------------------------------------

TEST_F(IsCategory, AnswersWhetherAGroupBearsTheName)
{
    EXPECT_EQ(is_category("Work"), 1);
    EXPECT_EQ(is_category("work"), 0);
    EXPECT_EQ(is_category("Home"), 0);
}

TEST_F(IsCategory, AsksForTheNameOverOneConnection)
{
    is_category("Work");
    EXPECT_THAT(platform.calls,
                ElementsAre("contact_db_service_connect()", "contact_db_service_group_exist_same_name(\"Work\")",
                            "contact_db_service_disconnect()"));
    EXPECT_THAT(platform.traces.at(0),
                trace(TRACE_STEP, "%s, CategoryName = %s\n", "pimlistImpl_isCategoryN, CategoryName = Work\n"));
}

TEST_F(IsCategory, DeniesWhatCannotBeACategoryWithoutAskingTheStore)
{
    struct {
        const char* when;
        const char* name;
        int32_t listtype;
    } const rows[] = {
        {"events", "Work", 2}, {"to-dos", "Work", 3},    {"unknown list", "Work", 4},  {"null name", nullptr, 1},
        {"empty name", "", 1}, {"only a comma", ",", 1}, {"with a comma", "Wo,rk", 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(is_category(row.name, row.listtype), 0);
        EXPECT_THAT(platform.calls, IsEmpty());
    }
}

TEST_F(IsCategory, HandsTheStoresFlagOn)
{
    platform.reported_same_name = 5;
    EXPECT_EQ(is_category("Work"), 5);
}

TEST_F(IsCategory, DeniesWhenTheNameCannotBeLookedUp)
{
    platform.fail("contact_db_service_group_exist_same_name", 63);
    EXPECT_EQ(is_category("Work"), 0);
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(IsCategory, AffirmsWhenTheStoreCannotBeReached)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(is_category("Nowhere"), 1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistImpl_isCategoryN", "initialize", 10011)));
}

TEST_F(IsCategory, AffirmsWhenTheConnectionCannotBeClosed)
{
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(is_category("Nowhere"), 1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistImpl_isCategoryN")));

    platform.fail("contact_db_service_group_exist_same_name", 63);
    EXPECT_EQ(is_category("Nowhere"), 1) << "also after a failed look-up";
}

// ---- The natives ----------------------------------------------------------------------------------------------------

TEST_F(AddCategoryNative, AddsAndReleasesTheName)
{
    Java_com_qvr_zek_pim_PIMListImpl_addCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work"));
    EXPECT_THAT(platform.group_names(), ElementsAre("Work"));
    EXPECT_THAT(jni.calls, ElementsAre("GetStringUTFChars(Work)", "ReleaseStringUTFChars(Work)"));
    EXPECT_THAT(platform.traces.at(0),
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_addCategoryN ***\n"));
    EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, "pimlistImpl_addCategoryN fail..\n"))));
}

TEST_F(AddCategoryNative, TracesARefusal)
{
    for (const char* name : {"Wo,rk", TOO_LONG.c_str()}) {
        SCOPED_TRACE(name);
        Java_com_qvr_zek_pim_PIMListImpl_addCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string(name));
        EXPECT_THAT(platform.traces,
                    Contains(traced("pimlistImpl_addCategoryN fail..\n", "pimlistImpl_addCategoryN fail..\n")));
        EXPECT_THAT(jni.calls.back(), HasSubstr("ReleaseStringUTFChars("));
        EXPECT_FALSE(jni.pending);
        start_over();
    }
}

TEST_F(AddCategoryNative, ReturnsAtOnceForANullName)
{
    Java_com_qvr_zek_pim_PIMListImpl_addCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, nullptr);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(jni.calls, IsEmpty());
    EXPECT_THAT(platform.traces, SizeIs(1)) << "the entry mark";
}

TEST_F(AddCategoryNative, ReturnsWhenTheNameCannotBeHad)
{
    jni.fail("GetStringUTFChars");
    Java_com_qvr_zek_pim_PIMListImpl_addCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work"));
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(Field(&trace_message::format, "pimlistImpl_addCategoryN fail..\n")));
    keep_exception("the machine's own error goes on to Java");
}

TEST_F(RenameCategoryNative, RenamesAndReleasesBothNames)
{
    platform.add_group(0, "Work");
    Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work"),
                                                     jni.string("Office"));
    EXPECT_THAT(platform.group_names(), ElementsAre("Office"));
    EXPECT_THAT(jni.calls_of("ReleaseStringUTFChars"), SizeIs(2));
    EXPECT_THAT(platform.traces.at(0),
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN ***\n"));
}

TEST_F(RenameCategoryNative, ReturnsAtOnceForANullName)
{
    Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, nullptr, jni.string("x"));
    Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("x"), nullptr);
    Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, nullptr, nullptr);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(jni.calls, IsEmpty());
}

TEST_F(RenameCategoryNative, ReturnsWhenEitherNameCannotBeHad)
{
    for (int nth : {1, 2}) {
        SCOPED_TRACE(nth);
        jni.fail_call("GetStringUTFChars", nth);
        Java_com_qvr_zek_pim_PIMListImpl_renameCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work"),
                                                         jni.string("Office"));
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(jni.calls_of("GetStringUTFChars"), SizeIs(nth)) << "no second name with an exception pending";
        keep_exception("the machine's own error goes on to Java");
        start_over();
    }
}

TEST_F(DeleteCategoryNative, HandsTheFlagOn)
{
    for (const jboolean flag : {jboolean{JNI_FALSE}, jboolean{JNI_TRUE}}) {
        SCOPED_TRACE(flag);
        Java_com_qvr_zek_pim_PIMListImpl_deleteCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work"), flag);
        EXPECT_THAT(platform.group_names(), ElementsAre("Home"));
        EXPECT_THAT(platform.contact_indexes(), SizeIs(flag == JNI_TRUE ? 2 : 4));
        EXPECT_THAT(jni.calls, ElementsAre("GetStringUTFChars(Work)", "ReleaseStringUTFChars(Work)"));
        EXPECT_THAT(platform.traces.at(0), AllOf(Field(&trace_message::format, "%s ***, deleteUnassignedItems : %d\n"),
                                                 Field(&trace_message::text,
                                                       "Java_com_qvr_zek_pim_PIMListImpl_deleteCategoryN ***, "
                                                       "deleteUnassignedItems : " +
                                                           std::to_string(flag) + "\n")));
        EXPECT_THAT(platform.traces,
                    Contains(trace(TRACE_STEP, "delete category name is %s\n", "delete category name is Work\n")));
        start_over();
    }
}

TEST_F(DeleteCategoryNative, ReturnsAtOnceForANullName)
{
    Java_com_qvr_zek_pim_PIMListImpl_deleteCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, nullptr, JNI_TRUE);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(jni.calls, IsEmpty());
}

TEST_F(DeleteCategoryNative, ReturnsWhenTheNameCannotBeHad)
{
    jni.fail("GetStringUTFChars");
    Java_com_qvr_zek_pim_PIMListImpl_deleteCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work"), JNI_TRUE);
    EXPECT_THAT(platform.calls, IsEmpty());
    keep_exception("the machine's own error goes on to Java");
}

TEST_F(IsCategoryNative, AnswersAndReleasesTheName)
{
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_isCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work")),
              JNI_TRUE);
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_isCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Home")),
              JNI_FALSE);
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_isCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("")),
              JNI_FALSE);
    EXPECT_THAT(jni.calls_of("ReleaseStringUTFChars"), SizeIs(3));
    EXPECT_THAT(platform.traces.at(0),
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_isCategoryN ***\n"));
}

TEST_F(IsCategoryNative, DeniesANullName)
{
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_isCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, nullptr), JNI_FALSE);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(jni.calls, IsEmpty());
}

TEST_F(IsCategoryNative, DeniesWhenTheNameCannotBeHad)
{
    jni.fail("GetStringUTFChars");
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_isCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, jni.string("Work")),
              JNI_FALSE);
    EXPECT_THAT(platform.calls, IsEmpty());
    keep_exception("the machine's own error goes on to Java");
}

} // namespace category_edit_test
