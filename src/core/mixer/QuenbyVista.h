#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/ports/MixerHardware.h"

namespace sonavex {

// The mixer library of the newer generation: the levels of the devices that OpenSoundCard bound.
//
// Every operation sets a status word: 0 success, 1 the device has no such control, 2 no device is bound
// or it does not answer. No operation throws. Levels are whole percent, 0 to 100; a level outside becomes
// the nearest limit. A Get returns the present value. A Set acts at once, and the next Get returns the
// value that the device accepted. Setting the value that Get returns writes nothing, so that balance and
// steps finer than a percent are kept. A level takes the nearest raw value, and nothing is written when
// that is the present one. A control without an answer reports a fixed default: output and
// record volumes 100, monitoring paths 0 and muted, no monitoring, no boost, tone 0 dB.
class QuenbyVista {
public:
    // The hardware must outlive this object.
    explicit QuenbyVista(MixerHardware& hardware) noexcept : hardware_(hardware) {}

    // Binds the devices of these names, as the sound system describes them. Replaces an earlier binding.
    // reserved must be empty; otherwise the call fails and the binding does not change.
    void OpenSoundCard(const std::string& playbackDevice, const std::string& captureDevice,
                       const std::string& reserved, std::int32_t& status);
    void CloseSoundCard(std::int32_t& status);

    std::int32_t GetMasterVolume(std::int32_t& status);
    // Returns the level that the device accepted.
    std::int32_t SetMasterVolume(std::int32_t level, std::int32_t& status);
    bool GetMasterMute(std::int32_t& status);
    void SetMasterMute(bool mute, std::int32_t& status);

    // The path from the line input to the output.
    std::int32_t GetLinePlayBack(std::int32_t& status);
    void SetLinePlayBack(std::int32_t level, std::int32_t& status);
    bool GetLinePlayBackMute(std::int32_t& status);
    void SetLinePlayBackMute(bool mute, std::int32_t& status);

    // The path from the microphone to the output.
    std::int32_t GetMicPlayBack(std::int32_t& status);
    void SetMicPlayBack(std::int32_t level, std::int32_t& status);
    bool GetMicPlayBackMute(std::int32_t& status);
    void SetMicPlayBackMute(bool mute, std::int32_t& status);

    // The microphone's +20 dB.
    bool GetMicBoost(std::int32_t& status);
    void SetMicBoost(bool boost, std::int32_t& status);
    // True: the recorded signal is not routed to the output.
    bool GetNoMonitor(std::int32_t& status);
    void SetNoMonitor(bool noMonitor, std::int32_t& status);

    double GetBass(std::int32_t& status);
    void SetBass(double gainDb, std::int32_t& status);
    double GetMidRange(std::int32_t& status);
    void SetMidRange(double gainDb, std::int32_t& status);
    double GetTreble(std::int32_t& status);
    void SetTreble(double gainDb, std::int32_t& status);
    // Limits of all three gains: those of the first tone control that the device has, or 0 and 0 if it has
    // none.
    void GetEQRange(double& minimumDb, double& maximumDb, std::int32_t& status);

    std::int32_t GetMicRecordVolume(std::int32_t& status);
    void SetMicRecordVolume(std::int32_t level, std::int32_t& status);
    std::int32_t GetLineRecordVolume(std::int32_t& status);
    void SetLineRecordVolume(std::int32_t level, std::int32_t& status);

    // The smallest change of a level that always changes the control's raw value; 1 without the control.
    std::int32_t StepPercent(MixerFunction level);

private:
    MixerElement* Find(MixerFunction function, std::int32_t& status);
    std::int32_t Level(MixerFunction function, std::int32_t fallback, std::int32_t& status);
    void SetLevel(MixerFunction function, std::int32_t level, std::int32_t& status);
    bool Switch(MixerFunction function, bool fallback, std::int32_t& status);
    void SetSwitch(MixerFunction function, bool on, std::int32_t& status);
    double Gain(MixerFunction function, std::int32_t& status);
    void SetGain(MixerFunction function, double gainDb, std::int32_t& status);

    MixerHardware& hardware_;
    std::shared_ptr<DeviceMixer> playback_;
    std::shared_ptr<DeviceMixer> capture_;
};

}  // namespace sonavex
