#include "platform/qt/QtLauncher.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <algorithm>

namespace sonavex {
namespace {

constexpr std::int32_t kNotFound = 2;
constexpr std::int32_t kNoProgram = 31;

constexpr const char* kToolKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
constexpr const char* kToolValue = "PATH";
constexpr const char* kInfoTools[] = {"hardinfo2", "hardinfo", "kinfocenter", "lshw-gtk"};

enum class Side { kRecording, kPlayback };

std::optional<Side> PanelOf(const QString& commandLine) {
    if (commandLine == QLatin1String("control.exe mmsys.cpl,,1") ||
        commandLine.startsWith(QLatin1String("sndvol32 -R")))
        return Side::kRecording;
    if (commandLine == QLatin1String("control.exe mmsys.cpl,,0") ||
        commandLine.startsWith(QLatin1String("sndvol32 -P")))
        return Side::kPlayback;
    return std::nullopt;
}

// Sound settings, and the desktop that they belong to; empty when they belong to none.
struct Panel {
    const char* desktop;
    ProgramCall recording;
    ProgramCall playback;
};

ProgramCall Call(const char* program, std::initializer_list<const char*> arguments) {
    ProgramCall call{QString::fromLatin1(program), {}};
    for (const char* argument : arguments) call.arguments.append(QString::fromLatin1(argument));
    return call;
}

// Sound settings with one program for recording and playback.
Panel Both(const char* desktop, const char* program, std::initializer_list<const char*> arguments) {
    return {desktop, Call(program, arguments), Call(program, arguments)};
}

std::vector<Panel> Panels() {
    return {
        Both("GNOME", "gnome-control-center", {"sound"}),
        Both("KDE", "systemsettings", {"kcm_pulseaudio"}),
        Both("KDE", "systemsettings5", {"kcm_pulseaudio"}),
        Both("X-Cinnamon", "cinnamon-settings", {"sound"}),
        {"MATE", Call("mate-volume-control", {"--page=input"}),
         Call("mate-volume-control", {"--page=output"})},
        {"LXQt", Call("pavucontrol-qt", {"--tab=4"}), Call("pavucontrol-qt", {"--tab=3"})},
        {"", Call("pavucontrol", {"--tab=4"}), Call("pavucontrol", {"--tab=3"})},
        {"", Call("x-terminal-emulator", {"-e", "alsamixer", "-V", "capture"}),
         Call("x-terminal-emulator", {"-e", "alsamixer", "-V", "playback"})},
    };
}

bool Belongs(const Panel& panel, const QStringList& desktops) {
    return *panel.desktop != '\0' && desktops.contains(QLatin1String(panel.desktop), Qt::CaseInsensitive);
}

// Whether all programs of a call are installed, including one that runs in a terminal.
bool Installed(const ProgramCall& call) {
    if (QStandardPaths::findExecutable(call.program).isEmpty()) return false;
    const qsizetype inner = call.arguments.indexOf(QStringLiteral("-e")) + 1;
    return inner == 0 || !QStandardPaths::findExecutable(call.arguments[inner]).isEmpty();
}

bool Start(const ProgramCall& call) {
    return QProcess::startDetached(QStandardPaths::findExecutable(call.program), call.arguments);
}

}  // namespace

std::vector<ProgramCall> QtLauncher::PanelCalls(const QString& commandLine, const QString& desktop) {
    std::vector<ProgramCall> calls;
    const auto side = PanelOf(commandLine);
    if (!side) return calls;
    std::vector<Panel> panels = Panels();
    const QStringList desktops = desktop.split(u':');
    // First those of this desktop, then those of no desktop, then those of other desktops. The last entry, a
    // terminal, stays last.
    std::stable_sort(panels.begin(), panels.end() - 1, [&](const Panel& left, const Panel& right) {
        const auto rank = [&](const Panel& panel) {
            return Belongs(panel, desktops) ? 0 : *panel.desktop == '\0' ? 1 : 2;
        };
        return rank(left) < rank(right);
    });
    for (const Panel& panel : panels)
        calls.push_back(*side == Side::kRecording ? panel.recording : panel.playback);
    return calls;
}

std::int32_t QtLauncher::Open(const std::string& target) {
    const QUrl address = QUrl::fromUserInput(QString::fromStdString(target));
    if (address.isLocalFile() && !QFileInfo::exists(address.toLocalFile())) return kNotFound;
    return QDesktopServices::openUrl(address) ? 0 : kNoProgram;
}

std::int32_t QtLauncher::Run(const std::string& commandLine) {
    const QString command = QString::fromStdString(commandLine);
    if (PanelOf(command)) {
        for (const ProgramCall& call : PanelCalls(command, qEnvironmentVariable("XDG_CURRENT_DESKTOP")))
            if (Installed(call) && Start(call)) return 0;
        return kNotFound;
    }
    return QProcess::startDetached(command, {}) ? 0 : kNotFound;
}

bool QtLauncher::FileExists(const std::string& path) {
    return QFileInfo::exists(QString::fromStdString(path));
}

std::optional<MachineValue> QtLauncher::ReadMachineValue(RootKey root, const std::string& key,
                                                         const std::string& name) {
    if (root != RootKey::kLocalMachine || key != kToolKey || name != kToolValue) return std::nullopt;
    for (const char* tool : kInfoTools) {
        const QString path = QStandardPaths::findExecutable(QString::fromLatin1(tool));
        if (!path.isEmpty()) return path.toStdString();
    }
    return std::nullopt;
}

}  // namespace sonavex
