#pragma once

#include <gtest/gtest.h>

#include "support/GeneratorBench.h"

namespace sonavex {

// A generator with sweeping tones, ticked by hand.
class SweepBench : public testing::Test {
public:
    ToneRecord& Sweep(double startHz, double endHz, std::int32_t timeMs) {
        ToneRecord& tone = bench.Add(wave::kSine, startHz);
        tone.EndFrequency = endHz;
        tone.SweepTime = timeMs;
        tone.LoopIncrement = (endHz - startHz) / timeMs;
        tone.Sweep = true;
        generator.SweepRunning = true;
        return tone;
    }
    void Tick(int times = 1) {
        for (int i = 0; i < times; ++i)
            generator.AdvanceSweep([this] {
                ++yields;
                return true;
            });
    }

    GeneratorBench bench;
    Generator& generator = bench.generator;
    int yields = 0;
};

}  // namespace sonavex
