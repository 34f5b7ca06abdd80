#include "platform/plain/ReplacedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace sonavex {
namespace {

constexpr mode_t kReadAndWrite = 0666;  // before the process's umask
constexpr mode_t kRights = 0777;

std::error_code LastError() {
    return {errno, std::generic_category()};
}

std::string NameOf(int descriptor) {
    return "/proc/self/fd/" + std::to_string(descriptor);
}

// The permissions of a new file. The umask can only be read by setting it.
mode_t NewFileRights() {
    const mode_t mask = umask(0);
    umask(mask);
    return kReadAndWrite & ~mask;
}

}  // namespace

ReplacedFile::ReplacedFile(const std::filesystem::path& file) {
    std::error_code error;
    file_ = std::filesystem::weakly_canonical(file, error);
    if (error) file_ = file;
    next_ = file_.parent_path() / ("." + file_.filename().string() + ".new");
    Open();
    if (descriptor_ < 0) error_ = LastError();
}

ReplacedFile::~ReplacedFile() {
    if (descriptor_ >= 0) close(descriptor_);
    if (named_) unlink(next_.c_str());
}

void ReplacedFile::Open() {
    struct stat present = {};
    const bool exists = stat(file_.c_str(), &present) == 0;
    replaces_ = !exists || S_ISREG(present.st_mode);
    if (!replaces_) {
        descriptor_ = open(file_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        return;
    }
    // A file that the user may not write is not replaced. The rename alone would need only the permissions of
    // the folder.
    if (exists && access(file_.c_str(), W_OK) != 0) return;
    const std::filesystem::path folder = file_.parent_path();
    if (!OpenUnnamed(folder.empty() ? "." : folder) && !OpenNamed()) return;
    if (exists) static_cast<void>(fchmod(descriptor_, present.st_mode & kRights));
}

// An unnamed file disappears when the process is killed.
bool ReplacedFile::OpenUnnamed(const std::filesystem::path& folder) {
    descriptor_ = open(folder.c_str(), O_RDWR | O_TMPFILE | O_CLOEXEC, kReadAndWrite);
    if (descriptor_ < 0) return false;
    if (access(NameOf(descriptor_).c_str(), F_OK) == 0) return true;
    close(descriptor_);
    descriptor_ = -1;
    return false;
}

// For file systems that have no unnamed files.
bool ReplacedFile::OpenNamed() {
    std::string pattern = next_.string() + std::string(6, 'X');
    descriptor_ = mkostemp(pattern.data(), O_CLOEXEC);
    if (descriptor_ < 0) return false;
    next_ = pattern;
    named_ = true;
    static_cast<void>(fchmod(descriptor_, NewFileRights()));
    return true;
}

bool ReplacedFile::GiveName() {
    if (named_) return true;
    // May have been left by a process that was killed before its rename.
    unlink(next_.c_str());
    named_ = linkat(AT_FDCWD, NameOf(descriptor_).c_str(), AT_FDCWD, next_.c_str(), AT_SYMLINK_FOLLOW) == 0;
    return named_;
}

std::error_code ReplacedFile::Write(std::string_view text) {
    while (!error_ && !text.empty()) {
        const ssize_t written = write(descriptor_, text.data(), text.size());
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
        else if (written == 0 || errno != EINTR)
            error_ = LastError();
    }
    return error_;
}

std::error_code ReplacedFile::Commit() {
    if (error_ || !replaces_) return error_;
    if (fsync(descriptor_) != 0 || !GiveName() || rename(next_.c_str(), file_.c_str()) != 0)
        return error_ = LastError();
    named_ = false;
    return {};
}

}  // namespace sonavex
