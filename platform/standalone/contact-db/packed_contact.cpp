#include "contact-db/packed_contact.h"

#include <stdlib.h>

#include <array>
#include <cstring>
#include <new>
#include <numeric>
#include <span>

#include "common/byte_runs.h"
#include "contact-db/contact_blocks.h"

namespace pim_store {

// A block is this head and then, one behind the other, the runs of the record with its pointers null, those of the
// three arrays, and the note as it is.
enum section { record_runs, phone_runs, email_runs, address_runs, note_bytes, section_count };
using section_sizes = std::array<uint32_t, section_count>;

template <typename Entry>
static byte_view bytes_of(const Entry* entries, int32_t count)
{
    return std::as_bytes(std::span(entries, static_cast<size_t>(count)));
}

packed_contact::packed_contact(const contact_record& contact)
{
    contact_record without_pointers = contact;
    copy_pointers_and_counts(without_pointers, {});
    without_pointers.phone_count = contact.phone_count;
    without_pointers.email_count = contact.email_count;
    without_pointers.postal_count = contact.postal_count;
    without_pointers.note_size = contact.note_size;

    const std::array<std::vector<std::byte>, 4> runs = {
        byte_runs(bytes_of(&without_pointers, 1)),
        byte_runs(bytes_of(contact.phone_info, contact.phone_count)),
        byte_runs(bytes_of(contact.email_info, contact.email_count)),
        byte_runs(bytes_of(contact.address_info, contact.postal_count)),
    };
    const std::array<byte_view, section_count> sections = {runs[0], runs[1], runs[2], runs[3],
                                                           bytes_of(contact.note, contact.note_size)};
    section_sizes sizes;
    for (size_t i = 0; i < sections.size(); ++i) sizes[i] = static_cast<uint32_t>(sections[i].size());

    block_ = std::make_unique_for_overwrite<std::byte[]>(std::accumulate(sizes.begin(), sizes.end(), sizeof sizes));
    std::memcpy(block_.get(), &sizes, sizeof sizes);
    std::byte* at = block_.get() + sizeof sizes;
    for (const byte_view section : sections) {
        if (!section.empty()) std::memcpy(at, section.data(), section.size());
        at += section.size();
    }
}

size_t packed_contact::size() const
{
    section_sizes sizes;
    std::memcpy(&sizes, block_.get(), sizeof sizes);
    return std::accumulate(sizes.begin(), sizes.end(), sizeof sizes);
}

// A block for `count` elements and one more, which is to be zero, so that a reader one past the end finds an empty
// element; null for none. Not from calloc(): glibc's takes no block that the thread has just freed, its malloc() does.
template <typename Element>
static std::span<Element> new_array(int32_t count)
{
    if (count == 0) return {};
    const size_t elements = static_cast<size_t>(count) + 1;
    void* block = malloc(elements * sizeof(Element));
    if (!block) throw std::bad_alloc();
    return {static_cast<Element*>(block), elements};
}

template <typename Element>
static Element* unpacked_array(byte_view runs, int32_t count)
{
    const std::span<Element> array = new_array<Element>(count);
    expand_byte_runs(runs, std::as_writable_bytes(array));
    return array.data();
}

static char* unpacked_note(byte_view note)
{
    const std::span<char> block = new_array<char>(static_cast<int32_t>(note.size()));
    if (block.empty()) return nullptr;
    std::memcpy(block.data(), note.data(), note.size());
    block.back() = '\0';
    return block.data();
}

void packed_contact::unpack(contact_record& contact) const
{
    section_sizes sizes;
    std::memcpy(&sizes, block_.get(), sizeof sizes);
    const std::byte* at = block_.get() + sizeof sizes;
    const auto next = [&](section which) {
        const byte_view bytes(at, sizes[which]);
        at += sizes[which];
        return bytes;
    };
    try {
        apply_byte_runs(next(record_runs), std::as_writable_bytes(std::span(&contact, 1)));
        contact.phone_info = unpacked_array<contact_phone>(next(phone_runs), contact.phone_count);
        contact.email_info = unpacked_array<contact_email>(next(email_runs), contact.email_count);
        contact.address_info = unpacked_array<contact_address>(next(address_runs), contact.postal_count);
        contact.note = unpacked_note(next(note_bytes));
    } catch (...) {
        release_blocks(contact);
        contact = {};
        throw;
    }
}

} // namespace pim_store
