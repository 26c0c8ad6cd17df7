// Finding the next record that contains a text.
#include "pimlistimpl_limo_arm.h"

#include <cstring>
#include <functional>
#include <vector>

#include "unit_test.h"

namespace search_test {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

template <size_t N>
void set(char (&field)[N], const char* text)
{
    std::strncpy(field, text, N - 1);
}

// A contact with something in every text that a search looks at, none of which holds "needle".
void fill_contact(stored_contact& contact)
{
    set(contact.record.name_info.first_name, "GIVEN");
    set(contact.record.name_info.last_name, "FAMILY");
    for (const char* place : {"HOME", "WORK"}) {
        contact_address& address = contact.addresses.emplace_back();
        for (char* field : {address.street, address.additional_info, address.city, address.postal_code, address.state,
                            address.country, address.pobox})
            std::strcpy(field, place);
    }
    for (const char* email : {"FIRST@MAIL", "SECOND@MAIL"}) set(contact.emails.emplace_back().email, email);
    contact.note = "NOTE TO SELF";
    set(contact.record.company_name, "COMPANY");
    for (const char* number : {"+1X", "+2X"}) set(contact.phones.emplace_back().number, number);
    set(contact.record.job_title, "TITLE");
    set(contact.record.homepage_info[0].homepage, "HTTP://PAGE");
}

class NextRecordWithMatch : public unit_test {
protected:
    int32_t next(int32_t listtype, int32_t recindex, std::string match)
    {
        const int32_t found = pimlistimpl_nextRecordWithMatchStrN(listtype, 9, recindex, match.data());
        folded_match = match;
        return found;
    }

    // Contacts that differ in their last name only.
    void add_contacts(const std::vector<std::pair<int32_t, const char*>>& named)
    {
        for (const auto& [index, name] : named) {
            stored_contact& contact = platform.add_contact(index);
            fill_contact(contact);
            std::memset(contact.record.name_info.last_name, 0, sizeof contact.record.name_info.last_name);
            set(contact.record.name_info.last_name, name);
        }
    }

    // Items that differ in their summary only.
    void add_items(int32_t type, const std::vector<std::pair<int32_t, const char*>>& named)
    {
        for (const auto& [index, summary] : named) {
            stored_item& item = platform.add_item(type, index, summary);
            item.description = "DESCRIPTION";
            item.location = "LOCATION";
        }
    }

    std::string folded_match;
};

class MatchingContact : public unit_test {
protected:
    void SetUp() override
    {
        unit_test::SetUp();
        fill_contact(platform.add_contact(1));
    }

    // Fetches the contact, lets `change` at it, and runs the matcher on it.
    int32_t matching(const char* match, const std::function<void(contact_record&)>& change)
    {
        contact_record contact = {};
        int error = 0;
        contact_db_service_contact_get(0, 1, 0, &contact, &error);
        change(contact);
        std::string text = match;
        const int32_t result = matchingContact(text.data(), &contact);
        contact_db_service_contact_free(&contact);
        return result;
    }

