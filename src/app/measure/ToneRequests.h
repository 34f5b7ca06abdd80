#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/generator/Generator.h"

namespace sonavex::measure {

// One tone as written on the command line: WAVE:HZ[:ENDHZ:MS[:loop]].
struct ToneRequest {
    std::int16_t waveType = wave::kSine;
    double startHz = 0.0;
    double endHz = 0.0;
    std::int32_t sweepMs = 0;  // 0: no sweep
    bool loop = false;
};

// Throws a MeasureError that names the mistake.
ToneRequest ParseTone(const std::string& text);

// All tones of a command line: frequencies up to half the sampling rate, at most nine tones.
std::vector<ToneRequest> ParseTones(const std::vector<std::string>& texts, std::int32_t rateHz);

// Puts the tones into the table and starts the generator; without a tone it stays silent.
void StartTones(Generator& generator, const std::vector<ToneRequest>& tones);

bool AnySweep(const std::vector<ToneRequest>& tones) noexcept;

}  // namespace sonavex::measure
