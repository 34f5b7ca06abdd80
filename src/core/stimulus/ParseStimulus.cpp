#include "core/stimulus/ParseStimulus.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

namespace sonavex {
namespace {

constexpr std::size_t kMostTones = 200;
constexpr int kMostTonesPerOctave = 24;
constexpr double kLargestRatio = 1000.0;
constexpr double kLargestLevelDb = 140.0;
constexpr std::size_t kShownCharacters = 60;

struct Pair {
    std::string_view name;
    double firstHz;
    double secondHz;
    double ratio;
};
// SMPTE RP 120, DIN 45403, IEC 60268-3 (CCIF), AES17.
constexpr std::array kStandardPairs{Pair{"smpte", 60.0, 7000.0, 4.0}, Pair{"din", 250.0, 8000.0, 4.0},
                                    Pair{"ccif", 19000.0, 20000.0, 1.0}, Pair{"aes17-mod", 41.0, 7993.0, 4.0},
                                    Pair{"aes17-dfd", 18000.0, 20000.0, 1.0}};

struct ShapeName {
    std::string_view name;
    StimulusShape shape;
};
constexpr std::array kOneFrequency{
    ShapeName{"sine", StimulusShape::kSine}, ShapeName{"square", StimulusShape::kSquare},
    ShapeName{"triangle", StimulusShape::kTriangle}, ShapeName{"sawtooth", StimulusShape::kSawtooth}};
constexpr std::array kNoises{ShapeName{"white", StimulusShape::kWhiteNoise},
                             ShapeName{"pink", StimulusShape::kPinkNoise}};

template <class List>
auto Find(const List& list, std::string_view name) {
    const auto found = std::find_if(list.begin(), list.end(), [&](const auto& x) { return x.name == name; });
    return found == list.end() ? nullptr : &*found;
}

// The text between quotes, short and on one line.
std::string Quoted(std::string_view text) {
    std::string shown(text.substr(0, kShownCharacters));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; },
        ' ');
    return "'" + shown + (text.size() > kShownCharacters ? "...'" : "'");
}

[[noreturn]] void Refuse(std::string_view text, const std::string& why) {
    throw StimulusError("The stimulus " + Quoted(text) + " " + why);
}

[[noreturn]] void RefuseNotation(std::string_view text) {
    Refuse(text, std::string("is not one of ") + kStimulusNotation + ".");
}

std::optional<double> NumberIn(std::string_view field) {
    double number = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), number);
    if (error != std::errc() || end != field.data() + field.size() || !std::isfinite(number)) return {};
    return number;
}

double FrequencyIn(std::string_view text, std::string_view field) {
    const auto number = NumberIn(field);
    if (!number || *number <= 0.0) Refuse(text, "has a frequency that is not a positive number.");
    return *number;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> fields;
    for (std::size_t begin = 0;;) {
        const std::size_t end = text.find(separator, begin);
        fields.push_back(text.substr(begin, end - begin));
        if (end == std::string_view::npos) return fields;
        begin = end + 1;
    }
}

Stimulus PairOf(double firstHz, double secondHz, double ratio) {
    return {StimulusShape::kPair, {{firstHz, ratio}, {secondHz, 1.0}}};
}

Stimulus ParsePair(std::string_view text, std::string_view arguments) {
    const auto fields = Split(arguments, ',');
    if (fields.size() != 2 && fields.size() != 3) Refuse(text, "is not of the form pair:F1,F2[,RATIO].");
    const auto ratio = fields.size() == 3 ? NumberIn(fields[2]) : 1.0;
    if (!ratio || *ratio < 1.0 / kLargestRatio || *ratio > kLargestRatio)
        Refuse(text, "has a ratio that is not a number from 0.001 to 1000.");
    return PairOf(FrequencyIn(text, fields[0]), FrequencyIn(text, fields[1]), *ratio);
}

StimulusTone ParseTone(std::string_view text, std::string_view field) {
    const auto parts = Split(field, '@');
    if (parts.size() != 2) Refuse(text, "is not of the form multitone:F@DB,... or multitone:N/oct.");
    const auto level = NumberIn(parts[1]);
    if (!level || std::abs(*level) > kLargestLevelDb)
        Refuse(text, "has a level that is not a number from -140 to 140 dB.");
    return {FrequencyIn(text, parts[0]), std::pow(10.0, *level / 20.0)};
}

Stimulus ParseMultitone(std::string_view text, std::string_view arguments) {
    Stimulus stimulus{StimulusShape::kMultitone, {}};
    if (arguments.ends_with("/oct")) {
        arguments.remove_suffix(4);
        const auto number = NumberIn(arguments);
        if (!number || *number < 1.0 || *number > kMostTonesPerOctave || *number != std::floor(*number))
            Refuse(text, "has a number of tones per octave that is not a whole number from 1 to 24.");
        stimulus.tonesPerOctave = static_cast<int>(*number);
        return stimulus;
    }
    const auto fields = Split(arguments, ',');
    if (fields.size() > kMostTones) Refuse(text, "has more than 200 tones.");
    for (const std::string_view field : fields) stimulus.tones.push_back(ParseTone(text, field));
    return stimulus;
}

Stimulus ParseName(std::string_view text) {
    if (const Pair* const pair = Find(kStandardPairs, text))
        return PairOf(pair->firstHz, pair->secondHz, pair->ratio);
    if (const ShapeName* const noise = Find(kNoises, text)) return {noise->shape, {}};
    RefuseNotation(text);
}

}  // namespace

Stimulus ParseStimulus(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) return ParseName(text);
    const std::string_view name = text.substr(0, colon);
    const std::string_view arguments = text.substr(colon + 1);
    if (name == "pair") return ParsePair(text, arguments);
    if (name == "multitone") return ParseMultitone(text, arguments);
    if (const ShapeName* const shape = Find(kOneFrequency, name))
        return {shape->shape, {{FrequencyIn(text, arguments), 1.0}}};
    RefuseNotation(text);
}

}  // namespace sonavex
