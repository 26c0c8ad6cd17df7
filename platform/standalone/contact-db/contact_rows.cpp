#include "contact-db/contact_rows.h"

#include <algorithm>
#include <cstring>

#include "common/byte_runs.h"
#include "common/date_text.h"
#include "contact-db/contact_blocks.h"

namespace pim_store {

// ---- Texts ---------------------------------------------------------------------------------------------------------

// Where a text column lies in a record.
struct text_field {
    size_t offset;
    size_t size;
};

template <typename Record>
static std::string_view text_in(const Record& record, text_field field)
{
    const char* text = reinterpret_cast<const char*>(&record) + field.offset;
    return {text, strnlen(text, field.size)};
}

// Copies a text into a zeroed field. It may fill the field whole; what a person has entered beyond that is left out.
template <typename Record>
static void set_text(Record& record, text_field field, std::string_view text)
{
    std::memcpy(reinterpret_cast<char*>(&record) + field.offset, text.data(), std::min(text.size(), field.size));
}

// clang-format off
static constexpr text_field contact_texts[] = {
    {offsetof(contact_record, name_info.last_name),  sizeof contact_name::last_name},
    {offsetof(contact_record, name_info.first_name), sizeof contact_name::first_name},
    {offsetof(contact_record, nickname),             sizeof contact_record::nickname},
    {offsetof(contact_record, job_title),            sizeof contact_record::job_title},
    {offsetof(contact_record, company_name),         sizeof contact_record::company_name},
};

// ---- Arrays ----------------------------------------------------------------------------------------------------------

// The table of an array: its statements, and the text columns between `type` and `rest`.
template <typename Entry>
struct entry_table;

template <>
struct entry_table<contact_phone> {
    static constexpr const char* insert = "INSERT INTO phone VALUES (?1, ?2, ?3, ?4, ?5)";
    static constexpr const char* remove = "DELETE FROM phone WHERE record_index = ?1";
    static constexpr const char* select = "SELECT record_index, type, number, rest FROM phone "
                                          "WHERE record_index BETWEEN ?1 AND ?2 ORDER BY record_index, position";
    static constexpr text_field texts[] = {{offsetof(contact_phone, number), sizeof contact_phone::number}};
};

template <>
struct entry_table<contact_email> {
    static constexpr const char* insert = "INSERT INTO email VALUES (?1, ?2, ?3, ?4, ?5)";
    static constexpr const char* remove = "DELETE FROM email WHERE record_index = ?1";
    static constexpr const char* select = "SELECT record_index, type, email, rest FROM email "
                                          "WHERE record_index BETWEEN ?1 AND ?2 ORDER BY record_index, position";
    static constexpr text_field texts[] = {{offsetof(contact_email, email), sizeof contact_email::email}};
};

template <>
struct entry_table<contact_address> {
    static constexpr const char* insert =
        "INSERT INTO address VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12)";
    static constexpr const char* remove = "DELETE FROM address WHERE record_index = ?1";
    static constexpr const char* select = "SELECT record_index, type, full_text, street, additional_info, city, "
                                          "postal_code, state, country, pobox, rest FROM address "
                                          "WHERE record_index BETWEEN ?1 AND ?2 ORDER BY record_index, position";
    static constexpr text_field texts[] = {
        {offsetof(contact_address, full_text),       sizeof contact_address::full_text},
        {offsetof(contact_address, street),          sizeof contact_address::street},
        {offsetof(contact_address, additional_info), sizeof contact_address::additional_info},
        {offsetof(contact_address, city),            sizeof contact_address::city},
        {offsetof(contact_address, postal_code),     sizeof contact_address::postal_code},
        {offsetof(contact_address, state),           sizeof contact_address::state},
        {offsetof(contact_address, country),         sizeof contact_address::country},
        {offsetof(contact_address, pobox),           sizeof contact_address::pobox},
    };
};
// clang-format on

template <typename Record>
static byte_view bytes_of(const Record& record)
{
    return std::as_bytes(std::span(&record, 1));
}

// The columns of an entry alone: its texts and type, at its own place in the array.
template <typename Entry>
static Entry plain_entry(const Entry& entry, int32_t position)
{
    Entry plain = {};
    plain.type = entry.type;
    plain.position = position;
    for (const text_field field : entry_table<Entry>::texts) set_text(plain, field, text_in(entry, field));
    return plain;
}

template <typename Entry>
static void insert_entries(connection& file, int32_t record_index, const Entry* entries, int32_t count)
{
    for (int32_t position = 0; position < count; ++position) {
        const Entry& entry = entries[position];
        const Entry plain = plain_entry(entry, position);
        statement insertion = file.prepare(entry_table<Entry>::insert);
        insertion.bind(record_index, position, entry.type);
        for (const text_field field : entry_table<Entry>::texts) insertion.bind(text_in(entry, field));
        insertion.bind(byte_view(byte_runs(bytes_of(entry), bytes_of(plain)))).run();
    }
}

// ---- Writing -------------------------------------------------------------------------------------------------------

// A note's block as its text alone makes it: zeros behind the text.
static std::vector<char> plain_note(std::string_view text, int32_t size)
{
    std::vector<char> block(std::max(text.size(), static_cast<size_t>(size)));
    std::copy(text.begin(), text.end(), block.begin());
    return block;
}

// The record as the columns alone make it.
static contact_record plain_contact(const contact_record& contact)
{
    contact_record plain = {};
    copy_pointers_and_counts(plain, contact);
    plain.index = contact.index;
    for (const text_field field : contact_texts) set_text(plain, field, text_in(contact, field));
    for (size_t slot = 0; slot < CONTACT_HOMEPAGE_MAX; ++slot) {
        const std::string_view text = text_in(contact.homepage_info[slot].homepage);
        plain.homepage_info[slot].type = contact.homepage_info[slot].type;
        std::copy(text.begin(), text.end(), plain.homepage_info[slot].homepage);
    }
    std::copy(std::begin(contact.membership), std::end(contact.membership), plain.membership);
    plain.birthday = time_of_text(text_of_time(contact.birthday));
    plain.save_time = time_of_text(text_of_time(contact.save_time));
    return plain;
}

static void bind_note(statement& target, const contact_record& contact)
{
    if (contact.note_size == 0) {
        target.bind(std::nullopt, std::nullopt, std::nullopt);
        return;
    }
    const auto size = static_cast<size_t>(contact.note_size);
    const std::string_view text(contact.note, strnlen(contact.note, size));
    target.bind(text);
    if (text.size() + 1 == size)
        target.bind(std::nullopt);
    else
        target.bind(contact.note_size);
    const std::vector<char> plain = plain_note(text, contact.note_size);
    target.bind(byte_view(byte_runs(std::as_bytes(std::span(contact.note, size)), std::as_bytes(std::span(plain)))));
}

// Binds ?1 to ?12 for the contact's own row.
static void bind_contact(statement& target, const contact_record& contact)
{
    target.bind(contact.index);
    for (const text_field field : contact_texts) target.bind(text_in(contact, field));
    target.bind(text_of_time(contact.birthday), text_of_time(contact.save_time));
    bind_note(target, contact);
    target.bind(byte_view(byte_runs(image_of(contact), image_of(plain_contact(contact)))));
}

static void insert_belongings(connection& file, const contact_record& contact)
{
    insert_entries(file, contact.index, contact.phone_info, contact.phone_count);
    insert_entries(file, contact.index, contact.email_info, contact.email_count);
    insert_entries(file, contact.index, contact.address_info, contact.postal_count);
    for (int32_t slot = 0; slot < CONTACT_HOMEPAGE_MAX; ++slot) {
        const contact_homepage& page = contact.homepage_info[slot];
        const std::string_view text = text_in(page.homepage);
        if (page.type == 0 && text.empty()) continue;
        file.prepare("INSERT INTO homepage VALUES (?1, ?2, ?3, ?4)").bind(contact.index, slot, page.type, text).run();
    }
    for (int32_t key_index = 0; key_index < CONTACT_MEMBERSHIP_SIZE; ++key_index) {
        const int32_t value = contact.membership[key_index];
        if (value == 0) continue;
        file.prepare("INSERT INTO membership VALUES (?1, ?2, ?3)").bind(contact.index, key_index, value).run();
    }
}

void insert_contact(connection& file, const contact_record& contact)
{
    statement insertion =
        file.prepare("INSERT INTO contact VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12)");
    bind_contact(insertion, contact);
    insertion.run();
    insert_belongings(file, contact);
}

bool replace_contact(connection& file, const contact_record& contact)
{
    statement change = file.prepare(
        "UPDATE contact SET last_name = ?2, first_name = ?3, nickname = ?4, job_title = ?5, company_name = ?6, "
        "birthday = ?7, save_time = ?8, note = ?9, note_size = ?10, note_rest = ?11, rest = ?12 "
        "WHERE record_index = ?1");
    bind_contact(change, contact);
    if (change.run() == 0) return false;
    for (const char* removal :
         {entry_table<contact_phone>::remove, entry_table<contact_email>::remove, entry_table<contact_address>::remove,
          "DELETE FROM homepage WHERE record_index = ?1", "DELETE FROM membership WHERE record_index = ?1"})
        file.prepare(removal).bind(contact.index).run();
    insert_belongings(file, contact);
    return true;
}

static int32_t lowest_free_index(connection& file)
{
    int32_t lowest_free = 1;
    statement taken = file.prepare("SELECT record_index FROM contact ORDER BY record_index");
    while (taken.step() && taken.integer(0) == lowest_free) ++lowest_free;
    return lowest_free;
}

int32_t next_record_index(connection& file, std::optional<int32_t> known_free)
{
    const int32_t highest = file.number(
        "SELECT max(coalesce((SELECT max(record_index) FROM contact), 0), "
        "coalesce((SELECT max(highest) FROM retired_index), 0))");
    if (highest < CONTACT_RECORD_MAX) return highest + 1;
    const int32_t lowest_free = known_free ? *known_free : lowest_free_index(file);
    if (lowest_free > CONTACT_RECORD_MAX) throw store_failure(store_error::full);
    return lowest_free;
}

// ---- Reading -------------------------------------------------------------------------------------------------------

// A contact while its rows come together.
struct contact_draft {
    contact_record record = {};
    std::vector<std::byte> rest;
    std::vector<contact_phone> phones;
    std::vector<contact_email> emails;
    std::vector<contact_address> addresses;
    std::vector<char> note;

