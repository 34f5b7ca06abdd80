#pragma once

#include <cstdint>
#include <functional>

#include "core/controls/Commands.h"
#include "core/ports/Dialogs.h"
#include "core/ports/Help.h"
#include "core/ports/Launcher.h"
#include "core/settings/SharedState.h"
#include "core/text/ApplicationVersion.h"

namespace sonavex {

// The menu commands that lead out of the measuring work. User-interface thread only.
class MenuCommands {
public:
    // Everything must outlive the commands.
    struct World {
        Launcher& launcher;
        Dialogs& dialogs;
        Help& help;
        const SharedState& shared;
        ApplicationVersion version;
    };

    explicit MenuCommands(World world);

    MenuItem mnuAbout;
    MenuItem mnuHelpContents;
    MenuItem mnuCheckVersion;
    MenuItem mnuemail;
    MenuItem mnuInputControl;
    MenuItem mnuPlayControl;

    // Mixer devices of the capture and of the playback side, for the older system's volume panels.
    std::int32_t MixerDeviceNumber = 0;
    std::int32_t PlayMixerDeviceNumber = 0;

    // Shows the about box and returns when it has closed.
    std::function<void()> ShowAbout;

    void mnuAbout_Click();
    void mnuHelpContents_Click();
    void mnuCheckVersion_Click();
    void mnuemail_Click();
    void mnuInputControl_Click();
    void mnuPlayControl_Click();

private:
    // Asks before anything goes to the Internet.
    bool Connected(const char* question);

    World world_;
};

}  // namespace sonavex
