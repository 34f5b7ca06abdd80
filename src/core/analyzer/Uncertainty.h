#pragma once

#include "core/analyzer/Reading.h"

namespace sonavex {

// Factors for standard deviations that come from the density of the noise around a line, or at 0 Hz, in a
// mean of `powerRecords` independent records: such a density is itself uncertain, so that intervals of the
// normal distribution would contain the truth too rarely.
double WideningOfLine(double powerRecords);
double WideningAtDc(double powerRecords);

// Makes values with their 95 % uncertainty from standard deviations.
class Uncertainty {
public:
    // noiseless: the record contains no noise that could be told from rounding. No uncertainty is then below
    // 1e-9 of the value.
    explicit Uncertainty(bool noiseless) : least_(noiseless ? 1e-9 : 0.0) {}

    // 20 lg(ratio) and 10 lg(ratio) for a relative standard deviation of the ratio.
    Value AmplitudeDb(double ratio, double relativeSigma) const;
    Value PowerDb(double ratio, double relativeSigma) const;

    // Any value; `scale` is what "relative" refers to when it is larger than the value.
    Value Absolute(double value, double sigma, double scale = 0.0) const;

    // Degrees from a standard deviation in radians.
    Value Degrees(double degrees, double sigmaRadians) const;

    static Value AtMost(double bound) { return {bound, {}, true}; }

private:
    double Relative(double relativeSigma) const;

    double least_;
};

}  // namespace sonavex
