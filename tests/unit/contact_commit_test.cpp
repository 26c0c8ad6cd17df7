// Committing contacts: how the values of a request become a contact record, and when it is saved.
#include <csignal>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "commit_values.h"
#include "pimitemimpl_limo_arm.h"
#include "stored_records.h"
#include "time_zone.h"
#include "unit_test.h"

namespace contact_commit_test {

using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr int32_t REFUSED = 10001; // A value does not fit the record.

class ContactCommit : public unit_test {
protected:
    static int32_t commit(commit_values& values, int32_t recindex = 0)
    {
        return pimItemImpl_contact_commitN(values.request(recindex));
    }

    // Commits a new contact and gives what the store holds then.
    stored_contact& added(commit_values values)
    {
        const int32_t recindex = commit(values);
        EXPECT_GE(recindex, 1);
        EXPECT_LE(recindex, 10000);
        return *platform.find_contact(recindex);
    }

    // Commits an update of contact 1 and gives what the store holds then.
    stored_contact& updated(commit_values values)
    {
        EXPECT_EQ(commit(values, 1), 1);
        return *platform.find_contact(1);
    }

    void expect_refused(commit_values values)
    {
        EXPECT_EQ(commit(values), REFUSED);
        EXPECT_THAT(platform.contacts, IsEmpty());
        EXPECT_THAT(platform.calls_between_connections(), ElementsAre("contact_db_service_contact_free()"));
    }

    time_zone utc{UTC};
};

using ContactCommitTexts = ContactCommit;
using ContactCommitAddress = ContactCommit;
using ContactCommitName = ContactCommit;
using ContactCommitHomepage = ContactCommit;
using ContactCommitDates = ContactCommit;
using ContactCommitCategories = ContactCommit;
using ContactCommitUpdate = ContactCommit;
using ContactCommitFailure = ContactCommit;
using ContactCommitDeathTest = ContactCommit;

std::string xs(size_t count)
{
    return std::string(count, 'x');
}

template <size_t size>
std::string text_in(const char (&field)[size])
{
    return std::string(field, strnlen(field, size));
}

// A single text, the most bytes it takes, and where it goes.
struct text_row {
    const char* when;
    int32_t field;
    size_t limit;
    std::string (*stored)(const stored_contact&);
};

const text_row TEXTS[] = {
    {"EMAIL", CONTACT_EMAIL, 129, [](const stored_contact& contact) { return text_in(contact.emails.at(0).email); }},
    {"NICKNAME", CONTACT_NICKNAME, 196, [](const stored_contact& contact) { return text_in(contact.record.nickname); }},
    {"ORG", CONTACT_ORG, 65, [](const stored_contact& contact) { return text_in(contact.record.company_name); }},
    {"TEL", CONTACT_TEL, 41, [](const stored_contact& contact) { return text_in(contact.phones.at(0).number); }},
    {"TITLE", CONTACT_TITLE, 65, [](const stored_contact& contact) { return text_in(contact.record.job_title); }},
    {"URL", CONTACT_URL, 257,
     [](const stored_contact& contact) { return text_in(contact.record.homepage_info[0].homepage); }},
};

// A part of an address, the most bytes it takes, where it goes, and what its terminator empties when it is full.
struct part_row {
    const char* when;
    size_t element;
    size_t limit;
    std::string (*stored)(const contact_address&);
};

const part_row PARTS[] = {
    {"pobox", 0, 65, [](const contact_address& address) { return text_in(address.pobox); }},
    {"extra", 1, 129, [](const contact_address& address) { return text_in(address.additional_info); }},
    {"street", 2, 129, [](const contact_address& address) { return text_in(address.street); }},
    {"locality", 3, 129, [](const contact_address& address) { return text_in(address.city); }},
    {"region", 4, 129, [](const contact_address& address) { return text_in(address.state); }},
    {"postal code", 5, 41, [](const contact_address& address) { return text_in(address.postal_code); }},
    {"country", 6, 65, [](const contact_address& address) { return text_in(address.country); }},
};

using texts = std::vector<commit_values::text_value>;

// Seven null texts but for one.
texts only_part(size_t element, const std::string& text)
{
    texts parts(7);
    parts[element] = text;
    return parts;
}

const texts WHOLE_ADDRESS = {"Box 1", "c/o Ada", "Street 2", "City", "State", "10115", "Country"};

struct type_row {
    int32_t attribute;
    int32_t type;
};

} // namespace

// ---- Single texts ---------------------------------------------------------------------------------------------------

TEST_F(ContactCommitTexts, GoToTheirFields)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        const stored_contact& contact = added(commit_values().text(row.field, "a text"));
        EXPECT_EQ(row.stored(contact), "a text");
        start_over();
    }
    EXPECT_EQ(added(commit_values().text(CONTACT_NOTE, "a note")).note, "a note");
}

TEST_F(ContactCommitTexts, AreTakenUpToTheirLimit)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(row.stored(added(commit_values().text(row.field, xs(row.limit)))), xs(row.limit));
        start_over();
    }
}

TEST_F(ContactCommitTexts, AreRefusedOneByteOver)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        expect_refused(commit_values().text(row.field, xs(row.limit + 1)));
        start_over();
    }
}

TEST_F(ContactCommitTexts, AreAllWalkedThroughWhenOneIsRefused)
{
    EXPECT_EQ(pimItemImpl_contact_commitN(commit_values()
                                              .text(CONTACT_NICKNAME, xs(197))
                                              .text(CONTACT_TEL, "1")
                                              .number(CONTACT_BIRTHDAY, 0)
                                              .request(0)),
              REFUSED);
    EXPECT_THAT(platform.traces, Contains(Field(&trace_message::text,
                                                "The valuse of contact_record.phone_info[0].number 1 and "
                                                "attri_value -1\n ---------->")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "value = %lld, time = %lld\n", "value = 0, time = 0\n")));
}

// Its entry is there already, and the counter has not moved on.
TEST_F(ContactCommitTexts, FollowARefusedOneIntoTheSameEntry)
{
    const struct {
        commit_values values;
        const char* format;
        const char* text;
    } rows[] = {
        {commit_values().text(CONTACT_TEL, xs(42)).text(CONTACT_TEL, "1"),
         "current_phone_count : %d contact_record.phone_count = %d\n",
         "current_phone_count : 0 contact_record.phone_count = 1\n"},
        {commit_values().text(CONTACT_EMAIL, xs(130)).text(CONTACT_EMAIL, "a@b"),
         "current_email_count = %d contact_record.email_count = %d\n",
         "current_email_count = 0 contact_record.email_count = 1\n"},
        {commit_values().texts(CONTACT_ADDR, {xs(66)}).texts(CONTACT_ADDR, WHOLE_ADDRESS),
         "current_address_count : %d contact_record.postal_count : %d\n",
         "current_address_count : 0 contact_record.postal_count : 1\n"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.format);
        expect_refused(row.values);
        EXPECT_EQ(std::count_if(platform.traces.begin(), platform.traces.end(),
                                [&](const auto& trace) { return trace.format == row.format; }),
                  2);
        EXPECT_THAT(platform.traces, Each(testing::AnyOf(Field(&trace_message::format, testing::Ne(row.format)),
                                                         traced(row.format, row.text))));
        start_over();
    }
}