    static void nothing(contact_record&) {}
};

// The texts that are tested, in their order.
struct contact_text_row {
    const char* when;
    char* (*text)(contact_record& contact);
};

const contact_text_row CONTACT_TEXTS[] = {
    {"first name", [](contact_record& c) -> char* { return c.name_info.first_name; }},
    {"last name", [](contact_record& c) -> char* { return c.name_info.last_name; }},
    {"first street", [](contact_record& c) -> char* { return c.address_info[0].street; }},
    {"first additional info", [](contact_record& c) -> char* { return c.address_info[0].additional_info; }},
    {"first city", [](contact_record& c) -> char* { return c.address_info[0].city; }},
    {"first postal code", [](contact_record& c) -> char* { return c.address_info[0].postal_code; }},
    {"first state", [](contact_record& c) -> char* { return c.address_info[0].state; }},
    {"first country", [](contact_record& c) -> char* { return c.address_info[0].country; }},
    {"first pobox", [](contact_record& c) -> char* { return c.address_info[0].pobox; }},
    {"second street", [](contact_record& c) -> char* { return c.address_info[1].street; }},
    {"second additional info", [](contact_record& c) -> char* { return c.address_info[1].additional_info; }},
    {"second city", [](contact_record& c) -> char* { return c.address_info[1].city; }},
    {"second postal code", [](contact_record& c) -> char* { return c.address_info[1].postal_code; }},
    {"second state", [](contact_record& c) -> char* { return c.address_info[1].state; }},
    {"second country", [](contact_record& c) -> char* { return c.address_info[1].country; }},
    {"second pobox", [](contact_record& c) -> char* { return c.address_info[1].pobox; }},
    {"first e-mail", [](contact_record& c) -> char* { return c.email_info[0].email; }},
    {"second e-mail", [](contact_record& c) -> char* { return c.email_info[1].email; }},
    {"note", [](contact_record& c) -> char* { return c.note; }},
    {"company", [](contact_record& c) -> char* { return c.company_name; }},
    {"first phone", [](contact_record& c) -> char* { return c.phone_info[0].number; }},
    {"second phone", [](contact_record& c) -> char* { return c.phone_info[1].number; }},
    {"job title", [](contact_record& c) -> char* { return c.job_title; }},
};

class MatchingItem : public unit_test {
protected:
    // An organizer record over buffers of its own.
    struct item {
        char location[161] = "LOCATION";
        char description[1025] = "DESCRIPTION";
        char summary[257] = "SUMMARY";

        org_full_record record()
        {
            org_full_record full = {};
            full.location = location;
            full.description = description;
            full.summary = summary;
            return full;
        }
    };

    static int32_t matching_event(std::string match, org_full_record full)
    {
        return matchingEvent(match.data(), &full);
    }

    static int32_t matching_todo(std::string match, org_full_record full) { return matchingTodo(match.data(), &full); }
};

class NextRecordWithMatchNative : public NextRecordWithMatch {
protected:
    jint call(int32_t listtype, int32_t recindex, jstring match)
    {
        return Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN(jni.env(), nullptr, listtype, 0, recindex,
                                                                        match);
    }
};

struct start_row {
    const char* when;
    int32_t after;
    std::vector<std::string> read; // The indexes of the records read when none matches.
};

const start_row STARTS[] = {
    {"from the start", -1, {"5", "9", "12"}},
    {"after the first record", 5, {"9", "12"}},
    {"after a middle record", 9, {"12"}},
    {"after the last record nothing is searched", 12, {}},
    {"a stale index restarts", 7, {"5", "9", "12"}},
    {"zero is an index like any other", 0, {"5", "9", "12"}},
};

std::vector<std::string> calls_for(const char* function, const std::vector<std::string>& indexes)
{
    std::vector<std::string> calls;
    for (const std::string& index : indexes) calls.push_back(std::string(function) + "(" + index + ")");
    return calls;
}

} // namespace

// ---- Contacts -------------------------------------------------------------------------------------------------------

TEST_F(NextRecordWithMatch, ReadsContactsFromTheOneAfterTheIndexToTheLast)
{
    for (const start_row& row : STARTS) {
        SCOPED_TRACE(row.when);
        add_contacts({{5, "a"}, {9, "b"}, {12, "c"}});
        EXPECT_EQ(next(LIST_CONTACT, row.after, "needle"), -1);
        EXPECT_EQ(platform.calls_of("contact_db_service_contact_get_by_index"),
                  calls_for("contact_db_service_contact_get_by_index", row.read));
        EXPECT_THAT(platform.calls_of("contact_db_service_contact_free"), SizeIs(testing::Ge(row.read.size())));
        EXPECT_THAT(platform.calls_of("contact_db_service_contact_get"), IsEmpty());
        start_over();
    }
}

TEST_F(NextRecordWithMatch, StopsAtTheFirstContactThatMatches)
{
    add_contacts({{5, "Jones"}, {9, "Smith"}, {12, "Smithers"}});
    EXPECT_EQ(next(LIST_CONTACT, -1, "SMI"), 9);
    EXPECT_THAT(platform.calls_of("contact_db_service_contact_get_by_index"), SizeIs(2));
    EXPECT_EQ(next(LIST_CONTACT, 9, "SMI"), 12);
    EXPECT_EQ(next(LIST_CONTACT, 12, "SMI"), -1);
}

