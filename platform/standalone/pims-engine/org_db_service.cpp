// org_db_service.cpp: the C functions of org_db_service.h, which documents them.

#include <org_db_service.h>

#include <algorithm>

#include "common/snapshot_store.h"
#include "pims-engine/organizer_contents.h"
#include "pims-engine/organizer_record.h"
#include "pims-engine/organizer_rows.h"
#include "pims-engine/organizer_schema.h"

#pragma GCC visibility push(default)

using namespace pim_store;

static auto& store()
{
    return process_store<organizer_contents>(organizer_layout);
}

static store_failure not_found()
{
    return store_failure(ORG_ERR_RECORD_NOT_FOUND);
}

// The type that fetches by index on this thread are limited to.
static thread_local int32_t scope = any_type;

// ---- Connection -----------------------------------------------------------------------------------------------------

int org_db_service_connect_database(int* error)
{
    scope = any_type;
    return guarded(error, [] { store().connect(); });
}

// A thread's connection stays open for its next call, whoever else may still count on it.
int org_db_service_disconnect_database(int*)
{
    scope = any_type;
    return 1;
}

// ---- Records of the caller ------------------------------------------------------------------------------------------

int org_db_service_init_full_record(org_full_record* record, int* error)
{
    return guarded(error, [&] {
        require(record);
        set_image(*record, {});
    });
}

int org_db_service_free_full_record(org_full_record* record, int* error)
{
    return guarded(error, [&] {
        require(record);
        release_texts(*record);
    });
}

// ---- Lists ----------------------------------------------------------------------------------------------------------

// Looks at the indexes of one type and begins its scope.
template <typename Look>
static void look_up_typed(int type, Look&& look)
{
    require(is_record_type(type));
    store().read([&](const organizer_contents& contents) {
        look(contents.indices(type));
        return answered;
    });
    scope = type;
}

int org_db_service_get_record_count(int, int type, int* count, int* error)
{
    return guarded(error, [&] {
        require(count);
        look_up_typed(type, [&](const auto& indices_of_type) { *count = static_cast<int>(indices_of_type.size()); });
    });
}

int org_db_service_get_records_id(int, int type, int count, int, int* indices, int* error)
{
    return guarded(error, [&] {
        require(count >= 0 && (indices || count == 0));
        look_up_typed(type, [&](const auto& indices_of_type) {
            std::copy_n(indices_of_type.begin(), std::min(indices_of_type.size(), static_cast<size_t>(count)), indices);
        });
    });
}

// ---- Records of the store -------------------------------------------------------------------------------------------

int org_db_service_get_record_full_field_by_index(int index, org_full_record* record, int* error)
{
    bool found = false;
    const int went_through = guarded(error, [&] {
        require(record);
        store().read([&](const organizer_contents& contents) {
            found = contents.has(index, scope);
            if (!found) return answered;
            const kept_record& kept = contents.record(index);
            if (!kept) return index;
            kept.copy_to(*record);
            return answered;
        });
    });
    // Walks by position meet more gaps than records, so that a gap must not cost an exception.
    if (went_through && !found && error) *error = ORG_ERR_RECORD_NOT_FOUND;
    return went_through && found;
}

int org_db_service_add_record_full_field(int type, org_full_record* record, int* index, int* error)
{
    return guarded(error, [&] {
        require(record && index && is_record_type(type));
        const record_texts texts = texts_of(*record);
        org_full_record added = *record;
        store().write([&](connection& file) {
            const auto lowest_free = [](const organizer_contents& contents) { return contents.lowest_free_index(); };
            added.index = next_record_index(file, store().recall(lowest_free));
            insert_record(file, type, added, texts);
            return [type, at = added.index, kept = kept_record(added, texts)](organizer_contents& contents) mutable {
                contents.add(at, type, std::move(kept));
            };
        });
        *index = added.index;
    });
}

int org_db_service_update_record_full_field(int index, org_full_record* record, int* error)
{
    return guarded(error, [&] {
        require(record);
        const record_texts texts = texts_of(*record);
        org_full_record updated = *record;
        updated.index = index;
        store().write([&](connection& file) {
            if (!replace_record(file, updated, texts)) throw not_found();
            return [index, kept = kept_record(updated, texts)](organizer_contents& contents) mutable {
                contents.replace(index, std::move(kept));
            };
        });
    });
}

int org_db_service_delete_record(int index, int* error)
{
    return guarded(error, [&] {
        store().write([&](connection& file) {
            if (file.prepare("DELETE FROM record WHERE record_index = ?1").bind(index).run() == 0) throw not_found();
            return [index](organizer_contents& contents) { contents.remove(index); };
        });
    });
}

#pragma GCC visibility pop