TEST_F(ContactCommitTexts, ThatAreNullLeaveTheirFieldEmpty)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        console_of([&] {
            const stored_contact& contact =
                added(commit_values().text(row.field, std::nullopt).text(CONTACT_ORG, "Org"));
            EXPECT_THAT(contact.emails, IsEmpty());
            EXPECT_THAT(contact.phones, IsEmpty());
            EXPECT_STREQ(contact.record.nickname, "");
            EXPECT_STREQ(contact.record.job_title, "");
            EXPECT_STREQ(contact.record.homepage_info[0].homepage, "");
            // The null took its place among the texts all the same.
            EXPECT_STREQ(contact.record.company_name, "Org");
        });
        start_over();
    }
    EXPECT_EQ(added(commit_values().text(CONTACT_NOTE, std::nullopt)).note, std::nullopt);
}

TEST_F(ContactCommitTexts, ThatAreNullAndThoseRefusedConsumeOne)
{
    const std::string far_too_long = xs(1000);
    struct row {
        const char* when;
        commit_values values;
    };
    std::vector<row> rows = {
        {"a null note", commit_values().text(CONTACT_NOTE, std::nullopt)},
        {"a homepage past the slots", commit_values().text(CONTACT_URL, "page", 0, CONTACT_HOMEPAGE_MAX)},
        {"a negative value index", commit_values().text(CONTACT_NOTE, "note", 0, -1)},
    };
    for (const text_row& text : TEXTS) {
        rows.push_back({text.when, commit_values().text(text.field, std::nullopt)});
        rows.push_back({text.when, commit_values().text(text.field, far_too_long)});
    }
    for (row& row : rows) {
        SCOPED_TRACE(row.when);
        console_of([&] { commit(row.values.text(CONTACT_ORG, "Org")); });
        EXPECT_THAT(platform.traces,
                    Contains(trace_text(TRACE_STEP, "curField : 109 currStringArrayIndex : 1 currAtrrib : 0\n")));
        start_over();
    }
}

TEST_F(ContactCommit, LooksAtNoEntryBehindTheCounts)
{
    const stored_contact& contact = added(commit_values()
                                              .text(CONTACT_NICKNAME, "Ada")
                                              .text(CONTACT_ORG, "behind")
                                              .number(CONTACT_BIRTHDAY, 0)
                                              .number(CONTACT_REVISION, 5000)
                                              .without_counting_the_last());
    EXPECT_STREQ(contact.record.nickname, "Ada");
    EXPECT_STREQ(contact.record.company_name, "");
    EXPECT_EQ(contact.record.birthday.year, 70);
    EXPECT_EQ(contact.record.save_time.sec, 0);
}

TEST_F(ContactCommitTexts, ThatAreEmptyAreValues)
{
    const stored_contact& contact =
        added(commit_values().text(CONTACT_TEL, "").text(CONTACT_EMAIL, "").text(CONTACT_NOTE, ""));
    EXPECT_EQ(contact.phones.size(), 1u);
    EXPECT_EQ(contact.emails.size(), 1u);
    EXPECT_EQ(contact.note, "");
}

TEST_F(ContactCommitTexts, OfUnknownFieldsTakeOneTextAndAreIgnored)
{
    for (int32_t field : {99, 101, 102, 104, 110, 114, 119, 0, -1, 0x1000000}) {
        SCOPED_TRACE(field);
        const stored_contact& contact = added(commit_values().text(field, "lost").text(CONTACT_ORG, "Org"));
        EXPECT_STREQ(contact.record.company_name, "Org");
        start_over();
    }
}

TEST_F(ContactCommitTexts, AreTracedEntryByEntry)
{
    added(commit_values().texts(CONTACT_ADDR, WHOLE_ADDRESS, 8).text(CONTACT_TEL, "1", 4).number(CONTACT_BIRTHDAY, 0));
    const char* format = "curField : %d currStringArrayIndex : %d currAtrrib : %d\n";
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, format, "curField : 100 currStringArrayIndex : 0 currAtrrib : 8\n")));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, format, "curField : 115 currStringArrayIndex : 7 currAtrrib : 4\n")));
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "pimItemImpl_contact_commitN\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "stringids[0] : %d, longvalue[0] : %lld\n",
                                                "stringids[0] : 2, longvalue[0] : 1\n")));
}

TEST_F(ContactCommitTexts, OfATitleAreToldToTheConsole)
{
    EXPECT_EQ(console_of([&] { added(commit_values().text(CONTACT_TITLE, "Countess")); }),
              "\n\nstrlen(stringvaluess[currStringArrayIndex]) = 8sizeof(contact_record.job_title) = 65\n");
    EXPECT_EQ(console_of([&] { added(commit_values().text(CONTACT_TITLE, std::nullopt)); }),
              "\n\n!!!!!!!!!!!!!!!!!!!!!!!!!!!\n");
    EXPECT_EQ(console_of([&] { added(commit_values().text(CONTACT_ORG, "Org")); }), "");
}

TEST_F(ContactCommitTexts, OfANoteMayHaveAnyLength)
{
    for (size_t length : {size_t{0}, size_t{1}, size_t{1024}, size_t{100000}}) {
        SCOPED_TRACE(length);
        EXPECT_EQ(added(commit_values().text(CONTACT_NOTE, xs(length))).note, xs(length));
        start_over();
    }
}

TEST_F(ContactCommitTexts, OfTheSameFieldReplaceEachOther)
{
    const stored_contact& contact = added(commit_values()
                                              .text(CONTACT_NICKNAME, "a longer first")
                                              .text(CONTACT_NOTE, "first")
                                              .text(CONTACT_NICKNAME, "second")
                                              .text(CONTACT_NOTE, "second"));
    EXPECT_STREQ(contact.record.nickname, "second");
    EXPECT_EQ(contact.note, "second");
}

// A full job title lies in its whole field, with its terminator on the byte behind.
TEST_F(ContactCommitTexts, OfAFullTitleEndOnTheByteBehindTheField)
{
    platform.add_contact(1);
    put_into(platform.find_contact(1)->record.opaque_661, "opaque");
    const stored_contact& contact = updated(commit_values().text(CONTACT_TITLE, xs(65)));
    EXPECT_EQ(text_in(contact.record.job_title), xs(65));
    EXPECT_EQ(std::string(contact.record.opaque_661, 6), std::string("\0paque", 6));
}

// ---- Entries --------------------------------------------------------------------------------------------------------

TEST_F(ContactCommit, KeepsThePhoneTypeOfTheAttribute)
{
    const type_row rows[] = {{0x1000001, 0}, {0x1000002, 1}, {0x1000003, 2},  {0x1000004, 3}, {8, 4},
                             {512, 5},       {0x1000005, 6}, {4, 7},          {0x1000006, 8}, {0x1000007, 9},
                             {1, 10},        {64, 11},       {32, 12},        {0, -1},        {2, -1},
                             {16, -1},       {12, -1},       {0x1000008, -1}, {-1, -1},       {0x1000000, -1}};
    for (const type_row& row : rows) {
        const contact_phone phone = added(commit_values().text(CONTACT_TEL, "1", row.attribute)).phones.at(0);
        EXPECT_EQ(phone.type, row.type) << row.attribute;
        EXPECT_EQ(phone.opaque_48, 0);
    }
}

