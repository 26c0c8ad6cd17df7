#include "raw_contacts.h"

#include <cstdlib>
#include <ctime>

#include "common/date_text.h"
#include "samples.h"

using pim_store::text_of_time;
using pim_store::time_of_text;

raw_contacts::raw_contacts(const std::filesystem::path& file)
    : database_(file),
      begin_(database_, "BEGIN IMMEDIATE"),
      commit_(database_, "COMMIT"),
      insert_(database_, "INSERT INTO contact VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, NULL, NULL, NULL)"),
      update_(database_,
              "UPDATE contact SET last_name = ?2, first_name = ?3, nickname = ?4, job_title = ?5, "
              "company_name = ?6, birthday = ?7, save_time = ?8, note = ?9, note_size = NULL, "
              "note_rest = NULL, rest = NULL WHERE record_index = ?1"),
      remove_(database_, "DELETE FROM contact WHERE record_index = ?1"),
      insert_phone_(database_, "INSERT INTO phone VALUES (?1, ?2, ?3, ?4, NULL)"),
      insert_email_(database_, "INSERT INTO email VALUES (?1, ?2, ?3, ?4, NULL)"),
      insert_address_(database_, "INSERT INTO address VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, NULL)"),
      insert_homepage_(database_, "INSERT INTO homepage VALUES (?1, ?2, ?3, ?4)"),
      insert_membership_(database_, "INSERT INTO membership VALUES (?1, ?2, ?3)"),
      remove_phones_(database_, "DELETE FROM phone WHERE record_index = ?1"),
      remove_emails_(database_, "DELETE FROM email WHERE record_index = ?1"),
      remove_addresses_(database_, "DELETE FROM address WHERE record_index = ?1"),
      remove_homepages_(database_, "DELETE FROM homepage WHERE record_index = ?1"),
      remove_memberships_(database_, "DELETE FROM membership WHERE record_index = ?1"),
      get_(database_,
           "SELECT last_name, first_name, nickname, job_title, company_name, birthday, save_time, note, "
           "note_size, note_rest, rest FROM contact WHERE record_index = ?1"),
      get_phones_(database_, "SELECT type, number, rest FROM phone WHERE record_index = ?1 ORDER BY position"),
      get_emails_(database_, "SELECT type, email, rest FROM email WHERE record_index = ?1 ORDER BY position"),
      get_addresses_(database_,
                     "SELECT type, full_text, street, additional_info, city, postal_code, state, country, "
                     "pobox, rest FROM address WHERE record_index = ?1 ORDER BY position"),
      get_homepages_(database_, "SELECT slot, type, homepage FROM homepage WHERE record_index = ?1"),
      get_memberships_(database_, "SELECT key_index, value FROM membership WHERE record_index = ?1"),
      list_(database_, "SELECT record_index FROM contact ORDER BY record_index"),
      members_(database_, "SELECT record_index FROM membership WHERE key_index = ?1 ORDER BY record_index"),
      search_(database_,
              "SELECT record_index FROM contact WHERE first_name LIKE ?1 OR last_name LIKE ?1 "
              "OR note LIKE ?1 OR company_name LIKE ?1 OR job_title LIKE ?1 "
              "UNION ALL SELECT record_index FROM address WHERE street LIKE ?1 OR additional_info LIKE ?1 "
              "OR city LIKE ?1 OR postal_code LIKE ?1 OR state LIKE ?1 OR country LIKE ?1 OR pobox LIKE ?1 "
              "UNION ALL SELECT record_index FROM email WHERE email LIKE ?1 "
              "UNION ALL SELECT record_index FROM phone WHERE number LIKE ?1 LIMIT 1")
{}

// ---- Writing --------------------------------------------------------------------------------------------------------

// Binds ?1 to ?9, the first of which SQLite chooses when it is NULL, and runs the statement.
template <typename Index>
static void run_with(raw_statement& statement, Index recindex, const contact_record& contact)
{
    const std::string birthday = text_of_time(contact.birthday);
    const std::string saved = text_of_time(pim_store::local_time(time(nullptr)));
    statement
        .bind(recindex, contact.name_info.last_name, contact.name_info.first_name, contact.nickname, contact.job_title,
              contact.company_name, std::string_view(birthday), std::string_view(saved), contact.note)
        .run();
}

void raw_contacts::insert_belongings(int32_t recindex, const contact_record& contact)
{
    for (int32_t i = 0; i < contact.phone_count; ++i)
        insert_phone_.bind(recindex, i, contact.phone_info[i].type, contact.phone_info[i].number).run();
    for (int32_t i = 0; i < contact.email_count; ++i)
        insert_email_.bind(recindex, i, contact.email_info[i].type, contact.email_info[i].email).run();
    for (int32_t i = 0; i < contact.postal_count; ++i) {
        const contact_address& address = contact.address_info[i];
        insert_address_
            .bind(recindex, i, address.type, address.full_text, address.street, address.additional_info, address.city,
                  address.postal_code, address.state, address.country, address.pobox)
            .run();
    }
    for (int32_t slot = 0; slot < CONTACT_HOMEPAGE_MAX; ++slot) {
        const contact_homepage& page = contact.homepage_info[slot];
        if (page.homepage[0] != '\0') insert_homepage_.bind(recindex, slot, page.type, page.homepage).run();
    }
    for (int32_t key_index = 0; key_index < CONTACT_MEMBERSHIP_SIZE; ++key_index)
        if (const int32_t value = contact.membership[key_index]; value != 0)
            insert_membership_.bind(recindex, key_index, value).run();
}

