#include "core/history/HistoryTable.h"

#include <algorithm>
#include <map>
#include <utility>

#include "core/history/HistoryDay.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

const NamedValue* DefinedValue(const std::vector<NamedValue>& values, const std::string& name) {
    const auto found = std::find_if(values.begin(), values.end(), [&name](const NamedValue& value) {
        return value.name == name && value.value.value;
    });
    return found == values.end() ? nullptr : &*found;
}

std::string ComparedText(const NamedValue* value) {
    if (value == nullptr) return {};
    if (value->value.atMost) return "≤ " + RoundedUp(*value->value.value, 1);
    return WithDecimals(*value->value.value, value->decimals);
}

std::string ComparedDifference(const NamedValue* first, const NamedValue* second) {
    if (first == nullptr || second == nullptr || first->value.atMost || second->value.atMost) return {};
    return WithDecimals(*first->value.value - *second->value.value, first->decimals);
}

// A field of a table; in quotation marks where it needs them.
std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string field = "\"";
    for (const char character : text) field.append(character == '"' ? 2 : 1, character);
    return field + '"';
}

std::string NumberField(const std::optional<double>& number, int digits) {
    return number ? WithDigits(*number, digits) : std::string();
}

std::string PlayedField(const std::vector<double>& playedHz) {
    std::string text;
    for (const double hertz : playedHz) text += (text.empty() ? "" : " ") + WithDigits(hertz, 12);
    return text;
}

constexpr const char* kConditionColumns =
    "time,kind,state,reason,input,output,recording,channel,rate_hz,input_bits,output_bits,simulated,mode,"
    "stimulus,played_hz,note,id";

std::string ConditionFields(const HistoryEntry& entry) {
    std::string line;
    for (const std::string& text :
         {entry.time, std::string(NameOf(entry.kind)), std::string(NameOf(entry.state)), entry.reason,
          entry.input, entry.output, entry.recording, entry.channel, WithDigits(entry.rateHz, 9),
          std::to_string(entry.inputBits), std::to_string(entry.outputBits),
          std::string(entry.simulated ? "1" : "0"), entry.mode, entry.stimulus, PlayedField(entry.playedHz),
          entry.note, entry.id})
        line += (line.empty() ? "" : ",") + CsvField(text);
    return line;
}

// The headings of a value, as ValueFields fills them.
std::string ValueColumns(const std::string& name, const std::string& unit) {
    std::string heading = name;
    if (!unit.empty()) heading.append(" (").append(unit).append(")");
    std::string columns;
    for (const std::string& column : {heading, name + " uncertainty", name + " bound"})
        columns.append(",").append(CsvField(column));
    return columns;
}

std::string ValueFields(const NamedValue* value) {
    if (value == nullptr) return ",,,";
    return ',' + NumberField(value->value.value, 12) + ',' + NumberField(value->value.uncertainty, 3) +
           (value->value.atMost ? ",1" : ",0");
}

// The values of entries; reads each file once while consecutive entries belong to it.
class StoredValues {
public:
    explicit StoredValues(const HistoryFiles& files) : files_(files) {}

    std::vector<NamedValue> Of(const HistoryEntry& entry) {
        if (entry.day != day_) {
            text_ = files_.Read(entry.day);
            day_ = entry.day;
        }
        const std::optional<HistoryDetails> details = ReadDetails(LineOf(entry.id, text_));
        return details ? details->values : std::vector<NamedValue>();
    }

private:
    const HistoryFiles& files_;
    std::string day_;
    std::string text_;
};

}  // namespace

std::vector<ComparedRow> Compare(const std::vector<NamedValue>& first,
                                 const std::vector<NamedValue>& second) {
    std::vector<ComparedRow> rows;
    const auto add = [&](const NamedValue& value) {
        const NamedValue* const a = DefinedValue(first, value.name);
        const NamedValue* const b = DefinedValue(second, value.name);
        rows.push_back({value.name, value.unit, ComparedText(a), ComparedText(b), ComparedDifference(a, b)});
    };
    for (const NamedValue& value : first)
        if (value.value.value || DefinedValue(second, value.name) != nullptr) add(value);
    for (const NamedValue& value : second)
        if (value.value.value && std::none_of(rows.begin(), rows.end(), [&value](const ComparedRow& row) {
                return row.name == value.name;
            }))
            add(value);
    return rows;
}

std::string HistoryCsv(const std::vector<const HistoryEntry*>& shown, const HistoryFiles& files) {
    StoredValues stored(files);
    std::vector<std::vector<NamedValue>> values;
    std::vector<std::pair<std::string, std::string>> columns;  // name and unit
    for (const HistoryEntry* const entry : shown) {
        values.push_back(stored.Of(*entry));
        for (const NamedValue& value : values.back()) {
            const std::pair column(value.name, value.unit);
            if (std::find(columns.begin(), columns.end(), column) == columns.end()) columns.push_back(column);
        }
    }
    std::string csv = kConditionColumns;
    for (const auto& [name, unit] : columns) csv += ValueColumns(name, unit);
    csv += '\n';
    for (std::size_t row = 0; row < shown.size(); ++row) {
        csv += ConditionFields(*shown[row]);
        for (const auto& column : columns) csv += ValueFields(DefinedValue(values[row], column.first));
        csv += '\n';
    }
    return csv;
}

}  // namespace sonavex