TEST_F(ContactCommit, KeepsTheTypeOfOtherEntriesByTheirAttributes)
{
    struct row {
        int32_t attribute, address, email, homepage;
    };
    const row rows[] = {{8, 0, -1, -1},         {512, 1, -1, -1},       {0x1000008, -1, 0, -1}, {0x1000009, -1, 1, -1},
                        {0x100000a, -1, -1, 0}, {0x100000b, -1, -1, 1}, {0, -1, -1, -1},        {520, -1, -1, -1},
                        {1, -1, -1, -1},        {-1, -1, -1, -1}};
    for (const row& row : rows) {
        SCOPED_TRACE(row.attribute);
        const stored_contact& contact = added(commit_values()
                                                  .texts(CONTACT_ADDR, WHOLE_ADDRESS, row.attribute)
                                                  .text(CONTACT_EMAIL, "a@b", row.attribute)
                                                  .text(CONTACT_URL, "http://a", row.attribute));
        EXPECT_EQ(contact.addresses.at(0).type, row.address);
        EXPECT_EQ(contact.emails.at(0).type, row.email);
        EXPECT_EQ(contact.record.homepage_info[0].type, row.homepage);
    }
}

TEST_F(ContactCommit, FillsEntriesInOrderWithTheirPositions)
{
    commit_values values;
    for (int i = 0; i < 15; ++i) values.text(CONTACT_TEL, "phone " + std::to_string(i));
    for (int i = 0; i < 15; ++i) values.text(CONTACT_EMAIL, "email " + std::to_string(i));
    for (int i = 0; i < 5; ++i) values.texts(CONTACT_ADDR, only_part(3, "city " + std::to_string(i)));
    const stored_contact& contact = added(values);

    ASSERT_EQ(contact.phones.size(), 15u);
    ASSERT_EQ(contact.emails.size(), 15u);
    ASSERT_EQ(contact.addresses.size(), 5u);
    for (int32_t i = 0; i < 15; ++i) {
        const auto place = static_cast<size_t>(i);
        EXPECT_EQ(contact.phones[place].number, "phone " + std::to_string(i));
        EXPECT_EQ(contact.phones[place].position, i);
        EXPECT_EQ(contact.emails[place].email, "email " + std::to_string(i));
        EXPECT_EQ(contact.emails[place].position, i);
        if (i >= 5) continue;
        EXPECT_EQ(contact.addresses[place].city, "city " + std::to_string(i));
        EXPECT_EQ(contact.addresses[place].position, i);
    }
    for (const char* full : {"address full\n", "e-mail is full\n", "phone number is full\n"})
        EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, full))));
}

TEST_F(ContactCommit, DropsWhatFullArraysCannotTakeAndGoesOn)
{
    commit_values values;
    for (int i = 0; i < 16; ++i) values.text(CONTACT_TEL, i < 15 ? "in" : "out");
    for (int i = 0; i < 16; ++i) values.text(CONTACT_EMAIL, i < 15 ? "in" : "out");
    for (int i = 0; i < 6; ++i) values.texts(CONTACT_ADDR, only_part(3, i < 5 ? "in" : "out"));
    values.text(CONTACT_ORG, "Org");
    const stored_contact& contact = added(values);

    ASSERT_EQ(contact.phones.size(), 15u);
    ASSERT_EQ(contact.emails.size(), 15u);
    ASSERT_EQ(contact.addresses.size(), 5u);
    EXPECT_STREQ(contact.phones[14].number, "in");
    EXPECT_STREQ(contact.emails[14].email, "in");
    EXPECT_STREQ(contact.addresses[4].city, "in");
    EXPECT_STREQ(contact.record.company_name, "Org") << "the dropped ones took their texts";
    for (const char* full : {"address full\n", "e-mail is full\n", "phone number is full\n"})
        EXPECT_THAT(platform.traces, Contains(traced(full, full)));
}

TEST_F(ContactCommit, DropsWhatFullArraysCannotTakeWhateverItsLength)
{
    commit_values values;
    for (int i = 0; i < 15; ++i) values.text(CONTACT_TEL, "in").text(CONTACT_EMAIL, "in");
    for (int i = 0; i < 5; ++i) values.texts(CONTACT_ADDR, WHOLE_ADDRESS);
    values.text(CONTACT_TEL, xs(100)).text(CONTACT_EMAIL, xs(200)).texts(CONTACT_ADDR, only_part(5, xs(100)));
    EXPECT_EQ(added(values).phones.size(), 15u);
}

TEST_F(ContactCommit, TracesEveryEntryItFills)
{
    added(commit_values().text(CONTACT_TEL, "030", 8).text(CONTACT_EMAIL, "a@b").texts(CONTACT_ADDR, WHOLE_ADDRESS));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "current_phone_count : %d contact_record.phone_count = %d\n",
                               "current_phone_count : 0 contact_record.phone_count = 1\n")));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "current_email_count = %d contact_record.email_count = %d\n",
                               "current_email_count = 0 contact_record.email_count = 1\n")));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "current_address_count : %d contact_record.postal_count : %d\n",
                               "current_address_count : 0 contact_record.postal_count : 1\n")));
    EXPECT_THAT(platform.traces, Contains(Field(&trace_message::text,
                                                "The valuse of contact_record.phone_info[0].number 030 and "
                                                "attri_value 4\n ---------->")));
}

// ---- Addresses ------------------------------------------------------------------------------------------------------

TEST_F(ContactCommitAddress, HasItsSevenPartsAndAllOfThemInItsFullText)
{
    const contact_address address = added(commit_values().texts(CONTACT_ADDR, WHOLE_ADDRESS, 8)).addresses.at(0);
    for (const part_row& row : PARTS) EXPECT_EQ(row.stored(address), *WHOLE_ADDRESS[row.element]) << row.when;
    // The pobox has nothing behind it, every other part a blank.
    EXPECT_STREQ(address.full_text, "Box 1c/o Ada Street 2 City State 10115 Country ");
}

TEST_F(ContactCommitAddress, LeavesNullPartsOutOfItsFullText)
{
    const contact_address address =
        added(commit_values().texts(
                  CONTACT_ADDR, {"Box", std::nullopt, "Street", std::nullopt, std::nullopt, std::nullopt, "Country"}))
            .addresses.at(0);
    EXPECT_STREQ(address.full_text, "BoxStreet Country ");
    EXPECT_STREQ(address.additional_info, "");
    EXPECT_STREQ(address.city, "");
}

TEST_F(ContactCommitAddress, GivesAnEmptyPartItsBlank)
{
    const contact_address address =
        added(commit_values().texts(CONTACT_ADDR, {"", "", "Street", "", "", "", ""})).addresses.at(0);
    EXPECT_STREQ(address.full_text, " Street     ");
}

TEST_F(ContactCommitAddress, WithoutAnyPartIsSkippedWithItsSevenTexts)
{
    for (const texts& nothing :
         {texts(7), texts(7, ""), texts{"", std::nullopt, "", std::nullopt, "", std::nullopt, ""}}) {
        const stored_contact& contact = added(commit_values().texts(CONTACT_ADDR, nothing).text(CONTACT_ORG, "Org"));
        EXPECT_THAT(contact.addresses, IsEmpty());
        EXPECT_STREQ(contact.record.company_name, "Org");
        EXPECT_THAT(platform.traces, Contains(traced("address is null\n", "address is null\n")));
        start_over();
    }
}

