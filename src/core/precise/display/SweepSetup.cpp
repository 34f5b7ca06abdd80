#include "core/precise/display/SweepSetup.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "core/precise/display/ReadingTexts.h"
#include "core/run/RunMeasurement.h"
#include "core/run/display/RunTexts.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr int kSweepDigits = 9;
constexpr double kLargestEntry = 1e6;
constexpr double kLineFromHz = 20.0;
constexpr double kLineToHz = 20000.0;
constexpr const char* kOwnLine = "own line";
constexpr char kStoredLineEnd = ';';

std::string EntryText(double number) {
    return WithDigits(number, kSweepDigits);
}

bool Usable(const std::optional<double>& number) {
    return number && std::fabs(*number) <= kLargestEntry;
}

double StoredEntry(const Settings& settings, const SettingsKey& key) {
    const std::optional<double> number = QuantityIn(settings.Text(key), "");
    return Usable(number) ? *number : QuantityIn(key.fallback, "").value_or(0.0);
}

int StoredIndex(const Settings& settings, const SettingsKey& key) {
    return settings.Text(key) == "1" ? 1 : 0;
}

// Numbers that commas separate; empty if one of them is none.
std::vector<double> ListIn(std::string_view text, const char* unit) {
    std::vector<double> list;
    while (true) {
        const std::size_t comma = text.find(',');
        const std::optional<double> number = QuantityIn(text.substr(0, comma), unit);
        if (!Usable(number)) return {};
        list.push_back(*number);
        if (comma == std::string_view::npos) return list;
        text.remove_prefix(comma + 1);
    }
}

std::string ListText(const std::vector<double>& list) {
    std::string text;
    for (const double number : list) text += (text.empty() ? "" : ", ") + EntryText(number);
    return text;
}

// Takes the text if it is a number, and shows what counts.
void TakeEntry(TextBox& box, double& number, const char* unit) {
    const std::optional<double> typed = QuantityIn(box.Text(), unit);
    if (Usable(typed)) number = *typed;
    box.SetText(EntryText(number));
}

}  // namespace

SweepSetup::SweepSetup(Settings& settings, std::function<void()> onChanged)
    : settings_(settings), onChanged_(std::move(onChanged)) {
    cmbOver.SetItems({"Frequency", "Level"});
    cmbLimitOf.SetItems({"THD", "THD+N"});
    cmbOver.SetListIndex(0);
    cmbLimitOf.SetListIndex(0);
    cmdEditLimit.SetCaption("Edit line\u2026");
    cmdLoadLimit.SetCaption("Load CSV\u2026");
    cmbOver.Click.Handle([this] {
        ShowAxis();
        Change();
    });
    cmbSpacing.Click.Handle([this] {
        Shown().spacing = cmbSpacing.ListIndex();
        Change();
    });
    for (TextBox* const box : {&txtFrom, &txtTo, &txtAmount, &txtOther, &txtSettleLevel, &txtSettleThdn})
        box->Leave.Handle([this] { TakeTexts(); });
    chkPreview.Click.Handle([this] { Change(); });
    chkLimit.Click.Handle([this] { Change(); });
    cmbLimitOf.Click.Handle([this] { Change(); });
    txtLimit.Leave.Handle([this] { TakeLimit(); });
    cmdEditLimit.Click.Handle([this] { EditTable(); });
    cmdLoadLimit.Click.Handle([this] { LoadTable(); });
    Load();
}

void SweepSetup::Load() {
    for (std::size_t i = 0; i < axes_.size(); ++i) {
        axes_[i] = {StoredEntry(settings_, keys::kSweepFrom[i]), StoredEntry(settings_, keys::kSweepTo[i]),
                    StoredEntry(settings_, keys::kSweepAmount[i]),
                    StoredIndex(settings_, keys::kSweepSpacing[i]),
                    ListIn(settings_.Text(keys::kSweepOther[i]), "")};
        if (axes_[i].other.empty()) axes_[i].other = ListIn(keys::kSweepOther[i].fallback, "");
    }
    settleLevelDb_ = StoredEntry(settings_, keys::kSweepSettleLevel);
    settleThdnDb_ = StoredEntry(settings_, keys::kSweepSettleThdn);
    limitDb_ = StoredEntry(settings_, keys::kSweepLimit);
    cmbOver.SetListIndex(StoredIndex(settings_, keys::kSweepOver));
    chkLimit.SetValue(static_cast<std::int16_t>(StoredIndex(settings_, keys::kSweepLimited)));
    cmbLimitOf.SetListIndex(StoredIndex(settings_, keys::kSweepLimitOf));
    chkPreview.SetValue(static_cast<std::int16_t>(StoredIndex(settings_, keys::kSweepPreview)));
    txtLimit.SetText(EntryText(limitDb_));
    LoadStoredTable();
    ShowAxis();
}

