// Walking the records of a list, of a category, and the contacts without one.
#include "pimlistimpl_limo_arm.h"

#include <numeric>
#include <vector>

#include "unit_test.h"

namespace enumeration_test {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Not;

namespace {

class IndexAfter : public unit_test {};

class NextRecord : public unit_test {
protected:
    void add_contacts(const std::vector<int32_t>& indexes)
    {
        for (int32_t index : indexes) platform.add_contact(index);
    }

    static int32_t next(int32_t listtype, int32_t recindex) { return pimlistimpl_nextRecordN(listtype, 9, recindex); }
};

class NextRecordInCategory : public NextRecord {
protected:
    static constexpr int32_t WORK = 4; // The key index of the category "Work".

    // Four contacts, the first three of them at work.
    void SetUp() override
    {
        NextRecord::SetUp();
        add_contacts({5, 9, 12, 20});
        platform.add_group(1, "Home");
        platform.add_group(WORK, "Work");
        platform.add_members(WORK, {5, 9, 12});
    }

    static int32_t next(int32_t recindex, const char* name)
    {
        return pimlistimpl_nextRecordInCategoryN(LIST_CONTACT, 9, recindex, name);
    }
};

class NextRecordWithoutCategory : public NextRecord {
protected:
    static int32_t next(int32_t recindex)
    {
        return pimlistimpl_nextRecordInCategoryN(LIST_CONTACT, 9, recindex, nullptr);
    }
};

using NextRecordNative = NextRecord;
using NextRecordInCategoryNative = NextRecordInCategory;

struct walk_row {
    const char* when;
    std::vector<int32_t> listed;
    int32_t after;
    int32_t expected;
};

const walk_row WALKS[] = {
    {"empty list from the start", {}, -1, -1},
    {"empty list from a record", {}, 5, -1},
    {"from the start", {5, 9, 12}, -1, 5},
    {"from the first record", {5, 9, 12}, 5, 9},
    {"from a middle record", {5, 9, 12}, 9, 12},
    {"from the last record", {5, 9, 12}, 12, -1},
    {"a stale index restarts", {5, 9, 12}, 7, 5},
    {"zero is an index like any other", {5, 9, 12}, 0, 5},
    {"below -1 is an index like any other", {5, 9, 12}, -2, 5},
    {"the only record from the start", {4}, -1, 4},
    {"the only record", {4}, 4, -1},
    {"a stale index in a list of one", {4}, 3, 4},
    {"the list's order counts, not the indexes'", {12, 5, 9}, 12, 5},
    {"the last listed ends, though not the highest", {12, 5, 9}, 9, -1},
    {"a repeated index goes on from its first place", {5, 5, 9}, 5, 5},
    {"a repeated last index ends the walk", {5, 9, 5}, 5, -1},
};

struct organizer_row {
    const char* when;
    int32_t listtype;
    int32_t type;
};

constexpr organizer_row ORGANIZER_LISTS[] = {{"events", LIST_EVENT, 8}, {"to-dos", LIST_TODO, 9}};

} // namespace

// ---- The rule -------------------------------------------------------------------------------------------------------

TEST_F(IndexAfter, FollowsTheListed)
{
    for (const walk_row& row : WALKS) EXPECT_EQ(index_after(row.listed, row.after), row.expected) << row.when;
}

TEST_F(IndexAfter, FindsEveryIndexOfLongLists)
{
    for (const int32_t size : {63, 64, 65, 128, 200}) {
        std::vector<int32_t> listed(static_cast<size_t>(size));
        std::iota(listed.rbegin(), listed.rend(), 1); // Stores need not sort.
        for (int32_t index = size; index > 1; --index)
            EXPECT_EQ(index_after(listed, index), index - 1) << "of " << size;
        EXPECT_EQ(index_after(listed, 1), -1) << size;
        EXPECT_EQ(index_after(listed, size + 1), size) << "the restart of " << size;

        listed[listed.size() - 2] = size - 10;
        EXPECT_EQ(index_after(listed, size - 10), size - 11) << "the first of two in " << size;
    }
}

// ---- Contacts -------------------------------------------------------------------------------------------------------

TEST_F(NextRecord, FollowsTheStoresOrderOfContacts)
{
    for (const walk_row& row : WALKS) {
        SCOPED_TRACE(row.when);
        add_contacts(row.listed);
        EXPECT_EQ(next(LIST_CONTACT, row.after), row.expected);
        start_over();
    }
}

TEST_F(NextRecord, RestartsAtTheFirstRecordWhenTheIndexIsStale)
{
    add_contacts({5, 9, 12});
    EXPECT_EQ(next(LIST_CONTACT, 9), 12);
    platform.contacts.erase(platform.contacts.begin() + 1);
    EXPECT_EQ(next(LIST_CONTACT, 9), 5);
}

TEST_F(NextRecord, AsksTheContactStoreForCountAndList)
{
    add_contacts({5, 9, 12});
    EXPECT_EQ(next(LIST_CONTACT, 5), 9);
    EXPECT_THAT(platform.calls,
                ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get_count()",
                            "contact_db_service_contact_get_all_indices(3)", "contact_db_service_disconnect()"));
}

