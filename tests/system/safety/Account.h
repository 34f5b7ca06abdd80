#pragma once

#include <filesystem>

#include "support/ChildProcess.h"

namespace sonavex {

// Private folders of a test user, and an environment that names no others.
class Account {
public:
    Account() {
        for (const auto& folder : {Home(), Runtime(), Config(), Desktop(), Documents()})
            std::filesystem::create_directories(folder);
        std::filesystem::permissions(Runtime(), std::filesystem::perms::owner_all);
    }

    std::filesystem::path Home() const { return folder_.Path() / "home"; }
    std::filesystem::path Runtime() const { return folder_.Path() / "run"; }
    std::filesystem::path Config() const { return Home() / ".config"; }
    std::filesystem::path Desktop() const { return Home() / "Desktop"; }
    std::filesystem::path Documents() const { return Home() / "Documents"; }
    // The program's folder.
    std::filesystem::path SettingsFolder() const { return Config() / "Sonavex"; }
    std::filesystem::path SettingsFile() const { return SettingsFolder() / "Sonavex.ini"; }
    std::filesystem::path Journal() const { return Runtime() / "sonavex-mixer-levels"; }
    // File for a process's output.
    std::filesystem::path Output() const { return folder_.Path() / "output"; }

    // Without a display, sound server or bus of the real user; on the simulated card.
    Environment Variables(const Environment& more = {}) const {
        Environment variables{{"HOME", Home()},
                              {"XDG_RUNTIME_DIR", Runtime()},
                              {"XDG_CONFIG_HOME", Config()},
                              {"XDG_CACHE_HOME", Home() / ".cache"},
                              {"XDG_DATA_HOME", Home() / ".local/share"},
                              {"XDG_STATE_HOME", Home() / ".local/state"},
                              {"userprofile", ""},
                              {"QT_QPA_PLATFORM", "offscreen"},
                              {"DBUS_SESSION_BUS_ADDRESS", "disabled:"},
                              {"PULSE_SERVER", "unix:" + (Runtime() / "no-server").string()},
                              {"PULSE_COOKIE", Runtime() / "cookie"},
                              {"SONAVEX_SOUND", "simulated"},
                              {"SONAVEX_OS_MAJOR", ""}};
        for (const auto& variable : more) {
            std::erase_if(variables, [&](const auto& known) { return known.first == variable.first; });
            variables.push_back(variable);
        }
        return variables;
    }

private:
    PrivateFolder folder_;
};

}  // namespace sonavex
