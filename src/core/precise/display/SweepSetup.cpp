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

// Of each axis: frequency, level.
constexpr std::array<SettingsKey, 2> kSweepFrom{
    {{keys::kAnalyzer, "Sweep From", "20"}, {keys::kAnalyzer, "Sweep Lowest Level", "-60"}}};
constexpr std::array<SettingsKey, 2> kSweepTo{
    {{keys::kAnalyzer, "Sweep To", "20000"}, {keys::kAnalyzer, "Sweep Highest Level", "-1"}}};
constexpr std::array<SettingsKey, 2> kSweepAmount{
    {{keys::kAnalyzer, "Sweep Points", "6"}, {keys::kAnalyzer, "Sweep Level Points", "2"}}};
constexpr std::array<SettingsKey, 2> kSweepSpacing{
    {{keys::kAnalyzer, "Sweep Spacing", "0"}, {keys::kAnalyzer, "Sweep Level Spacing", "0"}}};
constexpr std::array<SettingsKey, 2> kSweepOther{
    {{keys::kAnalyzer, "Sweep Levels", "-1"}, {keys::kAnalyzer, "Sweep Tones", "1000"}}};
constexpr SettingsKey kSweepOver{keys::kAnalyzer, "Sweep Over", "0"};
constexpr SettingsKey kSweepSettleLevel{keys::kAnalyzer, "Sweep Settling Level", "0.01"};
constexpr SettingsKey kSweepSettleThdn{keys::kAnalyzer, "Sweep Settling THD+N", "0.3"};
constexpr SettingsKey kSweepLimited{keys::kAnalyzer, "Sweep Limited", "0"};
constexpr SettingsKey kSweepLimitOf{keys::kAnalyzer, "Sweep Limit Of", "0"};
constexpr SettingsKey kSweepLimit{keys::kAnalyzer, "Sweep Limit", "-90"};

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
    chkLimit.Click.Handle([this] { Change(); });
    cmbLimitOf.Click.Handle([this] { Change(); });
    txtLimit.Leave.Handle([this] { TakeLimit(); });
    cmdLoadLimit.Click.Handle([this] { LoadTable(); });
    Load();
}

void SweepSetup::Load() {
    for (std::size_t i = 0; i < axes_.size(); ++i) {
        axes_[i] = {StoredEntry(settings_, kSweepFrom[i]), StoredEntry(settings_, kSweepTo[i]),
                    StoredEntry(settings_, kSweepAmount[i]), StoredIndex(settings_, kSweepSpacing[i]),
                    ListIn(settings_.Text(kSweepOther[i]), "")};
        if (axes_[i].other.empty()) axes_[i].other = ListIn(kSweepOther[i].fallback, "");
    }
    settleLevelDb_ = StoredEntry(settings_, kSweepSettleLevel);
    settleThdnDb_ = StoredEntry(settings_, kSweepSettleThdn);
    limitDb_ = StoredEntry(settings_, kSweepLimit);
    cmbOver.SetListIndex(StoredIndex(settings_, kSweepOver));
    chkLimit.SetValue(static_cast<std::int16_t>(StoredIndex(settings_, kSweepLimited)));
    cmbLimitOf.SetListIndex(StoredIndex(settings_, kSweepLimitOf));
    txtLimit.SetText(EntryText(limitDb_));
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
    table_.reset();
    lblLimit.SetCaption("");
    Change();
}

void SweepSetup::LoadTable() {
    if (!AskForTable) return;
    const std::optional<NamedText> chosen = AskForTable();
    if (!chosen) return;
    try {
        table_ = ParseLimitTable(chosen->text);
        lblLimit.SetCaption(chosen->name);
        chkLimit.SetValue(1);
        Change();
    } catch (const RunError& error) {
        lblLimit.SetCaption(error.what());
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
                           ", 2 records each: about " +
                           DurationText(EstimatedSeconds(run.plan, points.size(), rateHz)));
    } catch (const RunError& error) {
        lblPlan.SetCaption(error.what());
    }
}

void SweepSetup::SetLocked(bool locked) {
    for (ComboBox* const box : {&cmbOver, &cmbSpacing}) box->SetEnabled(!locked);
    for (TextBox* const box : {&txtFrom, &txtTo, &txtAmount, &txtOther, &txtSettleLevel, &txtSettleThdn})
        box->SetEnabled(!locked);
}

void SweepSetup::Change() {
    Store();
    if (onChanged_) onChanged_();
}

void SweepSetup::Store() {
    for (std::size_t i = 0; i < axes_.size(); ++i) {
        settings_.Save(kSweepFrom[i], EntryText(axes_[i].from));
        settings_.Save(kSweepTo[i], EntryText(axes_[i].to));
        settings_.Save(kSweepAmount[i], EntryText(axes_[i].amount));
        settings_.Save(kSweepSpacing[i], std::to_string(axes_[i].spacing));
        settings_.Save(kSweepOther[i], ListText(axes_[i].other));
    }
    settings_.Save(kSweepOver, std::to_string(cmbOver.ListIndex()));
    settings_.Save(kSweepSettleLevel, EntryText(settleLevelDb_));
    settings_.Save(kSweepSettleThdn, EntryText(settleThdnDb_));
    settings_.Save(kSweepLimited, chkLimit.Checked() ? "1" : "0");
    settings_.Save(kSweepLimitOf, std::to_string(cmbLimitOf.ListIndex()));
    settings_.Save(kSweepLimit, EntryText(limitDb_));
}

}  // namespace sonavex
