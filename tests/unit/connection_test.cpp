// Opening and closing store connections: native_function_initialize and native_function_finalize.
#include "pimutil.h"

#include <iterator>

#include "unit_test.h"

namespace connection_test {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Initialize : public unit_test {
protected:
    // Opens with an error word of 0 and remembers what became of it.
    int32_t open(int32_t listtype, org_full_record* with)
    {
        error = 0;
        return native_function_initialize(listtype, with, &error);
    }

    org_full_record record = {};
    int32_t error = 0;
};

class Finalize : public Initialize {};

// The seven buffers of the record and the bytes each may hold.
struct buffer_row {
    const char* when;
    char* org_full_record::*buffer;
    size_t limit;
};

constexpr buffer_row BUFFERS[] = {
    {"summary", &org_full_record::summary, 256},      {"description", &org_full_record::description, 1024},
    {"location", &org_full_record::location, 160},    {"text at 172", &org_full_record::text_172, 355},
    {"text at 340", &org_full_record::text_340, 256}, {"text at 344", &org_full_record::text_344, 256},
    {"text at 348", &org_full_record::text_348, 256},
};

struct organizer_row {
    const char* when;
    int32_t listtype;
    const char* kind;
};

constexpr organizer_row ORGANIZER_LISTS[] = {{"events", LIST_EVENT, "EVENT"}, {"to-dos", LIST_TODO, "TODO"}};

} // namespace

// ---- Opening --------------------------------------------------------------------------------------------------------

TEST_F(Initialize, OpensTheContactStoreWithoutARecord)
{
    EXPECT_EQ(open(LIST_CONTACT, nullptr), 1);
    EXPECT_EQ(error, 0);
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()"));
    EXPECT_THAT(platform.traces,
                ElementsAre(trace(TRACE_STEP, "%s CONTACT ***\n", "native_function_initialize CONTACT ***\n")));
    EXPECT_EQ(native_function_finalize(LIST_CONTACT, nullptr), 1);
}

TEST_F(Initialize, ProceedsWithoutAConnectionWhenTheContactStoreCannotBeOpened)
{
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(open(LIST_CONTACT, nullptr), 1);
    EXPECT_EQ(error, 10003);
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "%s contact_db_service_connect is failed (%d) ***\n",
                               "native_function_initialize contact_db_service_connect is failed (77) ***\n")));
}

TEST_F(Initialize, OpensTheOrganizerStoreAndPreparesTheRecord)
{
    for (const organizer_row& row : ORGANIZER_LISTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(open(row.listtype, &record), 1);
        EXPECT_EQ(error, 0);
        EXPECT_THAT(platform.calls,
                    ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()"));
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "%s %s ***\n",
                                                    std::string("native_function_initialize ") + row.kind + " ***\n")));
        EXPECT_EQ(native_function_finalize(row.listtype, &record), 1);
        start_over();
    }
}

TEST_F(Initialize, AttachesSevenClearedBuffersInTableOrder)
{
    ASSERT_EQ(open(LIST_EVENT, &record), 1);
    std::vector<size_t> sizes;
    for (const buffer_row& row : BUFFERS) {
        SCOPED_TRACE(row.when);
        const char* buffer = record.*row.buffer;
        ASSERT_NE(buffer, nullptr);
        // Room for a text of the full length and its terminator.
        EXPECT_EQ(std::string(buffer, row.limit + 1), std::string(row.limit + 1, '\0'));
        sizes.push_back(row.limit + 1);
    }
    EXPECT_EQ(allocation_sizes(), sizes);
    EXPECT_EQ(native_function_finalize(LIST_EVENT, &record), 1);
}

TEST_F(Initialize, GoesOnWithTheNextBufferWhenOneCannotBeAllocated)
{
    for (size_t failing = 0; failing < std::size(BUFFERS); ++failing) {
        SCOPED_TRACE(BUFFERS[failing].when);
        record = {};
        fail_allocation(static_cast<int>(failing) + 1);
        EXPECT_EQ(open(LIST_TODO, &record), 1);
        EXPECT_EQ(error, 10009);
        for (size_t i = 0; i < std::size(BUFFERS); ++i)
            EXPECT_EQ(record.*BUFFERS[i].buffer == nullptr, i == failing) << BUFFERS[i].when;
        EXPECT_EQ(native_function_finalize(LIST_TODO, &record), 1);
        start_over();
    }
}

