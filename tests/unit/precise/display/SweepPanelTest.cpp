#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/precise/display/SweepPanel.h"
#include "core/precise/display/frmAnalyzer.h"
#include "core/run/StoredRun.h"
#include "support/AnalyzerNeeds.h"
#include "support/FormRig.h"
#include "support/InlineBackground.h"
#include "support/MemoryFiles.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

// The tab of runs in the Analyzer, on a stepped card that loops back.
class SweepPanels : public testing::Test {
protected:
    SweepPanels() {
        Settings(rig.store).Save(keys::kSampleRate, "5");
        DeviceUnderTestModel model;
        model.bits = 24;
        model.delayFrames = 300;
        model.referencePeak = 29204.5;
        model.harmonicAmplitudes = {6.3e-6, 3.5e-6};
        model.noiseRms = 0.22;
        rig.card.Card().SetDeviceUnderTest(model);
        rig.form.Form_Load();
        RunFor(2500ms);
        form.Show();
        Enter(sweep.Setup.txtFrom, "250");
        Enter(sweep.Setup.txtTo, "1k");
        Enter(sweep.Setup.txtAmount, "1");
        RunFor(400ms);
    }

    static void Enter(TextBox& box, const char* text) {
        box.UserTypes(text);
        box.UserLeaves();
    }
    void RunFor(std::chrono::milliseconds time) {
        const auto frames = static_cast<std::size_t>(rig.form.Instrument.Shared.SampleRate / 50);
        for (auto passed = 0ms; passed < time; passed += 20ms) {
            rig.card.Card().Step(frames);
            rig.loop.Advance(20ms);
        }
    }
    bool Ends(std::chrono::milliseconds limit = 60s) {
        for (auto passed = 0ms; passed < limit && sweep.Active(); passed += 100ms) RunFor(100ms);
        return !sweep.Active();
    }

    FormRig rig;
    InlineBackground background{rig.loop};
    MemoryFiles files;
    HistoryInMemory history{background};
    frmAnalyzer form{AnalyzerNeeds(rig.form, rig.loop, background, rig.dialogs, files, history.history)};
    SweepPanel& sweep = form.Sweep;
};

TEST_F(SweepPanels, ShowsThePlanBeforeTheStart) {
    EXPECT_THAT(sweep.Setup.lblPlan.Caption(), StartsWith("3 points, 2 records each: about "));
    Enter(sweep.Setup.txtTo, "30000");
    EXPECT_THAT(sweep.Setup.lblPlan.Caption(), StartsWith("The frequency 4000 Hz is above 3600 Hz"));
    sweep.cmdStart.Press();
    EXPECT_FALSE(sweep.Active());
    EXPECT_EQ(sweep.lblTrouble.Caption(), sweep.Setup.lblPlan.Caption());
    EXPECT_EQ(sweep.cmdStart.Caption(), "Start sweep");
}

TEST_F(SweepPanels, ShowsTheConditionsOfTheSpectrum) {
    EXPECT_EQ(sweep.lblConditions.Caption(), "8k points\n20 Hz to 4.0 kHz\nleft channel, H2 to H9, on bins");
}

TEST_F(SweepPanels, PausesWhileTheDeviceIsLost) {
    sweep.cmdStart.Press();
    for (auto passed = 0ms; sweep.lblProgress.Caption() != "Point 2 of 3: 500 Hz" && passed < 30s;
         passed += 100ms)
        RunFor(100ms);
    rig.card.Unplug();
    RunFor(2s);
    EXPECT_EQ(form.Chip.Text(), "PAUSED");
    EXPECT_THAT(sweep.lblTrouble.Caption(), HasSubstr("The run continues when they do."));
    rig.card.Plug();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(sweep.lblTrouble.Caption(), "");
    EXPECT_EQ(sweep.lblInvalidCount.Caption(), "0 of 3");
    EXPECT_THAT(sweep.CopiedText(), HasSubstr("after_loss"));
}