TEST_F(NextRecordWithMatch, NeverWrapsAround)
{
    add_contacts({{5, "Smith"}, {9, "Jones"}, {12, "Brown"}});
    EXPECT_EQ(next(LIST_CONTACT, 5, "Smith"), -1);
}

TEST_F(NextRecordWithMatch, RestartsAtTheFirstContactWhenTheIndexIsStale)
{
    add_contacts({{5, "Smith"}, {9, "Jones"}});
    EXPECT_EQ(next(LIST_CONTACT, 7, "Smith"), 5);
}

TEST_F(NextRecordWithMatch, FindsEveryContactWithAnEmptyFirstName)
{
    add_contacts({{5, "Jones"}, {9, "Brown"}});
    *platform.find_contact(9)->record.name_info.first_name = '\0';
    EXPECT_EQ(next(LIST_CONTACT, -1, "needle"), 9);
}

TEST_F(NextRecordWithMatch, DoesNotLookAtTheHomePage)
{
    add_contacts({{5, "Jones"}});
    EXPECT_EQ(next(LIST_CONTACT, -1, "page"), -1);
    EXPECT_THAT(platform.traces,
                Contains(trace_text(TRACE_STEP,
                                    "contact_record->homepage_info[0].homepage------HTTP://PAGE\tmatching "
                                    "str:page\n")));
}

TEST_F(NextRecordWithMatch, LowerCasesTheMatchStringInPlace)
{
    add_contacts({{5, "Jones"}});
    next(LIST_CONTACT, -1, "NEEDLE \xc3\x84");
    EXPECT_EQ(folded_match, "needle \xc3\x84");
}

TEST_F(NextRecordWithMatch, TracesTheRecordAndTheText)
{
    next(LIST_CONTACT, 5, "Smith");
    ASSERT_FALSE(platform.traces.empty());
    EXPECT_THAT(platform.traces.front(),
                trace(TRACE_STEP, "%s, recindex = %d, matching str:%s\n",
                      "pimlistimpl_nextRecordWithMatchStrN, recindex = 5, matching str:Smith\n"));
}

TEST_F(NextRecordWithMatch, SearchesContactsOverOneConnection)
{
    add_contacts({{5, "a"}, {9, "b"}});
    next(LIST_CONTACT, -1, "needle");
    EXPECT_THAT(
        platform.calls,
        ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get_count()",
                    "contact_db_service_contact_get_all_indices(2)", "contact_db_service_contact_get_by_index(5)",
                    "contact_db_service_contact_free()", "contact_db_service_contact_get_by_index(9)",
                    "contact_db_service_contact_free()", "contact_db_service_disconnect()"));
}

TEST_F(NextRecordWithMatch, SkipsAContactThatCannotBeReadInSilence)
{
    add_contacts({{5, "Smith"}, {9, "Smith"}});
    platform.fail_call("contact_db_service_contact_get_by_index", 1, 50);
    EXPECT_EQ(next(LIST_CONTACT, -1, "Smith"), 9);
    EXPECT_THAT(platform.traces, Each(Field(&trace_message::severity, TRACE_STEP)));
}

TEST_F(NextRecordWithMatch, GivesNoContactWhenNoneCanBeRead)
{
    add_contacts({{5, "Smith"}, {9, "Smith"}});
    platform.fail("contact_db_service_contact_get_by_index", 50);
    EXPECT_EQ(next(LIST_CONTACT, -1, "Smith"), -1);
}

TEST_F(NextRecordWithMatch, EndsInAnEmptyContactStore)
{
    EXPECT_EQ(next(LIST_CONTACT, -1, ""), -1);
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "contact_count is 0 or under 0\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecordWithMatch, GoesByTheCountThatAFailedContactCountLeft)
{
    add_contacts({{5, "Smith"}});
    platform.fail("contact_db_service_contact_get_count", 61);
    EXPECT_EQ(next(LIST_CONTACT, -1, "Smith"), -1);
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
    platform.reported_counts["contact_db_service_contact_get_count"] = 1;
    EXPECT_EQ(next(LIST_CONTACT, -1, "Smith"), 5);
    EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, HasSubstr("ASSERT")))));
}

TEST_F(NextRecordWithMatch, EndsWhenTheContactConnectionIsRefused)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(next(LIST_CONTACT, -1, "x"), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimlistimpl_nextRecordWithMatchStrN", "initialize", 10011)));
}