TEST_F(NextRecord, TakesRoomForTheContactsCountedAndNoMore)
{
    add_contacts({5});
    EXPECT_EQ(next(LIST_CONTACT, -1), 5);
    EXPECT_THAT(allocation_sizes(), ElementsAre(sizeof(int32_t)));
}

TEST_F(NextRecord, TracesTheRecordAskedForAndTheIndexFound)
{
    add_contacts({5, 9, 12});
    next(LIST_CONTACT, 5);
    ASSERT_FALSE(platform.traces.empty());
    EXPECT_THAT(platform.traces.front(),
                trace(TRACE_STEP, "%s, recindex = %d\n", "pimlistimpl_nextRecordN, recindex = 5\n"));
    EXPECT_THAT(platform.traces.back(), trace(TRACE_STEP, "index: %d \n", "index: 9 \n"));
    EXPECT_THAT(platform.traces.back(),
                AllOf(Field(&trace_message::path, "java-runtime/jsr75/pims/native/limo-arm/pimlistimpl_limo_arm.cpp"),
                      Field(&trace_message::function, "pimlistimpl_nextRecordN"),
                      Field(&trace_message::calls_before, platform.calls.size())));
}

TEST_F(NextRecord, EndsAtOnceInAnEmptyContactStore)
{
    EXPECT_EQ(next(LIST_CONTACT, -1), -1);
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get_count()",
                                            "contact_db_service_disconnect()"));
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "contact_count is 0 or under 0\n")));
}

TEST_F(NextRecord, EndsWhenTheStoreCountsFewerThanNoContacts)
{
    add_contacts({5});
    platform.reported_counts["contact_db_service_contact_get_count"] = -3;
    EXPECT_EQ(next(LIST_CONTACT, -1), -1);
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "contact_count is 0 or under 0\n")));
    EXPECT_THAT(allocation_sizes(), IsEmpty());
}

TEST_F(NextRecord, EndsWhenTheContactConnectionIsRefused)
{
    add_contacts({5});
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(next(LIST_CONTACT, -1), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistimpl_nextRecordN", "initialize", 10011)));
}

TEST_F(NextRecord, WalksContactsWithoutAConnection)
{
    add_contacts({5, 9});
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(next(LIST_CONTACT, 5), 9);
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecord, LeavesTheConnectionOpenWhenContactsCannotBeCounted)
{
    add_contacts({5});
    platform.fail("contact_db_service_contact_get_count", 61);
    EXPECT_EQ(next(LIST_CONTACT, -1), -1);
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get_count()"));
    EXPECT_THAT(platform.traces,
                Contains(assertion("pimlistimpl_nextRecordN", "contact_db_service_contact_get_count", 61)));
    keep_connection("a failed count returns at once");
}

TEST_F(NextRecord, EndsWhenTheContactListCannotBeAllocated)
{
    add_contacts({5, 9});
    fail_allocation(1);
    EXPECT_EQ(next(LIST_CONTACT, -1), -1);
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_HARD, "memory allocation failed..\n")));
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get_count()",
                                            "contact_db_service_disconnect()"));
}

