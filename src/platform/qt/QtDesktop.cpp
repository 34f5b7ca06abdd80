#include "platform/qt/QtDesktop.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QString>
#include <filesystem>
#include <vector>

#include "platform/plain/OsMajorVersion.h"
#include "platform/plain/UserFolders.h"
#include "platform/qt/QtSettingsStore.h"

namespace sonavex {
namespace {

std::vector<std::filesystem::path> LockFiles(const std::string& name) {
    const std::string file = name + ".lock";
    std::vector<std::filesystem::path> files{QtSettingsStore::DefaultFile().replace_filename(file)};
    if (const auto runtime = RuntimeFolder(); !runtime.empty()) files.push_back(runtime / file);
    return files;
}

}  // namespace

QtDesktop::QtDesktop(const std::string& instanceName) : instance_(LockFiles(instanceName)) {}

std::int32_t QtDesktop::OsMajorVersion() {
    return ParseOsMajorVersion(OsMajorVersionText()).value_or(kOsMajorVersion);
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
    const QPoint origin = primary->geometry().topLeft();
    const QRect free = primary->availableGeometry().translated(-origin);
    const QRect all = primary->availableVirtualGeometry().translated(-origin);
    area.width = free.width();
    area.height = free.height();
    area.right = all.x() + all.width();
    area.bottom = all.y() + all.height();
    area.left = free.x();
    area.top = free.y();
    return area;
}

}  // namespace sonavex