void SweepSetup::ShowAxis() {
    const Axis& axis = Shown();
    const bool frequency = OverFrequency();
    cmbSpacing.SetItems({frequency ? "an octave" : "dB steps", "in all"});
    cmbSpacing.SetListIndex(axis.spacing);
    txtFrom.SetText(EntryText(axis.from));
    txtTo.SetText(EntryText(axis.to));
    txtAmount.SetText(EntryText(axis.amount));
    txtOther.SetText(ListText(axis.other));
    txtSettleLevel.SetText(EntryText(settleLevelDb_));
    txtSettleThdn.SetText(EntryText(settleThdnDb_));
    ShowPreview();
}

void SweepSetup::TakeTexts() {
    Axis& axis = Shown();
    TakeEntry(txtFrom, axis.from, AxisUnit());
    TakeEntry(txtTo, axis.to, AxisUnit());
    TakeEntry(txtAmount, axis.amount, "");
    TakeEntry(txtSettleLevel, settleLevelDb_, "dB");
    TakeEntry(txtSettleThdn, settleThdnDb_, "dB");
    if (const std::vector<double> typed = ListIn(txtOther.Text(), OtherUnit()); !typed.empty())
        axis.other = typed;
    txtOther.SetText(ListText(axis.other));
    Change();
}

// A typed level takes the place of the table.
void SweepSetup::TakeLimit() {
    const double before = limitDb_;
    TakeEntry(txtLimit, limitDb_, "dB");
    if (limitDb_ == before) return;
    SetTable("", std::nullopt);
    Change();
}

void SweepSetup::SetTable(const std::string& name, std::optional<LimitTable> table) {
    table_ = std::move(table);
    tableName_ = name;
    lblLimit.SetCaption(name);
}

// A table that cannot be used leaves no line: the one before would judge in its place.
void SweepSetup::LoadTable() {
    if (!AskForTable) return;
    try {
        if (const std::optional<NamedText> chosen = AskForTable()) TakeTable(*chosen);
    } catch (const RunError& error) {
        SetTable("", std::nullopt);
        chkLimit.SetValue(0);
        lblLimit.SetCaption(error.what());
        Change();
    }
}

// A line that cannot be used leaves the one before.
void SweepSetup::EditTable() {
    if (!AskForLine) return;
    const LimitTable present = table_ ? *table_ : LimitTable{std::nullopt, LimitCurve(limitDb_)};
    try {
        if (const std::optional<std::string> text = AskForLine(LimitTableText(present, LineEnds())))
            TakeTable({kOwnLine, *text});
    } catch (const RunError& error) {
        lblLimit.SetCaption(error.what());
    }
}

void SweepSetup::TakeTable(const NamedText& table) {
    SetTable(table.name, ParseLimitTable(table.text));
    chkLimit.SetValue(1);
    Change();
}

// The frequencies at which a constant limit becomes a line of two rows.
std::array<double, 2> SweepSetup::LineEnds() const {
    const Axis& axis = axes_[0];
    const auto [low, high] = std::minmax(axis.from, axis.to);
    return low < high ? std::array{low, high} : std::array{kLineFromHz, kLineToHz};
}

void SweepSetup::LoadStoredTable() {
    std::string text = settings_.Text(keys::kSweepLimitTable);
    if (text.empty()) return;
    std::replace(text.begin(), text.end(), kStoredLineEnd, '\n');
    try {
        SetTable(settings_.Text(keys::kSweepLimitName), ParseLimitTable(text));
    } catch (const RunError&) {
        SetTable("", std::nullopt);
    }
}

