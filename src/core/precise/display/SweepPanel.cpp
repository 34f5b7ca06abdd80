#include "core/precise/display/SweepPanel.h"

#include <algorithm>
#include <utility>

#include "core/precise/display/ReadingTexts.h"
#include "core/run/StoredRun.h"
#include "core/run/display/RunTexts.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kSeriesDecimals = 2;
constexpr int kLevelDecimals = 3;
constexpr int kPlayedDigits = 6;
constexpr std::size_t kMostInvalidLines = 8;
constexpr int kRecordsOfAPoint = 2;
constexpr std::size_t kHoursAndMinutes = 5;  // letters

RunSeries SeriesOf(std::size_t index) {
    return static_cast<RunSeries>(index);
}

std::string PositionText(const RunPoint& point, RunAxis over) {
    return over == RunAxis::kFrequency ? HertzText(point.requestedHz)
                                       : WithDigits(point.levelDbfs, kPlayedDigits) + " dBFS";
}

std::vector<std::string> StoredIds(const std::string& text) {
    std::vector<std::string> ids;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        std::string id = text.substr(begin, end - begin);
        if (std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(std::move(id));
        begin = end + 1;
    }
    return ids;
}

// Why the limits cannot judge these points; empty if they can.
std::string TroubleOf(const std::vector<RunLimit>& limits, const std::vector<RunPoint>& points) {
    try {
        RequireCoverage(limits, points);
    } catch (const RunError& error) {
        return error.what();
    }
    return {};
}

}  // namespace

SweepPanel::SweepPanel(const Needs& needs, Events events)
    : Setup(needs.instrument.Settings, [this] { TakeChange(); }),
      Kept([this] {
          ShowPlot();
          StoreKept();
      }),
      needs_(needs),
      events_(std::move(events)) {
    cmdClear.SetCaption("Clear");
    cmdKeep.SetCaption("Keep run");
    cmdStart.Click.Handle([this] { Active() ? Cancel() : Start(); });
    cmdRepeat.Click.Handle([this] { Repeat(); });
    cmdKeep.Click.Handle([this] { Keep(); });
    cmdPrint.SetCaption("Print\u2026");
    cmdPrint.Click.Handle([this] { PrintPage(); });
    cmdClear.Click.Handle([this] { Clear(); });
    Plot.CursorMoved.Handle([this] { ShowPoint(); });
    for (std::size_t i = 0; i < chkSeries.size(); ++i) {
        chkSeries[i].SetValue(1);
        chkSeries[i].Click.Handle([this, i] { Plot.SetVisible(SeriesOf(i), chkSeries[i].Checked()); });
        Rows[i].name.SetCaption(NameOf(SeriesOf(i)));
        Rows[i].unit.SetItems({UnitOf(SeriesOf(i))});
        Rows[i].unit.SetListIndex(0);
    }
    unrestored_ = StoredIds(needs_.instrument.Settings.Text(keys::kSweepKept));
    ShowRun();
}

bool SweepPanel::Begin(const std::function<void()>& begin) {
    ShowLimitTrouble("");
    if (!run_) {
        run_ = std::make_unique<RunMeasurement>(
            RunMeasurement::Needs{needs_.loop, needs_.instrument, needs_.measurement, needs_.background});
        run_->OnPoint = [this](const RunPointResult&) { TakeResults(); };
    }
    try {
        begin();
    } catch (const std::runtime_error& error) {
        lblTrouble.SetCaption(error.what());
        return false;
    }
    started_ = needs_.loop.Now();
    run_->OnChanged = [this] { TakeState(); };
    return true;
}

// The run before stays on the screen when the new one cannot be played.
void SweepPanel::Start() {
    const double rateHz = needs_.instrument.Shared.SampleRate;
    RunFile file;
    const bool begun = Begin([&] {
        file = Setup.Chosen(events_.conditions());
        RequireCoverage(file.limits, PointsOf(file.plan, rateHz));
        run_->RequirePlayable(file.plan);
        events_.begins();
        run_->Start(file.plan);
    });
    if (!begun) return;
    const StreamDetails stream =
        DetailsOf(needs_.instrument.Engine, needs_.instrument.Shared.SampleRate, needs_.simulated);
    const std::string time = DateAndTime(needs_.now());
    present_ = {std::move(file), run_->Points(), {}, {rateHz, run_->Points().size(), stream}, time, 0};
    preview_.clear();
    name_ = TimeOfDay(needs_.now()).substr(0, kHoursAndMinutes);
    secondsBefore_ = 0;
    ShowRun();
}

