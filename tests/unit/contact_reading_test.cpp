// Reading contacts: texts, counts, dates, attributes, the preferred value, and whether a record still exists.
#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <vector>

#include "contactimp_limo_arm.h"
#include "pimitemimpl_limo_arm.h"
#include "reader_frame.h"
#include "stored_records.h"
#include "time_zone.h"

namespace contact_reading_test {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr int32_t HUGE_INDEXES[] = {
    -1, -2, 2, 6, 1000000, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()};

// A store with one empty contact, record 1.
class ContactReading : public reader_frame {
protected:
    void SetUp() override
    {
        reader_frame::SetUp();
        platform.add_contact(1, "", "");
    }

    stored_contact& contact() { return *platform.find_contact(1); }

    // The buffer as the reader leaves it, up to its end: what lies behind the text must still be zero.
    std::string string_of(int32_t field, int32_t index = 0)
    {
        std::array<char, ITEM_TEXT_SIZE> text = {};
        EXPECT_EQ(getContactString(1, field, index, text), 1);
        std::string read(text.data());
        EXPECT_TRUE(std::all_of(text.begin() + static_cast<ptrdiff_t>(read.size()), text.end(),
                                [](char c) { return c == '\0'; }));
        return read;
    }

    std::vector<std::string> array_of(int32_t field, int32_t index = 0)
    {
        item_element elements[ADDR_ELEMENTS] = {};
        EXPECT_EQ(getContactStringArray(1, field, index, elements), 1);
        std::vector<std::string> read;
        for (const item_element& element : elements) read.emplace_back(element.text);
        return read;
    }

    static int32_t attribute_of(int32_t field, int32_t index = 0)
    {
        return pimItemImpl_getAttributesN(LIST_CONTACT, 9, 1, field, index);
    }

    time_zone utc{UTC};
};

using ContactString = ContactReading;
using ContactStringArray = ContactReading;
using ContactCount = ContactReading;
using ContactFields = ContactReading;
using ContactDate = ContactReading;
using ContactNumber = ContactReading;
using ContactAttribute = ContactReading;
using PreferredIndex = ContactReading;
using RecordDeleted = ContactReading;
using ContactReaders = ContactReading;

std::string xs(size_t count)
{
    return std::string(count, 'x');
}

// A text field of a contact and the most bytes it holds.
struct text_row {
    const char* when;
    int32_t field;
    size_t limit;
    void (*fill)(stored_contact&, std::string_view);
};

const text_row TEXTS[] = {
    {"EMAIL", CONTACT_EMAIL, 129,
     [](stored_contact& contact, std::string_view text) { contact.emails = {an_email(text)}; }},
    {"NICKNAME", CONTACT_NICKNAME, 196,
     [](stored_contact& contact, std::string_view text) { put_into(contact.record.nickname, text); }},
    {"NOTE", CONTACT_NOTE, 1023, [](stored_contact& contact, std::string_view text) { contact.note = text; }},
    {"ORG", CONTACT_ORG, 65,
     [](stored_contact& contact, std::string_view text) { put_into(contact.record.company_name, text); }},
    {"TEL", CONTACT_TEL, 41, [](stored_contact& contact, std::string_view text) { contact.phones = {a_phone(text)}; }},
    {"TITLE", CONTACT_TITLE, 65,
     [](stored_contact& contact, std::string_view text) { put_into(contact.record.job_title, text); }},
    {"URL", CONTACT_URL, 257,
     [](stored_contact& contact, std::string_view text) { put_into(contact.record.homepage_info[0].homepage, text); }},
};

// A part of an address: its element and the most bytes it holds.
struct part_row {
    const char* when;
    int32_t element;
    size_t limit;
    void (*fill)(contact_address&, std::string_view);
};

const part_row PARTS[] = {
    {"pobox", 0, 65, [](contact_address& address, std::string_view text) { put_into(address.pobox, text); }},
    {"extra", 1, 129, [](contact_address& address, std::string_view text) { put_into(address.additional_info, text); }},
    {"street", 2, 129, [](contact_address& address, std::string_view text) { put_into(address.street, text); }},
    {"locality", 3, 129, [](contact_address& address, std::string_view text) { put_into(address.city, text); }},
    {"region", 4, 129, [](contact_address& address, std::string_view text) { put_into(address.state, text); }},
    {"postal code", 5, 41,
     [](contact_address& address, std::string_view text) { put_into(address.postal_code, text); }},
    {"country", 6, 65, [](contact_address& address, std::string_view text) { put_into(address.country, text); }},
};

struct type_row {
    int32_t type;
    int32_t attribute;
};

constexpr type_row PHONE_TYPES[] = {{0, 0x1000001}, {1, 0x1000002}, {2, 0x1000003}, {3, 0x1000004}, {4, 8},  {5, 512},
                                    {6, 0x1000005}, {7, 4},         {8, 0x1000006}, {9, 0x1000007}, {10, 1}, {11, 64},
                                    {12, 32},       {-1, 0},        {13, 0},        {1000, 0},      {-2, 0}};

} // namespace

// ---- Strings --------------------------------------------------------------------------------------------------------

TEST_F(ContactString, IsTheTextOfItsField)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        row.fill(contact(), "a text");
        EXPECT_EQ(string_of(row.field), "a text");
        EXPECT_THAT(platform.traces, Contains(trace_line(TRACE_STEP, "getContactString\n")));
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "field : %d strData = %s\n",
                                                    "field : " + std::to_string(row.field) + " strData = a text\n")));
        for (const text_row& other : TEXTS) {
            if (other.field != row.field) {
                EXPECT_EQ(string_of(other.field), "") << other.when;
            }
        }
        start_over();
    }
}

