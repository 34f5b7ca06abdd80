#include "core/run/RunMeasurement.h"

#include <algorithm>
#include <utility>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kRunCheckInterval{50};
// Beyond the records of an attempt: the devices start, the path is measured.
constexpr std::chrono::nanoseconds kAttemptGrace = 10s;
// A record that an interruption cut short is collected again.
constexpr double kRecordsPerRecord = 2.0;
// Path, ramps and settling of a point on an ordinary device.
constexpr double kUsualPathSeconds = 0.35;
// A void or unsteady point is repeated once.
constexpr int kRunAttempts = 2;
constexpr const char* kStoppedByOthers = "The stimulus was stopped.";
constexpr const char* kPreviewDisturbed = "The sweep was interrupted again and again.";

double RecordSeconds(const RunPlan& plan, double rateHz) {
    return static_cast<double>(RecordLengthOf(plan, rateHz)) / rateHz;
}

double PointSeconds(const RunPlan& plan, std::size_t points, double rateHz) {
    return static_cast<double>(points) * (2.0 * RecordSeconds(plan, rateHz) + kUsualPathSeconds);
}

PreciseSettings RunSettings(const RunPlan& plan, double rateHz) {
    PreciseSettings settings;
    settings.rateHz = rateHz;
    settings.length = RecordLengthOf(plan, rateHz);
    settings.shift = settings.length;
    settings.channel = plan.channel;
    settings.tone.band = plan.band;
    settings.tone.highestOrder = plan.highestOrder;
    return settings;
}

StimulusChoice PointChoice(const RunPlan& plan, const RunPoint& point, std::size_t recordLength) {
    StimulusChoice choice;
    choice.stimulus = {StimulusShape::kSine, {{point.playedHz}}};
    choice.side = plan.side;
    choice.levelDbfs = point.levelDbfs;
    choice.snap = plan.snap;
    choice.dither = plan.dither;
    choice.ditherBits = plan.ditherBits;
    choice.recordLength = recordLength;
    return choice;
}

double HighestPlayedHz(const std::vector<RunPoint>& points) {
    double highest = 0.0;
    for (const RunPoint& point : points) highest = std::max(highest, point.playedHz);
    return highest;
}

bool HasWarning(const std::vector<Warning>& warnings, WarningCode code) {
    return std::any_of(warnings.begin(), warnings.end(),
                       [code](const Warning& warning) { return warning.code == code; });
}

}  // namespace

RunMeasurement::RunMeasurement(const Needs& needs)
    : needs_(needs), phase_(needs.instrument.Engine, needs.measurement), preview_(needs.background) {
    preview_.OnPoints = [this] {
        if (OnChanged) OnChanged();
    };
}

RunMeasurement::~RunMeasurement() {
    OnChanged = nullptr;
    Cancel();
    SetState(State::kIdle);
}

void RunMeasurement::Start(const RunPlan& plan) {
    const double rateHz = needs_.instrument.Shared.SampleRate;
    Prepare(plan, PointsOf(plan, rateHz), {});
    preview_.Prepare(plan_, points_, rateHz);
    Play(false);
}

void RunMeasurement::RequirePlayable(const RunPlan& plan) const {
    CheckSound(plan, PointsOf(plan, needs_.instrument.Shared.SampleRate));
}

std::vector<RunPoint> RunMeasurement::PointsToContinue(const MeasuredRun& run) const {
    const double rateHz = needs_.instrument.Shared.SampleRate;
    if (run.conditions.rateHz != rateHz)
        throw RunError("The run was measured at " + WithDecimals(run.conditions.rateHz, 0) +
                       " Hz and cannot be continued at " + WithDecimals(rateHz, 0) + " Hz.");
    std::vector<RunPoint> points = PointsOf(run.file.plan, rateHz);
    const bool fits = run.results.size() <= points.size() &&
                      std::equal(run.results.begin(), run.results.end(), points.begin(),
                                 [](const RunPointResult& result, const RunPoint& point) {
                                     return SamePoint(result.point, point);
                                 });
    if (!fits) throw RunError("The measured points do not belong to this run.");
    return points;
}

void RunMeasurement::RequireContinuable(const MeasuredRun& run) const {
    CheckSound(run.file.plan, PointsToContinue(run));
}

void RunMeasurement::Continue(const MeasuredRun& run) {
    std::vector<RunPoint> points = PointsToContinue(run);
    const bool sameDevices = !points_.empty() && captureStarts_ == needs_.instrument.Engine.CaptureStarts;
    Prepare(run.file.plan, std::move(points), run.results);
    preview_.Prepare({}, points_, needs_.instrument.Shared.SampleRate);
    Play(afterLoss_ || !sameDevices);
}

// `results` are kept where they are valid.
void RunMeasurement::Prepare(const RunPlan& plan, std::vector<RunPoint> points,
                             std::vector<RunPointResult> results) {
    CheckSound(plan, points);
    plan_ = plan;
    settings_ = RunSettings(plan, needs_.instrument.Shared.SampleRate);
    points_ = std::move(points);
    results_ = std::move(results);
    todo_.clear();
    for (std::size_t i = points_.size(); i-- > 0;)
        if (i >= results_.size() || !results_[i].Valid()) todo_.push_back(i);
    trouble_.clear();
    attempt_ = 1;
    measured_ = 0ns;
    timed_ = 0;
}

