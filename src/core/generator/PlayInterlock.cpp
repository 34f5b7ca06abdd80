#include "core/generator/PlayInterlock.h"

#include <algorithm>

namespace sonavex {

void PlayInterlock::Show(Playing playing) {
    playing_ = playing;
    signal_.picGenRunning.SetBackColor(playing == Playing::kNothing ? kGeneratorStopped : kGeneratorPlaying);
    EnableSignal(playing != Playing::kMemory);
    ShowList();
}

void PlayInterlock::ShowStimulus(bool playing) {
    stimulusPlaying_ = playing;
    EnableStart();
    ShowSelection();
}

void PlayInterlock::ShowList() {
    const bool idle = playing_ == Playing::kNothing;
    memory_.cmdGenAdd.SetEnabled(idle && memory_.ToneList.Count() < MemoryControls::kEntries);
    memory_.ToneList.SetLocked(!idle);
    ShowSelection();
}

void PlayInterlock::EnableSignal(bool enabled) {
    EnableStart();
    signal_.cmbType.SetEnabled(enabled);
    signal_.sldStartFreq.SetEnabled(enabled);
    signal_.txtGenFreq.SetEnabled(enabled);
    signal_.sldSweepTime.SetEnabled(enabled);
    signal_.txtSweepTime.SetEnabled(enabled);
    const bool sweep = enabled && signal_.sldSweepTime.Value() != 0;
    signal_.sldEndFreq.SetEnabled(sweep);
    signal_.txtGenEndFreq.SetEnabled(sweep);
    signal_.chkLoop.SetEnabled(sweep);
}

void PlayInterlock::EnableStart() {
    signal_.Command1.SetEnabled(playing_ != Playing::kMemory && !stimulusPlaying_);
}

void PlayInterlock::ShowSelection() {
    const bool usable = playing_ == Playing::kNothing && AnySelected();
    memory_.cmdRemove.SetEnabled(usable);
    memory_.cmdStartMemory.SetEnabled((usable && !stimulusPlaying_) || playing_ == Playing::kMemory);
}

bool PlayInterlock::AnySelected() const {
    const auto& items = memory_.ToneList.Items();
    return std::any_of(items.begin(), items.end(), [](const ListBox::Item& item) { return item.selected; });
}

}  // namespace sonavex
