#pragma once

#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"

namespace sonavex {

// Limits of the sliders. The frequency sliders end at half the sampling rate.
inline constexpr std::int32_t kLowestLevel = -9600;  // hundredths of a dB
inline constexpr std::int32_t kHighestLevel = 0;
inline constexpr std::int32_t kLowestFrequency = 1;     // Hz
inline constexpr std::int32_t kLongestSweepMs = 10000;  // milliseconds

// Colours of picGenRunning.
inline constexpr Colour kGeneratorPlaying = kLightGreen;
inline constexpr Colour kGeneratorStopped{128, 128, 128};

// Controls of the current signal. Each frequency and the sweep time have a slider and a box with the same
// value.
struct SignalControls {
    static constexpr const char* kStartCurrent = "Start Current";
    static constexpr const char* kStopCurrent = "Stop Current";

    ComboBox cmbType;         // waveform, by its index in kWaveNames
    Slider sldStartFreq;      // Hz
    TextBox txtGenFreq;       // Hz
    Slider sldEndFreq;        // Hz
    TextBox txtGenEndFreq;    // Hz
    Slider sldSweepTime;      // milliseconds, 0 for no sweep
    TextBox txtSweepTime;     // milliseconds
    CheckBox chkLoop;         // repeats the sweep
    Slider sldLevel;          // output level, hundredths of a dB; also used by memory tones
    Label lblGenLevel;        // the level in dB
    CommandButton Command1;   // kStartCurrent or kStopCurrent
    Indicator picGenRunning;  // kGeneratorPlaying while anything plays
};

// Controls of the memory tones.
struct MemoryControls {
    static constexpr std::int32_t kEntries = 8;

    ListBox ToneList;              // one line per tone
    CommandButton cmdGenAdd;       // adds the current signal
    CommandButton cmdRemove;       // removes the selected entries
    CommandButton cmdStartMemory;  // "Start Memory" or "Stop Memory"
};

}  // namespace sonavex
