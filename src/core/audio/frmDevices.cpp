#include "core/audio/frmDevices.h"

#include <string_view>
#include <vector>

#include "core/ports/BusyPointer.h"
#include "core/settings/SampleRates.h"
#include "core/settings/Windows.h"
#include "core/support/ScopedFlag.h"
#include "core/text/Characters.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kNoSoundCard =
    "No Sound Card found and/or DirectX is currupt.\r\rProgram will terminate.";
constexpr const char* kSelectOutput = "Please select valid Playback/Output device";
constexpr const char* kSelectInput = "Please select valid Record/Input device";
constexpr const char* kNotInitialised =
    "Sound devices not initalized properly\r"
    "Select 'Okay' to select new sound devices or 'Cancel' to end program";

// The system's primary device leads every enumeration and is never offered.
constexpr std::size_t kFirstOffered = 1;
constexpr std::size_t kShownCharacters = 50;

void Fill(ComboBox& list, const SoundDeviceList& devices, const std::string& stored) {
    std::vector<std::string> items;
    for (std::size_t i = kFirstOffered; i < devices.size(); ++i) items.push_back(devices[i].description);
    list.SetItems(items);
    for (std::size_t i = kFirstOffered; i < devices.size(); ++i)
        if (devices[i].identifier == stored) list.SetListIndex(static_cast<std::int32_t>(i - kFirstOffered));
}

// Identifier of the selected entry; one must be selected.
const std::string& SelectedIdentifier(const ComboBox& list, const SoundDeviceList& devices) {
    return devices[static_cast<std::size_t>(list.ListIndex()) + kFirstOffered].identifier;
}

}  // namespace

frmDevices::frmDevices(const Environment& environment, const MainControls& mainControls)
    : env_(environment), main_(mainControls) {
    cmdOkay.Click.Handle([this] { cmdOkay_Click(); });
    cmdCancel.Click.Handle([this] { cmdCancel_Click(); });
    cmdHelp.Click.Handle([this] { cmdHelp_Click(); });
    Frame.SetCaption("Select Sound Devices");
    Label5.SetCaption("Sample Rates above 32000 is not recommended with Vista.");
    std::vector<std::string> rates;
    rates.reserve(SampleRateTable.size());
    for (const std::int32_t rateHz : SampleRateTable) rates.push_back(CStr(rateHz));
    cmbSampleRate.SetItems(rates);
}

void frmDevices::Form_Load() {
    RestorePosition();
    const BusyPointer busyPointer(env_.dialogs);
    Enumerate();
    env_.loop.Yield();
    Label5.SetVisible(env_.shared.NewerGeneration());
    cmdCancel.SetEnabled(env_.shared.EventsReady);
    FillLists();
}

void frmDevices::RestorePosition() {
    const Windows::Place place = Windows::Restore(env_.settings, Frame, env_.desktop.Screens());
    Frame.Move(place.left, place.top);
}

void frmDevices::Enumerate() {
    try {
        inputs_ = env_.sound.EnumerateCapture();
        outputs_ = env_.sound.EnumeratePlayback();
    } catch (const RuntimeError&) {
        env_.dialogs.Message(kNoSoundCard, MessageIcon::kCritical);
        throw EndProgram{1};
    }
}

void frmDevices::FillLists() {
    Fill(cmbInputMixer, inputs_, env_.settings.Text(keys::kInput));
    Fill(cmbOutputMixer, outputs_, env_.settings.Text(keys::kOutput));
    cmbSampleRate.SetListIndex(env_.settings.Long(keys::kSampleRate));
}

void frmDevices::cmdOkay_Click() {
    if (applying_) return;
    const ScopedFlag applying(applying_);
    if (cmbOutputMixer.ListIndex() < 0) {
        env_.dialogs.Message(kSelectOutput, MessageIcon::kCritical);
        return;
    }
    env_.settings.Save(keys::kOutput, SelectedIdentifier(cmbOutputMixer, outputs_));
    if (cmbInputMixer.ListIndex() < 0) {
        env_.dialogs.Message(kSelectInput, MessageIcon::kCritical);
        return;
    }
    env_.settings.Save(keys::kInput, SelectedIdentifier(cmbInputMixer, inputs_));
    TakeRate();
    StopPlaying();
    Apply();
}

void frmDevices::TakeRate() {
    const std::int32_t index = cmbSampleRate.ListIndex();
    if (index < 0) throw RuntimeError(error_number::kSubscript);
    env_.settings.Save(keys::kSampleRate, CStr(index));
    env_.shared.SampleRate = SampleRateTable.at(static_cast<std::size_t>(index));
}

void frmDevices::StopPlaying() {
    if (!env_.generator.SweepRunning) return;
    for (CommandButton* button : {&main_.startCurrent, &main_.startMemory})
        if (button->Caption().substr(0, 3) == "Sto") button->Press();
}

void frmDevices::Apply() {
    if (!env_.engine.ReStart()) return;
    env_.loop.Yield();
    env_.setUpSoundControls();
    applying_ = false;
    Unload();
}

void frmDevices::cmdCancel_Click() {
    Unload();
}

void frmDevices::cmdHelp_Click() {
    env_.help.ShowTopic(help_topic::kSoundDevices);
}

void frmDevices::Unload() {
    if (Form_QueryUnload() && OnUnloaded) OnUnloaded();
}

bool frmDevices::Form_QueryUnload() {
    if (applying_) return false;
    if (!env_.shared.EventsReady) {
        if (!env_.dialogs.AskOkCancel(kNotInitialised)) throw EndProgram{0};
        return false;
    }
    for (const char* name : {desktop_file::kError, desktop_file::kDiagnostics}) {
        try {
            env_.files.Delete(name);
        } catch (const RuntimeError&) {
            continue;  // a file that cannot be deleted stays
        }
    }
    main_.lblInput.SetCaption(Left(env_.engine.InputDeviceName, kShownCharacters));
    main_.lblOutput.SetCaption(Left(env_.engine.OutputDeviceName, kShownCharacters));
    main_.lblSampleRate.SetCaption(CStr(env_.shared.SampleRate));
    Windows::Store(env_.settings, Frame);
    return true;
}

}  // namespace sonavex
