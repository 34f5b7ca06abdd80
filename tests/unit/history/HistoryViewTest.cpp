#include <gmock/gmock.h>

#include "core/history/HistoryTable.h"
#include "core/history/HistoryView.h"
#include "support/MemoryHistory.h"
#include "unit/history/StoredEntries.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

HistoryEntry EntryAt(const std::string& id, const std::string& time) {
    HistoryEntry entry = EntryOf(LiveReading(time));
    entry.id = id;
    entry.day = time.substr(0, 10);
    return entry;
}

std::vector<std::string> IdsOf(const std::vector<const HistoryEntry*>& entries) {
    std::vector<std::string> ids;
    for (const HistoryEntry* const entry : entries) ids.push_back(entry->id);
    return ids;
}

class HistoryViewTest : public testing::Test {
protected:
    HistoryViewTest() {
        entries_ = {EntryAt("a", "2026-11-22 18:20:44"), EntryAt("b", "2026-11-23 10:58:21"),
                    EntryAt("c", "2026-11-23 10:42:07"), EntryAt("d", "2026-11-23 10:58:21")};
        entries_[0].input = "Headset Mic";
        entries_[0].note = "volume 74 %";
        entries_[1].state = HistoryState::kVoid;
        entries_[1].reason = "512 frames lost";
        entries_[2].stimulus = "pair:19000,20000 at -7.00 dBFS";
        entries_[2].playedHz = {19000.0, 20000.0};
        entries_[3].kind = HistoryKind::kRun;
        entries_[3].state = HistoryState::kFail;
    }
    std::vector<std::string> Found(const std::string& text) const {
        HistoryFilter filter;
        filter.text = text;
        return IdsOf(ShownEntries(entries_, filter));
    }

    std::vector<HistoryEntry> entries_;
    HistoryFilter filter_;
};

TEST_F(HistoryViewTest, ShowsTheNewestFirst) {
    EXPECT_THAT(IdsOf(ShownEntries(entries_, filter_)), ElementsAre("d", "b", "c", "a"));
}

TEST_F(HistoryViewTest, FindsWordsWhereverTheyAre) {
    EXPECT_THAT(Found("headset"), ElementsAre("a"));
    EXPECT_THAT(Found("  74  VOLUME "), ElementsAre("a"));
    EXPECT_THAT(Found("void"), ElementsAre("b"));
    EXPECT_THAT(Found("512"), ElementsAre("b"));
    EXPECT_THAT(Found("pair"), ElementsAre("c"));
    EXPECT_THAT(Found("2026-11-23 line in"), ElementsAre("d", "b", "c"));
    EXPECT_THAT(Found("headset pair"), IsEmpty());
}

TEST_F(HistoryViewTest, Filters) {
    filter_.kind = HistoryKind::kRun;
    EXPECT_THAT(IdsOf(ShownEntries(entries_, filter_)), ElementsAre("d"));
    filter_.kind = HistoryKind::kReading;
    filter_.validOnly = true;
    EXPECT_THAT(IdsOf(ShownEntries(entries_, filter_)), ElementsAre("c", "a"));
    filter_.stimulus = "sine";
    EXPECT_THAT(IdsOf(ShownEntries(entries_, filter_)), ElementsAre("a"));
    filter_.device = "Line In";
    EXPECT_THAT(IdsOf(ShownEntries(entries_, filter_)), IsEmpty());
    filter_.device = "Line Out";
    EXPECT_THAT(IdsOf(ShownEntries(entries_, filter_)), ElementsAre("a"));
}

TEST_F(HistoryViewTest, OffersWhatOccurs) {
    entries_[1].stimulus = "white at -12.00 dBFS";
    entries_[3].stimulus.clear();
    entries_[3].output.clear();
    EXPECT_THAT(DevicesOf(entries_), ElementsAre("Headset Mic", "Line In", "Line Out"));
    EXPECT_THAT(StimuliOf(entries_), ElementsAre("pair", "sine", "white"));
}

TEST_F(HistoryViewTest, GroupsByDay) {
    const std::vector<HistoryGroup> groups = ByDay(ShownEntries(entries_, filter_));
    ASSERT_EQ(groups.size(), 2U);
    EXPECT_EQ(groups[0].day, "2026-11-23");
    EXPECT_THAT(IdsOf(groups[0].entries), ElementsAre("d", "b", "c"));
    EXPECT_THAT(IdsOf(groups[1].entries), ElementsAre("a"));
}

TEST(HistoryDayTitle, NamesTodayAndYesterday) {
    EXPECT_EQ(TitleOf("2026-11-23", {2026, 11, 23}), "Today");
    EXPECT_EQ(TitleOf("2026-11-22", {2026, 11, 23}), "Yesterday");
    EXPECT_EQ(TitleOf("2026-11-21", {2026, 11, 23}), "2026-11-21");
    EXPECT_EQ(TitleOf("2025-12-31", {2026, 1, 1}), "Yesterday");
    EXPECT_EQ(TitleOf("2026-10-31", {2026, 11, 1}), "Yesterday");
    EXPECT_EQ(TitleOf("2024-02-29", {2024, 3, 1}), "Yesterday");
    EXPECT_EQ(TitleOf("2100-02-28", {2100, 3, 1}), "Yesterday");
    EXPECT_EQ(TitleOf("2000-02-29", {2000, 3, 1}), "Yesterday");
}

