// contact_fixture.h: contact records for the tests of the contact store.
#pragma once

#include <contact_db_service.h>

#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "store_test.h"

namespace store_test {
// One program may have both fixtures, whose functions bear the same names.
inline namespace contacts {

// A record whose blocks go with it.
class contact : public contact_record {
public:
    contact() : contact_record{} {}
    explicit contact(std::string_view last_name);
    contact(contact&& other) noexcept : contact_record(other) { static_cast<contact_record&>(other) = {}; }
    contact& operator=(contact&&) = delete;
    ~contact() { contact_db_service_contact_free(this); }

    contact_phone& add_phone(std::string_view number);
    contact_email& add_email(std::string_view text);
    contact_address& add_address(std::string_view street);
    void set_note(std::string_view block); // The block as it is: a terminator is not added.
};

// Copies a text into a field, as much as there is room for, without a terminator when it fills the field.
template <size_t size>
void set_text(char (&field)[size], std::string_view text)
{
    std::fill(std::begin(field), std::end(field), '\0');
    text.copy(field, size);
}

// A record with random bytes wherever a record holds bytes.
contact random_contact(std::mt19937& random);

// A contact whose every field says `number`, so that a mixture of two of them shows.
contact uniform_contact(int number);
// The number such a contact says, -1 when its fields disagree.
int number_of(const contact_record& uniform);

// What differs between two records outside pointers, the index and the time of the save; empty when nothing does.
std::string difference(const contact_record& one, const contact_record& other);

// ---- The C functions, with their results as values. Each expects success.

int add(contact_record& contact);
int add(std::string_view last_name);
contact get(int recindex);
void update(int recindex, contact_record& contact);
void remove_contact(int recindex);
int count();
std::vector<int> indices();
bool exists(int recindex);
std::vector<int> contacts_of_no_group();

int add_group(std::string_view name);
std::vector<int> members(int key_index);
std::vector<std::string> group_names();

class ContactStore : public StoreTest {
protected:
    fs::path file() const { return store_home() / "address.db3"; }

    // Another connection to the file, as the sqlite3 shell has one.
    SQLite::Database shell() const { return {file(), SQLite::OPEN_READWRITE, 5000}; }
};

} // namespace contacts
} // namespace store_test
