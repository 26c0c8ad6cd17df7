// Removing a record.
#include "pimlistimpl_limo_arm.h"

#include "unit_test.h"

namespace removal_test {

using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Not;

namespace {

class RemoveItem : public unit_test {
protected:
    void SetUp() override
    {
        unit_test::SetUp();
        platform.add_contact(7);
        platform.add_contact(8);
        platform.add_item(ORG_TYPE_EVENT, 3);
        platform.add_item(ORG_TYPE_TODO, 4);
    }

    static int32_t remove(int32_t listtype, int32_t recindex) { return pimlistimpl_removeItemN(listtype, 9, recindex); }
};

using RemoveItemNative = RemoveItem;

struct organizer_row {
    const char* when;
    int32_t listtype;
    int32_t index;
};

// The list type only chooses the connection: either removes records of both kinds.
constexpr organizer_row ORGANIZER_REMOVALS[] = {
    {"an event through the event list", LIST_EVENT, 3},
    {"a to-do through the event list", LIST_EVENT, 4},
    {"an event through the to-do list", LIST_TODO, 3},
    {"a to-do through the to-do list", LIST_TODO, 4},
};

} // namespace

TEST_F(RemoveItem, DeletesAContact)
{
    EXPECT_EQ(remove(LIST_CONTACT, 7), 1);
    EXPECT_THAT(platform.contact_indexes(), ElementsAre(8));
    EXPECT_EQ(platform.items.size(), 2u);
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_contact_delete(7)",
                                            "contact_db_service_disconnect()"));
}

TEST_F(RemoveItem, TracesHandleRecordAndOutcome)
{
    remove(LIST_CONTACT, 7);
    ASSERT_FALSE(platform.traces.empty());
    EXPECT_THAT(platform.traces.front(), trace(TRACE_STEP, "pimlistimpl_removeItemN handle : %d recindex :%d\n",
                                               "pimlistimpl_removeItemN handle : 9 recindex :7\n"));
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "###########################\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "contact_db_service_contact_delete %d is succeed\n",
                                                "contact_db_service_contact_delete 7 is succeed\n")));
}

TEST_F(RemoveItem, SucceedsForAContactThatIsNotThere)
{
    EXPECT_EQ(remove(LIST_CONTACT, 70), 1);
    EXPECT_THAT(platform.contact_indexes(), ElementsAre(7, 8));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "contact_db_service_contact_delete fail(%d)\n",
                                                "contact_db_service_contact_delete fail(101)\n")));
}

TEST_F(RemoveItem, FailsWhenTheContactConnectionIsRefused)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(remove(LIST_CONTACT, 7), 0);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistimpl_removeItemN", "initialize", 10011)));
}

TEST_F(RemoveItem, DeletesAContactWithoutAConnection)
{
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(remove(LIST_CONTACT, 7), 1);
    EXPECT_THAT(platform.contact_indexes(), ElementsAre(8));
}

TEST_F(RemoveItem, FailsWhenTheContactConnectionCannotBeClosed)
{
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(remove(LIST_CONTACT, 7), 0);
    EXPECT_THAT(platform.contact_indexes(), ElementsAre(8)) << "the deletion stands all the same";
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistimpl_removeItemN")));
}

TEST_F(RemoveItem, DeletesEventsAndToDosThroughEitherOrganizerList)
{
    for (const organizer_row& row : ORGANIZER_REMOVALS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(remove(row.listtype, row.index), 1);
        EXPECT_EQ(platform.find_item(row.index), nullptr);
        EXPECT_EQ(platform.items.size(), 1u);
        EXPECT_THAT(platform.contact_indexes(), ElementsAre(7, 8));
        const std::string index = std::to_string(row.index);
        EXPECT_THAT(platform.calls,
                    ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()",
                                "org_db_service_delete_record(" + index + ")", "org_db_service_disconnect_database()",
                                "org_db_service_free_full_record()"));
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "org_db_service_delete_record %d is succeed\n",
                                                    "org_db_service_delete_record " + index + " is succeed\n")));
        start_over();
    }
}

TEST_F(RemoveItem, SucceedsForAnItemThatIsNotThere)
{
    for (int32_t listtype : {2, 3}) {
        EXPECT_EQ(remove(listtype, 70), 1);
        EXPECT_EQ(platform.items.size(), 2u);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "org_db_service_delete_record fail(%d)\n",
                                                    "org_db_service_delete_record fail(6)\n")));
        start_over();
    }
}

TEST_F(RemoveItem, FailsWhenTheOrganizerCannotBeOpened)
{
    for (int32_t listtype : {2, 3}) {
        platform.fail("org_db_service_connect_database", 31);
        EXPECT_EQ(remove(listtype, 3), 0);
        EXPECT_EQ(platform.items.size(), 2u);
        EXPECT_THAT(platform.traces, Contains(assertion("pimlistimpl_removeItemN", "initialize", 10007)));
        start_over();
    }
}

TEST_F(RemoveItem, FailsWhenTheOrganizerCannotBeClosed)
{
    for (int32_t listtype : {2, 3}) {
        platform.fail("org_db_service_disconnect_database", 42);
        EXPECT_EQ(remove(listtype, 3), 0);
        EXPECT_THAT(platform.traces, Contains(failed_close("pimlistimpl_removeItemN")));
        keep_blocks("a connection that would not close keeps the record's buffers");
        start_over();
    }
}

TEST_F(RemoveItem, FailsWhenTheOrganizerRecordCannotBeReleased)
{
    platform.fail("org_db_service_free_full_record", 43);
    EXPECT_EQ(remove(LIST_EVENT, 3), 0);
    keep_blocks("the buffers are the store's to release");
}

TEST_F(RemoveItem, DoesNothingForAnUnknownList)
{
    for (int32_t listtype : {0, 4, -1}) {
        EXPECT_EQ(remove(listtype, 7), 0);
        EXPECT_THAT(platform.calls, IsEmpty());
    }
}

// ---- The native -----------------------------------------------------------------------------------------------------

TEST_F(RemoveItemNative, HandsASuccessOn)
{
    EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_removeItemN(jni.env(), nullptr, LIST_CONTACT, 5, 7), 1);
    EXPECT_THAT(platform.traces.at(0),
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_removeItemN ***\n"));
    EXPECT_THAT(platform.traces,
                Contains(Field(&trace_message::text, "pimlistimpl_removeItemN handle : 5 recindex :7\n")));
    EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::severity, TRACE_RECOVERABLE))));
}

TEST_F(RemoveItemNative, TracesAFailureAndGivesZero)
{
    struct {
        const char* when;
        int32_t listtype;
        bool refused;
    } const rows[] = {
        {"the connection is refused", LIST_CONTACT, true},
        {"unknown list, below", 0, false},
        {"unknown list, above", 4, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        if (row.refused) refuse_connections(row.listtype, 10011);
        EXPECT_EQ(Java_com_qvr_zek_pim_PIMListImpl_removeItemN(jni.env(), nullptr, row.listtype, 5, 7), 0);
        EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_RECOVERABLE, "pimlistimpl_removeItemN Fail\n")));
        EXPECT_THAT(jni.calls, IsEmpty()) << "nothing is raised";
        start_over();
    }
}

} // namespace removal_test
