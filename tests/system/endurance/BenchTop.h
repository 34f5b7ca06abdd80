#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "support/AnalyzerNeeds.h"
#include "support/FineUser.h"
#include "support/InlineBackground.h"
#include "support/MemoryFiles.h"
#include "support/World.h"
#include "system/endurance/FailingCard.h"

namespace sonavex {

// The instrument in continuous use: the main form and the selection of devices as in the program, the stepped
// simulated card, virtual time, and a user who closes every message. The log keeps counts only, so that
// growing memory belongs to the instrument.
class BenchTop : private World {
public:
    static constexpr std::int32_t kBlockFrames = 2048;
    static constexpr int kFineBits = 24;  // of the frames that the fine path plays

    BenchTop() { log.CountOnly(); }
    ~BenchTop() { TakeAway(); }
    BenchTop(const BenchTop&) = delete;
    BenchTop& operator=(const BenchTop&) = delete;

    // Starts the program. False if the start ended it.
    bool Start();
    // Ends the program as a user does. The next start finds what it stored.
    void End();
    bool Running() const noexcept { return form_ != nullptr; }
    frmMain& Form() noexcept { return *form_; }

    // Advances time by one block at the present rate; the card moves the same number of frames.
    void Block();
    // The same for several blocks while the event loop is blocked.
    void HoldUp(int blocks);
    // Performs a user action as the window does.
    void Act(const std::function<void()>& action);
    // Selects another rate in the selection of devices, as an index into the table of rates followed by
    // kExtendedRates.
    void SelectRate(std::int32_t index);

    // Follows the fine frames while the program runs; at first on.
    void UseFinePath(bool on);
    // The program has an Analyzer from its next start on. Its stimulus and the fine path exclude each other.
    void UseAnalyzer() { useAnalyzer_ = true; }
    // Null without one, and without a program.
    frmAnalyzer* Analyzer() noexcept { return analyzer_ ? &*analyzer_ : nullptr; }
    // What the Analyzer can open.
    MemoryFiles Recordings;

    // Null while off, and without a program.
    FineUser* Fine() noexcept { return fine_ ? &*fine_ : nullptr; }
    // Fine frames since construction.
    std::uint64_t FineFramesSeen() const noexcept { return fineBefore_ + (fine_ ? fine_->Frames() : 0); }

    FailingCard& Card() noexcept { return card_; }
    std::chrono::nanoseconds BlockTime() const;
    MemorySettingsStore& Store() noexcept { return store; }

    // Messages, errors and starts of the program since construction.
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

    FailingCard card_{loop, SimulatedSoundSystem::Pace::kStepped};
    std::unique_ptr<frmMain> form_;
    bool useAnalyzer_ = false;
    InlineBackground background_{loop};
    HistoryInMemory history_{background_};
    std::optional<frmAnalyzer> analyzer_;
    bool useFine_ = true;
    std::optional<FineUser> fine_;
    std::uint64_t fineBefore_ = 0;  // of earlier users
    bool ended_ = false;
    int depth_ = 0;  // nesting of dialogs while time passes
    std::int32_t wantedRate_ = -1;
    std::uint64_t starts_ = 0;
};

}  // namespace sonavex
