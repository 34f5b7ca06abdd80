#include "core/run/RunFile.h"

#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

namespace sonavex {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostCharacters = 4'000'000;
constexpr double kMostWhole = 1e9;
constexpr std::size_t kShownName = 40;

[[noreturn]] void RefuseRunFile(const std::string& fault) {
    throw RunError("The run file: " + fault + ".");
}

// On one line, and never a part of a character.
std::string ShownName(const std::string& name) {
    std::string shown = name.substr(0, kShownName);
    for (char& c : shown)
        if (c < ' ' || c > '~') c = '?';
    return shown;
}

// The members of an object, each of which must be asked for.
class RunFields {
public:
    RunFields(const Json& object, std::string name) : object_(object), name_(std::move(name)) {
        if (!object.is_object()) RefuseRunFile(name_ + " is not an object");
    }

    const Json* Find(const char* name) {
        known_.insert(name);
        const auto found = object_.find(name);
        return found == object_.end() ? nullptr : &*found;
    }
    void RequireNoOthers() const {
        for (const auto& [name, value] : object_.items())
            if (!known_.contains(name)) RefuseRunFile("'" + ShownName(name) + "' is not known in " + name_);
    }

private:
    const Json& object_;
    std::string name_;
    std::set<std::string> known_;
};

double RunNumber(const Json& json, const char* name) {
    if (!json.is_number() || !std::isfinite(json.get<double>()))
        RefuseRunFile(std::string(name) + " is not a number");
    return json.get<double>();
}

int RunWhole(const Json& json, const char* name) {
    const double number = RunNumber(json, name);
    if (number != std::floor(number) || std::abs(number) > kMostWhole)
        RefuseRunFile(std::string(name) + " is not a whole number");
    return static_cast<int>(number);
}

bool RunFlag(const Json& json, const char* name) {
    if (!json.is_boolean()) RefuseRunFile(std::string(name) + " is neither true nor false");
    return json.get<bool>();
}

// The place of the text among the choices.
std::size_t RunChoice(const Json& json, const char* name, const std::vector<const char*>& choices) {
    for (std::size_t i = 0; i < choices.size(); ++i)
        if (json.is_string() && json.get<std::string>() == choices[i]) return i;
    std::string list;
    for (const char* choice : choices) list += (list.empty() ? "" : ", ") + std::string(choice);
    RefuseRunFile(std::string(name) + " is not one of " + list);
}

std::vector<double> RunNumbers(const Json& json, const char* name) {
    std::vector<double> numbers;
    for (const Json& number : json) numbers.push_back(RunNumber(number, name));
    return numbers;
}

constexpr std::array kAmounts{"per_octave", "step", "points"};

// Logarithmic points, unless the range is of levels or says that it is linear.
RunRange RangeOf(const Json& json, const char* name, bool levels) {
    RunFields fields(json, name);
    const Json* const from = fields.Find("from");
    const Json* const to = fields.Find("to");
    if (from == nullptr || to == nullptr) RefuseRunFile(std::string(name) + " has no from or no to");
    RunRange range{RunNumber(*from, "from"), RunNumber(*to, "to"), {}, 0};
    bool linear = levels;
    if (const Json* const spacing = fields.Find("spacing"))
        linear = RunChoice(*spacing, "spacing", {"logarithmic", "linear"}) == 1;
    const std::array spacings{
        RunRange::Spacing::kPerOctave, RunRange::Spacing::kStep,
        linear ? RunRange::Spacing::kLinearPoints : RunRange::Spacing::kLogarithmicPoints};
    std::size_t amounts = 0;
    for (std::size_t i = 0; i < kAmounts.size(); ++i) {
        const Json* const amount = fields.Find(kAmounts[i]);
        if (amount == nullptr) continue;
        ++amounts;
        range.spacing = spacings[i];
        range.amount = RunNumber(*amount, kAmounts[i]);
    }
    if (amounts != 1) RefuseRunFile(std::string(name) + " needs one of per_octave, step and points");
    fields.RequireNoOthers();
    return range;
}

RunValues ValuesIn(const Json& json, const char* name, bool levels) {
    if (json.is_number()) return std::vector<double>{RunNumber(json, name)};
    if (json.is_array()) return RunNumbers(json, name);
    return RangeOf(json, name, levels);
}

void TakeDither(const Json& json, RunPlan& plan) {
    if (json.is_boolean())
        plan.dither = json.get<bool>();
    else
        plan.ditherBits = RunWhole(json, "dither");
}

Band BandIn(const Json& json) {
    if (!json.is_array() || json.size() != 2) RefuseRunFile("band is not a list of two frequencies");
    const std::vector<double> ends = RunNumbers(json, "band");
    return {ends[0], ends[1]};
}

SettlingLimits SettlingIn(const Json& json) {
    SettlingLimits limits;
    RunFields fields(json, "settling");
    if (const Json* const level = fields.Find("level_db")) limits.levelDb = RunNumber(*level, "level_db");
    if (const Json* const thdn = fields.Find("thdn_db")) limits.thdnDb = RunNumber(*thdn, "thdn_db");
    if (const Json* const records = fields.Find("records")) limits.records = RunWhole(*records, "records");
    fields.RequireNoOthers();
    return limits;
}

LimitCurve CurveIn(const Json& json, const char* name) {
    if (!json.is_array()) return LimitCurve(RunNumber(json, name));
    std::vector<LimitRow> rows;
    for (const Json& row : json) {
        if (!row.is_array() || row.size() != 2)
            RefuseRunFile(std::string(name) + " has a row that is not a frequency and a value");
        rows.push_back({RunNumber(row[0], name), RunNumber(row[1], name)});
    }
    return LimitCurve(std::move(rows));
}

RunLimit LimitIn(const Json& json) {
    RunFields fields(json, "a limit");
    RunLimit limit;
    const Json* const name = fields.Find("quantity");
    const auto quantity =
        name != nullptr && name->is_string() ? QuantityNamed(name->get<std::string>()) : std::nullopt;
    if (!quantity) RefuseRunFile("the quantity of a limit is not one of thd, thdn, h2 to h9, response");
    limit.quantity = *quantity;
    if (const Json* const curve = fields.Find("at_least")) limit.atLeast = CurveIn(*curve, "at_least");
    if (const Json* const curve = fields.Find("at_most")) limit.atMost = CurveIn(*curve, "at_most");
    if (!limit.atLeast && !limit.atMost) RefuseRunFile("a limit needs at_least or at_most");
    fields.RequireNoOthers();
    return limit;
}

void TakeStimulusFields(RunFields& fields, RunPlan& plan) {
    if (const Json* const json = fields.Find("frequency_hz"))
        plan.frequenciesHz = ValuesIn(*json, "frequency_hz", false);
    if (const Json* const json = fields.Find("level_dbfs"))
        plan.levelsDbfs = ValuesIn(*json, "level_dbfs", true);
    if (const Json* const json = fields.Find("highest_level_dbfs"))
        plan.highestLevelDbfs = RunNumber(*json, "highest_level_dbfs");
    if (const Json* const json = fields.Find("side"))
        plan.side = static_cast<StimulusSide>(RunChoice(*json, "side", {"left", "right", "both"}));
    if (const Json* const json = fields.Find("dither")) TakeDither(*json, plan);
    if (const Json* const json = fields.Find("snap")) plan.snap = RunFlag(*json, "snap");
}

void TakeAnalysisFields(RunFields& fields, RunPlan& plan) {
    if (const Json* const json = fields.Find("length")) {
        const int length = RunWhole(*json, "length");
        if (length <= 0) RefuseRunFile("length is not a length of records");
        plan.length = static_cast<std::size_t>(length);
    }
    if (const Json* const json = fields.Find("channel"))
        plan.channel = RunChoice(*json, "channel", {"left", "right"});
    if (const Json* const json = fields.Find("band")) plan.band = BandIn(*json);
    if (const Json* const json = fields.Find("harmonics")) plan.highestOrder = RunWhole(*json, "harmonics");
    if (const Json* const json = fields.Find("settling")) plan.settling = SettlingIn(*json);
    if (const Json* const json = fields.Find("preview")) plan.preview = RunFlag(*json, "preview");
}

RunFile FileOf(const Json& object) {
    RunFile file;
    RunFields fields(object, "the run");
    const Json* const over = fields.Find("over");
    if (over == nullptr) RefuseRunFile("over is missing; it is frequency or level");
    file.plan.over = static_cast<RunAxis>(RunChoice(*over, "over", {"frequency", "level"}));
    if (file.plan.over == RunAxis::kLevel) file.plan.frequenciesHz = std::vector<double>{1000.0};
    TakeStimulusFields(fields, file.plan);
    TakeAnalysisFields(fields, file.plan);
    if (const Json* const limits = fields.Find("limits")) {
        if (!limits->is_array()) RefuseRunFile("limits is not a list");
        for (const Json& limit : *limits) file.limits.push_back(LimitIn(limit));
    }
    fields.RequireNoOthers();
    return file;
}

Json JsonOf(const RunValues& values) {
    if (const auto* const list = std::get_if<std::vector<double>>(&values)) return *list;
    const RunRange& range = std::get<RunRange>(values);
    Json json{{"from", range.from}, {"to", range.to}};
    switch (range.spacing) {
        case RunRange::Spacing::kPerOctave:
            json["per_octave"] = range.amount;
            return json;
        case RunRange::Spacing::kStep:
            json["step"] = range.amount;
            return json;
        case RunRange::Spacing::kLogarithmicPoints:
        case RunRange::Spacing::kLinearPoints:
            break;
    }
    json["points"] = range.amount;
    json["spacing"] = range.spacing == RunRange::Spacing::kLinearPoints ? "linear" : "logarithmic";
    return json;
}

Json JsonOf(const LimitCurve& curve) {
    if (curve.Constant()) return curve.Rows().front().decibels;
    Json rows = Json::array();
    for (const LimitRow& row : curve.Rows()) rows.push_back(Json::array({row.hertz, row.decibels}));
    return rows;
}

Json JsonOf(const RunLimit& limit) {
    Json json{{"quantity", NameOf(limit.quantity)}};
    if (limit.atLeast) json["at_least"] = JsonOf(*limit.atLeast);
    if (limit.atMost) json["at_most"] = JsonOf(*limit.atMost);
    return json;
}

Json JsonOf(const RunPlan& plan) {
    constexpr std::array kSides{"left", "right", "both"};
    Json json{{"over", plan.over == RunAxis::kFrequency ? "frequency" : "level"},
              {"frequency_hz", JsonOf(plan.frequenciesHz)},
              {"level_dbfs", JsonOf(plan.levelsDbfs)},
              {"highest_level_dbfs", plan.highestLevelDbfs},
              {"side", kSides[static_cast<std::size_t>(plan.side)]},
              {"dither", plan.dither}};
    if (plan.dither && plan.ditherBits) json["dither"] = *plan.ditherBits;
    json["snap"] = plan.snap;
    if (plan.length != 0) json["length"] = plan.length;
    json["channel"] = plan.channel == 0 ? "left" : "right";
    json["band"] = Json::array({plan.band.lowHz, plan.band.highHz});
    json["harmonics"] = plan.highestOrder;
    json["settling"] = {{"level_db", plan.settling.levelDb},
                        {"thdn_db", plan.settling.thdnDb},
                        {"records", plan.settling.records}};
    if (plan.preview) json["preview"] = true;
    return json;
}

}  // namespace

RunFile ParseRunFile(std::string_view text) {
    if (text.size() > kMostCharacters) RefuseRunFile("it is longer than 4000000 characters");
    try {
        return FileOf(Json::parse(text));
    } catch (const Json::parse_error& error) {
        RefuseRunFile("it is not JSON at character " + std::to_string(error.byte));
    } catch (const Json::out_of_range&) {
        RefuseRunFile("a number is too large");
    }
}

std::string RunFileText(const RunFile& file) {
    Json json = JsonOf(file.plan);
    json["limits"] = Json::array();
    for (const RunLimit& limit : file.limits) json["limits"].push_back(JsonOf(limit));
    return json.dump();
}

}  // namespace sonavex
