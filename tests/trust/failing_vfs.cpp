#include "failing_vfs.h"

#include <errno.h>
#include <sqlite3.h>

#include <map>
#include <optional>

namespace {

// What SQLite knows as the file; the real one lies behind it. Eight bytes is how SQLite aligns its files.
struct alignas(8) shim_file {
    sqlite3_file base;

    sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};

sqlite3_vfs* real_vfs = nullptr;
std::optional<file_fault> armed;
std::map<file_call, int> calls;
int failures = 0;

bool fails(file_call call)
{
    const int nth = ++calls[call];
    if (!armed || armed->call != call || nth < armed->nth || (nth > armed->nth && !armed->lasts)) return false;
    ++failures;
    errno = armed->system_error;
    return true;
}

sqlite3_file* real(sqlite3_file* file)
{
    return static_cast<shim_file*>(static_cast<void*>(file))->real(); // Where SQLite puts files is aligned.
}

// ---- Calls on a file -----------------------------------------------------------------------------------------------

template <auto method, typename Result, typename... Arguments>
Result pass(sqlite3_file* file, Arguments... arguments)
{
    return (real(file)->pMethods->*method)(real(file), arguments...);
}

template <auto method, file_call call, typename... Arguments>
int pass_or_fail(sqlite3_file* file, Arguments... arguments)
{
    return fails(call) ? armed->result : pass<method, int>(file, arguments...);
}

// A disk that is full, or breaks, has often taken a part.
int write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 offset)
{
    if (!fails(file_call::write)) return pass<&sqlite3_io_methods::xWrite, int>(file, bytes, size, offset);
    pass<&sqlite3_io_methods::xWrite, int>(file, bytes, size / 2, offset);
    return armed->result;
}

// Nothing is waited for: processes die in these tests, the machine does not.
int sync(sqlite3_file*, int)
{
    return fails(file_call::sync) ? armed->result : SQLITE_OK;
}

int lock_index(sqlite3_file* file, int offset, int count, int flags)
{
    if ((flags & SQLITE_SHM_LOCK) && fails(file_call::lock_index)) return armed->result;
    return pass<&sqlite3_io_methods::xShmLock, int>(file, offset, count, flags);
}

using io = sqlite3_io_methods;
const sqlite3_io_methods methods = {
    .iVersion = 2, // Without memory-mapped reads, which no call could make fail.
    .xClose = pass<&io::xClose>,
    .xRead = pass_or_fail<&io::xRead, file_call::read>,
    .xWrite = write,
    .xTruncate = pass_or_fail<&io::xTruncate, file_call::truncate>,
    .xSync = sync,
    .xFileSize = pass_or_fail<&io::xFileSize, file_call::size>,
    .xLock = pass_or_fail<&io::xLock, file_call::lock>,
    .xUnlock = pass<&io::xUnlock>,
    .xCheckReservedLock = pass<&io::xCheckReservedLock>,
    .xFileControl = pass<&io::xFileControl>,
    .xSectorSize = pass<&io::xSectorSize>,
    .xDeviceCharacteristics = pass<&io::xDeviceCharacteristics>,
    .xShmMap = pass_or_fail<&io::xShmMap, file_call::map_index>,
    .xShmLock = lock_index,
    .xShmBarrier = pass<&io::xShmBarrier>,
    .xShmUnmap = pass<&io::xShmUnmap>,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

// ---- Calls on a file system ----------------------------------------------------------------------------------------

int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* flags_then)
{
    file->pMethods = nullptr;
    if (fails(file_call::open)) return armed->result;
    real(file)->pMethods = nullptr;
    const int result = real_vfs->xOpen(real_vfs, name, real(file), flags, flags_then);
    if (real(file)->pMethods) file->pMethods = &methods;
    return result;
}

int remove(sqlite3_vfs*, const char* name, int sync_folder)
{
    return fails(file_call::remove) ? armed->result : real_vfs->xDelete(real_vfs, name, sync_folder);
}

int access(sqlite3_vfs*, const char* name, int flags, int* answer)
{
    return fails(file_call::access) ? armed->result : real_vfs->xAccess(real_vfs, name, flags, answer);
}

} // namespace

namespace failing_vfs {

void install()
{
    if (real_vfs) return;
    real_vfs = sqlite3_vfs_find(nullptr);
    static sqlite3_vfs shim = *real_vfs;
    shim.zName = "failing";
    shim.pNext = nullptr;
    shim.szOsFile += static_cast<int>(sizeof(shim_file));
    shim.xOpen = open;
    shim.xDelete = remove;
    shim.xAccess = access;
    sqlite3_vfs_register(&shim, 1);
}

void arm(const file_fault& fault)
{
    start_counting();
    armed = fault;
    failures = 0;
}

void disarm()
{
    armed.reset();
}

int injected()
{
    return failures;
}

void start_counting()
{
    calls.clear();
}

int calls_of(file_call call)
{
    return calls[call];
}

} // namespace failing_vfs