TEST_F(ContactString, IsWholeUpToTheFieldsLimit)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        row.fill(contact(), xs(row.limit));
        EXPECT_EQ(string_of(row.field), xs(row.limit));
        start_over();
    }
}

TEST_F(ContactString, LeavesTheBufferAloneForAFieldWithoutText)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        row.fill(contact(), "");
        std::array<char, ITEM_TEXT_SIZE> text;
        text.fill('#');
        text.back() = '\0';
        const auto before = text;
        EXPECT_EQ(getContactString(1, row.field, 0, text), 1);
        EXPECT_EQ(text, before);
        start_over();
    }
}

TEST_F(ContactString, IsEmptyForFieldsThatAreNoStrings)
{
    for (const text_row& row : TEXTS) row.fill(contact(), "a text");
    for (int32_t field : {100, 101, 102, 104, 105, 106, 110, 111, 112, 113, 114, 117, 0, -1, 0x1000000})
        EXPECT_EQ(string_of(field), "") << field;
}

TEST_F(ContactString, ReadsEveryEntryByItsIndex)
{
    for (int32_t i = 0; i < 15; ++i) {
        contact().phones.push_back(a_phone("phone " + std::to_string(i)));
        contact().emails.push_back(an_email("email " + std::to_string(i)));
    }
    for (int32_t i = 0; i < 5; ++i)
        put_into(contact().record.homepage_info[i].homepage, "homepage " + std::to_string(i));
    for (int32_t i = 0; i < 15; ++i) {
        EXPECT_EQ(string_of(CONTACT_TEL, i), "phone " + std::to_string(i));
        EXPECT_EQ(string_of(CONTACT_EMAIL, i), "email " + std::to_string(i));
    }
    for (int32_t i = 0; i < 5; ++i) EXPECT_EQ(string_of(CONTACT_URL, i), "homepage " + std::to_string(i));
}

TEST_F(ContactString, ReadsTheEntryOnePastTheLast)
{
    contact().phones = {a_phone("1")};
    contact().emails = {an_email("a@b")};
    EXPECT_EQ(string_of(CONTACT_TEL, 1), "");
    EXPECT_EQ(string_of(CONTACT_EMAIL, 1), "");
    platform.alter_contact = [](contact_record& record) {
        put_into(record.phone_info[1].number, "beyond");
        put_into(record.email_info[1].email, "beyond");
    };
    EXPECT_EQ(string_of(CONTACT_TEL, 1), "beyond");
    EXPECT_EQ(string_of(CONTACT_EMAIL, 1), "beyond");
}

TEST_F(ContactString, IsEmptyAtAnyOtherIndex)
{
    contact().phones = {a_phone("1")};
    contact().emails = {an_email("a@b")};
    put_into(contact().record.homepage_info[0].homepage, "http://a");
    for (int32_t index : HUGE_INDEXES) {
        EXPECT_EQ(string_of(CONTACT_TEL, index), "") << index;
        EXPECT_EQ(string_of(CONTACT_EMAIL, index), "") << index;
        EXPECT_EQ(string_of(CONTACT_URL, index), "") << index;
    }
    EXPECT_EQ(string_of(CONTACT_URL, 5), "");
}

TEST_F(ContactString, IgnoresTheIndexOfSingleValues)
{
    put_into(contact().record.nickname, "nick");
    for (int32_t index : HUGE_INDEXES) EXPECT_EQ(string_of(CONTACT_NICKNAME, index), "nick") << index;
}

TEST_F(ContactString, IsEmptyWhereAStoreCountsEntriesItDoesNotHandOut)
{
    for (int32_t count : {1, 15, std::numeric_limits<int32_t>::max(), -1, std::numeric_limits<int32_t>::min()}) {
        platform.alter_contact = [&](contact_record& record) { record.phone_count = record.email_count = count; };
        for (int32_t index : {0, 1, 14, -1}) {
            EXPECT_EQ(string_of(CONTACT_TEL, index), "") << count << ", " << index;
            EXPECT_EQ(string_of(CONTACT_EMAIL, index), "") << count << ", " << index;
        }
    }
}

TEST_F(ContactString, IsEmptyAtIndexZeroOfNoEntries)
{
    EXPECT_EQ(string_of(CONTACT_TEL, 0), "");
    EXPECT_EQ(string_of(CONTACT_EMAIL, 0), "");
}

TEST_F(ContactString, OfANoteNeedsItsSize)
{
    struct row {
        const char* when;
        int32_t size;
        const char* expected;
    };
    const row rows[] = {
        {"text and terminator", 3, "ab"},
        {"no note", 0, ""},
        {"a negative size", -1, ""},
    };
    for (const row& row : rows) {
        SCOPED_TRACE(row.when);
        contact().note = "ab";
        platform.alter_contact = [&](contact_record& record) { record.note_size = row.size; };
        EXPECT_EQ(string_of(CONTACT_NOTE), row.expected);
        start_over();
    }
}

TEST_F(ContactString, OfANoteEndsWithItsBlock)
{
    contact().note = "ab";
    platform.alter_contact = [](contact_record& record) { record.note[2] = 'c'; };
    EXPECT_EQ(string_of(CONTACT_NOTE), "abc");
}

TEST_F(ContactString, OfANullNoteIsEmpty)
{
    platform.alter_contact = [](contact_record& record) { record.note_size = 10; };
    EXPECT_EQ(string_of(CONTACT_NOTE), "");
    EXPECT_EQ(count_values_contact(1, CONTACT_NOTE), 0);
}