TEST_F(HistoryViewTest, WritesAnEntryAsText) {
    HistoryEntry& entry = entries_[1];
    EXPECT_EQ(PathOf(entry), "Line In → Line Out");
    EXPECT_EQ(StimulusOf(entry), "sine:1000, played 999.756 Hz");
    EXPECT_EQ(StimulusOf(entries_[2]), "pair:19000,20000 at -7.00 dBFS, played 19000 + 20000 Hz");
    EXPECT_EQ(StateOf(entry), "VOID 512 frames lost");
    EXPECT_EQ(FigureOf(entry, "thd_db", 2), "-102.57");
    EXPECT_EQ(FigureOf(entry, "mod_db", 2), "");
    entry.figures[1].value = {-116.04, {}, true};
    EXPECT_EQ(FigureOf(entry, "thd_db", 2), "≤ -116.0");
    entry.recording = "/tmp/a/loop.wav";
    EXPECT_EQ(PathOf(entry), "loop.wav");
    entry.playedHz.assign(32, 1000.0);
    EXPECT_EQ(StimulusOf(entry), "sine:1000");
}

TEST(HistoryComparison, HasEveryValueOfBoth) {
    const std::vector<NamedValue> first{{"thd_db", "dB", 3, {-102.57, 0.07, false}},
                                        {"skirt_db", "dBc", 3, {}},
                                        {"harmonic.2", "dBc", 3, {-104.0, 0.1, false}},
                                        {"harmonic.8", "dBc", 3, {-141.0, {}, true}}};
    const std::vector<NamedValue> second{{"thd_db", "dB", 3, {-100.12, 0.07, false}},
                                         {"harmonic.8", "dBc", 3, {-145.04, {}, true}},
                                         {"mod_db", "dB", 3, {-80.5, {}, false}}};
    std::vector<std::string> rows;
    for (const ComparedRow& row : Compare(first, second))
        rows.push_back(row.name + '|' + row.unit + '|' + row.first + '|' + row.second + '|' + row.difference);
    EXPECT_THAT(rows, ElementsAre("thd_db|dB|-102.570|-100.120|-2.450", "harmonic.2|dBc|-104.000||",
                                  "harmonic.8|dBc|≤ -141.0|≤ -145.0|", "mod_db|dB||-80.500|"));
}

// The columns of the table, without quotation marks.
std::vector<std::string> ColumnsOf(const std::string& line) {
    std::vector<std::string> columns(1);
    bool quoted = false;
    for (const char character : line) {
        if (character == '"')
            quoted = !quoted;
        else if (character == ',' && !quoted)
            columns.emplace_back();
        else
            columns.back() += character;
    }
    return columns;
}

TEST(HistoryTable, HasEveryConditionAndValue) {
    MemoryHistory files;
    HistoryEntry valid = EntryAt("a", "2026-11-23 10:58:21");
    valid.note = "say \"warm\", please";
    files.Append(valid.day, EntryLine(valid, DetailsOf(LiveReading().reading), {}));
    ExportedMeasurement disturbed = LiveReading("2026-11-22 10:00:00");
    disturbed.reading.values.reading.voids = {{VoidCode::kDisturbed, "512 frames were lost."}};
    HistoryEntry invalid = EntryOf(disturbed);
    invalid.id = "b";
    invalid.day = "2026-11-22";
    files.Append(invalid.day, EntryLine(invalid, DetailsOf(disturbed.reading), {}));

    const std::string csv = HistoryCsv({&valid, &invalid}, files);
    EXPECT_THAT(csv, testing::HasSubstr(",\"say \"\"warm\"\", please\",a,"));
    std::istringstream lines(csv);
    std::string header;
    std::string first;
    std::string second;
    std::getline(lines, header);
    std::getline(lines, first);
    std::getline(lines, second);
    EXPECT_EQ(lines.peek(), EOF);
    const std::vector<std::string> names = ColumnsOf(header);
    ASSERT_EQ(names.size(), ColumnsOf(first).size());
    ASSERT_EQ(names.size(), ColumnsOf(second).size());
    const auto at = [&names](const std::string& line, const std::string& name) {
        const auto found = std::find(names.begin(), names.end(), name);
        return found == names.end() ? "no column"
                                    : ColumnsOf(line)[static_cast<std::size_t>(found - names.begin())];
    };
    EXPECT_EQ(at(first, "time"), "2026-11-23 10:58:21");
    EXPECT_EQ(at(first, "state"), "VALID");
    EXPECT_EQ(at(first, "input_bits"), "24");
    EXPECT_EQ(at(first, "played_hz"), "999.755859375");
    EXPECT_EQ(at(first, "thd_db (dB)"), "-102.57");
    EXPECT_EQ(at(first, "thd_db uncertainty"), "0.07");
    EXPECT_EQ(at(first, "thd_db bound"), "0");
    EXPECT_EQ(at(first, "harmonic.3 (dBc)"), "-141");
    EXPECT_EQ(at(first, "harmonic.3 bound"), "1");
    EXPECT_EQ(at(second, "state"), "VOID");
    EXPECT_EQ(at(second, "reason"), "512 frames were lost.");
    EXPECT_EQ(at(second, "rate_hz"), "48000");
    for (std::size_t i = 17; i < names.size(); ++i) EXPECT_EQ(ColumnsOf(second)[i], "") << names[i];
    EXPECT_EQ(names[17], "frequency_hz (Hz)");
}

}  // namespace
}  // namespace sonavex
