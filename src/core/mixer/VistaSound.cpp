#include "core/mixer/VistaSound.h"

#include <algorithm>
#include <vector>

#include "core/mixer/ControlNames.h"
#include "core/mixer/StateFields.h"
#include "core/support/RuntimeError.h"
#include "core/text/Characters.h"
#include "core/text/Numbers.h"

namespace sonavex::VistaSound {
namespace {

constexpr std::size_t kFields = 13;

std::string Text(std::int32_t level) {
    return CStr(level);
}

std::string Text(bool state) {
    return CStr(state);
}

std::string Text(double gainDb) {
    return std::string(Trim(Str(gainDb)));
}

std::int32_t Rounded(std::string_view field) {
    return CLng(CDbl(field));
}

// Calls the Get of every field in order, and take(value, status) with its result.
template <class Take>
void ForEachField(QuenbyVista& library, Take take) {
    std::int32_t status = 0;
    const auto get = [&](auto operation) {
        const auto value = (library.*operation)(status);
        take(value, status);
    };
    get(&QuenbyVista::GetMasterVolume);
    get(&QuenbyVista::GetMasterMute);
    get(&QuenbyVista::GetLinePlayBack);
    get(&QuenbyVista::GetLinePlayBackMute);
    get(&QuenbyVista::GetMicPlayBack);
    get(&QuenbyVista::GetMicPlayBackMute);
    get(&QuenbyVista::GetMicBoost);
    get(&QuenbyVista::GetNoMonitor);
    get(&QuenbyVista::GetBass);
    get(&QuenbyVista::GetMidRange);
    get(&QuenbyVista::GetTreble);
    get(&QuenbyVista::GetMicRecordVolume);
    get(&QuenbyVista::GetLineRecordVolume);
}

// Whether the field converts to the type of the second parameter.
bool Converts(std::string_view field, bool) {
    try {
        static_cast<void>(CBool(field));
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

template <class Number>
bool Converts(std::string_view field, Number) {
    try {
        static_cast<void>(Rounded(field));
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

// The fields of a complete line. Any other line has none.
std::vector<std::string_view> FieldsOf(std::string_view line) {
    if (static_cast<std::size_t>(std::count(line.begin(), line.end(), ',')) != kFields) return {};
    std::vector<std::string_view> all;
    for (StateFields fields(line); all.size() < kFields;) all.push_back(fields.Next());
    return all;
}

}  // namespace

std::string GetVistaMixerState(QuenbyVista& library) {
    std::string line;
    ForEachField(library, [&line](auto value, std::int32_t) { line += Text(value) + ','; });
    return line;
}

std::string StateToSave(QuenbyVista& library, std::string_view savedBefore) {
    const std::vector<std::string_view> before = FieldsOf(savedBefore);
    std::string line;
    std::size_t number = 0;
    ForEachField(library, [&](auto value, std::int32_t status) {
        const std::string_view old = number < before.size() ? before[number] : std::string_view();
        ++number;
        line += status != 0 && Converts(old, value) ? std::string(old) : Text(value);
        line += ',';
    });
    return line;
}

void SetVistaMixerState(QuenbyVista& library, std::string_view line) {
    StateFields fields(line);
    std::int32_t status = 0;
    static_cast<void>(library.SetMasterVolume(CLng(fields.Next()), status));
    library.SetMasterMute(CBool(fields.Next()), status);
    library.SetLinePlayBack(CLng(fields.Next()), status);
    library.SetLinePlayBackMute(CBool(fields.Next()), status);
    library.SetMicPlayBack(CLng(fields.Next()), status);
    library.SetMicPlayBackMute(CBool(fields.Next()), status);
    library.SetMicBoost(CBool(fields.Next()), status);
    library.SetNoMonitor(CBool(fields.Next()), status);
    library.SetBass(CDbl(fields.Next()), status);
    library.SetMidRange(CDbl(fields.Next()), status);
    library.SetTreble(CDbl(fields.Next()), status);
    library.SetMicRecordVolume(Rounded(fields.Next()), status);
    library.SetLineRecordVolume(Rounded(fields.Next()), status);
}

SpeakerLocators SetUpVistaSoundControls(MixerControl& outputMixer) {
    SpeakerLocators found;
    ForEachControl(outputMixer, [&](const std::string& name) {
        const std::string upper = UpperCase(name);
        if (Contains(upper, "VOL")) {
            found.SpeakerVolumeControl = outputMixer.Control();
            found.SpeakerVolumeValue = static_cast<float>(outputMixer.Value(0));
            found.SpeakerVolumeDestination = outputMixer.Destination();
            found.SpeakerVolumeLineInfo = outputMixer.Line();
        }
        if (Contains(upper, "MUT")) {
            found.SpeakerMuteControl = outputMixer.Control();
            found.SpeakerMuteValue = static_cast<float>(outputMixer.Value(0));
            found.SpeakerMuteDestination = outputMixer.Destination();
            found.SpeakerMuteLineInfo = outputMixer.Line();
        }
    });
    return found;
}

}  // namespace sonavex::VistaSound