TEST_F(ContactString, OfOneCharacterIsRead)
{
    contact().note = "n";
    EXPECT_EQ(string_of(CONTACT_NOTE), "n");
    EXPECT_EQ(count_values_contact(1, CONTACT_NOTE), 1);
}

// ---- String arrays --------------------------------------------------------------------------------------------------

TEST_F(ContactStringArray, OfANameIsFamilyGivenAndNickname)
{
    put_into(contact().record.name_info.last_name, "Lovelace");
    put_into(contact().record.name_info.first_name, "Ada");
    put_into(contact().record.nickname, "Countess");
    for (int32_t index : {0, 1, -1, 1000000})
        EXPECT_THAT(array_of(CONTACT_NAME, index), ElementsAre("Lovelace", "Ada", "Countess", "", "", "", "")) << index;
    EXPECT_THAT(platform.traces.front(), AllOf(Field(&trace_message::function, "getContactStringArray"),
                                               Field(&trace_message::calls_before, 0u)));
    const std::string names = "C_NAME, stringvaluess[currStringArrayIndex + ";
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, names + "C_NAME_FAMILY] = %s\n", names + "C_NAME_FAMILY] = Lovelace\n")));
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, names + "C_NAME_GIVEN] = %s\n", names + "C_NAME_GIVEN] = Ada\n")));
}

TEST_F(ContactStringArray, TakesNamesShorterThanTheirLimits)
{
    put_into(contact().record.name_info.last_name, xs(64));
    put_into(contact().record.name_info.first_name, xs(64));
    put_into(contact().record.nickname, xs(128));
    EXPECT_THAT(array_of(CONTACT_NAME), ElementsAre(xs(64), xs(64), xs(128), "", "", "", ""));
}

TEST_F(ContactStringArray, LeavesALongerNameEmptyThoughACommitTakesIt)
{
    put_into(contact().record.name_info.last_name, xs(65));
    put_into(contact().record.name_info.first_name, "Ada");
    put_into(contact().record.nickname, xs(129));
    EXPECT_THAT(array_of(CONTACT_NAME), ElementsAre("", "Ada", "", "", "", "", ""));

    put_into(contact().record.name_info.last_name, "Lovelace");
    put_into(contact().record.name_info.first_name, xs(65));
    put_into(contact().record.nickname, xs(196));
    EXPECT_THAT(array_of(CONTACT_NAME), ElementsAre("Lovelace", "", "", "", "", "", ""));
}

TEST_F(ContactStringArray, OfAnAddressIsItsSevenParts)
{
    contact().addresses = {an_address(), an_address()};
    for (const part_row& row : PARTS) row.fill(contact().addresses[1], row.when);
    EXPECT_THAT(array_of(CONTACT_ADDR, 0), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_THAT(array_of(CONTACT_ADDR, 1),
                ElementsAre("pobox", "extra", "street", "locality", "region", "postal code", "country"));
    EXPECT_THAT(platform.traces,
                Contains(Field(&trace_message::format, "strData[%d] = %s")).Times(2 * static_cast<int>(ADDR_ELEMENTS)));
    for (const part_row& row : PARTS)
        EXPECT_THAT(platform.traces,
                    Contains(trace(TRACE_STEP, "strData[%d] = %s",
                                   "strData[" + std::to_string(row.element) + "] = " + std::string(row.when))));
}

TEST_F(ContactStringArray, TakesPartsShorterThanAnElement)
{
    for (const part_row& row : PARTS) {
        SCOPED_TRACE(row.when);
        contact().addresses = {an_address()};
        const size_t longest = std::min<size_t>(row.limit, 128);
        row.fill(contact().addresses[0], xs(longest));
        std::vector<std::string> expected(7, "");
        expected[static_cast<size_t>(row.element)] = xs(longest);
        EXPECT_EQ(array_of(CONTACT_ADDR), expected);
        start_over();
    }
}

TEST_F(ContactStringArray, LeavesAPartOfAnElementsSizeEmpty)
{
    for (const part_row& row : PARTS) {
        if (row.limit < 129) continue;
        SCOPED_TRACE(row.when);
        contact().addresses = {an_address()};
        row.fill(contact().addresses[0], xs(129));
        EXPECT_EQ(array_of(CONTACT_ADDR), std::vector<std::string>(7, ""));
        start_over();
    }
}

TEST_F(ContactStringArray, ReadsTheAddressOnePastTheLastAndNoOther)
{
    contact().addresses = {an_address()};
    put_into(contact().addresses[0].city, "City");
    platform.alter_contact = [](contact_record& record) { put_into(record.address_info[1].city, "beyond"); };
    EXPECT_EQ(array_of(CONTACT_ADDR, 1)[3], "beyond");
    for (int32_t index : HUGE_INDEXES)
        EXPECT_EQ(array_of(CONTACT_ADDR, index), std::vector<std::string>(7, "")) << index;
}

TEST_F(ContactStringArray, IsEmptyWhereAStoreCountsAddressesItDoesNotHandOut)
{
    for (int32_t count : {1, 5, std::numeric_limits<int32_t>::max(), -1}) {
        platform.alter_contact = [&](contact_record& record) { record.postal_count = count; };
        for (int32_t index : {0, 1, 4, -1})
            EXPECT_EQ(array_of(CONTACT_ADDR, index), std::vector<std::string>(7, "")) << count << ", " << index;
    }
}

TEST_F(ContactStringArray, IsEmptyForOtherFields)
{
    put_into(contact().record.name_info.first_name, "Ada");
    for (int32_t field : {99, 101, 103, 107, 115, 0, -1})
        EXPECT_EQ(array_of(field), std::vector<std::string>(7, "")) << field;
}

// ---- Counts ---------------------------------------------------------------------------------------------------------

TEST_F(ContactCount, IsOneForASingleTextThatIsNotEmpty)
{
    for (const text_row& row : TEXTS) {
        SCOPED_TRACE(row.when);
        EXPECT_EQ(count_values_contact(1, row.field), 0);
        row.fill(contact(), "a text");
        EXPECT_EQ(count_values_contact(1, row.field), 1);
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "count_values_contact (field : %d, recindex : %d)\n",
                                                    "count_values_contact (field : " + std::to_string(row.field) +
                                                        ", recindex : 1)\n")));
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "return count = %d\n", "return count = 1\n")));
        start_over();
    }
}

