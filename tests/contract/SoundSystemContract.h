#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "core/ports/SoundErrors.h"
#include "core/ports/SoundSystem.h"
#include "support/Duplex.h"

namespace sonavex {

// Contract of every sound system. A Platform is default constructible, lives as long as the suite and offers
// std::unique_ptr<SoundSystem> Create(EventLoop&)
// std::string DefaultOutput(), DefaultInput() identifiers of the current defaults
// The default input must return bit for bit what the default output plays at 48000 Hz.
template <class Platform>
class SoundSystemContract : public testing::Test {
protected:
    static constexpr std::int32_t kRateHz = 48000;

    static void SetUpTestSuite() { platform_ = std::make_unique<Platform>(); }
    static void TearDownTestSuite() { platform_.reset(); }

    SoundSystemContract() : system_(platform_->Create(loop_)) {}

    void OpenPlayback() { duplex_.OpenPlayback("", kRateHz); }
    void OpenCapture() { duplex_.OpenCapture("", kRateHz); }
    void Close() { duplex_.Close(); }

    static std::int32_t Distance(const BufferCursors& cursors) {
        return (cursors.write - cursors.play + kPlaybackBytes) % kPlaybackBytes;
    }

    static std::ptrdiff_t Entries(const char* folder) {
        return std::distance(std::filesystem::directory_iterator(folder),
                             std::filesystem::directory_iterator());
    }

    static void ExpectShape(const SoundDeviceList& list, const std::string& current) {
        ASSERT_GE(list.size(), 2U);
        EXPECT_EQ(list[0].identifier, "");
        EXPECT_EQ(list[1].identifier, current);
        std::set<std::string> identifiers;
        for (const SoundDeviceInfo& device : list) {
            EXPECT_NE(device.description, "");
            EXPECT_TRUE(identifiers.insert(device.identifier).second) << device.identifier;
        }
    }

    inline static std::unique_ptr<Platform> platform_;
    PlainEventLoop loop_;
    std::unique_ptr<SoundSystem> system_;
    Duplex duplex_{loop_, *system_};
    std::unique_ptr<PlaybackDevice>& output_ = duplex_.output;
    std::unique_ptr<CaptureDevice>& input_ = duplex_.input;
    std::unique_ptr<PlaybackBuffer>& playback_ = duplex_.playback;
    std::unique_ptr<CaptureBuffer>& capture_ = duplex_.capture;
};

TYPED_TEST_SUITE_P(SoundSystemContract);

// In a typed test, members of the fixture are accessed through `this`.

TYPED_TEST_P(SoundSystemContract, ListsThePrimaryDeviceThenTheDefaultOne) {
    this->ExpectShape(this->system_->EnumeratePlayback(), this->platform_->DefaultOutput());
    this->ExpectShape(this->system_->EnumerateCapture(), this->platform_->DefaultInput());
}

TYPED_TEST_P(SoundSystemContract, RefusesAnUnknownIdentifier) {
    const auto expectRefusal = [](auto create) {
        try {
            create();
            ADD_FAILURE() << "created";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), sound_error::kNoDriver);
            EXPECT_STREQ(error.what(), "There is no sound device 'no-such-device'.");
        }
    };
    expectRefusal([&] { this->system_->CreatePlaybackDevice("no-such-device"); });
    expectRefusal([&] { this->system_->CreateCaptureDevice("no-such-device"); });
}

TYPED_TEST_P(SoundSystemContract, OpensEveryListedDevice) {
    for (const SoundDeviceInfo& device : this->system_->EnumeratePlayback())
        EXPECT_NE(this->system_->CreatePlaybackDevice(device.identifier)
                      ->CreateBuffer(Stereo(kPlaybackBytes, this->kRateHz)),
                  nullptr);
    for (const SoundDeviceInfo& device : this->system_->EnumerateCapture())
        EXPECT_NE(this->system_->CreateCaptureDevice(device.identifier)
                      ->CreateBuffer(Stereo(kCaptureBytes, this->kRateHz)),
                  nullptr);
}

