#pragma once

#include "core/analyzer/Reading.h"

namespace sonavex {

// A value of a reading of one tone as it is written and read.
struct ReadingField {
    const char* name;  // in AnalyzedJson
    const char* caption;
    const char* unit;
    int decimals;
    Value Reading::*value;
};

// All values but frequency, level and harmonics.
inline constexpr ReadingField kReadingFields[] = {
    {"dc", "DC", "FS", 9, &Reading::dc},
    {"thd_percent", "THD", "%", 6, &Reading::thdPercent},
    {"thd_db", "THD", "dB", 3, &Reading::thdDb},
    {"thd_r_percent", "THD_R", "%", 6, &Reading::thdRPercent},
    {"thdn_db", "THD+N", "dB", 3, &Reading::thdnDb},
    {"thdn_r_db", "THD+N_R", "dB", 3, &Reading::thdnRDb},
    {"thdn_notch_db", "THD+N, notch", "dB", 3, &Reading::thdnNotchDb},
    {"sinad_db", "SINAD", "dB", 3, &Reading::sinadDb},
    {"snr_db", "SNR", "dB", 3, &Reading::snrDb},
    {"enob", "ENOB re full scale", "bit", 3, &Reading::enob},
    {"noise_dbfs", "Noise", "dBFS", 3, &Reading::noiseDbfs},
    {"noise_a_dbfs", "Noise, A", "dBFS", 3, &Reading::noiseADbfs},
    {"noise_468_dbfs", "Noise, 468", "dBFS", 3, &Reading::noise468Dbfs},
    {"noise_ccir_rms_dbfs", "Noise, CCIR-RMS", "dBFS", 3, &Reading::noiseCcirRmsDbfs},
    {"skirt_db", "Skirt", "dBc", 3, &Reading::skirtDb},
    {"sfdr_db", "SFDR", "dB", 3, &Reading::sfdrDb},
};

}  // namespace sonavex
