#pragma once

#include <string>
#include <vector>

#include "platform/alsa/AlsaSoundSystem.h"
#include "support/Duplex.h"

namespace sonavex {

// A card in use.
class AlsaSession : public DuplexOn<AlsaSoundSystem> {
public:
    static constexpr const char* kName = "Test card (direct)";

    // Opens both directions without starting them.
    void Create(const std::string& device, std::int32_t rateHz) {
        OpenCapture(device, rateHz);
        OpenPlayback(device, rateHz);
    }
    void Open(const std::string& device, std::int32_t rateHz) {
        Create(device, rateHz);
        Start();
    }
    void ExpectLosses(const std::string& text) { Duplex::ExpectLosses(kName, text); }

    // Plays the pattern and returns `segments` captured segments.
    std::vector<std::int16_t> Record(const std::vector<std::int16_t>& pattern, std::size_t segments) {
        SegmentRecorder recorder(system, *capture);
        playback->WriteBuffer(0, pattern);
        Start();
        EXPECT_TRUE(
            loop.RunUntil([&] { return recorder.Order().size() >= segments; }, std::chrono::seconds(10)));
        playback->Stop();
        return recorder.Samples();
    }
};

}  // namespace sonavex
