#include "core/precise/results/AnalyzedReading.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "core/precise/results/ReadingFields.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

using nlohmann::ordered_json;

ordered_json NumberOrNull(const std::optional<double>& number) {
    return number ? ordered_json(*number) : ordered_json(nullptr);
}

// A row of the object and of the table.
struct AnalyzedRow {
    const char* name;
    const char* caption;
    const char* unit;
    int decimals;
    const Value& value;
};

std::vector<AnalyzedRow> ReadingRows(const Reading& reading) {
    std::vector<AnalyzedRow> rows;
    for (const ReadingField& field : kReadingFields)
        rows.push_back({field.name, field.caption, field.unit, field.decimals, reading.*field.value});
    return rows;
}

std::vector<AnalyzedRow> ModeRows(const LinesReading& values) {
    const Intermodulation& i = values.intermodulation;
    return {
        {"mod_d2", "Modulation, order 2", "", 9, i.modD2},
        {"mod_d3", "Modulation, order 3", "", 9, i.modD3},
        {"mod", "SMPTE / DIN", "", 9, i.mod},
        {"mod_rms", "Modulation, rms", "", 9, i.modRms},
        {"mod_aes17", "Modulation, AES17", "", 9, i.modAes17},
        {"mod_db", "SMPTE / DIN", "dB", 3, i.modDb},
        {"dfd_d2", "CCIF / ITU-R, order 2", "", 9, i.dfdD2},
        {"dfd_d3", "CCIF / ITU-R, order 3", "", 9, i.dfdD3},
        {"dfd_aes17", "Difference, AES17", "", 9, i.dfdAes17},
        {"dfd_aes17_db", "Difference, AES17", "dB", 3, i.dfdAes17Db},
        {"imd_power", "All products, rms", "", 9, i.imdPower},
        {"tdn_db", "TD+N", "dB", 3, values.tdnDb},
        {"peak_dbfs", "Peak", "dBFS", 3, values.peakDbfs},
    };
}

template <typename Codes>
ordered_json CodeNames(const Codes& codes) {
    auto list = ordered_json::array();
    for (const auto& code : codes) list.push_back(Name(code.code));
    return list;
}

class JsonMaker {
public:
    explicit JsonMaker(const AnalyzedReading& analyzed)
        : analyzed_(analyzed), values_(analyzed.values), reading_(analyzed.values.reading) {}

    ordered_json Make() {
        AddState();
        AddTones();
        for (const AnalyzedRow& row : ReadingRows(reading_)) Add(row.name, row.value);
        object_["thd_floor_db"] =
            reading_.thdDb.value ? ordered_json(reading_.thdFloorDb) : ordered_json(nullptr);
        AddHarmonics();
        AddSpurs();
        for (const AnalyzedRow& row : ModeRows(values_)) Add(row.name, row.value);
        object_["products"] = Products(values_.products);
        object_["dropped"] = Products(values_.dropped);
        object_["uncertainty"] = uncertainty_;
        object_["at_most"] = atMost_;
        AddConditions();
        if (analyzed_.stream) AddStream(*analyzed_.stream);
        return object_;
    }

private:
    void Add(const std::string& name, const Value& value) {
        object_[name] = NumberOrNull(value.value);
        AddUncertainty(name, value);
    }

    void AddUncertainty(const std::string& name, const Value& value) {
        uncertainty_[name] = NumberOrNull(value.uncertainty);
        if (value.atMost) atMost_.push_back(name);
    }

    void AddState() {
        object_["valid"] = reading_.Valid();
        object_["void"] = CodeNames(reading_.voids);
        object_["warnings"] = CodeNames(reading_.warnings);
        auto sentences = ordered_json::array();
        for (const Void& entry : reading_.voids) sentences.push_back(entry.sentence);
        for (const Warning& entry : reading_.warnings) sentences.push_back(entry.sentence);
        object_["sentences"] = sentences;
        object_["mode"] = NameOf(analyzed_.mode);
    }

    // Numbers for one tone, lists for several.
    void AddTones() {
        if (analyzed_.mode == PreciseMode::kTone || analyzed_.mode == PreciseMode::kNoise) {
            Add("frequency_hz", reading_.frequencyHz);
            Add("level_dbfs", reading_.levelDbfs);
            return;
        }
        for (const char* name : {"frequency_hz", "level_dbfs"}) {
            object_[name] = reading_.Valid() ? ordered_json::array() : ordered_json(nullptr);
            uncertainty_[name] = object_[name];
        }
        for (const ToneValues& tone : values_.tones) {
            Append("frequency_hz", tone.frequencyHz);
            Append("level_dbfs", tone.levelDbfs);
        }
    }

    void Append(const char* name, const Value& value) {
        object_[name].push_back(NumberOrNull(value.value));
        uncertainty_[name].push_back(NumberOrNull(value.uncertainty));
    }

