#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "system/endurance/BenchTop.h"
#include "system/endurance/RandomUser.h"

namespace sonavex {

// Days of use in a fraction of the time: blocks without end, and now and then something that users and
// sound cards do. After every such event the state must be possible; from time to time everything is put
// in order, and what is read must be what the device under test does. Whatever is not as it must be is a
// std::runtime_error that names the block and the seed.
class Soak {
public:
    // What happened, by kind.
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
    };
    static constexpr std::size_t kEvents = static_cast<std::size_t>(Event::kStoredValue) + 1;

    struct Report {
        std::uint64_t blocks = 0;
        double soundSeconds = 0.0;  // what the blocks last
        std::array<std::uint64_t, kEvents> events{};
        std::uint64_t checks = 0;   // of readings against the device under test
        double worstPercent = 0.0;  // largest error of a reading, percentage points
        double worstDb = 0.0;
        std::uint64_t programStarts = 0;
        std::uint64_t messages = 0;
        std::uint64_t losses = 0;
        std::uint64_t overruns = 0;
        std::uint64_t segmentsLost = 0;
        std::uint64_t mostFrames = 0;  // captured from one start of the program to its end
        std::size_t warmBytes = 0;     // heap in use at the first check, and the most at any later one
        std::size_t mostBytes = 0;
    };
    static const char* Name(Event event);

    // An event comes after so many blocks on average; 700 is every half minute at 48000 Hz.
    explicit Soak(std::uint64_t seed, double blocksPerEvent = 700.0);

    // Without restarts of the program, so that its counts grow; it may still end by itself.
    void LeaveRunning() noexcept { restarts_ = false; }

    // Runs so many blocks; `checkEvery`: blocks between the checks of readings, which come on top.
    void Run(std::uint64_t blocks, std::uint64_t checkEvery);
    const Report& Result() const noexcept { return report_; }

    // Told after each check of readings. May be empty.
    std::function<void()> OnCheck;

private:
    void Step();
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
    void CheckMemory();
    std::string Place() const;
    void Require(bool condition, const std::string& what) const;

    const std::uint64_t seed_;
    const double eventProbability_;
    bool restarts_ = true;
    RandomUser user_;
    std::unique_ptr<BenchTop> bench_ = std::make_unique<BenchTop>();
    Report report_;
    std::int64_t blocksUntilPlugged_ = 0;  // 0: plugged
    std::int64_t blocksUntilMoving_ = 0;   // 0: moving
    std::string happenedLast_;
    // Counts of the present program at the last look.
    std::uint64_t seenStart_ = 0;
    std::uint64_t seenBlocks_ = 0;
    std::uint64_t seenOverruns_ = 0;
    std::uint64_t seenLosses_ = 0;
    CaptureStatistics seenCapture_;
};

}  // namespace sonavex