TEST_F(NextRecord, EndsWhenTheListHoldsNoContactsAfterAll)
{
    add_contacts({5});
    platform.fail("contact_db_service_contact_get_all_indices", 16);
    EXPECT_EQ(next(LIST_CONTACT, -1), -1);
    EXPECT_THAT(platform.traces,
                Contains(trace_line(TRACE_STEP, "contact_db_service_contact_get_all_indices return no records.\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecord, EndsWhenTheContactListCannotBeRead)
{
    add_contacts({5});
    platform.fail("contact_db_service_contact_get_all_indices", 17);
    EXPECT_EQ(next(LIST_CONTACT, -1), -1);
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "contact_db_service_contact_get_all_indices return error(%d) \n",
                               "contact_db_service_contact_get_all_indices return error(17) \n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecord, GoesByTheCountThatTheListCallReturned)
{
    add_contacts({5, 9, 12});
    platform.reported_counts["contact_db_service_contact_get_all_indices"] = 2;
    EXPECT_EQ(next(LIST_CONTACT, 9), -1) << "the last of the two";
    EXPECT_EQ(next(LIST_CONTACT, 12), 5) << "not among the two";
}

TEST_F(NextRecord, TakesUnfilledEntriesForTheEndOfTheList)
{
    add_contacts({5, 9, 12});
    platform.reported_counts["contact_db_service_contact_get_count"] = 5;
    platform.reported_counts["contact_db_service_contact_get_all_indices"] = 5;
    EXPECT_EQ(next(LIST_CONTACT, 9), 12);
    EXPECT_EQ(next(LIST_CONTACT, 12), -1);
}

TEST_F(NextRecord, ReadsNoEntryPastItsListWhateverTheStoreCounts)
{
    add_contacts({5, 9, 12});
    platform.reported_counts["contact_db_service_contact_get_all_indices"] = 1000000;
    EXPECT_EQ(next(LIST_CONTACT, 9), 12);
    EXPECT_EQ(next(LIST_CONTACT, 12), -1);
    platform.reported_counts["contact_db_service_contact_get_all_indices"] = -1;
    EXPECT_EQ(next(LIST_CONTACT, -1), -1);
}

TEST_F(NextRecord, EndsWhenTheContactConnectionCannotBeClosed)
{
    add_contacts({5, 9});
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(next(LIST_CONTACT, -1), -1);
    ASSERT_FALSE(platform.traces.empty());
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistimpl_nextRecordN")));
    EXPECT_THAT(platform.traces, Not(Contains(trace(TRACE_STEP, "index: %d \n", "index: 5 \n"))));
}

// ---- Events and to-dos ----------------------------------------------------------------------------------------------

TEST_F(NextRecord, FollowsTheStoresOrderOfEventsAndToDos)
{
    for (const organizer_row& list : ORGANIZER_LISTS) {
        for (const walk_row& row : WALKS) {
            SCOPED_TRACE(std::string(list.when) + ": " + row.when);
            for (int32_t index : row.listed) platform.add_item(list.type, index);
            platform.add_item(list.type == 8 ? 9 : 8, 70); // Of the other kind: never seen.
            EXPECT_EQ(next(list.listtype, row.after), row.expected);
            start_over();
        }
    }
}

TEST_F(NextRecord, AsksTheOrganizerForCountAndListOfTheType)
{
    for (const organizer_row& list : ORGANIZER_LISTS) {
        SCOPED_TRACE(list.when);
        for (int32_t index : {3, 4}) platform.add_item(list.type, index);
        EXPECT_EQ(next(list.listtype, 3), 4);
        const std::string type = std::to_string(list.type);
        EXPECT_THAT(platform.calls,
                    ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()",
                                "org_db_service_get_record_count(" + type + ")",
                                "org_db_service_get_records_id(" + type + ", 2)",
                                "org_db_service_disconnect_database()", "org_db_service_free_full_record()"));
        start_over();
    }
}

TEST_F(NextRecord, EndsWhenTheOrganizerCannotBeOpened)
{
    for (const organizer_row& list : ORGANIZER_LISTS) {
        SCOPED_TRACE(list.when);
        platform.fail("org_db_service_connect_database", 31);
        EXPECT_EQ(next(list.listtype, -1), -1);
        EXPECT_THAT(platform.calls, ElementsAre("org_db_service_connect_database()"));
        EXPECT_THAT(platform.traces, Contains(assertion("pimlistimpl_nextRecordN", "initialize", 10007)));
        start_over();
    }
}

TEST_F(NextRecord, EndsWhenTheOrganizerRecordCannotBePrepared)
{
    platform.fail("org_db_service_init_full_record", 32);
    EXPECT_EQ(next(LIST_EVENT, -1), -1);
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistimpl_nextRecordN", "initialize", 10008)));
    keep_connection("a refused opening is not followed by a closing");
}

TEST_F(NextRecord, OnlyTracesThatItemsCannotBeCounted)
{
    for (const organizer_row& list : ORGANIZER_LISTS) {
        SCOPED_TRACE(list.when);
        platform.add_item(list.type, 3);
        platform.fail("org_db_service_get_record_count", 33);
        EXPECT_EQ(next(list.listtype, -1), -1);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "org_db_service_get_record_count is fail.....(%d)\n",
                                                    "org_db_service_get_record_count is fail.....(33)\n")));
        start_over();
    }
}

TEST_F(NextRecord, GoesOnWithTheCountThatAFailedCountCallWrote)
{
    for (int32_t index : {3, 4}) platform.add_item(ORG_TYPE_EVENT, index);
    platform.fail("org_db_service_get_record_count", 33);
    platform.reported_counts["org_db_service_get_record_count"] = 2;
    EXPECT_EQ(next(LIST_EVENT, 3), 4);
}

TEST_F(NextRecord, EndsWhenTheStoreCountsFewerThanNoItems)
{
    platform.add_item(ORG_TYPE_TODO, 3);
    platform.reported_counts["org_db_service_get_record_count"] = -2;
    EXPECT_EQ(next(LIST_TODO, -1), -1);
}

TEST_F(NextRecord, ClosesTheContactStoreWhenTheItemListCannotBeAllocated)
{
    for (const organizer_row& list : ORGANIZER_LISTS) {
        SCOPED_TRACE(list.when);
        platform.add_item(list.type, 3);
        fail_allocation(8); // After the seven text buffers.
        EXPECT_EQ(next(list.listtype, -1), -1);
        EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
        EXPECT_THAT(platform.calls_of("org_db_service_get_records_id"), IsEmpty());
        EXPECT_THAT(platform.calls_of("org_db_service_disconnect_database"), IsEmpty());
        keep_connection("the contact connection is closed in place of the organizer's");
        keep_blocks("and the record with its buffers is therefore never released");
        start_over();
    }
}

TEST_F(NextRecord, EndsWhenTheItemListCannotBeRead)
{
    for (const organizer_row& list : ORGANIZER_LISTS) {
        SCOPED_TRACE(list.when);
        platform.add_item(list.type, 3);
        platform.fail("org_db_service_get_records_id", 34);
        EXPECT_EQ(next(list.listtype, -1), -1);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "org_db_service_get_records_id fail(%d)\n",
                                                    "org_db_service_get_records_id fail(34)\n")));
        start_over();
    }
}

