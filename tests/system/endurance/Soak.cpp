#include "system/endurance/Soak.h"

#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

#include "core/ports/SoundErrors.h"
#include "core/settings/SampleRates.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr int kSettlingBlocks = 120;
constexpr int kCountedBlocks = 64;
// Error of a reading that rounding to 16 bit on both sides of the device may cause.
constexpr double kRoundingPercent = 0.006;
constexpr double kRoundingDb = 0.1;
// Permitted variation of the heap from texts and lists of the present state.
constexpr std::size_t kHeapAllowance = 64 * 1024;
constexpr double kPi = std::numbers::pi;

constexpr std::array<const char*, Soak::kEvents> kEventNames{
    "user actions",      "changes of rate",           "restarts of the program",  "cards unplugged",
    "standstills",       "failed operations",         "other devices under test", "hold-ups of the window",
    "odd stored values", "changes of the fine source"};

// Rates and whole frequencies on an even bin, so that harmonics do not leak into each other, with all nine
// harmonics below the highest usable bin.
struct Tuning {
    std::int32_t rateIndex;
    std::int32_t frequencyHz;
};
constexpr std::array<Tuning, 4> kTunings{{{0, 1125}, {2, 1000}, {4, 500}, {5, 250}}};

constexpr std::array<double, 8> kHarmonics{0.01, 0.02, 0.005, 0.03, 0.002, 0.008, 0.004, 0.015};

DeviceUnderTestModel KnownDevice() {
    DeviceUnderTestModel model;
    model.harmonicAmplitudes.assign(kHarmonics.begin(), kHarmonics.end());
    return model;
}

DeviceUnderTestModel AnyDevice(SeededRandomness& random) {
    DeviceUnderTestModel model;
    if (random.Chance(0.5)) model.gain = random.Between(0.0, 4.0);
    if (random.Chance(0.2)) model.harmonicAmplitudes = {random.Between(0.0, 0.5), random.Between(0.0, 0.5)};
    if (random.Chance(0.3)) model.clipAt = random.Between(10.0, 32000.0);
    if (random.Chance(0.2)) model.dcOffset = random.Between(-20000.0, 20000.0);
    if (random.Chance(0.05)) model.noiseRms = random.Between(0.0, 3000.0);
    if (random.Chance(0.2)) model.delayFrames = static_cast<std::uint32_t>(random.Pick(20000));
    // Rare, because interpolation takes several times as long as everything else.
    if (random.Chance(0.01)) model.clockOffsetPpm = random.Between(-500.0, 500.0);
    if (random.Chance(0.2)) model.bits = 24;
    model.dither = random.Chance(0.1);
    return model;
}

std::size_t HeapInUse() {
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

}  // namespace

const char* Soak::Name(Event event) {
    return kEventNames[static_cast<std::size_t>(event)];
}

Soak::Soak(std::uint64_t seed, double blocksPerEvent)
    : seed_(seed), eventProbability_(1.0 / blocksPerEvent), random_(seed) {
    StartUntilItRuns();
}

void Soak::Require(bool condition, const std::string& what) const {
    if (condition) return;
    throw std::runtime_error(what + Place());
}

std::string Soak::Place() const {
    return " (seed " + std::to_string(seed_) + ", block " + std::to_string(report_.blocks) + ", after " +
           happenedLast_ + ")";
}

void Soak::Fail(const char* field, std::int32_t tone, double value) const {
    throw std::runtime_error(std::string(field) + " of tone " + std::to_string(tone) + ": " +
                             std::to_string(value) + Place());
}

void Soak::Run(std::uint64_t blocks, std::uint64_t checkEvery) {
    const std::uint64_t end = report_.blocks + blocks;
    std::uint64_t nextCheck = report_.blocks + checkEvery;
    while (report_.blocks < end) {
        Step();
        if (random_.Chance(eventProbability_)) HappenSomething();
        if (report_.blocks < nextCheck) continue;
        CheckReadings();
        if (OnCheck) OnCheck();
        nextCheck = report_.blocks + checkEvery;
    }
    CheckReadings();
}

