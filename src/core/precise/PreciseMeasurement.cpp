#include "core/precise/PreciseMeasurement.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "core/precise/PathBurst.h"

namespace sonavex {
namespace {

// The burst is not repeated while it is searched.
constexpr double kBurstPeriodSeconds = 2.0;

StimulusSignal BurstSignal(double rateHz, double levelDbfs) {
    std::vector<double> period = PathBurst(rateHz);
    for (double& sample : period) sample *= std::pow(10.0, levelDbfs / 20.0);
    period.resize(std::bit_ceil(static_cast<std::size_t>(kBurstPeriodSeconds * rateHz)));
    return StimulusSignal({}, std::move(period));
}

bool IsPlayed(double hertz, const StimulusLine& line) {
    return hertz == line.hertz;
}

}  // namespace

PreciseMeasurement::PreciseMeasurement(const StimulusPlayer::Needs& needs)
    : Meter({needs.instrument.Engine, needs.instrument.Fine, needs.instrument.UsedBits, needs.background}),
      Player(needs),
      needs_(needs) {
    Player.OnChanged = [this] { Follow(); };
    Player.FirstSignal = [this](double levelDbfs) -> std::optional<StimulusSignal> {
        if (!measuring_ || Meter.DelayKnown()) return std::nullopt;
        return BurstSignal(needs_.instrument.Shared.SampleRate, levelDbfs);
    };
    Meter.OnBurstEnded = [this] { Player.Continue(); };
}

void PreciseMeasurement::Start(const PreciseSettings& settings,
                               const std::optional<StimulusChoice>& stimulus) {
    Meter.Start(settings);
    settings_ = settings;
    measuring_ = true;
    if (stimulus)
        Player.Start(*stimulus);
    else if (Player.Now() == StimulusPlayer::State::kPlaying)
        MeasureStimulus();
    else if (Player.Now() == StimulusPlayer::State::kFirstSignal)
        Player.Continue();  // the meter does not search the burst any more
}

void PreciseMeasurement::Stop() {
    measuring_ = false;
    Meter.Stop();
    Player.Stop();
}

void PreciseMeasurement::Follow() {
    const StimulusPlayer::State state = Player.Now();
    if (state == StimulusPlayer::State::kEnding || state == StimulusPlayer::State::kOff)
        Meter.StimulusEnded();
    if (measuring_) {
        if (state == StimulusPlayer::State::kFirstSignal) Meter.BurstStarted();
        if (state == StimulusPlayer::State::kPlaying) MeasureStimulus();
        if (state == StimulusPlayer::State::kEnding || state == StimulusPlayer::State::kOff)
            Meter.StimulusChanged();
    }
    if (OnChanged) OnChanged();
}

void PreciseMeasurement::MeasureStimulus() {
    PreciseSettings settings = settings_;
    const std::vector<StimulusLine>& lines = Player.Lines();
    if (lines.size() == 1 && !settings.tone.fundamentalHz) settings.tone.playedHz = lines.front().hertz;
    if (settings.tonesHz.empty())
        for (const StimulusLine& line : lines) settings.tonesHz.push_back(line.hertz);
    if (std::equal(settings.tonesHz.begin(), settings.tonesHz.end(), lines.begin(), lines.end(), IsPlayed))
        settings.pairSearch = PairSearch::kPlayed;
    Meter.Start(settings);
    Meter.StimulusChanged();
}

}  // namespace sonavex