// Measures the void and the missing points of the present run.
void SweepPanel::Repeat() {
    if (Active() || PointsDone() == present_.points.size()) return;
    const bool begun = Begin([&] {
        RequireSameDevices();
        run_->RequireContinuable(present_);
        events_.begins();
        run_->Continue(present_);
    });
    if (!begun) return;
    secondsBefore_ = present_.seconds;
    ShowRun();
}

// The points of one run belong to one pair of devices.
void SweepPanel::RequireSameDevices() const {
    const StreamDetails now =
        DetailsOf(needs_.instrument.Engine, needs_.instrument.Shared.SampleRate, needs_.simulated);
    const auto& before = present_.conditions.stream;
    if (before && (before->input != now.input || before->output != now.output))
        throw RunError("The run was measured with " + before->input + " and " + before->output +
                       ". It can be continued only with these devices.");
}

void SweepPanel::Keep() {
    if (present_.results.empty()) return;
    const std::string others = OtherValuesText(present_.file.plan, present_.points);
    const std::string name = name_ + ", " + others;
    const std::string id = events_.kept ? events_.kept(present_, name) : std::string();
    Kept.Add(present_, name, id);
}

// Runs that are not restored yet stay stored.
void SweepPanel::StoreKept() {
    std::vector<std::string> ids = Kept.ShownIds();
    ids.insert(ids.end(), unrestored_.begin(), unrestored_.end());
    std::string text;
    for (const std::string& id : ids) text += (text.empty() ? "" : ",") + id;
    needs_.instrument.Settings.Save(keys::kSweepKept, text);
}

// The oldest one first, because each run is added at the top.
void SweepPanel::RestoreKept(const std::function<std::optional<Stored>(const std::string& id)>& find) {
    if (unrestored_.empty()) return;
    std::vector<std::string> ids = std::exchange(unrestored_, {});
    ids.resize(std::min(ids.size(), KeptRuns::kMost - Kept.Count()));
    for (auto id = ids.rbegin(); id != ids.rend(); ++id)
        if (std::optional<Stored> stored = find(*id)) Kept.Add(std::move(stored->run), stored->name, *id);
    StoreKept();
    try {
        Kept.Judge(Setup.Chosen(present_.file.plan).limits);
    } catch (const RunError&) {
        // The setup shows what is wrong with it.
    }
}

void SweepPanel::Open(MeasuredRun run, const std::string& name, const std::string& id) {
    if (Active() || !present_.points.empty()) return Kept.Add(std::move(run), name, id);
    run_.reset();
    present_ = std::move(run);
    preview_.clear();
    name_ = name;
    ShowLimitTrouble("");
    ShowRun();
}

void SweepPanel::TakeResults() {
    present_.results = run_->Results();
    ShowRun();
}

void SweepPanel::TakeState() {
    if (!run_->Preview().Points().empty()) preview_ = run_->Preview().Points();
    ShowRun();
    if (Active()) return;
    run_->OnChanged = nullptr;
    lblTrouble.SetCaption(run_->Trouble());
    events_.ended();
}

void SweepPanel::Cancel() {
    if (run_) run_->Cancel();
}

void SweepPanel::StoreInterrupted() const {
    if (events_.kept && !present_.results.empty()) events_.kept(present_, name_ + ", interrupted");
}

// A new limit judges the present and the kept runs again.
void SweepPanel::TakeChange() {
    Setup.ShowPlan(events_.conditions(), needs_.instrument.Shared.SampleRate);
    try {
        std::vector<RunLimit> limits = Setup.Chosen(present_.file.plan).limits;
        Kept.Judge(limits);
        ShowLimitTrouble(TroubleOf(limits, present_.points));
        if (!limitTrouble_.empty()) limits.clear();
        present_.file.limits = std::move(limits);
        ShowRun();
    } catch (const RunError& error) {
        lblTrouble.SetCaption(error.what());
    }
}

// A limit that does not cover the run judges nothing, and no other one in its place.
void SweepPanel::ShowLimitTrouble(const std::string& trouble) {
    limitTrouble_ = trouble;
    lblTrouble.SetCaption(trouble);
}

