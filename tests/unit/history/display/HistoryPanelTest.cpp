#include <gmock/gmock.h>

#include <array>

#include "core/history/display/HistoryPanel.h"
#include "support/InlineBackground.h"
#include "support/MemoryFiles.h"
#include "support/MemoryHistory.h"
#include "support/Recorders.h"
#include "support/VirtualEventLoop.h"
#include "unit/history/StoredEntries.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class HistoryPanelTest : public testing::Test {
protected:
    HistoryPanelTest() {
        panel.OnShowTraces = [this](auto traces) { shown = std::move(traces); };
        panel.OnOpenRun = [this](const std::string& details, const HistoryEntry& entry) {
            runs.push_back(entry.time.substr(11) + ' ' + details);
        };
        panel.OnCopy = [this](const std::string& text) { copied = text; };
    }
    std::string Add(const std::string& time, HistoryState state = HistoryState::kValid,
                    double thdDb = -102.57) {
        ExportedMeasurement measurement = LiveReading(time);
        measurement.reading.values.reading.thdDb.value = thdDb;
        HistoryEntry entry = EntryOf(measurement);
        entry.state = state;
        if (!IsValid(state)) {
            entry.reason = "512 frames were lost";
            entry.figures.clear();
        }
        const HistoryCurve curve{10, 24000, std::vector<double>(600, -120.0)};
        return panel.Store(entry, DetailsOf(measurement.reading), curve);
    }
    std::string AddRun(const std::string& time) {
        HistoryEntry entry = EntryOf(LiveReading(time));
        entry.kind = HistoryKind::kRun;
        entry.state = HistoryState::kPass;
        return panel.Store(entry, R"({"points":3})", {});
    }
    std::vector<std::string> Times() const {
        std::vector<std::string> times;
        for (const HistoryList::Row& row : panel.List.Rows())
            times.push_back(row.id.empty() ? row.title : row.time);
        return times;
    }
    void Settle() { loop.DeliverSignals(); }

    VirtualEventLoop loop;
    InlineBackground background{loop};
    MemoryHistory store;
    MemoryFiles files;
    CallLog log;
    RecordingDialogs dialogs{log};
    std::uint64_t random = 1;
    History history{{store, background, [this] { return random++; }}};
    HistoryPanel panel{{history, dialogs, files, [] { return DateTime{2026, 11, 23, 12, 0, 0}; }}};
    std::vector<std::shared_ptr<const SpectrumTrace>> shown;
    std::vector<std::string> runs;
    std::string copied;
};

TEST_F(HistoryPanelTest, ListsEntriesNewestFirstByDay) {
    EXPECT_THAT(panel.lblEmpty.Caption(), StartsWith("Nothing is stored yet."));
    Add("2026-11-22 18:20:44");
    Add("2026-11-23 10:51:17");
    Add("2026-11-23 10:58:21");
    Add("2026-11-20 08:00:00");
    EXPECT_THAT(Times(), ElementsAre("Today", "10:58:21", "10:51:17", "Yesterday", "18:20:44", "2026-11-20",
                                     "08:00:00"));
    EXPECT_EQ(panel.lblEmpty.Caption(), "");
    EXPECT_EQ(panel.lblCount.Caption(), "4 entries");
    const HistoryList::Row& row = panel.List.Rows()[1];
    EXPECT_EQ(row.path, "Line In → Line Out");
    EXPECT_EQ(row.rate, "48000");
    EXPECT_EQ(row.bits, "24/16");
    EXPECT_EQ(row.stimulus, "sine:1000, played 999.756 Hz");
    EXPECT_EQ(row.thd, "-102.57");
    EXPECT_EQ(row.thdn, "-97.70");
    EXPECT_EQ(row.stateText, "VALID");
}

