#pragma once

#include <deque>
#include <map>
#include <vector>

#include "core/ports/SoundSystem.h"
#include "support/CallLog.h"

namespace sonavex {

// A sound system that plays and captures nothing. It writes every call to the log ("captureBuffer.
// ReadBuffer 8192", released objects as "~captureBuffer"), answers with what the test scripted and
// fires its events when told to. Operations fail through the log.
class FakeSoundSystem : public SoundSystem {
public:
    explicit FakeSoundSystem(CallLog& callLog);

    SoundDeviceList EnumeratePlayback() override;
    SoundDeviceList EnumerateCapture() override;
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override;
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override;
    EventHandle CreateEvent(std::function<void(EventHandle)> handler) override;
    void DestroyEvent(EventHandle event) override;
    void OnDeviceLost(std::function<void(const RuntimeError&)> handler) override {
        lostHandler_ = std::move(handler);
    }

    // Tells that a device in use is lost.
    void Lose(const RuntimeError& error) {
        if (lostHandler_) lostHandler_(error);
    }

    // Fires the event that is armed at this segment's end, if it still exists.
    void FireSegment(std::size_t segment);
    // Fires an event by its handle, if it still exists.
    void Fire(EventHandle event);
    std::size_t LiveEvents() const noexcept { return handlers_.size(); }

    // Answers.
    SoundDeviceList playbackDevices;  // primary, "out-a", "out-b"
    SoundDeviceList captureDevices;   // primary, "in-a", "in-b"
    std::int32_t freeHardwareBuffers = 1;
    std::deque<BufferCursors> cursors;  // one a call; then `restingCursors`
    BufferCursors restingCursors;
    CaptureStatistics statistics;
    std::string inputPathNote;
    std::string outputPathNote;
    std::uint64_t underruns = 0;
    std::optional<std::chrono::nanoseconds> inputLead;
    std::optional<std::chrono::nanoseconds> outputLead;
    std::string inputClock;
    std::string outputClock;
    // First sample of what is read; the following ones count up.
    std::int16_t firstCapturedSample = 0;

    // What was handed over.
    struct Written {
        std::int32_t offset;
        std::vector<std::int16_t> samples;
    };
    std::vector<Written> written;
    BufferDescription captureDescription;
    BufferDescription playbackDescription;
    std::vector<PositionNotification> positions;

    CallLog& log;

private:
    std::function<void(const RuntimeError&)> lostHandler_;
    std::map<EventHandle, std::function<void(EventHandle)>> handlers_;
    EventHandle lastEvent_ = 100;
};

}  // namespace sonavex
