#include "reader_frame.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// What a failed fetch traces: the format with the store's error, where it takes one.
static std::string with_error(const std::string& format, int error)
{
    const size_t place = format.find("%d");
    return place == std::string::npos ? format
                                      : format.substr(0, place) + std::to_string(error) + format.substr(place + 2);
}

void reader_frame::expect_contact_failures(const reader_row& row, const std::function<void()>& prepare)
{
    SCOPED_TRACE(row.function);
    const auto begin = [&] {
        start_over();
        prepare();
    };
    {
        SCOPED_TRACE("opening refused");
        begin();
        refuse_connections(LIST_CONTACT, 10011);
        EXPECT_EQ(row.read(), row.opening);
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(platform.traces, Contains(assertion(row.function, "initialize", 10011)));
    }
    {
        SCOPED_TRACE("fetch failed");
        begin();
        platform.fail("contact_db_service_contact_get", 51);
        EXPECT_EQ(row.read(), row.fetching);
        EXPECT_THAT(platform.calls,
                    ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get(1)",
                                "contact_db_service_contact_free()", "contact_db_service_disconnect()"));
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, row.fetch_message, with_error(row.fetch_message, 51))));
    }
    {
        SCOPED_TRACE("close failed");
        begin();
        platform.fail("contact_db_service_disconnect", 52);
        EXPECT_EQ(row.read(), row.closing);
        EXPECT_THAT(platform.calls,
                    ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get(1)",
                                "contact_db_service_contact_free()", "contact_db_service_disconnect()"));
        EXPECT_THAT(platform.traces, Contains(failed_close(row.function)));
    }
    {
        SCOPED_TRACE("fetch and close failed");
        begin();
        platform.fail("contact_db_service_contact_get", 51);
        platform.fail("contact_db_service_disconnect", 52);
        EXPECT_EQ(row.read(), row.closing_unread);
        EXPECT_THAT(platform.calls, Contains("contact_db_service_contact_free()"));
    }
    start_over();
}

void reader_frame::expect_organizer_failures(const reader_row& row, int32_t listtype,
                                             const std::function<void()>& prepare)
{
    SCOPED_TRACE(row.function);
    const auto begin = [&] {
        start_over();
        prepare();
    };
    const std::string fetch = "org_db_service_get_record_full_field_by_index";
    {
        SCOPED_TRACE("connect failed");
        begin();
        platform.fail("org_db_service_connect_database", 61);
        EXPECT_EQ(row.read(), row.opening);
        EXPECT_THAT(platform.calls, ElementsAre("org_db_service_connect_database()"));
        EXPECT_THAT(platform.traces, Contains(assertion(row.function, "initialize", 10007)));
    }
    {
        SCOPED_TRACE("record not prepared by the opening");
        begin();
        platform.fail("org_db_service_init_full_record", 62);
        EXPECT_EQ(row.read(), row.opening);
        EXPECT_THAT(platform.calls,
                    ElementsAre("org_db_service_connect_database()", "org_db_service_init_full_record()"));
        EXPECT_THAT(platform.traces, Contains(assertion(row.function, "initialize", 10008)));
        keep_connection("a refused opening is not followed by a close");
    }
    {
        SCOPED_TRACE("opening refused");
        begin();
        refuse_connections(listtype, 10011);
        EXPECT_EQ(row.read(), row.opening);
        EXPECT_THAT(platform.calls, IsEmpty());
        EXPECT_THAT(platform.traces, Contains(assertion(row.function, "initialize", 10011)));
    }
    {
        SCOPED_TRACE("record not prepared a second time");
        begin();
        platform.fail_call("org_db_service_init_full_record", 2, 63);
        const int64_t result = row.read();
        if (row.preparing) {
            EXPECT_EQ(result, *row.preparing);
            EXPECT_THAT(platform.calls_of(fetch), IsEmpty());
            EXPECT_THAT(platform.traces,
                        Contains(trace(
                            TRACE_HARD, "%s ***, org_db_service_init_org_full_record is failed (error_code = %d)\n",
                            row.function + " ***, org_db_service_init_org_full_record is failed (error_code = 63)\n")));
        } else {
            EXPECT_EQ(platform.failed_call(), "") << "this reader prepares the record once, in the opening";
        }
    }
    {
        SCOPED_TRACE("fetch failed");
        begin();
        platform.fail(fetch, 64);
        EXPECT_EQ(row.read(), row.fetching);
        EXPECT_EQ(platform.calls.back(), "org_db_service_free_full_record()");
        if (!row.fetch_message.empty()) {
            EXPECT_THAT(platform.traces,
                        Contains(trace(TRACE_HARD, row.fetch_message, with_error(row.fetch_message, 64))));
        }
    }
    {
        SCOPED_TRACE("disconnect failed");
        begin();
        platform.fail("org_db_service_disconnect_database", 65);
        EXPECT_EQ(row.read(), row.closing);
        EXPECT_THAT(platform.traces, Contains(failed_close(row.function)));
        keep_blocks("a connection that would not close keeps the record's buffers");
    }
    {
        SCOPED_TRACE("record not released");
        begin();
        platform.fail("org_db_service_free_full_record", 66);
        EXPECT_EQ(row.read(), row.closing);
        EXPECT_THAT(platform.traces, Contains(failed_close(row.function)));
        keep_blocks("the buffers are the store's to release");
    }
    {
        SCOPED_TRACE("fetch and close failed");
        begin();
        platform.fail(fetch, 64);
        platform.fail("org_db_service_disconnect_database", 65);
        EXPECT_EQ(row.read(), row.closing_unread);
        keep_blocks("a connection that would not close keeps the record's buffers");
    }
    if (row.preparing) {
        SCOPED_TRACE("record not prepared a second time, and close failed");
        begin();
        platform.fail_call("org_db_service_init_full_record", 2, 63);
        platform.fail("org_db_service_disconnect_database", 65);
        EXPECT_EQ(row.read(), row.closing_unread);
        keep_blocks("a connection that would not close keeps the record's buffers");
    }
    start_over();
}
