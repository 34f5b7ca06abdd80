// A random user who types anything, presses every button, moves every slider and opens dialogs while sound
// runs. The input supplies the user's decisions.

#include "fuzz/FuzzRig.h"
#include "support/RandomUser.h"

namespace sonavex {
namespace {

using fuzz::FuzzRig;
using fuzz::Input;
using fuzz::Require;

constexpr int kMostActions = 60;
constexpr std::int32_t kMostBlocks = 20;

// Takes one or two bytes for each number, and a line for each text.
class InputRandomness : public Randomness {
public:
    explicit InputRandomness(Input& input) noexcept : input_(input) {}
    std::int32_t Pick(std::int32_t count) override {
        return (count <= 256 ? input_.Byte() : input_.Word()) % count;
    }
    // A keyboard produces valid characters only, and a box takes one line.
    std::string Text(std::int32_t /*highest*/) override { return fuzz::AsUtf8(input_.Line()); }

private:
    Input& input_;
};

// Performs the user's actions.
class User {
public:
    User(FuzzRig& instrument, Input& input) : instrument_(instrument), random_(input) {
        instrument_.print.ShowPrintDialog = [this](frmPrint& dialog) { FillPrintDialog(dialog); };
        instrument_.InDeviceDialog = [this](frmDevices& dialog) { FillDeviceDialog(dialog); };
    }

    void Act() {
        frmMain& form = instrument_.form;
        const auto run = [this](const std::function<void()>& event) { instrument_.Act(event); };
        switch (random_.Pick(16)) {
            case 0:
                return run([&] { form.mnuSelectCard_Click(); });
            case 1:
                form.mnuPrint.SetEnabled(true);
                return run([&] { form.mnuPrint.UserChooses(); });
            case 2:
                return run([&] { form.mnuSoundCard_Click(); });
            case 3:
            case 4:
                return instrument_.Step(1 + random_.Pick(kMostBlocks));
            case 5:
                return run([&] { instrument_.fine.Play(!instrument_.fine.Playing()); });
            default:
                return Perform(NextAction(random_, form.Instrument.Shared.SampleRate), form, run);
        }
    }

private:
    void FillPrintDialog(frmPrint& dialog) {
        dialog.cmbPrinter.UserSelects(random_.Pick(dialog.cmbPrinter.Count()));
        dialog.txtCopies.UserTypes(random_.Text(0));
        if (dialog.txtFile.Enabled()) dialog.txtFile.UserTypes(random_.Text(0));
        instrument_.dialogs.Answer = random_.Pick(4) != 0;
        dialog.cmdOk.Press();
        instrument_.dialogs.Answer = true;
        if (!dialog.Choice()) return;
        Require(dialog.Choice()->copies >= 1 && dialog.Choice()->copies <= frmPrint::kMaxCopies,
                "a number of copies");
        Require(dialog.Choice()->destination.file.empty() != dialog.Choice()->destination.printer.empty(),
                "a printer or a file");
    }
    void FillDeviceDialog(frmDevices& dialog) {
        dialog.cmbSampleRate.SetListIndex(random_.Pick(dialog.cmbSampleRate.Count()));
        if (random_.Pick(4) == 0) dialog.cmdCancel.Press();
    }

    FuzzRig& instrument_;
    InputRandomness random_;
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
