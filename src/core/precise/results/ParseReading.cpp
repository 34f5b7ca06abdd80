#include "core/precise/results/ParseReading.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

#include "core/precise/results/ReadingFields.h"

namespace sonavex {
namespace {

using nlohmann::json;

constexpr std::size_t kMostOrders = 64;
constexpr std::size_t kMostEntries = 1000;
constexpr double kMostCount = 1e9;

constexpr VoidCode kVoidCodes[] = {VoidCode::kTooShort,        VoidCode::kSilence,   VoidCode::kNoTone,
                                   VoidCode::kFrequencyTooLow, VoidCode::kDisturbed, VoidCode::kNotFinite,
                                   VoidCode::kOverload};
constexpr WarningCode kWarningCodes[] = {WarningCode::kUnsteadyTone, WarningCode::kImpulsiveNoise,
                                         WarningCode::kLimitedBy16Bit, WarningCode::kClipped,
                                         WarningCode::kNoHarmonicInBand};

// What is read is not what AnalyzedJson writes.
class NoReading {};

class ReadingParser {
public:
    explicit ReadingParser(const json& object)
        : object_(object), uncertainty_(Member(object, "uncertainty")) {}

    Reading Parse() {
        if (Text(object_, "mode") != "thd") throw NoReading();
        TakeStates();
        reading_.frequencyHz = Named("frequency_hz");
        reading_.levelDbfs = Named("level_dbfs");
        for (const ReadingField& field : kReadingFields) reading_.*field.value = Named(field.name);
        reading_.thdFloorDb = Number(object_, "thd_floor_db").value_or(0.0);
        TakeHarmonics();
        for (const json& spur : List(object_, "spurs"))
            reading_.spurs.push_back({Some(spur, "frequency_hz"), Some(spur, "level_dbc")});
        TakeConditions();
        return std::move(reading_);
    }

private:
    static const json& Member(const json& object, const std::string& name) {
        if (!object.is_object()) throw NoReading();
        const auto found = object.find(name);
        if (found == object.end()) throw NoReading();
        return *found;
    }
    static std::optional<double> Number(const json& object, const std::string& name) {
        const json& member = Member(object, name);
        if (member.is_null()) return std::nullopt;
        if (!member.is_number() || !std::isfinite(member.get<double>())) throw NoReading();
        return member.get<double>();
    }
    static double Some(const json& object, const std::string& name) {
        const std::optional<double> number = Number(object, name);
        if (!number) throw NoReading();
        return *number;
    }
    static std::size_t Count(const json& object, const std::string& name) {
        const double number = Some(object, name);
        if (number < 0 || number > kMostCount || number != std::floor(number)) throw NoReading();
        return static_cast<std::size_t>(number);
    }
    static std::string Text(const json& object, const std::string& name) {
        const json& member = Member(object, name);
        if (!member.is_string()) throw NoReading();
        return member.get<std::string>();
    }
    static const json& List(const json& object, const std::string& name) {
        const json& member = Member(object, name);
        if (!member.is_array() || member.size() > kMostEntries) throw NoReading();
        return member;
    }

    Value Named(const std::string& name) const {
        return ValueOf(Number(object_, name), name, Number(uncertainty_, name));
    }
    Value ValueOf(std::optional<double> number, const std::string& name,
                  std::optional<double> uncertainty) const {
        Value value{number, uncertainty, false};
        for (const json& bound : List(object_, "at_most"))
            if (bound == name) value.atMost = true;
        return value;
    }

    // Codes of readings are followed by others that only runs know: a void of those is `disturbed`.
    void TakeStates() {
        const json& sentences = List(object_, "sentences");
        std::size_t next = 0;
        const auto sentence = [&] {
            return next < sentences.size() && sentences[next].is_string() ? sentences[next].get<std::string>()
                                                                          : std::string();
        };
        for (const json& name : List(object_, "void")) {
            VoidCode code = VoidCode::kDisturbed;
            for (const VoidCode known : kVoidCodes)
                if (name == Name(known)) code = known;
            reading_.voids.push_back({code, sentence()});
            ++next;
        }
        for (const json& name : List(object_, "warnings")) {
            bool known = false;
            for (const WarningCode code : kWarningCodes) {
                if (name != Name(code)) continue;
                reading_.warnings.push_back({code, sentence()});
                known = true;
            }
            if (!known) throw NoReading();
            ++next;
        }
    }

    void TakeHarmonics() {
        const json& harmonics = List(object_, "harmonic");
        if (harmonics.size() > kMostOrders) throw NoReading();
        for (const json& entry : harmonics) {
            const auto order = static_cast<int>(Count(entry, "n"));
            const std::string name = "harmonic." + std::to_string(order);
            const Value level = ValueOf(Number(entry, "level_dbc"), name, Number(uncertainty_, name));
            const Value phase{Number(entry, "phase_deg"), Number(uncertainty_, name + ".phase_deg"), false};
            reading_.harmonics.push_back({order, level, phase});
        }
    }

    void TakeConditions() {
        reading_.lines = Count(object_, "lines");
        reading_.length = Count(object_, "length");
        reading_.blocks = Count(object_, "blocks");
        reading_.bits = static_cast<int>(Count(object_, "bits"));
        reading_.floatingPoint = Member(object_, "float") == true;
        reading_.highestOrder = static_cast<int>(Count(object_, "harmonics"));
        const json& band = List(object_, "band");
        if (band.size() != 2 || !band[0].is_number() || !band[1].is_number()) throw NoReading();
        reading_.band = {band[0].get<double>(), band[1].get<double>()};
    }

    const json& object_;
    const json& uncertainty_;
    Reading reading_;
};

}  // namespace

std::optional<Reading> ParseReading(std::string_view line) {
    const json object = json::parse(line, nullptr, false);
    try {
        return ReadingParser(object).Parse();
    } catch (const NoReading&) {
        return std::nullopt;
    }
}

}  // namespace sonavex
