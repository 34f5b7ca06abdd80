#include "core/history/display/HistoryTexts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "core/history/HistoryTable.h"
#include "core/history/HistoryView.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

using nlohmann::json;

constexpr std::size_t kTimeStart = 11;  // of "2026-11-23 10:58:21"
constexpr int kListDecimals = 2;
constexpr int kCardDecimals = 2;
constexpr int kToneDecimals = 3;  // frequencies and levels of tones
constexpr int kConditionDigits = 6;

struct ShortName {
    const char* value;  // as in AnalyzedJson
    const char* shown;
};
constexpr std::array kShortNames{
    ShortName{"frequency_hz", "Frequency"}, ShortName{"level_dbfs", "Level"}, ShortName{"thd_db", "THD"},
    ShortName{"thdn_db", "THD+N"},          ShortName{"noise_dbfs", "Noise"}, ShortName{"mod_db", "IMD"},
    ShortName{"dfd_aes17_db", "DFD"},       ShortName{"tdn_db", "TD+N"}};
// Shown in the column of THD by readings that have none.
constexpr std::array kTotals{ShortName{"mod_db", "IMD "}, ShortName{"dfd_aes17_db", "DFD "},
                             ShortName{"tdn_db", "TD+N "}};
constexpr const char* kHarmonicPrefix = "harmonic.";

// "THD" of "thd_db", "H3" of "harmonic.3", "Level 2" of "level_dbfs.2"; other names stay.
std::string ListedName(const std::string& name) {
    if (name.starts_with(kHarmonicPrefix)) return 'H' + name.substr(std::string(kHarmonicPrefix).size());
    const std::size_t dot = name.find('.');
    const std::string stem = name.substr(0, dot);
    for (const auto& [value, shown] : kShortNames)
        if (stem == value) return dot == std::string::npos ? shown : shown + (' ' + name.substr(dot + 1));
    return name;
}

bool IsListed(const std::string& name) {
    return !name.ends_with(".phase_deg");
}

std::string TotalOf(const HistoryEntry& entry) {
    std::string thd = FigureOf(entry, "thd_db", kListDecimals);
    if (!thd.empty()) return thd;
    for (const auto& [name, caption] : kTotals) {
        const std::string figure = FigureOf(entry, name, kListDecimals);
        if (!figure.empty()) return caption + figure;
    }
    return {};
}

bool TotalIsBound(const HistoryEntry& entry) {
    return TotalOf(entry).find("≤") != std::string::npos;
}

std::string ListedBits(const HistoryEntry& entry) {
    std::string input = std::to_string(entry.inputBits);
    if (entry.outputBits == 0 || entry.outputBits == entry.inputBits) return input;
    return input + '/' + std::to_string(entry.outputBits);
}

HistoryList::Row ListRowOf(const HistoryEntry& entry) {
    HistoryList::Row row;
    row.id = entry.id;
    row.time = entry.time.size() > kTimeStart ? entry.time.substr(kTimeStart) : entry.time;
    row.path = PathOf(entry);
    row.rate = WithDecimals(entry.rateHz, 0);
    row.bits = ListedBits(entry);
    row.stimulus = StimulusOf(entry);
    const bool bare = entry.state == HistoryState::kVoid || entry.state == HistoryState::kOverload;
    row.thd = bare ? "none" : TotalOf(entry);
    row.thdn = bare ? "none" : FigureOf(entry, "thdn_db", kListDecimals);
    row.quiet = bare || TotalIsBound(entry);
    row.state = entry.state;
    row.stateText = entry.reason.empty() || !IsValid(entry.state)
                        ? StateOf(entry)
                        : std::string(NameOf(entry.state)) + ", " + entry.reason;
    row.reason = entry.reason;
    row.note = entry.note;
    return row;
}

double StoredNumber(const json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_number() ? found->get<double>() : 0.0;
}

std::string BandText(const json& object) {
    const auto band = object.find("band");
    if (band == object.end() || !band->is_array() || band->size() != 2 || !(*band)[0].is_number() ||
        !(*band)[1].is_number())
        return {};
    std::string text = WithDigits((*band)[0].get<double>(), kConditionDigits) + " Hz to " +
                       WithDigits((*band)[1].get<double>(), kConditionDigits) + " Hz";
    const auto highest = static_cast<int>(std::clamp(StoredNumber(object, "harmonics"), 0.0, 1e6));
    if (highest > 1) text += ", H2 to H" + std::to_string(highest);
    return text;
}

