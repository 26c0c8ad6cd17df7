#include "contact-db/contact_contents.h"

#include <algorithm>
#include <bit>

#include "common/store_error.h"
#include "contact-db/contact_rows.h"

namespace pim_store {

// How many neighbours in the list are read along with a record: few enough that the first one comes at once, enough
// that a walk over all makes few queries.
static constexpr size_t batch_size = 64;

group_set groups_of(const contact_record& contact)
{
    group_set groups = 0;
    for (int32_t key_index = 0; key_index < CONTACT_GROUP_MAX; ++key_index)
        if (contact.membership[key_index]) groups |= group_bit(key_index);
    return groups;
}

static bool is_record_index(int32_t index)
{
    return index >= 1 && index <= CONTACT_RECORD_MAX;
}
static bool is_key_index(int32_t index)
{
    return index >= 0 && index < CONTACT_GROUP_MAX;
}

void contact_contents::load(connection& file)
{
    statement contacts = file.prepare("SELECT record_index FROM contact ORDER BY record_index");
    while (contacts.step()) {
        const int32_t index = contacts.integer(0);
        if (!is_record_index(index)) throw store_failure(store_error::corrupt);
        indices_.push_back(index);
        slot(index).present = true;
    }
    statement memberships = file.prepare("SELECT record_index, key_index FROM membership ORDER BY record_index");
    while (memberships.step()) {
        const int32_t index = memberships.integer(0), key_index = memberships.integer(1);
        if (!has(index) || !is_key_index(key_index)) continue;
        slot(index).groups |= group_bit(key_index);
        members_[static_cast<size_t>(key_index)].push_back(index);
    }
    statement groups = file.prepare("SELECT key_index, name, rest FROM contact_group ORDER BY key_index");
    while (groups.step()) {
        const int32_t key_index = groups.integer(0);
        if (!is_key_index(key_index)) throw store_failure(store_error::corrupt);
        put_group(group_of_row(key_index, groups.text(1), groups.bytes(2)));
    }
}

contact_contents::batch contact_contents::fetch(connection& file, int32_t record_index) const
{
    const auto at = static_cast<size_t>(std::ranges::lower_bound(indices_, record_index) - indices_.begin());
    const size_t first = at / batch_size * batch_size;
    const size_t last = std::min(first + batch_size, indices_.size()) - 1;
    batch fetched = contacts_between(file, indices_[first], indices_[last]);
    const auto is_wanted = [record_index](const auto& contact) { return contact.first == record_index; };
    if (std::ranges::none_of(fetched, is_wanted)) throw store_failure(store_error::corrupt);
    return fetched;
}

void contact_contents::adopt(batch&& fetched)
{
    for (auto& [record_index, packed] : fetched) slot(record_index).packed = std::move(packed);
}

bool contact_contents::has(int32_t record_index) const
{
    return is_record_index(record_index) && slot(record_index).present;
}

int32_t contact_contents::lowest_free_index() const
{
    // Before the first gap each index stands in its own place.
    const auto is_in_place = [first = indices_.data()](const int32_t& index) { return index == &index - first + 1; };
    return static_cast<int32_t>(std::ranges::partition_point(indices_, is_in_place) - indices_.begin()) + 1;
}

static void insert_sorted(std::vector<int32_t>& indices, int32_t index)
{
    indices.insert(std::ranges::lower_bound(indices, index), index);
}

static void erase_sorted(std::vector<int32_t>& indices, int32_t index)
{
    indices.erase(std::ranges::lower_bound(indices, index));
}

void contact_contents::put(int32_t record_index, group_set groups, packed_contact&& packed)
{
    contact_slot& target = slot(record_index);
    if (!target.present) insert_sorted(indices_, record_index);
    target.present = true;
    target.packed = std::move(packed);
    set_groups(record_index, groups);
}

void contact_contents::remove(int32_t record_index)
{
    set_groups(record_index, 0);
    erase_sorted(indices_, record_index);
    slot(record_index) = {};
}

void contact_contents::set_groups(int32_t record_index, group_set groups)
{
    const group_set before = std::exchange(slot(record_index).groups, groups);
    for (int32_t key_index = 0; key_index < CONTACT_GROUP_MAX; ++key_index) {
        const group_set bit = group_bit(key_index);
        if (groups & ~before & bit) insert_sorted(members_[static_cast<size_t>(key_index)], record_index);
        if (before & ~groups & bit) erase_sorted(members_[static_cast<size_t>(key_index)], record_index);
    }
}

int32_t contact_contents::group_count() const
{
    return std::popcount(present_groups_);
}

const contact_group_record* contact_contents::group_at(int32_t key_index) const
{
    if (!is_key_index(key_index)) return nullptr;
    const auto& group = groups_[static_cast<size_t>(key_index)];
    return group ? &*group : nullptr;
}

void contact_contents::put_group(const contact_group_record& group)
{
    const int32_t key_index = group.group_key.index;
    groups_[static_cast<size_t>(key_index)] = group;
    present_groups_ |= group_bit(key_index);
}

void contact_contents::remove_group(int32_t key_index)
{
    groups_[static_cast<size_t>(key_index)].reset();
    present_groups_ &= ~group_bit(key_index);
}

void contact_contents::clear_members(int32_t key_index)
{
    for (const int32_t member : std::exchange(members_[static_cast<size_t>(key_index)], {})) {
        slot(member).groups &= ~group_bit(key_index);
        slot(member).packed = {}; // Its membership bytes are those of before; the next reader loads it again.
    }
}

} // namespace pim_store
