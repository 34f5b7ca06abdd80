#include "core/shell/frmMain.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <utility>

#include "core/audio/ExtendedRates.h"
#include "core/dsp/AnalysisBand.h"
#include "core/ports/SoundErrors.h"
#include "core/settings/SampleRates.h"
#include "core/settings/Windows.h"
#include "core/support/ScopedFlag.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr const char* kAnotherInstance = "Another instance of Quenby Sonavex is running";
constexpr const char* kInvalidRate = "Invalid Sampling Rate. Resetting to 22050.";
constexpr const char* kHelpFileName = "Sonavex.chm";
constexpr std::int32_t kFallbackRateIndex = 3;

std::string BitsCaption(int input, int output, bool only16) {
    if (input == 0 || output == 0) return {};
    const char* const used = only16 ? ", 16 used" : "";
    if (input == output) return CStr(input) + " bit" + used;
    return "in " + CStr(input) + used + " · out " + CStr(output) + " bit";
}

}  // namespace

frmMain::frmMain(const Needs& needs)
    : Instrument({needs.store, needs.sound, needs.loop, needs.dialogs, needs.errorLog, needs.mixers}),
      Baseline(Instrument.Shared, Instrument.Settings, needs.dialogs, Instrument.Meter.Analysis(),
               Instrument.Meter.Controls),
      Guard(needs.dialogs, needs.errorLog, needs.ending),
      GeneratorPanel({Instrument.Shared, Instrument.Settings, needs.dialogs, Instrument.Meter.Generator,
                      [this](bool enabled) { Instrument.HiTimer1.SetEnabled(enabled); }},
                     mnuPrint, Instrument.Meter.Controls.chkMuteOutput),
      needs_(needs) {
    cmdExit.Click.Handle([this] { cmdExit_Click(); });
    mnuExit.Click.Handle([this] { mnuExit_Click(); });
    mnuSoundCard.Click.Handle([this] { mnuSoundCard_Click(); });
    mnuSelectCard.Click.Handle([this] { mnuSelectCard_Click(); });
    GeneratorPanel.CurrentSignal().OnLevel = [this](std::int32_t level) { Instrument.SetVolume(level); };
    Instrument.Engine.OnDevices = [this](const std::string& input, const std::string& output,
                                         std::int32_t rateHz) { ShowDevices(input, output, rateHz); };
    Instrument.Engine.OnLimits = [this](std::int32_t highestHz) {
        LimitFrequencySliders(highestHz);
        GeneratorPanel.FollowLimits();
    };
    Guard.OnMessageOpen = [this](bool open) { Instrument.Engine.HoldNotifications = open; };
    Guard.OnEnd = [this](const EndProgram& end) { End(end); };
    Instrument.OnBlockQueued = [this] { Guard.BlockSucceeded(); };
    Instrument.Meter.OnBlock = [this] {
        if (Instrument.Meter.Updated() && Instrument.Meter.Analysis().FreqLocked) mnuPrint.SetEnabled(true);
    };
    Instrument.Watch.Held = [this] { return choosingDevices_; };
    Instrument.Watch.OnChanged = [this] { ShowStreamState(); };
    Instrument.Watch.OnRestarted = [this] { needs_.mixers.SetUpSoundControls(); };
    Instrument.Watch.ChooseDevices = [this] { ChooseDevices(); };
    Instrument.Watch.Yielding = [this] { return Instrument.HiTimer1.Ticking(); };
    Instrument.HiTimer1.AfterTick = [this] {
        if (Instrument.Watch.Postponed() || !lateErrors_.empty()) catchUp_->Raise();
    };
    endLater_ = needs.loop.CreateSignal([this] { End(*needs_.ending.Requested()); });
    catchUp_ = needs.loop.CreateSignal([this] { CatchUp(); });
}

frmMain::~frmMain() {
    LeavePath();
}

std::string frmMain::HelpFileIn(const std::string& folder) {
    return (std::filesystem::path(folder) / kHelpFileName).string();
}

void frmMain::Form_Load() {
    RefuseSecondInstance();
    HelpFile = HelpFileIn(needs_.desktop.ApplicationFolder());
    RestorePosition();
    Reached(Started::kPosition);
    Instrument.Shared.OsMajorVersion = needs_.desktop.OsMajorVersion();
    Frame.SetCaption(std::string(kApplicationTitle) + " & Function Generator");
    Baseline.RestoreBoxes();
    RestoreSampleRate();
    LimitFrequencySliders(Instrument.Shared.SampleRate / 2);
    GeneratorPanel.InitGenerator();
    Reached(Started::kGenerator);
    CheckExtendedRate();
    CreateSoundDevices();
    Reached(Started::kDevices);
    StartStream();
    SelectLastTab();
    Reached(Started::kTabs);
}

void frmMain::RefuseSecondInstance() {
    if (!needs_.desktop.AnotherInstanceRunning()) return;
    needs_.dialogs.Message(kAnotherInstance, MessageIcon::kCritical);
    throw EndProgram{0};
}

void frmMain::RestorePosition() {
    const Windows::Place place = Windows::Restore(Instrument.Settings, Frame, needs_.desktop.Screens());
    Frame.Move(place.left, place.top);
}