TEST_F(Initialize, ProceedsWithoutAnyBuffer)
{
    for (const buffer_row& row : BUFFERS) fail_allocations_of(row.limit + 1);
    EXPECT_EQ(open(LIST_EVENT, &record), 1);
    EXPECT_EQ(error, 10009);
    for (const buffer_row& row : BUFFERS) EXPECT_EQ(record.*row.buffer, nullptr) << row.when;
    EXPECT_EQ(native_function_finalize(LIST_EVENT, &record), 1);
}

TEST_F(Initialize, RefusesWhenTheOrganizerStoreCannotBeOpened)
{
    for (const organizer_row& row : ORGANIZER_LISTS) {
        SCOPED_TRACE(row.when);
        platform.fail("org_db_service_connect_database", 31);
        EXPECT_EQ(open(row.listtype, &record), 0);
        EXPECT_EQ(error, 10007);
        EXPECT_THAT(platform.calls, ElementsAre("org_db_service_connect_database()"));
        EXPECT_THAT(platform.traces,
                    Contains(trace(TRACE_HARD, "%s org_db_service_connect_database is failed (%d) ***\n",
                                   "native_function_initialize org_db_service_connect_database is failed (31) ***\n")));
        start_over();
    }
}

TEST_F(Initialize, RefusesWhenTheRecordCannotBePrepared)
{
    for (const organizer_row& row : ORGANIZER_LISTS) {
        SCOPED_TRACE(row.when);
        platform.fail("org_db_service_init_full_record", 32);
        EXPECT_EQ(open(row.listtype, &record), 0);
        EXPECT_EQ(error, 10008);
        EXPECT_THAT(allocation_sizes(), IsEmpty());
        EXPECT_THAT(
            platform.traces,
            Contains(trace(TRACE_HARD, "%s ***, org_db_service_init_full_record is failed (%d)\n",
                           "native_function_initialize ***, org_db_service_init_full_record is failed (32)\n")));
        // A refused opening is not followed by a closing, so the store's connection stays open.
        keep_connection("the record could not be prepared after the store was opened");
        start_over();
    }
}

TEST_F(Initialize, RefusesAnOrganizerListWithoutARecord)
{
    for (const organizer_row& row : ORGANIZER_LISTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(open(row.listtype, nullptr), 0);
        EXPECT_EQ(error, 10011);
        EXPECT_THAT(platform.calls, IsEmpty());
    }
}

TEST_F(Initialize, RefusesAnErrorWordThatIsNotClearForEveryListType)
{
    for (int32_t listtype : {0, 1, 2, 3, 4, -1}) {
        SCOPED_TRACE(listtype);
        error = 5;
        EXPECT_EQ(native_function_initialize(listtype, listtype == LIST_CONTACT ? nullptr : &record, &error), 0);
        EXPECT_EQ(error, 10011);
        EXPECT_THAT(platform.calls, IsEmpty());
    }
}

TEST_F(Initialize, RefusesAnUnknownListType)
{
    for (int32_t listtype : {0, 4, -1, 1000}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(open(listtype, &record), 0);
        EXPECT_EQ(error, 10012);
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(platform.traces, ElementsAre(trace(TRACE_HARD, "%s type is not matched ***\n",
                                                       "native_function_initialize type is not matched ***\n")));
        start_over();
    }
}

// ---- Closing --------------------------------------------------------------------------------------------------------

TEST_F(Finalize, ClosesTheContactStore)
{
    EXPECT_EQ(native_function_finalize(LIST_CONTACT, nullptr), 1);
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_disconnect()"));
    EXPECT_THAT(platform.traces, ElementsAre(trace(TRACE_STEP, "%s ***\n", "native_function_finalize ***\n")));
}