TEST_F(SweepPanels, APausedRunCanBeEnded) {
    sweep.cmdStart.Press();
    RunFor(2s);
    rig.card.Unplug();
    RunFor(2s);
    ASSERT_EQ(form.Chip.Text(), "PAUSED");
    sweep.cmdStart.Press();
    RunFor(1s);
    EXPECT_FALSE(sweep.Active());
    EXPECT_EQ(form.Chip.State(), StateChip::Kind::kVoid) << form.Chip.Text();
}

TEST_F(SweepPanels, ATextThatMakesNoRunKeepsTheVerdict) {
    sweep.Setup.chkLimit.UserSets(true);
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    Enter(sweep.Setup.txtFrom, "1");
    EXPECT_EQ(sweep.Verdict.Text(), "PASS");
    EXPECT_THAT(rig.log.Lines(), testing::Not(testing::Contains(HasSubstr("frequency"))));
}

TEST_F(SweepPanels, MeasuresAllPointsAndJudgesThem) {
    sweep.Setup.chkLimit.UserSets(true);
    sweep.cmdStart.Press();
    ASSERT_TRUE(sweep.Active());
    EXPECT_EQ(sweep.cmdStart.Caption(), "Cancel");
    EXPECT_EQ(sweep.lblProgress.Caption(), "Point 1 of 3: 250 Hz");
    EXPECT_THAT(sweep.lblLeft.Caption(), HasSubstr(" s left"));
    RunFor(1000ms);
    EXPECT_THAT(form.Chip.Text(), StartsWith("SETTLING "));
    ASSERT_TRUE(Ends());
    EXPECT_EQ(sweep.Verdict.Text(), "PASS");
    EXPECT_THAT(sweep.lblProgress.Caption(), StartsWith("3 points in "));
    EXPECT_EQ(sweep.lblInvalidCount.Caption(), "0 of 3");
    ASSERT_THAT(sweep.Plot.Curves(RunSeries::kThd), SizeIs(1));
    EXPECT_THAT(sweep.Plot.Curves(RunSeries::kThd)[0], SizeIs(3));
    sweep.UserMovesCursor(1);
    EXPECT_EQ(sweep.lblAt.Caption(), "At 250 Hz");
    EXPECT_THAT(sweep.lblPlayed.Caption(), StartsWith("played "));
    EXPECT_THAT(sweep.Rows[0].value.Caption(), StartsWith("-"));
    EXPECT_THAT(sweep.Rows[4].value.Caption(), StartsWith("-1.0"));
}

TEST_F(SweepPanels, ShowsAPreviewUntilItsPointsAreMeasured) {
    sweep.Setup.chkPreview.UserSets(true);
    EXPECT_THAT(sweep.Setup.lblPlan.Caption(), StartsWith("3 points and a preview, 2 records each: about "));
    sweep.cmdStart.Press();
    EXPECT_FALSE(sweep.Setup.chkPreview.Enabled());
    RunFor(5s);
    EXPECT_EQ(sweep.lblProgress.Caption(), "Preview");
    EXPECT_EQ(form.Chip.Text(), "PREVIEW");
    EXPECT_GT(form.Chip.Progress(), 0.2);
    for (auto passed = 0ms; !sweep.Plot.HasPreview() && passed < 20s; passed += 100ms) RunFor(100ms);
    ASSERT_THAT(sweep.Plot.Preview(RunSeries::kLevel), SizeIs(1));
    EXPECT_THAT(sweep.Plot.Preview(RunSeries::kLevel)[0], SizeIs(3));
    EXPECT_EQ(sweep.lblProgress.Caption(), "Point 1 of 3: 250 Hz");
    // What a cancelled run has not measured stays a preview.
    for (auto passed = 0ms; sweep.Present().results.size() < 2 && passed < 30s; passed += 100ms)
        RunFor(100ms);
    sweep.Cancel();
    ASSERT_TRUE(Ends());
    ASSERT_THAT(sweep.Plot.Preview(RunSeries::kLevel), SizeIs(1));
    EXPECT_THAT(sweep.Plot.Preview(RunSeries::kLevel)[0], SizeIs(1));
    sweep.cmdRepeat.Press();
    EXPECT_EQ(sweep.lblProgress.Caption(), "Point 3 of 3: 1000 Hz");
    ASSERT_TRUE(Ends());
    EXPECT_FALSE(sweep.Plot.HasPreview());
}

