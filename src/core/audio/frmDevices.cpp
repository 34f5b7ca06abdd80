#include "core/audio/frmDevices.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include "core/audio/ExtendedRates.h"
#include "core/ports/BusyPointer.h"
#include "core/settings/SampleRates.h"
#include "core/settings/Windows.h"
#include "core/support/EndProgram.h"
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

// The primary device is the first entry of every enumeration and is not offered.
constexpr std::size_t kFirstOffered = 1;
constexpr std::size_t kShownCharacters = 50;

void Fill(ComboBox& list, const SoundDeviceList& devices, const std::string& stored) {
    std::vector<std::string> items;
    for (std::size_t i = kFirstOffered; i < devices.size(); ++i) items.push_back(devices[i].description);
    list.SetItems(items);
    for (std::size_t i = kFirstOffered; i < devices.size(); ++i)
        if (devices[i].identifier == stored) list.SetListIndex(static_cast<std::int32_t>(i - kFirstOffered));
}

// Identifier of the selected entry. An entry must be selected.
const std::string& SelectedIdentifier(const ComboBox& list, const SoundDeviceList& devices) {
    return devices[static_cast<std::size_t>(list.ListIndex()) + kFirstOffered].identifier;
}

}  // namespace

frmDevices::frmDevices(const Needs& needs, const MainLabels& mainLabels) : needs_(needs), main_(mainLabels) {
    cmdOkay.Click.Handle([this] { cmdOkay_Click(); });
    cmdCancel.Click.Handle([this] { cmdCancel_Click(); });
    cmdHelp.Click.Handle([this] { cmdHelp_Click(); });
    Frame.SetCaption("Select Sound Devices");
    Label5.SetCaption("Sample Rates above 32000 is not recommended with Vista.");
    cmbInputMixer.Click.Handle([this] { OfferRates(cmbSampleRate.Text()); });
    cmbOutputMixer.Click.Handle([this] { OfferRates(cmbSampleRate.Text()); });
}

void frmDevices::Form_Load() {
    try {
        Load();
    } catch (...) {
        if (needs_.shared.EventsReady) ShowDevicesInUse();
        throw;
    }
}

void frmDevices::Load() {
    RestorePosition();
    const BusyPointer busyPointer(needs_.dialogs);
    Enumerate();
    needs_.loop.Yield();
    Label5.SetVisible(needs_.shared.NewerGeneration());
    cmdCancel.SetEnabled(needs_.shared.EventsReady);
    FillLists();
}

void frmDevices::RestorePosition() {
    const Windows::Place place = Windows::Restore(needs_.settings, Frame, needs_.desktop.Screens());
    Frame.Move(place.left, place.top);
}

void frmDevices::Enumerate() {
    try {
        inputs_ = needs_.sound.EnumerateCapture();
        outputs_ = needs_.sound.EnumeratePlayback();
    } catch (const RuntimeError&) {
        needs_.dialogs.Message(kNoSoundCard, MessageIcon::kCritical);
        throw EndProgram{1};
    }
}

void frmDevices::FillLists() {
    Fill(cmbInputMixer, inputs_, needs_.settings.Text(keys::kInput));
    Fill(cmbOutputMixer, outputs_, needs_.settings.Text(keys::kOutput));
    const auto extended = ExtendedRateOf(needs_.settings.Text(keys::kExtendedSampleRate));
    OfferRates(extended ? CStr(*extended) : std::string());
}

// Selects the wanted rate. If it is not offered, the stored index applies.
void frmDevices::OfferRates(const std::string& wanted) {
    extendedRates_ = ExtendedRatesOfSelection();
    std::vector<std::string> items;
    items.reserve(std::size(SampleRateTable) + extendedRates_.size());
    for (const std::int32_t rateHz : SampleRateTable) items.push_back(CStr(rateHz));
    for (const std::int32_t rateHz : extendedRates_) items.push_back(CStr(rateHz));
    const auto found = std::find(items.begin(), items.end(), wanted);
    const bool offered = found != items.end();
    const auto position = static_cast<std::int32_t>(found - items.begin());
    cmbSampleRate.SetItems(std::move(items));
    cmbSampleRate.SetListIndex(offered ? position : StoredRateIndex());
}

