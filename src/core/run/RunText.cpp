#include "core/run/RunText.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "core/precise/results/AnalyzedReading.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

using PointJson = nlohmann::ordered_json;

constexpr int kFrequencyDigits = 12;
constexpr int kUncertaintyDigits = 6;
constexpr int kValueDecimals = 6;
constexpr int kMarginDecimals = 2;
constexpr int kColumnOrders = 9;
constexpr double kMillisecondsPerSecond = 1000.0;

AnalyzedReading AnalyzedOf(const RunPointResult& result, const RunConditions& conditions) {
    AnalyzedReading analyzed;
    analyzed.values.reading = result.reading;
    analyzed.rateHz = conditions.rateHz;
    analyzed.stream = conditions.stream;
    analyzed.stimulus = "sine:" + WithDigits(result.point.playedHz, kFrequencyDigits);
    return analyzed;
}

PointJson NullOr(const std::optional<double>& number) {
    return number ? PointJson(*number) : PointJson(nullptr);
}

std::optional<double> DelayMs(const RunPointResult& result) {
    if (!result.delaySeconds) return std::nullopt;
    return *result.delaySeconds * kMillisecondsPerSecond;
}

struct CsvColumn {
    std::string name;
    Value value;
};

std::vector<CsvColumn> ColumnsOf(const RunPointResult& result) {
    const Reading& reading = result.reading;
    std::vector<CsvColumn> columns{{"frequency_hz", reading.frequencyHz},
                                   {"level_dbfs", reading.levelDbfs},
                                   {"gain_db", result.gainDb},
                                   {"thd_db", reading.thdDb},
                                   {"thdn_db", reading.thdnDb},
                                   {"noise_dbfs", reading.noiseDbfs}};
    for (int order = 2; order <= kColumnOrders; ++order) {
        CsvColumn column{"h" + std::to_string(order) + "_dbc", {}};
        for (const Harmonic& harmonic : reading.harmonics)
            if (harmonic.order == order) column.value = harmonic.levelDbc;
        columns.push_back(std::move(column));
    }
    columns.push_back({"phase_deg", result.phaseDegrees});
    columns.push_back({"path_delay_ms", {DelayMs(result), {}}});
    return columns;
}

std::string CsvQuoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
    return quoted + '"';
}

std::string CsvTitles() {
    std::string line = "requested_hz,played_hz,stimulus_dbfs,valid,reason,attempts,after_loss";
    for (const CsvColumn& column : ColumnsOf({}))
        line += ',' + column.name + ',' + column.name + "_uncertainty," + column.name + "_bound";
    return line + '\n';
}

std::string RunCsvRow(const RunPointResult& result) {
    std::string line = WithDigits(result.point.requestedHz, kFrequencyDigits) + ',' +
                       WithDigits(result.point.playedHz, kFrequencyDigits) + ',' +
                       WithoutTrailingZeros(result.point.levelDbfs, kValueDecimals) +
                       (result.Valid() ? ",1," : ",0,") + CsvQuoted(result.fault.code) + ',' +
                       std::to_string(result.attempts) + (result.afterLoss ? ",1" : ",0");
    for (const CsvColumn& column : ColumnsOf(result)) {
        line += ',';
        if (column.value.value) line += WithDecimals(*column.value.value, kValueDecimals);
        line += ',';
        if (column.value.uncertainty) line += WithDigits(*column.value.uncertainty, kUncertaintyDigits);
        line += column.value.value ? (column.value.atMost ? ",1" : ",0") : ",";
    }
    return line + '\n';
}

std::string RunConditionLines(const RunConditions& conditions) {
    std::string lines = "# rate " + WithDecimals(conditions.rateHz, 0) + " Hz\n";
    if (!conditions.stream) return lines;
    const StreamDetails& stream = *conditions.stream;
    lines += "# input " + stream.input + ", " + std::to_string(stream.inputBits) + " bit\n# output " +
             stream.output + ", " + std::to_string(stream.outputBits) + " bit\n";
    for (const std::string& note : stream.notes) lines += "# note " + note + '\n';
    if (stream.simulated) lines += "# SIMULATED sound card: this run measures nothing real\n";
    return lines;
}

std::string WorstSentence(const RunMargin& worst, std::span<const RunPointResult> results) {
    const std::string hertz = WithDigits(results[worst.point].point.requestedHz, kUncertaintyDigits) + " Hz";
    return " Worst: " + NameOf(worst.quantity) + ' ' + WithDecimals(worst.valueDb, kMarginDecimals) +
           " dB at " + PlaceText(results, worst.point, hertz) + ", limit " +
           WithDecimals(worst.limitDb, kMarginDecimals) + " dB.";
}

}  // namespace

