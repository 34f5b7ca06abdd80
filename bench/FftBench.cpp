// The reference for all ratios: FFTW's transform of the block path's length, on split arrays, always with an
// estimated plan, whatever plan the instrument uses.

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cstddef>
#include <memory>

namespace {

constexpr int kLength = 4096;

using Array = std::unique_ptr<double, void (*)(void*)>;

Array MakeArray(double start) {
    Array array(fftw_alloc_real(kLength), fftw_free);
    for (int i = 0; i < kLength; ++i) array.get()[i] = start * static_cast<double>((i * 37) % 101);
    return array;
}

void BM_Fft4096(benchmark::State& state) {
    const Array inRe = MakeArray(1.0);
    const Array inIm = MakeArray(2.0);
    const Array outRe = MakeArray(0.0);
    const Array outIm = MakeArray(0.0);
    const fftw_iodim dimension{kLength, 1, 1};
    const fftw_plan plan = fftw_plan_guru_split_dft(1, &dimension, 0, nullptr, inRe.get(), inIm.get(),
                                                    outRe.get(), outIm.get(), FFTW_ESTIMATE);
    for (auto _ : state) {
        fftw_execute(plan);
        benchmark::DoNotOptimize(outRe.get()[1]);
        benchmark::ClobberMemory();
    }
    fftw_destroy_plan(plan);
}
BENCHMARK(BM_Fft4096);

}  // namespace
