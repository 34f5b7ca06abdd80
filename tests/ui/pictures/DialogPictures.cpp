#include "ui/pictures/DialogPictures.h"

#include <QAbstractItemView>
#include <QComboBox>

#include "core/report/frmError.h"
#include "support/DialogRig.h"
#include "support/QtWait.h"
#include "ui/DeviceDialog.h"
#include "ui/ErrorDialog.h"

namespace sonavex {
namespace {

constexpr const char* kMessage =
    "Error Creating Input Capture Device\ror sound card is in use.\r\rA file named 'Quenby Error.txt' has "
    "been "
    "created on your desktop\rIf you are unable to resolve this problem, contact Quenby Software for "
    "instuctions to email this file";

bool Save(QWidget& dialog, const char* name, bool dark, const QString& folder) {
    dialog.show();
    Settle();
    return dialog.grab().save(QStringLiteral("%1/%2-%3-%4.png")
                                  .arg(folder, name, dark ? "dark" : "light")
                                  .arg(qRound(dialog.devicePixelRatio() * 100)));
}

class Pictures {
public:
    Pictures(bool dark, const QString& folder) : dark_(dark), folder_(folder) {
        rig_.sound.playbackDevices[1].description = "Built-in Audio Analog Stereo";
        rig_.sound.playbackDevices[2].description =
            "USB Measurement Interface with a Name of Unusual Length, Line Out 1 and 2";
        rig_.sound.captureDevices[2].description = "Monitor of Built-in Audio Analog Stereo";
        rig_.form.Form_Load();
    }

    bool Devices(const char* name, bool running, const char* output) {
        rig_.store.Save("SoundCard", "Output", output);
        rig_.form.Instrument.Shared.EventsReady = running;
        frmDevices form(rig_.form.DevicesNeeds(rig_.files, rig_.help), rig_.form.DevicesLabels());
        ui::DeviceDialog dialog(form, rig_.form.Guard);
        return Save(dialog, name, dark_, folder_);
    }
    // An extended rate, and the open list of rates.
    bool Rates() {
        for (const char* device : {"out-a", "in-a"})
            rig_.sound.extendedRates[device] = {kExtendedRates.begin(), kExtendedRates.end()};
        rig_.store.Save("SoundCard", "Output", "out-a");
        rig_.store.Save("SoundCard", "Input", "in-a");
        rig_.store.Save("Face", "ExtendedSampleRate", "192000");
        rig_.form.Instrument.Shared.EventsReady = true;
        frmDevices form(rig_.form.DevicesNeeds(rig_.files, rig_.help), rig_.form.DevicesLabels());
        ui::DeviceDialog dialog(form, rig_.form.Guard);
        if (!Save(dialog, "devices-extended-rate", dark_, folder_)) return false;
        auto* const rates = dialog.findChild<QComboBox*>("cmbSampleRate");
        rates->showPopup();
        return Save(*rates->view()->window(), "devices-rates", dark_, folder_);
    }
    bool Error(const char* name, bool fatal, const char* status) {
        rig_.report.State() = {kMessage, fatal};
        frmError form({rig_.report.State(), rig_.form.Instrument.Shared, rig_.settings, rig_.dialogs,
                       rig_.files, rig_.diagnostics, rig_.help, "", ""});
        ui::ErrorDialog dialog(form, rig_.form.Guard);
        form.lblStatus.SetCaption(status);
        return Save(dialog, name, dark_, folder_);
    }

private:
    DialogRig rig_;
    bool dark_;
    QString folder_;
};

}  // namespace

bool DialogPictures(bool dark, const QString& folder) {
    Pictures pictures(dark, folder);
    return pictures.Devices("devices-selected", true, "out-a") &&
           pictures.Devices("devices-long-name", true, "out-b") &&
           pictures.Devices("devices-not-running", false, "gone") && pictures.Rates() &&
           pictures.Error("error", false, "") &&
           pictures.Error("error-diagnostics", false, "Running DxDiag...") &&
           pictures.Error("error-fatal", true, "Unable to find 'DxDiag.exe'");
}

}  // namespace sonavex
