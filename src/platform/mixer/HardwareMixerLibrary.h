#pragma once

#include <memory>

#include "core/ports/QuenbyVista.h"
#include "platform/mixer/MixerHardware.h"

namespace sonavex {

// The newer mixer library on any hardware. Status: 0 done, 1 the card has no such control, 2 no card
// is bound or it does not answer.
class HardwareMixerLibrary : public QuenbyVista {
public:
    // The hardware must outlive this object.
    explicit HardwareMixerLibrary(MixerHardware& hardware) noexcept : hardware_(hardware) {}

    void OpenSoundCard(const std::string& playbackDevice, const std::string& captureDevice,
                       const std::string& reserved, std::int32_t& status) override;
    void CloseSoundCard(std::int32_t& status) override;

    std::int32_t GetMasterVolume(std::int32_t& status) override;
    std::int32_t SetMasterVolume(std::int32_t level, std::int32_t& status) override;
    bool GetMasterMute(std::int32_t& status) override;
    void SetMasterMute(bool mute, std::int32_t& status) override;
    std::int32_t GetLinePlayBack(std::int32_t& status) override;
    void SetLinePlayBack(std::int32_t level, std::int32_t& status) override;
    bool GetLinePlayBackMute(std::int32_t& status) override;
    void SetLinePlayBackMute(bool mute, std::int32_t& status) override;
    std::int32_t GetMicPlayBack(std::int32_t& status) override;
    void SetMicPlayBack(std::int32_t level, std::int32_t& status) override;
    bool GetMicPlayBackMute(std::int32_t& status) override;
    void SetMicPlayBackMute(bool mute, std::int32_t& status) override;
    bool GetMicBoost(std::int32_t& status) override;
    void SetMicBoost(bool boost, std::int32_t& status) override;
    bool GetNoMonitor(std::int32_t& status) override;
    void SetNoMonitor(bool noMonitor, std::int32_t& status) override;
    double GetBass(std::int32_t& status) override;
    void SetBass(double gainDb, std::int32_t& status) override;
    double GetMidRange(std::int32_t& status) override;
    void SetMidRange(double gainDb, std::int32_t& status) override;
    double GetTreble(std::int32_t& status) override;
    void SetTreble(double gainDb, std::int32_t& status) override;
    void GetEQRange(double& minimumDb, double& maximumDb, std::int32_t& status) override;
    std::int32_t GetMicRecordVolume(std::int32_t& status) override;
    void SetMicRecordVolume(std::int32_t level, std::int32_t& status) override;
    std::int32_t GetLineRecordVolume(std::int32_t& status) override;
    void SetLineRecordVolume(std::int32_t level, std::int32_t& status) override;

private:
    MixerElement* Find(MixerFunction function, std::int32_t& status);
    std::int32_t Level(MixerFunction function, std::int32_t absent, std::int32_t& status);
    void SetLevel(MixerFunction function, std::int32_t level, std::int32_t& status);
    bool Switch(MixerFunction function, bool absent, std::int32_t& status);
    void SetSwitch(MixerFunction function, bool on, std::int32_t& status);
    double Gain(MixerFunction function, std::int32_t& status);
    void SetGain(MixerFunction function, double gainDb, std::int32_t& status);

    MixerHardware& hardware_;
    std::shared_ptr<DeviceMixer> playback_;
    std::shared_ptr<DeviceMixer> capture_;
};

}  // namespace sonavex
