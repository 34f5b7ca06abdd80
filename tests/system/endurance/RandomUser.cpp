#include "system/endurance/RandomUser.h"

#include <array>

namespace sonavex {
namespace {

using Kind = UserAction::Kind;

constexpr std::array<const char*, UserAction::kKinds> kNames{
    "cmbType",    "sldStartFreq",  "sldEndFreq",   "sldSweepTime",   "sldLevel",
    "txtGenFreq", "txtGenEndFreq", "txtSweepTime", "chkLoop",        "Command1",
    "cmdGenAdd",  "ToneList",      "cmdRemove",    "cmdStartMemory", "chkAuto",
    "txtFreq",    "chkMuteOutput", "chkBaseline",  "cmdBaseline",    "TabStrip1"};

constexpr std::array<const char*, 16> kOddTexts{
    "",     "0",  "-1",   "1e9", "1e308",        " 440 ",   "2,500", "12abc",
    "20.5", ".5", "&H10", "+7",  "999999999999", "19.4999", "1 000", "\xC2\xB5"};

void Move(Slider& slider, const UserAction& action) {
    if (!slider.Enabled()) return;
    slider.UserMoves(action.value);
    if (action.leaves) slider.UserReleases();
}

void Type(TextBox& box, const UserAction& action) {
    if (!box.Enabled()) return;
    box.UserTypes(action.text);
    if (action.leaves) box.UserLeaves();
}

void Tick(CheckBox& box, const UserAction& action) {
    if (box.Enabled()) box.UserSets(action.value != 0);
}

void PerformOnSignal(const UserAction& action, SignalControls& signal) {
    switch (action.kind) {
        case Kind::kType:
            if (signal.cmbType.Enabled()) signal.cmbType.UserSelects(action.value);
            return;
        case Kind::kStartSlider:
            return Move(signal.sldStartFreq, action);
        case Kind::kEndSlider:
            return Move(signal.sldEndFreq, action);
        case Kind::kSweepSlider:
            return Move(signal.sldSweepTime, action);
        case Kind::kLevelSlider:
            return Move(signal.sldLevel, action);
        case Kind::kStartText:
            return Type(signal.txtGenFreq, action);
        case Kind::kEndText:
            return Type(signal.txtGenEndFreq, action);
        case Kind::kSweepText:
            return Type(signal.txtSweepTime, action);
        case Kind::kLoop:
            return Tick(signal.chkLoop, action);
        default:
            return signal.Command1.Press();
    }
}

void PerformOnMemory(const UserAction& action, MemoryControls& memory) {
    switch (action.kind) {
        case Kind::kAdd:
            return memory.cmdGenAdd.Press();
        case Kind::kSelectTone:
            if (action.value < memory.ToneList.Count())
                memory.ToneList.UserSelects(action.value, action.leaves);
            return;
        case Kind::kRemove:
            return memory.cmdRemove.Press();
        default:
            return memory.cmdStartMemory.Press();
    }
}

void PerformOnMeter(const UserAction& action, frmMain& form) {
    MeasurementControls& controls = form.Instrument.Meter.Controls;
    switch (action.kind) {
        case Kind::kAuto:
            return Tick(controls.chkAuto, action);
        case Kind::kFrequencyText:
            return Type(controls.txtFreq, action);
        case Kind::kMute:
            return Tick(controls.chkMuteOutput, action);
        case Kind::kApplyBaseline:
            return Tick(form.Instrument.Meter.Controls.chkBaseline, action);
        case Kind::kCaptureBaseline:
            return form.Baseline.cmdBaseline.Press();
        default:
            return form.TabStrip1.UserSelects(static_cast<std::int16_t>(action.value));
    }
}

}  // namespace

std::string Describe(const UserAction& action) {
    return std::string(kNames[static_cast<std::size_t>(action.kind)]) + ' ' + std::to_string(action.value) +
           " '" + action.text + (action.leaves ? "' and leaves" : "'");
}

std::int32_t RandomUser::Pick(std::int32_t count) {
    return std::uniform_int_distribution<std::int32_t>(0, count - 1)(random_);
}

std::string RandomUser::Text(std::int32_t rateHz) {
    if (Chance(0.3))
        return kOddTexts[static_cast<std::size_t>(Pick(static_cast<std::int32_t>(kOddTexts.size())))];
    return std::to_string(Pick(rateHz / 2 + 100));
}

UserAction RandomUser::Next(std::int32_t rateHz) {
    UserAction action;
    action.kind = static_cast<Kind>(Pick(UserAction::kKinds));
    action.leaves = Chance(0.7);
    switch (action.kind) {
        case Kind::kType:
            action.value = Pick(4);
            break;
        case Kind::kStartSlider:
        case Kind::kEndSlider:
            action.value = 1 + Pick(rateHz / 2);
            break;
        case Kind::kSweepSlider:
            action.value = Chance(0.4) ? 0 : 1 + Pick(Chance(0.5) ? 50 : 10000);
            break;
        case Kind::kLevelSlider:
            action.value = -Pick(9601);
            break;
        case Kind::kStartText:
        case Kind::kEndText:
        case Kind::kFrequencyText:
            action.text = Text(rateHz);
            break;
        case Kind::kSweepText:
            action.text = Chance(0.3) ? "0" : Text(20000);
            break;
        case Kind::kSelectTone:
            action.value = Pick(MemoryControls::kEntries);
            break;
        default:
            action.value = Pick(2);
            break;
    }
    return action;
}

void Perform(const UserAction& action, frmMain& form) {
    if (action.kind <= Kind::kStartCurrent) return PerformOnSignal(action, form.GeneratorPanel.Controls);
    if (action.kind <= Kind::kStartMemory) return PerformOnMemory(action, form.GeneratorPanel.MemoryControls);
    PerformOnMeter(action, form);
}

}  // namespace sonavex
