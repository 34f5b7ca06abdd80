#include "core/precise/results/ExportedMeasurement.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr const char* kProgramName = "Sonavex";
constexpr std::size_t kReportCharacters = 70;
constexpr int kReportHarmonics = 9;
constexpr int kLevelDecimals = 4;

std::string BitsText(const ExportedMeasurement& measurement) {
    const Reading& reading = measurement.reading.values.reading;
    const std::optional<StreamDetails>& stream = measurement.reading.stream;
    if (!stream) return std::to_string(reading.bits) + (reading.floatingPoint ? " (float)" : "");
    if (stream->inputBits == stream->outputBits) return std::to_string(stream->inputBits);
    return "in " + std::to_string(stream->inputBits) + ", out " + std::to_string(stream->outputBits);
}

std::string AnalysisText(const ExportedMeasurement& measurement) {
    const Reading& reading = measurement.reading.values.reading;
    std::string text = std::to_string(reading.blocks) + " records of " + std::to_string(reading.length) +
                       " samples overlapping by 75 %, window " + kRecordWindow + ", band " +
                       WithDigits(reading.band.lowHz, 6) + " to " + WithDigits(reading.band.highHz, 6) +
                       " Hz";
    if (measurement.reading.mode == PreciseMode::kTone)
        text += ", THD to order " + std::to_string(reading.highestOrder);
    return text;
}

std::string StateText(const ExportedMeasurement& measurement) {
    const Reading& reading = measurement.reading.values.reading;
    if (reading.Valid()) return measurement.state.empty() ? "VALID" : measurement.state;
    std::string text = "VOID";
    for (const Void& entry : reading.voids)
        text += std::string(", ") + Name(entry.code) + ": " + entry.sentence;
    return text;
}

void AddSource(const ExportedMeasurement& measurement, std::vector<std::string>& lines) {
    const std::optional<StreamDetails>& stream = measurement.reading.stream;
    if (!measurement.recording.empty()) lines.push_back("Recording: " + measurement.recording);
    if (!stream) return;
    lines.push_back("Input: " + stream->input);
    lines.push_back("Output: " + stream->output);
    if (stream->simulated) lines.emplace_back("SIMULATED sound card: this reading measures nothing real.");
}

void AddStimulus(const AnalyzedReading& reading, std::vector<std::string>& lines) {
    if (!reading.stream) return;
    std::string text = "Stimulus: " + (reading.stimulus.empty() ? "none" : reading.stimulus);
    for (std::size_t i = 0; i < reading.playedHz.size(); ++i)
        text += (i == 0 ? ", played " : " + ") + WithDigits(reading.playedHz[i], 9);
    lines.push_back(text + (reading.playedHz.empty() ? "" : " Hz"));
}

