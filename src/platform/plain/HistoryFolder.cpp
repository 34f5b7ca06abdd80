#include "platform/plain/HistoryFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "platform/plain/ReplacedFile.h"
#include "platform/plain/SettingsFile.h"
#include "platform/plain/UserFolders.h"

namespace sonavex {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kDayPattern = "dddd-dd-dd.jsonl";
constexpr std::string_view kDayExtension = ".jsonl";
// A longer file is not read into memory. 10,000 readings of one day take about a fifth.
constexpr off_t kLongestDay = 512L << 20;
constexpr mode_t kUserOnly = 0600;
// Others hold the lock for milliseconds.
constexpr std::chrono::milliseconds kHistoryLockLimit{2000};

[[noreturn]] void FailWith(const fs::path& file, const char* what, int error) {
    throw FileError("The history '" + file.string() + "' cannot be " + what + ": " +
                    std::generic_category().message(error));
}

bool IsDayFile(std::string_view name) {
    return std::equal(name.begin(), name.end(), kDayPattern.begin(), kDayPattern.end(),
                      [](char c, char p) { return p == 'd' ? c >= '0' && c <= '9' : c == p; });
}

// An open regular file; O_NONBLOCK, because the file may have been replaced by a pipe.
class DayFile {
public:
    DayFile(const fs::path& path, int flags)
        : path_(path), descriptor_(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK, kUserOnly)) {
        if (descriptor_ < 0) error_ = errno;
        if (Open() && (fstat(descriptor_, &status_) != 0 || !S_ISREG(status_.st_mode))) error_ = EINVAL;
    }
    ~DayFile() {
        if (Open()) close(descriptor_);
    }
    DayFile(const DayFile&) = delete;
    DayFile& operator=(const DayFile&) = delete;

    bool Missing() const noexcept { return error_ == ENOENT; }
    void Require(const char* what) const {
        if (error_ != 0) FailWith(path_, what, error_);
    }

    std::string Read() const {
        if (status_.st_size > kLongestDay) FailWith(path_, "read", EFBIG);
        std::string text(static_cast<std::size_t>(status_.st_size), '\0');
        std::size_t length = 0;
        while (length < text.size()) {
            const ssize_t count =
                pread(descriptor_, text.data() + length, text.size() - length, static_cast<off_t>(length));
            if (count == 0) break;
            if (count < 0 && errno != EINTR) FailWith(path_, "read", errno);
            if (count > 0) length += static_cast<std::size_t>(count);
        }
        text.resize(length);
        return text;
    }

    // A complete line takes one write. A full disk takes a part of it, which is removed again.
    void Append(const std::string& line) const {
        const std::string text = (EndsWithin() ? "\n" : "") + line + '\n';
        std::string_view rest = text;
        while (!rest.empty()) {
            const ssize_t written = write(descriptor_, rest.data(), rest.size());
            if (written > 0)
                rest.remove_prefix(static_cast<std::size_t>(written));
            else if (written == 0 || errno != EINTR)
                Undo(errno);
        }
    }

    void Sync() const {
        if (fsync(descriptor_) != 0) FailWith(path_, "stored", errno);
    }

private:
    bool Open() const noexcept { return descriptor_ >= 0; }

    // Whether the last line is incomplete.
    bool EndsWithin() const {
        char last = '\n';
        return status_.st_size > 0 && pread(descriptor_, &last, 1, status_.st_size - 1) == 1 && last != '\n';
    }

    [[noreturn]] void Undo(int error) const {
        static_cast<void>(ftruncate(descriptor_, status_.st_size));
        FailWith(path_, "written", error);
    }

    fs::path path_;
    int descriptor_;
    int error_ = 0;
    struct stat status_ = {};
};

// A file is found after a loss of power only if its folder has been written.
void SyncHistoryFolder(const fs::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    static_cast<void>(fsync(descriptor));
    close(descriptor);
}

class HistoryLock {
public:
    explicit HistoryLock(const fs::path& folder) : lock_(folder, kHistoryLockLimit) {
        if (lock_.Held()) return;
        if (access(folder.c_str(), R_OK | X_OK) != 0) FailWith(folder, "used", errno);
        throw FileError("The history '" + folder.string() + "' is in use by another program.");
    }

private:
    FolderLock lock_;
};

}  // namespace

fs::path HistoryFolder::OfTheUser() {
    const fs::path data = DataFolder();
    if (data.empty()) throw FileError("There is no folder for the history: HOME is not set.");
    return data / "Sonavex" / "history";
}

fs::path HistoryFolder::FileOf(const std::string& day) const {
    return folder_ / (day + std::string(kDayExtension));
}

std::vector<std::string> HistoryFolder::Days() const {
    std::vector<std::string> days;
    std::error_code error;
    fs::directory_iterator entries(folder_, error);
    if (error == std::errc::no_such_file_or_directory) return days;
    for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
        const fs::path name = entries->path().filename();
        if (IsDayFile(name.string())) days.push_back(name.stem().string());
    }
    if (error) FailWith(folder_, "read", error.value());
    std::sort(days.begin(), days.end());
    return days;
}

// The lock excludes a line that another process has not completed.
std::string HistoryFolder::Read(const std::string& day) const {
    std::error_code unknown;
    if (!fs::exists(FileOf(day), unknown) && !unknown) return {};
    const HistoryLock lock(folder_);
    const DayFile file(FileOf(day), O_RDONLY);
    if (file.Missing()) return {};
    file.Require("read");
    return file.Read();
}

void HistoryFolder::Append(const std::string& day, const std::string& line) {
    if (const std::error_code error = CreatePrivateFolder(folder_))
        FailWith(folder_, "created", error.value());
    const HistoryLock lock(folder_);
    const DayFile file(FileOf(day), O_RDWR | O_CREAT | O_APPEND);
    file.Require("written");
    file.Append(line);
}

// The new text is on the disk before the lock is taken, so that no other process waits for the disk.
bool HistoryFolder::Replace(const std::string& day, const std::string& before, const std::string& after) {
    const fs::path path = FileOf(day);
    ReplacedFile next(path);
    if (!next.Error() && !next.Write(after) && fsync(next.Descriptor()) != 0)
        FailWith(path, "written", errno);
    if (next.Error()) FailWith(path, "written", next.Error().value());
    {
        const HistoryLock lock(folder_);
        const DayFile present(path, O_RDONLY);
        present.Require("read");
        if (present.Read() != before) return false;
        std::error_code error;
        if (after.empty())
            fs::remove(path, error);
        else
            error = next.Commit();
        if (error) FailWith(path, "written", error.value());
    }
    SyncHistoryFolder(folder_);
    return true;
}

void HistoryFolder::Sync(const std::string& day) {
    const DayFile file(FileOf(day), O_RDONLY);
    if (file.Missing()) return;
    file.Require("stored");
    file.Sync();
    SyncHistoryFolder(folder_);
}

}  // namespace sonavex
