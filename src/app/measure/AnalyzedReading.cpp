#include "app/measure/AnalyzedReading.h"

#include <array>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace sonavex::measure {
namespace {

using nlohmann::ordered_json;

constexpr const char* kWindowName = "7-term minimum side lobe";

ordered_json NumberOrNull(const std::optional<double>& number) {
    return number ? ordered_json(*number) : ordered_json(nullptr);
}

// A row of the object and of the table.
struct Row {
    const char* name;
    const char* caption;
    const char* unit;
    int decimals;
    const Value& value;
};

std::vector<Row> ReadingRows(const Reading& r) {
    return {
        {"dc", "DC", "FS", 9, r.dc},
        {"thd_percent", "THD", "%", 6, r.thdPercent},
        {"thd_db", "THD", "dB", 3, r.thdDb},
        {"thd_r_percent", "THD_R", "%", 6, r.thdRPercent},
        {"thdn_db", "THD+N", "dB", 3, r.thdnDb},
        {"thdn_r_db", "THD+N_R", "dB", 3, r.thdnRDb},
        {"thdn_notch_db", "THD+N, notch", "dB", 3, r.thdnNotchDb},
        {"sinad_db", "SINAD", "dB", 3, r.sinadDb},
        {"snr_db", "SNR", "dB", 3, r.snrDb},
        {"enob", "ENOB re full scale", "bit", 3, r.enob},
        {"noise_dbfs", "Noise", "dBFS", 3, r.noiseDbfs},
        {"noise_a_dbfs", "Noise, A", "dBFS", 3, r.noiseADbfs},
        {"noise_468_dbfs", "Noise, 468", "dBFS", 3, r.noise468Dbfs},
        {"noise_ccir_rms_dbfs", "Noise, CCIR-RMS", "dBFS", 3, r.noiseCcirRmsDbfs},
        {"skirt_db", "Skirt", "dBc", 3, r.skirtDb},
        {"sfdr_db", "SFDR", "dB", 3, r.sfdrDb},
    };
}

std::vector<Row> ModeRows(const LinesReading& values) {
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
        for (const Row& row : ReadingRows(reading_)) Add(row.name, row.value);
        object_["thd_floor_db"] =
            reading_.thdDb.value ? ordered_json(reading_.thdFloorDb) : ordered_json(nullptr);
        AddHarmonics();
        AddSpurs();
        for (const Row& row : ModeRows(values_)) Add(row.name, row.value);
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
        if (analyzed_.mode == AnalyzeMode::kThd || analyzed_.mode == AnalyzeMode::kNoise) {
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
            if (analyzed_.mode == AnalyzeMode::kNoise) {
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
        object_["window"] = kWindowName;
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

template <typename... Arguments>
std::string Text(const char* format, Arguments... arguments) {
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(), format, arguments...);
    return text.data();
}

std::string RowLine(const std::string& caption, const Value& value, const char* unit, int decimals) {
    if (!value.value) return {};
    std::string line =
        Text("%-24s%s%.*f %s", caption.c_str(), value.atMost ? "at most " : "", decimals, *value.value, unit);
    if (value.uncertainty) line += Text(" ± %.2g", *value.uncertainty);
    return line + '\n';
}

std::string HarmonicLines(const Reading& reading) {
    std::string lines;
    for (const Harmonic& harmonic : reading.harmonics) {
        lines += RowLine("H" + std::to_string(harmonic.order), harmonic.levelDbc, "dBc", 3);
        if (!harmonic.phaseDegrees.value) continue;
        lines.pop_back();
        lines += Text(", %.2f degrees\n", *harmonic.phaseDegrees.value);
    }
    return lines;
}

std::string StateLines(const Reading& reading) {
    std::string lines = reading.Valid() ? "VALID\n" : "VOID\n";
    for (const Void& entry : reading.voids)
        lines += Text("%s: %s\n", Name(entry.code), entry.sentence.c_str());
    for (const Warning& entry : reading.warnings)
        lines += Text("%s: %s\n", Name(entry.code), entry.sentence.c_str());
    return lines;
}

std::string StreamLines(const StreamDetails& stream, const std::vector<double>& playedHz) {
    std::string lines = "Input: " + stream.input + "\nOutput: " + stream.output + '\n';
    for (const std::string& note : stream.notes) lines += "Note: " + note + '\n';
    for (const double hertz : playedHz) lines += Text("Played: %.9g Hz\n", hertz);
    if (stream.simulated) lines += "SIMULATED sound card: this reading measures nothing real.\n";
    return lines;
}

std::string ConditionLines(const AnalyzedReading& analyzed) {
    const Reading& r = analyzed.values.reading;
    std::string lines = Text("Band %.6g to %.6g Hz; ", r.band.lowHz, r.band.highHz);
    if (analyzed.mode == AnalyzeMode::kThd) lines += Text("THD to order %d; ", r.highestOrder);
    lines += Text("%zu lines\n", r.lines);
    lines += Text("%zu records of %zu samples at %.0f Hz; %d bit%s; window %s\n", r.blocks, r.length,
                  analyzed.rateHz, r.bits, r.floatingPoint ? " (float)" : "", kWindowName);
    for (const RuleResult& rule : analyzed.rules)
        lines += (rule.met ? "Met: " : "NOT MET: ") + rule.sentence + '\n';
    return lines;
}

}  // namespace

const char* NameOf(AnalyzeMode mode) {
    switch (mode) {
        case AnalyzeMode::kThd:
            return "thd";
        case AnalyzeMode::kImd:
            return "imd";
        case AnalyzeMode::kMultitone:
            return "multitone";
        case AnalyzeMode::kNoise:
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
    for (const Row& row : ReadingRows(reading))
        table += RowLine(row.caption, row.value, row.unit, row.decimals);
    for (const Row& row : ModeRows(analyzed.values))
        table += RowLine(row.caption, row.value, row.unit, row.decimals);
    table += HarmonicLines(reading);
    for (const Spur& spur : reading.spurs)
        table += Text("Spur at %.3f Hz: %.2f %s\n", spur.frequencyHz, spur.levelDbc,
                      analyzed.mode == AnalyzeMode::kNoise ? "dBFS" : "dBc");
    if (analyzed.stream) table += StreamLines(*analyzed.stream, analyzed.playedHz);
    return table + ConditionLines(analyzed);
}

}  // namespace sonavex::measure
