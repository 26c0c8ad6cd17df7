#include "common/store_error.h"

#include <contact_db_service.h>
#include <errno.h>
#include <org_db_service.h>
#include <sqlite3.h>

#include <new>
#include <system_error>

namespace pim_store {

template <typename... Codes>
static constexpr bool same_code(store_error error, Codes... codes)
{
    return ((static_cast<int>(error) == static_cast<int>(codes)) && ...);
}
static_assert(same_code(store_error::full, CONTACT_ERROR_FULL, ORG_ERR_FULL));
static_assert(same_code(store_error::invalid_argument, CONTACT_ERROR_INVALID_ARGUMENT, ORG_ERR_INVALID_ARGUMENT));
static_assert(same_code(store_error::no_memory, CONTACT_ERROR_NO_MEMORY, ORG_ERR_NO_MEMORY));
static_assert(same_code(store_error::folder, CONTACT_ERROR_FOLDER, ORG_ERR_FOLDER));
static_assert(same_code(store_error::read_only, CONTACT_ERROR_READ_ONLY, ORG_ERR_READ_ONLY));
static_assert(same_code(store_error::disk_full, CONTACT_ERROR_DISK_FULL, ORG_ERR_DISK_FULL));
static_assert(same_code(store_error::locked, CONTACT_ERROR_LOCKED, ORG_ERR_LOCKED));
static_assert(same_code(store_error::corrupt, CONTACT_ERROR_CORRUPT, ORG_ERR_CORRUPT));
static_assert(same_code(store_error::foreign, CONTACT_ERROR_FOREIGN, ORG_ERR_FOREIGN));
static_assert(same_code(store_error::newer_schema, CONTACT_ERROR_NEWER_SCHEMA, ORG_ERR_NEWER_SCHEMA));
static_assert(same_code(store_error::io, CONTACT_ERROR_IO, ORG_ERR_IO));

static store_error error_of_system(int system_error)
{
    switch (system_error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return store_error::disk_full;
    case EACCES:
    case EPERM:
    case EROFS: return store_error::read_only;
    case ENOMEM: return store_error::no_memory;
    default: return store_error::io;
    }
}

store_failure failure_of(int sqlite_result, int system_error)
{
    if (sqlite_result == SQLITE_IOERR_NOMEM) return store_failure(store_error::no_memory);
    switch (sqlite_result & 0xff) {
    case SQLITE_NOMEM: return store_failure(store_error::no_memory);
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL: return store_failure(store_error::locked);
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH: return store_failure(store_error::read_only);
    case SQLITE_FULL: return store_failure(store_error::disk_full);
    case SQLITE_NOTADB: return store_failure(store_error::foreign);
    case SQLITE_TOOBIG: return store_failure(store_error::invalid_argument);
    // A file of the right kind and version whose tables are not what that version has.
    case SQLITE_CORRUPT:
    case SQLITE_ERROR:
    case SQLITE_CONSTRAINT:
    case SQLITE_MISMATCH: return store_failure(store_error::corrupt);
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN: return store_failure(error_of_system(system_error));
    default: return store_failure(store_error::io);
    }
}

int code_of_current_exception() noexcept
{
    try {
        throw;
    } catch (const store_failure& failure) {
        return failure.code();
    } catch (const SQLite::Exception& failure) {
        return failure_of(failure.getExtendedErrorCode(), 0).code();
    } catch (const std::bad_alloc&) {
        return static_cast<int>(store_error::no_memory);
    } catch (const std::system_error& failure) {
        return static_cast<int>(error_of_system(failure.code().value()));
    } catch (...) {
        return static_cast<int>(store_error::io);
    }
}

} // namespace pim_store
