#pragma once

#include <cstdint>
#include <string>

namespace sonavex {

// The mixer library of the newer generation: the levels of the card that OpenSoundCard bound.  Every
// operation ends with a status word: 0 when the control exists and the call succeeded, not 0 otherwise. No
// operation raises an error. Levels are whole percent, 0 to 100; one outside becomes the nearest limit. A Get
// reports the live value; a Set acts at once, so that a Get right after returns the value as the card took
// it. Setting what Get reports writes nothing: balance and steps finer than a percent stay. A control that
// the card lacks reads as what a card without it does: volumes to the output and record levels at 100, paths
// from an input to the output muted at 0, no boost, no monitoring, tone at 0 dB.
class QuenbyVista {
public:
    virtual ~QuenbyVista() = default;

    // The names of the playback and the capture device as the sound system describes them, and an empty
    // text. Replaces a binding that exists.
    virtual void OpenSoundCard(const std::string& playbackDevice, const std::string& captureDevice,
                               const std::string& reserved, std::int32_t& status) = 0;
    virtual void CloseSoundCard(std::int32_t& status) = 0;

    virtual std::int32_t GetMasterVolume(std::int32_t& status) = 0;
    // The level now in force.
    virtual std::int32_t SetMasterVolume(std::int32_t level, std::int32_t& status) = 0;
    virtual bool GetMasterMute(std::int32_t& status) = 0;
    virtual void SetMasterMute(bool mute, std::int32_t& status) = 0;

    virtual std::int32_t GetLinePlayBack(std::int32_t& status) = 0;
    virtual void SetLinePlayBack(std::int32_t level, std::int32_t& status) = 0;
    virtual bool GetLinePlayBackMute(std::int32_t& status) = 0;
    virtual void SetLinePlayBackMute(bool mute, std::int32_t& status) = 0;

    virtual std::int32_t GetMicPlayBack(std::int32_t& status) = 0;
    virtual void SetMicPlayBack(std::int32_t level, std::int32_t& status) = 0;
    virtual bool GetMicPlayBackMute(std::int32_t& status) = 0;
    virtual void SetMicPlayBackMute(bool mute, std::int32_t& status) = 0;

    // The microphone's +20 dB.
    virtual bool GetMicBoost(std::int32_t& status) = 0;
    virtual void SetMicBoost(bool boost, std::int32_t& status) = 0;
    // True: what is recorded is not heard.
    virtual bool GetNoMonitor(std::int32_t& status) = 0;
    virtual void SetNoMonitor(bool noMonitor, std::int32_t& status) = 0;

    // Gains in decibels.
    virtual double GetBass(std::int32_t& status) = 0;
    virtual void SetBass(double gainDb, std::int32_t& status) = 0;
    virtual double GetMidRange(std::int32_t& status) = 0;
    virtual void SetMidRange(double gainDb, std::int32_t& status) = 0;
    virtual double GetTreble(std::int32_t& status) = 0;
    virtual void SetTreble(double gainDb, std::int32_t& status) = 0;
    // Limits of the three gains; both 0 for a card without tone controls.
    virtual void GetEQRange(double& minimumDb, double& maximumDb, std::int32_t& status) = 0;

    virtual std::int32_t GetMicRecordVolume(std::int32_t& status) = 0;
    virtual void SetMicRecordVolume(std::int32_t level, std::int32_t& status) = 0;
    virtual std::int32_t GetLineRecordVolume(std::int32_t& status) = 0;
    virtual void SetLineRecordVolume(std::int32_t level, std::int32_t& status) = 0;
};

}  // namespace sonavex
