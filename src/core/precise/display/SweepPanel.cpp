#include "core/precise/display/SweepPanel.h"

#include <algorithm>
#include <utility>

#include "core/precise/display/ReadingTexts.h"
#include "core/run/display/RunTexts.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kSeriesDecimals = 2;
constexpr int kLevelDecimals = 3;
constexpr int kPlayedDigits = 6;
constexpr std::size_t kMostInvalidLines = 8;
constexpr int kRecordsOfAPoint = 2;

RunSeries SeriesOf(std::size_t index) {
    return static_cast<RunSeries>(index);
}

std::string PositionText(const RunPoint& point, RunAxis over) {
    return over == RunAxis::kFrequency ? HertzText(point.requestedHz)
                                       : WithDigits(point.levelDbfs, kPlayedDigits) + " dBFS";
}

}  // namespace

SweepPanel::SweepPanel(const Needs& needs, Events events)
    : Setup(needs.instrument.Settings, [this] { TakeChange(); }), needs_(needs), events_(std::move(events)) {
    cmdClear.SetCaption("Clear");
    cmdStart.Click.Handle([this] { Active() ? Cancel() : Start(); });
    cmdClear.Click.Handle([this] { Clear(); });
    Plot.CursorMoved.Handle([this] { ShowPoint(); });
    for (std::size_t i = 0; i < chkSeries.size(); ++i) {
        chkSeries[i].SetValue(1);
        chkSeries[i].Click.Handle([this, i] { Plot.SetVisible(SeriesOf(i), chkSeries[i].Checked()); });
        Rows[i].name.SetCaption(NameOf(SeriesOf(i)));
        Rows[i].unit.SetItems({UnitOf(SeriesOf(i))});
        Rows[i].unit.SetListIndex(0);
    }
    ShowRun();
}

// The run before stays on the screen when the new one cannot be played.
void SweepPanel::Start() {
    lblTrouble.SetCaption("");
    try {
        const double rateHz = needs_.instrument.Shared.SampleRate;
        RunFile file = Setup.Chosen(events_.conditions());
        RequireCoverage(file.limits, PointsOf(file.plan, rateHz));
        if (!run_) {
            run_ = std::make_unique<RunMeasurement>(
                RunMeasurement::Needs{needs_.loop, needs_.instrument, needs_.measurement});
            run_->OnPoint = [this](const RunPointResult&) { ShowRun(); };
        }
        events_.begins();
        run_->Start(file.plan);
        file_ = std::move(file);
        rateHz_ = rateHz;
        stream_ = DetailsOf(needs_.instrument.Engine, needs_.instrument.Shared.SampleRate, needs_.simulated);
        started_ = needs_.loop.Now();
        ShowRun();
    } catch (const std::runtime_error& error) {
        lblTrouble.SetCaption(error.what());
        return;
    }
    run_->OnChanged = [this] { TakeState(); };
}

void SweepPanel::TakeState() {
    ShowRun();
    if (Active()) return;
    run_->OnChanged = nullptr;
    lblTrouble.SetCaption(run_->Trouble());
    events_.ended();
}

void SweepPanel::Cancel() {
    if (run_) run_->Cancel();
}

// A new limit judges the run again.
void SweepPanel::TakeChange() {
    Setup.ShowPlan(events_.conditions(), needs_.instrument.Shared.SampleRate);
    if (Points().empty()) return;
    try {
        const std::vector<RunLimit> limits = Setup.Chosen(file_.plan).limits;
        RequireCoverage(limits, Points());
        file_.limits = limits;
        ShowRun();
    } catch (const RunError& error) {
        lblTrouble.SetCaption(error.what());
    }
}

void SweepPanel::Clear() {
    if (Active()) return;
    run_.reset();
    file_ = {};
    lblTrouble.SetCaption("");
    ShowRun();
}

void SweepPanel::Tick(const std::string& trouble) {
    if (!Active()) return Setup.ShowPlan(events_.conditions(), needs_.instrument.Shared.SampleRate);
    seconds_ = std::chrono::duration<double>(needs_.loop.Now() - started_).count();
    ShowProgress();
    if (run_->Now() == RunMeasurement::State::kPaused)
        lblTrouble.SetCaption((trouble.empty() ? std::string("The devices do not run.") : trouble) +
                              " The run continues when they do.");
    else
        lblTrouble.SetCaption("");
}

const std::vector<RunPointResult>& SweepPanel::Results() const {
    static const std::vector<RunPointResult> none;
    return run_ ? run_->Results() : none;
}

const std::vector<RunPoint>& SweepPanel::Points() const {
    static const std::vector<RunPoint> none;
    return run_ ? run_->Points() : none;
}

// Shows everything after a point or a change of the state.
void SweepPanel::ShowRun() {
    const bool active = Active();
    cmdStart.SetCaption(active ? "Cancel" : "Start sweep");
    cmdStart.SetEnabled(!active || run_->Now() != RunMeasurement::State::kEnding);
    cmdClear.SetEnabled(!active && !Points().empty());
    Setup.SetLocked(active);
    Plot.Show({file_.plan.over, Points(), Results(), file_.limits, file_.plan.band.highHz, active});
    ShowVerdict();
    ShowProgress();
    ShowPoint();
    ShowInvalid();
}

