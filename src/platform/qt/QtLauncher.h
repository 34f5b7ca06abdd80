#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "core/ports/Launcher.h"

namespace sonavex {

// A program and its arguments.
struct ProgramCall {
    QString program;
    QStringList arguments;
    friend bool operator==(const ProgramCall&, const ProgramCall&) = default;
};

// Other programs through the desktop. The instrument's commands for level panels mean the sound settings
// that this system has: those of the desktop that runs, then any others. Programs are started with lists
// of arguments, never through a shell. An application object must exist.
class QtLauncher : public Launcher {
public:
    std::int32_t Open(const std::string& target) override;
    std::int32_t Run(const std::string& commandLine) override;
    bool FileExists(const std::string& path) override;
    // The one value there is names an installed program that tells about the computer.
    std::optional<MachineValue> ReadMachineValue(RootKey root, const std::string& key,
                                                 const std::string& name) override;

    // What a level panel's command line can mean on the desktop of that name (XDG_CURRENT_DESKTOP), best
    // first; empty for other command lines.
    static std::vector<ProgramCall> PanelCalls(const QString& commandLine, const QString& desktop);
};

}  // namespace sonavex
