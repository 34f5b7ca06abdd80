#pragma once

#include <array>
#include <cstddef>

#include "core/controls/Controls.h"
#include "core/dsp/Readings.h"

namespace sonavex {

// The controls of the meter: captions that MeterDisplay writes, boxes that the user sets. Every caption
// but that of Cycle starts empty. Array element i stands for harmonic i + 2.
struct MeasurementControls {
    static constexpr std::size_t kHarmonics = Readings::kHarmonics;

    ProgressBar prgADC{32760.0F};           // input peak, 16-bit steps
    ProgressBar prgDAC{32760.0F};           // output peak before the generator's signal, 16-bit steps
    Label LblLevel;                         // input peak, percent of 32760, or "Ovr"
    Label lblDACLevel;                      // output peak, percent of 32760, or "Ovr", or "Muted"
    TextBox txtFreq;                        // fundamental frequency, Hz
    CheckBox chkAuto;                       // the measured frequency is written to txtFreq
    CheckBox chkMuteOutput;                 // the input is not sent to the output
    CheckBox chkBaseline;                   // the baseline is subtracted from the percentages
    Indicator picLocked;                    // light green: locked
    Indicator GenLocked;                    // the same on the generator's side
    std::array<Label, kHarmonics> lbltest;  // distortion up to this harmonic, percent (THD_R), or "N/A"
    std::array<Label, kHarmonics> lblDb;    // this harmonic relative to the fundamental, dB, or "N/A"
    Label lblThd;                           // total: the last of lbltest that is not "N/A"
    Label Cycle;                            // blocks of the cycle: "3 of 19"
};

}  // namespace sonavex
