#pragma once

#include <filesystem>
#include <system_error>

namespace sonavex {

// Makes the folder and those above it that are missing, for the user alone whatever mask of rights the
// process has. Folders that exist stay as they are.
std::error_code CreatePrivateFolder(const std::filesystem::path& folder);

// Whether it is a folder that belongs to the user of this process and that nobody else can write to.
bool BelongsToTheUser(const std::filesystem::path& folder) noexcept;

// The folder that the system keeps for what the user's programs leave while they run (XDG_RUNTIME_DIR);
// empty where there is none, and where others could put something there.
std::filesystem::path RuntimeFolder();

// From here on no file that this process or the programs it starts create can be written by everybody,
// whatever mask of rights it was started with.
void KeepFilesFromEverybody() noexcept;

}  // namespace sonavex