TEST_F(NextRecord, TakesItemsThatWereNotListedForTheEnd)
{
    for (int32_t index : {3, 4}) platform.add_item(ORG_TYPE_EVENT, index);
    platform.reported_counts["org_db_service_get_record_count"] = 4;
    EXPECT_EQ(next(LIST_EVENT, 3), 4);
    EXPECT_EQ(next(LIST_EVENT, 4), -1);
}

TEST_F(NextRecord, EndsWhenTheOrganizerCannotBeClosed)
{
    for (const organizer_row& list : ORGANIZER_LISTS) {
        SCOPED_TRACE(list.when);
        platform.add_item(list.type, 3);
        platform.fail("org_db_service_disconnect_database", 42);
        EXPECT_EQ(next(list.listtype, -1), -1);
        EXPECT_THAT(platform.traces, Contains(failed_close("pimlistimpl_nextRecordN")));
        keep_blocks("a connection that would not close keeps the record's buffers");
        start_over();
    }
}

TEST_F(NextRecord, WalksItemsWithoutTextBuffers)
{
    for (int32_t index : {3, 4}) platform.add_item(ORG_TYPE_TODO, index, "text");
    fail_allocation(2);
    EXPECT_EQ(next(LIST_TODO, 3), 4);
}

TEST_F(NextRecord, RefusesAnUnknownListWithoutAConnection)
{
    for (int32_t listtype : {0, 4, -1}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(next(listtype, -1), -1);
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(platform.traces,
                    Contains(trace_line(TRACE_HARD, "qm4ruv : list type is wrong, must be(Contact, Event, Todo)\n")));
        start_over();
    }
}