TEST_F(ContactCount, CountsEntriesThatAreNotEmpty)
{
    contact().phones = {a_phone("1"), a_phone(""), a_phone("3")};
    contact().emails = {an_email(""), an_email("b"), an_email("c"), an_email("d")};
    put_into(contact().record.homepage_info[0].homepage, "1");
    put_into(contact().record.homepage_info[4].homepage, "5");
    EXPECT_EQ(count_values_contact(1, CONTACT_TEL), 2);
    EXPECT_EQ(count_values_contact(1, CONTACT_EMAIL), 3);
    EXPECT_EQ(count_values_contact(1, CONTACT_URL), 2);
}

TEST_F(ContactCount, LeavesTheEntryOnePastTheLastOut)
{
    contact().phones = {a_phone("1")};
    contact().emails = {an_email("a")};
    contact().addresses = {an_address()};
    put_into(contact().addresses[0].city, "City");
    platform.alter_contact = [](contact_record& record) {
        put_into(record.phone_info[1].number, "beyond");
        put_into(record.email_info[1].email, "beyond");
        put_into(record.address_info[1].city, "beyond");
    };
    for (int32_t field : {CONTACT_TEL, CONTACT_EMAIL, CONTACT_ADDR})
        EXPECT_EQ(count_values_contact(1, field), 1) << field;
}

TEST_F(ContactCount, OfAddressesNeedsAPartOtherThanThePostalCode)
{
    for (const part_row& row : PARTS) {
        SCOPED_TRACE(row.when);
        contact().addresses = {an_address(), an_address()};
        row.fill(contact().addresses[1], "x");
        EXPECT_EQ(count_values_contact(1, CONTACT_ADDR), row.element == ADDR_POSTALCODE ? 0 : 1);
        start_over();
    }
}

TEST_F(ContactCount, OfAnAddressWithOnlyAPostalCodeIsZeroThoughItCanBeRead)
{
    contact().addresses = {an_address()};
    put_into(contact().addresses[0].postal_code, "10115");
    EXPECT_EQ(count_values_contact(1, CONTACT_ADDR), 0);
    EXPECT_THAT(array_of(CONTACT_ADDR, 0), ElementsAre("", "", "", "", "", "10115", ""));
    std::array<int32_t, LISTED_FIELDS_MAX> fields = {};
    const int32_t count = getField_contact(1, fields);
    EXPECT_THAT(std::vector<int32_t>(fields.begin(), fields.begin() + count), Not(Contains(CONTACT_ADDR)));
}

TEST_F(ContactCount, OfANameNeedsOneOfItsParts)
{
    EXPECT_EQ(count_values_contact(1, CONTACT_NAME), 0);
    put_into(contact().record.name_info.last_name, "L");
    EXPECT_EQ(count_values_contact(1, CONTACT_NAME), 1);
    put_into(contact().record.name_info.first_name, "A");
    EXPECT_EQ(count_values_contact(1, CONTACT_NAME), 1);
    put_into(contact().record.name_info.last_name, "");
    EXPECT_EQ(count_values_contact(1, CONTACT_NAME), 1);
}

TEST_F(ContactCount, OfANoteNeedsASizeAndAText)
{
    contact().note = "";
    EXPECT_EQ(count_values_contact(1, CONTACT_NOTE), 0);
    contact().note = "n";
    platform.alter_contact = [](contact_record& record) { record.note_size = 0; };
    EXPECT_EQ(count_values_contact(1, CONTACT_NOTE), 0);
}

TEST_F(ContactCount, OfABirthdayNeedsATimeThatMktimeTakes)
{
    EXPECT_EQ(count_values_contact(1, CONTACT_BIRTHDAY), 0);
    contact().record.birthday = local_time(2010, 1, 1);
    EXPECT_EQ(count_values_contact(1, CONTACT_BIRTHDAY), 1);
    contact().record.birthday = refused_time();
    EXPECT_EQ(count_values_contact(1, CONTACT_BIRTHDAY), 0);
}

TEST_F(ContactCount, OfARevisionGoesByTheFirstWordAlone)
{
    contact().record.save_time = {};
    EXPECT_EQ(count_values_contact(1, CONTACT_REVISION), 1);
    contact().record.save_time = refused_time();
    EXPECT_EQ(count_values_contact(1, CONTACT_REVISION), 1);
    contact().record.save_time = local_time(2010, 1, 1);
    contact().record.save_time.sec = -1;
    EXPECT_EQ(count_values_contact(1, CONTACT_REVISION), 0);
}

TEST_F(ContactCount, OfAnyOtherCodeIsZero)
{
    for (const text_row& row : TEXTS) row.fill(contact(), "a text");
    for (int32_t field : {99, 102, 104, 105, 110, 111, 112, 113, 117, 119, 0, -1, 0x1000000})
        EXPECT_EQ(count_values_contact(1, field), 0) << field;
}

