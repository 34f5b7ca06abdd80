#pragma once

#include <filesystem>
#include <memory>

#include "core/mixer/SoundCardMixers.h"
#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"
#include "core/shell/StoredPlaces.h"
#include "platform/mixer/HardwareLevels.h"
#include "platform/mixer/HardwareMixerControl.h"
#include "platform/mixer/HardwareMixerLibrary.h"
#include "platform/plain/FileMixerJournal.h"

namespace sonavex::app {

// The mixers of the sound in use: those of the simulated card, or the sound server's with the cards
// behind them. Everything given must outlive this object.
class ProgramMixers {
public:
    ProgramMixers(SoundSystem& sound, EventLoop& loop, SettingsStore& store, Desktop& desktop,
                  Dialogs& dialogs, const std::filesystem::path& journalFile);

    SoundCardMixers& Session() noexcept { return session_; }

private:
    std::unique_ptr<MixerHardware> hardware_;
    HardwareMixerControl outputMixer_{*hardware_, MixerSide::kPlayback};
    HardwareMixerControl inputMixer_{*hardware_, MixerSide::kCapture};
    HardwareMixerLibrary library_{*hardware_};
    HardwareLevels levels_{*hardware_};
    StoredPlaces places_;
    FileMixerJournal journal_;
    SoundCardMixers session_;
};

}  // namespace sonavex::app
