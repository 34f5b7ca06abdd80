#include "core/history/ReadingValues.h"

#include <algorithm>
#include <array>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

namespace sonavex {
namespace {

using nlohmann::ordered_json;

constexpr std::array kFigureNames{"thd_db", "thdn_db", "mod_db", "dfd_aes17_db", "tdn_db", "noise_dbfs"};
constexpr std::array kPreciseModes{PreciseMode::kTone, PreciseMode::kPair, PreciseMode::kMultitone,
                                   PreciseMode::kNoise};

// The levels of several tones are in the details only.
bool IsFigure(const std::string& name, const AnalyzedReading& analyzed) {
    if (name == "level_dbfs") return analyzed.values.tones.empty();
    return std::find(kFigureNames.begin(), kFigureNames.end(), name) != kFigureNames.end();
}

template <typename Faults, typename Code>
const std::string* SentenceOf(const Faults& faults, Code code) {
    const auto found =
        std::find_if(faults.begin(), faults.end(), [code](const auto& fault) { return fault.code == code; });
    return found == faults.end() ? nullptr : &found->sentence;
}

// What limits a valid reading; empty if nothing does.
std::string LimitOfReading(const AnalyzedReading& analyzed) {
    const Reading& reading = analyzed.values.reading;
    if (!reading.warnings.empty()) return reading.warnings.front().sentence;
    const auto broken = std::find_if(analyzed.rules.begin(), analyzed.rules.end(),
                                     [](const RuleResult& rule) { return !rule.met; });
    return broken != analyzed.rules.end() ? broken->sentence : std::string();
}

struct StateAndReason {
    HistoryState state;
    std::string reason;
};

StateAndReason StateOfReading(const AnalyzedReading& analyzed) {
    const Reading& reading = analyzed.values.reading;
    if (const std::string* const overload = SentenceOf(reading.voids, VoidCode::kOverload))
        return {HistoryState::kOverload, *overload};
    if (!reading.Valid()) return {HistoryState::kVoid, reading.voids.front().sentence};
    if (const std::string* const unsteady = SentenceOf(reading.warnings, WarningCode::kUnsteadyTone))
        return {HistoryState::kUnsteady, *unsteady};
    return {HistoryState::kValid, LimitOfReading(analyzed)};
}

// Of a void reading the conditions only.
AnalyzedReading WithoutValues(const AnalyzedReading& analyzed) {
    AnalyzedReading bare = analyzed;
    const Reading& reading = analyzed.values.reading;
    bare.values = LinesReading();
    Reading& kept = bare.values.reading;
    kept.voids = reading.voids;
    kept.warnings = reading.warnings;
    kept.highestOrder = reading.highestOrder;
    kept.lines = reading.lines;
    kept.length = reading.length;
    kept.blocks = reading.blocks;
    kept.bits = reading.bits;
    kept.floatingPoint = reading.floatingPoint;
    kept.band = reading.band;
    return bare;
}

AnalyzedReading Storable(const AnalyzedReading& analyzed) {
    return analyzed.values.reading.Valid() ? analyzed : WithoutValues(analyzed);
}

std::optional<double> JsonNumber(const ordered_json& object, const std::string& name) {
    const auto found = object.find(name);
    if (found == object.end() || !found->is_number()) return std::nullopt;
    return found->get<double>();
}

const ordered_json& JsonList(const ordered_json& object, const char* name) {
    static const ordered_json kNone = ordered_json::array();
    const auto found = object.find(name);
    return found != object.end() && found->is_array() ? *found : kNone;
}

std::optional<int> HarmonicOrder(const ordered_json& harmonic) {
    constexpr double kHighestOrder = 1e6;
    const std::optional<double> order = harmonic.is_object() ? JsonNumber(harmonic, "n") : std::nullopt;
    if (!order || *order < 1 || *order > kHighestOrder) return std::nullopt;
    return static_cast<int>(*order);
}

// A reading whose NamedValuesOf have the names, units and decimals of those in the object.
AnalyzedReading ShapeOfReading(const ordered_json& object) {
    AnalyzedReading shape;
    for (const PreciseMode mode : kPreciseModes)
        if (object.value("mode", ordered_json()) == NameOf(mode)) shape.mode = mode;
    shape.values.tones.resize(JsonList(object, "frequency_hz").size());
    for (const ordered_json& harmonic : JsonList(object, "harmonic"))
        if (const std::optional<int> order = HarmonicOrder(harmonic))
            shape.values.reading.harmonics.push_back({*order, {}, {}});
    return shape;
}

// The values of AnalyzedJson by the names that `uncertainty` and `at_most` use.
class JsonValues {
public:
    explicit JsonValues(const ordered_json& object) : object_(object) {
        const auto found = object.find("uncertainty");
        if (found != object.end() && found->is_object()) uncertainties_ = &*found;
        for (const ordered_json& harmonic : JsonList(object, "harmonic")) AddHarmonic(harmonic);
    }