void RunMeasurement::Play(bool afterLoss) {
    afterLoss_ = afterLoss;
    if (todo_.empty()) return;
    captureStarts_ = needs_.instrument.Engine.CaptureStarts;
    phase_.Start(HighestPlayedHz(points_));
    if (!needs_.measurement.Player.Active()) needs_.measurement.Meter.ForgetDelay();
    waiting_ = !DevicesRun();
    if (!waiting_) BeginAttempt();
    formerOnReading_ = std::exchange(needs_.measurement.Meter.OnReading,
                                     [this](const LinesReading& values) { Take(values); });
    needs_.measurement.Meter.OnRecord = [this](const std::vector<double>& samples) { TakeSweep(samples); };
    SetState(State::kMeasuring);
}

// Every level that the run plays, before anything is heard.
void RunMeasurement::CheckSound(const RunPlan& plan, const std::vector<RunPoint>& points) const {
    needs_.measurement.Player.RequireFree();
    const int bits = needs_.instrument.Engine.OutputBits();
    if (bits == 0) throw StimulusError("No output device is open.");
    const SampleWord word = WordOf(PointChoice(plan, points.front(), 0), bits);
    CheckDither(word);
    for (const RunPoint& point : points) CheckLevel(StimulusShape::kSine, word, point.levelDbfs);
}

void RunMeasurement::Cancel() {
    if (state_ == State::kMeasuring || state_ == State::kPaused) End("");
}

void RunMeasurement::End(const std::string& trouble) {
    trouble_ = trouble;
    needs_.measurement.Stop();
    SetState(State::kEnding);
}

void RunMeasurement::BeginAttempt() {
    PreciseSettings settings = settings_;
    StimulusChoice choice = PointChoice(plan_, points_[todo_.back()], settings_.length);
    if (preview_.Pending()) preview_.Choose(settings, choice);
    needs_.measurement.Start(settings, choice);
    waiting_ = false;
    BeginRecords();
}

void RunMeasurement::BeginRecords() {
    settling_ = Settling(plan_.settling);
    previous_.reset();
    begin_ = needs_.loop.Now();
}

// Without devices the point begins when they run again. After a gap the path is measured again, which takes
// a burst that follows silence.
void RunMeasurement::MeasurePoint() {
    if (todo_.empty()) return End("");
    StimulusPlayer& player = needs_.measurement.Player;
    if (phase_.PathLost() && player.Active()) {
        needs_.measurement.Meter.ForgetDelay();
        player.Stop();
    }
    waiting_ = !DevicesRun() || player.Now() == StimulusPlayer::State::kEnding;
    if (waiting_) return;
    try {
        BeginAttempt();
    } catch (const StimulusError& error) {
        End(error.what());
    }
}

bool RunMeasurement::DevicesRun() const {
    const StreamEngine& engine = needs_.instrument.Engine;
    return needs_.instrument.Shared.EventsReady && !engine.Restarting() && !engine.RestartPending;
}

// A restart of the engine begins the point again, as soon as playback has started. The stimulus that starts
// by itself is stopped before: it would be searched at the input before it can be heard.
bool RunMeasurement::NoticeRestart() {
    const std::uint64_t starts = needs_.instrument.Engine.CaptureStarts;
    if (std::exchange(captureStarts_, starts) == starts) return false;
    afterLoss_ = true;
    waiting_ = true;
    needs_.measurement.Player.StopAtOnce();
    return true;
}

// Whether what arrives belongs to the point.
bool RunMeasurement::Listening() {
    return state_ == State::kMeasuring && !NoticeRestart() && !waiting_ &&
           needs_.measurement.Player.Now() == StimulusPlayer::State::kPlaying;
}

void RunMeasurement::TakeSweep(const std::vector<double>& samples) {
    if (!Listening() || !preview_.Pending()) return;
    Record record;
    record.samples = samples;
    record.rateHz = settings_.rateHz;
    record.bits = needs_.instrument.Engine.InputBits();
    record.floatingPoint = false;
    preview_.Take(record);
    MeasurePoint();
}

void RunMeasurement::Take(const LinesReading& values) {
    if (!Listening()) return;
    PreciseMeter& meter = needs_.measurement.Meter;
    const Reading& record = values.reading;
    const auto* const newest = std::get_if<ToneMeasurement>(&meter.Newest().values);
    switch (settling_.Add(record, !meter.Interruption().empty())) {
        case Settling::State::kVoid:
            return Fail(settling_.Fault());
        case Settling::State::kSettled:
            return Settled(record, *newest);
        case Settling::State::kSettling:
            break;
    }
    previous_.reset();
    if (!record.Valid()) return;
    previous_ = *newest;
    previousFrame_ = meter.Newest().firstFrame;
}