// ---- Members of a category ------------------------------------------------------------------------------------------

TEST_F(NextRecordInCategory, FollowsTheMembers)
{
    for (const walk_row& row : WALKS) {
        SCOPED_TRACE(row.when);
        platform.reported_members[WORK] = row.listed;
        EXPECT_EQ(next(row.after, "Work"), row.expected);
        start_over();
    }
}

TEST_F(NextRecordInCategory, RestartsAtTheFirstMemberWhenTheIndexIsStale)
{
    EXPECT_EQ(next(20, "Work"), 5);
}

TEST_F(NextRecordInCategory, AsksForTheKeyTheGroupAndItsMembers)
{
    EXPECT_EQ(next(9, "Work"), 12);
    // Room for as many members as a store holds contacts.
    EXPECT_THAT(platform.calls,
                ElementsAre("contact_db_service_connect()", "contact_db_service_group_get_id_by_name(\"Work\")",
                            "contact_db_service_group_get(4)", "contact_db_service_group_get_members(4, 10000)",
                            "contact_db_service_disconnect()"));
    ASSERT_FALSE(platform.traces.empty());
    EXPECT_THAT(platform.traces.front(),
                trace(TRACE_STEP, "%s, recindex = %d\n", "pimlistimpl_nextRecordInCategoryN, recindex = 9\n"));
    EXPECT_THAT(platform.traces.back(), trace(TRACE_STEP, "index: %d \n", "index: 12 \n"));
}

TEST_F(NextRecordInCategory, EndsAtOnceInACategoryWithoutMembers)
{
    EXPECT_EQ(next(-1, "Home"), -1);
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecordInCategory, WalksACategoryAsLargeAsTheStore)
{
    std::vector<int32_t> members(10000);
    for (size_t i = 0; i < members.size(); ++i) members[i] = static_cast<int32_t>(i) + 1;
    platform.reported_members[WORK] = members;
    EXPECT_EQ(next(9999, "Work"), 10000);
    EXPECT_EQ(next(10000, "Work"), -1);
}

TEST_F(NextRecordInCategory, ReadsNoEntryPastItsListWhateverTheStoreCounts)
{
    platform.reported_counts["contact_db_service_group_get_members"] = 1000000;
    EXPECT_EQ(next(9, "Work"), 12);
    EXPECT_EQ(next(12, "Work"), -1) << "unfilled entries are the end";
    platform.reported_counts["contact_db_service_group_get_members"] = -1;
    EXPECT_EQ(next(-1, "Work"), -1);
}

TEST_F(NextRecordInCategory, ClosesAContactConnectionItNeverOpenedForAnotherList)
{
    for (int32_t listtype : {2, 3, 0, 4}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(pimlistimpl_nextRecordInCategoryN(listtype, 9, -1, "Work"), -1);
        EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_disconnect()"));
        start_over();
    }
}

TEST_F(NextRecordInCategory, EndsWhenTheConnectionIsRefused)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(next(-1, "Work"), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistimpl_nextRecordInCategoryN", "initialize", 10011)));
}

TEST_F(NextRecordInCategory, EndsWithoutClosingWhenTheStoreCouldNotBeOpened)
{
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(next(-1, "Work"), -1);
    EXPECT_THAT(platform.traces, Contains(traced("Error occured!\n", "Error occured!\n")));
    EXPECT_THAT(platform.calls_of("contact_db_service_disconnect"), IsEmpty());
}

namespace {

struct category_failure_row {
    const char* function;
    const char* format;
    const char* text;
    size_t calls; // Up to and with the one that fails.
};

constexpr category_failure_row CATEGORY_FAILURES[] = {
    {"contact_db_service_group_get_id_by_name", "contact_db_service_group_get_id_by_name FAIL(%d)\n",
     "contact_db_service_group_get_id_by_name FAIL(55)\n", 2},
    {"contact_db_service_group_get", "contact_db_service_group_get FAIL(%d)\n",
     "contact_db_service_group_get FAIL(55)\n", 3},
    {"contact_db_service_group_get_members", "contact_db_service_group_get_members FAIL\n",
     "contact_db_service_group_get_members FAIL\n", 4},
};

} // namespace

