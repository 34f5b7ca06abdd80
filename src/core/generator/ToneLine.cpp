#include "core/generator/ToneLine.h"

#include <algorithm>
#include <array>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr std::size_t kWaveCharacters = 4;
constexpr std::array<std::string_view, 4> kWaveStarts{"Sin", "Squ", "Tri", "Saw"};
constexpr std::string_view kNoSweep = "NA / ";
constexpr std::string_view kLoop = "Loop";
constexpr std::string_view kNoLoop = "No Loop";

// The text after the next slash; empty if there is none.
std::string_view AfterSlash(std::string_view text) {
    const std::size_t slashAt = text.find('/');
    return slashAt == std::string_view::npos ? std::string_view() : text.substr(slashAt + 1);
}

}  // namespace

std::string MakeToneLine(const ToneRecord& tone, std::string_view waveName, bool loop) {
    std::string line = CStr(tone.StartFrequency) + "Hz / ";
    line += tone.Sweep ? CStr(tone.EndFrequency) + "Hz  / " : std::string(kNoSweep);
    line += waveName;
    line += " / ";
    line += tone.Sweep ? CStr(tone.SweepTime) + "ms / " : std::string(kNoSweep);
    line += loop ? kLoop : kNoLoop;
    return line;
}

void ParseToneLine(std::string_view line, ToneRecord& tone) {
    tone.StartFrequency = Val(line);
    std::string_view rest = AfterSlash(line);
    tone.EndFrequency = Val(rest);
    rest = AfterSlash(rest);
    const auto* wave =
        std::find(kWaveStarts.begin(), kWaveStarts.end(), Trim(rest.substr(0, kWaveCharacters)));
    if (wave != kWaveStarts.end()) tone.WaveType = static_cast<std::int16_t>(wave - kWaveStarts.begin());
    rest = AfterSlash(rest);
    tone.SweepTime = CLng(Val(rest));
    tone.Sweep = tone.SweepTime != 0;
    rest = AfterSlash(rest);
    tone.Loop = Trim(rest) != kNoLoop;
}

}  // namespace sonavex
