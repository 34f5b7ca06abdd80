#include "core/generator/GeneratorWords.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

std::string Count(std::ptrdiff_t count) {
    return CStr(static_cast<std::int32_t>(count));
}

std::string State(const Generator& generator) {
    if (!generator.GeneratorRunning) return "Generator stopped";
    if (generator.NumTones == 1) return "Generator playing";
    return "Generator playing " + CStr(generator.NumTones) + " tones";
}

// A looping sweep never ends.
bool Ended(const ToneRecord& tone) {
    return !tone.Loop && !Generator::UnderWay(tone);
}

std::string SweepOfOne(const ToneRecord& tone) {
    return (Ended(tone) ? "sweep ended at " : "sweeping, ") + FrequencyWords(tone.Frequency);
}

std::string SweepsOfMany(std::ptrdiff_t underWay, std::ptrdiff_t ended) {
    if (ended == 0) return Count(underWay) + " tones sweeping";
    if (underWay == 0) return Count(ended) + " sweeps ended";
    return Count(underWay) + " sweeping, " + Count(ended) + " ended";
}

std::string Detail(const Generator& generator) {
    const auto count = static_cast<std::size_t>(std::clamp(generator.NumTones, 0, kToneRecords));
    const std::span<const ToneRecord> tones(generator.Tones.data(), count);
    const auto sweeps = [](const ToneRecord& tone) { return tone.Sweep; };
    const auto swept = std::count_if(tones.begin(), tones.end(), sweeps);
    if (swept == 0) return {};
    if (swept == 1) return SweepOfOne(*std::find_if(tones.begin(), tones.end(), sweeps));
    const auto ended = std::count_if(tones.begin(), tones.end(),
                                     [](const ToneRecord& tone) { return tone.Sweep && Ended(tone); });
    return SweepsOfMany(swept - ended, ended);
}

}  // namespace

GeneratorWords GeneratorWords::Of(const Generator& generator, bool clockRuns) {
    return {State(generator), generator.GeneratorRunning && clockRuns ? Detail(generator) : std::string()};
}

std::string FrequencyWords(double hertz) {
    const std::string number = Format(hertz, Pattern::kWhole);
    return (number.empty() ? "0" : number) + " Hz";
}

std::string MemoryWords(std::int32_t tones) {
    return CStr(tones) + " of 8";
}

}  // namespace sonavex
