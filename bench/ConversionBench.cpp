// The vector conversions of one transform length, and conversions between numbers and text.

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>

#include "core/dsp/modDSP.h"
#include "core/text/Numbers.h"

namespace {

using namespace sonavex;
using namespace sonavex::modSPL2VB;

constexpr std::int32_t kLength = modDSP::kFftLength;

struct Arrays {
    modDSP::AnalysisVector a{};
    modDSP::AnalysisVector b{};
    modDSP::AnalysisVector c{};
    modDSP::AnalysisVector d{};

    Arrays() {
        for (std::size_t i = 0; i < a.size(); ++i) {
            a[i] = std::sin(0.37 * static_cast<double>(i));
            b[i] = std::cos(0.91 * static_cast<double>(i));
        }
    }
};

template <class Operation>
void Measure(benchmark::State& state, Operation operation) {
    const auto arrays = std::make_unique<Arrays>();
    for (auto _ : state) {
        operation(*arrays);
        benchmark::ClobberMemory();
    }
}

void BM_CartToPolar(benchmark::State& state) {
    Measure(state, [](Arrays& v) { nspdbrCartToPolar(v.a, v.b, v.c, v.d, kLength); });
}
BENCHMARK(BM_CartToPolar);

void BM_PolarToCart(benchmark::State& state) {
    Measure(state, [](Arrays& v) { nspdbrPolarToCart(v.a, v.b, v.c, v.d, kLength); });
}
BENCHMARK(BM_PolarToCart);

void BM_Magnitudes(benchmark::State& state) {
    Measure(state, [](Arrays& v) { Magnitudes(v.a, v.b, v.c, kLength); });
}
BENCHMARK(BM_Magnitudes);

void BM_LargestMagnitude(benchmark::State& state) {
    Measure(state, [](Arrays& v) { benchmark::DoNotOptimize(LargestMagnitude(v.a, v.b, kLength)); });
}
BENCHMARK(BM_LargestMagnitude);

void BM_MultiplyComplex(benchmark::State& state) {
    Measure(state, [](Arrays& v) { MultiplyComplex(v.a, v.b, v.c, v.d, kLength); });
}
BENCHMARK(BM_MultiplyComplex);

void BM_Maximum(benchmark::State& state) {
    Measure(state, [](Arrays& v) { benchmark::DoNotOptimize(nspdMax(v.a, kLength)); });
}
BENCHMARK(BM_Maximum);

void BM_FormatPercent(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(Format(0.8399123, Pattern::kPercent));
}
BENCHMARK(BM_FormatPercent);

void BM_Val(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(Val("0.8399"));
}
BENCHMARK(BM_Val);

}  // namespace