    void AddHarmonics() {
        auto list = ordered_json::array();
        for (const Harmonic& harmonic : reading_.harmonics) {
            const std::string name = "harmonic." + std::to_string(harmonic.order);
            list.push_back({{"n", harmonic.order},
                            {"level_dbc", NumberOrNull(harmonic.levelDbc.value)},
                            {"phase_deg", NumberOrNull(harmonic.phaseDegrees.value)}});
            AddUncertainty(name, harmonic.levelDbc);
            uncertainty_[name + ".phase_deg"] = NumberOrNull(harmonic.phaseDegrees.uncertainty);
        }
        object_["harmonic"] = list;
    }

    // Without a tone the levels are relative to full scale.
    void AddSpurs() {
        auto list = ordered_json::array();
        for (const Spur& spur : reading_.spurs) {
            ordered_json entry{{"frequency_hz", spur.frequencyHz}, {"level_dbc", spur.levelDbc}};
            if (analyzed_.mode == PreciseMode::kNoise) {
                entry["level_dbc"] = nullptr;
                entry["level_dbfs"] = spur.levelDbc;
            }
            list.push_back(entry);
        }
        object_["spurs"] = list;
    }

    ordered_json Products(const std::vector<ProductValues>& products) {
        auto list = ordered_json::array();
        for (const ProductValues& product : products) {
            const std::string name =
                "product." + std::to_string(product.n1) + '.' + std::to_string(product.n2);
            list.push_back({{"n1", product.n1},
                            {"n2", product.n2},
                            {"frequency_hz", product.frequencyHz},
                            {"level_dbfs", NumberOrNull(product.levelDbfs.value)}});
            if (product.levelDbfs.value) AddUncertainty(name, product.levelDbfs);
        }
        return list;
    }

    void AddConditions() {
        object_["lines"] = reading_.lines;
        object_["length"] = reading_.length;
        object_["blocks"] = reading_.blocks;
        object_["bits"] = reading_.bits;
        object_["float"] = reading_.floatingPoint;
        object_["window"] = kRecordWindow;
        object_["band"] = {reading_.band.lowHz, reading_.band.highHz};
        object_["harmonics"] = reading_.highestOrder;
        object_["rate_hz"] = analyzed_.rateHz;
        auto rules = ordered_json::array();
        for (const RuleResult& rule : analyzed_.rules)
            rules.push_back({{"rule", rule.rule}, {"met", rule.met}, {"sentence", rule.sentence}});
        object_["rules"] = rules;
    }

    void AddStream(const StreamDetails& stream) {
        object_["input"] = stream.input;
        object_["output"] = stream.output;
        object_["input_bits"] = stream.inputBits;
        object_["output_bits"] = stream.outputBits;
        object_["simulated"] = stream.simulated;
        object_["notes"] = stream.notes;
        object_["stimulus"] = analyzed_.stimulus;
        if (analyzed_.stimulus.empty()) object_["stimulus"] = nullptr;
        object_["played_hz"] = analyzed_.playedHz;
        object_["frames_lost"] = stream.fineFramesLost;
        object_["frames_missing"] = stream.framesMissing;
        object_["stimulus_frames_missing"] = stream.fineFramesMissing;
        object_["underruns"] = stream.underruns;
    }

    const AnalyzedReading& analyzed_;
    const LinesReading& values_;
    const Reading& reading_;
    ordered_json object_ = ordered_json::object();
    ordered_json uncertainty_ = ordered_json::object();
    ordered_json atMost_ = ordered_json::array();
};

// A column of 24 characters.
std::string Padded24(std::string caption) {
    constexpr std::size_t kCaptionCharacters = 24;
    caption.resize(std::max(caption.size(), kCaptionCharacters), ' ');
    return caption;
}

std::string RowLine(const std::string& caption, const Value& value, const char* unit, int decimals) {
    if (!value.value) return {};
    std::string line = Padded24(caption) + FigureText(value, decimals) + ' ' + unit;
    if (value.uncertainty) line += " ± " + WithDigits(*value.uncertainty, 2);
    return line + '\n';
}

std::string HarmonicLines(const Reading& reading) {
    std::string lines;
    for (const Harmonic& harmonic : reading.harmonics) {
        lines += RowLine("H" + std::to_string(harmonic.order), harmonic.levelDbc, "dBc", 3);
        if (!harmonic.phaseDegrees.value) continue;
        lines.pop_back();
        lines += ", " + WithDecimals(*harmonic.phaseDegrees.value, 2) + " degrees\n";
    }
    return lines;
}

std::string StateLines(const Reading& reading) {
    std::string lines = reading.Valid() ? "VALID\n" : "VOID\n";
    for (const Void& entry : reading.voids)
        lines += std::string(Name(entry.code)) + ": " + entry.sentence + '\n';
    for (const Warning& entry : reading.warnings)
        lines += std::string(Name(entry.code)) + ": " + entry.sentence + '\n';
    return lines;
}

