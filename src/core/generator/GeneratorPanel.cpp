#include "core/generator/GeneratorPanel.h"

namespace sonavex {

GeneratorPanel::GeneratorPanel(const GeneratorEnvironment& environment, MenuItem& mnuPrint,
                               const CheckBox& chkMuteOutput)
    : env_(environment),
      mnuPrint_(mnuPrint),
      interlock_(Signal, Memory),
      current_(environment, Signal, interlock_),
      memory_(environment, Memory, current_, Signal, interlock_, chkMuteOutput) {
    interlock_.Show(Playing::kNothing);
}

void GeneratorPanel::InitGenerator() {
    current_.RestoreLevel();
    env_.generator.LoadGeneratorDefaults(env_.settings, Signal.sldLevel);
    Signal.Command1.SetCaption("Start Current");
    mnuPrint_.SetEnabled(false);
    current_.Restore();
    env_.generator.NumTones = env_.settings.Long(keys::kNumberOfTones);
    current_.sldLevel_First();
    memory_.Load();
    interlock_.Show(Playing::kNothing);
    // Also when entries were stored as selected.
    Memory.cmdRemove.SetEnabled(false);
    Memory.cmdStartMemory.SetEnabled(false);
}

void GeneratorPanel::StopPlaying() {
    for (CommandButton* button : {&Signal.Command1, &Memory.cmdStartMemory})
        if (button->Caption().starts_with("Sto")) button->Press();
}

}  // namespace sonavex
