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

// A generator of the test's own: adds what it is told to, or nothing.
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

    // One block, or several from a signal that goes on from call to call.
    void Feed(std::span<const std::int16_t> block);
    void Feed(const StereoSignal& signal, int blocks);

    // A bin and the magnitude that it shall have.
    using Line = std::pair<std::int32_t, double>;
    // One block whose filtered spectrum has exactly these lines: the filter is replaced by them and
    // the block is a single step of 1. Every other bin is 0.
    void FeedLines(const std::vector<Line>& lines, int blocks = 1);

    // One cycle's end without the blocks before it: the averages of these lines alone, over 19.
    void MeasureLines(const std::vector<Line>& lines);

    // Captions of one kind in a row, separated by blanks; an empty one is shown as "-".
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
