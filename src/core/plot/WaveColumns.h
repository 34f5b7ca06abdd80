#pragma once

#include <cstddef>
#include <vector>

#include "core/plot/WaveRecord.h"

namespace sonavex {

// The extent of a curve in one column of pixels; full scale 1.
struct WaveColumn {
    double low = 0;
    double high = 0;
};

// Columns of the visible time. A curve is empty if the record does not have it or is too short.
struct WaveColumns {
    std::vector<WaveColumn> signal;     // the band-limited waveform through the samples
    std::vector<WaveColumn> captured;   // samples without dc and fundamental, joined by straight lines
    std::vector<WaveColumn> harmonics;  // the harmonics alone
};

// Begins at a rising zero crossing of the fundamental. periods: 1 to 5.
WaveColumns MakeWaveColumns(const WaveRecord& record, int periods, std::size_t columns);

// The largest magnitudes of the samples in the last five periods.
struct WavePeaks {
    double signal = 0;
    double captured = 0;
};
WavePeaks PeaksOf(const WaveRecord& record);

}  // namespace sonavex