void Soak::Step() {
    CountBlocks(1);
    const std::uint64_t start = bench_->Starts();
    const std::uint64_t before = bench_->Running() ? bench_->Form().Instrument.Engine.Blocks : 0;
    bench_->Block();
    if (bench_->Running() && bench_->Starts() == start && bench_->Form().Instrument.Engine.Blocks > before)
        CheckTones(After::kABlock);
    FollowCard();
}

void Soak::CountBlocks(std::uint64_t blocks) {
    report_.soundSeconds +=
        static_cast<double>(blocks) * std::chrono::duration<double>(bench_->BlockTime()).count();
    report_.blocks += blocks;
}

void Soak::FollowCard() {
    if (blocksUntilPlugged_ > 0 && --blocksUntilPlugged_ == 0) bench_->Card().Plug();
    if (blocksUntilMoving_ > 0 && --blocksUntilMoving_ == 0) bench_->Card().Card().SetStalled(false);
    if (!bench_->Running() && blocksUntilPlugged_ == 0) StartUntilItRuns();
}

// Invalid stored values end a start with a message; the user then removes them.
void Soak::StartUntilItRuns() {
    for (int tries = 0; tries < 5 && !bench_->Running(); ++tries) {
        if (bench_->Start()) break;
        if (tries >= 2)
            for (const std::string_view section :
                 {keys::kSettings, keys::kSoundCard, keys::kSignalGenerator, keys::kFace})
                bench_->Store().DeleteSection(section);
    }
    Require(bench_->Running(), "The program does not start: " + bench_->LastMessage());
    CheckState();
}

void Soak::HappenSomething() {
    // User actions are more frequent than faults.
    static constexpr std::array<Event, 10> kRare{
        Event::kRateChange, Event::kProgramRestart,  Event::kUnplugged,   Event::kStandstill,
        Event::kHeldUp,     Event::kFailedOperation, Event::kOtherDevice, Event::kStoredValue,
        Event::kRateChange, Event::kFineSource};
    const bool rare = random_.Chance(0.3);
    Happen(rare ? kRare[static_cast<std::size_t>(random_.Pick(static_cast<std::int32_t>(kRare.size())))]
                : Event::kUserAction);
    CheckState();
}

void Soak::Happen(Event event) {
    if (event == Event::kProgramRestart && !restarts_) return;
    happenedLast_ = Name(event);
    if (!bench_->Running()) return;
    ++report_.events[static_cast<std::size_t>(event)];
    if (event == Event::kUserAction) {
        const UserAction action = NextAction(random_, bench_->Form().Instrument.Shared.SampleRate);
        happenedLast_ = Describe(action);
        Perform(action, bench_->Form(), [this](const auto& step) { bench_->Act(step); });
    } else if (event == Event::kRateChange) {
        bench_->SelectRate(
            random_.Pick(static_cast<std::int32_t>(SampleRateTable.size() + kExtendedRates.size())));
    } else if (event == Event::kProgramRestart) {
        RestartProgram();
    } else if (event == Event::kStoredValue) {
        StoreOddValue();
    } else if (event == Event::kFineSource) {
        if (FineUser* const fine = bench_->Fine()) fine->Play(!fine->Playing());
    } else {
        ReachForTheCard(event);
    }
}

// Without a card the program reports it and ends; it is restarted when there is a card.
void Soak::RestartProgram() {
    bench_->End();
    if (blocksUntilPlugged_ == 0)
        StartUntilItRuns();
    else
        Require(!bench_->Start(), "The program runs without a card");
}

void Soak::ReachForTheCard(Event event) {
    FailingCard& card = bench_->Card();
    const auto blocks =
        static_cast<std::int64_t>(random_.Between(0.1, 15.0) /
                                  std::chrono::duration<double>(bench_->BlockTime()).count()) +
        1;
    if (event == Event::kUnplugged) {
        if (blocksUntilPlugged_ == 0) card.Unplug();
        blocksUntilPlugged_ = blocks;
    } else if (event == Event::kStandstill) {
        card.Card().SetStalled(true);
        blocksUntilMoving_ = blocks;
    } else if (event == Event::kFailedOperation) {
        card.FailNext(static_cast<FailingCard::Operation>(random_.Pick(5)),
                      {sound_error::kNoDriver, "The device is in use."});
    } else if (event == Event::kOtherDevice) {
        card.Card().SetDeviceUnderTest(AnyDevice(random_));
    } else {
        const int heldUp = 1 + random_.Pick(40);
        CountBlocks(static_cast<std::uint64_t>(heldUp));
        bench_->HoldUp(heldUp);
    }
}

