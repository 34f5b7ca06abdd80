#include "platform/qt/QtDesktop.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QString>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <string_view>
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

std::vector<std::filesystem::path> LockFiles(const std::string& name) {
    std::vector<std::filesystem::path> files;
    for (const auto& folder : {RuntimeFolder(), QtSettingsStore::DefaultFile().parent_path()})
        if (!folder.empty()) files.push_back(folder / (name + ".lock"));
    return files;
}

}  // namespace

QtDesktop::QtDesktop(const std::string& instanceName) : instance_(LockFiles(instanceName)) {}

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
