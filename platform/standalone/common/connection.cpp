#include "common/connection.h"

#include <sqlite3.h>

#include <charconv>
#include <thread>

namespace pim_store {

// The errno that a file of SQLite's keeps of its last failing system call, 0 without one.
static int last_system_error(sqlite3* database, int which_file)
{
    sqlite3_file* file = nullptr;
    int system_error = 0;
    if (sqlite3_file_control(database, "main", which_file, &file) == SQLITE_OK && file && file->pMethods)
        file->pMethods->xFileControl(file, SQLITE_FCNTL_LAST_ERRNO, &system_error);
    return system_error;
}

store_failure failure_of(const SQLite::Database& database, const SQLite::Exception& exception)
{
    // Commits go to the log first, so that it is what meets a full disk.
    int system_error = last_system_error(database.getHandle(), SQLITE_FCNTL_JOURNAL_POINTER);
    if (system_error == 0) system_error = last_system_error(database.getHandle(), SQLITE_FCNTL_FILE_POINTER);
    if (system_error == 0) system_error = sqlite3_system_errno(database.getHandle());
    return failure_of(exception.getExtendedErrorCode(), system_error);
}

statement::~statement()
{
    prepared_.tryReset();
    try {
        prepared_.clearBindings();
    } catch (const SQLite::Exception&) {
        // Every run binds all its parameters anew.
    }
}

std::string_view statement::text(int column) const
{
    const SQLite::Column value = prepared_.getColumn(column);
    const char* text = value.getText();
    return {text, static_cast<size_t>(value.getBytes())};
}

byte_view statement::bytes(int column) const
{
    const SQLite::Column value = prepared_.getColumn(column);
    const auto* bytes = static_cast<const std::byte*>(value.getBlob());
    return {bytes, static_cast<size_t>(value.getBytes())};
}

void statement::bind_one(int position, byte_view bytes)
{
    if (bytes.empty())
        prepared_.bind(position);
    else
        prepared_.bind(position, bytes.data(), static_cast<int>(bytes.size()));
}

connection::connection(const std::filesystem::path& file) : database_(file.c_str(), SQLite::OPEN_READWRITE)
{
    try {
        database_.check(sqlite3_busy_handler(handle(), wait_for_lock, this));
        database_.exec("PRAGMA journal_mode = WAL");
        database_.exec("PRAGMA synchronous = FULL");
        database_.exec("PRAGMA foreign_keys = ON");
    } catch (const SQLite::Exception& exception) {
        throw failure(exception);
    }
}

// SQLite's own busy wait sleeps ever longer, up to 100 ms, and then hardly ever meets the moment in which a process
// that writes without pause holds no lock.
int connection::wait_for_lock(void* self, int tries)
{
    auto& waiting = *static_cast<connection*>(self);
    const auto now = std::chrono::steady_clock::now();
    if (tries == 0) waiting.waiting_since_ = now;
    if (now - waiting.waiting_since_ >= lock_patience) return 0;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return 1;
}

statement connection::prepare(const char* sql)
{
    auto found = statements_.find(sql);
    if (found == statements_.end()) found = statements_.emplace(sql, SQLite::Statement(database_, sql)).first;
    return statement(found->second);
}

int32_t connection::number(const char* sql)
{
    statement query = prepare(sql);
    return query.step() ? query.integer(0) : 0;
}

void connection::require_whole_file()
{
    statement check = prepare("PRAGMA quick_check(1)");
    const std::string_view verdict = check.step() ? check.text(0) : "";
    if (verdict == "ok") return;
    // A page that could not be read is told among the damages.
    constexpr std::string_view unread = "unable to get the page. error code=";
    int code = SQLITE_CORRUPT;
    if (const size_t at = verdict.find(unread); at != std::string_view::npos)
        std::from_chars(verdict.data() + at + unread.size(), verdict.data() + verdict.size(), code);
    throw failure_of(code, 0);
}

transaction::transaction(connection& over, purpose what_for, int32_t version) : connection_(over)
{
    connection_.prepare(what_for == purpose::writing ? "BEGIN IMMEDIATE" : "BEGIN").run();
    try {
        // Also what makes a reading transaction begin: BEGIN alone waits for the first statement.
        if (connection_.number("PRAGMA user_version") != version) throw store_failure(store_error::newer_schema);
    } catch (...) {
        roll_back();
        throw;
    }
}

transaction::~transaction()
{
    roll_back();
}

void transaction::roll_back() noexcept
{
    // Committed, or ended by SQLite itself when it met a full disk or the like.
    if (sqlite3_get_autocommit(connection_.handle())) return;
    try {
        connection_.prepare("ROLLBACK").run();
    } catch (...) {
        // Nothing was committed, and the next BEGIN on this connection reports what is wrong with it.
    }
}

void transaction::commit()
{
    connection_.prepare("COMMIT").run();
}

} // namespace pim_store
