#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "core/settings/SampleRates.h"
#include "platform/plain/PlainEventLoop.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/Duplex.h"
#include "support/LoopSignal.h"
#include "support/SoundServer.h"

namespace sonavex {

// Random samples on their way through a sink and back from its monitor.
class Passage {
public:
    Passage(PlainEventLoop& loop, const std::string& address, const std::string& sink, std::int32_t rateHz)
        : rateHz_(rateHz),
          system_(loop, address),
          duplex_(loop, system_),
          pattern_(RandomPattern(static_cast<std::uint32_t>(rateHz))) {
        duplex_.OpenCapture(sink + ".monitor", rateHz);
        duplex_.OpenPlayback(sink, rateHz);
        recorder_ = std::make_unique<SegmentRecorder>(system_, *duplex_.capture);
        duplex_.playback->WriteBuffer(0, pattern_);
        duplex_.playback->SetVolume(0);
        duplex_.Start();
    }

    // Eleven segments: more than once round the playback buffer, whatever the delay.
    bool Complete() const { return recorder_->Order().size() >= 11; }
    std::string Notes() const { return duplex_.capture->PathNote() + duplex_.playback->PathNote(); }
    bool Exact() const {
        const LoopComparison comparison = Comparison();
        return comparison.comparedFrames >= 16384 && comparison.differentFrames == 0 && Missing() == 0;
    }
    // Whether the server counted a disturbance by a busy machine.
    bool Disturbed() const { return duplex_.playback->Underruns() > 0 || Missing() > 0; }
    std::string Difference() const {
        const LoopComparison comparison = Comparison();
        return std::to_string(rateHz_) + " Hz: " + std::to_string(comparison.differentFrames) +
               " frames of " + std::to_string(comparison.comparedFrames) + " differ, " +
               std::to_string(Missing()) + " are missing, played with " +
               std::to_string(duplex_.playback->Underruns()) + " underruns, read with " +
               std::to_string(duplex_.capture->Statistics().segmentsLost) + " segments lost";
    }

private:
    LoopComparison Comparison() const { return CompareLoop(recorder_->Samples(), pattern_, 0); }
    std::uint64_t Missing() const { return duplex_.capture->Statistics().framesMissing; }

    std::int32_t rateHz_;
    PulseSoundSystem system_;
    Duplex duplex_;
    std::vector<std::int16_t> pattern_;
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
