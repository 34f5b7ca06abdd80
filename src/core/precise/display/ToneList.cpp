#include "core/precise/display/ToneList.h"

#include <algorithm>
#include <optional>

#include "core/precise/display/ReadingTexts.h"
#include "core/stimulus/DecimalText.h"
#include "core/stimulus/Stimulus.h"

namespace sonavex {
namespace {

constexpr std::string_view kPerOctave = "/oct";
constexpr std::size_t kQuotedCharacters = 30;

std::string WithoutAnyBlanks(std::string_view text) {
    std::string dense(text);
    std::erase_if(dense, [](char letter) { return letter == ' ' || letter == '\t' || letter == '\r'; });
    return dense;
}

// Calls take with each part of the text.
template <class Take>
void ForEachPart(std::string_view text, char separator, const Take& take) {
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        take(text.substr(begin, end - begin));
        begin = end + 1;
    }
}

[[noreturn]] void Refuse(const std::string& part, const char* quantity) {
    const std::string shown =
        part.size() > kQuotedCharacters ? part.substr(0, kQuotedCharacters) + "..." : part;
    throw StimulusError("'" + shown + "' is no " + quantity +
                        ". Tones are written as 1000@-6, 3k@-6 (Hz, dB) or 3/oct.");
}

std::string ToneOf(const std::string& part) {
    const std::size_t at = part.find('@');
    const std::string frequency = part.substr(0, at);
    const std::optional<double> hertz = QuantityIn(frequency, "Hz");
    if (!hertz || *hertz <= 0) Refuse(frequency, "frequency");
    if (at == std::string::npos) return DecimalText(*hertz) + "@0";
    const std::string level = part.substr(at + 1);
    const std::optional<double> decibels = QuantityIn(level, "dB");
    if (!decibels) Refuse(level, "level");
    return DecimalText(*hertz) + '@' + DecimalText(*decibels);
}

}  // namespace

std::string ToneNotation(std::string_view typed) {
    std::string dense = WithoutAnyBlanks(typed);
    if (dense.ends_with(kPerOctave)) return dense;
    std::string notation;
    ForEachPart(dense, ',', [&notation](std::string_view part) {
        notation += (notation.empty() ? "" : ",") + ToneOf(std::string(part));
    });
    return notation;
}

std::string LinesOfTones(std::string_view tones) {
    std::string lines;
    ForEachPart(tones, ',', [&lines](std::string_view tone) {
        const std::size_t at = std::min(tone.find('@'), tone.size());
        lines += tone.substr(0, at);
        if (at < tone.size()) lines += ", " + std::string(tone.substr(at + 1));
        lines += '\n';
    });
    return lines;
}

std::string TonesOfLines(std::string_view lines) {
    std::string tones;
    ForEachPart(lines, '\n', [&tones](std::string_view line) {
        std::string tone = WithoutAnyBlanks(line);
        if (tone.empty()) return;
        if (const std::size_t comma = tone.find(','); comma != std::string::npos) tone[comma] = '@';
        tones += (tones.empty() ? "" : ",") + tone;
    });
    return tones;
}

}  // namespace sonavex