TEST_F(ContactCount, IsZeroWhereAStoreCountsEntriesItDoesNotHandOut)
{
    for (int32_t count : {5, std::numeric_limits<int32_t>::max(), -1, std::numeric_limits<int32_t>::min()}) {
        platform.alter_contact = [&](contact_record& record) {
            record.phone_count = record.email_count = record.postal_count = count;
        };
        for (int32_t field : {CONTACT_TEL, CONTACT_EMAIL, CONTACT_ADDR})
            EXPECT_EQ(count_values_contact(1, field), 0) << count << ", " << field;
    }
}

TEST_F(ContactCount, IsZeroWhereAStoreHandsOutEntriesItDoesNotCount)
{
    contact().phones = {a_phone("1")};
    platform.alter_contact = [](contact_record& record) { record.phone_count = -1; };
    EXPECT_EQ(count_values_contact(1, CONTACT_TEL), 0);
}

// ---- Field lists ----------------------------------------------------------------------------------------------------

TEST_F(ContactFields, AreListedInTheirFixedOrder)
{
    for (const text_row& row : TEXTS) row.fill(contact(), "a text");
    put_into(contact().record.name_info.first_name, "Ada");
    contact().addresses = {an_address()};
    put_into(contact().addresses[0].city, "City");
    contact().record.birthday = local_time(2010, 1, 1);

    std::array<int32_t, LISTED_FIELDS_MAX> fields = {};
    EXPECT_EQ(getField_contact(1, fields), 11);
    EXPECT_THAT(fields, ElementsAre(100, 106, 103, 107, 108, 109, 115, 116, 118, 101, 114));
    EXPECT_THAT(platform.traces.front(),
                AllOf(Field(&trace_message::function, "getField_contact"), Field(&trace_message::calls_before, 0u)));
    EXPECT_THAT(platform.traces, Contains(Field(&trace_message::text, "getField_contact return 11\n")));
    EXPECT_EQ(platform.calls_of("contact_db_service_contact_get").size(), 11u) << "each count fetches the record anew";
}

TEST_F(ContactFields, LeaveOutWhatHoldsNoValue)
{
    put_into(contact().record.nickname, "nick");
    contact().record.save_time.sec = -1;
    std::array<int32_t, LISTED_FIELDS_MAX> fields = {};
    EXPECT_EQ(getField_contact(1, fields), 1);
    EXPECT_EQ(fields[0], CONTACT_NICKNAME);
    EXPECT_THAT(platform.traces, Contains(Field(&trace_message::text, "getField_contact return count :1\n")));
}

TEST_F(ContactFields, AreNoneForARecordThatIsNotThere)
{
    std::array<int32_t, LISTED_FIELDS_MAX> fields = {};
    EXPECT_EQ(getField_contact(4711, fields), 0);
}

TEST_F(ContactFields, AreAllListedWhenTheStoreCannotBeClosed)
{
    platform.fail("contact_db_service_disconnect", 1);
    std::array<int32_t, LISTED_FIELDS_MAX> fields = {};
    EXPECT_EQ(getField_contact(1, fields), 11) << "a count of -1 is not 0";
}

// ---- Dates, ints and booleans ---------------------------------------------------------------------------------------

TEST_F(ContactDate, IsTheBirthdayOrTheLastSave)
{
    struct row {
        const char* zone;
        int64_t birthday;
        int64_t revision;
    };
    contact().record.birthday = local_time(2010, 1, 1);
    contact().record.save_time = local_time(2024, 7, 3, 11, 46, 40, -1);
    for (const row& row :
         {row{UTC, 1262304000, 1720007200}, {TOKYO, 1262271600, 1719974800}, {BERLIN, 1262300400, 1720000000}}) {
        SCOPED_TRACE(row.zone);
        const time_zone zone(row.zone);
        EXPECT_EQ(getContactDate(1, CONTACT_BIRTHDAY, 0), row.birthday * 1000);
        EXPECT_EQ(getContactDate(1, CONTACT_REVISION, 0), row.revision * 1000);
    }
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "getContactDate recindex = %d field = %d index = %d\n",
                                                "getContactDate recindex = 1 field = 101 index = 0\n")));
    for (const char* conversion : {"1262304000", "1262271600", "1262300400"})
        EXPECT_THAT(platform.traces, Contains(trace_text(TRACE_STEP,
                                                         "birthday year:110 mon:0 mday:1 hour:0 min:0 sec:0 "
                                                         "toUTCtime = " +
                                                             std::string(conversion) + "\n")));
}

TEST_F(ContactDate, IsMinusAThousandForATimeThatMktimeRefuses)
{
    EXPECT_EQ(getContactDate(1, CONTACT_BIRTHDAY, 0), -1000);
    EXPECT_EQ(getContactDate(1, CONTACT_REVISION, 0), -1000);
    contact().record.birthday = contact().record.save_time = refused_time();
    EXPECT_EQ(getContactDate(1, CONTACT_BIRTHDAY, 3), -1000);
    EXPECT_EQ(getContactDate(1, CONTACT_REVISION, -3), -1000);
}

TEST_F(ContactDate, IsZeroForOtherFields)
{
    contact().record.birthday = local_time(2010, 1, 1);
    for (int32_t field : {100, 102, 105, 106, 115, 0, -1}) EXPECT_EQ(getContactDate(1, field, 0), 0) << field;
}

TEST_F(ContactNumber, IsAlwaysZero)
{
    for (int32_t field = 95; field < 120; ++field) EXPECT_EQ(getContactInt(1, field, 0), 0) << field;
    EXPECT_EQ(getContactInt(4711, 100, 0), 0);
}

