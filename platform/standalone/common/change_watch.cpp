#include "common/change_watch.h"

#include <sqlite3.h>

namespace pim_store {

// The start of the WAL index, null where the file system layer has none.
static uint32_t* wal_index_header(sqlite3* database)
{
    constexpr int region_size = 32768; // The unit SQLite maps its WAL index in.
    sqlite3_file* file = nullptr;
    if (sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK || !file) return nullptr;
    if (!file->pMethods || file->pMethods->iVersion < 2 || !file->pMethods->xShmMap) return nullptr;
    void volatile* region = nullptr;
    if (file->pMethods->xShmMap(file, 0, region_size, 0, &region) != SQLITE_OK) return nullptr;
    return static_cast<uint32_t*>(const_cast<void*>(region));
}

change_watch::change_watch(const std::filesystem::path& file, method preferred) : connection_(file)
{
    connection_.number("SELECT count(*) FROM sqlite_schema"); // Lets SQLite map its shared memory.
    if (preferred == method::header) header_ = wal_index_header(connection_.handle());
}

} // namespace pim_store
