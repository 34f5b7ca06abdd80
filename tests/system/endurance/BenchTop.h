#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>

#include "core/mixer/MixerSession.h"
#include "core/ports/DesktopFiles.h"
#include "core/ports/Help.h"
#include "core/shell/frmMain.h"
#include "platform/plain/MemorySettingsStore.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/VirtualEventLoop.h"

namespace sonavex {

// The instrument on a bench, for days: the main form and the selection of devices as the program has
// them, the stepped simulated card, virtual time, and somebody who closes every message. It remembers
// counts and nothing else, so that memory that grows is the instrument's.
class BenchTop : private Dialogs,
                 private ErrorLog,
                 private Desktop,
                 private MixerSession,
                 private DesktopFiles,
                 private Help {
public:
    static constexpr std::int32_t kBlockFrames = 2048;

    BenchTop() = default;
    ~BenchTop() override { TakeAway(); }
    BenchTop(const BenchTop&) = delete;
    BenchTop& operator=(const BenchTop&) = delete;

    // Starts the program. False when it ended at its start.
    bool Start();
    // Ends it as a user does; what it stores is there for the next start.
    void End();
    bool Running() const noexcept { return form_ != nullptr; }
    frmMain& Form() noexcept { return *form_; }

    // One block's time at the present rate, in which the card moves as many frames.
    void Block();
    // The same while nothing of it is served before its end.
    void HoldUp(int blocks);
    // What the user does, as the window does it.
    void Act(const std::function<void()>& action);
    // Another rate by way of the selection of devices, as an index into the table of rates.
    void SelectRate(std::int32_t index);

    SimulatedSoundSystem& Card() noexcept { return card_; }
    std::chrono::nanoseconds BlockTime() const;
    MemorySettingsStore& Store() noexcept { return store_; }

    // Since the bench was set up.
    std::uint64_t Messages() const noexcept { return messages_; }
    std::uint64_t Starts() const noexcept { return starts_; }
    const std::string& LastMessage() const noexcept { return lastMessage_; }

private:
    void Message(const std::string& text, MessageIcon) override { Remember(text); }
    bool AskOkCancel(const std::string& text) override;
    bool AskYesNo(const std::string& text) override;
    void SetBusyPointer(bool) override {}
    std::int32_t WriteErrorLog(std::string& tStr, const RuntimeError& error) override;
    void WriteLine(const std::string&) override {}
    void SetFatalError(bool) override {}
    bool AnotherInstanceRunning() override { return false; }
    std::int32_t OsMajorVersion() override { return 10; }
    std::string ApplicationFolder() override { return "/opt/sonavex"; }
    ScreenArea Screens() override { return {1920, 1080, 1920, 1080}; }
    void PointMixersAt(const std::string&, const std::string&) override {}
    void ReopenSoundCard(const std::string&, const std::string&) override {}
    MixerDeviceNumbers DeviceNumbers() const override { return {}; }
    void CaptureAndApplySaved(bool) override {}
    void SetUpSoundControls() override {}
    void ShowSoundCard() override {}
    void UnloadDialogs() override {}
    void SaveAndRestoreInitial() override {}
    void RestoreInitial() override {}
    void Append(const std::string&, const std::string&) override {}
    void Replace(const std::string&, const std::string&) override {}
    void Delete(const std::string&) override {}
    void ShowTopic(std::int32_t) override {}
    void ShowContents() override {}

    void Remember(const std::string& text);
    void MakeForm();
    void TakeAway();
    void ChooseDevices();
    void Pass(std::chrono::nanoseconds time);
    void LeaveWhenEnded();

    MemorySettingsStore store_;
    VirtualEventLoop loop_;
    SimulatedSoundSystem card_{loop_, SimulatedSoundSystem::Pace::kStepped};
    std::unique_ptr<frmMain> form_;
    bool ended_ = false;
    int depth_ = 0;  // of dialogs within time that passes
    std::int32_t wantedRate_ = -1;
    std::uint64_t messages_ = 0;
    std::uint64_t starts_ = 0;
    std::string lastMessage_;
};

}  // namespace sonavex
