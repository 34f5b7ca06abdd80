#pragma once

#include <memory>
#include <string>

#include "core/controls/Control.h"
#include "core/plot/WaveRecord.h"

namespace sonavex {

// The waveform and the residual: on the left the signal; on the right the signal without its fundamental as
// captured, and its harmonics alone.
class WavePlot : public Control {
public:
    // Null shows empty plots.
    void Show(std::shared_ptr<const WaveRecord> record);
    const std::shared_ptr<const WaveRecord>& Shown() const noexcept { return record_; }

    // Visible periods: 1, 2 or 5.
    void SetPeriods(int periods) { Assign(periods_, periods); }
    int Periods() const noexcept { return periods_; }

    // The visible time.
    double Seconds() const;

    // Full scales of the plots: 1, 1.5, 2, 3, 4, 5, 6 or 8 times a power of ten. That of the signal is at
    // most 1. They grow at once and shrink when half of them is enough.
    double SignalScale() const noexcept { return signalScale_; }
    double ResidualScale() const noexcept { return residualScale_; }
    std::string SignalScaleText() const;    // "±1 FS", "±20 µFS"
    std::string ResidualScaleText() const;  // "±20 µFS = -94.0 dBFS"

    // A full scale as the axes label it, at most six characters with the sign: "0.015" and "FS", "20" and
    // "µFS".
    struct AxisTexts {
        std::string value;
        const char* unit = "";
    };
    static AxisTexts TextsOf(double fullScale);

    // What the plot shows, as sentences for a screen reader.
    std::string Description() const;

private:
    std::shared_ptr<const WaveRecord> record_;
    int periods_ = 2;
    double signalScale_ = 1;
    double residualScale_ = 1e-6;
};

}  // namespace sonavex
