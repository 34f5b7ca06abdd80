// Lines of the memory list. A hand-written or damaged line gives a tone or a run-time error. The line of that
// tone gives the same tone again.

#include <algorithm>
#include <cmath>

#include "core/generator/ToneLine.h"
#include "core/support/RuntimeError.h"
#include "fuzz/FuzzTarget.h"

namespace sonavex {
namespace {

using fuzz::Require;

bool Same(const ToneRecord& a, const ToneRecord& b) {
    return a.StartFrequency == b.StartFrequency && a.EndFrequency == b.EndFrequency &&
           a.WaveType == b.WaveType && a.SweepTime == b.SweepTime && a.Sweep == b.Sweep && a.Loop == b.Loop;
}

// Equal to fifteen digits.
bool Near(double a, double b) {
    return std::fabs(a - b) <= 1e-14 * std::max(std::fabs(a), std::fabs(b));
}

std::string LineOf(const ToneRecord& tone) {
    Require(tone.WaveType >= 0 && tone.WaveType <= wave::kSawtooth, "the waveform is one of four");
    return MakeToneLine(tone, kWaveNames[static_cast<std::size_t>(tone.WaveType)], tone.Loop);
}

void CheckTone(const ToneRecord& tone) {
    Require(std::isfinite(tone.StartFrequency) && std::isfinite(tone.EndFrequency), "finite frequencies");
    Require(tone.Sweep == (tone.SweepTime != 0), "a sweep has a time");
    Require(tone.LoopIncrement == 0.5, "the increment stays");
    const std::string line = LineOf(tone);
    ToneRecord again;
    again.LoopIncrement = 0.5;
    again.WaveType = wave::kTriangle;
    ParseToneLine(line, again);
    Require(Near(tone.StartFrequency, again.StartFrequency), "the start frequency comes back", line);
    Require(Near(tone.Sweep ? tone.EndFrequency : 0.0, again.EndFrequency), "the end frequency comes back",
            line);
    Require(tone.SweepTime == again.SweepTime && tone.Sweep == again.Sweep, "the sweep comes back", line);
    Require(tone.Loop == again.Loop && tone.WaveType == again.WaveType, "loop and wave come back", line);
    ToneRecord third = again;
    ParseToneLine(LineOf(again), third);
    Require(LineOf(again) == LineOf(third) && Same(again, third), "the second writing is the first", line);
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    ToneRecord tone;
    tone.LoopIncrement = 0.5;
    try {
        ParseToneLine({reinterpret_cast<const char*>(data), size}, tone);
    } catch (const RuntimeError& error) {
        Require(error.Number() == error_number::kOverflow, "only an overflow is refused", error.what());
        return 0;
    }
    CheckTone(tone);
    return 0;
}