TEST_F(Finalize, TellsThatTheContactStoreCouldNotBeClosed)
{
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(native_function_finalize(LIST_CONTACT, nullptr), 10005);
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "%s contact_db_service_disconnect is failed (error_code : %d) ***\n",
                               "native_function_finalize contact_db_service_disconnect is failed (error_code : 41) "
                               "***\n")));
}

TEST_F(Finalize, ClosesTheOrganizerStoreAndThenReleasesTheRecord)
{
    for (const organizer_row& row : ORGANIZER_LISTS) {
        SCOPED_TRACE(row.when);
        ASSERT_EQ(open(row.listtype, &record), 1);
        platform.calls.clear();
        platform.traces.clear();
        EXPECT_EQ(native_function_finalize(row.listtype, &record), 1);
        EXPECT_THAT(platform.calls,
                    ElementsAre("org_db_service_disconnect_database()", "org_db_service_free_full_record()"));
        EXPECT_THAT(platform.traces,
                    ElementsAre(trace(TRACE_STEP, "%s ***\n", "native_function_finalize ***\n"),
                                trace(TRACE_STEP, "%s %s ***\n",
                                      std::string("native_function_finalize ") + row.kind + " ***\n")));
        start_over();
    }
}

TEST_F(Finalize, LeavesTheRecordAloneWhenTheOrganizerStoreCouldNotBeClosed)
{
    for (const organizer_row& row : ORGANIZER_LISTS) {
        SCOPED_TRACE(row.when);
        record = {};
        ASSERT_EQ(open(row.listtype, &record), 1);
        platform.fail("org_db_service_disconnect_database", 42);
        EXPECT_EQ(native_function_finalize(row.listtype, &record), 10010);
        EXPECT_THAT(platform.calls_of("org_db_service_free_full_record"), IsEmpty());
        EXPECT_THAT(
            platform.traces,
            Contains(trace(TRACE_HARD, "%s org_db_service_disconnect_database is failed (error_code : %d) ***\n",
                           "native_function_finalize org_db_service_disconnect_database is failed (error_code "
                           ": 42) ***\n")));
        keep_blocks("a connection that would not close keeps the record's buffers");
        start_over();
    }
}

TEST_F(Finalize, TellsThatTheRecordCouldNotBeReleased)
{
    for (const organizer_row& row : ORGANIZER_LISTS) {
        SCOPED_TRACE(row.when);
        record = {};
        ASSERT_EQ(open(row.listtype, &record), 1);
        platform.fail("org_db_service_free_full_record", 43);
        EXPECT_EQ(native_function_finalize(row.listtype, &record), 10008);
        EXPECT_THAT(platform.traces,
                    Contains(trace(TRACE_HARD, "%s ***, org_db_service_free_full_record is failed (%d)\n",
                                   "native_function_finalize ***, org_db_service_free_full_record is failed (43)\n")));
        keep_blocks("the buffers are the store's to release");
        start_over();
    }
}

TEST_F(Finalize, FreesNoneOfTheBuffersItself)
{
    ASSERT_EQ(open(LIST_EVENT, &record), 1);
    platform.before_call = [&](const std::string& call) {
        if (call == "org_db_service_free_full_record()") {
            EXPECT_EQ(unreleased_blocks(), std::size(BUFFERS));
        }
    };
    EXPECT_EQ(native_function_finalize(LIST_EVENT, &record), 1);
    EXPECT_EQ(unreleased_blocks(), 0u);
}

TEST_F(Finalize, AcceptsARecordThatWasNeverOpened)
{
    EXPECT_EQ(native_function_finalize(LIST_TODO, &record), 1);
    EXPECT_THAT(platform.calls,
                ElementsAre("org_db_service_disconnect_database()", "org_db_service_free_full_record()"));
}

TEST_F(Finalize, RefusesAnUnknownListType)
{
    for (int32_t listtype : {0, 4, -1}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(native_function_finalize(listtype, &record), 10012);
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(platform.traces, ElementsAre(trace(TRACE_STEP, "%s ***\n", "native_function_finalize ***\n"),
                                                 trace(TRACE_HARD, "%s type is not matched ***\n",
                                                       "native_function_finalize type is not matched ***\n")));
        start_over();
    }
}

} // namespace connection_test
