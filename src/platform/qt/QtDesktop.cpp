#include "platform/qt/QtDesktop.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QString>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/plain/UserFolders.h"
#include "platform/qt/QtSettingsStore.h"

namespace sonavex {
namespace {

constexpr std::int32_t kNewestGeneration = 10;

std::string_view Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

// Where a lock file may be, best first: always in a folder of the user's own.
std::vector<std::filesystem::path> LockFiles(const std::string& name) {
    std::vector<std::filesystem::path> files;
    for (const auto& folder : {RuntimeFolder(), QtSettingsStore::DefaultFile().parent_path()})
        if (!folder.empty()) files.push_back(folder / (name + ".lock"));
    return files;
}

// The open file, -1 when it cannot be had or somebody else has put something there.
int OpenLockFile(const std::filesystem::path& file) {
    CreatePrivateFolder(file.parent_path());
    if (!BelongsToTheUser(file.parent_path())) return -1;
    const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (descriptor < 0) return -1;
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == geteuid())
        return descriptor;
    close(descriptor);
    return -1;
}

}  // namespace

QtDesktop::QtDesktop(std::string instanceName) : instanceName_(std::move(instanceName)) {}

QtDesktop::~QtDesktop() {
    if (lock_ >= 0) close(lock_);
}

bool QtDesktop::AnotherInstanceRunning() {
    if (anotherRuns_) return *anotherRuns_;
    anotherRuns_ = false;
    for (const auto& file : LockFiles(instanceName_)) {
        lock_ = OpenLockFile(file);
        if (lock_ < 0) continue;
        if (flock(lock_, LOCK_EX | LOCK_NB) == 0) break;
        anotherRuns_ = errno == EWOULDBLOCK;
        close(std::exchange(lock_, -1));
        if (*anotherRuns_) break;
    }
    return *anotherRuns_;
}

std::int32_t QtDesktop::OsMajorVersion() {
    const std::string_view text = Environment("SONAVEX_OS_MAJOR");
    const char* const end = text.data() + text.size();
    std::int32_t version = 0;
    const auto [read, error] = std::from_chars(text.data(), end, version);
    return error == std::errc() && read == end ? version : kNewestGeneration;
}

std::string QtDesktop::ApplicationFolder() {
    std::string folder = QCoreApplication::applicationDirPath().toStdString();
    while (!folder.empty() && folder.back() == '/') folder.pop_back();
    return folder;
}

ScreenArea QtDesktop::Screens() {
    ScreenArea area;
    const QScreen* primary = QGuiApplication::primaryScreen();
    if (primary == nullptr) return area;
    const QRect all = primary->availableVirtualGeometry();
    area.width = primary->availableGeometry().width();
    area.height = primary->availableGeometry().height();
    const QPoint origin = primary->geometry().topLeft();
    area.right = all.x() + all.width() - origin.x();
    area.bottom = all.y() + all.height() - origin.y();
    return area;
}

}  // namespace sonavex
