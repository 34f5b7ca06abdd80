#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "support/RandomUser.h"
#include "system/endurance/BenchTop.h"

namespace sonavex {

// Simulates days of use: blocks without end, with random actions of users and faults of sound cards. After
// every event the state must be valid. From time to time all faults are cleared, and the readings must be
// those of the device under test. A failure is a std::runtime_error that names the block and the seed.
class Soak {
public:
    // Kinds of events.
    enum class Event {
        kUserAction,
        kRateChange,
        kProgramRestart,
        kUnplugged,
        kStandstill,
        kFailedOperation,
        kOtherDevice,
        kHeldUp,
        kStoredValue,
        kFineSource,
    };
    static constexpr std::size_t kEvents = static_cast<std::size_t>(Event::kFineSource) + 1;

    struct Report {
        std::uint64_t blocks = 0;
        double soundSeconds = 0.0;  // duration of the blocks
        std::array<std::uint64_t, kEvents> events{};
        std::uint64_t checks = 0;   // comparisons of readings with the device under test
        double worstPercent = 0.0;  // largest error of a reading, percentage points
        double worstDb = 0.0;
        std::uint64_t programStarts = 0;
        std::uint64_t messages = 0;
        std::uint64_t losses = 0;
        std::uint64_t overruns = 0;
        std::uint64_t segmentsLost = 0;
        std::uint64_t fineFrames = 0;
        std::uint64_t mostFrames = 0;  // most frames captured in one run of the program
        std::size_t warmBytes = 0;     // heap in use at the first check, and the largest at later checks
        std::size_t mostBytes = 0;
    };
    static const char* Name(Event event);

    // blocksPerEvent: average number of blocks between events; 700 is about half a minute at 48000 Hz.
    explicit Soak(std::uint64_t seed, double blocksPerEvent = 700.0);

    // Disables restarts of the program, so that its counts grow. It may still end by itself.
    void LeaveRunning() noexcept { restarts_ = false; }

    // Runs at least `blocks` blocks, including those of the checks. `checkEvery`: blocks from the end of a
    // check of readings to the start of the next.
    void Run(std::uint64_t blocks, std::uint64_t checkEvery);
    const Report& Result() const noexcept { return report_; }

    // Called after each check of readings. May be empty.
    std::function<void()> OnCheck;

private:
    void Step();
    void CountBlocks(std::uint64_t blocks);
    void HappenSomething();
    void Happen(Event event);
    void RestartProgram();
    void ReachForTheCard(Event event);
    void StoreOddValue();
    void StartUntilItRuns();
    void FollowCard();
    void CheckState();
    enum class After { kAnEvent, kABlock };
    void CheckTones(After what);
    [[noreturn]] void Fail(const char* field, std::int32_t tone, double value) const;
    void CheckCounts();
    void CheckReadings();
    void PutInOrder(std::int32_t rateIndex, std::int32_t frequencyHz);
    void WaitForReadings();
    void CompareReadings();
    void CheckThatBlocksAreCounted();
    void CheckFineFrames();
    void CheckMemory();
    std::string Place() const;
    void Require(bool condition, const std::string& what) const;

    const std::uint64_t seed_;
    const double eventProbability_;
    bool restarts_ = true;
    SeededRandomness random_;
    std::unique_ptr<BenchTop> bench_ = std::make_unique<BenchTop>();
    Report report_;
    std::int64_t blocksUntilPlugged_ = 0;  // 0: plugged
    std::int64_t blocksUntilMoving_ = 0;   // 0: moving
    std::string happenedLast_;
    // Counts of the present run at the last check.
    std::uint64_t seenStart_ = 0;
    std::uint64_t seenBlocks_ = 0;
    std::uint64_t seenOverruns_ = 0;
    std::uint64_t seenLosses_ = 0;
    CaptureStatistics seenCapture_;
};

}  // namespace sonavex
