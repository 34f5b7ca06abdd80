// The image of the spectrum plot: columns and pixels of a live and a kept trace of 65536 points, in a plot of
// 608 x 350 at 100 % and 200 %.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>

#include "core/plot/TraceColumns.h"
#include "core/plot/TraceImage.h"

namespace {

using namespace sonavex;

SpectrumTrace NoisyTone(double noisePower, double records) {
    SpectrumTrace trace{"", std::vector<float>(32769), 48000.0 / 65536, records};
    std::mt19937_64 random(1);
    std::gamma_distribution<double> noise(records, noisePower / records);
    for (float& bin : trace.power) bin = static_cast<float>(noise(random));
    for (std::size_t order = 1; order <= 9; ++order) trace.power[order * 1365] = order == 1 ? 0.8F : 1e-11F;
    return trace;
}

// The argument is the scale in percent.
void BM_SpectrumImage65536(benchmark::State& state) {
    const auto scale = static_cast<double>(state.range(0)) / 100.0;
    const auto width = static_cast<std::size_t>(608 * scale);
    const auto height = static_cast<std::size_t>(350 * scale);
    const SpectrumTrace live = NoisyTone(1e-14, 8);
    const SpectrumTrace kept = NoisyTone(1e-13, 8);
    const PlotRange decades{1.0, std::log10(24000.0)};
    TraceImage image;
    for (auto _ : state) {
        image.Begin(width, height);
        DrawTrace(image, TraceColumns(kept, decades, width), {-180, 0}, {{229, 150, 207}, scale, 0.22});
        DrawTrace(image, TraceColumns(live, decades, width), {-180, 0}, {{74, 160, 255}, 1.3 * scale, 0.3});
        benchmark::DoNotOptimize(image.Pixels().data());
        benchmark::ClobberMemory();
    }
    std::uint64_t drawn = 0;
    for (const std::uint32_t pixel : image.Pixels()) drawn += pixel != 0;
    if (drawn < 2 * width) state.SkipWithError("the traces were not drawn");
}
BENCHMARK(BM_SpectrumImage65536)->Arg(100)->Arg(200)->Unit(benchmark::kMicrosecond);

}  // namespace
