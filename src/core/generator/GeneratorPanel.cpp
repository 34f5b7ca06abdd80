#include "core/generator/GeneratorPanel.h"

namespace sonavex {

GeneratorPanel::GeneratorPanel(const GeneratorNeeds& needs, MenuItem& mnuPrint, const CheckBox& chkMuteOutput)
    : needs_(needs),
      mnuPrint_(mnuPrint),
      interlock_(Controls, MemoryControls),
      current_(needs, Controls, interlock_),
      memory_(needs, MemoryControls, current_, Controls, interlock_, chkMuteOutput) {
    interlock_.Show(Playing::kNothing);
}

void GeneratorPanel::InitGenerator() {
    current_.RestoreLevel();
    needs_.generator.LoadGeneratorDefaults(needs_.settings, Controls.sldLevel);
    Controls.Command1.SetCaption(SignalControls::kStartCurrent);
    mnuPrint_.SetEnabled(false);
    current_.Restore();
    needs_.generator.NumTones = needs_.settings.Long(keys::kNumberOfTones);
    current_.sldLevel_First();
    memory_.Load();
    interlock_.Show(Playing::kNothing);
}

void GeneratorPanel::StopPlaying() {
    if (StopStimulus) StopStimulus();
    if (!needs_.generator.SweepRunning) return;
    for (CommandButton* button : {&Controls.Command1, &MemoryControls.cmdStartMemory})
        if (button->Caption().starts_with("Sto")) button->Press();
}

}  // namespace sonavex