// Stores a value as an old or damaged file may contain. The next start reads it, unless it is overwritten
// before.
void Soak::StoreOddValue() {
    static constexpr std::array<const SettingsKey*, 13> kKeys{&keys::kAuto,
                                                              &keys::kBaseline,
                                                              &keys::kInput,
                                                              &keys::kOutput,
                                                              &keys::kSampleRate,
                                                              &keys::kLevel,
                                                              &keys::kCurrentStart,
                                                              &keys::kCurrentEnd,
                                                              &keys::kCurrentSweepTime,
                                                              &keys::kCurrentType,
                                                              &keys::kNumberOfTones,
                                                              &keys::kLastTab,
                                                              &keys::kExtendedSampleRate};
    static constexpr std::array<const char*, 10> kValues{"",      "0",     "1",    "-1",  "7",
                                                         "99999", "1e300", "True", "1,5", "x"};
    const SettingsKey& key =
        *kKeys[static_cast<std::size_t>(random_.Pick(static_cast<std::int32_t>(kKeys.size())))];
    bench_->Store().Save(
        key.section, key.key,
        kValues[static_cast<std::size_t>(random_.Pick(static_cast<std::int32_t>(kValues.size())))]);
}

void Soak::CheckState() {
    if (!bench_->Running()) return;
    const StreamEngine& engine = bench_->Form().Instrument.Engine;
    Require(engine.PlayBlockIndex >= 0 && engine.PlayBlockIndex <= StreamEngine::kLastPlayBlock,
            "PlayBlockIndex");
    Require(engine.CaptureSegment >= 0 && engine.CaptureSegment <= 3, "CaptureSegment");
    Require(engine.RestartCount >= 0 && engine.RestartCount < StreamEngine::kPrimingBlocks, "RestartCount");
    CheckTones(After::kAnEvent);
    CheckCounts();
    if (bench_->Fine() != nullptr) Require(bench_->Fine()->Fault().empty(), bench_->Fine()->Fault());
}

void Soak::CheckTones(After what) {
    const Generator& generator = bench_->Form().Instrument.Meter.Generator;
    Require(generator.NumTones >= -1 && generator.NumTones <= kToneRecords, "NumTones");
    if (!generator.GeneratorRunning) return;
    for (std::int32_t i = 0; i < generator.NumTones; ++i) {
        const ToneRecord& tone = generator.Tones[static_cast<std::size_t>(i)];
        if (!std::isfinite(tone.Frequency) || tone.Frequency <= 0.0) Fail("Frequency", i, tone.Frequency);
        if (tone.SampleCount < 0.0 || tone.SampleCount != std::floor(tone.SampleCount))
            Fail("SampleCount", i, tone.SampleCount);
        // Triangle and sawtooth: 0 to 1. Square: a quarter or three quarters of a turn, which a square that
        // has become a sine keeps until the next block.
        const bool wasASquare = what == After::kAnEvent && std::abs(tone.Phase - 1.5 * kPi) <= 1e-9;
        if (tone.WaveType == wave::kSine && !wasASquare && (tone.Phase <= -kPi || tone.Phase > kPi))
            Fail("Phase", i, tone.Phase);
    }
}