TEST_F(ContactNumber, IsFalseForAnythingWithoutTouchingTheStore)
{
    for (int32_t recindex : {1, 4711, -1, 0})
        for (int32_t field = 95; field < 120; ++field) EXPECT_EQ(getContactBool(recindex, field, 0), 0) << field;
    EXPECT_THAT(platform.calls, IsEmpty());
}

// ---- Attributes -----------------------------------------------------------------------------------------------------

TEST_F(ContactAttribute, OfAPhoneIsTheOneOfItsType)
{
    for (const type_row& row : PHONE_TYPES) {
        contact().phones = {a_phone("0", CONTACT_PHONE_PAGER), a_phone("1", row.type)};
        EXPECT_EQ(attribute_of(CONTACT_TEL, 1), row.attribute) << row.type;
    }
}

TEST_F(ContactAttribute, OfOtherEntriesIsTheOneOfTheirType)
{
    struct row {
        int32_t type, address, email, homepage;
    };
    const row rows[] = {
        {0, 8, 0x1000008, 0x100000a}, {1, 512, 0x1000009, 0x100000b}, {-1, 0, 0, 0}, {2, 0, 0, 0}, {12, 0, 0, 0}};
    for (const row& row : rows) {
        SCOPED_TRACE(row.type);
        contact().addresses = {an_address(7), an_address(row.type)};
        contact().emails = {an_email("a", 7), an_email("b", row.type)};
        contact().record.homepage_info[4].type = row.type;
        EXPECT_EQ(attribute_of(CONTACT_ADDR, 1), row.address);
        EXPECT_EQ(attribute_of(CONTACT_EMAIL, 1), row.email);
        EXPECT_EQ(attribute_of(CONTACT_URL, 4), row.homepage);
    }
    EXPECT_THAT(platform.traces,
                Contains(trace(TRACE_STEP, "pimItemImpl_getAttributesN recindex = %d, field = %d, attrindex = %d\n",
                               "pimItemImpl_getAttributesN recindex = 1, field = 100, attrindex = "
                               "1\n")));
}

TEST_F(ContactAttribute, OfAHomepageDoesNotNeedAText)
{
    EXPECT_EQ(attribute_of(CONTACT_URL, 0), 0x100000a) << "an empty slot has type 0";
}

TEST_F(ContactAttribute, OfNoEntriesIsOutOfRangeWhateverTheirArrayHolds)
{
    contact().addresses = {an_address(1)};
    contact().emails = {an_email("a", 1)};
    contact().phones = {a_phone("1", 4)};
    platform.alter_contact = [](contact_record& record) {
        record.phone_count = record.email_count = record.postal_count = 0;
    };
    EXPECT_EQ(attribute_of(CONTACT_ADDR, 0), 0);
    EXPECT_EQ(attribute_of(CONTACT_TEL, 0), 0);
    EXPECT_EQ(attribute_of(CONTACT_EMAIL, 0), 0x1000008);
}

// Kept: an e-mail address that is not there counts as a private one.
TEST_F(ContactAttribute, OutOfRangeIsZeroButPrivateForAnEmail)
{
    const auto expect_out_of_range = [&](int32_t index) {
        SCOPED_TRACE(index);
        EXPECT_EQ(attribute_of(CONTACT_ADDR, index), 0);
        EXPECT_EQ(attribute_of(CONTACT_TEL, index), 0);
        EXPECT_EQ(attribute_of(CONTACT_EMAIL, index), 0x1000008);
    };
    for (int32_t index : {0, 1, -1, 1000000}) expect_out_of_range(index);

    contact().addresses = {an_address(1)};
    contact().emails = {an_email("a", 1)};
    contact().phones = {a_phone("1", 1)};
    for (int32_t index : HUGE_INDEXES) expect_out_of_range(index);

    for (int32_t count : {-1, std::numeric_limits<int32_t>::min()}) {
        platform.alter_contact = [&](contact_record& record) {
            record.phone_count = record.email_count = record.postal_count = count;
        };
        expect_out_of_range(0);
    }
}

TEST_F(ContactAttribute, OfTheEntryOnePastTheLastIsThatOfItsType)
{
    contact().addresses = {an_address(1)};
    contact().emails = {an_email("a", 1)};
    contact().phones = {a_phone("1", 1)};
    EXPECT_EQ(attribute_of(CONTACT_ADDR, 1), 8);
    EXPECT_EQ(attribute_of(CONTACT_TEL, 1), 0x1000001);
    EXPECT_EQ(attribute_of(CONTACT_EMAIL, 1), 0x1000008);
    platform.alter_contact = [](contact_record& record) {
        record.address_info[1].type = 1;
        record.phone_info[1].type = 12;
        record.email_info[1].type = 1;
    };
    EXPECT_EQ(attribute_of(CONTACT_ADDR, 1), 512);
    EXPECT_EQ(attribute_of(CONTACT_TEL, 1), 32);
    EXPECT_EQ(attribute_of(CONTACT_EMAIL, 1), 0x1000009);
}

TEST_F(ContactAttribute, IsReadFromNoArrayThatAStoreCountsWithoutHandingItOut)
{
    for (int32_t count : {1, 5, std::numeric_limits<int32_t>::max()}) {
        SCOPED_TRACE(count);
        platform.alter_contact = [&](contact_record& record) {
            record.phone_count = record.email_count = record.postal_count = count;
        };
        EXPECT_EQ(attribute_of(CONTACT_ADDR, 0), 0);
        EXPECT_EQ(attribute_of(CONTACT_TEL, 0), 0);
        EXPECT_EQ(attribute_of(CONTACT_EMAIL, 0), 0x1000008);
    }
}