void SweepPanel::Clear() {
    if (Active()) return;
    run_.reset();
    present_ = {};
    preview_.clear();
    ShowLimitTrouble("");
    ShowRun();
}

void SweepPanel::Tick(const std::string& trouble) {
    if (!Active()) return Setup.ShowPlan(events_.conditions(), needs_.instrument.Shared.SampleRate);
    present_.seconds = secondsBefore_ + std::chrono::duration<double>(needs_.loop.Now() - started_).count();
    ShowProgress();
    if (run_->Now() == RunMeasurement::State::kPaused)
        lblTrouble.SetCaption((trouble.empty() ? std::string("The devices do not run.") : trouble) +
                              " The run continues when they do.");
    else
        lblTrouble.SetCaption(limitTrouble_.empty() ? PreviewTrouble() : limitTrouble_);
}

std::string SweepPanel::PreviewTrouble() const {
    const std::string& trouble = run_->Preview().Trouble();
    return trouble.empty() ? trouble : "No preview: " + trouble;
}

// Points of the present run that are not measured again.
std::size_t SweepPanel::PointsDone() const {
    if (Active()) return present_.points.size() - run_->PointsLeft();
    return static_cast<std::size_t>(std::count_if(present_.results.begin(), present_.results.end(),
                                                  [](const RunPointResult& r) { return r.Valid(); }));
}

// Shows everything after a point or a change of the state.
void SweepPanel::ShowRun() {
    const bool active = Active();
    const bool some = !present_.results.empty();
    cmdStart.SetCaption(active ? "Cancel" : "Start sweep");
    cmdStart.SetEnabled(!active || run_->Now() != RunMeasurement::State::kEnding);
    cmdRepeat.SetCaption(present_.results.size() < present_.points.size() ? "Continue" : "Repeat invalid");
    cmdRepeat.SetEnabled(!active && PointsDone() < present_.points.size());
    cmdKeep.SetEnabled(!active && some);
    cmdPrint.SetEnabled(!active && some);
    cmdClear.SetEnabled(!active && !present_.points.empty());
    Setup.SetLocked(active);
    ShowVerdict(Verdict, present_.file.limits, present_.results, present_.points.size(), active);
    ShowPlot();
    ShowProgress();
    ShowPoint();
    ShowInvalid();
}

// Without a present run the plot has the axis of the first kept one.
void SweepPanel::ShowPlot() {
    const std::vector<KeptRuns::Shown> shown = Kept.ShownRuns();
    RunPlot::Data data{present_.file.plan.over,
                       present_.points,
                       present_.results,
                       present_.file.limits,
                       present_.file.plan.band.highHz,
                       {},
                       {},
                       preview_};
    if (Active()) data.running = run_->Current();
    if (present_.points.empty() && !shown.empty()) data.over = shown.front().run->file.plan.over;
    for (const KeptRuns::Shown& kept : shown)
        if (kept.run->file.plan.over == data.over)
            data.kept.push_back({kept.letter, kept.run->points, kept.run->results});
    Plot.Show(data);
    Plot.SetConditions(LimitsText(present_.file.limits, present_.points, present_.results),
                       Verdict.State() == StateChip::Kind::kVoid);
}

void SweepPanel::ShowProgress() {
    const std::size_t points = present_.points.size();
    const std::size_t done = Active() ? PointsDone() : present_.results.size();
    prgRun.SetValue(points == 0 ? 0.0F : static_cast<float>(done) / static_cast<float>(points));
    if (Active()) {
        lblProgress.SetCaption(run_->Preview().Pending() ? "Preview"
                                                         : RunningPointText(present_.points, run_->Current(),
                                                                            present_.file.plan.over));
        lblLeft.SetCaption(DurationText(run_->SecondsLeft()) + " left");
    } else {
        lblProgress.SetCaption(points == 0 ? std::string()
                                           : FinishedText(present_.results, points, present_.seconds));
        lblLeft.SetCaption("");
    }
}

