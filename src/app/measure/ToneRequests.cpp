#include "app/measure/ToneRequests.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <string_view>

#include "app/measure/MeasureError.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {
namespace {

constexpr std::int32_t kLongestSweepMs = 10000;
constexpr double kLowestHz = 0.001;

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> fields;
    std::istringstream stream(text);
    for (std::string field; std::getline(stream, field, separator);) fields.push_back(field);
    if (!text.empty() && text.back() == separator) fields.emplace_back();
    return fields;
}

[[noreturn]] void Refuse(const std::string& text, const std::string& why) {
    throw MeasureError("The tone '" + text + "' " + why);
}

std::int16_t WaveOf(const std::string& text, const std::string& name) {
    constexpr std::array<std::string_view, 4> kNames{"sine", "square", "triangle", "sawtooth"};
    const auto found = std::find(kNames.begin(), kNames.end(), name);
    if (found == kNames.end()) Refuse(text, "has no waveform of sine, square, triangle or sawtooth.");
    return static_cast<std::int16_t>(found - kNames.begin());
}

double NumberOf(const std::string& text, const std::string& field, const char* what) {
    if (!IsNumeric(field)) Refuse(text, std::string("has ") + what + " that is not a number.");
    return CDbl(field);
}

std::int32_t SweepTimeOf(const std::string& text, const std::string& field) {
    const double timeMs = NumberOf(text, field, "a sweep time");
    if (timeMs < 0.0 || timeMs > kLongestSweepMs || timeMs != RoundHalfEven(timeMs))
        Refuse(text, "has a sweep time that is not a whole number of 0 to 10000 milliseconds.");
    return CLng(timeMs);
}

void CheckRange(const std::string& text, double frequencyHz, std::int32_t rateHz) {
    if (frequencyHz >= kLowestHz && frequencyHz <= rateHz / 2.0) return;
    Refuse(text, "has a frequency outside " + CStr(kLowestHz) + " to " + CStr(rateHz / 2) +
                     " Hz, half the sampling rate.");
}

}  // namespace

ToneRequest ParseTone(const std::string& text) {
    const std::vector<std::string> fields = Split(text, ':');
    if (fields.size() != 2 && fields.size() != 4 && fields.size() != 5)
        Refuse(text, "is not of the form WAVE:HZ[:ENDHZ:MS[:loop]].");
    ToneRequest tone;
    tone.waveType = WaveOf(text, fields[0]);
    tone.startHz = NumberOf(text, fields[1], "a frequency");
    tone.endHz = tone.startHz;
    if (fields.size() == 2) return tone;
    tone.endHz = NumberOf(text, fields[2], "an end frequency");
    tone.sweepMs = SweepTimeOf(text, fields[3]);
    if (fields.size() == 4) return tone;
    if (fields[4] != "loop") Refuse(text, "ends with something other than 'loop'.");
    tone.loop = true;
    return tone;
}

std::vector<ToneRequest> ParseTones(const std::vector<std::string>& texts, std::int32_t rateHz) {
    if (texts.size() > static_cast<std::size_t>(kToneRecords))
        throw MeasureError("At most 9 tones can sound together.");
    std::vector<ToneRequest> tones;
    for (const std::string& text : texts) {
        tones.push_back(ParseTone(text));
        CheckRange(text, tones.back().startHz, rateHz);
        CheckRange(text, tones.back().endHz, rateHz);
    }
    return tones;
}

void StartTones(Generator& generator, const std::vector<ToneRequest>& tones) {
    if (tones.empty()) return;
    for (std::size_t i = 0; i < tones.size(); ++i) {
        const ToneRequest& request = tones[i];
        ToneRecord& tone = generator.Tones[i];
        tone = ToneRecord{};
        tone.WaveType = request.waveType;
        tone.StartFrequency = request.startHz;
        tone.EndFrequency = request.endHz;
        tone.SweepTime = request.sweepMs;
        tone.Sweep = request.sweepMs != 0;
        tone.Loop = request.loop;
        tone.LoopIncrement = tone.Sweep ? (tone.EndFrequency - tone.StartFrequency) / tone.SweepTime : 0.0;
        tone.Frequency = tone.StartFrequency;
        tone.SweepFrequency = tone.StartFrequency;
    }
    generator.NumTones = static_cast<std::int32_t>(tones.size());
    generator.ResetTonePhases();
    generator.SetGeneratorRunning(true);
    generator.SweepRunning = true;
}

bool AnySweep(const std::vector<ToneRequest>& tones) noexcept {
    return std::any_of(tones.begin(), tones.end(), [](const ToneRequest& tone) { return tone.sweepMs != 0; });
}

}  // namespace sonavex::measure
