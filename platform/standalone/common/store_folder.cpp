#include "common/store_folder.h"

#include <errno.h>
#include <pwd.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/store_error.h"

namespace fs = std::filesystem;

namespace pim_store {

static fs::path home_folder()
{
    if (const char* home = getenv("HOME"); home && *home) return home;
    const passwd* user = getpwuid(getuid());
    return user && user->pw_dir ? user->pw_dir : "/";
}

static fs::path folder_from_environment()
{
    if (const char* own = getenv("JSR75_PIM_HOME"); own && *own) return fs::absolute(own);
    const char* data = getenv("XDG_DATA_HOME");
    // The base directory rules have relative paths ignored.
    if (data && fs::path(data).is_absolute()) return fs::path(data) / "jsr75-pim";
    return home_folder() / ".local/share/jsr75-pim";
}

const fs::path& store_folder()
{
    // Never destroyed: threads may still call while the process exits.
    static const fs::path& folder = *new fs::path(folder_from_environment());
    return folder;
}

void make_folder(const fs::path& folder)
{
    if (fs::is_directory(folder)) return;
    if (folder.has_relative_path() && folder.has_parent_path()) make_folder(folder.parent_path());
    if (mkdir(folder.c_str(), 0700) == 0) return;
    const int mkdir_error = errno;
    std::error_code ignored;
    if (mkdir_error == EEXIST && fs::is_directory(folder, ignored)) return; // Another process was faster.
    const bool refused = mkdir_error == EACCES || mkdir_error == EPERM || mkdir_error == EROFS;
    throw store_failure(refused ? store_error::read_only : store_error::folder);
}

} // namespace pim_store