// An extended rate takes effect before it is checked, so that the generator keeps frequencies above half the
// indexed rate.
void frmMain::RestoreSampleRate() {
    RestoreIndexedRate();
    extendedRate_ = Instrument.Settings.Text(keys::kExtendedSampleRate);
    if (const auto rateHz = ExtendedRateOf(extendedRate_)) Instrument.Shared.SampleRate = *rateHz;
}

void frmMain::RestoreIndexedRate() {
    const std::string fallback = CStr(DefaultSampleRateIndex(Instrument.Shared.OsMajorVersion));
    const std::string stored = Instrument.Settings.Text(Settings::WithFallback(keys::kSampleRate, fallback));
    if (IsNumeric(stored)) {
        const double index = RoundHalfEven(CDbl(stored));
        if (index >= 0.0 && index < static_cast<double>(SampleRateTable.size())) {
            Instrument.Shared.SampleRate = SampleRateTable[static_cast<std::size_t>(index)];
            return;
        }
    }
    Instrument.Shared.SampleRate = SampleRateTable[kFallbackRateIndex];
    Instrument.Settings.Save(keys::kSampleRate, CStr(kFallbackRateIndex));
    needs_.dialogs.Message(kInvalidRate, MessageIcon::kInformation);
}

void frmMain::CheckExtendedRate() {
    if (extendedRate_.empty() || StoredDevicesRunAt(ExtendedRateOf(extendedRate_))) return;
    RestoreIndexedRate();
    LimitFrequencySliders(Instrument.Shared.SampleRate / 2);
    GeneratorPanel.FollowLimits();
    needs_.dialogs.Message("The selected sound devices do not run at the stored sampling rate of " +
                               extendedRate_ + " Hz. The sampling rate is now " +
                               CStr(Instrument.Shared.SampleRate) + " Hz.",
                           MessageIcon::kInformation);
}

bool frmMain::StoredDevicesRunAt(std::optional<std::int32_t> extendedRateHz) const {
    const std::string input = Instrument.Settings.Text(keys::kInput);
    const std::string output = Instrument.Settings.Text(keys::kOutput);
    const RateList rates = CommonExtendedRates(needs_.sound, input, output);
    return extendedRateHz && std::find(rates.begin(), rates.end(), *extendedRateHz) != rates.end();
}

void frmMain::ShowDevices(const std::string& input, const std::string& output, std::int32_t rateHz) {
    lblInput.SetCaption(input);
    lblOutput.SetCaption(output);
    lblSampleRate.SetCaption(CStr(rateHz));
}

void frmMain::LimitFrequencySliders(std::int32_t highestHz) {
    GeneratorPanel.Controls.sldStartFreq.SetMax(highestHz);
    GeneratorPanel.Controls.sldEndFreq.SetMax(highestHz);
}

void frmMain::CreateSoundDevices() {
    if (!Instrument.Engine.CreateDevices()) ChooseDevices();
}

void frmMain::StartStream() {
    if (!Instrument.Engine.SetEvents()) ChooseDevices();
    Instrument.Engine.RestartPending = true;
    Instrument.Meter.Analysis().HistIndex = 0;
    const BandEdges band = AnalysisBand(Instrument.Shared.SampleRate);
    Instrument.Meter.SetUpAnalysis(band.lowHz, band.highHz);
    needs_.mixers.CaptureAndApplySaved(Instrument.Shared.NewerGeneration());
    Reached(Started::kMixers);
    needs_.mixers.SetUpSoundControls();
    Instrument.Engine.ResetStream();
    Instrument.HiTimer1.SetInterval(1ms);
    Instrument.StartCapture();
    FollowPath();
}

// Polled, because volume changes are not reported.
void frmMain::FollowPath() {
    ShowPath();
    if (pathTimer_ == 0) pathTimer_ = needs_.loop.StartTimer(1s, [this] { ShowPath(); });
}

void frmMain::LeavePath() {
    needs_.loop.StopTimer(pathTimer_);
    pathTimer_ = 0;
}

void frmMain::ShowPath() {
    std::string text;
    for (const std::string& note : Instrument.Engine.PathNotes()) text += (text.empty() ? "" : "\r") + note;
    PathNote.SetCaption(text);
    Instrument.UsedBits.Observe();
    if (choosingDevices_) return lblBits.SetCaption("");
    lblBits.SetCaption(BitsCaption(Instrument.Engine.InputBits(), Instrument.Engine.OutputBits(),
                                   Instrument.UsedBits.Only16()));
}

void frmMain::StreamError(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const RuntimeError& loss) {
        if (loss.Number() == sound_error::kBufferLost) return Instrument.Watch.DeviceLost(loss);
    } catch (...) {
    }
    if (Instrument.HiTimer1.Ticking())
        lateErrors_.push_back(error);
    else
        Guard.StreamError(error);
}

// Does what a tick has postponed. The signal may arrive during the next tick, which raises it again.
void frmMain::CatchUp() {
    if (Instrument.HiTimer1.Ticking()) return;
    for (const std::exception_ptr& error : std::exchange(lateErrors_, {})) Guard.StreamError(error);
    Instrument.Watch.CatchUp();
}

