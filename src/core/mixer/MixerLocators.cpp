#include "core/mixer/MixerLocators.h"

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "core/mixer/ControlNames.h"
#include "core/text/Characters.h"

namespace sonavex {
namespace {

constexpr float kNotSearched = 2.0F;
constexpr double kUnitsPerPercent = 655.35;
constexpr std::uint16_t kNoDestination = 65535;

struct PlaybackKind {
    std::string_view word;
    MixerLocator& volume;
    MixerLocator& mute;
};

// The selected control as an entry with its present value.
MixerLocator ReadSelected(MixerControl& mixer) {
    return ReadLocated(mixer, {mixer.Line(), mixer.Destination(), mixer.Control(), 0.0F});
}

void Take(MixerLocator& entry, MixerControl& mixer) {
    if (!entry.Available()) entry = ReadSelected(mixer);
}

void LocatePlayback(MixerControl& mixer, MixerLocatorTable& table) {
    const std::array<PlaybackKind, 4> kinds{{{"MAST", table.MasterVolume, table.MasterMute},
                                             {"WAV", table.WaveVolume, table.WaveMute},
                                             {"LIN", table.LineVolume, table.LineMute},
                                             {"MIC", table.MicVolume, table.MicMute}}};
    ForEachControl(mixer, [&](const std::string& name) {
        const std::string upper = UpperCase(name);
        for (const PlaybackKind& kind : kinds)
            if (Contains(upper, kind.word)) Take(Contains(upper, "MUT") ? kind.mute : kind.volume, mixer);
    });
}

bool NamesBoost(std::string_view name) {
    return Contains(name, "AGC") || Contains(name, "ain") || Contains(name, "20") || Contains(name, "oost");
}

// Locates one function at the first matching control that can be read.
void LocateSlot(MixerControl& mixer, MixerLocator& entry,
                const std::function<bool(const std::string&)>& matches) {
    entry.Value = kNotSearched;
    ForEachControl(mixer, [&](const std::string& name) {
        if (entry.Value != kNotSearched || !matches(name)) return;
        const MixerLocator read = ReadSelected(mixer);
        if (read.Available()) entry = read;
    });
    if (entry.Value == kNotSearched) entry = {};
}

void LocateRecord(MixerControl& mixer, MixerLocatorTable& table) {
    ForEachControl(mixer, [&](const std::string& name) {
        const std::string upper = UpperCase(name);
        if (NamesBoost(name) || Contains(upper, "MON") || Contains(upper, "MUT")) return;
        const bool source = Contains(upper, "SEL");
        if (Contains(upper, "LIN")) Take(source ? table.LineSource : table.LineRecord, mixer);
        if (Contains(upper, "MIC")) Take(source ? table.MicSource : table.MicRecord, mixer);
    });
    LocateSlot(mixer, table.MicBoost, NamesBoost);
    LocateSlot(mixer, table.MonitorOff,
               [](const std::string& name) { return Contains(UpperCase(name), "MON"); });
}

}  // namespace

void SelectLocated(MixerControl& mixer, const MixerLocator& entry) {
    mixer.SetLine(entry.Line);
    mixer.SetDestination(entry.Destination);
    mixer.SetControl(entry.Control);
}

MixerLocator ReadLocated(MixerControl& mixer, const MixerLocator& entry) {
    if (static_cast<std::uint16_t>(entry.Destination) == kNoDestination) return {};
    SelectLocated(mixer, entry);
    const MixerControlDescription description = mixer.Description();
    const std::int32_t value = mixer.Value(0);
    if (value < description.minimum || value > description.maximum) return {};
    MixerLocator read = entry;
    read.Value = description.type == mixer_type::kLevel ? static_cast<float>(value / kUnitsPerPercent)
                                                        : static_cast<float>(value);
    return read;
}

void SetUpSoundControls(LegacyMixer& mixer) {
    mixer.MixerLocators = {};
    LocatePlayback(mixer.OutputMixer, mixer.MixerLocators);
    LocateRecord(mixer.InputMixer, mixer.MixerLocators);
}

}  // namespace sonavex
