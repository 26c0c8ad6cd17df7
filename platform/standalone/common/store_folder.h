// store_folder.h: where the store files of a user are.
#pragma once

#include <filesystem>

namespace pim_store {

// The folder that the environment names: $JSR75_PIM_HOME, else $XDG_DATA_HOME/jsr75-pim, else
// ~/.local/share/jsr75-pim. The first call of a process decides for all.
const std::filesystem::path& store_folder();

// Makes the folder and what is missing above it, for this user alone. Fails with FOLDER, or with READ_ONLY when it
// is the permission that is missing.
void make_folder(const std::filesystem::path& folder);

} // namespace pim_store
