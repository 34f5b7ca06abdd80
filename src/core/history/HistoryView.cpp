#include "core/history/HistoryView.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <sstream>

#include "core/text/Characters.h"
#include "core/text/Decimals.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr std::size_t kDateLength = 10;  // "2026-11-23"

std::string DayOf(const HistoryEntry& entry) {
    return entry.time.substr(0, kDateLength);
}

std::string DayText(const CalendarDate& date) {
    return Padded(date.year, 4) + '-' + Padded(date.month, 2) + '-' + Padded(date.day, 2);
}

bool IsLeapYear(int year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

CalendarDate DayBefore(CalendarDate date) {
    constexpr int kDaysOfMonths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (--date.day > 0) return date;
    if (--date.month == 0) {
        date.month = 12;
        --date.year;
    }
    date.day = kDaysOfMonths[date.month - 1] + (date.month == 2 && IsLeapYear(date.year) ? 1 : 0);
    return date;
}

// "sine" of "sine:1000", "white" of "white at -12.00 dBFS"
std::string StimulusShapeOf(const HistoryEntry& entry) {
    return entry.stimulus.substr(0, entry.stimulus.find_first_of(": "));
}

std::vector<std::string> WordsOf(const std::string& text) {
    std::istringstream words(UpperCase(text));
    return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

// Everything that a search finds, in upper case.
std::string SearchedText(const HistoryEntry& entry) {
    std::string text;
    for (const std::string& part : {entry.time, entry.input, entry.output, entry.recording, StimulusOf(entry),
                                    StateOf(entry), entry.note})
        text += UpperCase(part) + '\n';
    return text;
}

bool HasAllWords(const HistoryEntry& entry, const std::vector<std::string>& words) {
    if (words.empty()) return true;
    const std::string text = SearchedText(entry);
    return std::all_of(words.begin(), words.end(),
                       [&text](const std::string& word) { return Contains(text, word); });
}

bool PassesFilter(const HistoryEntry& entry, const HistoryFilter& filter) {
    if (filter.kind && entry.kind != *filter.kind) return false;
    if (!filter.stimulus.empty() && StimulusShapeOf(entry) != filter.stimulus) return false;
    if (!filter.device.empty() && entry.input != filter.device && entry.output != filter.device) return false;
    return !filter.validOnly || IsValid(entry.state);
}

std::string BaseName(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

std::vector<std::string> NamesListed(const std::set<std::string>& names) {
    std::vector<std::string> list(names.begin(), names.end());
    std::erase(list, std::string());
    return list;
}

}  // namespace

std::vector<const HistoryEntry*> ShownEntries(const std::vector<HistoryEntry>& entries,
                                              const HistoryFilter& filter) {
    const std::vector<std::string> words = WordsOf(filter.text);
    std::vector<const HistoryEntry*> shown;
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
        if (PassesFilter(*entry, filter) && HasAllWords(*entry, words)) shown.push_back(&*entry);
    std::stable_sort(shown.begin(), shown.end(),
                     [](const HistoryEntry* a, const HistoryEntry* b) { return a->time > b->time; });
    return shown;
}

std::vector<HistoryGroup> ByDay(const std::vector<const HistoryEntry*>& shown) {
    std::vector<HistoryGroup> groups;
    for (const HistoryEntry* const entry : shown) {
        const std::string day = DayOf(*entry);
        if (groups.empty() || groups.back().day != day) groups.push_back({day, {}});
        groups.back().entries.push_back(entry);
    }
    return groups;
}

std::string TitleOf(const std::string& day, const CalendarDate& today) {
    if (day == DayText(today)) return "Today";
    return day == DayText(DayBefore(today)) ? "Yesterday" : day;
}

std::string PathOf(const HistoryEntry& entry) {
    if (!entry.recording.empty()) return BaseName(entry.recording);
    return entry.input + " → " + entry.output;
}

std::string StimulusOf(const HistoryEntry& entry) {
    constexpr std::size_t kMostTones = 2;
    std::string text = entry.stimulus;
    if (entry.playedHz.empty() || entry.playedHz.size() > kMostTones) return text;
    for (std::size_t i = 0; i < entry.playedHz.size(); ++i)
        text += (i == 0 ? ", played " : " + ") + WithDigits(entry.playedHz[i], 6);
    return text + " Hz";
}

std::string StateOf(const HistoryEntry& entry) {
    std::string text = NameOf(entry.state);
    if (!entry.reason.empty()) text += ' ' + entry.reason;
    return text;
}

std::string FigureOf(const HistoryEntry& entry, const std::string& name, int decimals) {
    for (const NamedValue& figure : entry.figures) {
        if (figure.name != name || !figure.value.value) continue;
        if (figure.value.atMost) return "≤ " + RoundedUp(*figure.value.value, 1);
        return WithDecimals(*figure.value.value, decimals);
    }
    return {};
}

std::vector<std::string> DevicesOf(const std::vector<HistoryEntry>& entries) {
    std::set<std::string> names;
    for (const HistoryEntry& entry : entries) names.insert({entry.input, entry.output});
    return NamesListed(names);
}

std::vector<std::string> StimuliOf(const std::vector<HistoryEntry>& entries) {
    std::set<std::string> names;
    for (const HistoryEntry& entry : entries) names.insert(StimulusShapeOf(entry));
    return NamesListed(names);
}

}  // namespace sonavex
