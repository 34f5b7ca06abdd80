#pragma once

#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "platform/plain/IniText.h"

namespace sonavex {

// Identifies one state of a file. A file that is replaced or edited has a different stamp afterwards.
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
    std::string problem;  // why the file cannot be read; empty when it was read or is missing
};
FileReading ReadSettingsFile(const std::filesystem::path& file);

// Copies the file to its name with ".damaged" or ".damaged-1" to ".damaged-99". Earlier copies stay; when all
// names are taken, the last copy is replaced. Returns the path of the copy, empty when it could not be made.
std::filesystem::path KeepAside(const std::filesystem::path& file);

// A lock on a folder against other processes that use this class. The system releases it when the object is
// destroyed or the process ends. When another process keeps the lock for longer than the limit, Held is
// false.
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

// The probable reason why a file of this name cannot be written, for messages.
std::string WhyNotWritable(const std::filesystem::path& file);

}  // namespace sonavex