TYPED_TEST_P(SoundSystemContract, RefusesOtherFormats) {
    this->output_ = this->system_->CreatePlaybackDevice("");
    this->input_ = this->system_->CreateCaptureDevice("");
    const auto expectRefusal = [&](std::int32_t number, auto change) {
        BufferDescription description = Stereo(kCaptureBytes, this->kRateHz);
        change(description);
        EXPECT_EQ(ErrorOf([&] { this->output_->CreateBuffer(description); }), number);
        EXPECT_EQ(ErrorOf([&] { this->input_->CreateBuffer(description); }), number);
    };
    expectRefusal(sound_error::kBadFormat, [](BufferDescription& wanted) { wanted.format.channels = 1; });
    expectRefusal(sound_error::kBadFormat,
                  [](BufferDescription& wanted) { wanted.format.bitsPerSample = 8; });
    expectRefusal(sound_error::kBadFormat, [](BufferDescription& wanted) { wanted.format.formatTag = 3; });
    expectRefusal(sound_error::kBadFormat,
                  [](BufferDescription& wanted) { wanted.format.samplesPerSecond = 0; });
    expectRefusal(error_number::kInvalidCall, [](BufferDescription& wanted) { wanted.bytes = 8190; });
    expectRefusal(error_number::kInvalidCall, [](BufferDescription& wanted) { wanted.bytes = 0; });
}

TYPED_TEST_P(SoundSystemContract, CursorsOfAStoppedBufferAreZero) {
    this->OpenPlayback();
    const auto expectZero = [&] {
        const BufferCursors cursors = this->playback_->GetCurrentPosition();
        EXPECT_EQ(cursors.play, 0);
        EXPECT_EQ(cursors.write, 0);
    };
    expectZero();
    this->playback_->SetCurrentPosition(4096);
    expectZero();
    this->playback_->PlayLooping();
    EXPECT_TRUE(WaitUntil(
        this->loop_, [&] { return this->playback_->GetCurrentPosition().write > 8192; },
        std::chrono::seconds(3)));
    this->playback_->Stop();
    expectZero();
}

TYPED_TEST_P(SoundSystemContract, CursorsAdvanceWithTheClockAndWrap) {
    this->OpenPlayback();
    this->playback_->PlayLooping();
    // The device fills its own buffer first.
    this->loop_.RunUntil([] { return false; }, std::chrono::milliseconds(200));
    BufferCursors last = this->playback_->GetCurrentPosition();
    const auto start = this->loop_.Now();
    std::int32_t advanced = 0;
    int wraps = 0;
    while (this->loop_.Now() - start < std::chrono::milliseconds(800)) {
        this->loop_.Wait(std::chrono::milliseconds(1));
        const BufferCursors cursors = this->playback_->GetCurrentPosition();
        EXPECT_TRUE(cursors.play >= 0 && cursors.play < kPlaybackBytes && cursors.play % 4 == 0);
        EXPECT_TRUE(cursors.write >= 0 && cursors.write < kPlaybackBytes && cursors.write % 4 == 0);
        EXPECT_LE(this->Distance(cursors), 3 * kSegmentBytes);
        wraps += cursors.write < last.write ? 1 : 0;
        advanced += (cursors.write - last.write + kPlaybackBytes) % kPlaybackBytes;
        last = cursors;
    }
    const double elapsedSeconds = std::chrono::duration<double>(this->loop_.Now() - start).count();
    EXPECT_GE(wraps, 2);
    EXPECT_NEAR(advanced, elapsedSeconds * 4 * this->kRateHz, 3 * kSegmentBytes);
}