// Counts of one run only grow. Every segment is either delivered or counted as lost, except those discarded
// when a stream stopped.
void Soak::CheckCounts() {
    const StreamEngine& engine = bench_->Form().Instrument.Engine;
    const CaptureStatistics counts = engine.CaptureCounts();
    if (bench_->Starts() != seenStart_) {
        seenStart_ = bench_->Starts();
        seenBlocks_ = seenOverruns_ = seenLosses_ = 0;
        seenCapture_ = {};
    }
    Require(engine.Blocks >= seenBlocks_ && engine.Overruns >= seenOverruns_, "Blocks or Overruns went back");
    Require(counts.framesCaptured >= seenCapture_.framesCaptured &&
                counts.segmentsCompleted >= seenCapture_.segmentsCompleted &&
                counts.segmentsLost >= seenCapture_.segmentsLost &&
                counts.framesMissing >= seenCapture_.framesMissing,
            "a capture count went back");
    Require(counts.segmentsCompleted * 2048 <= counts.framesCaptured &&
                counts.framesCaptured < (counts.segmentsCompleted + engine.CaptureStarts) * 2048,
            "frames and segments disagree");
    Require(engine.Blocks + engine.DroppedNotifications + counts.segmentsLost <= counts.segmentsCompleted,
            "more blocks than segments");
    report_.mostFrames = std::max(report_.mostFrames, counts.framesCaptured);
    report_.overruns += engine.Overruns - seenOverruns_;
    report_.losses += bench_->Form().Instrument.Watch.Losses() - seenLosses_;
    report_.segmentsLost += counts.segmentsLost - seenCapture_.segmentsLost;
    seenBlocks_ = engine.Blocks;
    seenOverruns_ = engine.Overruns;
    seenLosses_ = bench_->Form().Instrument.Watch.Losses();
    seenCapture_ = counts;
}

void Soak::CheckReadings() {
    const Tuning& tuning =
        kTunings[static_cast<std::size_t>(random_.Pick(static_cast<std::int32_t>(kTunings.size())))];
    happenedLast_ += ", then order at " +
                     std::to_string(SampleRateTable[static_cast<std::size_t>(tuning.rateIndex)]) + " Hz";
    PutInOrder(tuning.rateIndex, tuning.frequencyHz);
    WaitForReadings();
    CompareReadings();
    CheckThatBlocksAreCounted();
    CheckState();
    ++report_.checks;
    CheckMemory();
    bench_->UseFinePath(true);
    CheckFineFrames();
    // A wire of 16 bits needs the least computing time.
    bench_->Card().Card().SetDeviceUnderTest({});
    report_.fineFrames = bench_->FineFramesSeen();
    report_.programStarts = bench_->Starts();
    report_.messages = bench_->Messages();
}

void Soak::PutInOrder(std::int32_t rateIndex, std::int32_t frequencyHz) {
    bench_->Card().Plug();
    bench_->Card().Card().SetStalled(false);
    bench_->Card().Card().SetDeviceUnderTest(KnownDevice());
    blocksUntilPlugged_ = blocksUntilMoving_ = 0;
    // It hides the generator, and the memory of its queues follows the rate.
    bench_->UseFinePath(false);
    // The selection of devices does not open if the stored rate is invalid.
    bench_->Store().Save(keys::kSampleRate.section, keys::kSampleRate.key, "0");
    // A returned card is used within seconds, and pending failures happen now.
    for (int i = 0; i < kSettlingBlocks; ++i) Step();
    for (int tries = 0; tries < 5; ++tries) {
        if (!bench_->Running()) StartUntilItRuns();
        bench_->SelectRate(rateIndex);
        if (bench_->Running() && bench_->Form().Instrument.Shared.EventsReady &&
            bench_->Form().Instrument.Shared.SampleRate ==
                SampleRateTable[static_cast<std::size_t>(rateIndex)])
            break;
    }
    Require(bench_->Running() && bench_->Form().Instrument.Shared.EventsReady &&
                bench_->Form().Instrument.Shared.SampleRate ==
                    SampleRateTable[static_cast<std::size_t>(rateIndex)],
            "the rate is not taken: " + bench_->LastMessage());
    bench_->Act([&] {
        frmMain& form = bench_->Form();
        form.GeneratorPanel.StopPlaying();
        form.Instrument.Meter.Controls.chkAuto.UserSets(true);
        form.Instrument.Meter.Controls.chkMuteOutput.UserSets(true);
        form.Instrument.Meter.Controls.chkBaseline.UserSets(false);
        SignalControls& signal = form.GeneratorPanel.Controls;
        const auto move = [](Slider& slider, std::int32_t value) {
            slider.UserMoves(value);
            slider.UserReleases();
        };
        signal.cmbType.UserSelects(wave::kSine);
        move(signal.sldLevel, 0);
        move(signal.sldSweepTime, 0);
        move(signal.sldStartFreq, frequencyHz);
        signal.Command1.Press();
    });
    Require(bench_->Form().Instrument.Meter.Generator.SweepRunning,
            "the tone does not start: " + bench_->LastMessage());
}