TEST_F(ContactCommitAddress, WithoutAnyPartDoesNotCountTowardsTheFive)
{
    commit_values values;
    for (int i = 0; i < 5; ++i) values.texts(CONTACT_ADDR, texts(7)).texts(CONTACT_ADDR, WHOLE_ADDRESS);
    EXPECT_EQ(added(values).addresses.size(), 5u);
    EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, "address full\n"))));
}

TEST_F(ContactCommitAddress, TakesEachPartUpToItsLimit)
{
    for (const part_row& row : PARTS) {
        SCOPED_TRACE(row.when);
        const contact_address address =
            added(commit_values().texts(CONTACT_ADDR, only_part(row.element, xs(row.limit)))).addresses.at(0);
        EXPECT_EQ(row.stored(address), xs(row.limit));
        EXPECT_EQ(address.position, 0);
        start_over();
    }
}

TEST_F(ContactCommitAddress, IsRefusedWhenAPartIsOneByteOver)
{
    for (const part_row& row : PARTS) {
        SCOPED_TRACE(row.when);
        expect_refused(commit_values().texts(CONTACT_ADDR, only_part(row.element, xs(row.limit + 1))));
        start_over();
    }
}

// The next value begins at the text after the refused address's first one.
TEST_F(ContactCommitAddress, ThatIsRefusedConsumesOneText)
{
    texts parts(7);
    parts[0] = xs(66);
    parts[1] = "second text";
    EXPECT_EQ(pimItemImpl_contact_commitN(commit_values().texts(CONTACT_ADDR, parts).text(CONTACT_TEL, "1").request(0)),
              REFUSED);
    EXPECT_THAT(platform.traces,
                Contains(Field(&trace_message::text, "curField : 115 currStringArrayIndex : 1 currAtrrib : 0\n")));
    EXPECT_THAT(platform.traces, Contains(Field(&trace_message::text,
                                                "The valuse of contact_record.phone_info[0].number second text "
                                                "and attri_value -1\n ---------->")));
}

// A part that fills its field whole has its terminator on the first byte of the field behind it.
TEST_F(ContactCommitAddress, FullPartsEmptyTheFieldBehindThemWhereItIsFilledFirst)
{
    struct row {
        const char* when;
        size_t element;
        size_t limit;
        std::vector<std::string> stored; // pobox, extra, street, locality, region, postal code, country
    };
    const row rows[] = {
        {"a full street empties the extra", 2, 129, {"Box 1", "", xs(129), "City", "State", "10115", "Country"}},
        {"a full postal code empties the region",
         5,
         41,
         {"Box 1", "c/o Ada", "Street 2", "City", "", xs(41), "Country"}},
        {"a full country empties the pobox", 6, 65, {"", "c/o Ada", "Street 2", "City", "State", "10115", xs(65)}},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        texts parts = WHOLE_ADDRESS;
        parts[row.element] = xs(row.limit);
        const contact_address address = added(commit_values().texts(CONTACT_ADDR, parts, 512)).addresses.at(0);
        for (const part_row& part : PARTS) EXPECT_EQ(part.stored(address), row.stored[part.element]) << part.when;
        std::string full_text;
        for (size_t i = 0; i < parts.size(); ++i) full_text += *parts[i] + (i == 0 ? "" : " ");
        EXPECT_EQ(address.full_text, full_text) << "keeps all parts";
        EXPECT_EQ(address.type, 1);
        EXPECT_EQ(address.position, 0);
        start_over();
    }
}

TEST_F(ContactCommitAddress, FullPartsWhoseNeighbourIsFilledAfterThemRunIntoIt)
{
    texts parts = WHOLE_ADDRESS;
    parts[1] = xs(129); // The extra, and the city behind it.
    const contact_address address = added(commit_values().texts(CONTACT_ADDR, parts)).addresses.at(0);
    EXPECT_EQ(text_in(address.additional_info), xs(129));
    EXPECT_STREQ(address.city, "City");
}

TEST_F(ContactCommitAddress, FullPoboxLeavesThePositionRight)
{
    commit_values values;
    values.texts(CONTACT_ADDR, WHOLE_ADDRESS).texts(CONTACT_ADDR, only_part(0, xs(65)));
    const contact_address address = added(values).addresses.at(1);
    EXPECT_EQ(text_in(address.pobox), xs(65));
    EXPECT_EQ(address.position, 1);
}

TEST_F(ContactCommitAddress, KeepsItsPartsWhenItsFullTextTakesNoMore)
{
    const texts parts = {xs(65), xs(128), xs(128), xs(128), xs(128), xs(40), xs(64)};
    const contact_address address = added(commit_values().texts(CONTACT_ADDR, parts)).addresses.at(0);
    for (const part_row& row : PARTS) EXPECT_EQ(row.stored(address), *parts[row.element]) << row.when;
    // 65 + 3 * 129 bytes are in, then what fits of the region.
    EXPECT_EQ(text_in(address.full_text),
              xs(65) + xs(128) + " " + xs(128) + " " + xs(128) + " " + xs(512 - 65 - 3 * 129));
}

TEST_F(ContactCommitAddress, CutsItsFullTextAtAWholeCharacter)
{
    struct row {
        const char* when;
        std::string region; // 60 bytes are left for it.
        std::string kept;
    };
    const std::string a_umlaut = "\xc3\xa4", euro = "\xe2\x82\xac", pair = "\xed\xa0\xbd\xed\xb8\x80";
    const row rows[] = {
        {"fits exactly, but its blank does not", xs(60), xs(60)},
        {"fits with its blank", xs(59), xs(59) + " "},
        {"two bytes that fit", xs(58) + a_umlaut + "x", xs(58) + a_umlaut},
        {"two bytes that do not, but the blank behind them", xs(59) + a_umlaut, xs(59) + " "},
        {"three bytes of which two fit", xs(58) + euro, xs(58) + " "},
        {"a pair of which one half fits", xs(57) + pair, xs(57) + " "},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        texts parts = {xs(65), xs(128), xs(128), xs(128), row.region, std::nullopt, std::nullopt};
        const contact_address address = added(commit_values().texts(CONTACT_ADDR, parts)).addresses.at(0);
        EXPECT_EQ(text_in(address.full_text), xs(65) + xs(128) + " " + xs(128) + " " + xs(128) + " " + row.kept);
        EXPECT_EQ(text_in(address.state), row.region);
        start_over();
    }
}

TEST_F(ContactCommitAddress, AtFullLengthTouchesNoNeighbourOfItsFullText)
{
    const texts parts = {xs(65), xs(129), xs(129), xs(129), xs(129), xs(41), xs(65)};
    const contact_address address = added(commit_values().texts(CONTACT_ADDR, parts, 8)).addresses.at(0);
    EXPECT_EQ(text_in(address.full_text).size(), 512u);
    EXPECT_EQ(address.full_text[512], '\0');
    EXPECT_EQ(address.type, 0);
    EXPECT_EQ(text_in(address.street), xs(129));
}

// ---- Names ----------------------------------------------------------------------------------------------------------