RateList frmDevices::ExtendedRatesOfSelection() const {
    if (cmbInputMixer.ListIndex() < 0 || cmbOutputMixer.ListIndex() < 0) return {};
    return CommonExtendedRates(needs_.sound, SelectedIdentifier(cmbInputMixer, inputs_),
                               SelectedIdentifier(cmbOutputMixer, outputs_));
}

std::int32_t frmDevices::StoredRateIndex() const {
    const std::int32_t index = needs_.settings.Long(keys::kSampleRate);
    if (index < 0 || index >= static_cast<std::int32_t>(SampleRateTable.size()))
        throw needs_.settings.Failure(error_number::kInvalidCall, keys::kSampleRate);
    return index;
}

void frmDevices::cmdOkay_Click() {
    if (applying_) return;
    const ScopedFlag applying(applying_);
    if (cmbOutputMixer.ListIndex() < 0) {
        needs_.dialogs.Message(kSelectOutput, MessageIcon::kCritical);
        return;
    }
    needs_.settings.Save(keys::kOutput, SelectedIdentifier(cmbOutputMixer, outputs_));
    if (cmbInputMixer.ListIndex() < 0) {
        needs_.dialogs.Message(kSelectInput, MessageIcon::kCritical);
        return;
    }
    needs_.settings.Save(keys::kInput, SelectedIdentifier(cmbInputMixer, inputs_));
    TakeRate();
    needs_.generatorPanel.StopPlaying();
    Apply();
}

void frmDevices::TakeRate() {
    const std::int32_t index = cmbSampleRate.ListIndex();
    if (index < 0) throw RuntimeError(error_number::kSubscript);
    const auto place = static_cast<std::size_t>(index);
    const bool extended = place >= SampleRateTable.size();
    const std::int32_t rateHz =
        extended ? extendedRates_.at(place - SampleRateTable.size()) : SampleRateTable.at(place);
    if (!extended) needs_.settings.Save(keys::kSampleRate, CStr(index));
    // An absent value stays absent.
    if (extended || !needs_.settings.Text(keys::kExtendedSampleRate).empty())
        needs_.settings.Save(keys::kExtendedSampleRate, extended ? CStr(rateHz) : std::string());
    needs_.shared.SampleRate = rateHz;
}

void frmDevices::Apply() {
    if (!needs_.engine.ReStart()) return;
    needs_.loop.Yield();
    needs_.setUpSoundControls();
    applying_ = false;
    Unload();
}

void frmDevices::cmdCancel_Click() {
    Unload();
}

void frmDevices::cmdHelp_Click() {
    needs_.help.ShowTopic(help_topic::kSoundDevices);
}

void frmDevices::Unload() {
    if (Form_QueryUnload() && OnClosed) OnClosed();
}

bool frmDevices::Form_QueryUnload() {
    if (applying_) return false;
    if (!needs_.shared.EventsReady) {
        if (!needs_.dialogs.AskOkCancel(kNotInitialised)) throw EndProgram{0};
        return false;
    }
    for (const char* name : {desktop_file::kError, desktop_file::kDiagnostics}) {
        try {
            needs_.files.Delete(name);
        } catch (const RuntimeError&) {
            continue;  // a file that cannot be deleted stays
        }
    }
    ShowDevicesInUse();
    Windows::Store(needs_.settings, Frame);
    return true;
}

void frmDevices::ShowDevicesInUse() {
    main_.lblInput.SetCaption(Left(needs_.engine.InputDeviceName, kShownCharacters));
    main_.lblOutput.SetCaption(Left(needs_.engine.OutputDeviceName, kShownCharacters));
    main_.lblSampleRate.SetCaption(CStr(needs_.shared.SampleRate));
}

}  // namespace sonavex
