#include "system/endurance/InstrumentModel.h"

#include <algorithm>
#include <cmath>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

using Kind = UserAction::Kind;

constexpr double kTwoPi = 6.28318530717958;
constexpr std::int64_t kMillisecond = 1'000'000;

std::int32_t Nearest(const std::string& text, std::int32_t low, std::int32_t high) {
    return static_cast<std::int32_t>(std::nearbyint(std::clamp<double>(CDbl(text), low, high)));
}

bool Within(const std::string& text, double low, double high) {
    return IsNumeric(text) && CDbl(text) >= low && CDbl(text) <= high;
}

double WithinATurn(double phase) {
    return std::remainder(phase, kTwoPi);
}

}  // namespace

InstrumentModel::InstrumentModel(std::int32_t rateHz) : rate(rateHz) {
    ProgramRestarts(rateHz);
}

void InstrumentModel::ShowStart() {
    startText = std::to_string(startHz);
    table[0].StartFrequency = startHz;
    if (tones != 1) return;
    table[0].Frequency = startHz;
    table[0].LastFrequency = 0.0;
}

void InstrumentModel::ShowEnd() {
    endText = std::to_string(endHz);
    table[0].EndFrequency = endHz;
}

void InstrumentModel::ShowSweep() {
    sweepText = std::to_string(sweepMs);
    table[0].SweepTime = sweepMs;
    endUsable = sweepMs != 0;
}

void InstrumentModel::NewStep() {
    ToneRecord& tone = table[0];
    if (tone.Sweep && tone.SweepTime != 0)
        tone.LoopIncrement = (tone.EndFrequency - tone.StartFrequency) / tone.SweepTime;
}

void InstrumentModel::LetGoStart() {
    startText = std::to_string(startHz);
    table[0].StartFrequency = table[0].SweepFrequency = startHz;
    NewStep();
}

void InstrumentModel::LetGoSweep() {
    ShowSweep();
    loopUsable = sweepMs != 0;
    ToneRecord& tone = table[0];
    const bool swept = tone.Sweep;
    tone.Sweep = sweepMs != 0;
    NewStep();
    if (playing != Playing::kCurrent || tone.Sweep == swept) return;
    SetTicking(tone.Sweep);
    tone.Frequency = tone.SweepFrequency = tone.StartFrequency;
    tone.LastFrequency = 0.0;
}

bool InstrumentModel::EntriesAreValid() const {
    if (!Within(startText, 20, rate / 2)) return false;
    if (sweepMs > 0 && !Within(endText, 20, rate / 2)) return false;
    return Within(sweepText, -1e300, 10000);
}

void InstrumentModel::TakeControls() {
    ToneRecord& tone = table[0];
    tone.StartFrequency = startHz;
    tone.EndFrequency = endHz;
    tone.SweepTime = sweepMs;
    tone.Sweep = sweepMs != 0;
    tone.Loop = loopChecked;
    tone.WaveType = static_cast<std::int16_t>(type);
}

// Storing the current signal leaves a hundredth of its step in its record.
void InstrumentModel::Store() {
    TakeControls();
    ToneRecord& tone = table[0];
    tone.LoopIncrement = sweepMs != 0 ? (endHz - startHz) / (sweepMs * 100.0) : 0.0;
}

void InstrumentModel::SetTicking(bool on) {
    if (on && !ticking) nextTick_ = now_ + kMillisecond;
    ticking = on;
}

void InstrumentModel::StopAll() {
    running = sweeping = false;
    state = 8;
    SetTicking(false);
    playing = Playing::kNothing;
    endUsable = loopUsable = sweepMs != 0;
    addUsable = list.size() < 8;
    ShowSelection();
}

void InstrumentModel::StartCurrent() {
    tones = 1;
    TakeControls();
    ToneRecord& tone = table[0];
    SetTicking(tone.Sweep);
    tone.LoopIncrement = 0.0;
    NewStep();
    tone.Frequency = tone.SweepFrequency = tone.LastFrequency = startHz;
    tone.Phase = tone.SampleCount = 0.0;
    tone.Period = rate / tone.Frequency;
    tone.PhaseIncrement = kTwoPi / tone.Period;
    running = sweeping = true;
    playing = Playing::kCurrent;
    endUsable = loopUsable = sweepMs != 0;
    addUsable = false;
    ShowSelection();
}