TEST_F(NextRecordWithMatch, SearchesContactsWithoutAConnection)
{
    add_contacts({{5, "Smith"}});
    platform.fail("contact_db_service_connect", 77);
    EXPECT_EQ(next(LIST_CONTACT, -1, "Smith"), 5);
}

TEST_F(NextRecordWithMatch, EndsWhenTheContactListCannotBeAllocated)
{
    add_contacts({{5, "Smith"}});
    fail_allocation(1);
    EXPECT_EQ(next(LIST_CONTACT, -1, "Smith"), -1);
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_HARD, "memory allocation failed..\n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecordWithMatch, EndsWhenTheContactListCannotBeRead)
{
    add_contacts({{5, "Smith"}});
    platform.fail("contact_db_service_contact_get_all_indices", 17);
    EXPECT_EQ(next(LIST_CONTACT, -1, "Smith"), -1);
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_HARD, "contact_db_service_contact_get_all_indices return error(%d) \n",
                               "contact_db_service_contact_get_all_indices return error(17) \n")));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(NextRecordWithMatch, EndsWhenTheListHoldsNoContactsAfterAll)
{
    add_contacts({{5, "Smith"}});
    platform.fail("contact_db_service_contact_get_all_indices", 16);
    EXPECT_EQ(next(LIST_CONTACT, -1, "Smith"), -1);
    EXPECT_THAT(platform.traces,
                Contains(trace_line(TRACE_STEP, "contact_db_service_contact_get_all_indices return no records.\n")));
}

TEST_F(NextRecordWithMatch, ReadsNoEntryPastItsListWhateverTheStoreCounts)
{
    add_contacts({{5, "a"}, {9, "b"}});
    platform.reported_counts["contact_db_service_contact_get_all_indices"] = 1000000;
    EXPECT_EQ(next(LIST_CONTACT, -1, "needle"), -1);
    EXPECT_THAT(platform.calls_of("contact_db_service_contact_get_by_index"), SizeIs(2));
}

TEST_F(NextRecordWithMatch, EndsWhenTheContactConnectionCannotBeClosed)
{
    add_contacts({{5, "Smith"}});
    platform.fail("contact_db_service_disconnect", 41);
    EXPECT_EQ(next(LIST_CONTACT, -1, "Smith"), -1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistimpl_nextRecordWithMatchStrN")));
}

// ---- Events and to-dos ----------------------------------------------------------------------------------------------

TEST_F(NextRecordWithMatch, ReadsItemsFromTheOneAfterTheIndexToTheLast)
{
    for (int32_t listtype : {2, 3}) {
        for (const start_row& row : STARTS) {
            SCOPED_TRACE(row.when);
            add_items(listtype == 2 ? 8 : 9, {{5, "a"}, {9, "b"}, {12, "c"}});
            EXPECT_EQ(next(listtype, row.after, "needle"), -1);
            EXPECT_EQ(platform.calls_of("org_db_service_get_record_full_field_by_index"),
                      calls_for("org_db_service_get_record_full_field_by_index", row.read));
            start_over();
        }
    }
}

TEST_F(NextRecordWithMatch, StopsAtTheFirstItemThatMatches)
{
    for (int32_t listtype : {2, 3}) {
        SCOPED_TRACE(listtype);
        add_items(listtype == 2 ? 8 : 9, {{5, "Lunch"}, {9, "Dentist"}, {12, "Dentist again"}});
        EXPECT_EQ(next(listtype, -1, "DENT"), 9);
        EXPECT_EQ(next(listtype, 9, "DENT"), 12);
        EXPECT_EQ(next(listtype, 12, "DENT"), -1);
        start_over();
    }
}

TEST_F(NextRecordWithMatch, SearchesItemsOverOneConnection)
{
    add_items(8, {{5, "a"}, {9, "b"}});
    next(LIST_EVENT, -1, "needle");
    EXPECT_THAT(platform.calls_between_connections(),
                ElementsAre("org_db_service_get_record_count(8)", "org_db_service_get_records_id(8, 2)",
                            "org_db_service_get_record_full_field_by_index(5)",
                            "org_db_service_get_record_full_field_by_index(9)"));
    EXPECT_EQ(platform.calls.front(), "org_db_service_connect_database()");
    EXPECT_EQ(platform.calls.back(), "org_db_service_free_full_record()");
}

TEST_F(NextRecordWithMatch, SkipsAnItemThatCannotBeReadInSilence)
{
    for (int32_t listtype : {2, 3}) {
        SCOPED_TRACE(listtype);
        add_items(listtype == 2 ? 8 : 9, {{5, "Dentist"}, {9, "Dentist"}});
        platform.fail_call("org_db_service_get_record_full_field_by_index", 1, 50);
        EXPECT_EQ(next(listtype, -1, "dentist"), 9);
        EXPECT_THAT(platform.traces, Each(Field(&trace_message::severity, TRACE_STEP)));
        start_over();
    }
}

TEST_F(NextRecordWithMatch, OnlyTracesThatItemsCannotBeCounted)
{
    add_items(9, {{5, "Dentist"}});
    platform.fail("org_db_service_get_record_count", 33);
    EXPECT_EQ(next(LIST_TODO, -1, "dentist"), -1);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "org_db_service_get_record_count is fail.....(%d)\n",
                                                "org_db_service_get_record_count is fail.....(33)\n")));
    platform.reported_counts["org_db_service_get_record_count"] = 1;
    EXPECT_EQ(next(LIST_TODO, -1, "dentist"), 5);
}

