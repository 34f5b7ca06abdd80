// Rings between device and engine: one block through each ring, in periods of a device's size.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/ring/CaptureRing.h"
#include "platform/ring/PlaybackRing.h"

namespace {

using namespace sonavex;

constexpr std::size_t kBlockFrames = 2048;
constexpr std::size_t kPeriodFrames = 256;
constexpr std::int32_t kSegmentBytes = 8192;
constexpr std::int32_t kCaptureBytes = 4 * kSegmentBytes;
constexpr std::int32_t kPlaybackBytes = 8 * kSegmentBytes;

using Samples = std::array<std::int16_t, 2 * kBlockFrames>;

class SilentBell : public Signal {
public:
    bool Raise() noexcept override { return true; }
};

// A loud block in which neighbouring samples differ.
Samples Block() {
    Samples samples{};
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<std::int16_t>((i * 7919) % 60001 - 30000);
    return samples;
}

// Notifies at the end of each segment, as the stream engine requests.
void BM_RingPush(benchmark::State& state) {
    CaptureRing ring(kCaptureBytes);
    std::vector<CaptureRing::Position> positions;
    for (std::int32_t segment = 1; segment <= 4; ++segment)
        positions.push_back({segment * kSegmentBytes - kFrameBytes, std::make_shared<SilentBell>()});
    ring.SetPositions(std::move(positions));
    ring.Start();
    const Samples samples = Block();
    for (auto _ : state) {
        for (std::size_t at = 0; at < kBlockFrames; at += kPeriodFrames)
            ring.Push(samples.data() + 2 * at, kPeriodFrames);
        benchmark::ClobberMemory();
    }
    ring.Stop();
}
BENCHMARK(BM_RingPush);

void BM_RingRead(benchmark::State& state) {
    CaptureRing ring(kCaptureBytes);
    Samples samples{};
    for (auto _ : state) {
        ring.Read(kSegmentBytes, samples);
        benchmark::DoNotOptimize(samples[0]);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_RingRead);

void BM_RingWrite(benchmark::State& state) {
    PlaybackRing ring(kPlaybackBytes, 48000);
    const Samples samples = Block();
    for (auto _ : state) {
        ring.Write(kSegmentBytes, samples);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_RingWrite);

// Argument: the level in hundredths of a decibel.
void BM_RingPull(benchmark::State& state) {
    PlaybackRing ring(kPlaybackBytes, 48000);
    const Samples written = Block();
    for (std::int32_t block = 0; block < 8; ++block) ring.Write(block * kSegmentBytes, written);
    ring.SetVolume(static_cast<std::int32_t>(state.range(0)));
    ring.Play();
    Samples samples{};
    for (auto _ : state) {
        for (std::size_t at = 0; at < kBlockFrames; at += kPeriodFrames)
            ring.Pull(samples.data() + 2 * at, kPeriodFrames, 1024);
        benchmark::DoNotOptimize(samples[0]);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_RingPull)->Arg(0)->Arg(-600);

// One second at 192 kHz through the queues of fine frames, both ways, in periods of the device and blocks of
// the user-interface thread. 10 ms would be 1 % of a core.
void BM_FineSecond(benchmark::State& state) {
    constexpr std::size_t kRateHz = 192000;
    CaptureRing in(kCaptureBytes, 2 * kRateHz);
    PlaybackRing out(kPlaybackBytes, kRateHz);
    in.Start();
    in.CaptureFine(true);
    out.SetBits(24);
    out.PlayFine(true);
    out.SetVolume(static_cast<std::int32_t>(state.range(0)));
    out.Play();
    std::array<std::int32_t, 2 * kBlockFrames> block{};
    for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<std::int32_t>(i * 2654435761U);
    std::array<std::int32_t, 2 * kPeriodFrames> period{};
    for (auto _ : state) {
        for (std::size_t at = 0; at < kRateHz; at += kBlockFrames) {
            out.QueueFine(block);
            for (std::size_t done = 0; done < kBlockFrames; done += kPeriodFrames) {
                out.Pull(period.data(), kPeriodFrames, 1024);
                in.Push(period.data(), kPeriodFrames);
            }
            in.TakeFine(block);
        }
        benchmark::ClobberMemory();
    }
    state.SetLabel("1 s at 192 kHz");
}
BENCHMARK(BM_FineSecond)->Arg(0)->Arg(-600)->Unit(benchmark::kMicrosecond);

}  // namespace
