#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "core/mixer/MixerSession.h"
#include "core/shell/frmMain.h"
#include "platform/plain/MemorySettingsStore.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/CallLog.h"
#include "support/Recorders.h"
#include "support/VirtualEventLoop.h"

namespace sonavex {

// A computer made of settings: what a test wants the form to find.
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

// Names of what it was asked for.
class RecordingMixerSession : public MixerSession {
public:
    explicit RecordingMixerSession(CallLog& log) noexcept : log_(log) {}
    void PointMixersAt(const std::string&, const std::string&) override { log_.Call("PointMixersAt"); }
    MixerDeviceNumbers DeviceNumbers() const override { return numbers; }
    void ReopenSoundCard(const std::string&, const std::string&) override { log_.Call("ReopenSoundCard"); }
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

// The main form on any sound system, with fakes all around.
class FormWorld {
public:
    CallLog log;
    MemorySettingsStore store;
    VirtualEventLoop loop;
    RecordingDialogs dialogs{log};
    FakeDesktop desktop{log};
    RecordingErrorLog errorLog{log};
    RecordingMixerSession mixers{log};

    frmMain::Needs On(SoundSystem& sound) { return {store, sound, loop, dialogs, desktop, errorLog, mixers}; }
};

// The main form on the stepped simulated card.
class FormRig : public FormWorld {
public:
    FormRig() { form.Frame.SetSize(980, 640); }

    // Captures and processes so many blocks.
    void Step(int blocks) {
        for (int i = 0; i < blocks; ++i) {
            card.Card().Step(2048);
            loop.DeliverSignals();
        }
    }
    const std::string& Thd() const { return form.Measurement.Controls.lblThd.Caption(); }

    SimulatedSoundSystem card{loop, SimulatedSoundSystem::Pace::kStepped};
    frmMain form{On(card)};
};

}  // namespace sonavex
