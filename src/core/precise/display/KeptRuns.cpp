#include "core/precise/display/KeptRuns.h"

#include <algorithm>
#include <utility>

#include "core/run/display/RunTexts.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr char kFirstLetter = 'B';  // the present run is A
constexpr std::size_t kMostOthers = 3;
constexpr int kOtherDigits = 5;

std::string SourceText(const RunConditions& conditions) {
    std::string text = WithDecimals(conditions.rateHz, 0) + " Hz";
    if (!conditions.stream) return text;
    return conditions.stream->input + ", " + text + ", " + std::to_string(conditions.stream->inputBits) +
           " bit";
}

}  // namespace

KeptRuns::KeptRuns(std::function<void()> onChanged) : onChanged_(std::move(onChanged)) {
    cmdRename.SetCaption("Rename\u2026");
    cmdRemove.SetCaption("Remove");
    for (std::size_t i = 0; i < kMost; ++i) {
        Rows[i].optSelect.Click.Handle([this, i] { Select(i); });
        Rows[i].txtName.Leave.Handle([this, i] { Rename(i); });
        Rows[i].chkShown.Click.Handle([this, i] {
            if (i >= runs_.size()) return;
            runs_[i].shown = Rows[i].chkShown.Checked();
            onChanged_();
        });
    }
    cmdRename.Click.Handle([this] { Rows[selected_].txtName.SetFocus(); });
    cmdRemove.Click.Handle([this] { Remove(); });
    ShowRows();
}

char KeptRuns::FreeLetter() const {
    char letter = kFirstLetter;
    const auto taken = [&](const Kept& kept) { return kept.letter == letter; };
    while (std::any_of(runs_.begin(), runs_.end(), taken)) ++letter;
    return letter;
}

void KeptRuns::Add(MeasuredRun run, const std::string& name, const std::string& id) {
    if (runs_.size() == kMost) runs_.pop_back();
    runs_.insert(runs_.begin(), {std::move(run), name, id, FreeLetter(), true});
    selected_ = 0;
    ShowRows();
    onChanged_();
}

void KeptRuns::Judge(const std::vector<RunLimit>& limits) {
    limits_ = limits;
    ShowRows();
}

std::vector<KeptRuns::Shown> KeptRuns::ShownRuns() const {
    std::vector<Shown> shown;
    for (const Kept& kept : runs_)
        if (kept.shown) shown.push_back({kept.letter, &kept.run});
    return shown;
}

std::vector<std::string> KeptRuns::ShownIds() const {
    std::vector<std::string> ids;
    for (const Kept& kept : runs_)
        if (kept.shown && !kept.id.empty()) ids.push_back(kept.id);
    return ids;
}

void KeptRuns::Select(std::size_t row) {
    selected_ = row;
    ShowRows();
}

void KeptRuns::Remove() {
    if (runs_.empty()) return;
    runs_.erase(runs_.begin() + static_cast<std::ptrdiff_t>(selected_));
    if (selected_ > 0 && selected_ >= runs_.size()) --selected_;
    ShowRows();
    onChanged_();
}

// A run always has a name.
void KeptRuns::Rename(std::size_t row) {
    if (row >= runs_.size()) return;
    const std::string name = Rows[row].txtName.Text();
    const bool renamed = !name.empty() && name != runs_[row].name;
    if (renamed) runs_[row].name = name;
    ShowRow(row);
    if (renamed && OnRenamed) OnRenamed(runs_[row].id, name);
}

void KeptRuns::ShowRows() {
    for (std::size_t i = 0; i < kMost; ++i) ShowRow(i);
    cmdRename.SetEnabled(!runs_.empty());
    cmdRemove.SetEnabled(!runs_.empty());
}

void KeptRuns::ShowRow(std::size_t row) {
    Row& shown = Rows[row];
    shown.optSelect.SetValue(row == selected_ && row < runs_.size());
    if (row >= runs_.size()) {
        shown.lblLetter.SetCaption("");
        shown.txtName.SetText("");
        shown.lblConditions.SetCaption("");
        shown.Verdict.Show(StateChip::Kind::kOff, "");
        return;
    }
    const Kept& kept = runs_[row];
    shown.lblLetter.SetCaption(std::string(1, kept.letter));
    shown.txtName.SetText(kept.name);
    shown.lblConditions.SetCaption(SourceText(kept.run.conditions));
    shown.chkShown.SetValue(kept.shown ? 1 : 0);
    std::vector<RunLimit> limits = limits_;
    try {
        RequireCoverage(limits, kept.run.points);
    } catch (const RunError&) {
        limits.clear();
    }
    ShowVerdict(shown.Verdict, limits, kept.run.results, kept.run.points.size(), false);
}

std::string OtherValuesText(const RunPlan& plan, std::span<const RunPoint> points) {
    const bool overFrequency = plan.over == RunAxis::kFrequency;
    std::vector<double> others;
    for (const RunPoint& point : points) {
        const double other = overFrequency ? point.levelDbfs : point.requestedHz;
        if (std::find(others.begin(), others.end(), other) == others.end()) others.push_back(other);
    }
    if (!overFrequency && others.size() == 1) return HertzText(others.front());
    std::string text;
    for (std::size_t i = 0; i < std::min(others.size(), kMostOthers); ++i)
        text += (text.empty() ? "" : ", ") + WithDigits(others[i], kOtherDigits);
    if (others.size() > kMostOthers) text += " \u2026";
    return text + (overFrequency ? " dBFS" : " Hz");
}

void ShowVerdict(StateChip& chip, std::span<const RunLimit> limits, std::span<const RunPointResult> results,
                 std::size_t points, bool running) {
    using Kind = RunVerdictChip::Kind;
    const RunVerdictChip verdict = VerdictChipOf(limits, results, points, running);
    switch (verdict.kind) {
        case Kind::kPass:
            return chip.Show(StateChip::Kind::kValid, verdict.text);
        case Kind::kFail:
            return chip.Show(StateChip::Kind::kVoid, verdict.text);
        case Kind::kNotComplete:
            return chip.Show(StateChip::Kind::kUnsteady, verdict.text);
        case Kind::kNone:
            return chip.Show(StateChip::Kind::kOff, "");
    }
}

}  // namespace sonavex
