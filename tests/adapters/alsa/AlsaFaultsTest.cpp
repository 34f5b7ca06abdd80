// Cards that are in use, unplugged, suspended or served too late.

#include <malloc.h>

#include <ctime>
#include <filesystem>
#include <thread>

#include "adapters/alsa/AlsaSession.h"
#include "support/AllocationCounter.h"
#include "support/Wait.h"
#include "support/alsa/LoopCards.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t kRateHz = 48000;
constexpr const char* kDevice = "alsa:card";

class AlsaFaults : public testing::Test {
protected:
    void OpenAndRun() {
        session_.Open(kDevice, kRateHz);
        ASSERT_TRUE(session_.Captures());
    }
    // The same program continues with the same card.
    void ExpectRecovery() {
        session_.Close();
        OpenAndRun();
        EXPECT_TRUE(session_.losses.empty());
    }

    LoopCards cards_{CardList{{"card", "Test card"}, {"hw:CARD=Fake,DEV=0", "Second Test card"}}};
    LoopCardState& card_ = cards_.State("card");
    AlsaSession session_;
};

TEST_F(AlsaFaults, UnpluggedWhileRunningAndPluggedInAgain) {
    OpenAndRun();
    card_.unplugged = 1;
    session_.ExpectLosses("has been removed.");
    session_.ExpectError(sound_error::kNoDriver, "'Test card (direct)' is not there.",
                         [&] { session_.output->CreateBuffer(Stereo(kPlaybackBytes, kRateHz)); });
    session_.Close();
    session_.ExpectError(sound_error::kNoDriver, "is not there.", [&] { session_.Create(kDevice, kRateHz); });
    card_.unplugged = 0;
    ExpectRecovery();
}

// The card runs on the system's clock, so neither direction drifts.
TEST_F(AlsaFaults, BothDirectionsCompareTheirClockWithTheSystems) {
    OpenAndRun();
    const auto lead = [&](const auto& buffer) { return buffer->ClockLead().value_or(1h); };
    session_.loop.RunUntil([] { return false; }, 300ms);
    const auto captureBefore = lead(session_.capture);
    const auto playbackBefore = lead(session_.playback);
    session_.loop.RunUntil([] { return false; }, 1s);
    // The device moves pieces of 12 to 20 ms.
    EXPECT_LT(std::chrono::abs(lead(session_.capture) - captureBefore), 60ms);
    EXPECT_LT(std::chrono::abs(lead(session_.playback) - playbackBefore), 60ms);
    EXPECT_EQ(session_.capture->ClockName(), "");
}

TEST_F(AlsaFaults, SuspendedAndResumed) {
    OpenAndRun();
    card_.suspended = 1;
    session_.ExpectLosses("has been suspended.");
    card_.suspended = 0;
    ExpectRecovery();
}

double ProcessorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

TEST_F(AlsaFaults, StandingStillIsALossAndCostsNoTime) {
    OpenAndRun();
    const double before = ProcessorSeconds();
    card_.stalled = 1;
    session_.ExpectLosses("has stalled: it no longer moves samples.");
    EXPECT_LT(ProcessorSeconds() - before, 0.5);
    card_.stalled = 0;
    ExpectRecovery();
}

TEST_F(AlsaFaults, FailingAgainAndAgainIsALossAndCostsNoTime) {
    OpenAndRun();
    const double before = ProcessorSeconds();
    card_.failing = 1;
    session_.ExpectLosses("has failed: it did not resume after an interruption.");
    EXPECT_LT(ProcessorSeconds() - before, 0.5);
    card_.failing = 0;
    ExpectRecovery();
}

// The card's clock jumps, as when the machine does not serve it for that long.
TEST_F(AlsaFaults, LateServiceIsCountedAndSoundContinues) {
    OpenAndRun();
    EXPECT_EQ(session_.playback->Underruns(), 0U);
    EXPECT_EQ(session_.capture->Statistics().framesMissing, 0U);
    card_.stalled = 1;
    session_.loop.RunUntil([] { return false; }, 700ms);
    card_.stalled = 0;
    EXPECT_TRUE(WaitUntil(
        session_.loop,
        [&] {
            return session_.playback->Underruns() > 0 && session_.capture->Statistics().framesMissing > 0;
        },
        AlsaSession::kLimit));
    // About the length of the gap.
    const double missing = static_cast<double>(session_.capture->Statistics().framesMissing);
    EXPECT_NEAR(missing / kRateHz, 0.7, 0.4);
    EXPECT_TRUE(session_.Captures());
    session_.loop.RunUntil([] { return false; }, 100ms);
    EXPECT_TRUE(session_.losses.empty());
    EXPECT_LE(session_.playback->Underruns(), 3U);
}