void Soak::WaitForReadings() {
    // Waits until the delay of the previous device has passed and the output has returned.
    for (int i = 0; i < 2 * Meter::kCycleBlocks; ++i) Step();
    for (int i = 0; i < kSettlingBlocks && !(bench_->Running() && bench_->Form().Instrument.Meter.Settled());
         ++i)
        Step();
    Require(bench_->Running() && bench_->Form().Instrument.Meter.Settled(),
            "no settled reading: " + bench_->LastMessage());
}

void Soak::CompareReadings() {
    const MeasurementControls& controls = bench_->Form().Instrument.Meter.Controls;
    double sum = 0.0;
    for (std::size_t i = 0; i < kHarmonics.size(); ++i) {
        sum += kHarmonics[i] * kHarmonics[i];
        const double percent =
            std::abs(Val(controls.lbltest[i].Caption()) - 100.0 * std::sqrt(sum / (1.0 + sum)));
        const double db = std::abs(Val(controls.lblDb[i].Caption()) - 20.0 * std::log10(kHarmonics[i]));
        report_.worstPercent = std::max(report_.worstPercent, percent);
        report_.worstDb = std::max(report_.worstDb, db);
        Require(percent <= kRoundingPercent && db <= kRoundingDb,
                "harmonic " + std::to_string(i + 2) + " reads " + controls.lbltest[i].Caption() + " %, " +
                    controls.lblDb[i].Caption() + " dB");
    }
    Require(controls.lblThd.Caption() == controls.lbltest.back().Caption(),
            "the total reads " + controls.lblThd.Caption());
}

void Soak::CheckThatBlocksAreCounted() {
    const StreamEngine& engine = bench_->Form().Instrument.Engine;
    const CaptureStatistics before = engine.CaptureCounts();
    const std::uint64_t blocksBefore = engine.Blocks;
    for (int i = 0; i < kCountedBlocks; ++i) Step();
    const CaptureStatistics after = engine.CaptureCounts();
    Require(engine.Blocks == blocksBefore + kCountedBlocks, "a block was not counted");
    Require(after.framesCaptured == before.framesCaptured + kCountedBlocks * 2048 &&
                after.segmentsCompleted == before.segmentsCompleted + kCountedBlocks &&
                after.segmentsLost == before.segmentsLost,
            "the ring's counts are wrong");
    Require(bench_->Form().StreamTrouble.Caption().empty(),
            "marked as stopped: " + bench_->Form().StreamTrouble.Caption());
}

// Every bit returns at a rate above 48 kHz, which the next events find in use.
void Soak::CheckFineFrames() {
    DeviceUnderTestModel wire;
    wire.bits = BenchTop::kFineBits;
    bench_->Card().Card().SetDeviceUnderTest(wire);
    const auto rate =
        static_cast<std::size_t>(random_.Pick(static_cast<std::int32_t>(kExtendedRates.size())));
    bench_->SelectRate(static_cast<std::int32_t>(SampleRateTable.size() + rate));
    Require(bench_->Running() && bench_->Form().Instrument.Shared.SampleRate == kExtendedRates[rate],
            "the extended rate is not taken: " + bench_->LastMessage());
    FineUser& fine = *bench_->Fine();
    fine.Play(true);
    fine.ExpectReturn(true);
    for (int i = 0; i < kCountedBlocks; ++i) Step();
    Require(fine.Returned() >= kCountedBlocks / 2 * 2048, "fine frames do not return");
    fine.ExpectReturn(false);
    fine.Play(false);
    CheckState();
}

// With sanitizers the heap size is unknown and both values are 0.
void Soak::CheckMemory() {
    const std::size_t bytes = HeapInUse();
    if (report_.warmBytes == 0) report_.warmBytes = bytes;
    report_.mostBytes = std::max(report_.mostBytes, bytes);
    Require(bytes <= report_.warmBytes + kHeapAllowance, "the heap grew from " +
                                                             std::to_string(report_.warmBytes) + " to " +
                                                             std::to_string(bytes) + " bytes");
}

}  // namespace sonavex
