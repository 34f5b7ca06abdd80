#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/generator/GeneratorNeeds.h"
#include "core/generator/PlayInterlock.h"
#include "core/generator/SignalControls.h"

namespace sonavex {

// The current signal, record 0 of the tone table: its controls, validation, storage, start and stop. Moving a
// slider runs its handler "_First"; releasing it, or leaving its box, runs "_Second".
class CurrentSignal {
public:
    // Sets the limits of the controls and handles their events. All referenced objects must outlive this
    // object.
    CurrentSignal(const GeneratorNeeds& needs, SignalControls& controls, PlayInterlock& interlock);
    CurrentSignal(const CurrentSignal&) = delete;
    CurrentSignal& operator=(const CurrentSignal&) = delete;

    // At start-up: shows the stored level and stores it again.
    void RestoreLevel();
    // At start-up: restores the stored signal. A value that does not convert raises 13 or 6, an unknown
    // waveform 5; the text names the key.
    void Restore();

    // Checks the frequencies (20 Hz to half the sampling rate) and the sweep time (up to 10000 ms) in the
    // boxes. If one is invalid, shows a message, sets the focus to the first wrong box and returns false.
    bool CheckEntries();
    // Text for an invalid frequency: the message and the valid range.
    std::string WithRange(const char* message) const;
    // Copies the controls to the record and stores the record in the settings.
    void SaveCurrentSignal();
    // Runs the handler "_First" of each frequency slider whose value was clamped by new limits.
    void FollowLimits();

    void cmbType_Click();
    void chkLoop_Click();
    void sldStartFreq_First();
    void sldStartFreq_Second();
    void sldEndFreq_First();
    void sldEndFreq_Second();
    void sldSweepTime_First();
    void sldSweepTime_Second();
    void sldLevel_First();
    void sldLevel_Second() { sldLevel_First(); }
    void txtGenFreq_Change();
    void txtGenEndFreq_Change();
    void txtSweepTime_Change();
    // Starts (after CheckEntries) or stops. Stops whatever is playing.
    void Command1_Click();

    // Called with the level (hundredths of a dB) at every change, to set the volume of the playback buffer.
    // May be empty.
    std::function<void(std::int32_t)> OnLevel;

    std::int16_t ToneType = 0;  // last selected waveform

private:
    void SetLimits();
    void TakeEvents();
    bool CheckFrequency(TextBox& box, const char* message);
    void TakeControls();
    // Computes the step of the record's sweep; does nothing without a sweep.
    void UpdateLoopIncrement();
    // Sets the slider to the nearest whole number within its limits.
    static void SetNearest(Slider& slider, double value);
    void Start();
    void Stop();
    void SwitchSweep();
    ToneRecord& Record() const noexcept { return needs_.generator.Tones.front(); }

    GeneratorNeeds needs_;
    SignalControls& controls_;
    PlayInterlock& interlock_;
    // Last values that the handlers of the frequency sliders saw.
    std::int32_t startSeen_ = 0;
    std::int32_t endSeen_ = 0;
};

}  // namespace sonavex