TEST_F(HistoryPanelTest, ShowsNoFiguresOfVoidReadings) {
    Add("2026-11-23 10:55:02", HistoryState::kVoid);
    Add("2026-11-23 10:55:03", HistoryState::kOverload);
    for (const std::size_t i : {1U, 2U}) {
        EXPECT_EQ(panel.List.Rows()[i].thd, "none");
        EXPECT_EQ(panel.List.Rows()[i].thdn, "none");
        EXPECT_TRUE(panel.List.Rows()[i].quiet);
    }
    EXPECT_EQ(panel.List.Rows()[2].stateText, "VOID 512 frames were lost");
}

TEST_F(HistoryPanelTest, FiltersTheList) {
    Add("2026-11-23 10:55:02", HistoryState::kVoid);
    Add("2026-11-23 10:58:21");
    panel.chkValid.UserSets(true);
    EXPECT_THAT(Times(), ElementsAre("Today", "10:58:21"));
    panel.chkValid.UserSets(false);
    panel.txtSearch.UserTypes("LOST");
    EXPECT_THAT(Times(), ElementsAre("Today", "10:55:02"));
    panel.txtSearch.UserTypes("nothing of that kind");
    EXPECT_THAT(Times(), IsEmpty());
    EXPECT_EQ(panel.lblEmpty.Caption(), "No entry matches search and filters.");
    EXPECT_FALSE(panel.cmdExport.Enabled());
    panel.txtSearch.UserTypes("");
    EXPECT_THAT(panel.cmbStimuli.Items(), ElementsAre("All stimuli", "sine"));
    EXPECT_THAT(panel.cmbDevices.Items(), ElementsAre("All devices", "Line In", "Line Out"));
    panel.cmbDevices.UserSelects(2);
    EXPECT_THAT(Times(), SizeIs(3));
    Add("2026-11-23 10:59:00");
    EXPECT_EQ(panel.cmbDevices.Text(), "Line Out") << "a new entry keeps the chosen filter";
}

TEST_F(HistoryPanelTest, StoresNotesInPlace) {
    const std::string id = Add("2026-11-23 10:58:21");
    panel.List.UserEditsNote(id, "new caps, warm");
    EXPECT_EQ(panel.List.Rows()[1].note, "new caps, warm");
    EXPECT_THAT(store.texts["2026-11-23"], HasSubstr(NoteLine(id, "new caps, warm")));
}

TEST_F(HistoryPanelTest, ShowsConditionsAndValuesOfTheSelectedReading) {
    const std::string id = Add("2026-11-23 10:58:21");
    EXPECT_EQ(panel.lblTitle.Caption(), "Nothing selected");
    EXPECT_FALSE(panel.cmdCompare.Enabled());
    panel.List.UserSelects({id});
    EXPECT_EQ(panel.lblTitle.Caption(), "Reading of 2026-11-23 10:58:21");
    EXPECT_EQ(panel.lblCompared.Caption(), "");
    EXPECT_EQ(panel.lblCount.Caption(), "1 entry, 1 selected");
    EXPECT_EQ(panel.lblAnalysis.Caption(), "65536 points, 8 averages, left");
    EXPECT_EQ(panel.lblBand.Caption(), "20 Hz to 20000 Hz, H2 to H9");
    EXPECT_EQ(panel.lblPath.Caption(), "48000 Hz, in 24 · out 16 bit");
    EXPECT_EQ(panel.lblStimulus.Caption(), "sine:1000, played 999.756 Hz");
    const HistoryTableView::Content& values = panel.Values.Shown();
    EXPECT_THAT(values.rows, ElementsAre("value", "±"));
    const auto thd = std::find_if(values.columns.begin(), values.columns.end(),
                                  [](const auto& column) { return column.name == "THD"; });
    ASSERT_NE(thd, values.columns.end());
    EXPECT_EQ(*thd, (HistoryTableView::Column{"THD", "dB", "-102.57", "0.07", ""}));
    EXPECT_THAT(values.columns,
                testing::Contains(HistoryTableView::Column{"Level", "dBFS", "-1.000", "< 0.001", ""}));
    EXPECT_EQ(values.columns.back(), (HistoryTableView::Column{"H3", "dBc", "≤ -141.0", "", ""}));
    EXPECT_EQ(panel.cmdCompare.Caption(), "Show as trace");
}

