#include "core/generator/GeneratorPanel.h"

namespace sonavex {

GeneratorPanel::GeneratorPanel(const GeneratorNeeds& needs, MenuItem& mnuPrint, const CheckBox& chkMuteOutput)
    : needs_(needs),
      mnuPrint_(mnuPrint),
      interlock_(Signal, Memory),
      current_(needs, Signal, interlock_),
      memory_(needs, Memory, current_, Signal, interlock_, chkMuteOutput) {
    interlock_.Show(Playing::kNothing);
}

void GeneratorPanel::InitGenerator() {
    current_.RestoreLevel();
    needs_.generator.LoadGeneratorDefaults(needs_.settings, Signal.sldLevel);
    Signal.Command1.SetCaption("Start Current");
    mnuPrint_.SetEnabled(false);
    current_.Restore();
    needs_.generator.NumTones = needs_.settings.Long(keys::kNumberOfTones);
    current_.sldLevel_First();
    memory_.Load();
    interlock_.Show(Playing::kNothing);
    // Also when entries were stored as selected.
    Memory.cmdRemove.SetEnabled(false);
    Memory.cmdStartMemory.SetEnabled(false);
}

void GeneratorPanel::StopPlaying() {
    if (!needs_.generator.SweepRunning) return;
    for (CommandButton* button : {&Signal.Command1, &Memory.cmdStartMemory})
        if (button->Caption().starts_with("Sto")) button->Press();
}

}  // namespace sonavex