// A file name may contain line ends.
void KeepInOneLine(std::string& line) {
    std::replace_if(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
}

std::string CsvComment(const std::vector<std::string>& lines) {
    std::string comment;
    for (const std::string& line : lines) comment += "# " + line + '\n';
    return comment;
}

std::vector<std::string> ScaleOf(const ExportedSpectrum& spectrum) {
    return {"Mean power spectrum without dc, scaled so that a sine on a bin reads its level in dBFS",
            "A full-scale sine is 0 dBFS", std::string("Window: ") + kRecordWindow,
            "ENBW: " + WithDecimals(spectrum.enbwBins, 6) +
                " bins = " + WithDecimals(spectrum.enbwBins * spectrum.BinHz(), 6) + " Hz",
            "Rate: " + WithDecimals(spectrum.rateHz, 0) + " Hz; record: " + std::to_string(spectrum.length) +
                " samples; records: " + std::to_string(spectrum.records) + ", overlapping by 75 %"};
}

double LevelDbfs(double power) {
    constexpr double kNothingDb = -400.0;
    return power > 0.0 ? std::max(10.0 * std::log10(power), kNothingDb) : kNothingDb;
}

std::string CsvRow(const NamedValue& row) {
    const Value& value = row.value;
    std::string line = row.name + ',' + (value.value ? WithDigits(*value.value, 12) : "") + ',' + row.unit;
    line += ',' + (value.uncertainty ? WithDigits(*value.uncertainty, 3) : "");
    return line + (value.atMost ? ",1\n" : ",0\n");
}

// The value with its spread, or as a bound.
std::string ReportValue(const Value& value, const char* unit, int decimals) {
    if (!value.value) return "not defined";
    std::string text = FigureText(value, value.atMost ? 1 : decimals) + ' ' + unit;
    if (value.uncertainty && !value.atMost) text += " ± " + WithDigits(*value.uncertainty, 2);
    return text;
}

void AddReportRow(std::vector<std::string>& lines, const std::string& name, const std::string& value) {
    constexpr std::size_t kNameCharacters = 20;
    lines.push_back(name + std::string(kNameCharacters - std::min(kNameCharacters, name.size()), ' ') +
                    value);
}

// Three in a line.
void AddHarmonicRows(std::vector<std::string>& lines, const Reading& reading) {
    constexpr std::size_t kHarmonicCharacters = 25;
    std::string line;
    std::size_t count = 0;
    for (const Harmonic& harmonic : reading.harmonics) {
        if (harmonic.order > kReportHarmonics) break;
        const Value& level = harmonic.levelDbc;
        std::string text = "H" + std::to_string(harmonic.order) + ' ';
        text += level.value ? FigureText(level, 1) + " dBc" : "-";
        if (++count % 3 != 0) text.resize(std::max(text.size(), kHarmonicCharacters), ' ');
        line += text;
        if (count % 3 == 0) lines.push_back(std::exchange(line, {}));
    }
    if (!line.empty()) lines.push_back(line);
}

void AddToneRows(std::vector<std::string>& lines, const Reading& reading) {
    AddReportRow(lines, "Frequency", ReportValue(reading.frequencyHz, "Hz", 3));
    AddReportRow(lines, "Level", ReportValue(reading.levelDbfs, "dBFS", 2));
    AddReportRow(lines, "THD", ReportValue(reading.thdDb, "dB", 2) + " re fundamental");
    AddReportRow(lines, "THD+N", ReportValue(reading.thdnDb, "dB", 2) + " re fundamental");
    AddReportRow(lines, "Noise", ReportValue(reading.noiseDbfs, "dBFS", 2));
    AddReportRow(lines, "Noise, A", ReportValue(reading.noiseADbfs, "dBFS", 2));
    AddHarmonicRows(lines, reading);
}

void AddOtherRows(std::vector<std::string>& lines, const AnalyzedReading& analyzed) {
    const LinesReading& values = analyzed.values;
    for (const ToneValues& tone : values.tones) {
        if (values.tones.size() > 2) break;
        AddReportRow(lines, "Tone",
                     ReportValue(tone.frequencyHz, "Hz", 3) + ", " + ReportValue(tone.levelDbfs, "dBFS", 2));
    }
    if (analyzed.mode == PreciseMode::kPair) {
        AddReportRow(lines, "SMPTE / DIN", ReportValue(values.intermodulation.modDb, "dB", 2));
        AddReportRow(lines, "Difference, AES17", ReportValue(values.intermodulation.dfdAes17Db, "dB", 2));
    }
    if (values.tdnDb.value) AddReportRow(lines, "TD+N", ReportValue(values.tdnDb, "dB", 2));
    if (analyzed.mode == PreciseMode::kNoise)
        AddReportRow(lines, "Level", ReportValue(values.reading.levelDbfs, "dBFS", 2));
    AddReportRow(lines, "Noise", ReportValue(values.reading.noiseDbfs, "dBFS", 2));
    AddReportRow(lines, "Noise, A", ReportValue(values.reading.noiseADbfs, "dBFS", 2));
}

// Breaks a line at blanks, or where it has none, behind whole characters.
void AddWrapped(std::vector<std::string>& lines, std::string_view text) {
    while (text.size() > kReportCharacters) {
        std::size_t end = text.rfind(' ', kReportCharacters);
        if (end == std::string_view::npos || end == 0) {
            end = kReportCharacters;
            while ((static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
        }
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(text[end] == ' ' ? end + 1 : end);
    }
    lines.emplace_back(text);
}

}  // namespace

ExportedSpectrum ExportedSpectrum::Of(MeanSpectrum mean, const RecordPlan& plan) {
    const double enbw = plan.Window().EnbwBins();
    ExportedSpectrum spectrum{plan.RateHz(), plan.Length(), enbw, mean.records, std::move(mean.power)};
    for (double& power : spectrum.power) power *= 2.0 * enbw;
    return spectrum;
}

std::vector<std::string> ConditionsOf(const ExportedMeasurement& measurement) {
    const AnalyzedReading& analyzed = measurement.reading;
    const Reading& reading = analyzed.values.reading;
    std::vector<std::string> lines{std::string("Program: ") + kProgramName + ' ' + measurement.version,
                                   "Time: " + measurement.time};
    AddSource(measurement, lines);
    lines.push_back("Rate: " + WithDigits(analyzed.rateHz, 9) + " Hz");
    lines.push_back("Bits: " + BitsText(measurement));
    AddStimulus(analyzed, lines);
    lines.push_back("Channel: " + measurement.channel);
    lines.push_back("Analysis: " + AnalysisText(measurement));
    lines.push_back("State: " + StateText(measurement));
    for (const Warning& entry : reading.warnings)
        lines.push_back(std::string("Warning: ") + Name(entry.code) + ": " + entry.sentence);
    if (analyzed.stream)
        for (const std::string& note : analyzed.stream->notes) lines.push_back("Note: " + note);
    for (const RuleResult& rule : analyzed.rules)
        lines.push_back((rule.met ? "Met: " : "NOT MET: ") + rule.sentence);
    for (std::string& line : lines) KeepInOneLine(line);
    return lines;
}

std::string ExportedJson(const ExportedMeasurement& measurement, const ExportedSpectrum& spectrum) {
    using nlohmann::ordered_json;
    ordered_json object{{"program", kProgramName},        {"version", measurement.version},
                        {"time", measurement.time},       {"recording", nullptr},
                        {"channel", measurement.channel}, {"state", StateText(measurement)}};
    if (!measurement.recording.empty()) object["recording"] = measurement.recording;
    object.update(ordered_json::parse(AnalyzedJson(measurement.reading)));
    auto levels = ordered_json::array();
    for (const double power : spectrum.power) levels.push_back(std::round(LevelDbfs(power) * 1e4) / 1e4);
    object["spectrum"] = {
        {"bin_hz", spectrum.BinHz()}, {"records", spectrum.records}, {"level_dbfs", std::move(levels)}};
    return object.dump(-1, ' ', false, ordered_json::error_handler_t::replace) + '\n';
}

std::string ReadingsCsv(const ExportedMeasurement& measurement) {
    std::string csv = CsvComment(ConditionsOf(measurement)) + "name,value,unit,uncertainty,bound\n";
    for (const NamedValue& row : NamedValuesOf(measurement.reading)) csv += CsvRow(row);
    return csv;
}

std::string SpectrumCsv(const std::vector<std::string>& conditions, const ExportedSpectrum& spectrum) {
    std::string csv = CsvComment(conditions) + CsvComment(ScaleOf(spectrum)) + "frequency_hz,level_dbfs\n";
    for (std::size_t bin = 0; bin < spectrum.power.size(); ++bin)
        csv += WithDigits(static_cast<double>(bin) * spectrum.BinHz(), 9) + ',' +
               WithDecimals(LevelDbfs(spectrum.power[bin]), kLevelDecimals) + '\n';
    return csv;
}

std::string CopiedText(const ExportedMeasurement& measurement) {
    std::string text;
    for (const NamedValue& row : NamedValuesOf(measurement.reading))
        if (row.value.value)
            text += row.name + '\t' + FigureText(row.value, row.decimals) + '\t' + row.unit + '\n';
    for (const std::string& line : ConditionsOf(measurement)) text += line + '\n';
    return text;
}

std::vector<std::string> ReportLines(const ExportedMeasurement& measurement) {
    std::vector<std::string> lines;
    const AnalyzedReading& analyzed = measurement.reading;
    if (!analyzed.values.reading.Valid()) return lines;
    lines.emplace_back("Analyzer");
    lines.emplace_back(kReportCharacters, '=');
    if (analyzed.mode == PreciseMode::kTone)
        AddToneRows(lines, analyzed.values.reading);
    else
        AddOtherRows(lines, analyzed);
    lines.emplace_back();
    const std::vector<std::string> conditions = ConditionsOf(measurement);
    for (std::size_t i = 1; i < conditions.size(); ++i) AddWrapped(lines, conditions[i]);
    return lines;
}

}  // namespace sonavex
