#include "support/PanelModel.h"

#include <algorithm>
#include <cmath>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

using Kind = UserAction::Kind;

constexpr std::int64_t kMillisecond = 1'000'000;

std::int32_t Nearest(const std::string& text, std::int32_t low, std::int32_t high) {
    return static_cast<std::int32_t>(std::nearbyint(std::clamp<double>(CDbl(text), low, high)));
}

bool Within(const std::string& text, double low, double high) {
    return IsNumeric(text) && CDbl(text) >= low && CDbl(text) <= high;
}

}  // namespace

void PanelModel::ShowStart() {
    startText = std::to_string(startHz);
    Current().StartFrequency = startHz;
    if (generator.count != 1) return;
    Current().Frequency = startHz;
    Current().LastFrequency = 0.0;
}

void PanelModel::ShowEnd() {
    endText = std::to_string(endHz);
    Current().EndFrequency = endHz;
}

void PanelModel::ShowSweep() {
    sweepText = std::to_string(sweepMs);
    Current().SweepTime = sweepMs;
    endUsable = sweepMs != 0;
}

void PanelModel::NewStep() {
    ToneRecord& tone = Current();
    if (tone.Sweep && tone.SweepTime != 0)
        tone.LoopIncrement = (tone.EndFrequency - tone.StartFrequency) / tone.SweepTime;
}

void PanelModel::LetGoStart() {
    startText = std::to_string(startHz);
    Current().StartFrequency = Current().SweepFrequency = startHz;
    NewStep();
}

void PanelModel::LetGoSweep() {
    ShowSweep();
    loopUsable = sweepMs != 0;
    ToneRecord& tone = Current();
    const bool swept = tone.Sweep;
    tone.Sweep = sweepMs != 0;
    NewStep();
    if (playing != Playing::kCurrent || tone.Sweep == swept) return;
    SetTicking(tone.Sweep);
    tone.Frequency = tone.SweepFrequency = tone.StartFrequency;
    tone.LastFrequency = 0.0;
}

bool PanelModel::EntriesAreValid() const {
    if (!Within(startText, 20, Rate() / 2)) return false;
    if (sweepMs > 0 && !Within(endText, 20, Rate() / 2)) return false;
    return Within(sweepText, -1e300, 10000);
}

void PanelModel::TakeControls() {
    ToneRecord& tone = Current();
    tone.StartFrequency = startHz;
    tone.EndFrequency = endHz;
    tone.SweepTime = sweepMs;
    tone.Sweep = sweepMs != 0;
    tone.Loop = loopChecked;
    tone.WaveType = static_cast<std::int16_t>(type);
}

// Storing the current signal leaves a hundredth of its step in its record.
void PanelModel::Store() {
    TakeControls();
    ToneRecord& tone = Current();
    tone.LoopIncrement = sweepMs != 0 ? (endHz - startHz) / (sweepMs * 100.0) : 0.0;
}

void PanelModel::SetTicking(bool on) {
    if (on && !ticking) nextTick_ = now_ + kMillisecond;
    ticking = on;
}

void PanelModel::StopPlaying() {
    if (!sweeping) return;
    running = sweeping = false;
    state = 8;
    SetTicking(false);
    playing = Playing::kNothing;
    endUsable = loopUsable = sweepMs != 0;
    addUsable = list.size() < 8;
    ShowSelection();
}

void PanelModel::Start(ToneRecord& tone) const {
    tone.Frequency = tone.SweepFrequency = tone.LastFrequency = tone.StartFrequency;
    tone.Phase = tone.SampleCount = 0.0;
    generator.SetIncrements(tone);
}

void PanelModel::StartCurrent() {
    generator.count = 1;
    TakeControls();
    SetTicking(Current().Sweep);
    Current().LoopIncrement = 0.0;
    NewStep();
    Start(Current());
    running = sweeping = true;
    playing = Playing::kCurrent;
    endUsable = loopUsable = sweepMs != 0;
    addUsable = false;
    ShowSelection();
}

