#include "core/mixer/VistaSound.h"

#include "core/mixer/ControlNames.h"
#include "core/mixer/StateFields.h"
#include "core/text/Numbers.h"

namespace sonavex::VistaSound {
namespace {

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

}  // namespace

std::string GetVistaMixerState(QuenbyVista& library) {
    std::string line;
    std::int32_t status = 0;
    const auto add = [&line](auto value) { line += Text(value) + ','; };
    add(library.GetMasterVolume(status));
    add(library.GetMasterMute(status));
    add(library.GetLinePlayBack(status));
    add(library.GetLinePlayBackMute(status));
    add(library.GetMicPlayBack(status));
    add(library.GetMicPlayBackMute(status));
    add(library.GetMicBoost(status));
    add(library.GetNoMonitor(status));
    add(library.GetBass(status));
    add(library.GetMidRange(status));
    add(library.GetTreble(status));
    add(library.GetMicRecordVolume(status));
    add(library.GetLineRecordVolume(status));
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
