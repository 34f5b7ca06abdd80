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

// Starts other programs. The instrument's command lines for level panels start the sound settings of this
// system: those of the running desktop if installed, otherwise any others. Programs are started with lists of
// arguments, never through a shell. An application object must exist.
class QtLauncher : public Launcher {
public:
    std::int32_t Open(const std::string& target) override;
    std::int32_t Run(const std::string& commandLine) override;
    bool FileExists(const std::string& path) override;
    // Only one value exists: the path of an installed program that shows information about the computer.
    std::optional<MachineValue> ReadMachineValue(RootKey root, const std::string& key,
                                                 const std::string& name) override;

    // The programs that a level panel's command line can start on the desktop with this name
    // (XDG_CURRENT_DESKTOP), best first. Empty for other command lines.
    static std::vector<ProgramCall> PanelCalls(const QString& commandLine, const QString& desktop);
};

}  // namespace sonavex
