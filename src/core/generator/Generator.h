#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "core/controls/Controls.h"
#include "core/dsp/BlockFill.h"
#include "core/generator/Tones.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// The function generator: the table of tones, their synthesis block by block and the step of their
// sweeps. User-interface thread only; nobody may change the table while a block is filled.
class Generator : public BlockFill {
public:
    explicit Generator(const SharedState& shared) noexcept : shared_(shared) {}

    bool GeneratorRunning = false;     // the fill does nothing while false
    std::int32_t GeneratorState = 0;   // 8 after a stop
    bool ToneUpdateBusy = false;       // the fill looks at the frequencies; upward sweeps wait
    bool SweepRunning = false;         // playing: sweeps advance
    std::int32_t SweepCycleCount = 0;  // cleared when a sweep starts again
    std::int32_t NumTones = 0;         // records in use, from index 0
    ToneTable Tones{};

    void SetGeneratorRunning(bool on) noexcept;

    // Starts every tone whose frequency changed at phase 0; the others go on where they are.
    // Error 11 for a frequency of 0.
    void ResetTonePhases();

    // Peak of a sine or square 32767 / 2 / (NumTones + 1), triangle and sawtooth from 0 to
    // 32767 / (NumTones + 1). Afterwards both arrays are scaled when the second one's largest sample
    // exceeds 32760. Arrays shorter than count or than 2048, or more than 9 tones: error 9; a
    // frequency of 0: error 11. Allocates nothing.
    void FillGeneratorBlock(std::span<double> first, std::span<double> second, std::int32_t count) override;

    // Once at start-up: the level slider from the stored level, and the module's own values.
    void LoadGeneratorDefaults(const Settings& settings, Slider& sldLevel);

    // One millisecond of every sweep. `yield` lets the system deliver its events and answers whether
    // the tick shall go on; it is called once, and once more before each tone.
    void AdvanceSweep(const std::function<bool()>& yield);

    // Whether the tone's sweep, if it has one, has not yet reached its end.
    static bool UnderWay(const ToneRecord& tone);

    // What LoadGeneratorDefaults leaves behind.
    struct Defaults {
        double level = 0.0;  // hundredths of a dB, as stored
        std::string name;
        bool enabled = false;
        std::array<double, 3> constants{};
        double sampleRate = 0.0;
        std::int32_t referenceRate = 0;
        std::int32_t blockLength = 0;
    };
    const Defaults& LoadedDefaults() const noexcept { return defaults_; }

private:
    static constexpr std::size_t kChunk = 2048;

    ToneRecord& Tone(std::int32_t index);
    void UpdateIncrements(ToneRecord& tone) const;
    void CheckFrequencies();
    void AddTone(ToneRecord& tone, std::span<double> first, std::span<double> second);
    // Fills values_ with what the tone contributes, before its amplitude.
    void MakeSine(ToneRecord& tone, std::size_t count);
    void MakeSquare(ToneRecord& tone, std::size_t count);
    void MakeTriangle(ToneRecord& tone, std::size_t count);
    void MakeSawtooth(ToneRecord& tone, std::size_t count);
    void StepSweep(ToneRecord& tone);

    const SharedState& shared_;
    Defaults defaults_;
    alignas(64) std::array<double, kChunk> angles_{};
    alignas(64) std::array<double, kChunk> values_{};
};

}  // namespace sonavex