TEST_F(NextRecordWithMatch, EndsWhenTheItemListCannotBeRead)
{
    add_items(8, {{5, "Dentist"}});
    platform.fail("org_db_service_get_records_id", 34);
    EXPECT_EQ(next(LIST_EVENT, -1, "dentist"), -1);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "org_db_service_get_records_id fail(%d)\n",
                                                "org_db_service_get_records_id fail(34)\n")));
    EXPECT_THAT(platform.calls_of("org_db_service_get_record_full_field_by_index"), IsEmpty());
}

TEST_F(NextRecordWithMatch, ClosesTheContactStoreWhenTheItemListCannotBeAllocated)
{
    add_items(8, {{5, "Dentist"}});
    fail_allocation(8); // After the seven text buffers.
    EXPECT_EQ(next(LIST_EVENT, -1, "dentist"), -1);
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
    keep_connection("the contact connection is closed in place of the organizer's");
    keep_blocks("and the record with its buffers is therefore never released");
}

TEST_F(NextRecordWithMatch, EndsWhenTheOrganizerCannotBeOpened)
{
    for (int32_t listtype : {2, 3}) {
        SCOPED_TRACE(listtype);
        platform.fail("org_db_service_connect_database", 31);
        EXPECT_EQ(next(listtype, -1, "x"), -1);
        EXPECT_THAT(platform.calls, ElementsAre("org_db_service_connect_database()"));
        start_over();
    }
}