TEST_F(ContactCommitName, GoesToFamilyAndGivenName)
{
    const stored_contact& contact =
        added(commit_values().texts(CONTACT_NAME, {"Lovelace", "Ada"}).text(CONTACT_ORG, "Org"));
    EXPECT_STREQ(contact.record.name_info.last_name, "Lovelace");
    EXPECT_STREQ(contact.record.name_info.first_name, "Ada");
    EXPECT_STREQ(contact.record.company_name, "Org");
    const std::string names = "C_NAME, stringvaluess[currStringArrayIndex + ";
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, names + "C_NAME_FAMILY] = %s\n", names + "C_NAME_FAMILY] = Lovelace\n")));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, names + "C_NAME_GIVEN] = %s\n", names + "C_NAME_GIVEN] = Ada\n")));
}

TEST_F(ContactCommitName, TakesPartsOf65BytesAndRefusesOneMore)
{
    const stored_contact& contact = added(commit_values().texts(CONTACT_NAME, {xs(65), xs(65)}));
    EXPECT_EQ(contact.record.name_info.last_name, xs(65));
    EXPECT_EQ(contact.record.name_info.first_name, xs(65));
    start_over();
    expect_refused(commit_values().texts(CONTACT_NAME, {xs(66), "Ada"}));
    start_over();
    expect_refused(commit_values().texts(CONTACT_NAME, {"Lovelace", xs(66)}));
}

TEST_F(ContactCommitName, ThatIsRefusedConsumesOneText)
{
    for (const texts& name : {texts{xs(66), "Ada"}, texts{"Lovelace", xs(66)}}) {
        EXPECT_EQ(
            pimItemImpl_contact_commitN(commit_values().texts(CONTACT_NAME, name).text(CONTACT_TEL, "1").request(0)),
            REFUSED);
        EXPECT_THAT(platform.traces,
                    Contains(Field(&trace_message::text, "curField : 115 currStringArrayIndex : 1 currAtrrib : 0\n")));
        start_over();
    }
}

// Kept: only names that are not null are consumed, and at least one text.
TEST_F(ContactCommitName, ConsumesAsManyTextsAsItHasNames)
{
    struct row {
        const char* when;
        texts name;
        const char* last_name;
        const char* first_name;
        const char* next; // What a text after it reads.
    };
    const row rows[] = {
        {"both", {"Lovelace", "Ada"}, "Lovelace", "Ada", "next"},
        {"no family name", {std::nullopt, "Ada"}, "", "Ada", "Ada"},
        {"no given name", {"Lovelace", std::nullopt}, "Lovelace", "", ""},
        {"neither", {std::nullopt, std::nullopt}, "", "", ""},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        const stored_contact& contact =
            added(commit_values().texts(CONTACT_NAME, row.name).text(CONTACT_NICKNAME, "next"));
        EXPECT_STREQ(contact.record.name_info.last_name, row.last_name);
        EXPECT_STREQ(contact.record.name_info.first_name, row.first_name);
        EXPECT_STREQ(contact.record.nickname, row.next);
        start_over();
    }
}

// ---- Homepages ------------------------------------------------------------------------------------------------------

TEST_F(ContactCommitHomepage, GoesToTheSlotOfItsIndex)
{
    for (int32_t slot = 0; slot < 5; ++slot) {
        SCOPED_TRACE(slot);
        const stored_contact& contact = added(commit_values().text(CONTACT_URL, "http://a", 0x100000b, slot));
        for (int32_t i = 0; i < 5; ++i) {
            EXPECT_STREQ(contact.record.homepage_info[i].homepage, i == slot ? "http://a" : "");
            EXPECT_EQ(contact.record.homepage_info[i].type, i == slot ? 1 : 0);
        }
        start_over();
    }
}

TEST_F(ContactCommitHomepage, ThatIsNullSetsItsSlotsTypeAllTheSame)
{
    platform.add_contact(1);
    put_into(platform.find_contact(1)->record.homepage_info[2].homepage, "http://old");
    const stored_contact& contact = updated(commit_values().text(CONTACT_URL, std::nullopt, 0x100000b, 2));
    EXPECT_STREQ(contact.record.homepage_info[2].homepage, "http://old");
    EXPECT_EQ(contact.record.homepage_info[2].type, 1);
}

TEST_F(ContactCommitHomepage, PastTheSlotsIsRefused)
{
    for (int32_t index :
         {5, 6, 1000000, std::numeric_limits<int32_t>::max(), -1, std::numeric_limits<int32_t>::min()}) {
        SCOPED_TRACE(index);
        expect_refused(commit_values().text(CONTACT_URL, "http://a", 0x100000a, index));
        start_over();
        expect_refused(commit_values().text(CONTACT_URL, std::nullopt, 0x100000a, index));
        start_over();
    }
}

TEST_F(ContactCommit, RefusesANegativeValueIndexOfAnyField)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        expect_refused(commit_values().text(row.field, "a text", 0, -1));
        start_over();
    }
    expect_refused(commit_values().texts(CONTACT_ADDR, WHOLE_ADDRESS, 0, -1));
    start_over();
    expect_refused(commit_values().texts(CONTACT_NAME, {"Lovelace", "Ada"}, 0, -2));
    start_over();
    expect_refused(commit_values().text(CONTACT_NOTE, "a note", 0, std::numeric_limits<int32_t>::min()));
    start_over();
    expect_refused(commit_values().number(CONTACT_BIRTHDAY, 0, -1));
}

TEST_F(ContactCommit, IgnoresPositiveValueIndexesOfOtherFields)
{
    const stored_contact& contact = added(commit_values()
                                              .text(CONTACT_TEL, "1", 0, 7)
                                              .text(CONTACT_NICKNAME, "nick", 0, 1000000)
                                              .number(CONTACT_BIRTHDAY, 0, 9));
    EXPECT_STREQ(contact.phones.at(0).number, "1");
    EXPECT_STREQ(contact.record.nickname, "nick");
}

// ---- Dates ----------------------------------------------------------------------------------------------------------

TEST_F(ContactCommitDates, KeepABirthdayAsLocalTime)
{
    struct row {
        const char* when;
        const char* zone;
        int64_t milliseconds;
        broken_down_time stored;
    };
    const row rows[] = {
        {"the epoch", UTC, 0, {0, 0, 0, 1, 0, 70, 4, 0, 0}},
        {"the epoch nine hours to the east", TOKYO, 0, {0, 0, 9, 1, 0, 70, 4, 0, 0}},
        {"the epoch in winter time", BERLIN, 0, {0, 0, 1, 1, 0, 70, 4, 0, 0}},
        {"a summer's day", BERLIN, INT64_C(1720000000999), {40, 46, 11, 3, 6, 124, 3, 184, 1}},
        {"before the epoch", UTC, -1500, {59, 59, 23, 31, 11, 69, 3, 364, 0}},
        {"a millisecond before the epoch", UTC, -1, {0, 0, 0, 1, 0, 70, 4, 0, 0}},
        {"past 2038, cut to 32 bits", UTC, INT64_C(2147483648000), {52, 45, 20, 13, 11, 1, 5, 346, 0}},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        const time_zone zone(row.zone);
        EXPECT_EQ(added(commit_values().number(CONTACT_BIRTHDAY, row.milliseconds)).record.birthday, row.stored);
        start_over();
    }
}