TEST_F(SweepPanels, SaysWhyThereIsNoPreview) {
    DeviceUnderTestModel model;
    model.bits = 24;
    model.gain = 1.5;
    rig.card.Card().SetDeviceUnderTest(model);
    sweep.Setup.chkPreview.UserSets(true);
    sweep.cmdStart.Press();
    for (auto passed = 0ms; form.Chip.Text() != "SETTLING 0 of 2" && passed < 30s; passed += 100ms)
        RunFor(100ms);
    RunFor(400ms);
    EXPECT_EQ(sweep.lblTrouble.Caption(), "No preview: The input reaches full scale.");
    sweep.Cancel();
}

TEST_F(SweepPanels, OnlyARunOverFrequencyHasAPreview) {
    sweep.Setup.chkPreview.UserSets(true);
    sweep.Setup.cmbOver.UserSelects(1);
    EXPECT_FALSE(sweep.Setup.chkPreview.Enabled());
    Enter(sweep.Setup.txtFrom, "-30");
    Enter(sweep.Setup.txtTo, "-20");
    Enter(sweep.Setup.txtOther, "500");
    sweep.cmdStart.Press();
    EXPECT_TRUE(sweep.Active()) << sweep.lblTrouble.Caption();
    EXPECT_NE(sweep.lblProgress.Caption(), "Preview");
    sweep.Cancel();
}

TEST_F(SweepPanels, JudgesAKeptRunAgainWhenTheLimitChanges) {
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(sweep.Verdict.Text(), "");
    sweep.Setup.chkLimit.UserSets(true);
    EXPECT_EQ(sweep.Verdict.Text(), "PASS");
    Enter(sweep.Setup.txtLimit, "-140");
    EXPECT_EQ(sweep.Verdict.Text(), "FAIL");
    EXPECT_THAT(sweep.Plot.Conditions(), StartsWith("THD at most -140 dB, 250 Hz to 1000 Hz: 3 points over"));
    EXPECT_TRUE(sweep.Plot.Alarm());
}

TEST_F(SweepPanels, CancelKeepsWhatWasMeasured) {
    sweep.Setup.chkLimit.UserSets(true);
    sweep.cmdStart.Press();
    for (int i = 0; i < 200 && sweep.Plot.Curves(RunSeries::kThd).empty(); ++i) RunFor(100ms);
    EXPECT_EQ(sweep.Verdict.Text(), "PASS so far");
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends(5s));
    EXPECT_EQ(sweep.Verdict.Text(), "NOT COMPLETE");
    EXPECT_THAT(sweep.lblProgress.Caption(), StartsWith("1 of 3 points in "));
}

TEST_F(SweepPanels, TheSpectrumIsMeasuredAgainAfterTheRun) {
    sweep.cmdStart.Press();
    form.Analysis.cmbChannel.UserSelects(1);
    EXPECT_TRUE(sweep.Active());
    RunFor(3s);
    EXPECT_EQ(form.Readings.lblThd.Caption(), "none");
    sweep.Cancel();
    ASSERT_TRUE(Ends(5s));
    form.Stimulus.cmdStart.Press();
    for (int i = 0; i < 300 && form.Chip.State() != StateChip::Kind::kValid; ++i) RunFor(100ms);
    EXPECT_EQ(form.Chip.State(), StateChip::Kind::kValid);
}

TEST_F(SweepPanels, ClosingTheWindowEndsTheRun) {
    sweep.cmdStart.Press();
    RunFor(1000ms);
    form.Unload();
    ASSERT_TRUE(Ends(5s));
    form.Show();
    sweep.cmdStart.Press();
    EXPECT_TRUE(sweep.Active());
}

