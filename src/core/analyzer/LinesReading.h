#pragma once

#include <vector>

#include "core/analyzer/Reading.h"

namespace sonavex {

struct ToneValues {
    Value frequencyHz;
    Value levelDbfs;
};

// The line at n1 f1 + n2 f2 of two tones f1 < f2.
struct ProductValues {
    int n1 = 0;
    int n2 = 0;
    double frequencyHz = 0;
    Value levelDbfs;
};

// Ratios of amplitudes of two tones f1 < f2 and their products. V(f) is the amplitude at f. A ratio is not
// defined if one of its products was not fitted.
struct Intermodulation {
    Value modD2;  // (V(f2 + f1) + V(f2 - f1)) / V(f2), IEC 60268-3 14.12.7.2
    Value modD3;  // (V(f2 + 2 f1) + V(f2 - 2 f1)) / V(f2)
    Value mod;    // sqrt(modD2^2 + modD3^2): SMPTE RP 120, DIN 45403
    Value modDb;
    Value modRms;    // root of the sum of the four V^2, relative to V(f2)
    Value modAes17;  // rms of V(f2 - f1) and V(f2 + f1) relative to V(f2), AES17-2015 6.3.6

    Value dfdD2;     // V(f2 - f1) / (V(f1) + V(f2)), IEC 60268-3 14.12.8
    Value dfdD3;     // (V(2 f1 - f2) + V(2 f2 - f1)) / (V(f1) + V(f2))
    Value dfdAes17;  // rms of V(f2 - f1), V(2 f1 - f2) and V(2 f2 - f1) relative to V(f1), AES17-2015 6.3.5
    Value dfdAes17Db;
    Value imdPower;  // rms of all products in the band relative to the rms of both tones
};

// The values of the modes that do not measure a tone and its harmonics.
struct LinesReading {
    // Faults, dc, noise, spurs relative to the strongest tone, conditions. In noise mode also the level: rms
    // of everything but dc.
    Reading reading;
    std::vector<ToneValues> tones;  // in ascending order of frequency

    Intermodulation intermodulation;
    std::vector<ProductValues> products;
    // Without level: closer than 6 bins to another line, or than 8 bins to 0 Hz or half the rate.
    std::vector<ProductValues> dropped;

    Value tdnDb;     // everything in the band but the tones, relative to the total
    Value peakDbfs;  // largest sample, noise mode only
};

}  // namespace sonavex
