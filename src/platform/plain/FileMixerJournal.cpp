#include "platform/plain/FileMixerJournal.h"

#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>

#include "platform/plain/UserFolders.h"

namespace sonavex {
namespace {

// A journal holds a few hundred lines. A longer file is not a journal.
constexpr std::uintmax_t kLongestBytes = 1 << 20;

bool WriteAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return fsync(descriptor) == 0;
}

// A rename is on the disk only after its folder has been written.
void SyncFolder(const std::filesystem::path& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    static_cast<void>(fsync(descriptor));
    close(descriptor);
}

}  // namespace

std::string FileMixerJournal::Read() {
    std::error_code error;
    const std::uintmax_t bytes = std::filesystem::file_size(file_, error);
    if (error || bytes > kLongestBytes) return {};
    std::ostringstream text;
    text << std::ifstream(file_, std::ios::binary).rdbuf();
    return text.str();
}

void FileMixerJournal::Write(const std::string& text) {
    std::error_code error;
    if (text.empty()) {
        std::filesystem::remove(file_, error);
        return;
    }
    CreatePrivateFolder(file_.parent_path());
    const std::filesystem::path next = file_.string() + ".new";
    const int descriptor = open(next.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor < 0) return;
    const bool written = WriteAll(descriptor, text);
    close(descriptor);
    if (written) std::filesystem::rename(next, file_, error);
    // An incomplete journal is useless and takes space on a full disk.
    if (!written || error) unlink(next.c_str());
    SyncFolder(file_.parent_path());
}

}  // namespace sonavex
