#include "platform/plain/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "platform/plain/UserFolders.h"

namespace sonavex {
namespace {

// The descriptor; -1 when the file cannot be opened or is not a regular file of this user.
int OpenLockFile(const std::filesystem::path& file) {
    CreatePrivateFolder(file.parent_path());
    const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (descriptor < 0) return -1;
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid())
        return descriptor;
    close(descriptor);
    return -1;
}

}  // namespace

SingleInstance::SingleInstance(std::vector<std::filesystem::path> lockFiles) : files_(std::move(lockFiles)) {}

SingleInstance::~SingleInstance() {
    if (lock_ >= 0) close(lock_);
}

bool SingleInstance::AnotherRuns() {
    if (anotherRuns_) return *anotherRuns_;
    anotherRuns_ = false;
    for (const auto& file : files_) {
        lock_ = OpenLockFile(file);
        if (lock_ < 0) continue;
        if (flock(lock_, LOCK_EX | LOCK_NB) == 0) break;
        anotherRuns_ = errno == EWOULDBLOCK;
        close(std::exchange(lock_, -1));
        if (*anotherRuns_) break;
    }
    return *anotherRuns_;
}

}  // namespace sonavex
