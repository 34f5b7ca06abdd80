#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "core/settings/SampleRates.h"
#include "platform/plain/PlainEventLoop.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/LoopSignal.h"
#include "support/SoundServer.h"

namespace sonavex {

// Random samples on their way through a sink and back from its monitor.
class Passage {
public:
    Passage(PlainEventLoop& loop, const std::string& address, const std::string& sink, std::int32_t rateHz)
        : rateHz_(rateHz),
          system_(loop, address),
          pattern_(RandomPattern(static_cast<std::uint32_t>(rateHz))) {
        output_ = system_.CreatePlaybackDevice(sink);
        input_ = system_.CreateCaptureDevice(sink + ".monitor");
        capture_ = input_->CreateBuffer(Stereo(kCaptureBytes, rateHz));
        playback_ = output_->CreateBuffer(Stereo(kPlaybackBytes, rateHz));
        recorder_ = std::make_unique<SegmentRecorder>(system_, *capture_);
        playback_->WriteBuffer(0, pattern_);
        playback_->SetVolume(0);
        capture_->StartLooping();
        playback_->PlayLooping();
    }

    // Eleven segments: more than once round the playback buffer, whatever the delay.
    bool Complete() const { return recorder_->Order().size() >= 11; }
    std::string Notes() const { return capture_->PathNote() + playback_->PathNote(); }
    bool Exact() const {
        const LoopComparison comparison = Comparison();
        return comparison.comparedFrames >= 16384 && comparison.differentFrames == 0 && Missing() == 0;
    }
    std::string Difference() const {
        const LoopComparison comparison = Comparison();
        return std::to_string(rateHz_) + " Hz: " + std::to_string(comparison.differentFrames) +
               " frames of " + std::to_string(comparison.comparedFrames) + " differ, " +
               std::to_string(Missing()) + " are missing, played with " +
               std::to_string(playback_->Underruns()) + " underruns";
    }

private:
    LoopComparison Comparison() const { return CompareLoop(recorder_->Samples(), pattern_, 0); }
    std::uint64_t Missing() const { return capture_->Statistics().framesMissing; }

    std::int32_t rateHz_;
    PulseSoundSystem system_;
    std::vector<std::int16_t> pattern_;
    std::unique_ptr<PlaybackDevice> output_;
    std::unique_ptr<CaptureDevice> input_;
    std::unique_ptr<CaptureBuffer> capture_;
    std::unique_ptr<PlaybackBuffer> playback_;
    std::unique_ptr<SegmentRecorder> recorder_;
};

inline std::string SinkOfRate(std::int32_t rateHz) {
    return "card" + std::to_string(rateHz);
}

// A sink for every rate of the instrument.
inline std::vector<NullSink> SinksOfAllRates() {
    std::vector<NullSink> sinks;
    for (const std::int32_t rateHz : SampleRateTable)
        sinks.push_back({SinkOfRate(rateHz), static_cast<std::uint32_t>(rateHz), "Card"});
    return sinks;
}

}  // namespace sonavex