bool PanelModel::AboveHalfTheRate(const Entry& entry) const {
    const ToneRecord& tone = entry.stored;
    return tone.StartFrequency > Rate() / 2 || (tone.Sweep && tone.EndFrequency > Rate() / 2);
}

void PanelModel::StartMemory() {
    for (const Entry& entry : list)
        if (entry.selected && AboveHalfTheRate(entry)) return;
    generator.count = 0;
    for (const Entry& entry : list) {
        if (!entry.selected) continue;
        ToneRecord& tone = generator.tones[static_cast<std::size_t>(generator.count++)];
        tone = entry.stored;
        if (tone.Sweep) SetTicking(true);
        Start(tone);
    }
    running = sweeping = true;
    playing = Playing::kMemory;
    endUsable = loopUsable = addUsable = false;
    ShowSelection();
}

void PanelModel::ShowSelection() {
    const bool any = std::any_of(list.begin(), list.end(), [](const Entry& entry) { return entry.selected; });
    removeUsable = playing == Playing::kNothing && any;
    memoryUsable = removeUsable || playing == Playing::kMemory;
}

void PanelModel::Add() {
    if (!EntriesAreValid()) return;
    ShowStart();
    ShowSweep();
    ShowEnd();
    const bool sweep = sweepMs != 0;
    const bool loop = loopChecked && loopUsable;
    static constexpr std::array<const char*, 4> kNames{"Sine", "Square", "Triangle", "Sawtooth"};
    Entry entry;
    entry.line = std::to_string(startHz) + "Hz / " + (sweep ? std::to_string(endHz) + "Hz  / " : "NA / ") +
                 kNames[static_cast<std::size_t>(type)] + " / " +
                 (sweep ? std::to_string(sweepMs) + "ms / " : "NA / ") + (loop ? "Loop" : "No Loop");
    entry.stored.WaveType = static_cast<std::int16_t>(type);
    entry.stored.StartFrequency = startHz;
    entry.stored.EndFrequency = sweep ? endHz : 0.0;
    entry.stored.SweepTime = sweepMs;
    entry.stored.Sweep = sweep;
    entry.stored.Loop = loop;
    // Memory tones are played from the settings, which hold 15 digits.
    if (sweep) entry.stored.LoopIncrement = CDbl(CStr(static_cast<double>(endHz - startHz) / sweepMs));
    list.push_back(entry);
    if (list.size() >= 8) addUsable = false;
    Store();
    generator.count = static_cast<std::int32_t>(list.size()) - 1;
}

void PanelModel::Remove() {
    std::erase_if(list, [](const Entry& entry) { return entry.selected; });
    addUsable = list.size() < 8;
    ShowSelection();
    Store();
}

void PanelModel::Apply(const UserAction& action) {
    switch (action.kind) {
        case Kind::kType:
            if (SignalUsable()) Current().WaveType = static_cast<std::int16_t>(type = action.value);
            return;
        case Kind::kStartSlider:
        case Kind::kStartText:
            if (SignalUsable()) SetStart(action);
            return;
        case Kind::kEndSlider:
        case Kind::kEndText:
            if (endUsable) SetEnd(action);
            return;
        case Kind::kSweepSlider:
        case Kind::kSweepText:
            if (SignalUsable()) SetSweep(action);
            return;
        case Kind::kLevelSlider:
            level = std::clamp(action.value, -9600, 0);
            return;
        case Kind::kLoop:
            if (loopUsable) Current().Loop = loopChecked = action.value != 0;
            return;
        case Kind::kSelectTone:
            if (playing == Playing::kNothing) Select(action);
            return;
        default:
            Press(action.kind);
    }
}

