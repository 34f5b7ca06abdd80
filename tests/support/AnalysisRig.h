#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "core/dsp/display/MeasurementControls.h"
#include "core/dsp/display/MeterDisplay.h"
#include "core/dsp/modDSP.h"
#include "core/settings/SharedState.h"
#include "support/Blocks.h"

namespace sonavex {

// A scripted generator: adds the given samples, or nothing.
class ScriptedFill : public BlockFill {
public:
    std::function<void(std::span<double>, std::span<double>, std::int32_t)> fill;

    void FillGeneratorBlock(std::span<double> first, std::span<double> second, std::int32_t count) override {
        if (fill) fill(first, second, count);
    }
};

// The analysis and its display, fed by the test. Automatic frequency and muted output
// unless the test says otherwise.
class AnalysisRig {
public:
    explicit AnalysisRig(std::int32_t sampleRate, std::int32_t lowHz = 25);

    // Feeds one block, or several from a signal that continues between calls.
    void Feed(std::span<const std::int16_t> block);
    void Feed(const StereoSignal& signal, int blocks);

    // A bin and its magnitude.
    using Line = std::pair<std::int32_t, double>;
    // Feeds blocks whose filtered spectrum has exactly these lines and 0 elsewhere: the lines replace the
    // filter, and the block is a single step of 1.
    void FeedLines(const std::vector<Line>& lines, int blocks = 1);

    // Measures these lines as the last block of a cycle. The other 18 slots are empty; the averages are over
    // all 19.
    void MeasureLines(const std::vector<Line>& lines);

    // Captions of one kind, separated by blanks; an empty caption is "-".
    std::string Percentages() const;
    std::string Levels() const;

    SharedState shared;
    std::unique_ptr<modDSP::State> state;
    MeasurementControls controls;
    MeterDisplay display{controls};
    Readings readings;
    ScriptedFill generator;
    Block playback{};

private:
    std::int64_t nextFrame_ = 0;
};

}  // namespace sonavex
