// contact_rows.h: contacts and groups as rows of the file.
#pragma once

#include <contact_db_service.h>

#include <optional>
#include <utility>
#include <vector>

#include "common/connection.h"
#include "contact-db/packed_contact.h"

namespace pim_store {

// The index for a new contact: the one after the highest ever used, and when that one passes the limit, the lowest
// free one: `known_free` or, without that, what looking through the rows finds. Fails with FULL.
int32_t next_record_index(connection& file, std::optional<int32_t> known_free);

// Writes the rows of a contact under contact.index, which must be free, or already there. False when the contact that
// is to be replaced is not there.
void insert_contact(connection& file, const contact_record& contact);
bool replace_contact(connection& file, const contact_record& contact);

// The contacts from `first` to `last`, packed, with their record indexes.
std::vector<std::pair<int32_t, packed_contact>> contacts_between(connection& file, int32_t first, int32_t last);

// The text in a field: the bytes before its first NUL, at most all of them.
template <size_t size>
std::string_view text_in(const char (&field)[size])
{
    return {field, strnlen(field, size)};
}

// What a group record carries beyond its key index and name, and the record that these three make.
std::vector<std::byte> rest_of_group(const contact_group_record& group);
contact_group_record group_of_row(int32_t key_index, std::string_view name, byte_view rest);

} // namespace pim_store
