#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/audio/frmDevices.h"
#include "core/report/DesktopErrorLog.h"
#include "core/report/PrintCommand.h"
#include "fuzz/FuzzTarget.h"
#include "support/CardWorld.h"
#include "support/FineUser.h"
#include "support/RecordingPrinter.h"

namespace sonavex::fuzz {

// The whole instrument without its window, assembled as in the program, on the stepped simulated card. Check
// verifies what the user would see; call it after every step.
class FuzzRig : public CardWorld<SettingsStore&> {
public:
    // The store must outlive the instrument. `plainText`: the input is UTF-8, so all shown texts must be.
    FuzzRig(SettingsStore& settingsStore, std::int32_t osMajorVersion, bool plainText);
    ~FuzzRig();
    FuzzRig(const FuzzRig&) = delete;
    FuzzRig& operator=(const FuzzRig&) = delete;

    // Starts as the program does. True if the instrument runs. False if settings prevented the start; the
    // message has then named the key, and the shutdown has run.
    bool Start();
    // Moves `blocks` blocks through the card, with their duration.
    void Step(int blocks);
    // Performs a user action. Errors are shown as the program shows them; EndProgram ends the instrument.
    void Act(const std::function<void()>& action);
    // Whether the program has ended.
    bool Ended() const noexcept { return ended_; }
    void ShutDown();
    // Number of run-time errors shown to the user.
    std::size_t ErrorsShown() const;

    enum class After { kAnAction, kABlock };
    // Requires finite readings, levels, phases and positions in range, and displayable texts.
    void Check(After what);

    RecordingPrinter printer{log};
    Settings settings{store};
    DesktopErrorLog errors{{settings, card, desktop, files, FixedTime}};
    frmMain form{On(card, errors, mixers)};
    FineUser fine{form.Instrument.Fine};
    PrintCommand print{{printer, dialogs, desktop,
                        [] {
                            return CalendarDate{2024, 3, 9};
                        }},
                       form.Instrument.Meter.Controls,
                       form.cmdPrint,
                       form.mnuPrint};
    // User's actions in the device dialog. A dialog that they leave open is closed.
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
