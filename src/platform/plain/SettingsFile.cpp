#include "platform/plain/SettingsFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <thread>

namespace sonavex {
namespace {

// A longer file does not hold settings and is not read into memory.
constexpr std::uintmax_t kLongestFile = 16 << 20;
constexpr int kLastCopy = 99;
// Time between two attempts to take the lock. Short, because a process that writes continuously leaves only
// short gaps.
constexpr std::chrono::microseconds kLookAgain{50};
// Bytes. A disk with less free space counts as full.
constexpr std::uintmax_t kLeastRoom = 65536;

std::string ErrorText(int error) {
    return std::generic_category().message(error);
}

class Descriptor {
public:
    Descriptor(const std::filesystem::path& file, int flags)
        : number_(open(file.c_str(), flags | O_CLOEXEC)) {}
    ~Descriptor() {
        if (number_ >= 0) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Number() const noexcept { return number_; }

private:
    int number_;
};

// Returns a description of the failure, empty for success.
std::string ReadAll(const std::filesystem::path& file, std::string& text) {
    // O_NONBLOCK: the file may have been replaced by a pipe.
    const Descriptor descriptor(file, O_RDONLY | O_NONBLOCK);
    if (descriptor.Number() < 0) return ErrorText(errno);
    std::array<char, 65536> part{};
    while (text.size() <= kLongestFile) {
        const ssize_t length = read(descriptor.Number(), part.data(), part.size());
        if (length == 0) break;
        if (length < 0 && errno != EINTR) return ErrorText(errno);
        if (length > 0) text.append(part.data(), static_cast<std::size_t>(length));
    }
    return {};
}

std::filesystem::path CopyName(const std::filesystem::path& file, int number) {
    std::filesystem::path name = file;
    name += ".damaged";
    if (number > 0) {
        name += "-";
        name += std::to_string(number);
    }
    return name;
}

}  // namespace

FileStamp FileStamp::Of(const std::filesystem::path& file) noexcept {
    FileStamp stamp;
    stamp.exists_ = stat(file.c_str(), &stamp.status_) == 0;
    return stamp;
}

bool FileStamp::operator==(const FileStamp& other) const noexcept {
    const auto same = [](const timespec& a, const timespec& b) {
        return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
    };
    if (!exists_ || !other.exists_) return exists_ == other.exists_;
    return status_.st_dev == other.status_.st_dev && status_.st_ino == other.status_.st_ino &&
           status_.st_size == other.status_.st_size && same(status_.st_mtim, other.status_.st_mtim) &&
           same(status_.st_ctim, other.status_.st_ctim);
}

FileReading ReadSettingsFile(const std::filesystem::path& file) {
    FileReading reading;
    // Taken before reading, so that a change during the reading is noticed later.
    reading.stamp = FileStamp::Of(file);
    if (!reading.stamp.Exists()) {
        if (errno != ENOENT) reading.problem = ErrorText(errno);
        return reading;
    }
    std::string text;
    reading.problem = reading.stamp.RegularFile() ? ReadAll(file, text) : "it is not a file";
    if (!reading.problem.empty()) return reading;
    if (text.size() > kLongestFile)
        reading.content.damaged = true;
    else
        reading.content = ReadIni(text);
    return reading;
}

std::filesystem::path KeepAside(const std::filesystem::path& file) {
    std::error_code error;
    const auto original = std::filesystem::canonical(file, error);
    if (error) return {};
    int number = 0;
    while (number < kLastCopy &&
           std::filesystem::exists(std::filesystem::symlink_status(CopyName(file, number), error)))
        ++number;
    auto copy = CopyName(file, number);
    std::filesystem::remove(copy, error);
    // A hard link needs no space on a full disk.
    std::filesystem::create_hard_link(original, copy, error);
    if (!error) return copy;
    const bool copied = std::filesystem::copy_file(original, copy, error);
    if (!copied || error) copy.clear();
    return copy;
}

FolderLock::FolderLock(const std::filesystem::path& folder, std::chrono::milliseconds limit)
    : descriptor_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    const auto end = std::chrono::steady_clock::now() + limit;
    if (descriptor_ < 0) return;
    while (!(held_ = flock(descriptor_, LOCK_EX | LOCK_NB) == 0) && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(kLookAgain);
}

FolderLock::~FolderLock() {
    if (descriptor_ >= 0) close(descriptor_);
}

std::string WhyNotWritable(const std::filesystem::path& file) {
    const auto folder = file.parent_path();
    if (access(folder.c_str(), W_OK | X_OK) != 0) return ErrorText(errno);
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) return ErrorText(EISDIR);
    const auto space = std::filesystem::space(folder, error);
    if (!error && space.available < kLeastRoom) return ErrorText(ENOSPC);
    return "the file cannot be written";
}

}  // namespace sonavex