bool InstrumentModel::AboveHalfTheRate(const Entry& entry) const {
    const ToneRecord& tone = entry.stored;
    return tone.StartFrequency > rate / 2 || (tone.Sweep && tone.EndFrequency > rate / 2);
}

void InstrumentModel::StartMemory() {
    for (const Entry& entry : list)
        if (entry.selected && AboveHalfTheRate(entry)) return;
    tones = 0;
    for (const Entry& entry : list) {
        if (!entry.selected) continue;
        ToneRecord& tone = table[static_cast<std::size_t>(tones++)];
        tone = entry.stored;
        if (tone.Sweep) SetTicking(true);
        tone.Frequency = tone.SweepFrequency = tone.LastFrequency = tone.StartFrequency;
        tone.Period = rate / tone.Frequency;
        tone.PhaseIncrement = kTwoPi / tone.Period;
    }
    running = sweeping = true;
    playing = Playing::kMemory;
    endUsable = loopUsable = addUsable = false;
    ShowSelection();
}

void InstrumentModel::ShowSelection() {
    const bool any = std::any_of(list.begin(), list.end(), [](const Entry& entry) { return entry.selected; });
    removeUsable = playing == Playing::kNothing && any;
    memoryUsable = removeUsable || playing == Playing::kMemory;
}

void InstrumentModel::Add() {
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
    entry.stored.LoopIncrement = sweep ? static_cast<double>(endHz - startHz) / sweepMs : 0.0;
    list.push_back(entry);
    if (list.size() >= 8) addUsable = false;
    Store();
    tones = static_cast<std::int32_t>(list.size()) - 1;
}

void InstrumentModel::Remove() {
    std::erase_if(list, [](const Entry& entry) { return entry.selected; });
    addUsable = list.size() < 8;
    ShowSelection();
    Store();
}

void InstrumentModel::Apply(const UserAction& action) {
    switch (action.kind) {
        case Kind::kType:
            if (SignalUsable()) table[0].WaveType = static_cast<std::int16_t>(type = action.value);
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
            level = action.value;
            return;
        case Kind::kLoop:
            if (loopUsable) table[0].Loop = loopChecked = action.value != 0;
            return;
        case Kind::kSelectTone:
            if (playing == Playing::kNothing) Select(action);
            return;
        default:
            Press(action.kind);
    }
}

void InstrumentModel::Press(Kind button) {
    if (button == Kind::kAdd && addUsable) Add();
    if (button == Kind::kRemove && removeUsable) Remove();
    const bool current = button == Kind::kStartCurrent && SignalUsable();
    const bool memory = button == Kind::kStartMemory && memoryUsable;
    if ((current || memory) && sweeping)
        StopAll();
    else if (current && EntriesAreValid())
        StartCurrent();
    else if (memory)
        StartMemory();
}

void InstrumentModel::Select(const UserAction& action) {
    if (action.value >= static_cast<std::int32_t>(list.size())) return;
    list[static_cast<std::size_t>(action.value)].selected = action.leaves;
    ShowSelection();
}

// The frequency requested by a slider or a text; nothing for a text that is not a number.
std::optional<std::int32_t> InstrumentModel::Asked(const UserAction& action, bool typed) const {
    if (!typed) return std::clamp(action.value, 1, rate / 2);
    if (!IsNumeric(action.text)) return std::nullopt;
    return Nearest(action.text, 1, rate / 2);
}

void InstrumentModel::SetStart(const UserAction& action) {
    const bool typed = action.kind == Kind::kStartText;
    if (typed) startText = action.text;
    if (const auto hertz = Asked(action, typed)) {
        startHz = *hertz;
        ShowStart();
    }
    if (action.leaves) LetGoStart();
}

void InstrumentModel::SetEnd(const UserAction& action) {
    const bool typed = action.kind == Kind::kEndText;
    if (typed) endText = action.text;
    if (const auto hertz = Asked(action, typed)) {
        endHz = *hertz;
        ShowEnd();
    }
    if (!action.leaves) return;
    ShowEnd();
    NewStep();
}

void InstrumentModel::SetSweep(const UserAction& action) {
    const bool typed = action.kind == Kind::kSweepText;
    if (!typed)
        sweepMs = action.value;
    else
        sweepMs = IsNumeric(action.text) ? Nearest(action.text, 0, 10000) : 0;
    ShowSweep();
    if (typed) ShowEnd();
    if (action.leaves) LetGoSweep();
}