TEST_F(SweepPanels, ExportsTheRunAsCsvOrJson) {
    sweep.Export();
    EXPECT_EQ(sweep.CopiedText(), "");
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    EXPECT_THAT(sweep.CopiedText(), HasSubstr("COMPLETE: 3 of 3 points measured."));
    sweep.AskForExport = [] { return SweepPanel::ExportTarget{"/tmp/run.csv", SweepPanel::Format::kCsv}; };
    sweep.Export();
    EXPECT_EQ(files.texts.at("/tmp/run.csv"), sweep.CopiedText());
    sweep.AskForExport = [] { return SweepPanel::ExportTarget{"/tmp/run.txt", SweepPanel::Format::kLines}; };
    sweep.Export();
    EXPECT_THAT(files.texts.at("/tmp/run.txt"), StartsWith("{\"point\":1,\"points\":3,"));
    sweep.AskForExport = [] { return SweepPanel::ExportTarget{"/tmp/run.json", SweepPanel::Format::kRun}; };
    sweep.Export();
    EXPECT_EQ(ParseStoredRun(files.texts.at("/tmp/run.json")).results.size(), 3U);
}

TEST_F(SweepPanels, DrawsAndPrintsTheRun) {
    std::string drawn;
    std::string printed;
    sweep.DrawRun = [&](ExportKind kind, const MeasuredRun& run, const std::vector<std::string>& lines) {
        drawn = (kind == ExportKind::kPdf ? "pdf " : "png ") + std::to_string(run.results.size());
        return drawn + (lines.empty() ? "" : ", " + lines.front());
    };
    sweep.Print = [&](const std::string& png, const std::vector<std::string>& lines) {
        printed = png + "; " + lines.front() + "; " + lines[1];
    };
    EXPECT_FALSE(sweep.cmdPrint.Enabled());
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    sweep.cmdPrint.Press();
    EXPECT_EQ(
        printed,
        "png 3; 2026-11-23 10:42:07, Sonavex 2.1.14; 3 points over frequency, 250 Hz to 1000 Hz, at -1 dBFS");
    sweep.AskForExport = [] { return SweepPanel::ExportTarget{"/tmp/run.pdf", SweepPanel::Format::kPdf}; };
    sweep.Export();
    EXPECT_EQ(files.texts.at("/tmp/run.pdf"), "pdf 3, 2026-11-23 10:42:07, Sonavex 2.1.14");
}

TEST_F(SweepPanels, StepsTheLevel) {
    sweep.Setup.cmbOver.UserSelects(1);
    EXPECT_STREQ(sweep.Setup.AxisUnit(), "dBFS");
    EXPECT_STREQ(sweep.Setup.OtherUnit(), "Hz");
    Enter(sweep.Setup.txtFrom, "-10");
    Enter(sweep.Setup.txtAmount, "9");
    sweep.cmdStart.Press();
    EXPECT_EQ(sweep.lblProgress.Caption(), "Point 1 of 2: -10 dBFS");
    ASSERT_TRUE(Ends());
    EXPECT_EQ(sweep.Plot.Curves(RunSeries::kLevel)[0].back().position, -1);
}

TEST_F(SweepPanels, StoresItsEntries) {
    Enter(sweep.Setup.txtOther, "-1, -10 dBFS,-20");
    EXPECT_EQ(sweep.Setup.txtOther.Text(), "-1, -10, -20");
    Enter(sweep.Setup.txtOther, "loud");
    EXPECT_EQ(sweep.Setup.txtOther.Text(), "-1, -10, -20");
    SweepSetup again(rig.form.Instrument.Settings, {});
    EXPECT_EQ(again.txtFrom.Text(), "250");
    EXPECT_EQ(again.txtTo.Text(), "1000");
    EXPECT_EQ(again.txtOther.Text(), "-1, -10, -20");
}

