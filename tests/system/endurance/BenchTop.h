#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/World.h"

namespace sonavex {

// The instrument for days: the main form and the selection of devices as the program has them, the stepped
// simulated card, virtual time, and a user who closes every message. The world's log keeps counts only, so
// that memory that grows is the instrument's.
class BenchTop : private World {
public:
    static constexpr std::int32_t kBlockFrames = 2048;

    BenchTop() { log.CountOnly(); }
    ~BenchTop() { TakeAway(); }
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
    MemorySettingsStore& Store() noexcept { return store; }

    // Messages and errors shown, and starts of the program, since the bench was set up.
    std::uint64_t Messages() const;
    std::uint64_t Starts() const noexcept { return starts_; }
    // The last message and the last error shown.
    std::string LastMessage() const { return log.Last("Message") + "; " + log.Last("WriteErrorLog"); }

private:
    void MakeForm();
    void TakeAway();
    void ChooseDevices();
    void Pass(std::chrono::nanoseconds time);
    void LeaveWhenEnded();

    SimulatedSoundSystem card_{loop, SimulatedSoundSystem::Pace::kStepped};
    std::unique_ptr<frmMain> form_;
    bool ended_ = false;
    int depth_ = 0;  // of dialogs within time that passes
    std::int32_t wantedRate_ = -1;
    std::uint64_t starts_ = 0;
};

}  // namespace sonavex
