#include "common/database_file.h"

#include <errno.h>
#include <fcntl.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <unistd.h>

#include <string>
#include <system_error>

#include "common/connection.h"
#include "common/store_error.h"

namespace fs = std::filesystem;

namespace pim_store {

static constexpr int patience = static_cast<int>(lock_patience.count());

static void throw_system_error()
{
    throw std::system_error(errno, std::generic_category());
}

static void set_version(SQLite::Database& database, int32_t version)
{
    database.exec("PRAGMA user_version = " + std::to_string(version));
}

static void sync_folder(const fs::path& folder)
{
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    fsync(descriptor);
    close(descriptor);
}

// Removes a file under a temporary name, with what SQLite keeps beside it, at the end of the scope.
class temporary_file {
public:
    // Makes an empty one beside `target`, for this user alone.
    explicit temporary_file(const fs::path& target) : path_(target.string() + ".new-XXXXXX")
    {
        const int descriptor = mkostemp(path_.data(), O_CLOEXEC);
        if (descriptor < 0) throw_system_error();
        close(descriptor);
    }
    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;
    ~temporary_file()
    {
        for (const char* suffix : {"", "-journal", "-wal", "-shm"}) unlink((path_ + suffix).c_str());
    }

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

static void write_schema(const std::string& file, const database_layout& layout)
{
    SQLite::Database database(file, SQLite::OPEN_READWRITE, patience);
    try {
        SQLite::Transaction creation(database);
        database.exec("PRAGMA application_id = " + std::to_string(layout.application_id));
        database.exec(layout.schema);
        set_version(database, layout.version());
        creation.commit();
        database.exec("PRAGMA journal_mode = WAL");
    } catch (const SQLite::Exception& exception) {
        throw failure_of(database, exception);
    }
}

// The file is built under another name and appears complete: whoever opens it, and whoever is killed on the way, never
// meets half a store. Of two processes that make it at once, one finds the other's.
static void create(const fs::path& file, const database_layout& layout)
{
    const temporary_file built(file);
    write_schema(built.path(), layout);
    if (link(built.path().c_str(), file.c_str()) != 0 && errno != EEXIST) throw_system_error();
    sync_folder(file.parent_path());
}

// Reads the file's version, on a connection that cannot write to it.
static int32_t recognise(const fs::path& file, const database_layout& layout)
{
    if (!fs::is_regular_file(file)) throw store_failure(store_error::foreign);
    SQLite::Database database(file.c_str(), SQLite::OPEN_READONLY, patience);
    try {
        sqlite3_db_config(database.getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        SQLite::Transaction at_one_time(database);
        if (database.execAndGet("PRAGMA application_id").getInt() != layout.application_id)
            throw store_failure(store_error::foreign);
        const int32_t version = database.execAndGet("PRAGMA user_version").getInt();
        if (version > layout.version()) throw store_failure(store_error::newer_schema);
        if (version < 1) throw store_failure(store_error::foreign);
        return version;
    } catch (const SQLite::Exception& exception) {
        throw failure_of(database, exception);
    }
}

static void upgrade(const fs::path& file, const database_layout& layout)
{
    SQLite::Database database(file.c_str(), SQLite::OPEN_READWRITE, patience);
    try {
        SQLite::Transaction upgrading(database, SQLite::TransactionBehavior::IMMEDIATE);
        // Another process may have upgraded it meanwhile.
        const int32_t version = database.execAndGet("PRAGMA user_version").getInt();
        for (int32_t from = version; from < layout.version(); ++from)
            database.exec(layout.migrations[static_cast<size_t>(from - 1)]);
        if (version < layout.version()) set_version(database, layout.version());
        upgrading.commit();
    } catch (const SQLite::Exception& exception) {
        throw failure_of(database, exception);
    }
}

void prepare_database(const fs::path& file, const database_layout& layout)
{
    if (!fs::exists(file)) create(file, layout);
    if (access(file.c_str(), R_OK | W_OK) != 0 || access(file.parent_path().c_str(), W_OK) != 0) throw_system_error();
    if (recognise(file, layout) < layout.version()) upgrade(file, layout);
}

} // namespace pim_store
