// What a contact record brings back.

#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "contact_fixture.h"

using namespace store_test;
using testing::IsEmpty;

class ContactRecords : public ContactStore {
protected:
    // What is stored, as this process remembers it and as another one reads it from the file.
    static std::string difference_everywhere(int index, const contact_record& expected)
    {
        const std::string here = difference(get(index), expected);
        const int there = child_process([&] { return difference(get(index), expected).empty() ? 0 : 1; }).wait();
        return here + (there == 0 ? "" : " (in another process)");
    }
};

TEST_F(ContactRecords, ComeBackByteForByte)
{
    std::mt19937 random(20260101);
    for (int round = 0; round < 25; ++round) {
        contact stored = random_contact(random);
        const int index = add(stored);
        ASSERT_THAT(difference_everywhere(index, stored), IsEmpty()) << "added in round " << round;
        EXPECT_EQ(get(index).index, index);

        contact changed = random_contact(random);
        update(index, changed);
        ASSERT_THAT(difference_everywhere(index, changed), IsEmpty()) << "updated in round " << round;
    }
}

TEST_F(ContactRecords, OfZerosComeBackAsZeros)
{
    contact stored;
    const int index = add(stored);
    EXPECT_THAT(difference_everywhere(index, contact()), IsEmpty());
}

TEST_F(ContactRecords, CarryEverySingleByteOutsidePointersAndCounts)
{
    // One record per byte of the fixed part: a byte that no column and no rest took would be lost alone.
    struct span {
        size_t start, size;
    };
    const span carried[] = {
        {offsetof(contact_record, opaque_4), offsetof(contact_record, phone_info) - offsetof(contact_record, opaque_4)},
        {offsetof(contact_record, homepage_info), sizeof contact_record::homepage_info},
        {offsetof(contact_record, opaque_2288),
         offsetof(contact_record, save_time) - offsetof(contact_record, opaque_2288)},
        {offsetof(contact_record, opaque_4092), sizeof contact_record::opaque_4092},
        {offsetof(contact_record, opaque_4604), sizeof contact_record::opaque_4604},
    };
    contact stored;
    const int index = add(stored);
    // Committing each of 4,600 bytes to disk takes too long; a stride that is prime meets every field in turn.
    for (const auto& [start, size] : carried) {
        for (size_t byte = start; byte < start + size; byte += size < 100 ? 1 : 13) {
            contact single;
            reinterpret_cast<unsigned char*>(static_cast<contact_record*>(&single))[byte] = 0xa5;
            update(index, single);
            ASSERT_THAT(difference(get(index), single), IsEmpty()) << "byte " << byte;
        }
    }
}

TEST_F(ContactRecords, KeepTextsThatFillTheirFieldsWhole)
{
    const auto full = [](size_t size) { return std::string(size, 'x'); };
    contact stored;
    set_text(stored.name_info.last_name, full(sizeof stored.name_info.last_name));
    set_text(stored.name_info.first_name, full(sizeof stored.name_info.first_name));
    set_text(stored.nickname, full(sizeof stored.nickname));
    set_text(stored.job_title, full(sizeof stored.job_title));
    set_text(stored.company_name, full(sizeof stored.company_name));
    set_text(stored.homepage_info[4].homepage, full(sizeof contact_homepage::homepage));
    set_text(stored.add_phone("").number, full(sizeof contact_phone::number));
    set_text(stored.add_email("").email, full(sizeof contact_email::email));
    contact_address& address = stored.add_address("");
    set_text(address.full_text, full(sizeof address.full_text));
    set_text(address.street, full(sizeof address.street));
    set_text(address.additional_info, full(sizeof address.additional_info));
    set_text(address.city, full(sizeof address.city));
    set_text(address.postal_code, full(sizeof address.postal_code));
    set_text(address.state, full(sizeof address.state));
    set_text(address.country, full(sizeof address.country));
    set_text(address.pobox, full(sizeof address.pobox));
    const int index = add(stored);
    EXPECT_THAT(difference_everywhere(index, stored), IsEmpty());
    EXPECT_EQ(shell().execAndGet("SELECT length(job_title) FROM contact").getInt(), 65);
    EXPECT_EQ(shell().execAndGet("SELECT length(street) FROM address").getInt(), 129);
    EXPECT_TRUE(shell().execAndGet("SELECT rest FROM contact").isNull());
}

