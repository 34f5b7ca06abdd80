#pragma once

#include <deque>
#include <map>
#include <vector>

#include "core/ports/SoundSystem.h"
#include "support/CallLog.h"

namespace sonavex {

// A sound system without audio. It logs every call ("captureBuffer.ReadBuffer 8192", released objects as
// "~captureBuffer"), returns scripted results and fires events on request. Operations fail through the log.
class FakeSoundSystem : public SoundSystem {
public:
    explicit FakeSoundSystem(CallLog& callLog);

    SoundDeviceList EnumeratePlayback() override;
    SoundDeviceList EnumerateCapture() override;
    RateList ExtendedPlaybackRates(const std::string& identifier) override;
    RateList ExtendedCaptureRates(const std::string& identifier) override;
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override;
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override;
    EventHandle CreateEvent(std::function<void(EventHandle)> handler) override;
    void DestroyEvent(EventHandle event) override;
    void OnDeviceLost(std::function<void(const RuntimeError&)> handler) override {
        lostHandler_ = std::move(handler);
    }

    // Reports the loss of a device in use.
    void Lose(const RuntimeError& error) {
        if (lostHandler_) lostHandler_(error);
    }

    // Fires the event armed at the end of this segment, if it still exists.
    void FireSegment(std::size_t segment);
    // Fires an event by its handle, if it still exists.
    void Fire(EventHandle event);
    std::size_t LiveEvents() const noexcept { return handlers_.size(); }

    // Scripted results.
    SoundDeviceList playbackDevices;                // primary, "out-a", "out-b"
    SoundDeviceList captureDevices;                 // primary, "in-a", "in-b"
    std::map<std::string, RateList> extendedRates;  // by identifier; calls are logged if any are set
    std::int32_t freeHardwareBuffers = 1;
    std::deque<BufferCursors> cursors;  // one per call, then `restingCursors`
    BufferCursors restingCursors;
    CaptureStatistics statistics;
    std::uint32_t movedBits = 0;
    int inputBits = 16;
    int outputBits = 16;
    // Fine playback: whether it is on, what it took, and how many samples it takes at a time.
    bool fineOn = false;
    std::vector<std::int32_t> fineQueued;
    std::size_t fineRoom = 0;
    std::size_t fineWaiting = 0;         // frames
    std::vector<std::int64_t> fineCuts;  // milliseconds
    std::uint64_t fineMissing = 0;
    // Fine capture: whether it is on, and the samples it gives next.
    bool fineCaptureOn = false;
    std::vector<std::int32_t> fineCaptured;
    std::uint64_t fineFirstFrame = 0;  // of fineCaptured
    std::string inputPathNote;
    std::string outputPathNote;
    std::uint64_t underruns = 0;
    std::optional<std::chrono::nanoseconds> inputLead;
    std::optional<std::chrono::nanoseconds> outputLead;
    std::string inputClock;
    std::string outputClock;
    // First captured sample; the following ones count up.
    std::int16_t firstCapturedSample = 0;

    // A block written to the playback buffer.
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
    RateList ExtendedRates(const char* operation, const std::string& identifier) const;

    std::function<void(const RuntimeError&)> lostHandler_;
    std::map<EventHandle, std::function<void(EventHandle)>> handlers_;
    EventHandle lastEvent_ = 100;
};

}  // namespace sonavex
