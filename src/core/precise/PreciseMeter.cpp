#include "core/precise/PreciseMeter.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace sonavex {
namespace {

// FineStream promises that a change is heard within this time plus the delay of the device.
constexpr double kWrittenBeforeSeconds = 0.05;
// From a frame that the device has played to its capture, when it was not measured.
constexpr double kUnknownDelaySeconds = 0.2;
// For ramps of the stimulus and for the device under test to settle.
constexpr double kSettlingSeconds = 0.05;
// The longest path that the burst measures.
constexpr double kLongestDelaySeconds = 1.0;

constexpr int kBlockBits = 16;
constexpr std::uint64_t kSilentBlocks = 8;

template <typename Fault, typename Code>
bool Contains(const std::vector<Fault>& faults, Code code) {
    return std::any_of(faults.begin(), faults.end(),
                       [code](const Fault& fault) { return fault.code == code; });
}

PreciseState StateOf(const Reading& reading) {
    if (Contains(reading.voids, VoidCode::kOverload)) return PreciseState::kOverload;
    if (!reading.Valid()) return PreciseState::kVoid;
    return Contains(reading.warnings, WarningCode::kUnsteadyTone) ? PreciseState::kUnsteady
                                                                  : PreciseState::kValid;
}

}  // namespace

// What the background has measured.
struct PreciseMeter::Result {
    RecordAnalysis analysis;
    LinesReading reading;
    MeanSpectrum spectrum;
};

PreciseMeter::PreciseMeter(const Needs& needs) : needs_(needs) {}

PreciseMeter::~PreciseMeter() {
    Stop();
}

void PreciseMeter::Start(const PreciseSettings& settings) {
    const std::size_t length = settings.length != 0 ? settings.length : DefaultRecordLength(settings.rateHz);
    if (!plan_ || plan_->Length() != length || plan_->RateHz() != settings.rateHz) {
        plan_ = std::make_shared<const RecordPlan>(length, settings.rateHz);
    }
    settings_ = settings;
    records_.emplace(settings.collected != 0 ? settings.collected : length, settings.channel, settings.shift);
    search_.reset();
    BeginAgain(0);
    awaitingFirstBlock_ = true;
    needs_.fine.SetSink([this](const FineFrames& block) { Take(block); });
}

void PreciseMeter::Stop() {
    if (!records_) return;
    needs_.fine.SetSink({});
    records_.reset();
}

void PreciseMeter::StimulusChanged() {
    if (!records_) return;
    search_.reset();
    BeginAgain(CapturedFrames() + Frames(kWrittenBeforeSeconds) + DelayFrames() + Frames(kSettlingSeconds));
}

void PreciseMeter::BurstStarted() {
    if (!records_) return;
    delayFrames_.reset();
    BeginAgain(std::numeric_limits<std::uint64_t>::max());
    burstWritten_ = CapturedFrames();
    delayStarts_ = PresentStarts();
    arrivedFrame_.reset();
    arrivalGaps_ = PresentGaps();
    const std::uint64_t most = DelayFrames() + Frames(kLongestDelaySeconds);
    search_.emplace(settings_.rateHz, settings_.channel, static_cast<std::size_t>(most));
}

bool PreciseMeter::DelayKnown() const {
    return delayFrames_ && delayStarts_ == PresentStarts();
}

void PreciseMeter::ForgetDelay() {
    delayFrames_.reset();
    arrivedFrame_.reset();
}

std::optional<PreciseMeter::StimulusArrival> PreciseMeter::Arrival() const {
    if (!arrivedFrame_ || !DelayKnown() || arrivalGaps_ != PresentGaps()) return std::nullopt;
    return StimulusArrival{*arrivedFrame_, static_cast<double>(*delayFrames_) / settings_.rateHz};
}

void PreciseMeter::Take(const FineFrames& block) {
    NoticeOutput();
    if (block.restarted && !std::exchange(awaitingFirstBlock_, false)) {
        const bool playing = Playing();
        Interrupt(playing ? CapturedFrames() + DelayFrames() + Frames(kSettlingSeconds) : block.firstFrame,
                  "the capture was started again");
    }
    awaitingFirstBlock_ = false;
    if (!records_) return;
    const std::uint64_t restarts = records_->Restarts();
    records_->Add(block);
    if (records_->Restarts() != restarts) NoteInterruption();
    if (search_) ListenForBurst(block);
    if (records_ && records_->Due()) Submit();
}

void PreciseMeter::ListenForBurst(const FineFrames& block) {
    search_->Add(block);
    if (search_->Ended()) EndSearch();
}

void PreciseMeter::EndSearch() {
    const std::optional<std::uint64_t> burst = search_->Found();
    search_.reset();
    if (burst) delayFrames_ = *burst > burstWritten_ ? *burst - burstWritten_ : 0;
    arrivedFrame_ = burst;
    if (OnBurstEnded) OnBurstEnded();
}

void PreciseMeter::Submit() {
    const std::uint64_t firstFrame = records_->NextFrame() - records_->Length();
    std::vector<double> samples = records_->Take();
    if (settings_.collected == 0) return Measure(std::move(samples), firstFrame);
    if (OnRecord) OnRecord(std::move(samples));
}

