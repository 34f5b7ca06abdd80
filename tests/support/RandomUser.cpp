#include "support/RandomUser.h"

#include <array>

namespace sonavex {
namespace {

using Kind = UserAction::Kind;

constexpr std::array<const char*, UserAction::kKinds> kNames{
    "cmbType",    "sldStartFreq",  "sldEndFreq",   "sldSweepTime",   "sldLevel",
    "txtGenFreq", "txtGenEndFreq", "txtSweepTime", "chkLoop",        "Command1",
    "cmdGenAdd",  "ToneList",      "cmdRemove",    "cmdStartMemory", "chkAuto",
    "txtFreq",    "chkMuteOutput", "chkBaseline",  "cmdBaseline",    "TabStrip1"};

constexpr std::array<const char*, 24> kOddTexts{
    "",   "abc",  "12abc",   " 440 ", "2,500", "1 000", "&H10",         "\xC2\xB5",
    "0",  "-1",   "-5",      ".5",    "+7",    "1e-9",  "2.5",          "19.99",
    "20", "20.5", "19.4999", "10000", "22050", "1e9",   "999999999999", "1e308"};

// One event on a control, if it is enabled.
template <class Control>
void Try(Control& control, const RunEvent& run, const std::function<void()>& event) {
    if (control.Enabled()) run(event);
}

void Move(Slider& slider, const UserAction& action, const RunEvent& run) {
    Try(slider, run, [&] { slider.UserMoves(action.value); });
    if (action.leaves) Try(slider, run, [&] { slider.UserReleases(); });
}

void Type(TextBox& box, const UserAction& action, const RunEvent& run) {
    if (action.text) Try(box, run, [&] { box.UserTypes(*action.text); });
    if (action.leaves) Try(box, run, [&] { box.UserLeaves(); });
}

void Set(CheckBox& box, const UserAction& action, const RunEvent& run) {
    Try(box, run, [&] { box.UserSets(action.value != 0); });
}

void Press(CommandButton& button, const RunEvent& run) {
    run([&] { button.Press(); });
}

void Select(ListBox& list, const UserAction& action, const RunEvent& run) {
    if (list.Count() > 0) run([&] { list.UserSelects(action.value % list.Count(), action.leaves); });
}

// A value between the limits of a slider or a little outside, and often the lowest.
std::int32_t Position(Randomness& randomness, std::int32_t low, std::int32_t high) {
    return randomness.Pick(4) == 0 ? low : low - 10 + randomness.Pick(high - low + 21);
}

// Short sweeps end while the user acts.
std::int32_t SweepTime(Randomness& randomness) {
    if (randomness.Pick(10) < 4) return 0;
    return 1 + randomness.Pick(randomness.Pick(2) == 0 ? 50 : 10010);
}

}  // namespace

std::string Describe(const UserAction& action) {
    return std::string(kNames[static_cast<std::size_t>(action.kind)]) + ' ' + std::to_string(action.value) +
           (action.text ? " '" + *action.text + '\'' : "") + (action.leaves ? " and leaves" : "");
}

std::int32_t SeededRandomness::Pick(std::int32_t count) {
    return std::uniform_int_distribution<std::int32_t>(0, count - 1)(random_);
}

std::string SeededRandomness::Text(std::int32_t highest) {
    if (Chance(0.7)) return std::to_string(Pick(highest + 100));
    return kOddTexts[static_cast<std::size_t>(Pick(static_cast<std::int32_t>(kOddTexts.size())))];
}

UserAction NextAction(Randomness& randomness, std::int32_t rateHz, int kinds) {
    UserAction action;
    action.kind = static_cast<Kind>(randomness.Pick(kinds));
    // Removes less often than it adds, so that the list fills.
    if (action.kind == Kind::kRemove && randomness.Pick(3) > 0) action.kind = Kind::kAdd;
    action.leaves = randomness.Pick(10) < 7;
    switch (action.kind) {
        case Kind::kType:
            action.value = randomness.Pick(4);
            break;
        case Kind::kStartSlider:
        case Kind::kEndSlider:
            action.value = Position(randomness, 1, rateHz / 2);
            break;
        case Kind::kSweepSlider:
            action.value = SweepTime(randomness);
            break;
        case Kind::kLevelSlider:
            action.value = Position(randomness, -9600, 0);
            break;
        case Kind::kStartText:
        case Kind::kEndText:
        case Kind::kSweepText:
        case Kind::kFrequencyText:
            if (action.leaves && randomness.Pick(6) == 0) break;
            action.text = randomness.Text(action.kind == Kind::kSweepText ? 10000 : rateHz / 2);
            break;
        case Kind::kSelectTone:
            action.value = randomness.Pick(MemoryControls::kEntries);
            break;
        default:
            action.value = randomness.Pick(2);
            break;
    }
    return action;
}

void Perform(const UserAction& action, GeneratorPanel& panel, const RunEvent& run) {
    SignalControls& signal = panel.Controls;
    MemoryControls& memory = panel.MemoryControls;
    switch (action.kind) {
        case Kind::kType:
            return Try(signal.cmbType, run, [&] { signal.cmbType.UserSelects(action.value); });
        case Kind::kStartSlider:
            return Move(signal.sldStartFreq, action, run);
        case Kind::kEndSlider:
            return Move(signal.sldEndFreq, action, run);
        case Kind::kSweepSlider:
            return Move(signal.sldSweepTime, action, run);
        case Kind::kLevelSlider:
            return Move(signal.sldLevel, action, run);
        case Kind::kStartText:
            return Type(signal.txtGenFreq, action, run);
        case Kind::kEndText:
            return Type(signal.txtGenEndFreq, action, run);
        case Kind::kSweepText:
            return Type(signal.txtSweepTime, action, run);
        case Kind::kLoop:
            return Set(signal.chkLoop, action, run);
        case Kind::kStartCurrent:
            return Press(signal.Command1, run);
        case Kind::kAdd:
            return Press(memory.cmdGenAdd, run);
        case Kind::kSelectTone:
            return Select(memory.ToneList, action, run);
        case Kind::kRemove:
            return Press(memory.cmdRemove, run);
        default:
            return Press(memory.cmdStartMemory, run);
    }
}

void Perform(const UserAction& action, frmMain& form, const RunEvent& run) {
    MeasurementControls& controls = form.Instrument.Meter.Controls;
    switch (action.kind) {
        case Kind::kAuto:
            return Set(controls.chkAuto, action, run);
        case Kind::kFrequencyText:
            return Type(controls.txtFreq, action, run);
        case Kind::kMute:
            return Set(controls.chkMuteOutput, action, run);
        case Kind::kApplyBaseline:
            return Set(form.Instrument.Meter.Controls.chkBaseline, action, run);
        case Kind::kCaptureBaseline:
            return Press(form.Baseline.cmdBaseline, run);
        case Kind::kTab:
            return run([&] { form.TabStrip1.UserSelects(static_cast<std::int16_t>(action.value)); });
        default:
            return Perform(action, form.GeneratorPanel, run);
    }
}

}  // namespace sonavex
