// contact_db_service.cpp: the C functions of contact_db_service.h, which documents them.

#include <contact_db_service.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string_view>

#include "common/date_text.h"
#include "common/snapshot_store.h"
#include "contact-db/contact_blocks.h"
#include "contact-db/contact_contents.h"
#include "contact-db/contact_rows.h"
#include "contact-db/contact_schema.h"

#pragma GCC visibility push(default)

using namespace pim_store;

static auto& store()
{
    return process_store<contact_contents>(contact_layout);
}

static store_failure not_found()
{
    return store_failure(CONTACT_ERROR_NOT_FOUND);
}

// Answers from memory with a look that needs no contact's record.
template <typename Look>
static void look_up(Look&& look)
{
    store().read([&](const contact_contents& contents) {
        look(contents);
        return answered;
    });
}

// ---- Connection ----------------------------------------------------------------------------------------------------

int contact_db_service_connect(int* error)
{
    return guarded(error, [] { store().connect(); });
}

// A thread's connection stays open for its next call, whoever else may still count on it.
int contact_db_service_disconnect(int*)
{
    return 1;
}

// ---- Contacts ------------------------------------------------------------------------------------------------------

int contact_db_service_contact_get_count(int, int* count, int* error)
{
    return guarded(error, [&] {
        require(count);
        look_up([&](const contact_contents& contents) { *count = static_cast<int>(contents.indices().size()); });
    });
}

// Copies as many indexes as there is room for and sets *count to their number.
static void copy_out(const std::vector<int32_t>& from, int* indices, int* count)
{
    const size_t copied = std::min(from.size(), static_cast<size_t>(*count));
    std::copy_n(from.begin(), copied, indices);
    *count = static_cast<int>(copied);
}

static void require_room(const void* array, const int* count)
{
    require(count && *count >= 0 && (array || *count == 0));
}

int contact_db_service_contact_get_all_indices(int, int* indices, int* count, int* error)
{
    return guarded(error, [&] {
        require_room(indices, count);
        look_up([&](const contact_contents& contents) {
            if (contents.indices().empty()) throw store_failure(CONTACT_ERROR_NO_RECORDS);
            copy_out(contents.indices(), indices, count);
        });
    });
}

int contact_db_service_contact_get(int, int recindex, int, contact_record* contact, int* error)
{
    return guarded(error, [&] {
        require(contact);
        store().read([&](const contact_contents& contents) {
            if (!contents.has(recindex)) throw not_found();
            const packed_contact& packed = contents.record(recindex);
            if (!packed) return recindex;
            packed.unpack(*contact);
            return answered;
        });
    });
}

int contact_db_service_contact_get_by_index(int reserved, int recindex, int reserved2, contact_record* contact,
                                            int* error)
{
    return contact_db_service_contact_get(reserved, recindex, reserved2, contact, error);
}

int contact_db_service_contact_is_exist(int, int recindex, unsigned char* exists, int* error)
{
    return guarded(error, [&] {
        require(exists);
        look_up([&](const contact_contents& contents) { *exists = contents.has(recindex); });
    });
}

// The record as the store keeps it: under its index, with the time of the save.
static contact_record as_saved(const contact_record& contact, int32_t index)
{
    constexpr int32_t last_second_of_a_minute = 60; // A leap second.
    contact_record saved = contact;
    saved.index = index;
    const int32_t given = contact.save_time.sec;
    saved.save_time = local_time(given > last_second_of_a_minute ? given : time(nullptr));
    return saved;
}

int contact_db_service_contact_add(contact_record* contact, int* error)
{
    return guarded(error, [&] {
        require(contact);
        require_sound_counts(*contact);
        int32_t index = 0;
        store().write([&](connection& file) {
            const auto lowest_free = [](const contact_contents& contents) { return contents.lowest_free_index(); };
            index = next_record_index(file, store().recall(lowest_free));
            const contact_record saved = as_saved(*contact, index);
            insert_contact(file, saved);
            return [index, groups = groups_of(saved), packed = packed_contact(saved)](auto& contents) mutable {
                contents.put(index, groups, std::move(packed));
            };
        });
        contact->index = index;
    });
}