TEST_F(SweepPanels, TakesALimitTable) {
    std::optional<SweepSetup::NamedText> table{{"mask.csv", "20,-80\n100,\n"}};
    sweep.Setup.AskForTable = [&table] { return table; };
    sweep.Setup.cmdLoadLimit.Press();
    EXPECT_EQ(sweep.Setup.lblLimit.Caption(), "Line 2 of the limit table has a value that is not a number.");
    table = {"mask.csv", "600,-80\n20000,-70\n"};
    sweep.Setup.cmdLoadLimit.Press();
    EXPECT_EQ(sweep.Setup.lblLimit.Caption(), "mask.csv");
    sweep.cmdStart.Press();
    EXPECT_FALSE(sweep.Active());
    EXPECT_THAT(sweep.lblTrouble.Caption(), StartsWith("The limit table of thd is incomplete"));
    SweepSetup again(rig.form.Instrument.Settings, {});
    EXPECT_EQ(again.lblLimit.Caption(), "mask.csv");
    Enter(sweep.Setup.txtLimit, "-80");
    EXPECT_EQ(sweep.Setup.lblLimit.Caption(), "");
}

TEST_F(SweepPanels, AnUnusableTableLeavesNoLine) {
    sweep.Setup.AskForTable = [] { return SweepSetup::NamedText{"mask.csv", "20,-80\n20000,-70\n"}; };
    sweep.Setup.cmdLoadLimit.Press();
    sweep.Setup.AskForTable = []() -> std::optional<SweepSetup::NamedText> {
        throw RunError("mask.csv cannot be read.");
    };
    sweep.Setup.cmdLoadLimit.Press();
    EXPECT_EQ(sweep.Setup.lblLimit.Caption(), "mask.csv cannot be read.");
    EXPECT_FALSE(sweep.Setup.chkLimit.Checked());
}

TEST_F(SweepPanels, EditsTheLimitLine) {
    std::string shown;
    std::optional<std::string> typed = "20,-70\n20000,-60\n";
    sweep.Setup.AskForLine = [&](const std::string& table) {
        shown = table;
        return typed;
    };
    sweep.Setup.cmdEditLimit.Press();
    EXPECT_EQ(shown, "250, -90\n1000, -90\n");
    EXPECT_EQ(sweep.Setup.lblLimit.Caption(), "own line");
    EXPECT_TRUE(sweep.Setup.chkLimit.Checked());
    typed = "20000,-60\n20,-70\n";
    sweep.Setup.cmdEditLimit.Press();
    EXPECT_EQ(shown, "20, -70\n20000, -60\n");
    EXPECT_THAT(sweep.Setup.lblLimit.Caption(), StartsWith("The limit table is not sorted"));
    typed.reset();
    sweep.Setup.cmdEditLimit.Press();
    EXPECT_EQ(shown, "20, -70\n20000, -60\n");
}

TEST_F(SweepPanels, KeepsRunsAndJudgesThemByTheNewLimit) {
    EXPECT_FALSE(sweep.cmdKeep.Enabled());
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    sweep.cmdKeep.Press();
    auto& rows = sweep.Kept.Rows;
    EXPECT_EQ(rows[0].lblLetter.Caption(), "B");
    EXPECT_EQ(rows[0].txtName.Text(), "10:42, -1 dBFS");
    EXPECT_THAT(rows[0].lblConditions.Caption(), HasSubstr("Hz, 24 bit"));
    EXPECT_THAT(sweep.Plot.Kept(), SizeIs(1));
    sweep.Setup.chkLimit.UserSets(true);
    EXPECT_EQ(rows[0].Verdict.Text(), "PASS");
    Enter(sweep.Setup.txtLimit, "-140");
    EXPECT_EQ(rows[0].Verdict.Text(), "FAIL");
    sweep.cmdKeep.Press();
    EXPECT_EQ(rows[0].lblLetter.Caption(), "C");
    EXPECT_EQ(rows[1].lblLetter.Caption(), "B");
    rows[0].chkShown.UserSets(false);
    EXPECT_THAT(sweep.Plot.Kept(), SizeIs(1));
    sweep.cmdClear.Press();
    EXPECT_THAT(sweep.Plot.Kept(), SizeIs(1));
    rows[1].optSelect.UserSelects();
    EXPECT_FALSE(rows[0].optSelect.Value());
    sweep.Kept.cmdRemove.Press();
    EXPECT_EQ(sweep.Kept.Count(), 1U);
    EXPECT_THAT(sweep.Plot.Kept(), testing::IsEmpty());
    Enter(rows[0].txtName, "");
    EXPECT_EQ(rows[0].txtName.Text(), "10:42, -1 dBFS");
}

