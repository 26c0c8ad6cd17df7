#include "contact-db/contact_blocks.h"

#include <stdlib.h>

#include <cstring>

#include "common/store_error.h"

namespace pim_store {

void release_blocks(contact_record& contact)
{
    free(contact.phone_info);
    free(contact.email_info);
    free(contact.address_info);
    free(contact.note);
    copy_pointers_and_counts(contact, {});
}

void require_sound_counts(const contact_record& contact)
{
    const auto is_sound = [](int32_t count, const void* block) { return count == 0 || (count > 0 && block); };
    require(is_sound(contact.phone_count, contact.phone_info));
    require(is_sound(contact.email_count, contact.email_info));
    require(is_sound(contact.postal_count, contact.address_info));
    require(is_sound(contact.note_size, contact.note));
}

void copy_pointers_and_counts(contact_record& to, const contact_record& from)
{
    to.phone_info = from.phone_info;
    to.email_info = from.email_info;
    to.address_info = from.address_info;
    to.note = from.note;
    to.phone_count = from.phone_count;
    to.email_count = from.email_count;
    to.postal_count = from.postal_count;
    to.note_size = from.note_size;
}

// The three stretches of the record that lie before, between and behind its pointers.
struct stretch {
    size_t start;
    size_t size;
};
static constexpr stretch stretches[] = {
    {0, offsetof(contact_record, phone_info)},
    {offsetof(contact_record, homepage_info), sizeof contact_record::homepage_info},
    {offsetof(contact_record, opaque_2288), sizeof(contact_record) - offsetof(contact_record, opaque_2288)},
};
static_assert(stretches[0].size + stretches[1].size + stretches[2].size == contact_image_size,
              "no padding on any machine");

contact_image image_of(const contact_record& contact)
{
    contact_image image;
    std::byte* at = image.data();
    for (const auto& [start, size] : stretches) {
        std::memcpy(at, reinterpret_cast<const std::byte*>(&contact) + start, size);
        at += size;
    }
    return image;
}

void set_image(contact_record& contact, const contact_image& image)
{
    const std::byte* at = image.data();
    for (const auto& [start, size] : stretches) {
        std::memcpy(reinterpret_cast<std::byte*>(&contact) + start, at, size);
        at += size;
    }
}

} // namespace pim_store
