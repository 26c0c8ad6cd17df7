// connection.h: an SQLite connection with its prepared statements.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "common/byte_runs.h"
#include "common/store_error.h"

namespace pim_store {

// How long a call waits for another process before it fails with LOCKED.
inline constexpr std::chrono::milliseconds lock_patience{5000};

// The failure behind an exception of this database.
store_failure failure_of(const SQLite::Database& database, const SQLite::Exception& exception);

// One run of a prepared statement; ends, and unbinds everything, with the scope.
class statement {
public:
    explicit statement(SQLite::Statement& prepared) : prepared_(prepared) {}
    statement(const statement&) = delete;
    statement& operator=(const statement&) = delete;
    ~statement();

    // Binds the next parameters in order, ?1 first. A byte_view without bytes is bound as NULL.
    template <typename... Values>
    statement& bind(const Values&... values)
    {
        (bind_one(++bound_, values), ...);
        return *this;
    }

    // Steps to the next row; false when there is none.
    bool step() { return prepared_.executeStep(); }

    // Runs a statement without rows; returns how many rows it changed.
    int run() { return prepared_.exec(); }

    // Columns of the current row, counted from 0. Texts and bytes last until the next step; NULL reads as 0 or empty.
    int32_t integer(int column) const { return prepared_.getColumn(column).getInt(); }
    std::string_view text(int column) const;
    byte_view bytes(int column) const;
    bool is_null(int column) const { return prepared_.isColumnNull(column); }

private:
    void bind_one(int position, int32_t value) { prepared_.bind(position, value); }
    void bind_one(int position, std::nullopt_t) { prepared_.bind(position); }
    void bind_one(int position, std::string_view text) { prepared_.bind(position, std::string(text)); }
    void bind_one(int position, byte_view bytes);

    SQLite::Statement& prepared_;
    int bound_ = 0;
};

// A connection belongs to one thread at a time.
class connection {
public:
    // Opens an existing store file for reading and writing.
    explicit connection(const std::filesystem::path& file);
    connection(const connection&) = delete;
    connection& operator=(const connection&) = delete;

    // The statement for `sql`, a constant, which is prepared at its first use.
    statement prepare(const char* sql);

    // The first column of the first row of `sql`, a constant; 0 when there is no row.
    int32_t number(const char* sql);

    // Looks the file through. Fails with CORRUPT when it is damaged, and with IO where it cannot be read.
    void require_whole_file();

    store_failure failure(const SQLite::Exception& exception) const { return failure_of(database_, exception); }

    sqlite3* handle() const { return database_.getHandle(); }

private:
    static int wait_for_lock(void* self, int tries);

    SQLite::Database database_;
    std::chrono::steady_clock::time_point waiting_since_;
    std::unordered_map<const char*, SQLite::Statement> statements_;
};

// Undone at the end of the scope unless committed.
class transaction {
public:
    enum class purpose { reading, writing };

    // A reading transaction sees from here on what had been committed when the constructor returned. A writing one
    // keeps all others from writing; it waits for one that is under way, at most lock_patience. Fails with NEWER_SCHEMA
    // when the file has meanwhile got a version other than `version`.
    transaction(connection& over, purpose what_for, int32_t version);
    transaction(const transaction&) = delete;
    transaction& operator=(const transaction&) = delete;
    ~transaction();

    void commit();

private:
    void roll_back() noexcept;

    connection& connection_;
};

} // namespace pim_store