TEST_F(AlsaFaults, HeldByAnotherProgram) {
    using Direction = LoopCards::Direction;
    const PrivateFolder folder;
    // Occupies one direction of the card from here on.
    const auto holder = [&](const char* program, const std::string& file, Direction direction) {
        auto process =
            std::make_unique<ChildProcess>(Arguments{program, "-q", "-D", "card", "-t", "raw", "-f", "S16_LE",
                                                     "-c", "2", "-r", "48000", file},
                                           cards_.ForPrograms(), folder.Path() / "log");
        EXPECT_TRUE(WaitUntil(
            session_.loop, [&] { return cards_.InUse("card", direction); }, AlsaSession::kLimit));
        return process;
    };
    const auto output = session_.system.CreatePlaybackDevice(kDevice);
    const auto input = session_.system.CreateCaptureDevice(kDevice);
    const std::string inUse = "The sound device 'Test card (direct)' is in use by another program.";
    {
        const auto player = holder("aplay", "/dev/zero", Direction::kPlayback);
        session_.ExpectError(sound_error::kAllocated, inUse,
                             [&] { output->CreateBuffer(Stereo(kPlaybackBytes, kRateHz)); });
        EXPECT_NO_THROW(input->CreateBuffer(Stereo(kCaptureBytes, kRateHz)));
        const auto recorder = holder("arecord", folder.Path() / "recording", Direction::kCapture);
        session_.ExpectError(sound_error::kAllocated, inUse,
                             [&] { input->CreateBuffer(Stereo(kCaptureBytes, kRateHz)); });
        // Busy cards are listed too.
        EXPECT_EQ(session_.system.EnumeratePlayback().size(), 3U);
    }
    ExpectRecovery();
}

TEST_F(AlsaFaults, HeldByAnotherBufferOfThisProgram) {
    OpenAndRun();
    session_.ExpectError(sound_error::kAllocated, "is in use by another program.",
                         [&] { session_.input->CreateBuffer(Stereo(kCaptureBytes, kRateHz)); });
    EXPECT_TRUE(session_.Captures());
}

std::ptrdiff_t Entries(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

TEST_F(AlsaFaults, FiftyRapidCyclesLeaveNothingBehind) {
    const auto cycle = [&](int round) {
        // Also with the conversions of a card, and after losses.
        session_.Open(round % 2 == 0 ? kDevice : "alsa:hw:CARD=Fake,DEV=0", kRateHz);
        if (round % 5 == 0) card_.unplugged = 1;
        session_.loop.Wait(1ms);
        session_.Close();
        card_.unplugged = 0;
        session_.loop.Yield();
        session_.losses.clear();
    };
    for (int round = 0; round < 10; ++round) cycle(round);
    const auto files = Entries("/proc/self/fd");
    const auto threads = Entries("/proc/self/task");
    const std::size_t bytes = mallinfo2().uordblks;
    for (int round = 0; round < 50; ++round) cycle(round);
    EXPECT_EQ(Entries("/proc/self/fd"), files);
    EXPECT_EQ(Entries("/proc/self/task"), threads);
    // Less than one buffer of any of the cycles.
    EXPECT_LT(static_cast<double>(mallinfo2().uordblks) - static_cast<double>(bytes), 16384.0);
}

// Signals raised on the audio thread record its allocations since the first signal.
class CountingLoop : public PlainEventLoop {
public:
    std::unique_ptr<Signal> CreateSignal(std::function<void()>) override {
        return std::make_unique<CountingSignal>(*this);
    }
    std::atomic<int> raised{0};
    std::atomic<std::size_t> allocations{0};

private:
    class CountingSignal : public Signal {
    public:
        explicit CountingSignal(CountingLoop& loop) : loop_(loop) {}
        bool Raise() noexcept override {
            thread_local std::optional<AllocationCounter> counter;
            if (!counter) counter.emplace();
            loop_.allocations.store(counter->Count());
            ++loop_.raised;
            return true;
        }

    private:
        CountingLoop& loop_;
    };
};

TEST_F(AlsaFaults, TheAudioThreadAllocatesNothing) {
    CountingLoop loop;
    AlsaSoundSystem system(loop);
    const auto input = system.CreateCaptureDevice(kDevice);
    const auto capture = input->CreateBuffer(Stereo(kCaptureBytes, kRateHz));
    const PositionNotification position{kSegmentBytes - 1, system.CreateEvent([](EventHandle) {})};
    capture->SetNotificationPositions({&position, 1});
    capture->StartLooping();
    WaitUntil([&] { return loop.raised.load() >= 4; }, 5s);
    capture->Stop();
    EXPECT_GE(loop.raised.load(), 4);
    EXPECT_EQ(loop.allocations.load(), 0U);
}

TEST_F(AlsaFaults, TheAudioThreadsAllocateNothingOnTheFinePath) {
    OpenAndRun();
    std::vector<std::int32_t> samples(2 * kRateHz, 256);
    session_.playback->PlayFine(true);
    ASSERT_EQ(session_.playback->QueueFine(samples), samples.size());
    session_.capture->CaptureFine(true);
    const std::size_t waiting = session_.playback->FineFramesWaiting();
    const AllocationCounter counter;
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(counter.OfOtherThreads(), 0U);
    EXPECT_LT(session_.playback->FineFramesWaiting(), waiting);
    EXPECT_GT(session_.capture->TakeFine(samples).samples, 0U);
}

}  // namespace
}  // namespace sonavex
