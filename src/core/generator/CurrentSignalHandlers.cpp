#include "core/generator/CurrentSignal.h"
#include "core/text/Numbers.h"

namespace sonavex {

void CurrentSignal::cmbType_Click() {
    const std::int32_t index = controls_.cmbType.ListIndex();
    ToneType = static_cast<std::int16_t>(index);
    Record().WaveType = ToneType;
    needs_.settings.Save(keys::kToneType, CStr(index));
}

void CurrentSignal::chkLoop_Click() {
    Record().Loop = controls_.chkLoop.Checked();
}

void CurrentSignal::sldStartFreq_First() {
    const std::int32_t value = controls_.sldStartFreq.Value();
    startSeen_ = value;
    controls_.txtGenFreq.SetText(CStr(value));
    ToneRecord& tone = Record();
    tone.StartFrequency = value;
    if (needs_.generator.NumTones != 1) return;
    tone.Frequency = value;
    tone.LastFrequency = 0.0;  // forces the next block to compute the increments
}

void CurrentSignal::sldStartFreq_Second() {
    const std::int32_t value = controls_.sldStartFreq.Value();
    startSeen_ = value;
    controls_.txtGenFreq.SetText(CStr(value));
    ToneRecord& tone = Record();
    tone.StartFrequency = value;
    tone.SweepFrequency = value;
    UpdateLoopIncrement();
}

void CurrentSignal::sldEndFreq_First() {
    endSeen_ = controls_.sldEndFreq.Value();
    controls_.txtGenEndFreq.SetText(CStr(endSeen_));
    Record().EndFrequency = endSeen_;
}

void CurrentSignal::sldEndFreq_Second() {
    sldEndFreq_First();
    UpdateLoopIncrement();
}

void CurrentSignal::sldSweepTime_First() {
    const std::int32_t value = controls_.sldSweepTime.Value();
    controls_.txtSweepTime.SetText(CStr(value));
    Record().SweepTime = value;
    controls_.sldEndFreq.SetEnabled(value != 0);
    controls_.txtGenEndFreq.SetEnabled(value != 0);
}

void CurrentSignal::sldSweepTime_Second() {
    sldSweepTime_First();
    ToneRecord& tone = Record();
    const bool swept = tone.Sweep;
    tone.Sweep = tone.SweepTime != 0;
    controls_.chkLoop.SetEnabled(tone.Sweep);
    UpdateLoopIncrement();
    if (tone.Sweep != swept && interlock_.Now() == Playing::kCurrent) SwitchSweep();
}

// Restarts the playing tone at its start frequency, with or without its sweep.
void CurrentSignal::SwitchSweep() {
    ToneRecord& tone = Record();
    needs_.EnableHiTimer1(tone.Sweep);
    tone.Frequency = tone.StartFrequency;
    tone.SweepFrequency = tone.StartFrequency;
    tone.LastFrequency = 0.0;  // forces the next block to compute the increments
}

void CurrentSignal::sldLevel_First() {
    const std::int32_t value = controls_.sldLevel.Value();
    controls_.lblGenLevel.SetCaption(Format(value / 100.0, Pattern::kTwoDecimals) + " dB");
    needs_.settings.Save(keys::kLevel, CStr(value));
    if (OnLevel) OnLevel(value);
}

void CurrentSignal::txtGenFreq_Change() {
    if (!IsNumeric(controls_.txtGenFreq.Text())) return;
    SetNearest(controls_.sldStartFreq, CDbl(controls_.txtGenFreq.Text()));
    sldStartFreq_First();
}

void CurrentSignal::txtGenEndFreq_Change() {
    if (!IsNumeric(controls_.txtGenEndFreq.Text())) return;
    SetNearest(controls_.sldEndFreq, CDbl(controls_.txtGenEndFreq.Text()));
    sldEndFreq_First();
}

void CurrentSignal::txtSweepTime_Change() {
    TextBox& box = controls_.txtSweepTime;
    if (!IsNumeric(box.Text())) box.SetText("0");
    SetNearest(controls_.sldSweepTime, CDbl(box.Text()));
    sldSweepTime_First();
    sldEndFreq_First();
}

}  // namespace sonavex
