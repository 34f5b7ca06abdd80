#include "core/report/SystemInfo.h"

#include <cstdint>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kToolKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
constexpr const char* kToolValue = "PATH";
constexpr const char* kFolderKey = "SOFTWARE\\Microsoft\\Shared Tools Location";
constexpr const char* kFolderValue = "MSINFO";
constexpr const char* kToolFile = "\\MSINFO32.EXE";
constexpr const char* kUnavailable = "System Information Is Unavailable At This Time";

std::optional<std::string> ToolPath(Launcher& launcher) {
    if (auto path = GetKeyValue(launcher, RootKey::kLocalMachine, kToolKey, kToolValue)) return path;
    const auto folder = GetKeyValue(launcher, RootKey::kLocalMachine, kFolderKey, kFolderValue);
    if (!folder || !launcher.FileExists(*folder + kToolFile)) return std::nullopt;
    return *folder + kToolFile;
}

}  // namespace

std::optional<std::string> GetKeyValue(Launcher& launcher, RootKey root, const std::string& key,
                                       const std::string& name) {
    const auto value = launcher.ReadMachineValue(root, key, name);
    if (!value) return std::nullopt;
    if (const auto* number = std::get_if<std::uint32_t>(&*value))
        return "&h" + Hex(static_cast<std::int32_t>(*number));
    std::string text = std::get<std::string>(*value);
    if (!text.empty() && text.back() == '\0') text.pop_back();
    return text;
}

void StartSysInfo(Launcher& launcher, Dialogs& dialogs) {
    const auto path = ToolPath(launcher);
    if (!path || launcher.Run(*path) != 0) dialogs.Message(kUnavailable, MessageIcon::kNone);
}

}  // namespace sonavex
