#include "support/LoopSignal.h"

#include <array>
#include <cstring>
#include <random>

namespace sonavex {

BufferDescription Stereo(std::int32_t bytes, std::int32_t rateHz) {
    return {buffer_flag::kVolumePositionFocus, bytes, WaveFormat::Stereo16(rateHz)};
}

std::vector<std::int16_t> RandomPattern(std::uint32_t seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> level(1, 32767);
    std::vector<std::int16_t> pattern(kPlaybackBytes / 2);
    for (std::int16_t& sample : pattern)
        sample = static_cast<std::int16_t>((random() & 1U) != 0 ? level(random) : -level(random));
    return pattern;
}

SegmentRecorder::SegmentRecorder(SoundSystem& system, CaptureBuffer& buffer)
    : system_(system), buffer_(buffer) {
    std::array<PositionNotification, 4> positions;
    for (std::int32_t segment = 0; segment < 4; ++segment) {
        events_.push_back(system.CreateEvent([this, segment](EventHandle) { Take(segment); }));
        positions[static_cast<std::size_t>(segment)] = {(segment + 1) * kSegmentBytes - 1, events_.back()};
    }
    buffer_.SetNotificationPositions(positions);
}

SegmentRecorder::~SegmentRecorder() {
    buffer_.Stop();
    for (const EventHandle event : events_) system_.DestroyEvent(event);
}

void SegmentRecorder::Take(std::int32_t segment) {
    order_.push_back(segment);
    std::array<std::int16_t, kSegmentBytes / 2> samples;
    buffer_.ReadBuffer(segment * kSegmentBytes, samples);
    samples_.insert(samples_.end(), samples.begin(), samples.end());
}

LoopComparison CompareLoop(std::span<const std::int16_t> recording, std::span<const std::int16_t> pattern,
                           std::size_t startFrame) {
    const std::size_t frames = recording.size() / 2;
    LoopComparison result;
    while (result.firstFrame < frames && recording[2 * result.firstFrame] == 0 &&
           recording[2 * result.firstFrame + 1] == 0)
        ++result.firstFrame;
    result.comparedFrames = frames - result.firstFrame;
    for (std::size_t i = 0; i < result.comparedFrames; ++i) {
        const std::size_t played = (startFrame + i) % (pattern.size() / 2);
        if (std::memcmp(&recording[2 * (result.firstFrame + i)], &pattern[2 * played], 4) != 0)
            ++result.differentFrames;
    }
    return result;
}

}  // namespace sonavex
