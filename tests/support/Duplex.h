#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/ports/SoundErrors.h"
#include "core/ports/SoundSystem.h"
#include "platform/plain/PlainEventLoop.h"
#include "support/Errors.h"
#include "support/LoopSignal.h"
#include "support/Wait.h"

namespace sonavex {

// One buffer each way on a sound system, as the stream engine opens them.
class Duplex {
public:
    // Limit for a call, and for the report of a loss.
    static constexpr std::chrono::seconds kLimit{3};

    Duplex(PlainEventLoop& loop, SoundSystem& system) : loop_(loop) { UseSystem(system); }
    Duplex(const Duplex&) = delete;
    Duplex& operator=(const Duplex&) = delete;

    // Buffers are opened on this system from now on. All buffers must be closed.
    void UseSystem(SoundSystem& system) {
        system_ = &system;
        system.OnDeviceLost([this](const RuntimeError& error) { losses.push_back(error); });
    }

    void OpenPlayback(const std::string& device, std::int32_t rateHz) {
        output = system_->CreatePlaybackDevice(device);
        playback = output->CreateBuffer(Stereo(kPlaybackBytes, rateHz));
    }
    void OpenCapture(const std::string& device, std::int32_t rateHz) {
        input = system_->CreateCaptureDevice(device);
        capture = input->CreateBuffer(Stereo(kCaptureBytes, rateHz));
    }
    void Start() {
        capture->StartLooping();
        playback->PlayLooping();
    }
    void Close() {
        playback.reset();
        capture.reset();
        output.reset();
        input.reset();
    }

    bool Captures() {
        const std::uint64_t before = capture->Statistics().framesCaptured;
        return WaitUntil(
            loop_, [&] { return capture->Statistics().framesCaptured > before; }, kLimit);
    }

    // Each buffer reports its loss once, naming the device and the text, and then refuses to work. Clears the
    // losses.
    void ExpectLosses(const std::string& device, const std::string& text,
                      std::chrono::nanoseconds limit = kLimit) {
        EXPECT_TRUE(loop_.RunUntil([&] { return losses.size() >= 2; }, limit));
        loop_.RunUntil([] { return false; }, std::chrono::milliseconds(100));
        ASSERT_EQ(losses.size(), 2U);
        for (const RuntimeError& error : losses) {
            EXPECT_THAT(error.what(), testing::HasSubstr(text));
            EXPECT_THAT(error.what(), testing::HasSubstr(device));
            EXPECT_TRUE(error.Number() == sound_error::kBufferLost ||
                        error.Number() == sound_error::kNoDriver);
        }
        losses.clear();
        ExpectBuffersRefuse(device);
    }
    void ExpectBuffersRefuse(const std::string& text) {
        std::vector<std::int16_t> samples(8);
        const auto expectLost = [&](auto action) { ExpectError(sound_error::kBufferLost, text, action); };
        expectLost([&] { playback->GetCurrentPosition(); });
        expectLost([&] { playback->WriteBuffer(0, samples); });
        expectLost([&] { playback->SetCurrentPosition(0); });
        expectLost([&] { playback->PlayLooping(); });
        expectLost([&] { playback->SetVolume(0); });
        expectLost([&] { capture->StartLooping(); });
        expectLost([&] { capture->ReadBuffer(0, samples); });
        expectLost([&] { capture->SetNotificationPositions({}); });
        EXPECT_NO_THROW(playback->Stop());
        EXPECT_NO_THROW(capture->Stop());
        ExpectFineQueuesWork();
    }
    // Also on a lost device.
    void ExpectFineQueuesWork() {
        std::vector<std::int32_t> samples(4096, 256);
        for (const bool on : {true, false, true}) {
            EXPECT_NO_THROW(playback->PlayFine(on));
            EXPECT_NO_THROW(capture->CaptureFine(on));
        }
        EXPECT_EQ(playback->QueueFine(samples), samples.size());
        EXPECT_EQ(playback->FineFramesWaiting(), samples.size() / 2);
        EXPECT_EQ(playback->CutFine(std::chrono::milliseconds(0)), samples.size() / 2);
        EXPECT_EQ(capture->TakeFine(samples).samples, 0U);
        playback->PlayFine(false);
        capture->CaptureFine(false);
    }

    // The action fails in time, with this number and text.
    template <class Action>
    void ExpectError(std::int32_t number, const std::string& text, Action action) {
        const auto start = loop_.Now();
        const auto error = Raised(action);
        EXPECT_LT(loop_.Now() - start, kLimit);
        ASSERT_TRUE(error.has_value()) << "no error; expected: " << text;
        EXPECT_EQ(error->Number(), number) << error->what();
        EXPECT_THAT(error->what(), testing::HasSubstr(text));
    }

    std::vector<RuntimeError> losses;
    std::unique_ptr<PlaybackDevice> output;
    std::unique_ptr<CaptureDevice> input;
    std::unique_ptr<PlaybackBuffer> playback;
    std::unique_ptr<CaptureBuffer> capture;

private:
    PlainEventLoop& loop_;
    SoundSystem* system_ = nullptr;
};

// The loop and the sound system that a DuplexOn owns.
template <class System>
struct SystemOnLoop {
    template <class... Arguments>
    explicit SystemOnLoop(Arguments&&... arguments) : system(loop, std::forward<Arguments>(arguments)...) {}
    PlainEventLoop loop;
    System system;
};

template <class System>
class DuplexOn : public SystemOnLoop<System>, public Duplex {
public:
    template <class... Arguments>
    explicit DuplexOn(Arguments&&... arguments)
        : SystemOnLoop<System>(std::forward<Arguments>(arguments)...), Duplex(this->loop, this->system) {}
};

}  // namespace sonavex
