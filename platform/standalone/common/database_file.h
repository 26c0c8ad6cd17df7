// database_file.h: making, recognising and upgrading the file of a store.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

namespace pim_store {

// What makes a file the file of one store.
struct database_layout {
    const char* file_name;
    int32_t application_id;
    const char* schema;                      // The tables of the newest version, in an empty file.
    std::span<const char* const> migrations; // Element i leads from version i + 1 to version i + 2.

    int32_t version() const { return 1 + static_cast<int32_t>(migrations.size()); }
};

// Leaves behind a file of the newest version at `file`, which it makes, whole and at once, when there is none.
// Fails with FOREIGN, NEWER_SCHEMA or CORRUPT on a file that is not of that kind, before anything is written to it, and
// with READ_ONLY, DISK_FULL, LOCKED or IO.
void prepare_database(const std::filesystem::path& file, const database_layout& layout);

} // namespace pim_store