TYPED_TEST_P(SoundSystemContract, ThePlayCursorIsNeverBeforeTheSetPosition) {
    constexpr std::int32_t kPosition = 2 * kSegmentBytes;
    this->OpenPlayback();
    for (int round = 0; round < 3; ++round) {
        this->playback_->SetCurrentPosition(kPosition);
        this->playback_->PlayLooping();
        const auto start = this->loop_.Now();
        while (this->loop_.Now() - start < std::chrono::milliseconds(80)) {
            const BufferCursors cursors = this->playback_->GetCurrentPosition();
            EXPECT_GE(cursors.play, kPosition);
            EXPECT_GE(cursors.write, cursors.play);
            this->loop_.Wait(std::chrono::milliseconds(1));
        }
        EXPECT_GT(this->playback_->GetCurrentPosition().write, kPosition);
        this->playback_->Stop();
    }
}

TYPED_TEST_P(SoundSystemContract, RefusesPositionsOutsideTheBuffer) {
    this->OpenPlayback();
    this->OpenCapture();
    std::vector<std::int16_t> samples(8);
    for (const std::int32_t offset : {2, -4, kPlaybackBytes, kPlaybackBytes + 4})
        EXPECT_EQ(ErrorOf([&] { this->playback_->SetCurrentPosition(offset); }), 5) << offset;
    for (const std::int32_t offset : {2, -4, kPlaybackBytes - 12, kPlaybackBytes})
        EXPECT_EQ(ErrorOf([&] { this->playback_->WriteBuffer(offset, samples); }), 5) << offset;
    for (const std::int32_t offset : {2, -4, kCaptureBytes - 12, kCaptureBytes})
        EXPECT_EQ(ErrorOf([&] { this->capture_->ReadBuffer(offset, samples); }), 5) << offset;
    EXPECT_EQ(ErrorOf([&] { this->playback_->SetCurrentPosition(kPlaybackBytes - 4); }), 0);
    EXPECT_EQ(ErrorOf([&] { this->playback_->WriteBuffer(kPlaybackBytes - 16, samples); }), 0);
    EXPECT_EQ(ErrorOf([&] { this->capture_->ReadBuffer(kCaptureBytes - 16, samples); }), 0);
    samples.resize(7);  // half a frame at the end
    EXPECT_EQ(ErrorOf([&] { this->playback_->WriteBuffer(0, samples); }), 5);
    EXPECT_EQ(ErrorOf([&] { this->capture_->ReadBuffer(0, samples); }), 5);
}

TYPED_TEST_P(SoundSystemContract, TakesVolumesInItsRangeOnly) {
    this->OpenPlayback();
    EXPECT_EQ(ErrorOf([&] { this->playback_->SetVolume(0); }), 0);
    EXPECT_EQ(ErrorOf([&] { this->playback_->SetVolume(-10000); }), 0);
    EXPECT_EQ(ErrorOf([&] { this->playback_->SetVolume(1); }), 5);
    EXPECT_EQ(ErrorOf([&] { this->playback_->SetVolume(-10001); }), 5);
}

TYPED_TEST_P(SoundSystemContract, ArmsKnownEventsInsideAStoppedBufferOnly) {
    this->OpenCapture();
    const EventHandle event = this->system_->CreateEvent([](EventHandle) {});
    EXPECT_NE(event, 0);
    const auto arm = [&](std::int32_t offset, EventHandle handle) {
        const PositionNotification position{offset, handle};
        return ErrorOf([&] { this->capture_->SetNotificationPositions({&position, 1}); });
    };
    EXPECT_EQ(arm(-1, event), 5);
    EXPECT_EQ(arm(kCaptureBytes, event), 5);
    EXPECT_EQ(arm(0, event + 1), 5);
    EXPECT_EQ(arm(kCaptureBytes - 1, event), 0);
    this->capture_->StartLooping();
    EXPECT_EQ(arm(kSegmentBytes - 1, event), 5);
    this->capture_->Stop();
    EXPECT_EQ(arm(kSegmentBytes - 1, event), 0);
    this->system_->DestroyEvent(event);
    EXPECT_EQ(arm(kSegmentBytes - 1, event), 5);
}