TEST_F(NextRecordWithMatch, EndsWhenTheOrganizerCannotBeClosed)
{
    add_items(8, {{5, "Dentist"}});
    platform.fail("org_db_service_disconnect_database", 42);
    EXPECT_EQ(next(LIST_EVENT, -1, "dentist"), -1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimlistimpl_nextRecordWithMatchStrN")));
    keep_blocks("a connection that would not close keeps the record's buffers");
}

TEST_F(NextRecordWithMatch, SurvivesEveryTextBufferThatCannotBeAllocated)
{
    for (int32_t listtype : {2, 3}) {
        for (int buffer = 1; buffer <= 7; ++buffer) {
            SCOPED_TRACE(buffer);
            add_items(listtype == 2 ? 8 : 9, {{5, "Dentist"}});
            fail_allocation(buffer);
            EXPECT_EQ(next(listtype, -1, "dentist"), 5);
            start_over();
        }
    }
}

TEST_F(NextRecordWithMatch, RefusesAnUnknownList)
{
    for (int32_t listtype : {0, 4, -1}) {
        SCOPED_TRACE(listtype);
        EXPECT_EQ(next(listtype, -1, "x"), -1);
        EXPECT_THAT(platform.calls, IsEmpty());
        start_over();
    }
}

// ---- The matchers ---------------------------------------------------------------------------------------------------

TEST_F(MatchingContact, MatchesInEveryTextButTheHomePage)
{
    EXPECT_EQ(matching("needle", nothing), 0);
    for (const contact_text_row& row : CONTACT_TEXTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(matching("needle", [&](contact_record& contact) { std::strcpy(row.text(contact), "a NeedLe!"); }), 1);
    }
    EXPECT_EQ(matching("page", nothing), 0);
}

TEST_F(MatchingContact, MatchesAnythingInAnEmptyText)
{
    for (const contact_text_row& row : CONTACT_TEXTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(matching("needle", [&](contact_record& contact) { *row.text(contact) = '\0'; }), 1);
    }
}

TEST_F(MatchingContact, TestsTheTextsInTheirOrderAndStopsAtTheFirstHit)
{
    for (size_t hit = 0; hit < std::size(CONTACT_TEXTS); ++hit) {
        SCOPED_TRACE(CONTACT_TEXTS[hit].when);
        contact_record contact = {};
        int error = 0;
        contact_db_service_contact_get(0, 1, 0, &contact, &error);
        std::strcpy(CONTACT_TEXTS[hit].text(contact), "X#Y");
        char match[] = "X#";
        EXPECT_EQ(matchingContact(match, &contact), 1);
        // A text that was tested is in lower case now.
        for (size_t i = 0; i < std::size(CONTACT_TEXTS); ++i) {
            const std::string text = CONTACT_TEXTS[i].text(contact);
            const bool has_capitals = text.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") != std::string::npos;
            EXPECT_EQ(has_capitals, i > hit) << CONTACT_TEXTS[i].when;
        }
        contact_db_service_contact_free(&contact);
    }
}

TEST_F(MatchingContact, TracesEveryTextBeforeTestingIt)
{
    EXPECT_EQ(matching("Needle", nothing), 0);
    ASSERT_EQ(platform.traces.size(), std::size(CONTACT_TEXTS) + 1);
    EXPECT_THAT(platform.traces.front(),
                AllOf(trace_text(TRACE_STEP, "contact_record->name_info.first_name ------GIVEN\tmatching str:Needle\n"),
                      Field(&trace_message::function, "matchingContact")));
    EXPECT_THAT(
        platform.traces.back(),
        trace_text(TRACE_STEP, "contact_record->homepage_info[0].homepage------HTTP://PAGE\tmatching str:needle\n"));
    EXPECT_THAT(platform.traces, Each(Field(&trace_message::severity, TRACE_STEP)));
}

TEST_F(MatchingContact, LooksAtTheNoteOnlyWhenItHasASize)
{
    EXPECT_EQ(matching("note", nothing), 1);
    EXPECT_EQ(matching("note", [](contact_record& contact) { contact.note_size = 0; }), 0);
    EXPECT_EQ(matching("note", [](contact_record& contact) { contact.note_size = -1; }), 0);
    // One byte is an empty text, which contains everything.
    EXPECT_EQ(matching("needle",
                       [](contact_record& contact) {
                           contact.note[0] = '\0';
                           contact.note_size = 1;
                       }),
              1);
}

TEST_F(MatchingContact, LooksAtNoMoreEntriesThanAreCounted)
{
    EXPECT_EQ(matching("work", [](contact_record& contact) { contact.postal_count = 1; }), 0);
    EXPECT_EQ(matching("second@", [](contact_record& contact) { contact.email_count = 1; }), 0);
    EXPECT_EQ(matching("+2", [](contact_record& contact) { contact.phone_count = 1; }), 0);
    EXPECT_EQ(matching("needle",
                       [](contact_record& contact) {
                           contact.postal_count = contact.email_count = contact.phone_count = -1;
                       }),
              0);
}

TEST_F(MatchingContact, SurvivesCountsWithoutArrays)
{
    contact_record contact = {};
    set(contact.name_info.first_name, "a");
    set(contact.name_info.last_name, "b");
    set(contact.company_name, "c");
    set(contact.job_title, "d");
    contact.postal_count = contact.email_count = contact.phone_count = 3;
    contact.note_size = 10;
    char match[] = "needle";
    EXPECT_EQ(matchingContact(match, &contact), 0);
}

TEST_F(MatchingItem, FindsAnEventByLocationDescriptionAndSummaryInThatOrder)
{
    item fields;
    EXPECT_EQ(matching_event("LOCA", fields.record()), 1);
    EXPECT_STREQ(fields.location, "location");
    EXPECT_STREQ(fields.description, "DESCRIPTION");
    EXPECT_STREQ(fields.summary, "SUMMARY");

    EXPECT_EQ(matching_event("SCRIPT", fields.record()), 1);
    EXPECT_STREQ(fields.description, "description");
    EXPECT_STREQ(fields.summary, "SUMMARY");

    EXPECT_EQ(matching_event("summ", fields.record()), 1);
    EXPECT_STREQ(fields.summary, "summary");

    EXPECT_EQ(matching_event("needle", fields.record()), 0);
}

TEST_F(MatchingItem, FindsAToDoByDescriptionAndSummaryInThatOrder)
{
    item fields;
    EXPECT_EQ(matching_todo("LOCA", fields.record()), 0);
    EXPECT_STREQ(fields.location, "LOCATION");

    item fresh;
    EXPECT_EQ(matching_todo("SCRIPT", fresh.record()), 1);
    EXPECT_STREQ(fresh.description, "description");
    EXPECT_STREQ(fresh.summary, "SUMMARY");

    EXPECT_EQ(matching_todo("summ", fresh.record()), 1);
    EXPECT_EQ(matching_todo("needle", fresh.record()), 0);
}

TEST_F(MatchingItem, MatchesAnythingInAnEmptyText)
{
    struct {
        const char* when;
        bool location, description, summary; // Filled.
        int32_t event, todo;
    } const rows[] = {
        {"all filled", true, true, true, 0, 0},
        {"no location", false, true, true, 1, 0},
        {"no description", true, false, true, 1, 1},
        {"no summary", true, true, false, 1, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.when);
        item fields;
        if (!row.location) *fields.location = '\0';
        if (!row.description) *fields.description = '\0';
        if (!row.summary) *fields.summary = '\0';
        EXPECT_EQ(matching_event("needle", fields.record()), row.event);
        EXPECT_EQ(matching_todo("needle", fields.record()), row.todo);
    }
}

TEST_F(MatchingItem, ReadsAMissingBufferAsAnEmptyText)
{
    EXPECT_EQ(matching_event("needle", {}), 1);
    EXPECT_EQ(matching_todo("needle", {}), 1);
}

// ---- The native -----------------------------------------------------------------------------------------------------

TEST_F(NextRecordWithMatchNative, FoldsACopyAndReleasesTheMachinesCharacters)
{
    add_contacts({{5, "Jones"}, {9, "Smith"}});
    EXPECT_EQ(call(LIST_CONTACT, -1, jni.string("SMI")), 9);
    EXPECT_THAT(jni.calls, ElementsAre("GetStringUTFChars(SMI)", "ReleaseStringUTFChars(SMI)"));
    EXPECT_THAT(platform.traces.at(0),
                trace(TRACE_STEP, "%s ***\n", "Java_com_qvr_zek_pim_PIMListImpl_nextRecordWithMatchStrN ***\n"));
}

TEST_F(NextRecordWithMatchNative, FindsEveryRecordForAnEmptyText)
{
    add_contacts({{5, "Jones"}, {9, "Smith"}});
    EXPECT_EQ(call(LIST_CONTACT, 5, jni.string("")), 9);
}

TEST_F(NextRecordWithMatchNative, EndsForANullText)
{
    add_contacts({{5, "Jones"}});
    EXPECT_EQ(call(LIST_CONTACT, -1, nullptr), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
}

TEST_F(NextRecordWithMatchNative, EndsWhenTheTextCannotBeHad)
{
    add_contacts({{5, "Jones"}});
    jni.fail("GetStringUTFChars");
    EXPECT_EQ(call(LIST_CONTACT, -1, jni.string("Jones")), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
    keep_exception("the machine's own error goes on to Java");
}

TEST_F(NextRecordWithMatchNative, EndsWhenTheCopyCannotBeAllocated)
{
    add_contacts({{5, "Jones"}});
    fail_allocation(1);
    EXPECT_EQ(call(LIST_CONTACT, -1, jni.string("Jones")), -1);
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_HARD, "memory allocation failed..\n")));
    EXPECT_THAT(jni.calls.back(), "ReleaseStringUTFChars(Jones)");
}

} // namespace search_test
