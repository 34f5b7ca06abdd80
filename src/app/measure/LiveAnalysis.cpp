#include "app/measure/LiveAnalysis.h"

#include <algorithm>
#include <utility>

#include "app/measure/AnalyzeLimits.h"
#include "core/stimulus/ParseStimulus.h"
#include "core/stimulus/StimulusPlan.h"

namespace sonavex::measure {
namespace {

using namespace std::chrono_literals;

constexpr auto kAnalysisPoll = 50ms;
// A ramp, and what the queues of the devices hold.
constexpr auto kLongestEnd = 3s;
// For devices, path and first record, beyond the duration of records.
constexpr double kGraceSeconds = 10.0;
constexpr double kGraceRecords = 4.0;

// Levels of a stimulus without --dbfs. Noise needs room for its peaks.
constexpr double kToneLevelDbfs = -1.0;
constexpr double kNoiseLevelDbfs = -12.0;

RunOptions DevicesOf(const LiveOptions& live) {
    RunOptions options;
    options.input = live.input;
    options.output = live.output;
    options.rateHz = live.rateHz;
    return options;
}

PreciseMode ModeFor(const Stimulus& stimulus) {
    if (IsNoise(stimulus.shape)) return PreciseMode::kNoise;
    if (stimulus.shape == StimulusShape::kPair) return PreciseMode::kPair;
    if (stimulus.shape == StimulusShape::kMultitone) return PreciseMode::kMultitone;
    return PreciseMode::kTone;
}

std::optional<StimulusChoice> ChoiceOf(const LiveOptions& live) {
    if (live.stimulus.empty()) return std::nullopt;
    StimulusChoice choice;
    choice.stimulus = ParseStimulus(live.stimulus);
    choice.side = live.side;
    choice.levelDbfs =
        live.levelDbfs.value_or(IsNoise(choice.stimulus.shape) ? kNoiseLevelDbfs : kToneLevelDbfs);
    choice.snap = live.snap;
    choice.dither = live.dither;
    choice.ditherBits = live.ditherBits;
    return choice;
}

}  // namespace

LiveAnalysis::LiveAnalysis(const AnalyzeOptions& options)
    : options_(options),
      stimulus_(ChoiceOf(options.live)),
      sound_(DevicesOf(options.live)),
      background_(sound_.Loop()),
      measurement_({sound_.Loop(), sound_.Parts(), background_}) {
    const double rateHz = sound_.Parts().Shared.SampleRate;
    const RecordPlan plan(RecordLength(options_, rateHz), rateHz);
    if (stimulus_) TakeStimulus(plan);
    RequireSuitable(options_, plan);
    measurement_.Meter.OnReading = [this](const LinesReading& values) { Report(values); };
}

// The tones of the stimulus are those of the modes imd and multitone.
void LiveAnalysis::TakeStimulus(const RecordPlan& plan) {
    stimulus_->recordLength = plan.Length();
    const StimulusPlan planned = PlanStimulus(
        {stimulus_->stimulus, plan.RateHz(), plan.Length(), stimulus_->levelDbfs, stimulus_->snap});
    if (!options_.modeGiven) options_.mode = ModeFor(stimulus_->stimulus);
    const bool several = options_.mode == PreciseMode::kPair || options_.mode == PreciseMode::kMultitone;
    if (!several || !options_.tonesHz.empty()) return;
    for (const PlannedTone& tone : planned.tones) options_.tonesHz.push_back(tone.hertz);
}

void LiveAnalysis::Run(const std::function<void(const AnalyzedReading&)>& onReading,
                       const std::function<void()>& onProgress) {
    onReading_ = onReading;
    sound_.Start();
    WaitForPlayback();
    Begin();
    Measure(onProgress);
    End();
}

// Playback starts when its ring is full; the stimulus follows.
void LiveAnalysis::WaitForPlayback() {
    while (sound_.Parts().Engine.PlaybackStarts == 0 && !end_.Noted()) Wait();
}

void LiveAnalysis::Begin() {
    begin_ = sound_.Loop().Now();
    PreciseSettings settings = SettingsOf(options_, sound_.Parts().Shared.SampleRate);
    settings.spectrum = !options_.spectrum.empty() || options_.history;
    measurement_.Start(settings, stimulus_);
}

void LiveAnalysis::Measure(const std::function<void()>& onProgress) {
    while (!TimeOver() && !end_.Noted()) {
        onProgress();
        Wait();
    }
    if (readings_ == 0) Report(measurement_.Meter.Unfinished());
}

// Readings end first, so that the last one does not contain the end of the stimulus.
void LiveAnalysis::End() {
    measurement_.Stop();
    const std::chrono::nanoseconds limit = sound_.Loop().Now() + kLongestEnd;
    while (measurement_.Player.Active() && sound_.Loop().Now() < limit) sound_.Loop().Wait(kAnalysisPoll);
    sound_.Stop();
}

void LiveAnalysis::Wait() {
    sound_.CheckAlive();
    sound_.Loop().Wait(kAnalysisPoll);
}

bool LiveAnalysis::TimeOver() {
    const double passed = std::chrono::duration<double>(sound_.Loop().Now() - begin_).count();
    if (passed < options_.live.seconds) return false;
    const double recordSeconds =
        static_cast<double>(measurement_.Meter.Length()) / measurement_.Meter.Plan().RateHz();
    const double grace = std::max(kGraceSeconds, kGraceRecords * recordSeconds);
    return readings_ > 0 || passed > options_.live.seconds + grace;
}

void LiveAnalysis::Report(const LinesReading& values) {
    ++readings_;
    AnalyzedReading reading;
    reading.mode = options_.mode;
    reading.values = values;
    reading.rateHz = sound_.Parts().Shared.SampleRate;
    reading.stream = sound_.Details();
    reading.stimulus = options_.live.stimulus;
    for (const StimulusLine& line : measurement_.Player.Lines()) reading.playedHz.push_back(line.hertz);
    onReading_(reading);
}

}  // namespace sonavex::measure