    packed_contact packed();
};

template <typename Element>
static std::pair<Element*, int32_t> block_and_count(std::vector<Element>& elements)
{
    return {elements.data(), static_cast<int32_t>(elements.size())};
}

packed_contact contact_draft::packed()
{
    std::tie(record.phone_info, record.phone_count) = block_and_count(phones);
    std::tie(record.email_info, record.email_count) = block_and_count(emails);
    std::tie(record.address_info, record.postal_count) = block_and_count(addresses);
    std::tie(record.note, record.note_size) = block_and_count(note);
    const contact_record plain = record;
    contact_image image = image_of(record);
    apply_byte_runs(rest, image);
    set_image(record, image);
    // Nothing that a file says about the rest may part the counts from the blocks.
    copy_pointers_and_counts(record, plain);
    record.index = plain.index;
    return packed_contact(record);
}

static std::vector<contact_draft> drafts_between(connection& file, int32_t first, int32_t last)
{
    std::vector<contact_draft> drafts;
    statement rows = file.prepare(
        "SELECT record_index, last_name, first_name, nickname, job_title, company_name, birthday, save_time, note, "
        "note_size, note_rest, rest FROM contact WHERE record_index BETWEEN ?1 AND ?2 ORDER BY record_index");
    rows.bind(first, last);
    while (rows.step()) {
        contact_draft& draft = drafts.emplace_back();
        int column = 0;
        draft.record.index = rows.integer(column++);
        for (const text_field field : contact_texts) set_text(draft.record, field, rows.text(column++));
        draft.record.birthday = time_of_text(rows.text(column++));
        draft.record.save_time = time_of_text(rows.text(column++));
        if (!rows.is_null(column)) {
            const std::string_view text = rows.text(column);
            const int32_t terminated = static_cast<int32_t>(text.size()) + 1;
            draft.note = plain_note(text, rows.is_null(column + 1) ? terminated : rows.integer(column + 1));
            apply_byte_runs(rows.bytes(column + 2), std::as_writable_bytes(std::span(draft.note)));
        }
        column += 3;
        const byte_view rest = rows.bytes(column);
        draft.rest.assign(rest.begin(), rest.end());
    }
    return drafts;
}

// Walks the drafts along with rows that come in the same order: calls `take(draft, rows)` for each row.
template <typename Take>
static void distribute(std::vector<contact_draft>& drafts, statement& rows, Take&& take)
{
    auto draft = drafts.begin();
    while (rows.step()) {
        const int32_t record_index = rows.integer(0);
        while (draft != drafts.end() && draft->record.index < record_index) ++draft;
        if (draft == drafts.end()) return;
        if (draft->record.index == record_index) take(*draft, rows);
    }
}

template <typename Entry>
static void read_entries(connection& file, std::vector<contact_draft>& drafts, std::vector<Entry> contact_draft::*array)
{
    statement rows = file.prepare(entry_table<Entry>::select);
    rows.bind(drafts.front().record.index, drafts.back().record.index);
    distribute(drafts, rows, [array](contact_draft& draft, const statement& row) {
        Entry entry = {};
        int column = 1;
        entry.type = row.integer(column++);
        entry.position = static_cast<int32_t>((draft.*array).size());
        for (const text_field field : entry_table<Entry>::texts) set_text(entry, field, row.text(column++));
        apply_byte_runs(row.bytes(column), std::as_writable_bytes(std::span(&entry, 1)));
        (draft.*array).push_back(entry);
    });
}

static void read_homepages(connection& file, std::vector<contact_draft>& drafts)
{
    statement rows = file.prepare(
        "SELECT record_index, slot, type, homepage FROM homepage "
        "WHERE record_index BETWEEN ?1 AND ?2 ORDER BY record_index");
    rows.bind(drafts.front().record.index, drafts.back().record.index);
    distribute(drafts, rows, [](contact_draft& draft, const statement& row) {
        const auto slot = static_cast<uint32_t>(row.integer(1));
        if (slot >= CONTACT_HOMEPAGE_MAX) throw store_failure(store_error::corrupt);
        contact_homepage& page = draft.record.homepage_info[slot];
        page.type = row.integer(2);
        set_text(page, {offsetof(contact_homepage, homepage), sizeof page.homepage}, row.text(3));
    });
}

static void read_memberships(connection& file, std::vector<contact_draft>& drafts)
{
    statement rows = file.prepare(
        "SELECT record_index, key_index, value FROM membership "
        "WHERE record_index BETWEEN ?1 AND ?2 ORDER BY record_index");
    rows.bind(drafts.front().record.index, drafts.back().record.index);
    distribute(drafts, rows, [](contact_draft& draft, const statement& row) {
        const auto key_index = static_cast<uint32_t>(row.integer(1));
        if (key_index >= CONTACT_MEMBERSHIP_SIZE) throw store_failure(store_error::corrupt);
        draft.record.membership[key_index] = static_cast<unsigned char>(row.integer(2));
    });
}

std::vector<std::pair<int32_t, packed_contact>> contacts_between(connection& file, int32_t first, int32_t last)
{
    std::vector<contact_draft> drafts = drafts_between(file, first, last);
    if (drafts.empty()) return {};
    read_entries(file, drafts, &contact_draft::phones);
    read_entries(file, drafts, &contact_draft::emails);
    read_entries(file, drafts, &contact_draft::addresses);
    read_homepages(file, drafts);
    read_memberships(file, drafts);

    std::vector<std::pair<int32_t, packed_contact>> contacts;
    contacts.reserve(drafts.size());
    for (contact_draft& draft : drafts) contacts.emplace_back(draft.record.index, draft.packed());
    return contacts;
}

// ---- Groups --------------------------------------------------------------------------------------------------------

static contact_group_record plain_group(int32_t key_index, std::string_view name)
{
    contact_group_record plain = {};
    plain.group_key.index = key_index;
    set_text(plain, {offsetof(contact_group_record, name), sizeof plain.name}, name);
    return plain;
}

std::vector<std::byte> rest_of_group(const contact_group_record& group)
{
    return byte_runs(bytes_of(group), bytes_of(plain_group(group.group_key.index, text_in(group.name))));
}

contact_group_record group_of_row(int32_t key_index, std::string_view name, byte_view rest)
{
    contact_group_record group = plain_group(key_index, name);
    apply_byte_runs(rest, std::as_writable_bytes(std::span(&group, 1)));
    return group;
}

} // namespace pim_store
