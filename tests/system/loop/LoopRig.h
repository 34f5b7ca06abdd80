#pragma once

#include <cstdint>
#include <string>

#include "platform/plain/PlainEventLoop.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/World.h"

namespace sonavex {

// Error of a reading that rounding to 16 bit on both sides of the device may cause.
inline constexpr double kRoundingPercent = 0.006;

// The complete signal path: generator, engine, rings, simulated card with its device under test, and
// analysis. The card moves only when the test steps it. Messages and errors fail the test.
class LoopRig : private WorldOf<PlainEventLoop> {
public:
    explicit LoopRig(std::int32_t rateHz);
    ~LoopRig();
    LoopRig(const LoopRig&) = delete;
    LoopRig& operator=(const LoopRig&) = delete;

    // Plays one sine at 0 dB with a peak of 8191.75 steps.
    void PlaySine(double frequencyHz);
    void Connect(const DeviceUnderTestModel& model) { sound_.Card().SetDeviceUnderTest(model); }

    // Moves `blocks` blocks through the card; every one must return and be analysed.
    void Step(int blocks = 1);
    // Steps until 19 good blocks in a row are shown.
    void Settle();

    // Readings of harmonic n, 2 to 9.
    double Percent(int n) const;
    double Db(int n) const;
    std::string PercentText(int n) const;
    std::string DbText(int n) const;

    StreamEngine& Engine() { return instrument_.Engine; }

private:
    SimulatedSoundSystem sound_{loop, SimulatedSoundSystem::Pace::kStepped};
    Instrument instrument_{{store, sound_, loop, dialogs, errorLog, mixers}};

public:
    SharedState& shared = instrument_.Shared;
    Meter& meter = instrument_.Meter;
};

}  // namespace sonavex
