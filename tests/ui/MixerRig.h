#pragma once

#include <QWidget>

#include "core/mixer/SoundCardMixers.h"
#include "core/settings/StoredPlaces.h"
#include "platform/simulated/SimulatedMixer.h"
#include "support/FormRig.h"
#include "support/MixerWorld.h"
#include "ui/MixerDialogs.h"

namespace sonavex {

// The real dialogs and forms over the simulated card's mixer, after the start.
struct MixerRig {
    explicit MixerRig(std::int32_t osMajorVersion, const std::vector<MixerFunction>& missing = {}) {
        desktop.majorVersion = osMajorVersion;
        for (const MixerFunction function : missing) mixer.Remove(function);
        const std::string name = SimulatedSoundSystem::kDescription;
        mixers.PointMixersAt(name, name);
        if (osMajorVersion >= 6) mixers.ReopenSoundCard(name, name);
        mixers.CaptureAndApplySaved(osMajorVersion >= 6);
        mixers.SetUpSoundControls();
    }

    CallLog log;
    VirtualEventLoop loop;
    MemorySettingsStore store;
    FakeDesktop desktop{log};
    RecordingDialogs messages{log};
    RecordingErrorLog errorLog{log};
    SimulatedSoundSystem card{loop, SimulatedSoundSystem::Pace::kStepped};
    SimulatedMixer mixer{card, loop};
    StoredPlaces places{store, desktop};
    MemoryJournal journal;
    SoundCardMixers mixers{{store, messages, places, mixer, journal}};
    HandlerGuard guard{messages, errorLog};
    QWidget parent;
    ui::MixerDialogs dialogs{mixers, guard, parent};
};

}  // namespace sonavex
