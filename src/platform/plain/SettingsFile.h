#pragma once

#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "platform/plain/IniText.h"

namespace sonavex {

// Which state of a file was seen. Two states of a file that is replaced or edited differ.
class FileStamp {
public:
    FileStamp() = default;  // no file
    static FileStamp Of(const std::filesystem::path& file) noexcept;

    bool Exists() const noexcept { return exists_; }
    bool RegularFile() const noexcept { return exists_ && S_ISREG(status_.st_mode); }
    bool operator==(const FileStamp& other) const noexcept;

private:
    bool exists_ = false;
    struct stat status_ = {};
};

struct FileReading {
    FileStamp stamp;
    IniReading content;   // empty for a missing file
    std::string problem;  // why it cannot be read; empty when it was read or is missing
};
FileReading ReadSettingsFile(const std::filesystem::path& file);

// Keeps a copy beside the file, named after it with ".damaged" or ".damaged-1" to ".damaged-99". Earlier
// copies stay; when all names are taken the last is used again. Returns the copy's path, empty when it
// could not be made.
std::filesystem::path KeepAside(const std::filesystem::path& file);

// While it lives, no other process holds one for the same folder. Nothing stays behind, not even when
// the process is killed. Where the lock cannot be had within the limit, the object does not hold it.
class FolderLock {
public:
    FolderLock(const std::filesystem::path& folder, std::chrono::milliseconds limit);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;

    bool Held() const noexcept { return held_; }

private:
    int descriptor_;
    bool held_ = false;
};

// Why a file of this name cannot be written, as far as can be told; for messages.
std::string WhyNotWritable(const std::filesystem::path& file);

}  // namespace sonavex
