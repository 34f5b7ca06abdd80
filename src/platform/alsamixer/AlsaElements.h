#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/alsamixer/AlsaCardMixer.h"
#include "platform/mixer/MixerHardware.h"

// The kinds of controls that a simple element of a card holds. Each keeps its card open.
namespace sonavex {

using AlsaCard = std::shared_ptr<AlsaCardMixer>;

// Which of the two halves of a simple element.
enum class AlsaSide { kPlayback, kCapture };

bool HasVolume(snd_mixer_elem_t* element, AlsaSide side);
bool HasSwitch(snd_mixer_elem_t* element, AlsaSide side);

// The volume, every channel in the card's steps. With decibels where the card tells them.
std::unique_ptr<MixerElement> AlsaVolume(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side);

// A switch whose on is 1; inverted, its off is.
std::unique_ptr<MixerElement> AlsaSwitch(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side,
                                         bool inverted);

// A microphone's boost that is a volume in steps: 1 above the lowest. Switched on it takes the step
// nearest to +20 dB; the highest one where the card tells no decibels.
std::unique_ptr<MixerElement> AlsaBoost(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side);

// Items of an enumeration, in its order.
std::vector<std::string> AlsaItems(snd_mixer_elem_t* element);
// The number of the selected item.
std::unique_ptr<MixerElement> AlsaChoice(AlsaCard card, snd_mixer_elem_t* element);
// 1 when one of these items is selected; writing 1 selects the first of them, unless one is already.
std::unique_ptr<MixerElement> AlsaAnyItem(AlsaCard card, snd_mixer_elem_t* element,
                                          std::vector<std::int32_t> items);

// A capture switch that selects its input: writing 1 also switches the other's off.
std::unique_ptr<MixerElement> AlsaInputSwitch(const AlsaCard& card, snd_mixer_elem_t* element,
                                              snd_mixer_elem_t* other);

}  // namespace sonavex
