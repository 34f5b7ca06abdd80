#pragma once

#include <string>
#include <type_traits>
#include <utility>

#include "core/mixer/MixerSession.h"
#include "core/shell/frmMain.h"
#include "platform/plain/MemorySettingsStore.h"
#include "support/CallLog.h"
#include "support/Recorders.h"
#include "support/ReportFakes.h"
#include "support/VirtualEventLoop.h"

namespace sonavex {
// A fake computer with configurable properties.
class FakeDesktop : public Desktop {
public:
    explicit FakeDesktop(CallLog& log) noexcept : log_(log) {}
    bool AnotherInstanceRunning() override {
        log_.Call("AnotherInstanceRunning");
        return anotherInstance;
    }
    std::int32_t OsMajorVersion() override {
        log_.Call("OsMajorVersion");
        return majorVersion;
    }
    std::string ApplicationFolder() override {
        log_.Call("ApplicationFolder");
        return "/opt/sonavex";
    }
    ScreenArea Screens() override {
        log_.Call("Screens");
        return screens;
    }

    bool anotherInstance = false;
    std::int32_t majorVersion = 10;
    ScreenArea screens{1920, 1080, 1920, 1080};

private:
    CallLog& log_;
};

// For a World without mixers, because the rig has its own.
struct NoMixers {};

// Records the names of its calls, and the devices as OUTPUT|INPUT.
class RecordingMixerSession : public MixerSession {
public:
    explicit RecordingMixerSession(CallLog& log) noexcept : log_(log) {}
    void PointMixersAt(const std::string& output, const std::string& input) override {
        log_.Call("PointMixersAt", output + '|' + input);
    }
    MixerDeviceNumbers DeviceNumbers() const override { return numbers; }
    void ReopenSoundCard(const std::string& output, const std::string& input) override {
        log_.Call("ReopenSoundCard", output + '|' + input);
    }
    void CaptureAndApplySaved(bool) override { log_.Call("CaptureAndApplySaved"); }
    void SetUpSoundControls() override { log_.Call("SetUpSoundControls"); }
    void ShowSoundCard() override { log_.Call("ShowSoundCard"); }
    void UnloadDialogs() override { log_.Call("UnloadDialogs"); }
    void SaveAndRestoreInitial() override { log_.Call("SaveAndRestoreInitial"); }
    void RestoreInitial() override { log_.Call("RestoreInitial"); }

    MixerDeviceNumbers numbers;

private:
    CallLog& log_;
};

// Everything around the main form except the sound system. The fakes record into the log. Store may be a
// reference, to settings that outlive this world.
template <class Loop = VirtualEventLoop, class Store = MemorySettingsStore,
          class Mixers = RecordingMixerSession>
class WorldOf {
public:
    // The arguments are passed to the loop.
    template <class... Arguments>
    explicit WorldOf(Arguments&&... arguments) : loop(std::forward<Arguments>(arguments)...) {}
    explicit WorldOf(Store settingsStore) requires std::is_reference_v<Store> : store(settingsStore) {}

    frmMain::Needs On(SoundSystem& sound) { return On(sound, errorLog); }
    frmMain::Needs On(SoundSystem& sound, ErrorLog& errors) { return On(sound, errors, mixers); }
    frmMain::Needs On(SoundSystem& sound, ErrorLog& errors, MixerSession& session) {
        return {store, sound, loop, dialogs, desktop, errors, session, ending};
    }

    CallLog log;
    Store store = Make<Store>(log);
    Loop loop;
    RecordingDialogs dialogs{log};
    FakeDesktop desktop{log};
    RecordingErrorLog errorLog{log};
    Mixers mixers = Make<Mixers>(log);
    MemoryDesktopFiles files{log};
    RecordingHelp help{log};
    Ending ending;

private:
    template <class Fake>
    static Fake Make(CallLog& log) {
        if constexpr (std::is_constructible_v<Fake, CallLog&>)
            return Fake(log);
        else
            return Fake();
    }
};

using World = WorldOf<>;

}  // namespace sonavex