int contact_db_service_contact_update(int, int recindex, contact_record* contact, int* error)
{
    return guarded(error, [&] {
        require(contact);
        require_sound_counts(*contact);
        store().write([&](connection& file) {
            const contact_record saved = as_saved(*contact, recindex);
            if (!replace_contact(file, saved)) throw not_found();
            return [recindex, groups = groups_of(saved), packed = packed_contact(saved)](auto& contents) mutable {
                contents.put(recindex, groups, std::move(packed));
            };
        });
    });
}

int contact_db_service_contact_delete(int, int recindex, int, int, int* error)
{
    return guarded(error, [&] {
        store().write([&](connection& file) {
            if (file.prepare("DELETE FROM contact WHERE record_index = ?1").bind(recindex).run() == 0)
                throw not_found();
            return [recindex](contact_contents& contents) { contents.remove(recindex); };
        });
    });
}

int contact_db_service_contact_free(contact_record* contact)
{
    if (contact) release_blocks(*contact);
    return 1;
}

struct free_indices {
    void operator()(GList* list) const { g_list_free_full(list, free); }
};
using index_list = std::unique_ptr<GList, free_indices>;

static void prepend(index_list& list, int32_t index)
{
    auto* element = static_cast<int32_t*>(malloc(sizeof(int32_t)));
    if (!element) throw std::bad_alloc();
    *element = index;
    list.reset(g_list_prepend(list.release(), element));
}

int contact_db_service_search_contacts_of_no_group(void*, int, const char*, int, GList** list, int* error)
{
    return guarded(error, [&] {
        require(list);
        index_list found;
        look_up([&](const contact_contents& contents) {
            for (auto index = contents.indices().rbegin(); index != contents.indices().rend(); ++index)
                if (!contents.belongs_to_a_group(*index)) prepend(found, *index);
        });
        *list = found.release();
    });
}

// ---- Groups --------------------------------------------------------------------------------------------------------

// Calls `visit(group)` for each group in key order until it returns false.
template <typename Visit>
static void for_each_group(const contact_contents& contents, Visit&& visit)
{
    for (int32_t key_index = 0; key_index < CONTACT_GROUP_MAX; ++key_index)
        if (const contact_group_record* group = contents.group_at(key_index); group && !visit(*group)) return;
}

static bool bears_name(const contact_group_record& group, std::string_view name)
{
    return text_in(group.name) == name;
}

// The group of that name with the lowest key index, null when there is none.
static const contact_group_record* group_named(const contact_contents& contents, std::string_view name)
{
    const contact_group_record* found = nullptr;
    for_each_group(contents, [&](const contact_group_record& group) {
        if (bears_name(group, name)) found = &group;
        return !found;
    });
    return found;
}

int contact_db_service_group_get_count(int, int* count, int* error)
{
    return guarded(error, [&] {
        require(count);
        look_up([&](const contact_contents& contents) { *count = contents.group_count(); });
    });
}

int contact_db_service_group_get_all_records(int, contact_group_record* groups, int count, int* error)
{
    return guarded(error, [&] {
        require_room(groups, &count);
        look_up([&](const contact_contents& contents) {
            int filled = 0;
            for_each_group(contents, [&](const contact_group_record& group) {
                if (filled < count) groups[filled++] = group;
                return filled < count;
            });
        });
    });
}

int contact_db_service_group_get(int, int key_index, contact_group_record* group, int* error)
{
    return guarded(error, [&] {
        require(group);
        look_up([&](const contact_contents& contents) {
            const contact_group_record* found = contents.group_at(key_index);
            if (!found) throw not_found();
            *group = *found;
        });
    });
}