TEST_F(HistoryPanelTest, ComparesTwoReadings) {
    const std::string before = Add("2026-11-23 10:51:17", HistoryState::kValid, -100.12);
    const std::string present = Add("2026-11-23 10:58:21");
    panel.List.UserSelects({before, present});
    EXPECT_EQ(panel.lblTitle.Caption(), "Reading of 2026-11-23 10:58:21");
    EXPECT_EQ(panel.lblCompared.Caption(), "compared with 10:51:17");
    EXPECT_THAT(panel.Values.Shown().columns,
                testing::Contains(HistoryTableView::Column{"THD", "dB", "-102.57", "-100.12", "-2.45"}));
    EXPECT_EQ(panel.cmdCompare.Caption(), "Compare as traces");
    panel.cmdCompare.Press();
    ASSERT_THAT(shown, SizeIs(2));
    EXPECT_EQ(shown[0]->name, "10:58:21");
    EXPECT_EQ(shown[1]->name, "10:51:17");
    EXPECT_NEAR(LevelAt(*shown[0], 1000), -120.0, 0.01);
}

TEST_F(HistoryPanelTest, ComparesAtMostTwoEntriesOfOneKind) {
    const std::vector<std::string> ids{Add("2026-11-23 10:51:17"), Add("2026-11-23 10:52:00"),
                                       AddRun("2026-11-23 10:53:00")};
    panel.List.UserSelects(ids);
    EXPECT_FALSE(panel.cmdCompare.Enabled());
    EXPECT_EQ(panel.lblTitle.Caption(), "3 entries selected");
    EXPECT_THAT(panel.Values.Shown().columns, IsEmpty());
    panel.List.UserSelects({ids[1], ids[2]});
    EXPECT_FALSE(panel.cmdCompare.Enabled());
}

TEST_F(HistoryPanelTest, OpensRuns) {
    const std::vector<std::string> ids{AddRun("2026-11-23 10:51:17"), AddRun("2026-11-23 10:52:00")};
    panel.List.UserSelects({ids[0]});
    EXPECT_EQ(panel.cmdCompare.Caption(), "Open run");
    EXPECT_EQ(panel.lblTitle.Caption(), "Run of 2026-11-23 10:51:17");
    EXPECT_FALSE(panel.Values.Shown().columns.empty()) << "the card shows the figures of a run";
    panel.cmdCompare.Press();
    EXPECT_THAT(runs, ElementsAre(R"(10:51:17 {"points":3})"));
    panel.List.UserSelects(ids);
    panel.cmdCompare.Press();
    EXPECT_THAT(runs, SizeIs(3));
    EXPECT_THAT(shown, IsEmpty());
}

TEST_F(HistoryPanelTest, SaysThatNoCurveIsStored) {
    const ExportedMeasurement measurement = LiveReading();
    panel.List.UserSelects({panel.Store(EntryOf(measurement), DetailsOf(measurement.reading), {})});
    panel.cmdCompare.Press();
    EXPECT_EQ(panel.lblTrouble.Caption(), "No curve is stored.");
    EXPECT_THAT(shown, IsEmpty());
}

TEST_F(HistoryPanelTest, AsksOnceBeforeItDeletes) {
    const std::vector<std::string> ids{Add("2026-11-23 10:51:17"), Add("2026-11-23 10:52:00")};
    Add("2026-11-23 10:53:00");
    panel.List.UserSelects(ids);
    dialogs.Answer = false;
    panel.cmdDelete.Press();
    EXPECT_THAT(history.Entries(), SizeIs(3));
    dialogs.Answer = true;
    panel.cmdDelete.Press();
    EXPECT_EQ(log.Count("AskYesNo"), 2U);
    EXPECT_THAT(Times(), ElementsAre("Today", "10:53:00"));
    EXPECT_THAT(panel.List.Selected(), IsEmpty());
    EXPECT_FALSE(panel.cmdDelete.Enabled());
    EXPECT_FALSE(panel.Contains(ids[0]));
}