TEST_F(ContactRecords, KeepNotesOfAnyLength)
{
    contact stored;
    const int index = add(stored);
    for (const std::string& block :
         {std::string("\0", 1), std::string("a\0", 2), std::string(100000, 'n') + '\0', std::string("unterminated"),
          std::string("text\0and more\0", 14), std::string("\0\0\0\0", 4), std::string("padded\0\0\0", 9)}) {
        contact noted;
        noted.set_note(block);
        update(index, noted);
        EXPECT_THAT(difference_everywhere(index, noted), IsEmpty()) << block.size();
    }
}

TEST_F(ContactRecords, DoNotReadANotePastItsSize)
{
    // The block is one byte short of a terminator: a sanitizer or valgrind reports a read beyond.
    contact stored;
    stored.set_note("x");
    EXPECT_THAT(difference(get(add(stored)), stored), IsEmpty());
}

TEST_F(ContactRecords, HoldOneZeroedEntryPastEachArray)
{
    contact stored;
    stored.add_phone("1");
    stored.add_email("a@b");
    stored.add_address("street");
    const contact fetched = get(add(stored));
    const contact_phone no_phone = {};
    const contact_email no_email = {};
    const contact_address no_address = {};
    EXPECT_EQ(memcmp(&fetched.phone_info[1], &no_phone, sizeof no_phone), 0);
    EXPECT_EQ(memcmp(&fetched.email_info[1], &no_email, sizeof no_email), 0);
    EXPECT_EQ(memcmp(&fetched.address_info[1], &no_address, sizeof no_address), 0);
}

TEST_F(ContactRecords, HaveNoArrayWithoutEntries)
{
    const contact fetched = get(add("Ada"));
    EXPECT_EQ(fetched.phone_info, nullptr);
    EXPECT_EQ(fetched.email_info, nullptr);
    EXPECT_EQ(fetched.address_info, nullptr);
    EXPECT_EQ(fetched.note, nullptr);
}

TEST_F(ContactRecords, MayHaveTheirArraysGrownByTheCaller)
{
    contact stored("Ada");
    stored.add_phone("1");
    contact fetched = get(add(stored));
    fetched.add_phone("2");
    fetched.add_email("a@b");
    update(fetched.index, fetched);
    EXPECT_THAT(difference_everywhere(fetched.index, fetched), IsEmpty());
}

TEST_F(ContactRecords, AreTheSameUnderBothNames)
{
    const int index = add("Ada");
    contact fetched;
    int error = 0;
    ASSERT_TRUE(contact_db_service_contact_get_by_index(0, index, 0, &fetched, &error));
    EXPECT_THAT(difference(fetched, get(index)), IsEmpty());
}

TEST_F(ContactRecords, StayTheCallersOnAddAndUpdate)
{
    contact stored = uniform_contact(5);
    const contact_record before = stored;
    add(stored);
    update(stored.index, stored);
    EXPECT_EQ(stored.phone_info, before.phone_info);
    EXPECT_EQ(stored.note, before.note);
    EXPECT_THAT(difference(stored, before), IsEmpty());
    EXPECT_EQ(memcmp(&stored.save_time, &before.save_time, sizeof before.save_time), 0);
}

TEST_F(ContactRecords, AreReadableWithoutTheLibrary)
{
    contact stored("Lovelace");
    set_text(stored.name_info.first_name, "Ada");
    set_text(stored.company_name, "Engines & Söhne 🚂");
    stored.add_phone("+44 20 7946 0958").type = CONTACT_PHONE_WORK;
    stored.add_email("ada@example.org").type = CONTACT_ENTRY_PRIVATE;
    stored.add_address("St James's Square");
    set_text(stored.homepage_info[2].homepage, "https://example.org");
    stored.set_note({"a note\0", 7});
    stored.birthday = {0, 0, 0, 10, 11, 85, 2, 343, 0};
    const int group = add_group("Friends");
    stored.membership[group] = 1;
    add(stored);

    const auto value = [this](const char* query) { return shell().execAndGet(query).getString(); };
    EXPECT_EQ(value("SELECT first_name || ' ' || last_name FROM contact"), "Ada Lovelace");
    EXPECT_EQ(value("SELECT company_name FROM contact"), "Engines & Söhne 🚂");
    EXPECT_EQ(value("SELECT number || ' ' || type FROM phone JOIN contact USING (record_index)"), "+44 20 7946 0958 5");
    EXPECT_EQ(value("SELECT email FROM email"), "ada@example.org");
    EXPECT_EQ(value("SELECT street FROM address"), "St James's Square");
    EXPECT_EQ(value("SELECT slot || homepage FROM homepage"), "2https://example.org");
    EXPECT_EQ(value("SELECT note FROM contact"), "a note");
    EXPECT_EQ(value("SELECT birthday FROM contact"), "1985-12-10 00:00:00");
    EXPECT_EQ(value("SELECT name FROM membership JOIN contact_group USING (key_index)"), "Friends");
    for (const char* table : {"contact", "phone", "email", "address", "contact_group"})
        EXPECT_EQ(value(("SELECT count(rest) FROM " + std::string(table)).c_str()), "0") << table;
}