TEST_F(SweepPanels, TheOldestOfManyKeptRunsIsRemoved) {
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    for (std::size_t i = 0; i <= KeptRuns::kMost; ++i) sweep.cmdKeep.Press();
    EXPECT_EQ(sweep.Kept.Count(), KeptRuns::kMost);
    EXPECT_EQ(sweep.Kept.Rows[0].lblLetter.Caption(), "B");
    EXPECT_EQ(sweep.Kept.Rows[KeptRuns::kMost - 1].lblLetter.Caption(), "C");
}

TEST_F(SweepPanels, ContinuesACancelledRun) {
    EXPECT_FALSE(sweep.cmdRepeat.Enabled());
    sweep.cmdStart.Press();
    for (int i = 0; i < 200 && sweep.Plot.Curves(RunSeries::kThd).empty(); ++i) RunFor(100ms);
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends(5s));
    EXPECT_EQ(sweep.cmdRepeat.Caption(), "Continue");
    sweep.cmdRepeat.Press();
    ASSERT_TRUE(sweep.Active());
    EXPECT_EQ(sweep.lblProgress.Caption(), "Point 2 of 3: 500 Hz");
    ASSERT_TRUE(Ends());
    EXPECT_THAT(sweep.Plot.Curves(RunSeries::kThd)[0], SizeIs(3));
    EXPECT_FALSE(sweep.cmdRepeat.Enabled());
}

TEST_F(SweepPanels, ALimitThatDoesNotCoverTheRunJudgesNothing) {
    sweep.Setup.chkLimit.UserSets(true);
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    ASSERT_EQ(sweep.Verdict.Text(), "PASS");
    sweep.Setup.AskForTable = [] { return SweepSetup::NamedText{"mask.csv", "600,-80\n20000,-70\n"}; };
    sweep.Setup.cmdLoadLimit.Press();
    EXPECT_EQ(sweep.Verdict.Text(), "");
    EXPECT_THAT(sweep.lblTrouble.Caption(), StartsWith("The limit table of thd is incomplete"));
    EXPECT_THAT(sweep.CopiedText(), HasSubstr("# COMPLETE: "));
    Enter(sweep.Setup.txtLimit, "-80");
    EXPECT_EQ(sweep.Verdict.Text(), "PASS");
    EXPECT_EQ(sweep.lblTrouble.Caption(), "");
}

TEST_F(SweepPanels, AStoredRunKeepsItsOwnLimits) {
    sweep.Setup.chkLimit.UserSets(true);
    Enter(sweep.Setup.txtLimit, "-140");
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    const MeasuredRun stored = sweep.Present();
    ASSERT_EQ(sweep.Verdict.Text(), "FAIL");
    sweep.cmdClear.Press();
    sweep.Setup.AskForTable = [] { return SweepSetup::NamedText{"mask.csv", "600,-80\n20000,-70\n"}; };
    sweep.Setup.cmdLoadLimit.Press();
    sweep.Open(stored, "yesterday", "");
    EXPECT_EQ(sweep.Verdict.Text(), "FAIL");
    EXPECT_THAT(sweep.Plot.Conditions(), StartsWith("THD at most -140 dB"));
}

TEST_F(SweepPanels, ARunIsContinuedOnlyWithItsDevices) {
    sweep.cmdStart.Press();
    for (int i = 0; i < 200 && sweep.Plot.Curves(RunSeries::kThd).empty(); ++i) RunFor(100ms);
    sweep.Cancel();
    ASSERT_TRUE(Ends(5s));
    MeasuredRun stored = sweep.Present();
    stored.conditions.stream->input = "Other card";
    sweep.cmdClear.Press();
    sweep.Open(stored, "yesterday", "");
    sweep.cmdRepeat.Press();
    EXPECT_FALSE(sweep.Active());
    EXPECT_THAT(sweep.lblTrouble.Caption(), StartsWith("The run was measured with Other card and "));
}

