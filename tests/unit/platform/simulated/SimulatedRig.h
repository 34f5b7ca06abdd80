#pragma once

#include <cstdint>
#include <vector>

#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/Duplex.h"

namespace sonavex {

// The simulated card in use.
class SimulatedRig : public DuplexOn<SimulatedSoundSystem> {
public:
    explicit SimulatedRig(SimulatedSoundSystem::Pace pace) : DuplexOn(pace) {}

    void Open(std::int32_t rateHz = 48000) {
        OpenPlayback("", rateHz);
        OpenCapture("", rateHz);
    }
    std::vector<std::int32_t> LossNumbers() const {
        std::vector<std::int32_t> numbers;
        for (const RuntimeError& loss : losses) numbers.push_back(loss.Number());
        return numbers;
    }

    // Fills the playback buffer with frames numbered from 1, equal on both channels.
    void WriteNumbers() {
        std::vector<std::int16_t> samples;
        for (int n = 1; n <= kPlaybackBytes / 4; ++n)
            samples.insert(samples.end(), {static_cast<std::int16_t>(n), static_cast<std::int16_t>(n)});
        playback->WriteBuffer(0, samples);
    }
    // First channel of the first captured frames.
    std::vector<std::int16_t> Captured(std::size_t frames) {
        std::vector<std::int16_t> samples(2 * frames);
        capture->ReadBuffer(0, samples);
        std::vector<std::int16_t> first;
        for (std::size_t i = 0; i < frames; ++i) first.push_back(samples[2 * i]);
        return first;
    }
};

}  // namespace sonavex