TEST_F(ContactRecords, FollowWhatAPersonChangesInTheFile)
{
    contact stored = uniform_contact(1);
    const int index = add(stored);
    get(index);
    shell().exec("UPDATE contact SET last_name = 'King', birthday = '1990-01-02', note = 'changed'");
    shell().exec("INSERT INTO phone (record_index, position, number) SELECT record_index, 7, '555' FROM contact");
    const contact fetched = get(index);
    EXPECT_STREQ(fetched.name_info.last_name, "King");
    EXPECT_EQ(fetched.birthday.mday, 2);
    EXPECT_STREQ(fetched.note, "changed");
    ASSERT_EQ(fetched.phone_count, 3);
    EXPECT_STREQ(fetched.phone_info[2].number, "555");
    EXPECT_EQ(fetched.phone_info[2].position, 2);
}

TEST_F(ContactRecords, AreCutWhereAPersonHasEnteredTooMuch)
{
    const int index = add("Ada");
    shell().exec("UPDATE contact SET job_title = printf('%.500c', 'x'), company_name = 'Co'");
    const contact fetched = get(index);
    EXPECT_EQ(std::string(fetched.job_title, 65), std::string(65, 'x'));
    EXPECT_EQ(fetched.opaque_661[0], '\0');
    EXPECT_STREQ(fetched.company_name, "Co");
}

// ---- Time of the save

static bool same(const broken_down_time& one, const broken_down_time& other)
{
    return memcmp(&one, &other, sizeof one) == 0;
}

static broken_down_time local(time_t moment)
{
    const tm words = *localtime(&moment);
    return {words.tm_sec,  words.tm_min,  words.tm_hour, words.tm_mday, words.tm_mon,
            words.tm_year, words.tm_wday, words.tm_yday, words.tm_isdst};
}

class SaveTime : public ContactStore {
protected:
    SaveTime() { setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1); }
};

TEST_F(SaveTime, KeepsTheMomentThatTheFirstWordNames)
{
    contact stored;
    for (const int32_t moment : {61, 1000000000, 1751371200, INT32_MAX}) {
        stored.save_time = {moment, -1, 99, 7, 7, 7, 7, 7, 7};
        EXPECT_TRUE(same(get(add(stored)).save_time, local(moment))) << moment;
        update(1, stored);
        EXPECT_TRUE(same(get(1).save_time, local(moment))) << moment;
    }
}

TEST_F(SaveTime, IsTheTimeOfTheCallOtherwise)
{
    contact stored;
    for (const int32_t word : {0, 60, -1, INT32_MIN}) {
        stored.save_time = {word, 1, 1, 1, 1, 1, 1, 1, 1};
        const time_t before = time(nullptr);
        const int index = add(stored);
        const time_t after = time(nullptr);
        broken_down_time saved = get(index).save_time;
        bool is_between = false;
        for (time_t moment = before; moment <= after; ++moment) is_between |= same(saved, local(moment));
        EXPECT_TRUE(is_between) << word;
    }
}

TEST_F(SaveTime, IsReadable)
{
    contact stored;
    stored.save_time.sec = 1751371200;
    add(stored);
    EXPECT_EQ(shell().execAndGet("SELECT save_time FROM contact").getString(), "2025-07-01 14:00:00 DST");
}

// ---- Release

TEST(ContactFree, TakesZeroedAndFreedRecords)
{
    contact_record record = {};
    EXPECT_TRUE(contact_db_service_contact_free(&record));
    record.phone_info = static_cast<contact_phone*>(calloc(2, sizeof(contact_phone)));
    record.phone_count = 1;
    record.note = strdup("note");
    record.note_size = 5;
    EXPECT_TRUE(contact_db_service_contact_free(&record));
    EXPECT_EQ(record.phone_info, nullptr);
    EXPECT_EQ(record.phone_count, 0);
    EXPECT_EQ(record.note, nullptr);
    EXPECT_EQ(record.note_size, 0);
    EXPECT_TRUE(contact_db_service_contact_free(&record));
    EXPECT_TRUE(contact_db_service_contact_free(nullptr));
}