TEST_F(ContactCommitDates, PutARevisionsSecondsInTheFirstWordOfTheSaveTime)
{
    struct row {
        int64_t milliseconds;
        int32_t first_word;
    };
    for (const row& row : {row{0, 0},
                           {1999, 1},
                           {-1, 0},
                           {-1000, -1},
                           {INT64_C(1720000000999), 1720000000},
                           {INT64_C(2147483648000), std::numeric_limits<int32_t>::min()}}) {
        SCOPED_TRACE(row.milliseconds);
        platform.add_contact(1).record.save_time = {5, 6, 7, 8, 9, 100, 1, 2, 0};
        const stored_contact& contact = updated(commit_values().number(CONTACT_REVISION, row.milliseconds));
        EXPECT_EQ(contact.record.save_time, (broken_down_time{row.first_word, 6, 7, 8, 9, 100, 1, 2, 0}))
            << "the other words stay";
        start_over();
    }
}

TEST_F(ContactCommitDates, OfOtherFieldsAreIgnored)
{
    commit_values values;
    for (int32_t field : {99, 100, 102, 105, 106, 115, 0, -1}) values.number(field, 1000);
    const stored_contact& contact = added(values);
    EXPECT_EQ(contact.record.birthday, broken_down_time());
    EXPECT_EQ(contact.record.save_time, broken_down_time());
}

TEST_F(ContactCommitDates, AreTracedEntryByEntry)
{
    added(commit_values().number(CONTACT_BIRTHDAY, 1234567, 3));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "value = %lld, time = %lld\n", "value = 1234567, time = 1234\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "curField : %d currIndex : %d currAttrib : %d\n",
                                                "curField : 101 currIndex : 3 currAttrib : 0\n")));
}

// ---- Categories -----------------------------------------------------------------------------------------------------

TEST_F(ContactCommitCategories, MakeTheContactAMemberOfTheirGroups)
{
    platform.add_group(0, "Home");
    platform.add_group(7, "Work");
    platform.add_group(29, "Sport");
    const stored_contact& contact = added(commit_values().category("Sport").category("Home"));
    for (int32_t key = 0; key < CONTACT_MEMBERSHIP_SIZE; ++key)
        EXPECT_EQ(contact.record.membership[key], key == 0 || key == 29 ? 1 : 0) << key;
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "SOON COMMIT!!  categorycount= %d recindex = %d\n",
                                                "SOON COMMIT!!  categorycount= 3 recindex = 0\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "DB query [%s]\n", "DB query [id >= 0]\n")));
    EXPECT_THAT(
        platform.calls_between_connections(),
        ElementsAre("contact_db_service_group_get_count()", "contact_db_service_group_search(\"id >= 0\", 20, 0, 3, 0)",
                    "contact_db_service_contact_add()", "contact_db_service_contact_free()"));
}

TEST_F(ContactCommitCategories, AreComparedExactlyAndInFull)
{
    platform.add_group(3, "Work");
    for (const char* name : {"work", "WORK", "Wor", "Works", "", " Work"}) {
        const stored_contact& contact = added(commit_values().category(name));
        EXPECT_EQ(contact.record.membership[3], 0) << name;
    }
}

TEST_F(ContactCommitCategories, OfAFullLengthNameAreFound)
{
    platform.add_group(3, xs(64));
    EXPECT_EQ(added(commit_values().category(xs(64))).record.membership[3], 1);
    EXPECT_EQ(added(commit_values().category(xs(65))).record.membership[3], 0);
}

TEST_F(ContactCommitCategories, OfGroupsThatShareANameJoinAllOfThem)
{
    platform.add_group(3, "Work");
    platform.add_group(4, "Work");
    const stored_contact& contact = added(commit_values().category("Work"));
    EXPECT_EQ(contact.record.membership[3], 1);
    EXPECT_EQ(contact.record.membership[4], 1);
}

TEST_F(ContactCommitCategories, ThatMatchNoGroupLeaveTheContactWithoutMemberships)
{
    platform.add_group(3, "Work");
    const stored_contact& contact = added(commit_values().category("Nothing").category(std::nullopt));
    for (unsigned char byte : contact.record.membership) EXPECT_EQ(byte, 0);
}

TEST_F(ContactCommitCategories, AreNotLookedForWhenThereAreNone)
{
    platform.add_group(3, "Work");
    added(commit_values());
    EXPECT_THAT(platform.calls_of("contact_db_service_group_get_count").size(), 1u);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_search"), IsEmpty());

    // A list without a count, and a count without a list.
    commit_values values;
    CommitRequest request = values.category("Work").request(0);
    request.categorycount = 0;
    EXPECT_GE(pimItemImpl_contact_commitN(request), 1);
    request.categories = nullptr;
    request.categorycount = 1;
    EXPECT_GE(pimItemImpl_contact_commitN(request), 1);
    EXPECT_THAT(platform.calls_of("contact_db_service_group_search"), IsEmpty());
}

TEST_F(ContactCommitCategories, AreNoneWhenTheyAreCountedBelowZero)
{
    platform.add_group(3, "Work");
    commit_values values;
    CommitRequest request = values.category("Work").request(0);
    request.categorycount = -1;
    EXPECT_EQ(pimItemImpl_contact_commitN(request), 1);
    EXPECT_EQ(platform.find_contact(1)->record.membership[3], 0);
}

TEST_F(ContactCommitCategories, AreOnlyEverAddedByAnUpdate)
{
    platform.add_contact(1);
    platform.add_group(3, "Work");
    platform.add_group(4, "Home");
    platform.add_members(3, {1});
    const stored_contact& contact = updated(commit_values().category("Home"));
    EXPECT_EQ(contact.record.membership[3], 1);
    EXPECT_EQ(contact.record.membership[4], 1);
}

TEST_F(ContactCommitCategories, AreCountedThoughTheCountMayFail)
{
    platform.add_group(3, "Work");
    platform.fail("contact_db_service_group_get_count", 44);
    EXPECT_EQ(added(commit_values().category("Work")).record.membership[3], 0) << "no group is looked at";
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, "contact_db_service_group_get_count Fail..(%d)\n",
                                                "contact_db_service_group_get_count Fail..(44)\n")));
}

TEST_F(ContactCommitCategories, HaveNoGroupsToBeFoundInAStoreWithout)
{
    added(commit_values().category("Work"));
    EXPECT_THAT(platform.calls_of("contact_db_service_group_search"),
                ElementsAre("contact_db_service_group_search(\"id >= 0\", 20, 0, 0, 0)"));
}

TEST_F(ContactCommitCategories, AreLeftAloneWhenTheGroupsCannotBeSearched)
{
    platform.add_group(3, "Work");
    platform.fail("contact_db_service_group_search", 45);
    const stored_contact& contact = added(commit_values().category("Work"));
    EXPECT_EQ(contact.record.membership[3], 0);
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_HARD, "contact_db_service_group_get_all_records Fail..\n")));
}

