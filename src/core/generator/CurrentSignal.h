#pragma once

#include <cstdint>
#include <functional>

#include "core/generator/GeneratorEnvironment.h"
#include "core/generator/PlayInterlock.h"
#include "core/generator/SignalControls.h"

namespace sonavex {

// The signal that is being set up, record 0 of the tone table: its controls, their check, their
// storage, start and stop. Moving a slider runs its first handler, letting it go its second one; so
// does finishing an entry in its box. User-interface thread only.
class CurrentSignal {
public:
    // Gives the controls their limits and takes their events. All must outlive this object.
    CurrentSignal(const GeneratorEnvironment& environment, SignalControls& controls,
                  PlayInterlock& interlock);
    CurrentSignal(const CurrentSignal&) = delete;
    CurrentSignal& operator=(const CurrentSignal&) = delete;

    // Start-up: the level as stored, shown and stored again.
    void RestoreLevel();
    // Start-up: the signal as stored. A value that does not convert raises 13 or 6, a waveform that is
    // not in the list 5; the text names the key.
    void Restore();

    // Whether frequencies (20 Hz to half the sampling rate) and sweep time (up to 10000 ms) in the boxes
    // are valid. If not, says so and gives the first box that is wrong the focus.
    bool CheckEntries();
    // The controls into the record, and the record into the settings.
    void SaveCurrentSignal();
    // Runs the first handler of each frequency slider that was moved by a change of its limits.
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
    // Starts (after CheckEntries) or stops. Whatever plays is stopped.
    void Command1_Click();

    // Given the level at every change, hundredths of a dB; to be passed on to the playback buffer where
    // there is one. May be empty.
    std::function<void(std::int32_t)> SetPlaybackVolume;

    std::int16_t ToneType = 0;  // waveform chosen last

private:
    void SetLimits();
    void TakeEvents();
    bool CheckFrequency(TextBox& box, const char* message);
    void TakeControls();
    // The step of the record's sweep; stays as it is without a sweep.
    void UpdateLoopIncrement();
    // The whole number nearest to the value, within the slider's limits.
    static void SetNearest(Slider& slider, double value);
    void Start();
    void Stop();
    ToneRecord& Record() const noexcept { return env_.generator.Tones.front(); }

    GeneratorEnvironment env_;
    SignalControls& controls_;
    PlayInterlock& interlock_;
    // Values that the handlers of the frequency sliders saw last.
    std::int32_t startSeen_ = 0;
    std::int32_t endSeen_ = 0;
};

}  // namespace sonavex
