// A user who types anything, presses every button and moves every slider while sound runs. Each action is one
// byte, followed by its arguments.

#include <array>

#include "fuzz/FuzzRig.h"

namespace sonavex {
namespace {

using fuzz::FuzzRig;
using fuzz::Input;
using fuzz::Require;

constexpr int kMostActions = 60;
constexpr std::uint8_t kMostBlocks = 20;

// Performs the user's actions.
class User {
public:
    User(FuzzRig& instrument, Input& input) : instrument_(instrument), input_(input) {
        instrument_.print.ShowPrintDialog = [this](frmPrint& dialog) { FillPrintDialog(dialog); };
        instrument_.InDeviceDialog = [this](frmDevices& dialog) { FillDeviceDialog(dialog); };
    }

    void Act() {
        switch (input_.Byte() % 16U) {
            case 0:
            case 1:
            case 2:
                return TypeIntoABox();
            case 3:
                return LeaveABox();
            case 4:
            case 5:
                return PressAButton();
            case 6:
                return MoveASlider();
            case 7:
                return ClickABox();
            case 8:
                return ChooseAWave();
            case 9:
            case 10:
                return SelectATone();
            case 11:
                return instrument_.Act([this] { instrument_.form.mnuSelectCard_Click(); });
            case 12:
                return instrument_.Act([this] {
                    instrument_.form.mnuPrint.SetEnabled(true);
                    instrument_.form.mnuPrint.UserChooses();
                });
            case 13:
                return instrument_.Act([this] { instrument_.form.mnuSoundCard_Click(); });
            default:
                return instrument_.Step(1 + input_.Byte() % kMostBlocks);
        }
    }

private:
    // A keyboard produces valid characters only, and a box takes one line.
    std::string Text() { return fuzz::AsUtf8(input_.Line()); }

    TextBox& Box() {
        SignalControls& signal = instrument_.form.GeneratorPanel.Controls;
        const std::array<TextBox*, 4> boxes{&signal.txtGenFreq, &signal.txtGenEndFreq, &signal.txtSweepTime,
                                            &instrument_.form.Instrument.Meter.Controls.txtFreq};
        return *boxes.at(input_.Byte() % boxes.size());
    }
    // A disabled box takes no input.
    void TypeIntoABox() {
        TextBox& box = Box();
        const std::string text = Text();
        if (box.Enabled()) instrument_.Act([&] { box.UserTypes(text); });
    }
    void LeaveABox() {
        TextBox& box = Box();
        if (box.Enabled()) instrument_.Act([&] { box.UserLeaves(); });
    }
    void PressAButton() {
        frmMain& form = instrument_.form;
        const std::array<CommandButton*, 5> buttons{
            &form.GeneratorPanel.Controls.Command1, &form.GeneratorPanel.MemoryControls.cmdGenAdd,
            &form.GeneratorPanel.MemoryControls.cmdRemove, &form.GeneratorPanel.MemoryControls.cmdStartMemory,
            &form.Baseline.cmdBaseline};
        CommandButton& button = *buttons.at(input_.Byte() % buttons.size());
        instrument_.Act([&] { button.Press(); });
    }
    void MoveASlider() {
        SignalControls& signal = instrument_.form.GeneratorPanel.Controls;
        const std::array<Slider*, 4> sliders{&signal.sldStartFreq, &signal.sldEndFreq, &signal.sldSweepTime,
                                             &signal.sldLevel};
        Slider& slider = *sliders.at(input_.Byte() % sliders.size());
        const std::int32_t value = input_.Word();
        if (!slider.Enabled()) return;
        instrument_.Act([&] { slider.UserMoves(&slider == &signal.sldLevel ? -value : value); });
        instrument_.Act([&] { slider.UserReleases(); });
    }
    void ClickABox() {
        frmMain& form = instrument_.form;
        const std::array<CheckBox*, 4> boxes{
            &form.Instrument.Meter.Controls.chkAuto, &form.Instrument.Meter.Controls.chkMuteOutput,
            &form.Instrument.Meter.Controls.chkBaseline, &form.GeneratorPanel.Controls.chkLoop};
        CheckBox& box = *boxes.at(input_.Byte() % boxes.size());
        if (box.Enabled()) instrument_.Act([&] { box.UserSets(!box.Checked()); });
    }
    void ChooseAWave() {
        ComboBox& list = instrument_.form.GeneratorPanel.Controls.cmbType;
        const std::int32_t index = input_.Byte() % list.Count();
        if (list.Enabled()) instrument_.Act([&] { list.UserSelects(index); });
    }
    void SelectATone() {
        ListBox& list = instrument_.form.GeneratorPanel.MemoryControls.ToneList;
        const std::uint8_t which = input_.Byte();
        if (list.Count() == 0 || !list.Enabled()) return;
        const std::int32_t position = (which >> 1U) % list.Count();
        instrument_.Act([&] { list.UserSelects(position, (which & 1U) == 0); });
    }
    void FillPrintDialog(frmPrint& dialog) {
        dialog.cmbPrinter.UserSelects(input_.Byte() % dialog.cmbPrinter.Count());
        dialog.txtCopies.UserTypes(Text());
        if (dialog.txtFile.Enabled()) dialog.txtFile.UserTypes(Text());
        instrument_.dialogs.Answer = input_.Byte() % 4U != 0;
        dialog.cmdOk.Press();
        instrument_.dialogs.Answer = true;
        if (!dialog.Choice()) return;
        Require(dialog.Choice()->copies >= 1 && dialog.Choice()->copies <= frmPrint::kMaxCopies,
                "a number of copies");
        Require(dialog.Choice()->destination.file.empty() != dialog.Choice()->destination.printer.empty(),
                "a printer or a file");
    }
    void FillDeviceDialog(frmDevices& dialog) {
        dialog.cmbSampleRate.SetListIndex(input_.Byte() % dialog.cmbSampleRate.Count());
        if (input_.Byte() % 4U == 0) dialog.cmdCancel.Press();
    }

    FuzzRig& instrument_;
    Input& input_;
};

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    fuzz::Input input(data, size);
    const std::int32_t generation = (input.Byte() & 1U) != 0 ? 5 : 10;
    MemorySettingsStore store;
    {
        FuzzRig instrument(store, generation, true);
        Require(instrument.Start(), "without settings the instrument starts");
        User user(instrument, input);
        for (int action = 0; action < kMostActions && !input.AtEnd() && !instrument.Ended(); ++action)
            user.Act();
        Require(!instrument.Ended(), "nothing that is typed ends the instrument");
        const std::size_t before = instrument.ErrorsShown();
        instrument.ShutDown();
        Require(instrument.ErrorsShown() == before, "the shutdown succeeds");
    }
    FuzzRig next(store, generation, true);
    const bool started = next.Start();
    Require(started, "what was stored at the end starts the instrument", next.log.Lines().back());
    return 0;
}