int CardDecimals(const NamedValue& value) {
    const bool ofTone = value.name.starts_with("frequency_hz") || value.name.starts_with("level_dbfs");
    return std::min(value.decimals, ofTone ? kToneDecimals : kCardDecimals);
}

// A spread that is not 0 never reads as 0: "< 0.001".
std::string CardSpread(const std::optional<double>& spread, int decimals) {
    if (!spread) return {};
    const double step = std::pow(10.0, -decimals);
    if (*spread > 0 && *spread < 0.5 * step) return "< " + WithDecimals(step, decimals);
    return WithDecimals(*spread, decimals);
}

std::string StoredText(const Value& value, int decimals) {
    if (!value.value) return {};
    if (value.atMost) return "≤ " + RoundedUp(*value.value, 1);
    return WithDecimals(*value.value, decimals);
}

// A field of a tabbed line: the note may contain a tab.
std::string TabbedField(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char letter) { return letter == '\t' || letter == '\n'; }, ' ');
    return text;
}

}  // namespace

std::vector<HistoryList::Row> RowsOf(const std::vector<const HistoryEntry*>& shown,
                                     const CalendarDate& today) {
    std::vector<HistoryList::Row> rows;
    for (const HistoryGroup& group : ByDay(shown)) {
        rows.emplace_back().title = TitleOf(group.day, today);
        for (const HistoryEntry* const entry : group.entries) rows.push_back(ListRowOf(*entry));
    }
    return rows;
}

HistoryConditions ConditionsOf(const HistoryEntry& entry, const std::string& details) {
    HistoryConditions conditions;
    const json object = json::parse(details, nullptr, false);
    if (object.is_object()) {
        const double length = StoredNumber(object, "length");
        const double blocks = StoredNumber(object, "blocks");
        if (length > 0)
            conditions.analysis = WithDecimals(length, 0) + " points, " + WithDecimals(blocks, 0) +
                                  (blocks == 1 ? " average, " : " averages, ");
        conditions.band = BandText(object);
    }
    conditions.analysis += entry.channel;
    conditions.path = WithDecimals(entry.rateHz, 0) + " Hz, ";
    if (entry.outputBits != 0 && entry.outputBits != entry.inputBits)
        conditions.path +=
            "in " + std::to_string(entry.inputBits) + " · out " + std::to_string(entry.outputBits) + " bit";
    else
        conditions.path += std::to_string(entry.inputBits) + " bit";
    if (!entry.recording.empty()) conditions.path += ", recording";
    if (entry.simulated) conditions.path += ", simulated";
    conditions.stimulus = StimulusOf(entry);
    return conditions;
}

HistoryTableView::Content ShownValues(const std::vector<NamedValue>& values) {
    HistoryTableView::Content content{{"value", "±"}, {}};
    for (const NamedValue& value : values) {
        if (!value.value.value || !IsListed(value.name)) continue;
        const int decimals = CardDecimals(value);
        content.columns.push_back({ListedName(value.name), value.unit, StoredText(value.value, decimals),
                                   CardSpread(value.value.uncertainty, decimals), ""});
    }
    return content;
}

HistoryTableView::Content ComparedValues(const std::vector<NamedValue>& first,
                                         const std::vector<NamedValue>& second) {
    const auto rounded = [](std::vector<NamedValue> values) {
        for (NamedValue& value : values) value.decimals = CardDecimals(value);
        return values;
    };
    HistoryTableView::Content content{{"this", "before", "difference"}, {}};
    for (const ComparedRow& row : Compare(rounded(first), rounded(second)))
        if (IsListed(row.name))
            content.columns.push_back(
                {ListedName(row.name), row.unit, row.first, row.second, row.difference});
    return content;
}

std::string TabbedText(const std::vector<const HistoryEntry*>& entries) {
    std::string text = "Time\tInput → output\tRate, Hz\tBits\tStimulus\tTHD, dB\tTHD+N, dB\tState\tNotes\n";
    for (const HistoryEntry* const entry : entries) {
        const HistoryList::Row row = ListRowOf(*entry);
        text += entry->time;
        for (const std::string* field :
             {&row.path, &row.rate, &row.bits, &row.stimulus, &row.thd, &row.thdn, &row.stateText, &row.note})
            text += '\t' + TabbedField(*field);
        text += '\n';
    }
    return text;
}

}  // namespace sonavex
