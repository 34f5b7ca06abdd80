#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/ports/SoundErrors.h"
#include "platform/alsa/AlsaSoundSystem.h"
#include "platform/plain/PlainEventLoop.h"
#include "support/LoopSignal.h"
#include "support/PollUntil.h"

namespace sonavex {

// Cards in use: what the tests of the adapter have in common.
class AlsaSession {
public:
    // The longest time that a call may take and that may pass until a loss is reported.
    static constexpr std::chrono::seconds kLimit{3};

    AlsaSession() {
        system_.OnDeviceLost([this](const RuntimeError& error) { losses_.push_back(error); });
    }

    // Opens both directions; nothing runs yet.
    void Create(const std::string& device, std::int32_t rateHz) {
        output_ = system_.CreatePlaybackDevice(device);
        input_ = system_.CreateCaptureDevice(device);
        capture_ = input_->CreateBuffer(Stereo(kCaptureBytes, rateHz));
        playback_ = output_->CreateBuffer(Stereo(kPlaybackBytes, rateHz));
    }
    void Start() {
        capture_->StartLooping();
        playback_->PlayLooping();
    }
    void Open(const std::string& device, std::int32_t rateHz) {
        Create(device, rateHz);
        Start();
    }
    void Close() {
        playback_.reset();
        capture_.reset();
        output_.reset();
        input_.reset();
    }

    bool Captures() {
        const std::uint64_t before = capture_->Statistics().framesCaptured;
        return PollUntil(
            loop_, [&] { return capture_->Statistics().framesCaptured > before; }, kLimit);
    }

    // Plays the pattern and returns so many segments of what comes back.
    std::vector<std::int16_t> Record(const std::vector<std::int16_t>& pattern, std::size_t segments) {
        SegmentRecorder recorder(system_, *capture_);
        playback_->WriteBuffer(0, pattern);
        Start();
        EXPECT_TRUE(
            loop_.RunUntil([&] { return recorder.Order().size() >= segments; }, std::chrono::seconds(10)));
        playback_->Stop();
        return recorder.Samples();
    }

    // Both buffers report their loss, once, and refuse their use.
    void ExpectLosses(const std::string& text) {
        EXPECT_TRUE(loop_.RunUntil([&] { return losses_.size() >= 2; }, kLimit));
        loop_.RunUntil([] { return false; }, std::chrono::milliseconds(100));
        ASSERT_EQ(losses_.size(), 2U);
        for (const RuntimeError& error : losses_) {
            EXPECT_THAT(error.what(), testing::HasSubstr(text));
            EXPECT_THAT(error.what(), testing::HasSubstr("Test card (direct)"));
            EXPECT_TRUE(error.Number() == sound_error::kBufferLost ||
                        error.Number() == sound_error::kNoDriver);
        }
        losses_.clear();
        ExpectBuffersRefuse();
    }

    void ExpectBuffersRefuse() {
        std::vector<std::int16_t> samples(8);
        const auto expectLost = [this](auto action) {
            ExpectError(sound_error::kBufferLost, "Test card", action);
        };
        expectLost([&] { playback_->GetCurrentPosition(); });
        expectLost([&] { playback_->WriteBuffer(0, samples); });
        expectLost([&] { playback_->SetCurrentPosition(0); });
        expectLost([&] { playback_->PlayLooping(); });
        expectLost([&] { playback_->SetVolume(0); });
        expectLost([&] { capture_->StartLooping(); });
        expectLost([&] { capture_->ReadBuffer(0, samples); });
        expectLost([&] { capture_->SetNotificationPositions({}); });
        EXPECT_NO_THROW(playback_->Stop());
        EXPECT_NO_THROW(capture_->Stop());
    }

    template <class Action>
    void ExpectError(std::int32_t number, const std::string& text, Action action) {
        const auto start = loop_.Now();
        try {
            action();
            ADD_FAILURE() << "no error; expected: " << text;
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), number) << error.what();
            EXPECT_THAT(error.what(), testing::HasSubstr(text));
        }
        EXPECT_LT(loop_.Now() - start, kLimit);
    }

    PlainEventLoop loop_;
    AlsaSoundSystem system_{loop_};
    std::vector<RuntimeError> losses_;
    std::unique_ptr<PlaybackDevice> output_;
    std::unique_ptr<CaptureDevice> input_;
    std::unique_ptr<PlaybackBuffer> playback_;
    std::unique_ptr<CaptureBuffer> capture_;
};

}  // namespace sonavex