void PreciseMeter::Measure(std::vector<double> samples, std::uint64_t firstFrame) {
    needs_.background.Run(
        Background::Line::kAnalysis,
        [this, alive = std::weak_ptr(alive_), plan = plan_, settings = settings_, average = average_,
         conditions = RecordConditions(), firstFrame, samples = std::move(samples)]() -> Background::Result {
            Record record = conditions;
            record.samples = samples;
            auto result = std::make_shared<Result>();
            result->analysis = AnalyzeRecord(*plan, settings, record);
            result->analysis.firstFrame = firstFrame;
            result->reading = average->Add(result->analysis, settings.shift);
            result->spectrum = average->Spectrum();
            return [this, alive, average, result] {
                if (!alive.expired()) Receive(*result, average);
            };
        });
}

Record PreciseMeter::RecordConditions() const {
    return {.samples = {},
            .rateHz = settings_.rateHz,
            .bits = needs_.engine.InputBits(),
            .floatingPoint = false,
            .live = true,
            .rounded = needs_.usedBits.OutputHidesBits(1 + Length() / kBlockFrames)};
}

// A record that was complete before an interruption or a change is not reported after it: both begin a new
// average. The counts of the output may be late.
void PreciseMeter::Receive(Result& result, const std::shared_ptr<RecordAverage>& average) {
    NoticeOutput();
    if (!records_ || average != average_) return;
    Reading& reading = result.reading.reading;
    if (reading.Valid() && !Contains(reading.warnings, WarningCode::kLimitedBy16Bit) && LimitedBy16Bit())
        reading.warnings.push_back(
            {WarningCode::kLimitedBy16Bit, "The sound path delivers no more than 16 bits."});
    Report(result);
}

bool PreciseMeter::LimitedBy16Bit() const {
    return (Playing() && needs_.engine.OutputBits() <= kBlockBits) || needs_.usedBits.Only16();
}

void PreciseMeter::Report(Result& result) {
    state_ = StateOf(result.reading.reading);
    const bool shown = state_ != PreciseState::kVoid;
    newest_ = shown ? std::move(result.analysis) : RecordAnalysis();
    spectrum_ = shown ? std::move(result.spectrum) : MeanSpectrum();
    if (OnReading) OnReading(result.reading);
}

LinesReading PreciseMeter::Unfinished() {
    std::string sentence = "settling " + std::to_string(Collected()) + " of " + std::to_string(Length());
    if (!interruption_.empty()) sentence += ", " + interruption_;
    return VoidReading(VoidCode::kTooShort, sentence);
}

LinesReading PreciseMeter::VoidReading(VoidCode code, const std::string& sentence) const {
    return ReadingOfVoid(*plan_, settings_, needs_.engine.InputBits(), {code, sentence});
}

// A new one, because the background may be adding a record to the old one.
void PreciseMeter::BeginAverage() {
    average_ = std::make_shared<RecordAverage>(plan_, settings_);
}

bool PreciseMeter::Playing() const {
    return needs_.fine.Source() != nullptr || needs_.engine.SilentBlocks < kSilentBlocks;
}

// The block meter's overruns are not heard while fine frames are played.
PreciseMeter::OutputCounts PreciseMeter::CountOutput() const {
    const StreamEngine& engine = needs_.engine;
    return {engine.PlaybackStarts, engine.FineFramesMissing(), engine.Underruns(),
            needs_.fine.Source() != nullptr ? 0 : engine.Overruns};
}

PreciseMeter::Starts PreciseMeter::PresentStarts() const {
    return {needs_.engine.PlaybackStarts, needs_.engine.CaptureStarts};
}

PreciseMeter::Gaps PreciseMeter::PresentGaps() const {
    return {CountOutput(), needs_.engine.CaptureCounts().framesMissing};
}

std::uint64_t PreciseMeter::CapturedFrames() const {
    const CaptureBuffer* const buffer = needs_.engine.InputBuffer();
    return buffer != nullptr ? buffer->Statistics().framesCaptured : 0;
}

std::uint64_t PreciseMeter::Frames(double seconds) const {
    return static_cast<std::uint64_t>(std::ceil(seconds * settings_.rateHz));
}

std::uint64_t PreciseMeter::DelayFrames() const {
    if (DelayKnown()) return *delayFrames_;
    return needs_.engine.HeldFrames() + Frames(kUnknownDelaySeconds);
}

// What is missing in the output arrives at the input after the delay of the path.
void PreciseMeter::NoticeOutput() {
    const OutputCounts before = std::exchange(output_, CountOutput());
    if (!records_ || !Playing() || before == output_) return;
    std::string cause = "playback was started again";
    if (output_.missing != before.missing)
        cause = FramesSentence(output_.missing - before.missing, "missing in the stimulus");
    else if (output_.underruns != before.underruns)
        cause = "the output device ran out of samples";
    else if (output_.overruns != before.overruns)
        cause = "the output was overrun";
    Interrupt(CapturedFrames() + DelayFrames() + Frames(kSettlingSeconds), std::move(cause));
}

void PreciseMeter::BeginAgain(std::uint64_t frame) {
    records_->BeginAt(frame, "");
    BeginAverage();
    output_ = CountOutput();
    interruption_.clear();
    state_ = PreciseState::kSettling;
}

void PreciseMeter::Interrupt(std::uint64_t frame, std::string cause) {
    records_->BeginAt(frame, std::move(cause));
    NoteInterruption();
    if (search_) EndSearch();
}

// The first record after a start or a change settles however often it is interrupted.
void PreciseMeter::NoteInterruption() {
    interruption_ = records_->Cause();
    BeginAverage();
    if (state_ == PreciseState::kSettling) return;
    Result result;
    result.reading = VoidReading(VoidCode::kDisturbed, interruption_);
    Report(result);
}

}  // namespace sonavex
