// raw_organizer.h: events and to-dos in a file like the store's, with SQLite called by hand.
#ifndef JSR75_PIM_BENCHMARKS_RAW_ORGANIZER_H
#define JSR75_PIM_BENCHMARKS_RAW_ORGANIZER_H

#include <cstdint>
#include <filesystem>
#include <span>

#include "org_db_service.h"
#include "raw_sqlite.h"

// What the samples leave empty, the column `rest`, is written as NULL and demanded to be so.
class raw_organizer {
public:
    explicit raw_organizer(const std::filesystem::path& file);

    // Makes the file hold the samples 1 to `count`, each under its number.
    void fill(int count);

    // Each durable once it returns.
    int32_t add(int32_t type, const org_full_record& item);
    void update(int32_t index, const org_full_record& item);
    void remove(int32_t index);

    // Fills a record and all its text buffers.
    void get(int32_t index, org_full_record& item);
    int32_t list(int32_t type, std::span<int32_t> indices);

private:
    raw_database database_;
    raw_statement begin_, commit_, insert_, update_, remove_, get_, list_;
};

#endif