TEST_F(NextRecordInCategory, LeavesTheConnectionOpenWhenAStoreCallFails)
{
    for (const category_failure_row& row : CATEGORY_FAILURES) {
        SCOPED_TRACE(row.function);
        platform.fail(row.function, 55);
        EXPECT_EQ(next(-1, "Work"), -1);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, row.format, row.text)));
        EXPECT_THAT(platform.traces, Contains(traced("Error occured!\n", "Error occured!\n")));
        EXPECT_EQ(platform.calls.size(), row.calls);
        keep_connection("an error word that is not clear ends the walk before the closing");
        start_over();
    }
}

TEST_F(NextRecordInCategory, ClosesWhenAStoreCallFailsWithoutAnError)
{
    for (const category_failure_row& row : CATEGORY_FAILURES) {
        SCOPED_TRACE(row.function);
        platform.fail(row.function, 0);
        EXPECT_EQ(next(-1, "Work"), -1);
        EXPECT_EQ(platform.calls.size(), row.calls + 1);
        EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
        EXPECT_THAT(platform.traces, Not(Contains(traced("Error occured!\n", "Error occured!\n"))));
        start_over();
    }
}

TEST_F(NextRecordInCategory, EndsWithoutClosingWhenACallThatSucceedsLeavesAnError)
{
    for (const category_failure_row& row : CATEGORY_FAILURES) {
        SCOPED_TRACE(row.function);
        platform.succeed_with_error(row.function, 5);
        EXPECT_EQ(next(-1, "Work"), -1);
        EXPECT_THAT(platform.traces, Contains(traced("Error occured!\n", "Error occured!\n")));
        EXPECT_THAT(platform.calls_of("contact_db_service_disconnect"), IsEmpty());
        keep_connection("an error word that is not clear ends the walk before the closing");
        start_over();
    }
}

TEST_F(NextRecordInCategory, EndsForACategoryThatIsNotThere)
{
    EXPECT_EQ(next(-1, "Nowhere"), -1);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "contact_db_service_group_get_id_by_name FAIL(%d)\n",
                                                "contact_db_service_group_get_id_by_name FAIL(101)\n")));
    keep_connection("an error word that is not clear ends the walk before the closing");
}

TEST_F(NextRecordInCategory, EndsWhenTheMemberListCannotBeAllocated)
{
    fail_allocation(1);
    EXPECT_EQ(next(-1, "Work"), -1);
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_HARD, "memory allocation failed..\n")));
    EXPECT_THAT(platform.calls_of("contact_db_service_group_get_members"), IsEmpty());
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecordInCategory, EndsWhenTheConnectionCannotBeClosed)
{
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(next(-1, "Work"), -1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistimpl_nextRecordInCategoryN")));
}

// ---- Contacts without a category ------------------------------------------------------------------------------------

TEST_F(NextRecordWithoutCategory, NeverRestarts)
{
    const walk_row rows[] = {
        {"no contact from the start", {}, -1, -1},
        {"no contact from a record", {}, 5, -1},
        {"from the start", {5, 9, 12}, -1, 5},
        {"from the first record", {5, 9, 12}, 5, 9},
        {"from a middle record", {5, 9, 12}, 9, 12},
        {"from the last record", {5, 9, 12}, 12, -1},
        {"a stale index ends the walk", {5, 9, 12}, 7, -1},
        {"the only record from the start", {4}, -1, 4},
        {"the only record", {4}, 4, -1},
        {"a stale index in a list of one", {4}, 3, -1},
        {"the list's order counts", {12, 5, 9}, 12, 5},
        {"a repeated index goes on from its first place", {5, 5, 9}, 5, 5},
        {"a repeated last index goes on from its first place", {5, 9, 5}, 5, 9},
    };
    for (const walk_row& row : rows) {
        SCOPED_TRACE(row.when);
        platform.reported_groupless = row.listed;
        EXPECT_EQ(next(row.after), row.expected);
        start_over();
    }
}

TEST_F(NextRecordWithoutCategory, LeavesOutMembersOfAnyCategory)
{
    add_contacts({1, 2, 3, 4});
    platform.add_group(0, "A");
    platform.add_group(29, "B");
    platform.add_members(0, {2});
    platform.add_members(29, {3});
    EXPECT_EQ(next(-1), 1);
    EXPECT_EQ(next(1), 4);
    EXPECT_EQ(next(4), -1);
}

TEST_F(NextRecordWithoutCategory, SearchesOnceAndReleasesTheWholeList)
{
    add_contacts({1, 2, 3});
    EXPECT_EQ(next(1), 2);
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()",
                                            "contact_db_service_search_contacts_of_no_group(null, 1024, \"\", 9)",
                                            "contact_db_service_disconnect()"));
    EXPECT_THAT(allocation_sizes(), Contains(1496u));
    EXPECT_EQ(unreleased_blocks(), 0u);
    EXPECT_THAT(platform.unreleased_lists, IsEmpty());
}

