#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "core/ports/SoundSystem.h"
#include "platform/plain/PlainEventLoop.h"
#include "support/LoopSignal.h"

namespace sonavex {

// Random fine samples on their way through a device and back, by the queues of fine frames.
class FineLoop {
public:
    // The samples have this many bits; the lower ones are 0. At most 1.5 s.
    FineLoop(SoundSystem& system, const std::string& output, const std::string& input, std::int32_t rateHz,
             int bits, std::chrono::milliseconds duration = std::chrono::milliseconds(250))
        : output_(system.CreatePlaybackDevice(output)),
          input_(system.CreateCaptureDevice(input)),
          capture(input_->CreateBuffer(Stereo(kCaptureBytes, rateHz))),
          playback(output_->CreateBuffer(Stereo(kPlaybackBytes, rateHz))) {
        std::mt19937 random(static_cast<std::uint32_t>(rateHz + bits));
        const auto step = std::int32_t{1} << (32 - bits);
        // Both extremes first. A sample of 0 could not be told from silence.
        played_ = {std::numeric_limits<std::int32_t>::max() & -step,
                   std::numeric_limits<std::int32_t>::min()};
        while (std::ssize(played_) < 2 * duration.count() * rateHz / 1000)
            if (const auto sample = static_cast<std::int32_t>(random()) & -step; sample != 0)
                played_.push_back(sample);
        playback->SetVolume(0);
        playback->PlayFine(true);
        EXPECT_EQ(playback->QueueFine(played_), played_.size());
        capture->CaptureFine(true);
        capture->StartLooping();
        playback->PlayLooping();
    }

    // Serves the loop until all samples have returned.
    bool Complete(PlainEventLoop& loop, std::chrono::nanoseconds limit = std::chrono::seconds(10)) {
        return loop.RunUntil([this] { return Drain(); }, limit);
    }
    std::size_t Different() const {
        std::size_t different = 0;
        for (std::size_t i = 0; i < std::min(played_.size(), returned_.size()); ++i)
            if (returned_[i] != played_[i]) ++different;
        return different;
    }
    // The device was served too late, which it has counted.
    bool Disturbed() const {
        return playback->Underruns() > 0 || capture->Statistics().framesMissing > 0 ||
               capture->Statistics().fineFramesLost > 0;
    }
    void ExpectExact(PlainEventLoop& loop) {
        EXPECT_TRUE(Complete(loop));
        EXPECT_EQ(Different(), 0U);
        EXPECT_EQ(capture->Statistics().fineFramesLost, 0U);
        EXPECT_EQ(capture->Statistics().framesMissing, 0U);
    }

private:
    std::unique_ptr<PlaybackDevice> output_;
    std::unique_ptr<CaptureDevice> input_;

public:
    std::unique_ptr<CaptureBuffer> capture;
    std::unique_ptr<PlaybackBuffer> playback;

private:
    // No played sample is 0.
    bool Drain() {
        std::vector<std::int32_t> samples(4096);
        while (const std::size_t count = capture->TakeFine(samples).samples)
            for (std::size_t i = 0; i < count; ++i)
                if (!returned_.empty() || samples[i] != 0) returned_.push_back(samples[i]);
        return returned_.size() >= played_.size();
    }

    std::vector<std::int32_t> played_;
    std::vector<std::int32_t> returned_;
};

}  // namespace sonavex
