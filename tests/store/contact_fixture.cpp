#include "contact_fixture.h"

#include <stdlib.h>

#include <algorithm>
#include <cstring>

namespace store_test {
inline namespace contacts {

template <typename Entry>
static Entry& append(Entry*& entries, int32_t& count)
{
    entries = static_cast<Entry*>(realloc(entries, sizeof(Entry) * static_cast<size_t>(count + 1)));
    entries[count] = {};
    return entries[count++];
}

contact::contact(std::string_view last_name) : contact()
{
    set_text(name_info.last_name, last_name);
}

contact_phone& contact::add_phone(std::string_view number)
{
    contact_phone& phone = append(phone_info, phone_count);
    phone.position = phone_count - 1;
    set_text(phone.number, number);
    return phone;
}

contact_email& contact::add_email(std::string_view text)
{
    contact_email& email = append(email_info, email_count);
    email.position = email_count - 1;
    set_text(email.email, text);
    return email;
}

contact_address& contact::add_address(std::string_view street)
{
    contact_address& address = append(address_info, postal_count);
    address.position = postal_count - 1;
    set_text(address.street, street);
    return address;
}

void contact::set_note(std::string_view block)
{
    free(note);
    note = static_cast<char*>(malloc(block.size()));
    block.copy(note, block.size());
    note_size = static_cast<int32_t>(block.size());
}

static void fill(std::mt19937& random, void* bytes, size_t size)
{
    std::generate_n(static_cast<unsigned char*>(bytes), size, [&] { return static_cast<unsigned char>(random()); });
}

contact random_contact(std::mt19937& random)
{
    contact made;
    fill(random, static_cast<contact_record*>(&made), sizeof(contact_record));
    made.phone_info = nullptr;
    made.email_info = nullptr;
    made.address_info = nullptr;
    made.note = nullptr;
    made.phone_count = made.email_count = made.postal_count = made.note_size = 0;
    made.save_time.sec = 0;
    for (auto i = random() % 16; i > 0; --i) fill(random, &made.add_phone(""), sizeof(contact_phone));
    for (auto i = random() % 16; i > 0; --i) fill(random, &made.add_email(""), sizeof(contact_email));
    for (auto i = random() % 6; i > 0; --i) fill(random, &made.add_address(""), sizeof(contact_address));
    std::string note(random() % 3 * (random() % 3000), '\0');
    fill(random, note.data(), note.size());
    if (!note.empty()) made.set_note(note);
    return made;
}

contact uniform_contact(int number)
{
    const std::string text = std::to_string(number);
    contact made(text);
    set_text(made.nickname, text);
    set_text(made.company_name, text);
    set_text(made.opaque_4092, text);
    made.homepage_info[3].type = number;
    for (int i = 0; i < 1 + number % 3; ++i) made.add_phone(text);
    for (int i = 0; i < 1 + number % 4; ++i) made.add_email(text);
    made.add_address(text);
    made.set_note({text.c_str(), text.size() + 1});
    return made;
}

int number_of(const contact_record& uniform)
{
    const int number = uniform.homepage_info[3].type;
    return difference(uniform, uniform_contact(number)).empty() ? number : -1;
}

template <typename Entry>
static std::string difference(const char* what, const Entry* one, int32_t one_count, const Entry* other,
                              int32_t other_count)
{
    if (one_count != other_count) return std::string("number of ") + what;
    if (one_count == 0) return "";
    return memcmp(one, other, sizeof(Entry) * static_cast<size_t>(one_count)) == 0 ? "" : what;
}

std::string difference(const contact_record& one, const contact_record& other)
{
    const auto comparable = [](contact_record record) {
        record.index = 0;
        record.save_time = {};
        record.phone_info = nullptr;
        record.email_info = nullptr;
        record.address_info = nullptr;
        record.note = nullptr;
        return record;
    };
    const contact_record left = comparable(one), right = comparable(other);
    const auto* left_bytes = reinterpret_cast<const char*>(&left);
    const auto* right_bytes = reinterpret_cast<const char*>(&right);
    const auto at = std::mismatch(left_bytes, left_bytes + sizeof left, right_bytes).first - left_bytes;
    if (at < static_cast<ptrdiff_t>(sizeof left)) return "byte " + std::to_string(at);
    return difference("phones", one.phone_info, one.phone_count, other.phone_info, other.phone_count) +
           difference("emails", one.email_info, one.email_count, other.email_info, other.email_count) +
           difference("addresses", one.address_info, one.postal_count, other.address_info, other.postal_count) +
           difference("note", one.note, one.note_size, other.note, other.note_size);
}

int add(contact_record& contact)
{
    int error = 0;
    EXPECT_TRUE(contact_db_service_contact_add(&contact, &error)) << error;
    return contact.index;
}

int add(std::string_view last_name)
{
    contact made(last_name);
    return add(made);
}

contact get(int recindex)
{
    contact fetched;
    int error = 0;
    EXPECT_TRUE(contact_db_service_contact_get(0, recindex, 0, &fetched, &error)) << recindex << ": " << error;
    return fetched;
}

void update(int recindex, contact_record& contact)
{
    int error = 0;
    EXPECT_TRUE(contact_db_service_contact_update(0, recindex, &contact, &error)) << recindex << ": " << error;
}

void remove_contact(int recindex)
{
    int error = 0;
    EXPECT_TRUE(contact_db_service_contact_delete(0, recindex, 0, 0, &error)) << recindex << ": " << error;
}

int count()
{
    int number = -1, error = 0;
    EXPECT_TRUE(contact_db_service_contact_get_count(0, &number, &error)) << error;
    return number;
}

std::vector<int> indices()
{
    std::vector<int> found(CONTACT_RECORD_MAX);
    int number = CONTACT_RECORD_MAX, error = 0;
    if (!contact_db_service_contact_get_all_indices(0, found.data(), &number, &error)) {
        EXPECT_EQ(error, CONTACT_ERROR_NO_RECORDS);
        number = 0;
    }
    found.resize(static_cast<size_t>(number));
    return found;
}

bool exists(int recindex)
{
    unsigned char flag = 77;
    int error = 0;
    EXPECT_TRUE(contact_db_service_contact_is_exist(0, recindex, &flag, &error)) << error;
    EXPECT_LE(flag, 1);
    return flag;
}

std::vector<int> contacts_of_no_group()
{
    GList* list = nullptr;
    int error = 0;
    EXPECT_TRUE(contact_db_service_search_contacts_of_no_group(nullptr, 1024, "", 9, &list, &error)) << error;
    std::vector<int> found;
    for (const GList* node = list; node; node = node->next) found.push_back(*static_cast<int32_t*>(node->data));
    g_list_free_full(list, free);
    return found;
}

int add_group(std::string_view name)
{
    contact_group_record group = {};
    set_text(group.name, name);
    group.group_key.index = -7;
    int error = 0;
    EXPECT_TRUE(contact_db_service_group_add(&group, &error)) << error;
    return group.group_key.index;
}

std::vector<int> members(int key_index)
{
    std::vector<int> found(CONTACT_RECORD_MAX);
    int number = CONTACT_RECORD_MAX, error = 0;
    EXPECT_TRUE(contact_db_service_group_get_members(0, key_index, found.data(), &number, &error)) << error;
    found.resize(static_cast<size_t>(number));
    return found;
}

std::vector<std::string> group_names()
{
    int number = -1, error = 0;
    EXPECT_TRUE(contact_db_service_group_get_count(0, &number, &error)) << error;
    std::vector<contact_group_record> groups(static_cast<size_t>(number));
    EXPECT_TRUE(contact_db_service_group_get_all_records(0, groups.data(), number, &error)) << error;
    std::vector<std::string> names;
    for (const contact_group_record& group : groups) names.emplace_back(group.name);
    return names;
}

} // namespace contacts
} // namespace store_test