TEST_F(HistoryPanelTest, DoesNotDeleteWhatAFilterHides) {
    const std::string id = Add("2026-11-23 10:55:02", HistoryState::kVoid);
    panel.List.UserSelects({id});
    panel.chkValid.UserSets(true);
    EXPECT_THAT(panel.List.Selected(), IsEmpty());
    EXPECT_FALSE(panel.cmdDelete.Enabled());
}

TEST_F(HistoryPanelTest, CopiesTheSelectedRows) {
    const std::string id = Add("2026-11-23 10:58:21");
    Add("2026-11-23 10:59:00");
    panel.List.UserEditsNote(id, "a\tb");
    panel.cmdCopy.Press();
    EXPECT_EQ(copied, "");
    panel.List.UserSelects({id});
    panel.cmdCopy.Press();
    EXPECT_EQ(copied,
              "Time\tInput → output\tRate, Hz\tBits\tStimulus\tTHD, dB\tTHD+N, dB\tState\tNotes\n"
              "2026-11-23 10:58:21\tLine In → Line Out\t48000\t24/16\tsine:1000, played 999.756 Hz\t"
              "-102.57\t-97.70\tVALID\ta b\n");
}

TEST_F(HistoryPanelTest, ExportsTheRowsShown) {
    Add("2026-11-23 10:55:02", HistoryState::kVoid);
    Add("2026-11-23 10:58:21");
    panel.chkValid.UserSets(true);
    panel.AskForExport = [] { return std::string("/results/history.csv"); };
    panel.cmdExport.Press();
    const std::string& csv = files.texts["/results/history.csv"];
    EXPECT_THAT(csv, StartsWith("time,kind,state,"));
    EXPECT_THAT(csv, HasSubstr("2026-11-23 10:58:21,reading,VALID"));
    EXPECT_THAT(csv, testing::Not(HasSubstr("VOID")));
    panel.AskForExport = [] { return std::string(); };
    files.texts.clear();
    panel.cmdExport.Press();
    EXPECT_THAT(files.texts, IsEmpty());
}

TEST_F(HistoryPanelTest, ReportsDamagedAndIncompleteFiles) {
    store.texts["2026-11-23"] = AnyLine() + "\nnonsense\n" + AnyLine("b").substr(0, 40);
    panel.Refresh();
    EXPECT_EQ(panel.lblEmpty.Caption(), "The history is being read.");
    Settle();
    EXPECT_THAT(Times(), SizeIs(2));
    EXPECT_NE(panel.lblTrouble.Caption(), "");
    store.texts["2026-11-23"] = AnyLine() + '\n';
    panel.Refresh();
    Settle();
    EXPECT_EQ(panel.lblTrouble.Caption(), "");
}

TEST_F(HistoryPanelTest, ReportsAFullDisk) {
    const std::string id = Add("2026-11-23 10:58:21");
    store.full = true;
    panel.List.UserEditsNote(id, "lost");
    EXPECT_EQ(panel.lblTrouble.Caption(), "The disk is full.");
    EXPECT_EQ(panel.List.Rows()[1].note, "");
    EXPECT_EQ(Add("2026-11-23 10:59:00"), "");
    EXPECT_EQ(log.Count("Message"), 1U) << "the tab may be hidden while a reading is stored";
    EXPECT_THAT(Times(), SizeIs(2));
    store.full = false;
    panel.List.UserEditsNote(id, "kept");
    EXPECT_EQ(panel.lblTrouble.Caption(), "");
    EXPECT_EQ(panel.List.Rows()[1].note, "kept");
}

TEST_F(HistoryPanelTest, ShowsWhatAnotherProcessStores) {
    store.texts["2026-11-23"] = AnyLine() + '\n';
    panel.Refresh();
    Settle();
    EXPECT_THAT(Times(), SizeIs(2));
    store.texts["2026-11-23"] += AnyLine("b") + '\n';
    panel.Refresh();
    Settle();
    EXPECT_THAT(Times(), SizeIs(3));
}

}  // namespace
}  // namespace sonavex
