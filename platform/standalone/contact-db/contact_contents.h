// contact_contents.h: what a process keeps of address.db3 in memory.
#pragma once

#include <contact_db_service.h>

#include <array>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "common/connection.h"
#include "contact-db/packed_contact.h"

namespace pim_store {

// The key indexes of the groups that a contact's membership bytes name, one bit each.
using group_set = uint32_t;

inline constexpr group_set group_bit(int32_t key_index)
{
    return group_set{1} << key_index;
}

group_set groups_of(const contact_record& contact);

class contact_contents {
public:
    // ---- What snapshot_store asks for
    using batch = std::vector<std::pair<int32_t, packed_contact>>;

    void load(connection& file);
    batch fetch(connection& file, int32_t record_index) const;
    void adopt(batch&& fetched);

    // ---- Contacts
    const std::vector<int32_t>& indices() const { return indices_; }
    bool has(int32_t record_index) const;

    // The one after the limit when all are taken.
    int32_t lowest_free_index() const;

    // The packed record of a contact that is there; false while it is not loaded.
    const packed_contact& record(int32_t record_index) const { return slot(record_index).packed; }

    // Puts in a new contact, or replaces one that is there.
    void put(int32_t record_index, group_set groups, packed_contact&& packed);
    void remove(int32_t record_index);

    // ---- Groups
    int32_t group_count() const;
    bool has_group(int32_t key_index) const { return group_at(key_index) != nullptr; }

    // Null when there is none.
    const contact_group_record* group_at(int32_t key_index) const;

    // The record indexes that bear the key index in their membership, ascending.
    const std::vector<int32_t>& members(int32_t key_index) const { return members_[static_cast<size_t>(key_index)]; }
    bool belongs_to_a_group(int32_t record_index) const { return (slot(record_index).groups & present_groups_) != 0; }

    // Puts in a group, or replaces it.
    void put_group(const contact_group_record& group);
    void remove_group(int32_t key_index);

    // Forgets who bears this key index in its membership.
    void clear_members(int32_t key_index);

private:
    struct contact_slot {
        bool present = false;
        group_set groups = 0;
        packed_contact packed;
    };

    const contact_slot& slot(int32_t record_index) const { return slots_[static_cast<size_t>(record_index)]; }
    contact_slot& slot(int32_t record_index) { return slots_[static_cast<size_t>(record_index)]; }
    void set_groups(int32_t record_index, group_set groups);

    std::vector<int32_t> indices_;                                                        // Ascending.
    std::vector<contact_slot> slots_ = std::vector<contact_slot>(CONTACT_RECORD_MAX + 1); // By record index.
    std::array<std::optional<contact_group_record>, CONTACT_GROUP_MAX> groups_;           // By key index.
    group_set present_groups_ = 0;
    std::array<std::vector<int32_t>, CONTACT_GROUP_MAX> members_; // By key index.
};

} // namespace pim_store
