// packed_contact.h: a contact record as it waits in memory.
#pragma once

#include <contact_db_service.h>

#include <cstddef>
#include <memory>

namespace pim_store {

// The bytes of a record and of the blocks behind its pointers that are not zero, in one block: a contact with some
// phones, e-mails and an address takes about half a kilobyte instead of eight.
class packed_contact {
public:
    packed_contact() = default;
    explicit packed_contact(const contact_record& contact);

    explicit operator bool() const { return block_ != nullptr; }

    // Fills a zeroed record and the blocks that come with it. Fails with NO_MEMORY; the record is zeroed then.
    void unpack(contact_record& contact) const;

    // Bytes that the block takes.
    size_t size() const;

private:
    std::unique_ptr<std::byte[]> block_;
};

} // namespace pim_store