void RunMeasurement::Settled(const Reading& record, const ToneMeasurement& newest) {
    const RecordPlan& plan = needs_.measurement.Meter.Plan();
    Reading mean = MakeReading(plan, MeanOfSeparate(*previous_, newest), settings_.tone);
    for (const Warning& warning : record.warnings)
        if (!HasWarning(mean.warnings, warning.code)) mean.warnings.push_back(warning);
    for (const Warning& warning : mean.warnings)
        if (warning.code == WarningCode::kUnsteadyTone) return Fail({Name(warning.code), warning.sentence});
    RunPointResult result = ResultOf(std::move(mean));
    result.gainDb = result.reading.levelDbfs;
    if (result.gainDb.value) *result.gainDb.value -= result.point.levelDbfs;
    const std::size_t point = Keep(std::move(result));
    const std::uint64_t newestFrame = needs_.measurement.Meter.Newest().firstFrame;
    phase_.Add(point, {{{previous_->phase, previousFrame_}, {newest.phase, newestFrame}}}, results_);
    Report(point);
}

void RunMeasurement::Fail(PointFault fault) {
    if (attempt_ < kRunAttempts) {
        ++attempt_;
        return MeasurePoint();
    }
    const PreciseMeter& meter = needs_.measurement.Meter;
    const Void reason{VoidCode::kDisturbed, fault.sentence};
    RunPointResult result = ResultOf(
        ReadingOfVoid(meter.Plan(), settings_, needs_.instrument.Engine.InputBits(), reason).reading);
    result.fault = std::move(fault);
    Report(Keep(std::move(result)));
}

RunPointResult RunMeasurement::ResultOf(Reading reading) const {
    RunPointResult result;
    result.point = points_[todo_.back()];
    result.reading = std::move(reading);
    result.attempts = attempt_;
    result.afterLoss = afterLoss_;
    return result;
}

std::size_t RunMeasurement::Keep(RunPointResult result) {
    measured_ += needs_.loop.Now() - begin_;
    ++timed_;
    const std::size_t point = todo_.back();
    todo_.pop_back();
    if (point == results_.size()) results_.emplace_back();
    results_[point] = std::move(result);
    attempt_ = 1;
    return point;
}

void RunMeasurement::Report(std::size_t point) {
    if (OnPoint) OnPoint(results_[point]);
    if (state_ == State::kMeasuring) MeasurePoint();
}

double RunMeasurement::SecondsLeft() const {
    if (timed_ == 0) {
        const double points = PointSeconds(plan_, todo_.size(), settings_.rateHz);
        if (!preview_.Pending()) return points;
        const double done = static_cast<double>(needs_.measurement.Meter.Collected()) / settings_.rateHz;
        return std::max(preview_.Seconds() - done, 0.0) + points;
    }
    const double seconds = std::chrono::duration<double>(measured_).count();
    return seconds / static_cast<double>(timed_) * static_cast<double>(todo_.size());
}

void RunMeasurement::Check() {
    if (state_ != State::kEnding) return CheckRun();
    if (!needs_.measurement.Player.Active()) SetState(State::kIdle);
}

void RunMeasurement::CheckRun() {
    NoticeRestart();
    SetState(DevicesRun() ? State::kMeasuring : State::kPaused);
    if (state_ != State::kMeasuring) {
        begin_ = needs_.loop.Now();
        return;
    }
    if (waiting_) return MeasurePoint();
    const StimulusPlayer& player = needs_.measurement.Player;
    if (player.Now() == StimulusPlayer::State::kOff || player.Now() == StimulusPlayer::State::kEnding)
        return End(player.Trouble().empty() ? kStoppedByOthers : player.Trouble());
    if (needs_.loop.Now() - begin_ <= LongestAttempt()) return;
    if (preview_.Pending()) {
        preview_.GiveUp(kPreviewDisturbed);
        MeasurePoint();
    } else {
        Fail({Name(VoidCode::kTooShort),
              needs_.measurement.Meter.Unfinished().reading.voids.front().sentence});
    }
}

std::chrono::nanoseconds RunMeasurement::LongestAttempt() const {
    const double usual = preview_.Pending() ? preview_.Seconds()
                                            : plan_.settling.records * RecordSeconds(plan_, settings_.rateHz);
    const std::chrono::duration<double> seconds(kRecordsPerRecord * usual);
    return kAttemptGrace + std::chrono::duration_cast<std::chrono::nanoseconds>(seconds);
}

void RunMeasurement::SetState(State state) {
    if (std::exchange(state_, state) == state) return;
    if (!Active()) {
        needs_.loop.StopTimer(std::exchange(timer_, 0));
        needs_.measurement.Meter.OnReading = std::exchange(formerOnReading_, nullptr);
        needs_.measurement.Meter.OnRecord = nullptr;
    } else if (timer_ == 0) {
        timer_ = needs_.loop.StartTimer(kRunCheckInterval, [this] { Check(); });
    }
    if (OnChanged) OnChanged();
}

double EstimatedSeconds(const RunPlan& plan, std::size_t points, double rateHz) {
    return PointSeconds(plan, points, rateHz) + (plan.preview ? PreviewSeconds(rateHz) : 0.0);
}

}  // namespace sonavex
