#include "core/stimulus/StimulusPlan.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "core/stimulus/DecimalText.h"

namespace sonavex {
namespace {

constexpr double kLowestOctaveHz = 20.0;
constexpr double kHighestOctaveHz = 20000.0;

class Planner {
public:
    explicit Planner(const StimulusRequest& request)
        : request_(request), binHz_(request.rateHz / static_cast<double>(request.length)) {
        plan_.shape = request.stimulus.shape;
        plan_.rateHz = request.rateHz;
        plan_.length = request.length;
        plan_.levelDbfs = request.levelDbfs;
    }

    StimulusPlan Plan() {
        if (request_.stimulus.tonesPerOctave > 0) {
            AddOctaves();
        } else {
            for (const StimulusTone& tone : request_.stimulus.tones) Add(tone);
            RequireDistance();
        }
        return plan_;
    }

private:
    double LowestHz() const { return kBinsBetweenTones * binHz_; }
    double HighestHz() const {
        return HasHarmonics(plan_.shape) ? kHighestPart * request_.rateHz
                                         : request_.rateHz / 2.0 - LowestHz();
    }

    void Add(const StimulusTone& tone) {
        if (!(tone.hertz >= LowestHz() && tone.hertz <= HighestHz()))
            throw StimulusError("The frequency " + DecimalText(tone.hertz) + " Hz is outside " +
                                DecimalText(LowestHz()) + " to " + DecimalText(HighestHz()) +
                                " Hz at a rate of " + DecimalText(request_.rateHz) + " Hz.");
        plan_.tones.push_back(Placed(tone));
    }

    // On a bin the period of a record holds whole cycles. The period of an odd bin holds no shorter pattern.
    PlannedTone Placed(const StimulusTone& tone) const {
        const double bins = tone.hertz / binHz_;
        if (!request_.snap && !plan_.Periodic())
            return {static_cast<std::uint64_t>(std::ldexp(tone.hertz / request_.rateHz, 64)), tone.hertz,
                    tone.amplitude};
        const double bin = request_.snap ? NearestOddBin(bins) : std::nearbyint(bins);
        return {static_cast<std::uint64_t>(std::ldexp(bin / static_cast<double>(request_.length), 64)),
                bin * binHz_, tone.amplitude};
    }

    double NearestOddBin(double bins) const {
        const double bin = 2.0 * std::floor(bins / 2.0) + 1.0;
        return bin * binHz_ > HighestHz() ? bin - 2.0 : bin;
    }

    void RequireDistance() const {
        std::vector<double> hertz;
        for (const PlannedTone& tone : plan_.tones) hertz.push_back(tone.hertz);
        std::sort(hertz.begin(), hertz.end());
        for (std::size_t i = 1; i < hertz.size(); ++i)
            if (TooClose(hertz[i - 1], hertz[i]))
                throw StimulusError("The tones " + DecimalText(hertz[i - 1]) + " Hz and " +
                                    DecimalText(hertz[i]) + " Hz are closer than " + DecimalText(LowestHz()) +
                                    " Hz, 8 bins of a record.");
    }

    // A rounding error must not separate tones that are 8 bins apart.
    bool TooClose(double lowHz, double highHz) const {
        return highHz - lowHz < (kBinsBetweenTones - 1e-6) * binHz_;
    }

    // Tones that are too close to the one below are left out.
    void AddOctaves() {
        const double begin = std::max(kLowestOctaveHz, LowestHz() + 2.0 * binHz_);
        const double end = std::min(kHighestOctaveHz, HighestHz() - 2.0 * binHz_);
        for (int i = 0;; ++i) {
            const double hertz = begin * std::exp2(i / static_cast<double>(request_.stimulus.tonesPerOctave));
            if (hertz > end * (1.0 + 1e-9)) return;
            const PlannedTone tone = Placed({hertz, 1.0});
            if (plan_.tones.empty() || !TooClose(plan_.tones.back().hertz, tone.hertz))
                plan_.tones.push_back(tone);
        }
    }

    const StimulusRequest& request_;
    double binHz_;
    StimulusPlan plan_;
};

}  // namespace

StimulusPlan PlanStimulus(const StimulusRequest& request) {
    return Planner(request).Plan();
}

}  // namespace sonavex