void InstrumentModel::Sound(ToneRecord& tone) const {
    if (tone.Frequency != tone.LastFrequency) {
        tone.LastFrequency = tone.SweepFrequency;
        tone.Period = rate / tone.Frequency;
        tone.PhaseIncrement = kTwoPi / tone.Period;
    }
    for (int i = 0; i < 2048; ++i) {
        if (tone.WaveType == wave::kSine)
            tone.Phase = WithinATurn(tone.Phase + tone.PhaseIncrement);
        else
            tone.SampleCount = tone.SampleCount < tone.Period ? tone.SampleCount + 1.0 : 0.0;
    }
}

void InstrumentModel::CardMoves() {
    if (audible) cursor = (cursor + 1) % 8;
}

// Blocks that cannot be measured are not written, so the card catches up with the next block to write.
void InstrumentModel::FillBlock() {
    if (running)
        for (std::int32_t i = 0; i < tones; ++i) Sound(table[static_cast<std::size_t>(i)]);
    if (cursor == playBlock) {
        if (!priming) ++overruns;
        cursor = 0;
    }
    playBlock = (playBlock + 1) % 8;
    if (!priming || ++primed < 7) return;
    priming = false;
    audible = true;
    cursor = primed = 0;
    ++playbackStarts;
}

void InstrumentModel::Tick() {
    for (std::int32_t i = 0; i < tones; ++i) {
        ToneRecord& tone = table[static_cast<std::size_t>(i)];
        const double left = tone.LoopIncrement > 0.0 ? tone.EndFrequency - tone.SweepFrequency
                                                     : tone.SweepFrequency - tone.EndFrequency;
        // The rounding error at the end of a sweep does not cause another step.
        const bool underWay = left > 1e-9 * std::abs(tone.EndFrequency - tone.StartFrequency);
        if (sweeping && tone.Sweep && underWay) {
            const double next = tone.SweepFrequency + tone.LoopIncrement;
            tone.SweepFrequency = next <= 0.0 && tone.EndFrequency > 0.0 ? tone.EndFrequency : next;
            tone.Frequency = tone.SweepFrequency;
        } else if (tone.Loop) {
            tone.Frequency = tone.SweepFrequency = tone.StartFrequency;
        }
    }
}

void InstrumentModel::Pass(std::chrono::nanoseconds time) {
    const std::int64_t end = now_ + time.count();
    for (; ticking && nextTick_ <= end; nextTick_ += kMillisecond) {
        now_ = nextTick_;
        Tick();
    }
    now_ = end;
}

void InstrumentModel::StreamStarts(std::int32_t rateHz) {
    rate = rateHz;
    playBlock = primed = cursor = 0;
    priming = true;
    audible = false;
    const auto limit = [this](std::int32_t& value) {
        const std::int32_t before = value;
        value = std::min(value, rate / 2);
        return value != before;
    };
    if (limit(startHz)) ShowStart();
    if (limit(endHz)) ShowEnd();
}

void InstrumentModel::SelectRate(std::int32_t rateHz) {
    if (sweeping) StopAll();
    StreamStarts(rateHz);
}

void InstrumentModel::ProgramRestarts(std::int32_t rateHz) {
    // Playing stops. The end of the program stores the controls and the list.
    const double storedStep = sweepMs != 0 ? (endHz - startHz) / (sweepMs * 100.0) : 0.0;
    table = {};
    running = sweeping = false;
    SetTicking(false);
    state = 0;
    playing = Playing::kNothing;
    tones = 0;
    // The stored values pass through the controls, which clamp them to the limits of the rate.
    table[0].Sweep = sweepMs != 0;
    table[0].WaveType = static_cast<std::int16_t>(type);
    table[0].Loop = loopChecked;
    table[0].LoopIncrement = storedStep;
    playbackStarts = overruns = 0;
    rate = rateHz;
    startHz = std::min(startHz, rate / 2);
    endHz = std::min(endHz, rate / 2);
    ShowStart();
    ShowEnd();
    ShowSweep();
    tones = static_cast<std::int32_t>(list.size());
    for (std::size_t i = 0; i < list.size(); ++i) table[i + 1] = list[i].stored;
    StreamStarts(rateHz);
    addUsable = list.size() < 8;
    ShowSelection();
    endUsable = loopUsable = sweepMs != 0;
}

}  // namespace sonavex