TYPED_TEST_P(SoundSystemContract, NotifiesTheSegmentsInOrderWithWhatWasPlayed) {
    constexpr std::int32_t kPosition = kSegmentBytes + 400;
    const std::vector<std::int16_t> pattern = RandomPattern(7);
    this->OpenCapture();
    this->OpenPlayback();
    SegmentRecorder recorder(*this->system_, *this->capture_);
    this->playback_->WriteBuffer(0, pattern);
    this->playback_->SetCurrentPosition(kPosition);
    this->capture_->StartLooping();
    this->playback_->PlayLooping();
    ASSERT_TRUE(this->loop_.RunUntil([&] { return recorder.Order().size() >= 16; }, std::chrono::seconds(5)));
    for (std::size_t i = 0; i < recorder.Order().size(); ++i)
        EXPECT_EQ(recorder.Order()[i], static_cast<std::int32_t>(i % 4)) << i;
    const LoopComparison comparison = CompareLoop(recorder.Samples(), pattern, kPosition / 4);
    EXPECT_GE(comparison.comparedFrames, 16384U);
    EXPECT_EQ(comparison.differentFrames, 0U);
    EXPECT_EQ(this->capture_->Statistics().framesMissing, 0U);
    EXPECT_EQ(this->capture_->Statistics().segmentsLost, 0U);
}

TYPED_TEST_P(SoundSystemContract, TheDeviceDelayStaysWithinThreeBlocks) {
    const std::vector<std::int16_t> pattern = RandomPattern(11);
    this->OpenCapture();
    this->OpenPlayback();
    this->playback_->WriteBuffer(0, pattern);
    this->capture_->StartLooping();
    this->playback_->PlayLooping();
    std::int64_t heard = 0;  // frames captured since the first played one
    std::vector<std::int16_t> recording(kCaptureBytes / 2);
    ASSERT_TRUE(WaitUntil(
        this->loop_,
        [&] {
            const auto captured = static_cast<std::int64_t>(this->capture_->Statistics().framesCaptured);
            this->capture_->ReadBuffer(0, recording);
            const auto first = static_cast<std::int64_t>(CompareLoop(recording, pattern, 0).firstFrame);
            heard = captured - first;
            return heard >= kSegmentBytes / 4;
        },
        std::chrono::seconds(3)));
    const std::int64_t handedOver = this->playback_->GetCurrentPosition().write / 4;
    EXPECT_LE(handedOver - heard, 3 * kSegmentBytes / 4);
}

