// One tone of each waveform added to a block.

#include <benchmark/benchmark.h>

#include <array>

#include "core/generator/Generator.h"

namespace {

using namespace sonavex;

void BM_FillGeneratorBlock(benchmark::State& state) {
    SharedState shared;
    shared.SampleRate = 48000;
    Generator generator(shared);
    generator.Tones[0].WaveType = static_cast<std::int16_t>(state.range(0));
    generator.Tones[0].Frequency = 997.0;
    generator.Tones[0].SweepFrequency = 997.0;
    generator.NumTones = 1;
    generator.ResetTonePhases();
    generator.SetGeneratorRunning(true);
    state.SetLabel(kWaveNames[static_cast<std::size_t>(state.range(0))]);
    std::array<double, 2048> first{};
    std::array<double, 2048> second{};
    for (auto _ : state) {
        first.fill(0.0);
        second.fill(0.0);
        generator.FillGeneratorBlock(first, second, 2048);
        benchmark::DoNotOptimize(first[0]);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_FillGeneratorBlock)->DenseRange(wave::kSine, wave::kSawtooth);

}  // namespace
