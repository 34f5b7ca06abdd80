#include "core/run/RunPhase.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace sonavex {
namespace {

constexpr double kTurn = 2.0 * std::numbers::pi;
constexpr double kDegreesPerTurn = 360.0;

// Of a line, half a record after this frame of the stimulus. Whole turns are dropped before the conversion.
double PlayedTurns(const StimulusLine& line, std::uint64_t frame, std::size_t length) {
    const double begin = std::ldexp(static_cast<double>(static_cast<std::int64_t>(line.step * frame)), -64);
    const double turnsPerFrame = std::ldexp(static_cast<double>(line.step), -64);
    return begin + 0.5 * static_cast<double>(length - 1) * turnsPerFrame;
}

// The same relative error of the amplitude, as an angle.
double DegreesOfDecibels(double decibels) {
    return decibels * std::numbers::ln10 / 20.0 / kTurn * kDegreesPerTurn;
}

}  // namespace

void RunPhase::Start(double highestHz) {
    highestHz_ = highestHz;
    arrival_.reset();
    phases_.clear();
}

bool RunPhase::PathLost() const {
    return arrival_ && !measurement_.Meter.Arrival();
}

void RunPhase::FollowBurst(const PreciseMeter::StimulusArrival& arrival) {
    if (arrival_ && arrival_->firstFrame == arrival.firstFrame) return;
    arrival_ = arrival;
    delay_ = PathDelay(highestHz_);
    phases_.clear();
}

void RunPhase::Add(std::size_t point, const std::array<PointRecord, 2>& records,
                   std::vector<RunPointResult>& results) {
    const std::optional<PreciseMeter::StimulusArrival> arrival = measurement_.Meter.Arrival();
    const std::optional<std::uint64_t> begin = measurement_.Player.Begin();
    const std::vector<StimulusLine>& lines = measurement_.Player.Lines();
    if (!arrival || !begin || lines.size() != 1) return;
    FollowBurst(*arrival);
    results[point].delaySeconds = arrival->delaySeconds;
    if (!engine_.OneClock()) return;
    std::complex<double> mean;
    for (const PointRecord& record : records) {
        const std::uint64_t frame = record.firstFrame - arrival->firstFrame - *begin;
        const double played = PlayedTurns(lines.front(), frame, measurement_.Meter.Plan().Length());
        mean += std::polar(1.0, record.phase - kTurn * played);
    }
    const double hertz = results[point].point.playedHz;
    phases_.push_back({point, hertz, std::arg(mean) / kTurn});
    delay_.Add(hertz, phases_.back().turns);
    Put(results);
}

void RunPhase::Put(std::vector<RunPointResult>& results) const {
    const double beyond = delay_.BeyondBurstSeconds();
    for (const Phase& phase : phases_) {
        RunPointResult& result = results[phase.point];
        const double turns = phase.turns + phase.hertz * beyond;
        result.phaseDegrees.value = kDegreesPerTurn * std::remainder(turns, 1.0);
        if (const std::optional<double> level = result.reading.levelDbfs.uncertainty)
            result.phaseDegrees.uncertainty = DegreesOfDecibels(*level);
        result.delaySeconds = arrival_->delaySeconds + beyond;
    }
}

}  // namespace sonavex
