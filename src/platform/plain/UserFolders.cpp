#include "platform/plain/UserFolders.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace sonavex {
namespace {

// The folder that an environment variable names. Empty for a relative path, too.
std::filesystem::path FolderIn(const char* variable) {
    const char* const value = std::getenv(variable);
    const std::filesystem::path folder = value != nullptr ? value : "";
    return folder.is_absolute() ? folder : std::filesystem::path();
}

}  // namespace

std::error_code CreatePrivateFolder(const std::filesystem::path& folder) {
    std::error_code error;
    if (folder.empty() || std::filesystem::is_directory(folder, error)) return {};
    if (folder.has_parent_path() && folder.parent_path() != folder) {
        error = CreatePrivateFolder(folder.parent_path());
        if (error) return error;
    }
    // Another process may have created it meanwhile.
    if (mkdir(folder.c_str(), S_IRWXU) == 0) return {};
    const int cause = errno;
    if (std::filesystem::is_directory(folder, error)) return {};
    return {cause == EEXIST ? ENOTDIR : cause, std::generic_category()};
}

bool BelongsToTheUser(const std::filesystem::path& folder) noexcept {
    struct stat status = {};
    return stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid() &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

std::filesystem::path RuntimeFolder() {
    const std::filesystem::path folder = FolderIn("XDG_RUNTIME_DIR");
    return BelongsToTheUser(folder) ? folder : std::filesystem::path();
}

std::filesystem::path DataFolder() {
    std::filesystem::path folder = FolderIn("XDG_DATA_HOME");
    if (!folder.empty()) return folder;
    const std::filesystem::path home = FolderIn("HOME");
    return home.empty() ? home : home / ".local" / "share";
}

void KeepFilesFromEverybody() noexcept {
    // The umask can only be read by setting it.
    umask(umask(S_IRWXG | S_IRWXO) | S_IWOTH);
}

}  // namespace sonavex
