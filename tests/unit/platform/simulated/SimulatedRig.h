#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "core/ports/SoundSystem.h"
#include "platform/plain/PlainEventLoop.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex {

// The simulated card with one buffer each way, as the stream engine opens them.
class SimulatedRig {
public:
    static constexpr std::int32_t kPlaybackBytes = 65536;
    static constexpr std::int32_t kCaptureBytes = 32768;

    explicit SimulatedRig(SimulatedSoundSystem::Pace pace) : system(loop, pace) {
        system.OnDeviceLost([this](const RuntimeError& error) { lost.push_back(error.Number()); });
    }

    static BufferDescription Description(std::int32_t bytes, std::int32_t rateHz = 48000) {
        return {buffer_flag::kVolumePositionFocus, bytes, WaveFormat::Stereo16(rateHz)};
    }

    void Open(std::int32_t rateHz = 48000) {
        playbackDevice = system.CreatePlaybackDevice("");
        captureDevice = system.CreateCaptureDevice("");
        playback = playbackDevice->CreateBuffer(Description(kPlaybackBytes, rateHz));
        capture = captureDevice->CreateBuffer(Description(kCaptureBytes, rateHz));
    }
    void Close() {
        playback.reset();
        capture.reset();
        playbackDevice.reset();
        captureDevice.reset();
    }

    // Fills the playback buffer with frames numbered from 1 on, both channels alike.
    void WriteNumbers() {
        std::vector<std::int16_t> samples;
        for (int n = 1; n <= kPlaybackBytes / 4; ++n)
            samples.insert(samples.end(), {static_cast<std::int16_t>(n), static_cast<std::int16_t>(n)});
        playback->WriteBuffer(0, samples);
    }
    // First channel of so many captured frames.
    std::vector<std::int16_t> Captured(std::size_t frames) {
        std::vector<std::int16_t> samples(2 * frames);
        capture->ReadBuffer(0, samples);
        std::vector<std::int16_t> first;
        for (std::size_t i = 0; i < frames; ++i) first.push_back(samples[2 * i]);
        return first;
    }

    PlainEventLoop loop;
    SimulatedSoundSystem system;
    std::vector<std::int32_t> lost;  // error numbers of the losses reported
    std::unique_ptr<PlaybackDevice> playbackDevice;
    std::unique_ptr<CaptureDevice> captureDevice;
    std::unique_ptr<PlaybackBuffer> playback;
    std::unique_ptr<CaptureBuffer> capture;
};

}  // namespace sonavex