void raw_contacts::fill(int count)
{
    in_transaction(begin_, commit_, [&] {
        database_.run("DELETE FROM contact; DELETE FROM contact_group; UPDATE retired_index SET highest = 0");
        raw_statement insert_group(database_, "INSERT INTO contact_group VALUES (?1, ?2, NULL)");
        for (int32_t key_index = 0; key_index < SAMPLE_GROUPS; ++key_index)
            insert_group.bind(key_index, std::string_view("Group")).run();
        for (int32_t number = 1; number <= count; ++number) {
            const owned_contact contact = sample_contact(number);
            run_with(insert_, number, contact);
            insert_belongings(number, contact);
        }
    });
    database_.run("PRAGMA wal_checkpoint(TRUNCATE)");
}

int32_t raw_contacts::add(const contact_record& contact)
{
    int32_t recindex = 0;
    in_transaction(begin_, commit_, [&] {
        run_with(insert_, nullptr, contact);
        recindex = static_cast<int32_t>(sqlite3_last_insert_rowid(database_.handle()));
        insert_belongings(recindex, contact);
    });
    return recindex;
}

void raw_contacts::update(int32_t recindex, const contact_record& contact)
{
    in_transaction(begin_, commit_, [&] {
        run_with(update_, recindex, contact);
        demand(sqlite3_changes(database_.handle()) == 1, "a contact to update");
        for (raw_statement* removal :
             {&remove_phones_, &remove_emails_, &remove_addresses_, &remove_homepages_, &remove_memberships_})
            removal->bind(recindex).run();
        insert_belongings(recindex, contact);
    });
}

void raw_contacts::remove(int32_t recindex)
{
    in_transaction(begin_, commit_, [&] { remove_.bind(recindex).run(); });
    demand(sqlite3_changes(database_.handle()) == 1, "a contact to remove");
}

// ---- Reading --------------------------------------------------------------------------------------------------------

// The rows of one contact as a block; `read` fills a zeroed entry and gives the column of its rest.
template <typename Entry, typename Read>
static int32_t read_entries(raw_statement& rows, int32_t recindex, Entry*& block, Read&& read)
{
    int32_t count = 0;
    rows.bind(recindex);
    while (rows.step()) {
        block = static_cast<Entry*>(std::realloc(block, static_cast<size_t>(count + 1) * sizeof(Entry)));
        demand(block != nullptr, "memory");
        Entry& entry = block[count] = {};
        entry.type = rows.integer(0);
        entry.position = count++;
        demand(rows.is_null(read(entry)), "an entry that its columns say all of");
    }
    return count;
}

void raw_contacts::get(int32_t recindex, contact_record& contact)
{
    demand(get_.bind(recindex).step(), "a contact to get");
    contact.index = recindex;
    get_.text_into(contact.name_info.last_name, 0);
    get_.text_into(contact.name_info.first_name, 1);
    get_.text_into(contact.nickname, 2);
    get_.text_into(contact.job_title, 3);
    get_.text_into(contact.company_name, 4);
    contact.birthday = time_of_text(get_.text(5));
    contact.save_time = time_of_text(get_.text(6));
    if (!get_.is_null(7)) {
        const std::string_view note = get_.text(7);
        contact.note_size = static_cast<int32_t>(note.size() + 1);
        contact.note = static_cast<char*>(std::malloc(note.size() + 1));
        demand(contact.note != nullptr, "memory");
        std::memcpy(contact.note, note.data(), note.size() + 1); // SQLite terminates its texts.
    }
    demand(get_.is_null(8) && get_.is_null(9) && get_.is_null(10), "a contact that its columns say all of");
    get_.reset();

    contact.phone_count = read_entries(get_phones_, recindex, contact.phone_info, [&](contact_phone& phone) {
        get_phones_.text_into(phone.number, 1);
        return 2;
    });
    contact.email_count = read_entries(get_emails_, recindex, contact.email_info, [&](contact_email& email) {
        get_emails_.text_into(email.email, 1);
        return 2;
    });
    contact.postal_count = read_entries(get_addresses_, recindex, contact.address_info, [&](contact_address& address) {
        get_addresses_.text_into(address.full_text, 1);
        get_addresses_.text_into(address.street, 2);
        get_addresses_.text_into(address.additional_info, 3);
        get_addresses_.text_into(address.city, 4);
        get_addresses_.text_into(address.postal_code, 5);
        get_addresses_.text_into(address.state, 6);
        get_addresses_.text_into(address.country, 7);
        get_addresses_.text_into(address.pobox, 8);
        return 9;
    });
    get_homepages_.bind(recindex);
    while (get_homepages_.step()) {
        contact_homepage& page = contact.homepage_info[get_homepages_.integer(0)];
        page.type = get_homepages_.integer(1);
        get_homepages_.text_into(page.homepage, 2);
    }
    get_memberships_.bind(recindex);
    while (get_memberships_.step())
        contact.membership[get_memberships_.integer(0)] = static_cast<unsigned char>(get_memberships_.integer(1));
}

static int32_t read_indices(raw_statement& rows, std::span<int32_t> indices)
{
    size_t count = 0;
    while (rows.step()) indices[count++] = rows.integer(0);
    return static_cast<int32_t>(count);
}

int32_t raw_contacts::list(std::span<int32_t> indices)
{
    return read_indices(list_, indices);
}

int32_t raw_contacts::members(int32_t key_index, std::span<int32_t> indices)
{
    return read_indices(members_.bind(key_index), indices);
}

int32_t raw_contacts::search(const std::string& match)
{
    const std::string pattern = "%" + match + "%";
    if (!search_.bind(std::string_view(pattern)).step()) return -1;
    const int32_t found = search_.integer(0);
    search_.reset();
    return found;
}