TEST_F(SweepPanels, RepeatsInvalidPoints) {
    DeviceUnderTestModel model;
    model.bits = 24;
    model.gain = 1.5;
    rig.card.Card().SetDeviceUnderTest(model);
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(sweep.lblInvalidCount.Caption(), "3 of 3");
    model.gain = 1.0;
    rig.card.Card().SetDeviceUnderTest(model);
    EXPECT_EQ(sweep.cmdRepeat.Caption(), "Repeat invalid");
    sweep.cmdRepeat.Press();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(sweep.lblInvalidCount.Caption(), "0 of 3");
    EXPECT_EQ(sweep.lblTrouble.Caption(), "");
}

TEST_F(SweepPanels, AKeptRunCanBeOpenedFromTheHistory) {
    sweep.Setup.chkLimit.UserSets(true);
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    const MeasuredRun measured = sweep.Present();
    sweep.cmdKeep.Press();
    ASSERT_EQ(history.history.Entries().size(), 1U);
    const HistoryEntry& entry = history.history.Entries().front();
    EXPECT_EQ(entry.kind, HistoryKind::kRun);
    EXPECT_NE(entry.state, HistoryState::kDone) << "the run has a limit";
    EXPECT_TRUE(entry.stimulus.starts_with("sweep: ")) << entry.stimulus;
    EXPECT_TRUE(entry.stimulus.ends_with(" Hz, 3 points")) << entry.stimulus;
    EXPECT_EQ(entry.note, sweep.Kept.Rows[0].txtName.Text());
    ASSERT_EQ(entry.figures.size(), 2U);
    for (const RunPointResult& result : measured.results)
        EXPECT_LE(result.reading.thdDb.value, entry.figures[0].value.value);
    EXPECT_EQ(entry.time, "2026-11-23 10:42:07");
    sweep.cmdClear.Press();
    form.History.OnOpenRun("{}", entry);
    EXPECT_THAT(rig.log.Lines(), testing::Contains(HasSubstr("The stored run: run is missing.")));
    form.History.List.UserSelects({entry.id});
    form.History.cmdCompare.Press();
    ASSERT_EQ(sweep.Present().results.size(), measured.results.size());
    EXPECT_EQ(sweep.Present().points.size(), measured.points.size());
    EXPECT_NEAR(*sweep.Present().results[1].reading.thdDb.value, *measured.results[1].reading.thdDb.value,
                1e-6);
}

// Another start of the program with the same settings and files.
struct NextStart {
    explicit NextStart(FormRig& rig, const MemoryHistory& stored) : history(background), form(Needs(rig)) {
        history.files.texts = stored.texts;
    }
    frmAnalyzer::Needs Needs(FormRig& rig) {
        return AnalyzerNeeds(rig.form, rig.loop, background, rig.dialogs, files, history.history);
    }
    VirtualEventLoop loop;
    InlineBackground background{loop};
    MemoryFiles files;
    HistoryInMemory history;
    frmAnalyzer form;
};

TEST_F(SweepPanels, TheNextStartRestoresTheKeptRunsThatWereShown) {
    sweep.Setup.chkLimit.UserSets(true);
    sweep.cmdStart.Press();
    ASSERT_TRUE(Ends());
    for (int i = 0; i < 4; ++i) sweep.cmdKeep.Press();
    Enter(sweep.Kept.Rows[0].txtName, "new caps");
    sweep.Kept.Rows[1].chkShown.UserSets(false);
    history.history.Delete(history.history.Entries().front().id);
    EXPECT_EQ(sweep.Kept.Count(), 4U) << "the window keeps what it shows";
    form.Unload();

    NextStart next(rig, history.files);
    next.form.History.Refresh();
    next.form.Show();
    EXPECT_EQ(next.form.Sweep.Kept.Count(), 0U) << "the history was not read yet";
    next.loop.DeliverSignals();
    auto& rows = next.form.Sweep.Kept.Rows;
    ASSERT_EQ(next.form.Sweep.Kept.Count(), 2U);
    EXPECT_EQ(rows[0].txtName.Text(), "new caps");
    EXPECT_EQ(rows[1].txtName.Text(), "10:42, -1 dBFS");
    EXPECT_EQ(rows[0].lblConditions.Caption(), sweep.Kept.Rows[0].lblConditions.Caption());
    EXPECT_FALSE(rows[0].Verdict.Text().empty());
    EXPECT_EQ(rows[0].Verdict.Text(), sweep.Kept.Rows[0].Verdict.Text());
    EXPECT_THAT(next.form.Sweep.Plot.Kept(), SizeIs(2));
    next.form.Sweep.Kept.cmdRemove.Press();
    EXPECT_EQ(next.form.Sweep.Kept.Count(), 1U);
    next.form.History.Refresh();
    next.loop.DeliverSignals();
    EXPECT_EQ(next.form.Sweep.Kept.Count(), 1U) << "runs are restored once";
    EXPECT_EQ(rig.log.Count("Message"), 0U);
}