TEST_F(ContactCommitCategories, StopTheCommitAtAGroupWithoutAName)
{
    platform.add_group(3, "Work");
    platform.add_group(4, "");
    platform.add_group(5, "Home");
    commit_values values;
    EXPECT_EQ(commit(values.category("Work")), REFUSED);
    EXPECT_THAT(platform.contacts, IsEmpty());
    EXPECT_THAT(platform.calls_of("contact_db_service_contact_add"), IsEmpty());
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

TEST_F(ContactCommitCategories, DoNotMindANamelessGroupWhenThereAreNone)
{
    platform.add_group(4, "");
    added(commit_values());
}

TEST_F(ContactCommitCategories, WriteNoByteBehindTheMemberships)
{
    for (int32_t key : {-1, int32_t{CONTACT_MEMBERSHIP_SIZE}, 1000000, std::numeric_limits<int32_t>::max(),
                        std::numeric_limits<int32_t>::min()}) {
        SCOPED_TRACE(key);
        platform.add_group(3, "Work");
        platform.alter_group = [&](contact_group_record& group) { group.group_key.index = key; };
        const contact_record record = added(commit_values().category("Work")).record;
        contact_record untouched = {};
        untouched.index = record.index;
        EXPECT_EQ(bytes_of(record), bytes_of(untouched));
        start_over();
    }
}

TEST_F(ContactCommitCategories, AreNotReadPastTheGroupsThereIsRoomFor)
{
    platform.add_group(3, "Work");
    for (int count : {2, 20, 1000000, std::numeric_limits<int32_t>::max()}) {
        SCOPED_TRACE(count);
        platform.reported_counts["contact_db_service_group_search"] = count;
        EXPECT_EQ(added(commit_values().category("Work")).record.membership[3], 1);
    }
    platform.reported_counts["contact_db_service_group_search"] = -1;
    EXPECT_EQ(added(commit_values().category("Work")).record.membership[3], 0);
}

TEST_F(ContactCommitCategories, AreNotReadFromGroupsThatAStoreCountsBelowZero)
{
    platform.add_group(3, "Work");
    platform.reported_counts["contact_db_service_group_get_count"] = -5;
    added(commit_values().category("Work"));
}

TEST_F(ContactCommitCategories, FailTheCommitWhenTheGroupsCannotBeAllocated)
{
    platform.add_group(3, "Work");
    fail_allocations_of(sizeof(contact_group_record));
    commit_values values;
    EXPECT_THAT(commit(values.category("Work")), AnyOf(-1, REFUSED));
    EXPECT_THAT(platform.traces, Contains(traced("memory allocation failed..\n", "memory allocation failed..\n")));
    EXPECT_THAT(platform.contacts, IsEmpty());
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

// ---- Saving ---------------------------------------------------------------------------------------------------------

TEST_F(ContactCommit, AddsANewContactForAnIndexBelowOne)
{
    for (int32_t recindex : {0, -1, std::numeric_limits<int32_t>::min()}) {
        SCOPED_TRACE(recindex);
        platform.add_contact(4);
        commit_values values;
        EXPECT_EQ(commit(values.text(CONTACT_ORG, "Org"), recindex), 5) << "the index that the store gave it";
        EXPECT_STREQ(platform.find_contact(5)->record.company_name, "Org");
        EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_group_get_count()",
                                                "contact_db_service_contact_add()", "contact_db_service_contact_free()",
                                                "contact_db_service_disconnect()"));
        EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "---- contact_db_service_contact_add ----\n")));
        start_over();
    }
}

TEST_F(ContactCommit, StoresZerosWhereNoValueGoes)
{
    const contact_record record = added(commit_values()).record;
    contact_record untouched = {};
    untouched.index = record.index;
    EXPECT_EQ(bytes_of(record), bytes_of(untouched));
}

TEST_F(ContactCommitUpdate, KeepsWhatTheRequestDoesNotCarry)
{
    stored_contact& contact = platform.add_contact(1, "Ada", "Lovelace");
    put_into(contact.record.nickname, "Countess");
    put_into(contact.record.opaque_2524, "opaque");
    contact.note = "an old note";
    contact.record.birthday = local_time(1815, 12, 10);
    updated(commit_values().text(CONTACT_ORG, "Org"));

    const stored_contact& stored = *platform.find_contact(1);
    EXPECT_STREQ(stored.record.company_name, "Org");
    EXPECT_STREQ(stored.record.name_info.first_name, "Ada");
    EXPECT_STREQ(stored.record.nickname, "Countess");
    EXPECT_STREQ(stored.record.opaque_2524, "opaque");
    EXPECT_EQ(stored.note, "an old note");
    EXPECT_EQ(stored.record.birthday, local_time(1815, 12, 10));
    EXPECT_THAT(platform.calls,
                ElementsAre("contact_db_service_connect()", "contact_db_service_contact_get(1)",
                            "contact_db_service_group_get_count()", "contact_db_service_contact_update(1)",
                            "contact_db_service_contact_free()", "contact_db_service_disconnect()"));
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "It's update\n")));
    EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "---- contact_db_service_contact_update ----\n")));
}

TEST_F(ContactCommitUpdate, AppendsEntriesBehindTheStoredOnes)
{
    stored_contact& contact = platform.add_contact(1);
    contact.phones = {a_phone("1", 4), a_phone("2", 5)};
    contact.emails = {an_email("a", 0)};
    contact.addresses = {an_address(1)};
    const stored_contact& stored = updated(commit_values()
                                               .text(CONTACT_TEL, "3", 8)
                                               .text(CONTACT_TEL, "4")
                                               .text(CONTACT_EMAIL, "b", 0x1000009)
                                               .texts(CONTACT_ADDR, WHOLE_ADDRESS, 8));
    ASSERT_EQ(stored.phones.size(), 4u);
    EXPECT_STREQ(stored.phones[0].number, "1");
    EXPECT_STREQ(stored.phones[1].number, "2");
    EXPECT_STREQ(stored.phones[2].number, "3");
    EXPECT_EQ(stored.phones[2].position, 2);
    EXPECT_STREQ(stored.phones[3].number, "4");
    EXPECT_EQ(stored.phones[3].position, 3);
    ASSERT_EQ(stored.emails.size(), 2u);
    EXPECT_STREQ(stored.emails[1].email, "b");
    EXPECT_EQ(stored.emails[1].type, 1);
    ASSERT_EQ(stored.addresses.size(), 2u);
    EXPECT_STREQ(stored.addresses[1].city, "City");
    EXPECT_EQ(stored.addresses[1].position, 1);
}

TEST_F(ContactCommitUpdate, CountsStoredEntriesTowardsTheLimits)
{
    stored_contact& contact = platform.add_contact(1);
    contact.phones.resize(14);
    contact.emails.resize(14);
    contact.addresses.resize(4);
    commit_values values;
    for (const char* text : {"in", "out"})
        values.text(CONTACT_TEL, text).text(CONTACT_EMAIL, text).texts(CONTACT_ADDR, only_part(3, text));
    const stored_contact& stored = updated(values);
    EXPECT_EQ(stored.phones.size(), 15u);
    EXPECT_STREQ(stored.phones.back().number, "in");
    EXPECT_EQ(stored.emails.size(), 15u);
    EXPECT_STREQ(stored.emails.back().email, "in");
    EXPECT_EQ(stored.addresses.size(), 5u);
    EXPECT_STREQ(stored.addresses.back().city, "in");
}

TEST_F(ContactCommitUpdate, TakesNegativeCountsForZero)
{
    platform.add_contact(1);
    for (int32_t count : {-1, std::numeric_limits<int32_t>::min()}) {
        SCOPED_TRACE(count);
        *platform.find_contact(1) = {};
        platform.find_contact(0)->record.index = 1;
        platform.alter_contact = [&](contact_record& record) {
            record.phone_count = record.email_count = record.postal_count = count;
        };
        const stored_contact& stored =
            updated(commit_values().text(CONTACT_TEL, "1").text(CONTACT_EMAIL, "a").texts(CONTACT_ADDR, WHOLE_ADDRESS));
        EXPECT_EQ(stored.phones.size(), 1u);
        EXPECT_EQ(stored.emails.size(), 1u);
        EXPECT_EQ(stored.addresses.size(), 1u);
    }
}

