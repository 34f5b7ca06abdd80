#pragma once

#include <memory>
#include <span>
#include <vector>

#include "core/preview/PreviewSweep.h"

namespace sonavex {

// A value that is 20 dB above its noise is precise to 0.1 dB: the noise is stated as ten times the amplitude
// that changes the value by 0.1 dB with three standard deviations.
struct PreviewHarmonic {
    double dbc = 0;  // relative to the fundamental
    double noiseDbc = 0;
};

struct PreviewPoint {
    double hertz = 0;   // of the fundamental
    double gainDb = 0;  // level at the input relative to the output: the frequency response
    double gainNoiseDb = 0;
    std::vector<PreviewHarmonic> harmonics;  // from the 2nd on; empty where none can be shown
};

// The impulse responses of the orders are separated by their time: the period is divided by the spectrum of
// the sweep, and each order is cut out around its lead.
// Source: A. Farina, "Simultaneous measurement of impulse response and distortion with a swept-sine
// technique", AES 108th Convention (2000).
class PreviewAnalysis {
public:
    // Construct it on the user-interface thread, because making FFTW plans is not thread-safe.
    explicit PreviewAnalysis(PreviewSweep sweep);
    ~PreviewAnalysis();
    PreviewAnalysis(const PreviewAnalysis&) = delete;
    PreviewAnalysis& operator=(const PreviewAnalysis&) = delete;

    const PreviewSweep& Sweep() const noexcept { return sweep_; }

    // The points of these frequencies; those outside twice the sweep's lowest and 0.45 of the rate are left
    // out. Harmonics are given from 50 Hz on, up to 0.2 of the rate and to the 9th. Any thread.
    // captured: one period after the first one, as long as the sweep's samples, full scale 1.
    // amplitude: of the sweep that was played, full scale 1.
    std::vector<PreviewPoint> Analyze(std::span<const double> captured, double amplitude,
                                      std::span<const double> frequenciesHz) const;

private:
    struct Transform;
    std::vector<double> ImpulseResponse(std::span<const double> captured, double amplitude) const;

    PreviewSweep sweep_;
    std::unique_ptr<Transform> transform_;
};

}  // namespace sonavex
