// How long a point of a run takes, in virtual time on the stepped card: the time without the delay of the
// path, as a ratio to two records. The time that the benchmark itself reports is that of the computation.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <vector>

#include "core/run/RunMeasurement.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/InlineBackground.h"
#include "support/World.h"

namespace {

using namespace sonavex;
using namespace std::chrono_literals;

constexpr std::int32_t kRateHz = 48000;
constexpr std::uint32_t kPathFrames = 4800;
constexpr auto kStep = 5ms;
constexpr auto kLongestRun = 60s;

class RunOnCard {
public:
    RunOnCard() {
        instrument.Shared.SampleRate = kRateHz;
        DeviceUnderTestModel model;
        model.bits = 24;
        model.delayFrames = kPathFrames;
        sound.Card().SetDeviceUnderTest(model);
        ready = instrument.Engine.CreateDevices() && instrument.Engine.SetEvents();
        if (!ready) return;
        instrument.Engine.ResetStream();
        instrument.StartCapture();
        Pass(1s);
    }

    // The ends of all points but the first, whose burst measures the path; empty after an invalid point.
    std::vector<std::chrono::nanoseconds> Ends(const RunPlan& plan) {
        std::vector<std::chrono::nanoseconds> ends;
        run.OnPoint = [&](const RunPointResult& result) {
            if (result.Valid() && result.attempts == 1) ends.push_back(world.loop.Now());
        };
        run.Start(plan);
        const auto limit = world.loop.Now() + kLongestRun;
        while (run.Active() && world.loop.Now() < limit) Pass(kStep);
        if (ends.size() != run.Points().size()) ends.clear();
        return ends;
    }

    bool ready = false;

private:
    void Pass(std::chrono::milliseconds time) {
        for (auto passed = 0ms; passed < time; passed += kStep) {
            sound.Card().Step(kRateHz * kStep / 1s);
            world.loop.Advance(kStep);
        }
    }

    World world;
    SimulatedSoundSystem sound{world.loop, SimulatedSoundSystem::Pace::kStepped};
    sonavex::Instrument instrument{
        {world.store, sound, world.loop, world.dialogs, world.errorLog, world.mixers}};
    InlineBackground background{world.loop};
    PreciseMeasurement measurement{{world.loop, instrument, background}};
    RunMeasurement run{{world.loop, instrument, measurement, background}};
};

// The argument is the length of a record.
void BM_RunPoint(benchmark::State& state) {
    RunPlan plan;
    plan.frequenciesHz = std::vector<double>{100, 997.3, 3000, 6000};
    plan.length = static_cast<std::size_t>(state.range(0));
    std::vector<std::chrono::nanoseconds> ends;
    for (auto _ : state) {
        RunOnCard card;
        if (card.ready) ends = card.Ends(plan);
        benchmark::DoNotOptimize(ends.data());
    }
    if (ends.empty()) {
        state.SkipWithError("a point was not measured at the first attempt");
        return;
    }
    const double points = static_cast<double>(ends.size() - 1);
    const double seconds = std::chrono::duration<double>(ends.back() - ends.front()).count() / points;
    const double path = static_cast<double>(kPathFrames) / kRateHz;
    const double records = 2.0 * static_cast<double>(state.range(0)) / kRateHz;
    state.counters["ratio"] = (seconds - path) / records;
}
BENCHMARK(BM_RunPoint)->Arg(32768)->Arg(65536)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