std::string PlaceText(std::span<const RunPointResult> results, std::size_t point, const std::string& hertz) {
    const auto differs = [&](auto value) {
        return std::any_of(results.begin(), results.end(), [&](const RunPointResult& result) {
            return result.point.*value != results[point].point.*value;
        });
    };
    if (!differs(&RunPoint::levelDbfs)) return hertz;
    const std::string level = WithDigits(results[point].point.levelDbfs, kUncertaintyDigits) + " dBFS";
    return differs(&RunPoint::requestedHz) ? hertz + ", " + level : level;
}

std::string RunPointJson(const RunPointResult& result, std::size_t number, const RunConditions& conditions,
                         const RunFile* run) {
    PointJson json{{"point", number},
                   {"points", conditions.points},
                   {"requested_hz", result.point.requestedHz},
                   {"played_hz", result.point.playedHz},
                   {"stimulus_dbfs", result.point.levelDbfs},
                   {"gain_db", NullOr(result.gainDb.value)},
                   {"phase_deg", NullOr(result.phaseDegrees.value)},
                   {"path_delay_ms", NullOr(DelayMs(result))},
                   {"attempts", result.attempts},
                   {"after_loss", result.afterLoss}};
    const PointJson reading = PointJson::parse(AnalyzedJson(AnalyzedOf(result, conditions)));
    for (const auto& [name, value] : reading.items())
        if (!json.contains(name)) json[name] = value;
    if (!result.Valid()) {
        json["void"] = PointJson::array({result.fault.code});
        json["sentences"] = PointJson::array({result.fault.sentence});
    }
    json["uncertainty"]["gain_db"] = NullOr(result.gainDb.uncertainty);
    json["uncertainty"]["phase_deg"] = NullOr(result.phaseDegrees.uncertainty);
    if (run != nullptr) json["run"] = PointJson::parse(RunFileText(*run));
    return json.dump(-1, ' ', false, PointJson::error_handler_t::replace);
}

std::string PreviewJson(std::span<const PreviewPoint> preview) {
    PointJson list = PointJson::array();
    for (const PreviewPoint& point : preview) {
        PointJson json{{"requested_hz", point.hertz},
                       {"gain_db", point.gainDb},
                       {"gain_noise_db", point.gainNoiseDb},
                       {"harmonics", PointJson::array()}};
        for (std::size_t i = 0; i < point.harmonics.size(); ++i)
            json["harmonics"].push_back({{"order", i + 2},
                                         {"dbc", point.harmonics[i].dbc},
                                         {"noise_dbc", point.harmonics[i].noiseDbc}});
        list.push_back(std::move(json));
    }
    return PointJson{{"preview", std::move(list)}}.dump();
}

std::string RunCsv(const RunFile& run, std::span<const RunPointResult> results,
                   const RunConditions& conditions) {
    const RunVerdict verdict = JudgeRun(run.limits, results, conditions.points);
    std::string csv = "# run " + RunFileText(run) + '\n' + RunConditionLines(conditions) + "# " +
                      VerdictSentence(verdict, results, conditions.points) + '\n' + CsvTitles();
    for (const RunPointResult& result : results) csv += RunCsvRow(result);
    return csv;
}

std::string VerdictSentence(const RunVerdict& verdict, std::span<const RunPointResult> results,
                            std::size_t points) {
    const std::string of = " of " + std::to_string(points) + (points == 1 ? " point" : " points");
    std::string sentence = NameOf(verdict.outcome) + std::string(": ");
    switch (verdict.outcome) {
        case RunOutcome::kUnjudged:
        case RunOutcome::kPass:
            sentence += std::to_string(points) + of + " measured.";
            break;
        case RunOutcome::kFail:
            sentence += std::to_string(verdict.pointsBeyond) + of + " beyond a limit.";
            break;
        case RunOutcome::kNotComplete:
            sentence += verdict.pointsOpen > 0 ? std::to_string(verdict.pointsOpen) + of +
                                                     " void, not measured or hidden by noise."
                                               : std::string("a limit was compared with no value.");
            break;
    }
    if (verdict.worst) sentence += WorstSentence(*verdict.worst, results);
    return sentence;
}

}  // namespace sonavex
