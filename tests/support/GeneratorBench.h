#pragma once

#include <array>
#include <vector>

#include "core/generator/Generator.h"

namespace sonavex {

inline constexpr std::int32_t kBlock = 2048;

// A generator with its shared state and blocks to fill.
struct GeneratorBench {
    explicit GeneratorBench(std::int32_t rateHz = 48000) { shared.SampleRate = rateHz; }

    // Adds a tone with a constant frequency.
    ToneRecord& Add(std::int16_t waveType, double frequencyHz) {
        ToneRecord& tone = generator.Tones.at(static_cast<std::size_t>(generator.NumTones++));
        tone.WaveType = waveType;
        tone.Frequency = frequencyHz;
        tone.StartFrequency = frequencyHz;
        tone.SweepFrequency = frequencyHz;
        return tone;
    }
    // Starts the generator as the start buttons do.
    void Run() {
        generator.ResetTonePhases();
        generator.SetGeneratorRunning(true);
    }
    // The next samples, added to silence; both channels must be equal.
    std::vector<double> Fill(std::int32_t count = kBlock) {
        first.assign(first.size(), 0.0);
        second.assign(second.size(), 0.0);
        generator.FillGeneratorBlock(first, second, count);
        return {first.begin(), first.begin() + count};
    }
    // `count` samples, in blocks of 2048.
    std::vector<double> Samples(std::size_t count) {
        std::vector<double> samples;
        while (samples.size() < count) {
            const std::vector<double> block = Fill();
            samples.insert(samples.end(), block.begin(), block.end());
        }
        samples.resize(count);
        return samples;
    }

    SharedState shared;
    Generator generator{shared};
    std::vector<double> first = std::vector<double>(4097);
    std::vector<double> second = std::vector<double>(4097);
};

}  // namespace sonavex
