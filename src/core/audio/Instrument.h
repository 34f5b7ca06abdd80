#pragma once

#include <cstdint>
#include <functional>

#include "core/audio/FineStream.h"
#include "core/audio/Meter.h"
#include "core/audio/StreamEngine.h"
#include "core/audio/StreamWatch.h"
#include "core/audio/SweepTimer.h"
#include "core/audio/UsedBits.h"
#include "core/ports/Dialogs.h"
#include "core/ports/ErrorLog.h"
#include "core/ports/EventLoop.h"
#include "core/ports/MixerBinding.h"
#include "core/ports/SettingsStore.h"
#include "core/ports/SoundSystem.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// The instrument without its forms: meter and generator on a sound card in full duplex, connected to
// each other. The window, sonavex-measure and the test rigs each own one. The owner sets Shared and
// Settings, creates the devices, sets up the analysis and starts the capture.
class Instrument {
public:
    // All referenced objects must outlive the instrument.
    struct Needs {
        SettingsStore& store;
        SoundSystem& sound;
        EventLoop& loop;
        Dialogs& dialogs;
        ErrorLog& errorLog;
        MixerBinding& mixers;
    };

    explicit Instrument(const Needs& needs, const StreamWatch::Policy& policy = {});
    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;

    // Starts the capture, then the watch. If a device was lost since it was opened, the watch handles it.
    // Error 91 without a capture buffer.
    void StartCapture();

    // Sets the level of the playback buffer in hundredths of a dB. Does nothing without a buffer, if its
    // device is lost (a new buffer gets the stored level), or at full volume.
    void SetVolume(std::int32_t hundredthsDb);

    // Called after each block that was processed and queued without an error. May be empty.
    std::function<void()> OnBlockQueued;

    SharedState Shared;
    sonavex::Settings Settings;
    sonavex::Meter Meter;
    SweepTimer HiTimer1;
    StreamEngine Engine;
    FineStream Fine;
    sonavex::UsedBits UsedBits;
    StreamWatch Watch;
};

}  // namespace sonavex
