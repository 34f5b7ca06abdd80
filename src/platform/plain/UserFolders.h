#pragma once

#include <filesystem>
#include <system_error>

namespace sonavex {

// Creates the folder and its missing parents, accessible to the user only, whatever the umask. Existing
// folders stay as they are.
std::error_code CreatePrivateFolder(const std::filesystem::path& folder);

// Whether the path is a folder that belongs to the user of this process and that no one else can write to.
bool BelongsToTheUser(const std::filesystem::path& folder) noexcept;

// The folder for temporary files of the user's running programs (XDG_RUNTIME_DIR). Empty when there is none,
// or when other users can write to it.
std::filesystem::path RuntimeFolder();

// The folder for the data of the user's programs: XDG_DATA_HOME, or .local/share in the user's folder. Empty
// when neither is known.
std::filesystem::path DataFolder();

// Changes the umask so that new files of this process, and of the programs that it starts, are never writable
// by everyone.
void KeepFilesFromEverybody() noexcept;

}  // namespace sonavex