TEST_F(ContactAttribute, OfAHomepagePastTheSlotsIsZero)
{
    for (int32_t index : {5, 6, -1, 1000000, std::numeric_limits<int32_t>::max()})
        EXPECT_EQ(attribute_of(CONTACT_URL, index), 0) << index;
}

TEST_F(ContactAttribute, OfOtherFieldsIsZero)
{
    for (int32_t field : {99, 101, 102, 106, 107, 108, 116, 119, 0, -1}) EXPECT_EQ(attribute_of(field), 0) << field;
}

// ---- Preferred index ------------------------------------------------------------------------------------------------

TEST_F(PreferredIndex, IsTheFirstEntryOfTypeZero)
{
    contact().addresses = {an_address(1), an_address(0), an_address(0)};
    contact().emails = {an_email("a", -1), an_email("b", 1), an_email("c", 0)};
    contact().phones = {a_phone("1", 4), a_phone("2", 0), a_phone("3", 0)};
    for (contact_homepage& slot : contact().record.homepage_info) slot.type = 1;
    contact().record.homepage_info[3].type = contact().record.homepage_info[4].type = 0;
    EXPECT_EQ(ContactImp_getPreferredIndexN(9, 1, CONTACT_ADDR), 1);
    EXPECT_EQ(ContactImp_getPreferredIndexN(9, 1, CONTACT_EMAIL), 2);
    EXPECT_EQ(ContactImp_getPreferredIndexN(9, 1, CONTACT_TEL), 1);
    EXPECT_EQ(ContactImp_getPreferredIndexN(9, 1, CONTACT_URL), 3);
}

TEST_F(PreferredIndex, IsMinusOneWithoutSuchAnEntry)
{
    for (int32_t field : {CONTACT_ADDR, CONTACT_EMAIL, CONTACT_TEL})
        EXPECT_EQ(ContactImp_getPreferredIndexN(9, 1, field), -1) << field;

    contact().addresses = {an_address(1)};
    contact().emails = {an_email("a", 1), an_email("b", -1)};
    contact().phones = {a_phone("1", 12)};
    for (contact_homepage& slot : contact().record.homepage_info) slot.type = -1;
    for (int32_t field : {CONTACT_ADDR, CONTACT_EMAIL, CONTACT_TEL, CONTACT_URL})
        EXPECT_EQ(ContactImp_getPreferredIndexN(9, 1, field), -1) << field;
}

TEST_F(PreferredIndex, IsTracedFirstInTheReadersName)
{
    ContactImp_getPreferredIndexN(9, 1, CONTACT_TEL);
    EXPECT_THAT(platform.traces.front(), AllOf(Field(&trace_message::function, "ContactImp_getPreferredIndexN"),
                                               Field(&trace_message::calls_before, 0u)));
}

TEST_F(PreferredIndex, IsMinusOneForAnyOtherField)
{
    for (int32_t field : {99, 101, 106, 107, 108, 116, 0, -1})
        EXPECT_EQ(ContactImp_getPreferredIndexN(9, 1, field), -1) << field;
}

TEST_F(PreferredIndex, IsFoundInNoArrayThatAStoreCountsWithoutHandingItOut)
{
    platform.alter_contact = [](contact_record& record) {
        record.phone_count = record.email_count = record.postal_count = 5;
    };
    for (int32_t field : {CONTACT_ADDR, CONTACT_EMAIL, CONTACT_TEL})
        EXPECT_EQ(ContactImp_getPreferredIndexN(9, 1, field), -1) << field;
}

// ---- Existence ------------------------------------------------------------------------------------------------------

TEST_F(RecordDeleted, IsTheNegationOfTheStoresFlagForAContact)
{
    EXPECT_EQ(pimItemImpl_isRecordDeletedN(LIST_CONTACT, 1), 0);
    EXPECT_THAT(platform.calls, ElementsAre("contact_db_service_connect()", "contact_db_service_contact_is_exist(1)",
                                            "contact_db_service_disconnect()"));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "%s listtype:%d, recindex:%d\n",
                                                "pimItemImpl_isRecordDeletedN listtype:1, recindex:1\n")));
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "ret_val:%d\n", "ret_val:0\n")));

    EXPECT_EQ(pimItemImpl_isRecordDeletedN(LIST_CONTACT, 4711), 1);
    EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, "ret_val:%d\n", "ret_val:1\n")));
}

TEST_F(RecordDeleted, IsTheFlagsWordAloneWhenTheContactCannotBeLookedFor)
{
    platform.fail("contact_db_service_contact_is_exist", 1);
    EXPECT_EQ(pimItemImpl_isRecordDeletedN(LIST_CONTACT, 1), 1) << "the flag was never set";
}