TEST_F(SweepPanels, OpensAStoredRunThatCanBeContinued) {
    sweep.cmdStart.Press();
    for (int i = 0; i < 200 && sweep.Plot.Curves(RunSeries::kThd).empty(); ++i) RunFor(100ms);
    sweep.Cancel();
    ASSERT_TRUE(Ends(5s));
    const MeasuredRun stored = sweep.Present();
    sweep.Open(stored, "yesterday", "");
    EXPECT_EQ(sweep.Kept.Rows[0].txtName.Text(), "yesterday");
    sweep.cmdClear.Press();
    sweep.Open(stored, "yesterday", "");
    EXPECT_EQ(sweep.cmdRepeat.Caption(), "Continue");
    sweep.cmdRepeat.Press();
    ASSERT_TRUE(Ends());
    EXPECT_EQ(sweep.Present().results.size(), 3U);
    EXPECT_TRUE(sweep.Present().results[2].afterLoss);
}

TEST_F(SweepPanels, TheEndOfTheFormStoresAnInterruptedRun) {
    sweep.cmdStart.Press();
    for (int i = 0; i < 200 && sweep.Plot.Curves(RunSeries::kThd).empty(); ++i) RunFor(100ms);
    form.Unload();
    ASSERT_EQ(history.history.Entries().size(), 1U);
    EXPECT_EQ(history.history.Entries()[0].state, HistoryState::kNotComplete);
    EXPECT_EQ(ParseStoredRun(history.history.Details(history.history.Entries()[0].id)->json).results.size(),
              1U);
}

// A full-scale tone with dither does not fit.
TEST_F(SweepPanels, ARefusedStartLeavesTheRecordingOpen) {
    files.sounds["/tmp/take.wav"] = {
        .rateHz = 8000, .channels = 1, .frames = 20000, .sample = [](std::int64_t) { return 0.25; }};
    form.OpenRecording("/tmp/take.wav");
    RunFor(400ms);
    ASSERT_TRUE(form.Recording.IsOpen());
    Enter(sweep.Setup.txtOther, "0");
    sweep.cmdStart.Press();
    EXPECT_FALSE(sweep.Active());
    EXPECT_NE(sweep.lblTrouble.Caption(), "");
    EXPECT_TRUE(form.Recording.IsOpen());
}

// As after a signal of the system.
TEST_F(SweepPanels, AFullDiskAtTheEndOfTheProgramLeavesTheRampToSilence) {
    sweep.cmdStart.Press();
    for (int i = 0; i < 200 && sweep.Plot.Curves(RunSeries::kThd).empty(); ++i) RunFor(100ms);
    history.files.full = true;
    rig.dialogs.WhileMessage = [] { throw EndProgram{}; };
    EXPECT_THROW(form.UnloadForNextStart(), EndProgram);
    rig.dialogs.WhileMessage = {};
    EXPECT_TRUE(form.StimulusHeard());
    RunFor(1s);
    EXPECT_FALSE(form.StimulusHeard());
    EXPECT_FALSE(sweep.Active());
}

}  // namespace
}  // namespace sonavex