RunRange SweepSetup::Range() const {
    using Spacing = RunRange::Spacing;
    const Axis& axis = Shown();
    if (axis.spacing == 0)
        return {axis.from, axis.to, OverFrequency() ? Spacing::kPerOctave : Spacing::kStep, axis.amount};
    return {axis.from, axis.to, OverFrequency() ? Spacing::kLogarithmicPoints : Spacing::kLinearPoints,
            axis.amount};
}

RunFile SweepSetup::Chosen(const RunPlan& conditions) const {
    RunFile run{conditions, {}};
    run.plan.over = OverFrequency() ? RunAxis::kFrequency : RunAxis::kLevel;
    run.plan.frequenciesHz = OverFrequency() ? RunValues(Range()) : RunValues(Shown().other);
    run.plan.levelsDbfs = OverFrequency() ? RunValues(Shown().other) : RunValues(Range());
    run.plan.settling.levelDb = settleLevelDb_;
    run.plan.settling.thdnDb = settleThdnDb_;
    run.plan.preview = OverFrequency() && chkPreview.Checked();
    if (!chkLimit.Checked()) return run;
    using Kind = RunQuantity::Kind;
    const RunQuantity quantity{cmbLimitOf.ListIndex() == kLimitThd ? Kind::kThd : Kind::kThdn};
    run.limits = {table_ ? RunLimit{quantity, table_->atLeast, table_->atMost}
                         : RunLimit{quantity, std::nullopt, LimitCurve(limitDb_)}};
    return run;
}

void SweepSetup::ShowPlan(const RunPlan& conditions, double rateHz) {
    try {
        const RunFile run = Chosen(conditions);
        const std::vector<RunPoint> points = PointsOf(run.plan, rateHz);
        RequireCoverage(run.limits, points);
        lblPlan.SetCaption(std::to_string(points.size()) + (points.size() == 1 ? " point" : " points") +
                           (run.plan.preview ? " and a preview" : "") + ", 2 records each: about " +
                           DurationText(EstimatedSeconds(run.plan, points.size(), rateHz)));
    } catch (const RunError& error) {
        lblPlan.SetCaption(error.what());
    }
}

void SweepSetup::SetLocked(bool locked) {
    for (ComboBox* const box : {&cmbOver, &cmbSpacing}) box->SetEnabled(!locked);
    for (TextBox* const box : {&txtFrom, &txtTo, &txtAmount, &txtOther, &txtSettleLevel, &txtSettleThdn})
        box->SetEnabled(!locked);
    locked_ = locked;
    ShowPreview();
}

void SweepSetup::ShowPreview() {
    chkPreview.SetEnabled(OverFrequency() && !locked_);
}

void SweepSetup::Change() {
    Store();
    if (onChanged_) onChanged_();
}

void SweepSetup::Store() {
    for (std::size_t i = 0; i < axes_.size(); ++i) {
        settings_.Save(keys::kSweepFrom[i], EntryText(axes_[i].from));
        settings_.Save(keys::kSweepTo[i], EntryText(axes_[i].to));
        settings_.Save(keys::kSweepAmount[i], EntryText(axes_[i].amount));
        settings_.Save(keys::kSweepSpacing[i], std::to_string(axes_[i].spacing));
        settings_.Save(keys::kSweepOther[i], ListText(axes_[i].other));
    }
    settings_.Save(keys::kSweepOver, std::to_string(cmbOver.ListIndex()));
    settings_.Save(keys::kSweepSettleLevel, EntryText(settleLevelDb_));
    settings_.Save(keys::kSweepSettleThdn, EntryText(settleThdnDb_));
    settings_.Save(keys::kSweepPreview, chkPreview.Checked() ? "1" : "0");
    settings_.Save(keys::kSweepLimited, chkLimit.Checked() ? "1" : "0");
    settings_.Save(keys::kSweepLimitOf, std::to_string(cmbLimitOf.ListIndex()));
    settings_.Save(keys::kSweepLimit, EntryText(limitDb_));
    std::string table = table_ ? LimitTableText(*table_, LineEnds()) : std::string();
    std::replace(table.begin(), table.end(), '\n', kStoredLineEnd);
    settings_.Save(keys::kSweepLimitTable, table);
    settings_.Save(keys::kSweepLimitName, tableName_);
}

}  // namespace sonavex