TEST_F(ContactCommitUpdate, WritesToNoArrayThatAStoreCountsWithoutHandingItOut)
{
    platform.add_contact(1);
    platform.alter_contact = [](contact_record& record) {
        record.phone_count = record.email_count = record.postal_count = 3;
    };
    const stored_contact& stored =
        updated(commit_values().text(CONTACT_TEL, "1").text(CONTACT_EMAIL, "a").texts(CONTACT_ADDR, WHOLE_ADDRESS));
    EXPECT_STREQ(stored.phones.at(0).number, "1");
    EXPECT_STREQ(stored.emails.at(0).email, "a");
    EXPECT_STREQ(stored.addresses.at(0).city, "City");
}

TEST_F(ContactCommitUpdate, ReplacesANoteWithoutLosingTheOldBlock)
{
    platform.add_contact(1).note = "an old note";
    EXPECT_EQ(updated(commit_values().text(CONTACT_NOTE, "new")).note, "new");
}

TEST_F(ContactCommitUpdate, HandsTheStoreTheIndexItUpdates)
{
    platform.add_contact(1);
    platform.alter_contact = [](contact_record& record) { record.index = 99; };
    EXPECT_EQ(updated(commit_values()).record.index, 1);
}

// ---- Failures -------------------------------------------------------------------------------------------------------

TEST_F(ContactCommitFailure, IsMinusOneWhenTheConnectionIsRefused)
{
    refuse_connections(LIST_CONTACT, 10011);
    commit_values values;
    EXPECT_EQ(commit(values), -1);
    EXPECT_THAT(platform.calls, IsEmpty());
    EXPECT_THAT(platform.traces, Contains(assertion("pimItemImpl_contact_commitN", "initialize", 10011)));
}

TEST_F(ContactCommitFailure, DoesNotComeFromAConnectThatFails)
{
    platform.fail("contact_db_service_connect", 7);
    EXPECT_STREQ(added(commit_values().text(CONTACT_ORG, "Org")).record.company_name, "Org");
}

TEST_F(ContactCommitFailure, OfAStoreCallIsMinusOneWithTheRecordReleased)
{
    struct row {
        const char* function;
        int32_t recindex;
        const char* format;
        const char* text;
    };
    const row rows[] = {
        {"contact_db_service_contact_get", 1, "contact_db_service_contact_get is failed error_code : %d\n",
         "contact_db_service_contact_get is failed error_code : 71\n"},
        {"contact_db_service_contact_add", 0, "contact_db_service_contact_add is failed (error : %d)\n",
         "contact_db_service_contact_add is failed (error : 71)\n"},
        {"contact_db_service_contact_update", 1, "contact_db_service_contact_update is failed (error : %d)\n",
         "contact_db_service_contact_update is failed (error : 71)\n"},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.function);
        platform.add_contact(1);
        platform.fail(row.function, 71);
        commit_values values;
        EXPECT_EQ(commit(values.text(CONTACT_TEL, "1").text(CONTACT_NOTE, "note"), row.recindex), -1);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_HARD, row.format, row.text)));
        ASSERT_GE(platform.calls.size(), 2u);
        EXPECT_EQ(platform.calls[platform.calls.size() - 2], "contact_db_service_contact_free()");
        EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
        EXPECT_THAT(platform.find_contact(1)->phones, IsEmpty());
        start_over();
    }
}

TEST_F(ContactCommitFailure, OfTheFetchSavesNothing)
{
    commit_values values;
    EXPECT_EQ(commit(values.text(CONTACT_ORG, "Org"), 4711), -1);
    EXPECT_THAT(platform.calls_between_connections(),
                ElementsAre("contact_db_service_contact_get(4711)", "contact_db_service_contact_free()"));
}

TEST_F(ContactCommitFailure, OfTheCloseIsMinusOneThoughTheContactIsSaved)
{
    for (int32_t recindex : {0, 1}) {
        SCOPED_TRACE(recindex);
        platform.add_contact(1);
        platform.fail("contact_db_service_disconnect", 72);
        commit_values values;
        EXPECT_EQ(commit(values.text(CONTACT_ORG, "Org"), recindex), -1);
        EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_contact_commitN")));
        EXPECT_STREQ(platform.contacts.back().record.company_name, "Org");
        start_over();
    }
}

TEST_F(ContactCommitFailure, OfTheCloseOverridesEveryOther)
{
    platform.fail("contact_db_service_disconnect", 72);
    commit_values too_long;
    EXPECT_EQ(commit(too_long.text(CONTACT_TEL, xs(42))), -1);

    platform.add_group(0, "");
    commit_values nameless;
    EXPECT_EQ(commit(nameless.category("Work")), -1);
}

TEST_F(ContactCommitFailure, OfTheNotesAllocationSavesNothing)
{
    fail_allocations_of(sizeof "a note");
    commit_values values;
    EXPECT_THAT(commit(values.text(CONTACT_NOTE, "a note").text(CONTACT_ORG, "Org")), AnyOf(-1, REFUSED));
    EXPECT_THAT(platform.traces,
                Contains(trace_text(TRACE_STEP, "curField : 109 currStringArrayIndex : 1 currAtrrib : 0\n")));
    EXPECT_THAT(platform.traces, Contains(traced("memory allocation failed..\n", "memory allocation failed..\n")));
    EXPECT_THAT(platform.contacts, IsEmpty());
}

// ---- Aborts ---------------------------------------------------------------------------------------------------------

TEST_F(ContactCommitDeathTest, AbortsWhenAnArrayCannotGrow)
{
    GTEST_FLAG_SET(death_test_style, "fast");
    struct row {
        const char* when;
        size_t entry_size;
        commit_values values;
        const char* assertion;
    };
    row rows[] = {
        {"address", sizeof(contact_address), commit_values().texts(CONTACT_ADDR, WHOLE_ADDRESS),
         "contact_record\\.address_info != \\(\\(void \\*\\)0\\)"},
        {"e-mail", sizeof(contact_email), commit_values().text(CONTACT_EMAIL, "a@b"),
         "contact_record\\.email_info != \\(\\(void \\*\\)0\\)"},
        {"phone", sizeof(contact_phone), commit_values().text(CONTACT_TEL, "1"),
         "contact_record\\.phone_info != \\(\\(void \\*\\)0\\)"},
    };
    for (row& row : rows) {
        SCOPED_TRACE(row.when);
        fail_allocations_of(row.entry_size);
        EXPECT_EXIT(commit(row.values), testing::KilledBySignal(SIGABRT), row.assertion);
    }
}

TEST_F(ContactCommitDeathTest, AbortsWhenAStoredArrayCannotGrow)
{
    platform.add_contact(1).phones = {a_phone("1")};
    fail_allocations_of(2 * sizeof(contact_phone));
    commit_values values;
    EXPECT_EXIT(commit(values.text(CONTACT_TEL, "2"), 1), testing::KilledBySignal(SIGABRT),
                "contact_record\\.phone_info != \\(\\(void \\*\\)0\\)");
}

} // namespace contact_commit_test