    Value Of(const std::string& name) const {
        Value value;
        const auto harmonic = harmonics_.find(name);
        value.value = harmonic != harmonics_.end() ? harmonic->second : JsonNumber(object_, name);
        if (uncertainties_ != nullptr) value.uncertainty = JsonNumber(*uncertainties_, name);
        const ordered_json& bounds = JsonList(object_, "at_most");
        value.atMost = std::find(bounds.begin(), bounds.end(), name) != bounds.end();
        return value;
    }

    // Of a tone of several.
    Value OfTone(const char* name, std::size_t index) const {
        Value value{JsonElement(object_, name, index), std::nullopt, false};
        if (uncertainties_ != nullptr) value.uncertainty = JsonElement(*uncertainties_, name, index);
        return value;
    }

private:
    static std::optional<double> JsonElement(const ordered_json& object, const char* name,
                                             std::size_t index) {
        const ordered_json& list = JsonList(object, name);
        if (index >= list.size() || !list[index].is_number()) return std::nullopt;
        return list[index].get<double>();
    }

    void AddHarmonic(const ordered_json& harmonic) {
        const std::optional<int> order = HarmonicOrder(harmonic);
        if (!order) return;
        const std::string name = "harmonic." + std::to_string(*order);
        harmonics_[name] = JsonNumber(harmonic, "level_dbc");
        harmonics_[name + ".phase_deg"] = JsonNumber(harmonic, "phase_deg");
    }

    const ordered_json& object_;
    const ordered_json* uncertainties_ = nullptr;
    std::map<std::string, std::optional<double>> harmonics_;
};

}  // namespace

HistoryEntry EntryOf(const ExportedMeasurement& measurement) {
    const AnalyzedReading analyzed = Storable(measurement.reading);
    HistoryEntry entry;
    entry.time = measurement.time;
    const StateAndReason state = StateOfReading(analyzed);
    entry.state = state.state;
    entry.reason = state.reason;
    entry.recording = measurement.recording;
    entry.channel = measurement.channel;
    entry.rateHz = analyzed.rateHz;
    entry.inputBits = analyzed.values.reading.bits;
    entry.mode = NameOf(analyzed.mode);
    if (analyzed.stream) {
        entry.input = analyzed.stream->input;
        entry.output = analyzed.stream->output;
        entry.inputBits = analyzed.stream->inputBits;
        entry.outputBits = analyzed.stream->outputBits;
        entry.simulated = analyzed.stream->simulated;
        entry.stimulus = analyzed.stimulus;
        entry.playedHz = analyzed.playedHz;
    }
    for (NamedValue& value : NamedValuesOf(analyzed))
        if (value.value.value && IsFigure(value.name, analyzed)) entry.figures.push_back(std::move(value));
    return entry;
}

std::string DetailsOf(const AnalyzedReading& reading) {
    return AnalyzedJson(Storable(reading));
}

std::vector<NamedValue> ReadingValuesIn(std::string_view json) {
    const ordered_json object = ordered_json::parse(json, nullptr, false);
    if (!object.is_object()) return {};
    const AnalyzedReading shape = ShapeOfReading(object);
    const JsonValues values(object);
    std::vector<NamedValue> named = NamedValuesOf(shape);
    const std::size_t ofTones = 2 * shape.values.tones.size();
    for (std::size_t i = 0; i < named.size(); ++i) {
        NamedValue& row = named[i];
        if (i >= ofTones) {
            row.value = values.Of(row.name);
            continue;
        }
        row.value = values.OfTone(row.name.c_str(), i / 2);
        row.name += '.' + std::to_string(i / 2 + 1);
    }
    return named;
}

}  // namespace sonavex
