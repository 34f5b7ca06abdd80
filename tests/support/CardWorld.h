#pragma once

#include "core/mixer/SoundCardMixers.h"
#include "core/settings/StoredPlaces.h"
#include "platform/simulated/SimulatedMixer.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/MixerWorld.h"

namespace sonavex {

// The stepped simulated card with the mixers of the program.
template <class Store = MemorySettingsStore>
struct CardWorld : WorldOf<VirtualEventLoop, Store, NoMixers> {
    using WorldOf<VirtualEventLoop, Store, NoMixers>::WorldOf;

    SimulatedSoundSystem card{this->loop, SimulatedSoundSystem::Pace::kStepped};
    SimulatedMixer hardware{card, this->loop};
    StoredPlaces places{this->store, this->desktop};
    MemoryJournal journal;
    SoundCardMixers mixers{{this->store, this->dialogs, places, hardware, journal}};
};

}  // namespace sonavex