void PanelModel::Press(Kind button) {
    if (button == Kind::kAdd && addUsable) Add();
    if (button == Kind::kRemove && removeUsable) Remove();
    const bool current = button == Kind::kStartCurrent && SignalUsable() && !stimulusPlays;
    const bool memory = button == Kind::kStartMemory && memoryUsable && !stimulusPlays;
    if ((current || memory) && sweeping)
        StopPlaying();
    else if (current && EntriesAreValid())
        StartCurrent();
    else if (memory)
        StartMemory();
}

void PanelModel::Select(const UserAction& action) {
    if (list.empty()) return;
    list[static_cast<std::size_t>(action.value) % list.size()].selected = action.leaves;
    ShowSelection();
}

// The frequency requested by a slider or a text; nothing for a text that is not a number.
std::optional<std::int32_t> PanelModel::Asked(const UserAction& action) const {
    if (action.kind == Kind::kStartSlider || action.kind == Kind::kEndSlider)
        return std::clamp(action.value, 1, Rate() / 2);
    if (!action.text || !IsNumeric(*action.text)) return std::nullopt;
    return Nearest(*action.text, 1, Rate() / 2);
}

void PanelModel::SetStart(const UserAction& action) {
    if (action.text) startText = *action.text;
    if (const auto hertz = Asked(action)) {
        startHz = *hertz;
        ShowStart();
    }
    if (action.leaves) LetGoStart();
}

void PanelModel::SetEnd(const UserAction& action) {
    if (action.text) endText = *action.text;
    if (const auto hertz = Asked(action)) {
        endHz = *hertz;
        ShowEnd();
    }
    if (!action.leaves) return;
    ShowEnd();
    NewStep();
}

void PanelModel::SetSweep(const UserAction& action) {
    if (action.kind == Kind::kSweepSlider) sweepMs = std::clamp(action.value, 0, 10000);
    if (action.text) sweepMs = IsNumeric(*action.text) ? Nearest(*action.text, 0, 10000) : 0;
    if (action.kind == Kind::kSweepSlider || action.text) ShowSweep();
    if (action.text) ShowEnd();
    if (action.leaves) LetGoSweep();
}

void PanelModel::FillBlock() {
    if (running) generator.SkipBlock();
}

void PanelModel::Pass(std::chrono::nanoseconds time) {
    const std::int64_t end = now_ + time.count();
    for (; ticking && nextTick_ <= end; nextTick_ += kMillisecond) {
        now_ = nextTick_;
        generator.Tick(sweeping);
    }
    now_ = end;
}

void PanelModel::FollowRate(std::int32_t rateHz) {
    generator.rateHz = rateHz;
    const auto limit = [this](std::int32_t& value) {
        const std::int32_t before = value;
        value = std::min(value, Rate() / 2);
        return value != before;
    };
    if (limit(startHz)) ShowStart();
    if (limit(endHz)) ShowEnd();
}

void PanelModel::ProgramRestarts(std::int32_t rateHz) {
    // Playing stops. The end of the program stores the controls and the list.
    const double storedStep = sweepMs != 0 ? (endHz - startHz) / (sweepMs * 100.0) : 0.0;
    generator = {};
    generator.rateHz = rateHz;
    running = sweeping = false;
    SetTicking(false);
    state = 0;
    playing = Playing::kNothing;
    // The stored values pass through the controls, which clamp them to the limits of the rate.
    ToneRecord& tone = Current();
    tone.Sweep = sweepMs != 0;
    tone.WaveType = static_cast<std::int16_t>(type);
    tone.Loop = loopChecked;
    tone.LoopIncrement = storedStep;
    startHz = std::min(startHz, rateHz / 2);
    endHz = std::min(endHz, rateHz / 2);
    ShowStart();
    ShowEnd();
    ShowSweep();
    generator.count = static_cast<std::int32_t>(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) generator.tones[i + 1] = list[i].stored;
    addUsable = list.size() < 8;
    ShowSelection();
    endUsable = loopUsable = sweepMs != 0;
}

}  // namespace sonavex