TEST_F(NextRecordWithoutCategory, ClosesWhenTheSearchFails)
{
    platform.fail("contact_db_service_search_contacts_of_no_group", 56);
    EXPECT_EQ(next(-1), -1);
    EXPECT_THAT(
        platform.traces,
        Contains(AllOf(Field(&trace_message::severity, TRACE_HARD),
                       Field(&trace_message::function, "pimlistimpl_nextRecordInCategoryN"),
                       Field(&trace_message::format,
                             ">>[ASSERT][%s][%d]contact_db_service_search_contacts_of_no_group FAIL(%d)\n\n"))));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecordWithoutCategory, EndsWhenTheWorkBlockCannotBeAllocated)
{
    add_contacts({1});
    fail_allocations_of(1496);
    EXPECT_EQ(next(-1), -1);
    EXPECT_TRUE(allocation_failed());
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_HARD, "memory allocation failed..\n")));
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_disconnect()"));
}

TEST_F(NextRecordWithoutCategory, WalksWithoutAConnection)
{
    add_contacts({1});
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(next(-1), 1);
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecordWithoutCategory, EndsWhenTheConnectionCannotBeClosed)
{
    add_contacts({1});
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(next(-1), -1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistimpl_nextRecordInCategoryN")));
}

// ---- The natives ----------------------------------------------------------------------------------------------------

TEST_F(NextRecordNative, MarksItsEntryAndHandsTheResultOn)
{
    add_contacts({5, 9});
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(jni.env(), nullptr, LIST_CONTACT, 0, 5), 9);
    EXPECT_THAT(platform.traces.at(0),
                AllOf(trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_nextRecordN ***\n"),
                      Field(&trace_message::path, "java-runtime/jsr75/pims/native/common/pimlistimplnatives.cpp")));
    EXPECT_THAT(jni.calls, IsEmpty());
}

TEST_F(NextRecordNative, RaisesNothingOnFailure)
{
    platform.fail("contact_db_service_contact_get_count", 1);
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_nextRecordN(jni.env(), nullptr, LIST_CONTACT, 0, -1), -1);
    EXPECT_THAT(jni.calls, IsEmpty());
    keep_connection("a failed count returns at once");
}

TEST_F(NextRecordInCategoryNative, TakesAndReleasesTheName)
{
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, 5,
                                                                     jni.string("Work")),
              9);
    EXPECT_THAT(jni.calls, ElementsAre("GetStringUTFChars(Work)", "ReleaseStringUTFChars(Work)"));
    EXPECT_THAT(platform.traces.at(0),
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN ***\n"));
}

TEST_F(NextRecordInCategoryNative, WalksTheContactsWithoutCategoryForANullName)
{
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, -1, nullptr),
              20);
    EXPECT_THAT(jni.calls, IsEmpty());
}

TEST_F(NextRecordInCategoryNative, ReleasesTheNameOnFailureToo)
{
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN(jni.env(), nullptr, LIST_EVENT, 0, -1,
                                                                     jni.string("Work")),
              -1);
    EXPECT_THAT(jni.calls.back(), "ReleaseStringUTFChars(Work)");
}

TEST_F(NextRecordInCategoryNative, EndsWhenTheNameCannotBeHad)
{
    jni.fail("GetStringUTFChars");
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_nextRecordInCategoryN(jni.env(), nullptr, LIST_CONTACT, 0, -1,
                                                                     jni.string("Work")),
              -1);
    EXPECT_THAT(platform.calls, IsEmpty());
    keep_exception("the machine's own error goes on to Java");
}

} // namespace enumeration_test
