#pragma once

#include <cstddef>
#include <vector>

namespace sonavex {

// What the phases of a response at several frequencies tell about the delay of the path. The burst measures
// it within about 1 ms, which is a turn at 1 kHz.
class PathDelay {
public:
    // highestHz: above all frequencies that will be added. Positive.
    explicit PathDelay(double highestHz);

    // turns: phase of what arrived, relative to what was played as long before as the burst says. Whole turns
    // do not matter.
    void Add(double hertz, double turns);

    // By how much the delay is longer than the burst says, in seconds, at most 1.5 ms. It is the one that,
    // removed from the phases, brings all of them closest to 0, or all to 180 degrees: a fit of their slope
    // that needs not know the whole turns, as in the phase transform (Knapp and Carter 1976, "The generalized
    // correlation method for estimation of time delay"). Of several equally good ones, the shortest. 0 for a
    // single frequency, and below 500 Hz, where the burst tells more.
    double BeyondBurstSeconds() const;

private:
    struct Phase {
        double hertz;
        double turns;
    };

    bool SlopeIsKnown() const;
    double TriedSeconds(std::size_t index) const;
    std::size_t Top(std::size_t index) const;
    double Refined(double seconds) const;

    double stepSeconds_;
    std::vector<double> sums_;  // of the cosines of all phases, for each delay that is tried
    std::vector<Phase> phases_;
};

}  // namespace sonavex
