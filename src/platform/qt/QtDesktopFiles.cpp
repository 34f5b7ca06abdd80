#include "platform/qt/QtDesktopFiles.h"

#include <QDir>
#include <QFile>
#include <QFileDevice>
#include <QSaveFile>
#include <QStandardPaths>
#include <cerrno>

#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

constexpr std::int32_t kDiskFull = 61;
constexpr std::int32_t kPermissionDenied = 70;
constexpr std::int32_t kFileAccess = 75;

QString PathOf(const std::string& name) {
    return QtDesktopFiles::Folder() + u'/' + QString::fromStdString(name);
}

[[noreturn]] void Fail(std::int32_t number, const QString& path, const QString& reason) {
    throw RuntimeError(number, (path + QStringLiteral(": ") + reason).toStdString());
}

// Throws the error of a file operation that has failed. `cause` is its errno.
[[noreturn]] void Fail(const QFileDevice& file, int cause) {
    const bool full = cause == ENOSPC || cause == EDQUOT || cause == EFBIG;
    const bool denied = cause == EACCES || cause == EPERM || cause == EROFS;
    Fail(full ? kDiskFull : denied ? kPermissionDenied : kFileAccess, file.fileName(), file.errorString());
}

void CreateFolder() {
    const QString folder = QtDesktopFiles::Folder();
    if (!QDir().mkpath(folder)) Fail(kFileAccess, folder, QStringLiteral("The folder cannot be created."));
}

// Writes and flushes the whole text.
void WriteAll(QFileDevice& file, const std::string& text) {
    errno = 0;
    const auto size = static_cast<qint64>(text.size());
    if (file.write(text.data(), size) != size || !file.flush()) Fail(file, errno);
}

}  // namespace

QString QtDesktopFiles::Folder() {
    const QString profile = qEnvironmentVariable("userprofile");
    if (!profile.isEmpty()) return QDir::cleanPath(profile) + QStringLiteral("/desktop");
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}

void QtDesktopFiles::Append(const std::string& name, const std::string& text) {
    CreateFolder();
    QFile file(PathOf(name));
    errno = 0;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) Fail(file, errno);
    WriteAll(file, text);
}

void QtDesktopFiles::Replace(const std::string& name, const std::string& text) {
    CreateFolder();
    QSaveFile file(PathOf(name));
    file.setDirectWriteFallback(true);
    errno = 0;
    if (!file.open(QIODevice::WriteOnly)) Fail(file, errno);
    WriteAll(file, text);
    errno = 0;
    if (!file.commit()) Fail(file, errno);
}

void QtDesktopFiles::Delete(const std::string& name) {
    QFile file(PathOf(name));
    errno = 0;
    if (!file.remove() && file.exists()) Fail(file, errno);
}

}  // namespace sonavex