TYPED_TEST_P(SoundSystemContract, CountsTheSegmentsThatAStallSwallows) {
    this->OpenCapture();
    SegmentRecorder recorder(*this->system_, *this->capture_);
    this->capture_->StartLooping();
    const auto start = this->loop_.Now();
    while (this->capture_->Statistics().segmentsCompleted < 5) {
        ASSERT_LT(this->loop_.Now() - start, std::chrono::seconds(5));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    this->capture_->Stop();
    this->loop_.Yield();
    EXPECT_EQ(recorder.Order(), (std::vector<std::int32_t>{0, 1, 2, 3}));
    const CaptureStatistics statistics = this->capture_->Statistics();
    EXPECT_EQ(statistics.segmentsLost, statistics.segmentsCompleted - 4);
    EXPECT_GE(statistics.framesCaptured, 5U * kSegmentBytes / 4);
}

// The frames of the first run are not taken. Those of the second are, and gaps are counted where the device
// made them.
TYPED_TEST_P(SoundSystemContract, NumbersFineFramesAcrossARestartThatDiscardsThem) {
    this->OpenCapture();
    const auto captureUntil = [&](std::uint64_t frames) {
        this->capture_->StartLooping();
        EXPECT_TRUE(WaitUntil(
            this->loop_, [&] { return this->capture_->Statistics().framesCaptured >= frames; },
            std::chrono::seconds(5)));
        this->capture_->Stop();
        return this->capture_->Statistics();
    };
    this->capture_->CaptureFine(true);
    const CaptureStatistics before = captureUntil(4096);
    const CaptureStatistics after = captureUntil(before.framesCaptured + 8192);
    std::vector<std::int32_t> samples(4096);
    std::uint64_t next = before.framesCaptured;
    std::uint64_t leftOut = 0;
    for (FineRun run = this->capture_->TakeFine(samples); run.samples > 0;
         run = this->capture_->TakeFine(samples)) {
        EXPECT_GE(run.firstFrame, next);
        leftOut += run.firstFrame - next;
        next = run.firstFrame + run.samples / 2;
    }
    leftOut += after.framesCaptured - next;
    EXPECT_EQ(leftOut, after.framesMissing - before.framesMissing + after.fineFramesLost);
    EXPECT_GT(next, before.framesCaptured);
}

TYPED_TEST_P(SoundSystemContract, DestroyingAnEventDiscardsWhatIsWaiting) {
    this->OpenCapture();
    int delivered = 0;
    const EventHandle event = this->system_->CreateEvent([&](EventHandle) { ++delivered; });
    const PositionNotification position{kSegmentBytes - 1, event};
    this->capture_->SetNotificationPositions({&position, 1});
    this->capture_->StartLooping();
    const auto start = this->loop_.Now();
    while (this->capture_->Statistics().segmentsCompleted < 1) {
        ASSERT_LT(this->loop_.Now() - start, std::chrono::seconds(5));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    this->system_->DestroyEvent(event);
    // More than one cycle of the buffer: later signals must not be delivered either.
    this->loop_.RunUntil([] { return false; }, std::chrono::milliseconds(250));
    EXPECT_EQ(delivered, 0);
    EXPECT_GE(this->capture_->Statistics().segmentsCompleted, 2U);
}

TYPED_TEST_P(SoundSystemContract, LeavesNothingBehind) {
    const auto useOnce = [&] {
        this->OpenCapture();
        this->OpenPlayback();
        this->capture_->StartLooping();
        this->playback_->PlayLooping();
        this->Close();
    };
    useOnce();
    const auto files = this->Entries("/proc/self/fd");
    const auto threads = this->Entries("/proc/self/task");
    for (int round = 0; round < 20; ++round) useOnce();
    EXPECT_EQ(this->Entries("/proc/self/fd"), files);
    EXPECT_EQ(this->Entries("/proc/self/task"), threads);

    for (int round = 0; round < 5; ++round) {
        this->system_.reset();
        this->system_ = this->platform_->Create(this->loop_);
        this->duplex_.UseSystem(*this->system_);
        useOnce();
    }
    EXPECT_TRUE(WaitUntil(
        this->loop_,
        [&] {
            return this->Entries("/proc/self/fd") == files && this->Entries("/proc/self/task") == threads;
        },
        std::chrono::seconds(2)));
}

REGISTER_TYPED_TEST_SUITE_P(SoundSystemContract, ListsThePrimaryDeviceThenTheDefaultOne,
                            RefusesAnUnknownIdentifier, OpensEveryListedDevice, RefusesOtherFormats,
                            CursorsOfAStoppedBufferAreZero, CursorsAdvanceWithTheClockAndWrap,
                            ThePlayCursorIsNeverBeforeTheSetPosition, RefusesPositionsOutsideTheBuffer,
                            TakesVolumesInItsRangeOnly, ArmsKnownEventsInsideAStoppedBufferOnly,
                            NotifiesTheSegmentsInOrderWithWhatWasPlayed, TheDeviceDelayStaysWithinThreeBlocks,
                            CountsTheSegmentsThatAStallSwallows,
                            NumbersFineFramesAcrossARestartThatDiscardsThem,
                            DestroyingAnEventDiscardsWhatIsWaiting, LeavesNothingBehind);

}  // namespace sonavex
