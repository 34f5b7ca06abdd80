#include "core/history/HistoryEntry.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <utility>

#include "core/history/HistoryLine.h"
#include "core/history/ReadingValues.h"

namespace sonavex {
namespace {

using nlohmann::ordered_json;

constexpr std::array kKindNames{"reading", "run"};
constexpr std::array kStateNames{"VALID", "UNSTEADY", "VOID", "OVERLOAD",
                                 "DONE",  "PASS",     "FAIL", "NOT COMPLETE"};
constexpr const char* kNoteRecord = "note";
constexpr const char* kDeletionRecord = "delete";
// Follow the members that the list needs. The list skips them, because reading them takes most of the time. A
// quotation mark within a text follows a backslash, so that no text contains these.
constexpr std::string_view kDetailsMember = ",\"details\":";
constexpr std::string_view kCurveMember = ",\"curve\":";

std::string DumpedJson(const ordered_json& json) {
    return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

ordered_json JsonOf(const NamedValue& figure) {
    ordered_json object{{"name", figure.name}, {"unit", figure.unit}, {"decimals", figure.decimals}};
    if (figure.value.value) object["value"] = *figure.value.value;
    if (figure.value.uncertainty) object["uncertainty"] = *figure.value.uncertainty;
    if (figure.value.atMost) object["at_most"] = true;
    return object;
}

ordered_json ConditionsJson(const HistoryEntry& entry) {
    ordered_json object{{"id", entry.id},
                        {"time", entry.time},
                        {"kind", NameOf(entry.kind)},
                        {"state", NameOf(entry.state)},
                        {"reason", entry.reason},
                        {"note", entry.note},
                        {"input", entry.input},
                        {"output", entry.output},
                        {"recording", entry.recording},
                        {"channel", entry.channel},
                        {"rate_hz", entry.rateHz},
                        {"input_bits", entry.inputBits},
                        {"output_bits", entry.outputBits},
                        {"simulated", entry.simulated},
                        {"mode", entry.mode},
                        {"stimulus", entry.stimulus},
                        {"played_hz", entry.playedHz}};
    auto figures = ordered_json::array();
    for (const NamedValue& figure : entry.figures) figures.push_back(JsonOf(figure));
    object["figures"] = figures;
    return object;
}

ordered_json CurveJson(const HistoryCurve& curve) {
    return {{"low_hz", curve.lowHz}, {"high_hz", curve.highHz}, {"levels", EncodedLevels(curve.levelsDbfs)}};
}

// Members that are missing or of another type leave the target as it is.
void TakeMember(const ordered_json& object, const char* name, std::string& text) {
    const auto found = object.find(name);
    if (found != object.end() && found->is_string()) text = found->get<std::string>();
}

void TakeMember(const ordered_json& object, const char* name, double& number) {
    const auto found = object.find(name);
    if (found != object.end() && found->is_number()) number = found->get<double>();
}

void TakeMember(const ordered_json& object, const char* name, std::optional<double>& number) {
    const auto found = object.find(name);
    if (found != object.end() && found->is_number()) number = found->get<double>();
}

void TakeMember(const ordered_json& object, const char* name, bool& flag) {
    const auto found = object.find(name);
    if (found != object.end() && found->is_boolean()) flag = found->get<bool>();
}

// Whole numbers of 0 to 64: bits and decimals.
void TakeMember(const ordered_json& object, const char* name, int& number) {
    constexpr double kMost = 64;
    double value = number;
    TakeMember(object, name, value);
    if (value >= 0 && value <= kMost) number = static_cast<int>(value);
}

template <typename Enumeration, std::size_t Count>
bool TakeName(const ordered_json& object, const char* name, const std::array<const char*, Count>& names,
              Enumeration& target) {
    std::string text;
    TakeMember(object, name, text);
    for (std::size_t i = 0; i < Count; ++i) {
        if (text != names[i]) continue;
        target = static_cast<Enumeration>(i);
        return true;
    }
    return false;
}

ordered_json MemberOf(const ordered_json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() ? *found : ordered_json();
}

std::vector<NamedValue> FiguresIn(const ordered_json& list) {
    constexpr int kMostDecimals = 9;
    std::vector<NamedValue> figures;
    if (!list.is_array()) return figures;
    for (const ordered_json& object : list) {
        NamedValue figure;
        if (!object.is_object()) continue;
        TakeMember(object, "name", figure.name);
        TakeMember(object, "unit", figure.unit);
        TakeMember(object, "decimals", figure.decimals);
        figure.decimals = std::min(figure.decimals, kMostDecimals);
        TakeMember(object, "value", figure.value.value);
        TakeMember(object, "uncertainty", figure.value.uncertainty);
        TakeMember(object, "at_most", figure.value.atMost);
        figures.push_back(std::move(figure));
    }
    return figures;
}

void TakeConditions(const ordered_json& object, HistoryEntry& entry) {
    TakeMember(object, "reason", entry.reason);
    TakeMember(object, "note", entry.note);
    TakeMember(object, "input", entry.input);
    TakeMember(object, "output", entry.output);
    TakeMember(object, "recording", entry.recording);
    TakeMember(object, "channel", entry.channel);
    TakeMember(object, "rate_hz", entry.rateHz);
    TakeMember(object, "input_bits", entry.inputBits);
    TakeMember(object, "output_bits", entry.outputBits);
    TakeMember(object, "simulated", entry.simulated);
    TakeMember(object, "mode", entry.mode);
    TakeMember(object, "stimulus", entry.stimulus);
    for (const ordered_json& hertz : MemberOf(object, "played_hz"))
        if (hertz.is_number()) entry.playedHz.push_back(hertz.get<double>());
    entry.figures = FiguresIn(MemberOf(object, "figures"));
}

std::optional<HistoryRecord> EntryIn(const ordered_json& object) {
    HistoryRecord record;
    HistoryEntry& entry = record.entry;
    TakeMember(object, "id", entry.id);
    TakeMember(object, "time", entry.time);
    if (entry.id.empty() || entry.time.empty() || !TakeName(object, "kind", kKindNames, entry.kind) ||
        !TakeName(object, "state", kStateNames, entry.state))
        return std::nullopt;
    TakeConditions(object, entry);
    return record;
}

std::optional<HistoryRecord> ChangeIn(const ordered_json& object) {
    HistoryRecord record;
    std::string name;
    TakeMember(object, "kind", name);
    TakeMember(object, "of", record.entry.id);
    TakeMember(object, "note", record.entry.note);
    record.kind = name == kNoteRecord ? HistoryRecord::Kind::kNote : HistoryRecord::Kind::kDeletion;
    if (record.entry.id.empty() || (name != kNoteRecord && name != kDeletionRecord)) return std::nullopt;
    return record;
}

// Copies and texts of JSON are made recursively, so the depth must have a limit.
ordered_json ParsedObject(std::string_view object) {
    constexpr int kMostDepth = 50;
    const auto keep = [](int depth, ordered_json::parse_event_t /*event*/, const ordered_json& /*value*/) {
        return depth < kMostDepth;
    };
    return ordered_json::parse(std::string(object) + '}', keep, false);
}

}  // namespace

const char* NameOf(HistoryKind kind) {
    return kKindNames.at(static_cast<std::size_t>(kind));
}

const char* NameOf(HistoryState state) {
    return kStateNames.at(static_cast<std::size_t>(state));
}

bool IsValid(HistoryState state) {
    return state != HistoryState::kUnsteady && state != HistoryState::kVoid &&
           state != HistoryState::kOverload && state != HistoryState::kNotComplete;
}

std::string EntryJson(const HistoryEntry& entry) {
    return DumpedJson(ConditionsJson(entry));
}

std::string EntryLine(const HistoryEntry& entry, std::string_view details, const HistoryCurve& curve) {
    std::string object = EntryJson(entry);
    object.pop_back();
    const ordered_json given = ordered_json::parse(details, nullptr, false);
    object.append(kDetailsMember).append(given.is_object() ? DumpedJson(given) : "{}");
    if (!curve.levelsDbfs.empty()) object.append(kCurveMember).append(DumpedJson(CurveJson(curve)));
    return SealedLine(object + '}');
}

std::string NoteLine(const std::string& id, const std::string& note) {
    return SealedLine(DumpedJson({{"of", id}, {"kind", kNoteRecord}, {"note", note}}));
}

std::string DeletionLine(const std::string& id) {
    return SealedLine(DumpedJson({{"of", id}, {"kind", kDeletionRecord}}));
}

std::optional<HistoryRecord> ReadLine(std::string_view line) {
    const std::optional<std::string_view> object = UnsealedLine(line);
    if (!object) return std::nullopt;
    const ordered_json head = ParsedObject(object->substr(0, object->find(kDetailsMember)));
    if (!head.is_object()) return std::nullopt;
    return head.contains("of") ? ChangeIn(head) : EntryIn(head);
}

std::optional<HistoryDetails> ReadDetails(std::string_view line) {
    const std::optional<std::string_view> text = UnsealedLine(line);
    if (!text) return std::nullopt;
    const ordered_json object = ParsedObject(*text);
    if (!object.is_object()) return std::nullopt;
    HistoryDetails details;
    const ordered_json given = MemberOf(object, "details");
    details.json = given.is_object() ? DumpedJson(given) : "{}";
    details.values = object.value("kind", ordered_json()) == NameOf(HistoryKind::kRun)
                         ? FiguresIn(MemberOf(object, "figures"))
                         : ReadingValuesIn(details.json);
    const ordered_json curve = MemberOf(object, "curve");
    if (!curve.is_object()) return details;
    std::string levels;
    TakeMember(curve, "low_hz", details.curve.lowHz);
    TakeMember(curve, "high_hz", details.curve.highHz);
    TakeMember(curve, "levels", levels);
    details.curve.levelsDbfs = DecodedLevels(levels);
    return details;
}

}  // namespace sonavex