// Marks stale readings.
void frmMain::ShowStreamState() {
    StreamTrouble.SetCaption(Instrument.Watch.Reason());
    Instrument.Meter.Display.ShowStopped(Instrument.Watch.Stopped());
    if (Instrument.Watch.Stopped()) Instrument.Meter.StreamDisturbed();
}

// Opens the first tab if the stored one cannot be selected.
void frmMain::SelectLastTab() {
    try {
        LastTabIndex = Instrument.Settings.Integer(keys::kLastTab);
        TabStrip1.SetIndex(LastTabIndex);
    } catch (const RuntimeError&) {
        TabStrip1.SetIndex(0);
    }
}

void frmMain::Form_QueryUnload() {
    if (unloaded_) return;
    unloaded_ = true;
    LeavePath();
    ShutdownStep(BeforeShutdown != nullptr, BeforeShutdown);
    Instrument.Watch.Stop();
    ShutdownStep(true, [this] { Instrument.HiTimer1.SetEnabled(false); });
    ShutdownStep(Has(Started::kDevices), [this] { Instrument.Engine.Stop(); });
    ShutdownStep(Has(Started::kGenerator), [this] { GeneratorPanel.WriteMemoryToRegistry(); });
    ShutdownStep(Has(Started::kTabs),
                 [this] { Instrument.Settings.Save(keys::kLastTab, CStr(std::int32_t{TabStrip1.Index()})); });
    ShutdownStep(true, [this] { needs_.mixers.UnloadDialogs(); });
    ShutdownStep(Has(Started::kMixers), [this] { needs_.mixers.SaveAndRestoreInitial(); });
    ShutdownStep(true, [this] { Instrument.Engine.Release(); });
    ShutdownStep(Has(Started::kPosition), [this] { Windows::Store(Instrument.Settings, Frame); });
}

void frmMain::ShutdownStep(bool due, const std::function<void()>& step) {
    if (!due) return;
    try {
        step();
    } catch (const EndProgram&) {
        // Ignored, because the program is already ending.
    } catch (...) {
        Guard.Fatal(std::current_exception());
    }
}

void frmMain::EndAtOnce() {
    if (unloaded_) return;
    unloaded_ = true;
    LeavePath();
    ShutdownStep(BeforeShutdown != nullptr, BeforeShutdown);
    Instrument.Watch.Stop();
    ShutdownStep(true, [this] { Instrument.HiTimer1.SetEnabled(false); });
    ShutdownStep(true, [this] { Instrument.Engine.Stop(); });
    ShutdownStep(true, [this] { needs_.mixers.UnloadDialogs(); });
    ShutdownStep(Has(Started::kMixers), [this] { needs_.mixers.RestoreInitial(); });
    ShutdownStep(true, [this] { Instrument.Engine.Release(); });
}

void frmMain::ShutDown(const EndProgram& end) {
    if (end.atOnce)
        EndAtOnce();
    else
        Form_QueryUnload();
}

bool frmMain::Busy() const {
    return Instrument.Engine.Restarting() || Instrument.HiTimer1.Ticking();
}

void frmMain::End(const EndProgram& end) {
    needs_.ending.Request(end);
    // The open calls throw EndProgram, which comes back here.
    if (needs_.ending.Waiting()) return;
    if (Busy()) {
        endLater_->Raise();
        return;
    }
    if (unloaded_) return;
    const EndProgram requested = *needs_.ending.Requested();
    ShutDown(requested);
    if (OnClosed) OnClosed(requested.status);
}

void frmMain::cmdExit_Click() {
    Unload();
}

void frmMain::mnuExit_Click() {
    cmdExit.Press();
}

void frmMain::mnuSoundCard_Click() {
    needs_.mixers.ShowSoundCard();
}

void frmMain::mnuSelectCard_Click() {
    if (Instrument.Engine.Restarting()) return;
    for (Label* label : {&lblInput, &lblOutput, &lblSampleRate}) label->SetCaption("Stopped");
    ChooseDevices();
}

// Only one dialog may control the engine. Close the mixer dialogs first: they show the old card.
void frmMain::ChooseDevices() {
    if (choosingDevices_ || Instrument.Engine.Restarting() || !ShowDeviceDialog) return;
    {
        const ScopedFlag choosing(choosingDevices_);
        lblBits.SetCaption("");
        needs_.mixers.UnloadDialogs();
        ShowDeviceDialog();
    }
    if (pathTimer_ != 0) ShowPath();
}

frmDevices::Needs frmMain::DevicesNeeds(DesktopFiles& files, Help& help) {
    return {Instrument.Shared,
            Instrument.Settings,
            needs_.sound,
            needs_.loop,
            needs_.dialogs,
            needs_.desktop,
            files,
            help,
            Instrument.Engine,
            GeneratorPanel,
            [this] { needs_.mixers.SetUpSoundControls(); }};
}

frmDevices::MainLabels frmMain::DevicesLabels() {
    return {lblInput, lblOutput, lblSampleRate};
}

}  // namespace sonavex
