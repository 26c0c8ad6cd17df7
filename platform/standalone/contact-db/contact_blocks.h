// contact_blocks.h: the blocks behind a contact record's pointers.
#pragma once

#include <contact_db_service.h>

#include <array>
#include <cstddef>

namespace pim_store {

// Releases the blocks and sets the pointers to null with their counts.
void release_blocks(contact_record& contact);

// Fails with INVALID_ARGUMENT when a count is negative or lacks its block.
void require_sound_counts(const contact_record& contact);

// Takes over what belongs to the arrays, a pointer and its count, from one record to another.
void copy_pointers_and_counts(contact_record& to, const contact_record& from);

// The record without its pointers, the same on machines of any pointer size: the form that files know.
inline constexpr size_t contact_image_size = 4736 - 4 * sizeof(int32_t);
using contact_image = std::array<std::byte, contact_image_size>;

contact_image image_of(const contact_record& contact);

// Overwrites all of the record but the pointers.
void set_image(contact_record& contact, const contact_image& image);

} // namespace pim_store
