#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/audio/frmDevices.h"
#include "core/mixer/SoundCardMixers.h"
#include "core/report/DesktopErrorLog.h"
#include "core/report/PrintCommand.h"
#include "core/settings/StoredPlaces.h"
#include "core/shell/frmMain.h"
#include "fuzz/FuzzTarget.h"
#include "platform/plain/MemorySettingsStore.h"
#include "platform/simulated/SimulatedMixer.h"
#include "support/FormRig.h"
#include "support/MixerWorld.h"
#include "support/RecordingPrinter.h"
#include "support/ReportFakes.h"

namespace sonavex::fuzz {

// The whole instrument without its face, as the program puts it together, on the stepped simulated card.
// What the user would see of it is looked at: Check after every step.
class FuzzRig {
public:
    // The store must outlive the instrument. `plainText`: what goes in is UTF-8, so what is shown must be.
    FuzzRig(SettingsStore& settingsStore, std::int32_t osMajorVersion, bool plainText);
    ~FuzzRig();
    FuzzRig(const FuzzRig&) = delete;
    FuzzRig& operator=(const FuzzRig&) = delete;

    // The start, as the program makes it: true when the instrument runs; false when settings kept it from
    // that, which has then been told with the key that is to blame, and the shutdown has run.
    bool Start();
    // So many blocks through the card, with the time that they take.
    void Step(int blocks);
    // An action of the user. What it raises is told as the program tells it; the program's end is an end.
    void Act(const std::function<void()>& action);
    // Whether an end has been asked for and made.
    bool Ended() const noexcept { return ended_; }
    void ShutDown();
    // How many run-time errors the user has been told of.
    std::size_t ErrorsTold() const;

    enum class After { kAnAction, kABlock };
    // Finite readings, levels, phases and positions inside their limits, texts that can be shown.
    void Check(After what);

    CallLog log;
    VirtualEventLoop loop;
    FakeDesktop desktop{log};
    RecordingDialogs dialogs{log};
    MemoryDesktopFiles files{log};
    RecordingHelp help{log};
    RecordingPrinter printer{log};
    SimulatedSoundSystem card{loop, SimulatedSoundSystem::Pace::kStepped};
    SimulatedMixer hardware{card, loop};
    MemoryJournal journal;
    SettingsStore& store;
    StoredPlaces places{store, desktop};
    SoundCardMixers mixers{{store, dialogs, places, hardware, journal}};
    Settings settings{store};
    DesktopErrorLog errors{{settings, card, desktop, files, FixedTime}};
    frmMain form{{store, card, loop, dialogs, desktop, errors, mixers}};
    PrintCommand print{{printer, dialogs, desktop,
                        [] {
                            return CalendarDate{2024, 3, 9};
                        }},
                       form.Instrument.Meter.Controls,
                       form.cmdPrint,
                       form.mnuPrint};
    // What the user does in the dialog for devices; a dialog that this leaves open is closed.
    std::function<void(frmDevices&)> InDeviceDialog;

private:
    void ShowDevices();
    void CheckReadings();
    void CheckGenerator(After what);
    void CheckTexts();
    void CheckMixers();
    void CheckShown(const std::string& text, const char* what) const;

    bool plainText_;
    bool ended_ = false;
    bool running_ = false;
    std::size_t linesSeen_ = 0;
};

}  // namespace sonavex::fuzz
