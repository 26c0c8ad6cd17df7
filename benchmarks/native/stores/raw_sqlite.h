// raw_sqlite.h: SQLite's C functions, as a program calls them that keeps its statements prepared.
#ifndef JSR75_PIM_BENCHMARKS_RAW_SQLITE_H
#define JSR75_PIM_BENCHMARKS_RAW_SQLITE_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string_view>

#include <sqlite3.h>

#include "bench_folder.h"

// Opened as the stores open their files: what a commit promises is the same, and so is the page cache.
class raw_database {
public:
    explicit raw_database(const std::filesystem::path& file)
    {
        demand(sqlite3_open_v2(file.c_str(), &handle_, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK, "open");
        sqlite3_busy_timeout(handle_, 5000);
        run("PRAGMA journal_mode = WAL");
        run("PRAGMA synchronous = FULL");
        run("PRAGMA foreign_keys = ON");
    }
    raw_database(const raw_database&) = delete;
    raw_database& operator=(const raw_database&) = delete;
    ~raw_database() { sqlite3_close(handle_); }

    void run(const char* sql) { demand(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sql); }
    sqlite3* handle() { return handle_; }

private:
    sqlite3* handle_ = nullptr;
};

class raw_statement {
public:
    raw_statement(raw_database& database, const char* sql)
    {
        demand(
            sqlite3_prepare_v3(database.handle(), sql, -1, SQLITE_PREPARE_PERSISTENT, &prepared_, nullptr) == SQLITE_OK,
            sql);
    }
    raw_statement(const raw_statement&) = delete;
    raw_statement& operator=(const raw_statement&) = delete;
    ~raw_statement() { sqlite3_finalize(prepared_); }

    // Binds ?1 and so on, to values that stay where they are until the statement has run.
    template <typename... Values>
    raw_statement& bind(const Values&... values)
    {
        int position = 0;
        (bind_one(++position, values), ...);
        return *this;
    }

    // False, and ready to run again, when there is no further row.
    bool step()
    {
        const int result = sqlite3_step(prepared_);
        if (result == SQLITE_ROW) return true;
        demand(result == SQLITE_DONE, sqlite3_sql(prepared_));
        sqlite3_reset(prepared_);
        return false;
    }
    void reset() { sqlite3_reset(prepared_); }
    void run() { demand(!step(), sqlite3_sql(prepared_)); }

    int32_t integer(int column) { return sqlite3_column_int(prepared_, column); }
    bool is_null(int column) { return sqlite3_column_type(prepared_, column) == SQLITE_NULL; }
    std::string_view text(int column)
    {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(prepared_, column));
        return {text, static_cast<size_t>(sqlite3_column_bytes(prepared_, column))};
    }

    // Copies a text into a zeroed field that it fits.
    template <size_t size>
    void text_into(char (&field)[size], int column)
    {
        const std::string_view found = text(column);
        std::memcpy(field, found.data(), found.size());
    }

private:
    void bind_one(int position, int32_t value) { sqlite3_bind_int(prepared_, position, value); }
    void bind_one(int position, std::nullptr_t) { sqlite3_bind_null(prepared_, position); }
    void bind_one(int position, std::string_view text)
    {
        sqlite3_bind_text(prepared_, position, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    }

    sqlite3_stmt* prepared_ = nullptr;
};

// A durable unit of work.
template <typename Work>
void in_transaction(raw_statement& begin, raw_statement& commit, Work&& work)
{
    begin.run();
    work();
    commit.run();
}

#endif