void SweepPanel::ShowPoint() {
    const auto cursor = Plot.Cursor();
    const RunPointResult* const result = cursor ? &present_.results[*cursor] : nullptr;
    for (std::size_t i = 0; i < Rows.size(); ++i) {
        const Value value = result != nullptr ? ValueOf(*result, SeriesOf(i)) : Value();
        const ValueText text =
            TextOf(value, SeriesOf(i) == RunSeries::kLevel ? kLevelDecimals : kSeriesDecimals);
        Rows[i].value.SetCaption(value.value ? text.value : std::string());
        Rows[i].value.SetQuiet(value.atMost);
        Rows[i].spread.SetCaption(value.value ? text.spread : std::string());
    }
    lblAt.SetCaption(result != nullptr ? "At " + PositionText(result->point, present_.file.plan.over)
                                       : std::string());
    lblPlayed.SetCaption(result != nullptr
                             ? "played " + WithDigits(result->point.playedHz, kPlayedDigits) + " Hz"
                             : std::string());
    lblReason.SetCaption(result != nullptr ? result->fault.sentence : std::string());
}

void SweepPanel::ShowInvalid() {
    std::string lines;
    std::size_t count = 0;
    for (const RunPointResult& result : present_.results) {
        if (result.Valid() || ++count > kMostInvalidLines) continue;
        lines += (lines.empty() ? "" : "\n") + PositionText(result.point, present_.file.plan.over) + ": " +
                 result.fault.code;
    }
    if (count > kMostInvalidLines) lines += "\nand " + std::to_string(count - kMostInvalidLines) + " more";
    lblInvalid.SetCaption(lines);
    lblInvalidCount.SetCaption(present_.points.empty()
                                   ? std::string()
                                   : std::to_string(count) + " of " + std::to_string(present_.points.size()));
}

ChipState SweepPanel::Chip() const {
    if (run_->Now() == RunMeasurement::State::kPaused) return {StateChip::Kind::kVoid, "PAUSED", 0};
    const PreciseMeter& meter = needs_.measurement.Meter;
    if (run_->Preview().Pending() && meter.Length() > 0)
        return {StateChip::Kind::kSettling, "PREVIEW",
                static_cast<double>(meter.Collected()) / static_cast<double>(meter.Length())};
    const int all =
        run_->Records() > kRecordsOfAPoint ? present_.file.plan.settling.records : kRecordsOfAPoint;
    return {StateChip::Kind::kSettling,
            "SETTLING " + std::to_string(run_->Records()) + " of " + std::to_string(all),
            static_cast<double>(run_->Records()) / all};
}

std::string SweepPanel::CopiedText() const {
    return present_.results.empty() ? std::string()
                                    : RunCsv(present_.file, present_.results, present_.conditions);
}

std::vector<std::string> SweepPanel::PageLines(const MeasuredRun& run) const {
    return RunPageLines(run, "Sonavex " + needs_.version);
}

std::string SweepPanel::Exported(const MeasuredRun& run, Format format) const {
    std::string lines;
    switch (format) {
        case Format::kCsv:
            return RunCsv(run.file, run.results, run.conditions);
        case Format::kLines:
            for (std::size_t i = 0; i < run.results.size(); ++i)
                lines +=
                    RunPointJson(run.results[i], i + 1, run.conditions, i == 0 ? &run.file : nullptr) + '\n';
            return lines;
        case Format::kRun:
            return StoredRunText(run) + '\n';
        case Format::kPicture:
            return DrawRun(ExportKind::kLargePicture, run, PageLines(run));
        case Format::kPdf:
            break;
    }
    return DrawRun(ExportKind::kPdf, run, PageLines(run));
}

// The points of the moment of the click are exported, whatever is measured while the user chooses a file.
void SweepPanel::Export() {
    if (present_.results.empty()) {
        needs_.dialogs.Message("There is no run to export.", MessageIcon::kInformation);
        return;
    }
    const MeasuredRun clicked = present_;
    const std::optional<ExportTarget> target = AskForExport ? AskForExport() : std::nullopt;
    if (!target) return;
    try {
        needs_.files.WriteText(target->path, Exported(clicked, target->format));
    } catch (const FileError& error) {
        needs_.dialogs.Message(error.what(), MessageIcon::kCritical);
    }
}

void SweepPanel::PrintPage() {
    if (Print && DrawRun && !present_.results.empty())
        Print(DrawRun(ExportKind::kLargePicture, present_, {}), PageLines(present_));
}

}  // namespace sonavex
