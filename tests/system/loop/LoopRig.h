#pragma once

#include <cstdint>
#include <string>

#include "core/audio/Instrument.h"
#include "platform/plain/MemorySettingsStore.h"
#include "platform/plain/PlainEventLoop.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex {

// Error of a reading that rounding to 16 bit on both sides of the device may cause.
inline constexpr double kRoundingPercent = 0.006;

// The complete signal path: generator, engine, rings, simulated card with its device under test, and
// analysis. The card moves only when the test steps it.
class LoopRig : private Dialogs, private ErrorLog, private MixerBinding {
public:
    explicit LoopRig(std::int32_t rateHz);

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
    void Message(const std::string& text, MessageIcon icon) override;
    bool AskOkCancel(const std::string& text) override;
    bool AskYesNo(const std::string& text) override { return AskOkCancel(text); }
    void SetBusyPointer(bool) override {}
    std::int32_t WriteErrorLog(std::string& tStr, const RuntimeError& error) override;
    void WriteLine(const std::string&) override {}
    void SetFatalError(bool) override {}
    void PointMixersAt(const std::string&, const std::string&) override {}
    void ReopenSoundCard(const std::string&, const std::string&) override {}

    PlainEventLoop loop_;
    MemorySettingsStore store_;
    SimulatedSoundSystem sound_{loop_, SimulatedSoundSystem::Pace::kStepped};
    Instrument instrument_{{store_, sound_, loop_, *this, *this, *this}};

public:
    SharedState& shared = instrument_.Shared;
    Meter& meter = instrument_.Meter;
};

}  // namespace sonavex