int contact_db_service_group_get_id_by_name(int, const char* name, int* key_index, int* error)
{
    return guarded(error, [&] {
        require(name && key_index);
        look_up([&](const contact_contents& contents) {
            const contact_group_record* found = group_named(contents, name);
            if (!found) throw not_found();
            *key_index = found->group_key.index;
        });
    });
}

int contact_db_service_group_exist_same_name(int, const char* name, unsigned char* exists, int* error)
{
    return guarded(error, [&] {
        require(name && exists);
        look_up([&](const contact_contents& contents) { *exists = group_named(contents, name) != nullptr; });
    });
}

static int32_t lowest_free_key_index(connection& file)
{
    int32_t lowest_free = 0;
    statement taken = file.prepare("SELECT key_index FROM contact_group ORDER BY key_index");
    while (taken.step() && taken.integer(0) == lowest_free) ++lowest_free;
    if (lowest_free >= CONTACT_GROUP_MAX) throw store_failure(store_error::full);
    return lowest_free;
}

static void delete_memberships(connection& file, int32_t key_index)
{
    file.prepare("DELETE FROM membership WHERE key_index = ?1").bind(key_index).run();
}

int contact_db_service_group_add(contact_group_record* group, int* error)
{
    return guarded(error, [&] {
        require(group);
        contact_group_record added = *group;
        store().write([&](connection& file) {
            added.group_key.index = lowest_free_key_index(file);
            // A contact saved with the key index of a group that was gone by then is no member of the new one.
            delete_memberships(file, added.group_key.index);
            file.prepare("INSERT INTO contact_group VALUES (?1, ?2, ?3)")
                .bind(added.group_key.index, text_in(added.name), byte_view(rest_of_group(added)))
                .run();
            return [added](contact_contents& contents) {
                contents.clear_members(added.group_key.index);
                contents.put_group(added);
            };
        });
        group->group_key.index = added.group_key.index;
    });
}

int contact_db_service_group_update(int, int key_index, contact_group_record* group, int* error)
{
    return guarded(error, [&] {
        require(group);
        contact_group_record updated = *group;
        updated.group_key.index = key_index;
        store().write([&](connection& file) {
            const int changed = file.prepare("UPDATE contact_group SET name = ?2, rest = ?3 WHERE key_index = ?1")
                                    .bind(key_index, text_in(updated.name), byte_view(rest_of_group(updated)))
                                    .run();
            if (changed == 0) throw not_found();
            return [updated](contact_contents& contents) { contents.put_group(updated); };
        });
    });
}

int contact_db_service_group_delete(int, int key_index, int* error)
{
    return guarded(error, [&] {
        store().write([&](connection& file) {
            if (file.prepare("DELETE FROM contact_group WHERE key_index = ?1").bind(key_index).run() == 0)
                throw not_found();
            delete_memberships(file, key_index);
            return [key_index](contact_contents& contents) {
                contents.clear_members(key_index);
                contents.remove_group(key_index);
            };
        });
    });
}

int contact_db_service_group_get_members(int, int key_index, int* indices, int* count, int* error)
{
    return guarded(error, [&] {
        require_room(indices, count);
        look_up([&](const contact_contents& contents) {
            if (!contents.has_group(key_index)) throw not_found();
            copy_out(contents.members(key_index), indices, count);
        });
    });
}

int contact_db_service_group_search(int, const char* query, int, int, contact_group_record* groups, int* count,
                                    int* error, int mode)
{
    constexpr int by_condition = 0, by_name = 1;
    return guarded(error, [&] {
        require_room(groups, count);
        require(query && (mode == by_name || (mode == by_condition && query == std::string_view("id >= 0"))));
        look_up([&](const contact_contents& contents) {
            int found = 0;
            for_each_group(contents, [&](const contact_group_record& group) {
                if (found < *count && (mode == by_condition || bears_name(group, query))) groups[found++] = group;
                return found < *count;
            });
            *count = found;
        });
    });
}

#pragma GCC visibility pop
