#include "core/history/HistoryCurve.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "core/plot/TraceColumns.h"

namespace sonavex {
namespace {

constexpr std::string_view kBase64 = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr double kHundredths = 100.0;
constexpr double kMostDb = 320.0;
// Of a trace that is made from a curve.
constexpr std::size_t kTraceBins = 32768;
// Of a column without a level.
constexpr std::uint16_t kNoStoredLevel = 0x8000;

std::uint16_t WordOfLevel(double level) {
    if (std::isnan(level)) return kNoStoredLevel;
    const double hundredths = std::round(std::clamp(level, -kMostDb, kMostDb) * kHundredths);
    return static_cast<std::uint16_t>(static_cast<std::int16_t>(hundredths));
}

double LevelOfWord(std::uint16_t word) {
    if (word == kNoStoredLevel) return std::numeric_limits<double>::quiet_NaN();
    return static_cast<std::int16_t>(word) / kHundredths;
}

// Three characters hold 18 bits: one level and two bits that are 0.
void AddLevel(std::string& text, std::uint16_t word) {
    for (const int shift : {12, 6, 0}) text += kBase64[(word >> shift) & 63U];
}

}  // namespace

HistoryCurve HistoryCurve::Of(const ExportedSpectrum& spectrum, double independentSpectra) {
    HistoryCurve curve;
    curve.highHz = 0.5 * spectrum.rateHz;
    if (spectrum.power.empty() || curve.highHz <= curve.lowHz) return curve;
    const SpectrumTrace trace{
        {}, {spectrum.power.begin(), spectrum.power.end()}, spectrum.BinHz(), independentSpectra};
    const PlotRange decades{std::log10(curve.lowHz), std::log10(curve.highHz)};
    for (const TraceColumn& column : TraceColumns(trace, decades, kMostColumns))
        curve.levelsDbfs.push_back(column.Line());
    return curve;
}

SpectrumTrace TraceOf(const HistoryCurve& curve, const std::string& name) {
    SpectrumTrace trace{name, {}, 1, 1};
    if (curve.levelsDbfs.empty() || curve.lowHz <= 0 || curve.highHz <= curve.lowHz) return trace;
    trace.power.assign(kTraceBins + 1, 0.0F);
    trace.binHz = curve.highHz / kTraceBins;
    const auto columns = static_cast<double>(curve.levelsDbfs.size());
    const double columnsPerNeper = columns / std::log(curve.highHz / curve.lowHz);
    for (std::size_t bin = 1; bin < trace.power.size(); ++bin) {
        const double hertz = static_cast<double>(bin) * trace.binHz;
        const double column = std::clamp(std::log(hertz / curve.lowHz) * columnsPerNeper, 0.0, columns - 1);
        const double level = curve.levelsDbfs[static_cast<std::size_t>(column)];
        if (!std::isnan(level)) trace.power[bin] = static_cast<float>(std::pow(10.0, level / 10.0));
    }
    return trace;
}

std::string EncodedLevels(const std::vector<double>& levelsDbfs) {
    std::string text;
    for (const double level : levelsDbfs) AddLevel(text, WordOfLevel(level));
    return text;
}

std::vector<double> DecodedLevels(std::string_view text) {
    constexpr std::size_t kCharacters = 3;
    std::vector<double> levels;
    if (text.size() % kCharacters != 0 || text.size() > kCharacters * HistoryCurve::kMostColumns)
        return levels;
    for (; !text.empty(); text.remove_prefix(kCharacters)) {
        std::size_t word = 0;
        for (const char digit : text.substr(0, kCharacters)) {
            const std::size_t value = kBase64.find(digit);
            if (value == std::string_view::npos) return {};
            word = word << 6U | value;
        }
        if (word > 0xFFFF) return {};
        levels.push_back(LevelOfWord(static_cast<std::uint16_t>(word)));
    }
    return levels;
}

}  // namespace sonavex