TEST_F(RecordDeleted, NeedsTheStoreToSayThatAnItemIsNotFound)
{
    struct row {
        const char* when;
        int32_t listtype;
        int32_t type;
    };
    for (const row& row : {row{"events", LIST_EVENT, ORG_TYPE_EVENT}, {"to-dos", LIST_TODO, ORG_TYPE_TODO}}) {
        SCOPED_TRACE(row.when);
        platform.add_item(row.type, 5);
        EXPECT_EQ(pimItemImpl_isRecordDeletedN(row.listtype, 5), 0);
        EXPECT_THAT(platform.calls_between_connections(),
                    ElementsAre("org_db_service_get_record_full_field_by_index(5)"));
        platform.traces.clear();

        EXPECT_EQ(pimItemImpl_isRecordDeletedN(row.listtype, 6), 1);
        const std::string format =
            "ORG_ERR_RECORD_NOT_FOUND ret_val set to true  ***, "
            "org_db_service_get_record_full_field_by_index is failed (error_code = ";
        EXPECT_THAT(platform.traces, Contains(trace(TRACE_STEP, format + "%d)\n", format + "6)\n")));
        platform.traces.clear();

        platform.fail("org_db_service_get_record_full_field_by_index", 5);
        EXPECT_EQ(pimItemImpl_isRecordDeletedN(row.listtype, 6), 0) << "any other failure says nothing";
        EXPECT_THAT(platform.traces, Not(Contains(Field(&trace_message::format, format + "%d)\n"))));
        start_over();
    }
}

TEST_F(RecordDeleted, IsSaidOfEveryRecordWhenTheStoreCannotBeOpenedOrClosed)
{
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(pimItemImpl_isRecordDeletedN(LIST_CONTACT, 1), 1);
    EXPECT_THAT(platform.traces, Contains(assertion("pimItemImpl_isRecordDeletedN", "initialize", 10011)));
    start_over();

    platform.fail("contact_db_service_disconnect", 1);
    EXPECT_EQ(pimItemImpl_isRecordDeletedN(LIST_CONTACT, 1), 1);
    EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_isRecordDeletedN")));
    start_over();

    for (int32_t listtype : {LIST_EVENT, LIST_TODO}) {
        SCOPED_TRACE(listtype);
        platform.add_item(listtype == LIST_EVENT ? ORG_TYPE_EVENT : ORG_TYPE_TODO, 5);
        platform.fail_call("org_db_service_connect_database", 1, 1);
        EXPECT_EQ(pimItemImpl_isRecordDeletedN(listtype, 5), 1);
        EXPECT_THAT(platform.traces, Contains(assertion("pimItemImpl_isRecordDeletedN", "initialize", 10007)));

        platform.fail("org_db_service_disconnect_database", 2);
        EXPECT_EQ(pimItemImpl_isRecordDeletedN(listtype, 5), 1);
        EXPECT_THAT(platform.traces, Contains(failed_close("pimItemImpl_isRecordDeletedN")));
        keep_blocks("a connection that would not close keeps the record's buffers");
        start_over();
    }
}

TEST_F(RecordDeleted, IsNotSaidOfAnUnknownList)
{
    for (int32_t listtype : {0, 4, -1}) EXPECT_EQ(pimItemImpl_isRecordDeletedN(listtype, 1), 0) << listtype;
    EXPECT_THAT(platform.calls, IsEmpty());
}

// ---- When the store fails -------------------------------------------------------------------------------------------

TEST_F(ContactReaders, AnswerEachInItsOwnWayWhenAStepFails)
{
    const std::string fetch = "contact_db_service_contact_get fail : %d\n";
    char text[ITEM_TEXT_SIZE] = {};
    item_element elements[ADDR_ELEMENTS] = {};
    const reader_row rows[] = {
        {"getContactString", [&] { return getContactString(1, CONTACT_NICKNAME, 0, text); }, 1, {}, 0, 1, 0, fetch},
        {"getContactStringArray",
         [&] { return getContactStringArray(1, CONTACT_NAME, 0, elements); },
         1,
         {},
         0,
         1,
         0,
         fetch},
        {"getContactDate", [] { return getContactDate(1, CONTACT_BIRTHDAY, 0); }, -1, {}, 0, -1, -1, fetch},
        {"getContactInt", [] { return getContactInt(1, 100, 0); }, -1, {}, 0, -1, -1, fetch},
        {"count_values_contact", [] { return count_values_contact(1, CONTACT_NICKNAME); }, -1, {}, 0, -1, -1, fetch},
        {"pimItemImpl_getAttributesN", [] { return attribute_of(CONTACT_EMAIL); }, -1, {}, 0, -1, -1, fetch},
        {"ContactImp_getPreferredIndexN",
         [] { return ContactImp_getPreferredIndexN(9, 1, CONTACT_URL); },
         -1,
         {},
         -1,
         -1,
         -1,
         fetch},
    };
    for (const reader_row& row : rows) {
        expect_contact_failures(row, [&] {
            put_into(contact().record.nickname, "nick");
            contact().record.birthday = local_time(2010, 1, 1);
            contact().emails = {an_email("a", 1)};
        });
    }
}

TEST_F(ContactReaders, LeaveTheBufferEmptyWhenTheStoreCannotBeOpened)
{
    put_into(contact().record.nickname, "nick");
    put_into(contact().record.name_info.first_name, "Ada");
    refuse_connections(LIST_CONTACT, 10011);
    EXPECT_EQ(string_of(CONTACT_NICKNAME), "");
    EXPECT_EQ(array_of(CONTACT_NAME), std::vector<std::string>(7, ""));
}

TEST_F(ContactReaders, ReadOnWithoutAConnectionWhenTheStoreWouldNotConnect)
{
    platform.fail("contact_db_service_connect", 9);
    put_into(contact().record.nickname, "nick");
    contact().record.birthday = local_time(2010, 1, 1);
    EXPECT_EQ(string_of(CONTACT_NICKNAME), "nick");
    EXPECT_EQ(count_values_contact(1, CONTACT_NICKNAME), 1);
    EXPECT_EQ(getContactDate(1, CONTACT_BIRTHDAY, 0), 1262304000 * INT64_C(1000));
    EXPECT_EQ(platform.calls.back(), "contact_db_service_disconnect()");
}

} // namespace contact_reading_test
