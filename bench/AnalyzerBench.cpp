// One reading of the precise measurement, against FFTW's real transform of the same length with an estimated
// plan.

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cmath>
#include <cstddef>
#include <memory>
#include <numbers>
#include <random>
#include <vector>

#include "core/analyzer/MeasureTone.h"

namespace {

constexpr int kLength = 65536;
constexpr double kRateHz = 48000.0;

std::vector<double> Tone(double hertz) {
    std::mt19937_64 random(1);
    std::normal_distribution<double> noise(0.0, 1e-7);
    std::vector<double> samples(kLength);
    for (std::size_t n = 0; n < samples.size(); ++n)
        samples[n] =
            0.5 * std::sin(2.0 * std::numbers::pi * hertz / kRateHz * static_cast<double>(n)) + noise(random);
    return samples;
}

void BM_RealFft65536(benchmark::State& state) {
    using Array = std::unique_ptr<double, void (*)(void*)>;
    const Array in(fftw_alloc_real(kLength), fftw_free);
    const Array out(fftw_alloc_real(kLength + 2), fftw_free);
    const std::vector<double> tone = Tone(997.0);
    std::copy(tone.begin(), tone.end(), in.get());
    auto* const spectrum = reinterpret_cast<fftw_complex*>(out.get());
    const fftw_plan plan = fftw_plan_dft_r2c_1d(kLength, in.get(), spectrum, FFTW_ESTIMATE);
    for (auto _ : state) {
        fftw_execute(plan);
        benchmark::DoNotOptimize(out.get()[2]);
        benchmark::ClobberMemory();
    }
    fftw_destroy_plan(plan);
}
BENCHMARK(BM_RealFft65536);

// The argument is the number of lines: a tone whose harmonics up to it are below half the rate, at most 20.
void BM_AnalyzeTone65536(benchmark::State& state) {
    const double hertz = 0.5 * kRateHz / (static_cast<double>(state.range(0)) + 0.9);
    const std::vector<double> samples = Tone(hertz);
    const sonavex::RecordPlan plan(kLength, kRateHz);
    const sonavex::Record record{samples, kRateHz};
    sonavex::Reading reading;
    for (auto _ : state) {
        reading = sonavex::AnalyzeTone(plan, record, {});
        benchmark::DoNotOptimize(reading);
    }
    if (!reading.Valid() || reading.lines != static_cast<std::size_t>(state.range(0)))
        state.SkipWithError("the tone was not measured as intended");
}
BENCHMARK(BM_AnalyzeTone65536)->Arg(10)->Arg(20);

}  // namespace
