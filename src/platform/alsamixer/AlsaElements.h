#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/ports/MixerHardware.h"
#include "platform/alsamixer/AlsaCardMixer.h"

// The kinds of controls that simple elements offer. Every control keeps its card open.
namespace sonavex {

using AlsaCard = std::shared_ptr<AlsaCardMixer>;

// The half of a simple element.
enum class AlsaSide { kPlayback, kCapture };

bool HasVolume(snd_mixer_elem_t* element, AlsaSide side);
bool HasSwitch(snd_mixer_elem_t* element, AlsaSide side);

// A volume, every channel in the card's steps. It has gains when the card reports decibels.
std::unique_ptr<MixerElement> AlsaVolume(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side);

// A switch: 1 is on, or off when inverted.
std::unique_ptr<MixerElement> AlsaSwitch(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side,
                                         bool inverted);

// A microphone boost that the card offers as a volume: 1 when it is above the lowest step. Switching it on
// selects the step nearest to +20 dB, or the highest step when the card does not report decibels.
std::unique_ptr<MixerElement> AlsaBoost(AlsaCard card, snd_mixer_elem_t* element, AlsaSide side);

// The names of an enumeration's items, in order.
std::vector<std::string> AlsaItems(snd_mixer_elem_t* element);
// The number of the selected item.
std::unique_ptr<MixerElement> AlsaChoice(AlsaCard card, snd_mixer_elem_t* element);
// 1 when one of these items is selected. Writing 1 selects the first of them, unless one is selected already.
std::unique_ptr<MixerElement> AlsaAnyItem(AlsaCard card, snd_mixer_elem_t* element,
                                          std::vector<std::int32_t> items);

// A capture switch that selects its input. Writing 1 switches it on and the other input's switch off.
std::unique_ptr<MixerElement> AlsaInputSwitch(const AlsaCard& card, snd_mixer_elem_t* element,
                                              snd_mixer_elem_t* other);

}  // namespace sonavex
