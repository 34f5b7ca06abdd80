#pragma once

#include <array>
#include <cstdint>

namespace sonavex {

// Waveforms by their index in the list. Any other index plays a constant.
namespace wave {
inline constexpr std::int16_t kSine = 0;
inline constexpr std::int16_t kSquare = 1;
inline constexpr std::int16_t kTriangle = 2;
inline constexpr std::int16_t kSawtooth = 3;
}  // namespace wave

inline constexpr std::array<const char*, 4> kWaveNames{"Sine", "Square", "Triangle", "Sawtooth"};

// One tone: its settings and its present state. Frequencies in Hz.
struct ToneRecord {
    std::int16_t WaveType = wave::kSine;
    double Frequency = 0.0;      // playing now
    bool Sweep = false;          // from StartFrequency to EndFrequency
    double LoopIncrement = 0.0;  // Hz per millisecond tick, negative downwards
    double StartFrequency = 0.0;
    double EndFrequency = 0.0;
    double SweepFrequency = 0.0;  // present frequency of the sweep
    double LastFrequency = 0.0;   // frequency of the present PhaseIncrement and Period
    std::int32_t SweepTime = 0;   // milliseconds, 0 for no sweep
    bool Loop = false;            // repeats the sweep
    double Phase = 0.0;           // sine, square: radians; triangle, sawtooth: value 0 to 1
    double PhaseIncrement = 0.0;  // radians per sample
    double Period = 0.0;          // samples per cycle, not rounded
    double SampleCount = 0.0;     // samples since the cycle's start
};

// Record 0 is the current signal, 1 to 8 are the memory tones.
inline constexpr std::int32_t kToneRecords = 9;
using ToneTable = std::array<ToneRecord, kToneRecords>;

}  // namespace sonavex
