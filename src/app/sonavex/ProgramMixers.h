#pragma once

#include <filesystem>
#include <memory>

#include "core/mixer/SoundCardMixers.h"
#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"
#include "core/settings/StoredPlaces.h"
#include "platform/plain/FileMixerJournal.h"

namespace sonavex::app {

// The mixers of a sound system: those of the simulated card, or those of the sound server and the cards
// behind it. Everything passed in must outlive this object.
class ProgramMixers {
public:
    ProgramMixers(SoundSystem& sound, EventLoop& loop, SettingsStore& store, Desktop& desktop,
                  Dialogs& dialogs, const std::filesystem::path& journalFile);

    SoundCardMixers& Mixers() noexcept { return mixers_; }

private:
    std::unique_ptr<MixerHardware> hardware_;
    StoredPlaces places_;
    FileMixerJournal journal_;
    SoundCardMixers mixers_;
};

}  // namespace sonavex::app