void SweepPanel::ShowVerdict() {
    using Kind = RunVerdictChip::Kind;
    const RunVerdictChip chip = VerdictChipOf(file_.limits, Results(), Points().size(), Active());
    switch (chip.kind) {
        case Kind::kPass:
            Verdict.Show(StateChip::Kind::kValid, chip.text);
            break;
        case Kind::kFail:
            Verdict.Show(StateChip::Kind::kVoid, chip.text);
            break;
        case Kind::kNotComplete:
            Verdict.Show(StateChip::Kind::kUnsteady, chip.text);
            break;
        case Kind::kNone:
            Verdict.Show(StateChip::Kind::kOff, "");
            break;
    }
    Plot.SetConditions(LimitsText(file_.limits, Points(), Results()), chip.kind == Kind::kFail);
}

void SweepPanel::ShowProgress() {
    const std::size_t points = Points().size();
    const std::size_t done = Results().size();
    prgRun.SetValue(points == 0 ? 0.0F : static_cast<float>(done) / static_cast<float>(points));
    if (Active()) {
        lblProgress.SetCaption(RunningPointText(Points(), done, file_.plan.over));
        lblLeft.SetCaption(DurationText(run_->SecondsLeft()) + " left");
    } else {
        lblProgress.SetCaption(points == 0 ? std::string() : FinishedText(Results(), points, seconds_));
        lblLeft.SetCaption("");
    }
}

void SweepPanel::ShowPoint() {
    const auto cursor = Plot.Cursor();
    const RunPointResult* const result = cursor ? &Results()[*cursor] : nullptr;
    for (std::size_t i = 0; i < Rows.size(); ++i) {
        const Value value = result != nullptr ? ValueOf(*result, SeriesOf(i)) : Value();
        const ValueText text =
            TextOf(value, SeriesOf(i) == RunSeries::kLevel ? kLevelDecimals : kSeriesDecimals);
        Rows[i].value.SetCaption(value.value ? text.value : std::string());
        Rows[i].value.SetQuiet(value.atMost);
        Rows[i].spread.SetCaption(value.value ? text.spread : std::string());
    }
    lblAt.SetCaption(result != nullptr ? "At " + PositionText(result->point, file_.plan.over)
                                       : std::string());
    lblPlayed.SetCaption(result != nullptr
                             ? "played " + WithDigits(result->point.playedHz, kPlayedDigits) + " Hz"
                             : std::string());
    lblReason.SetCaption(result != nullptr ? result->fault.sentence : std::string());
}

void SweepPanel::ShowInvalid() {
    std::string lines;
    std::size_t count = 0;
    for (const RunPointResult& result : Results()) {
        if (result.Valid() || ++count > kMostInvalidLines) continue;
        lines += (lines.empty() ? "" : "\n") + PositionText(result.point, file_.plan.over) + ": " +
                 result.fault.code;
    }
    if (count > kMostInvalidLines) lines += "\nand " + std::to_string(count - kMostInvalidLines) + " more";
    lblInvalid.SetCaption(lines);
    lblInvalidCount.SetCaption(
        Points().empty() ? std::string() : std::to_string(count) + " of " + std::to_string(Points().size()));
}

ChipState SweepPanel::Chip() const {
    if (run_->Now() == RunMeasurement::State::kPaused) return {StateChip::Kind::kVoid, "PAUSED", 0};
    const int all = run_->Records() > kRecordsOfAPoint ? file_.plan.settling.records : kRecordsOfAPoint;
    return {StateChip::Kind::kSettling,
            "SETTLING " + std::to_string(run_->Records()) + " of " + std::to_string(all),
            static_cast<double>(run_->Records()) / all};
}

RunConditions SweepPanel::Conditions() const {
    return {rateHz_, Points().size(), stream_};
}

std::string SweepPanel::CopiedText() const {
    return Results().empty() ? std::string() : RunCsv(file_, Results(), Conditions());
}

// The points of the moment of the click are exported, whatever is measured while the user chooses a file.
void SweepPanel::Export() {
    const std::string csv = CopiedText();
    if (csv.empty()) {
        needs_.dialogs.Message("There is no run to export.", MessageIcon::kInformation);
        return;
    }
    std::string json;
    for (std::size_t i = 0; i < Results().size(); ++i)
        json += RunPointJson(Results()[i], i + 1, Conditions()) + '\n';
    const std::string path = AskForExport ? AskForExport() : std::string();
    if (path.empty()) return;
    try {
        needs_.files.WriteText(path, path.ends_with(".csv") ? csv : json);
    } catch (const FileError& error) {
        needs_.dialogs.Message(error.what(), MessageIcon::kCritical);
    }
}

}  // namespace sonavex
