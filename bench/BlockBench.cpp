// The whole block path: from one captured block to one output block.

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "core/audio/Meter.h"

namespace {

using namespace sonavex;

using Block = std::array<std::int16_t, kBlockSamples>;

// A sine on bin 85 with some distortion on both channels, so that the meter locks.
Block CapturedBlock() {
    Block block{};
    for (std::size_t i = 0; i < block.size() / 2; ++i) {
        const double angle = 2.0 * std::numbers::pi * 85.0 / 4096.0 * static_cast<double>(i);
        const auto sample =
            static_cast<std::int16_t>(std::lrint(8000.0 * std::sin(angle) + 20.0 * std::sin(2.0 * angle)));
        block[2 * i] = sample;
        block[2 * i + 1] = sample;
    }
    return block;
}

void AddTones(Generator& generator, std::int64_t count, std::int16_t waveType) {
    for (std::int64_t i = 0; i < count; ++i) {
        ToneRecord& tone = generator.Tones[static_cast<std::size_t>(i)];
        tone.WaveType = waveType;
        tone.Frequency = 440.0 + 317.0 * static_cast<double>(i);
        tone.SweepFrequency = tone.Frequency;
    }
    generator.NumTones = static_cast<std::int32_t>(count);
    generator.ResetTonePhases();
    generator.SetGeneratorRunning(count > 0);
}

void MeasureBlocks(benchmark::State& state, std::int16_t waveType) {
    SharedState shared;
    shared.SampleRate = 48000;
    Meter meter(shared);
    meter.Controls.chkAuto.SetValue(1);
    meter.Controls.chkMuteOutput.SetValue(1);
    meter.SetUpAnalysis(25, 23900);
    AddTones(meter.Generator, state.range(0), waveType);
    const Block captured = CapturedBlock();
    Block playback{};
    for (auto _ : state) {
        meter.ProcessCapturedBlock(captured, playback);
        benchmark::DoNotOptimize(playback[0]);
        benchmark::ClobberMemory();
    }
}

void BM_Block(benchmark::State& state) {
    MeasureBlocks(state, wave::kSine);
}
BENCHMARK(BM_Block)->Arg(0)->Arg(1)->Arg(9);

void BM_BlockSquare(benchmark::State& state) {
    MeasureBlocks(state, wave::kSquare);
}
BENCHMARK(BM_BlockSquare)->Arg(9);

void BM_BlockTriangle(benchmark::State& state) {
    MeasureBlocks(state, wave::kTriangle);
}
BENCHMARK(BM_BlockTriangle)->Arg(9);

void BM_BlockSawtooth(benchmark::State& state) {
    MeasureBlocks(state, wave::kSawtooth);
}
BENCHMARK(BM_BlockSawtooth)->Arg(9);

}  // namespace