std::string StreamLines(const StreamDetails& stream, const std::vector<double>& playedHz) {
    std::string lines = "Input: " + stream.input + "\nOutput: " + stream.output + '\n';
    for (const std::string& note : stream.notes) lines += "Note: " + note + '\n';
    for (const double hertz : playedHz) lines += "Played: " + WithDigits(hertz, 9) + " Hz\n";
    if (stream.simulated) lines += "SIMULATED sound card: this reading measures nothing real.\n";
    return lines;
}

std::string ConditionLines(const AnalyzedReading& analyzed) {
    const Reading& r = analyzed.values.reading;
    std::string lines =
        "Band " + WithDigits(r.band.lowHz, 6) + " to " + WithDigits(r.band.highHz, 6) + " Hz; ";
    if (analyzed.mode == PreciseMode::kTone) lines += "THD to order " + std::to_string(r.highestOrder) + "; ";
    lines += std::to_string(r.lines) + " lines\n";
    lines += std::to_string(r.blocks) + " records of " + std::to_string(r.length) + " samples at " +
             WithDecimals(analyzed.rateHz, 0) + " Hz; " + std::to_string(r.bits) + " bit" +
             (r.floatingPoint ? " (float)" : "") + "; window " + kRecordWindow + '\n';
    for (const RuleResult& rule : analyzed.rules)
        lines += (rule.met ? "Met: " : "NOT MET: ") + rule.sentence + '\n';
    return lines;
}

}  // namespace

std::string FigureText(const Value& value, int decimals) {
    return value.atMost ? "at most " + RoundedUp(*value.value, decimals)
                        : WithDecimals(*value.value, decimals);
}

const char* NameOf(PreciseMode mode) {
    switch (mode) {
        case PreciseMode::kTone:
            return "thd";
        case PreciseMode::kPair:
            return "imd";
        case PreciseMode::kMultitone:
            return "multitone";
        case PreciseMode::kNoise:
            return "noise";
    }
    return "";
}

std::string AnalyzedJson(const AnalyzedReading& reading) {
    return JsonMaker(reading).Make().dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

std::string AnalyzedTable(const AnalyzedReading& analyzed) {
    const Reading& reading = analyzed.values.reading;
    std::string table = StateLines(reading);
    table += RowLine("Frequency", reading.frequencyHz, "Hz", 6);
    table += RowLine("Level", reading.levelDbfs, "dBFS", 4);
    for (const ToneValues& tone : analyzed.values.tones) {
        table += RowLine("Tone", tone.frequencyHz, "Hz", 6);
        table += RowLine("", tone.levelDbfs, "dBFS", 4);
    }
    for (const AnalyzedRow& row : ReadingRows(reading))
        table += RowLine(row.caption, row.value, row.unit, row.decimals);
    for (const AnalyzedRow& row : ModeRows(analyzed.values))
        table += RowLine(row.caption, row.value, row.unit, row.decimals);
    table += HarmonicLines(reading);
    for (const Spur& spur : reading.spurs)
        table += "Spur at " + WithDecimals(spur.frequencyHz, 3) + " Hz: " + WithDecimals(spur.levelDbc, 2) +
                 (analyzed.mode == PreciseMode::kNoise ? " dBFS\n" : " dBc\n");
    if (analyzed.stream) table += StreamLines(*analyzed.stream, analyzed.playedHz);
    return table + ConditionLines(analyzed);
}

std::vector<NamedValue> NamedValuesOf(const AnalyzedReading& analyzed) {
    const Reading& reading = analyzed.values.reading;
    std::vector<NamedValue> values;
    if (analyzed.values.tones.empty()) {
        values.push_back({"frequency_hz", "Hz", 6, reading.frequencyHz});
        values.push_back({"level_dbfs", "dBFS", 4, reading.levelDbfs});
    }
    for (const ToneValues& tone : analyzed.values.tones) {
        values.push_back({"frequency_hz", "Hz", 6, tone.frequencyHz});
        values.push_back({"level_dbfs", "dBFS", 4, tone.levelDbfs});
    }
    for (const AnalyzedRow& row : ReadingRows(reading))
        values.push_back({row.name, row.unit, row.decimals, row.value});
    if (analyzed.mode != PreciseMode::kTone)
        for (const AnalyzedRow& row : ModeRows(analyzed.values))
            values.push_back({row.name, row.unit, row.decimals, row.value});
    for (const Harmonic& harmonic : reading.harmonics) {
        const std::string name = "harmonic." + std::to_string(harmonic.order);
        values.push_back({name, "dBc", 3, harmonic.levelDbc});
        values.push_back({name + ".phase_deg", "degrees", 2, harmonic.phaseDegrees});
    }
    return values;
}

}  // namespace sonavex
