#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "core/controls/Controls.h"
#include "core/dsp/BlockFill.h"
#include "core/generator/ToneTable.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"
#include "core/support/BlockSize.h"

namespace sonavex {

// The function generator: tone table, block synthesis and sweep steps. The table must not change while a
// block is filled.
class Generator : public BlockFill {
public:
    explicit Generator(const SharedState& shared) noexcept : shared_(shared) {}

    bool GeneratorRunning = false;     // FillGeneratorBlock does nothing while false
    std::int32_t GeneratorState = 0;   // 8 after a stop
    bool ToneUpdateBusy = false;       // FillGeneratorBlock reads the frequencies; upward sweeps wait
    bool SweepRunning = false;         // playing: sweeps advance
    std::int32_t SweepCycleCount = 0;  // cleared when a sweep starts again
    std::int32_t NumTones = 0;         // records in use, from index 0
    ToneTable Tones{};

    void SetGeneratorRunning(bool on) noexcept;

    // Resets the phase of every tone whose frequency has changed; the others continue. Error 11 for a
    // frequency of 0.
    void ResetTonePhases();

    // Adds the active tones to both arrays. A sine or square peaks at 32767 / 2 / (NumTones + 1); triangle
    // and sawtooth run from 0 to 32767 / (NumTones + 1). If the largest sample of the second array exceeds
    // 32760, both arrays are then scaled. Arrays shorter than count or a block, or more than 9 tones:
    // error 9. A frequency of 0: error 11. Does not allocate.
    void FillGeneratorBlock(std::span<double> first, std::span<double> second, std::int32_t count) override;

    // At start-up: sets the level slider to the stored level and initialises the defaults.
    void LoadGeneratorDefaults(const Settings& settings, Slider& sldLevel);

    // Advances every sweep by one millisecond. `yield` lets the event loop deliver events and returns whether
    // the tick may continue; it is called once, and once more before each tone.
    void AdvanceSweep(const std::function<bool()>& yield);

    // Whether the tone's sweep has not reached its end. True without a sweep.
    static bool UnderWay(const ToneRecord& tone);

    // Values set by LoadGeneratorDefaults.
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
    static constexpr std::size_t kChunk = kBlockFrames;

    ToneRecord& Tone(std::int32_t index);
    void UpdateIncrements(ToneRecord& tone) const;
    void CheckFrequencies();
    void AddTone(ToneRecord& tone, std::span<double> first, std::span<double> second);
    // These fill values_ with the tone's samples before amplitude scaling.
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
