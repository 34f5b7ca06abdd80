#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/ports/ExtendedRates.h"
#include "core/support/RuntimeError.h"

namespace sonavex {

// 16-bit signed interleaved stereo PCM, first sample of a frame first.
struct WaveFormat {
    std::uint16_t formatTag = 1;  // PCM
    std::uint16_t channels = 2;
    std::uint32_t samplesPerSecond = 0;
    std::uint16_t bitsPerSample = 16;
    std::uint16_t blockAlign = 4;
    std::uint32_t averageBytesPerSecond = 0;
    std::uint16_t extraSize = 0;

    static WaveFormat Stereo16(std::int32_t rateHz) noexcept {
        WaveFormat format;
        format.samplesPerSecond = static_cast<std::uint32_t>(rateHz);
        format.blockAlign = static_cast<std::uint16_t>(format.bitsPerSample / 8 * format.channels);
        format.averageBytesPerSecond = format.samplesPerSecond * format.blockAlign;
        return format;
    }
};

// Flags of a playback buffer.
namespace buffer_flag {
inline constexpr std::uint32_t kHardware = 4;
inline constexpr std::uint32_t kSoftware = 8;
inline constexpr std::uint32_t kVolumePositionFocus = 98432;  // volume, exact position, global focus
}  // namespace buffer_flag

struct BufferDescription {
    std::uint32_t flags = 0;
    std::int32_t bytes = 0;  // a multiple of the block align
    WaveFormat format;
};

// One entry of an enumeration. The first entry is the system's primary device and has an empty identifier.
// The second entry is the device that the primary device currently refers to.
struct SoundDeviceInfo {
    std::string identifier;   // stable over restarts, compared exactly
    std::string description;  // for the user
    std::string module;       // driver or module that serves the device
};
using SoundDeviceList = std::vector<SoundDeviceInfo>;

// Byte positions in a looping playback buffer: `play` is heard now, `write` marks the end of the data
// delivered to the device. Both are 0 while the buffer is stopped.
struct BufferCursors {
    std::int32_t play = 0;
    std::int32_t write = 0;
};

// Handle of a notification event; 0 means none.
using EventHandle = std::int32_t;

struct PositionNotification {
    std::int32_t offset = 0;  // bytes; the event fires when the byte at the offset has been filled
    EventHandle event = 0;
};

// Counts of a running stream since the buffer was created.
struct CaptureStatistics {
    std::uint64_t framesCaptured = 0;     // including framesMissing
    std::uint64_t segmentsCompleted = 0;  // notification positions passed while running
    std::uint64_t segmentsLost = 0;       // of these, not notified because the event was still pending
    std::uint64_t framesMissing = 0;      // captured frames that the device lost, replaced by silence
    std::uint64_t fineFramesLost = 0;     // captured frames that TakeFine came too late for
};

// Captured frames without an interruption.
struct FineRun {
    std::size_t samples = 0;
    std::uint64_t firstFrame = 0;  // framesCaptured before the first of them
};

// Fine samples are interleaved stereo, left-justified in 32 bits: a sample of n bits is in the upper n bits,
// and the lower ones are 0.

// A looping playback buffer. Positions and lengths are in bytes and must be multiples of a frame (error 5
// otherwise).
class PlaybackBuffer {
public:
    virtual ~PlaybackBuffer() = default;
    virtual BufferCursors GetCurrentPosition() = 0;
    // Copies the samples to the offset; they must not exceed the end of the buffer.
    virtual void WriteBuffer(std::int32_t offset, std::span<const std::int16_t> samples) = 0;
    // While on, the frames of QueueFine are played in place of the looping buffer's, which pass unheard, and
    // silence where they are too few. Turning it on discards frames queued before. Volume, Stop and
    // PlayLooping apply to both. Does nothing when the state is the same. Works on a lost device too.
    virtual void PlayFine(bool on) = 0;
    // Queues frames after those queued before, while fine playback is on. Returns the samples taken: at least
    // 1.5 s fit when none are waiting.
    virtual std::size_t QueueFine(std::span<const std::int32_t> samples) = 0;
    // Frames queued from now on follow those that play within this time; the rest plays only until there are
    // such frames. Returns the number of frames cut off. Call QueueFine at once.
    virtual std::size_t CutFine(std::chrono::milliseconds keep) = 0;
    // Queued frames that the device has not taken.
    virtual std::size_t FineFramesWaiting() const = 0;
    // Frames of silence played because QueueFine came too late, since the buffer was created.
    virtual std::uint64_t FineFramesMissing() const = 0;
    // Bits of a sample that reach the device. After the volume, samples are rounded half to even to them.
    virtual int Bits() const = 0;
    // Sets the position of the frame that is played next.
    virtual void SetCurrentPosition(std::int32_t offset) = 0;
    // Plays from the current position in a loop until stopped.
    virtual void PlayLooping() = 0;
    // Never fails, not even when the device is lost.
    virtual void Stop() = 0;
    // Hundredths of a decibel, -10000 (silence) to 0 (samples unchanged). Error 5 outside this range.
    virtual void SetVolume(std::int32_t hundredthsDb) = 0;
    // What changes the samples between this buffer and the card, as a sentence for the user. Empty if nothing
    // is known.
    virtual std::string PathNote() const { return {}; }
    // Number of times that the device ran out of samples since the buffer was created.
    virtual std::uint64_t Underruns() const { return 0; }
    // Lead of the device's clock over the system's: the nominal duration of the frames moved, minus the time
    // elapsed since the device started. Nothing if unknown.
    virtual std::optional<std::chrono::nanoseconds> ClockLead() const { return std::nullopt; }
    // Identifies the device's clock: equal names mean the same clock. Empty if unknown.
    virtual std::string ClockName() const { return {}; }
};

// A capture buffer that is filled in a loop while started.
class CaptureBuffer {
public:
    virtual ~CaptureBuffer() = default;
    // Takes events of SoundSystem::CreateEvent, while stopped only. Replaces earlier positions.
    virtual void SetNotificationPositions(std::span<const PositionNotification> positions) = 0;
    // Starts at position 0 of the buffer.
    virtual void StartLooping() = 0;
    // Never fails, not even when the device is lost.
    virtual void Stop() = 0;
    // Samples of more than 16 bits are rounded half to even, and saturate.
    virtual void ReadBuffer(std::int32_t offset, std::span<std::int16_t> samples) = 0;
    // While on, captured frames are also queued for TakeFine. The queue holds 2 s; frames that find it full
    // are counted as fineFramesLost. Turning it on and StartLooping discard frames queued before. Does
    // nothing when the state is the same. Works on a lost device too.
    virtual void CaptureFine(bool on) = 0;
    // Takes the oldest queued frames, up to the first lost or missing frame. No samples mean that none are
    // waiting. Never fails.
    virtual FineRun TakeFine(std::span<std::int32_t> samples) noexcept = 0;
    // Bits of a sample that the device delivers.
    virtual int Bits() const = 0;
    // The bits of a left-justified sample that were not the same in all samples of a channel since the last
    // call. 0 for samples of 16 bits.
    virtual std::uint32_t TakeMovedBits() noexcept = 0;
    virtual CaptureStatistics Statistics() const = 0;
    // As PlaybackBuffer::PathNote.
    virtual std::string PathNote() const { return {}; }
    // As PlaybackBuffer::ClockLead and ClockName.
    virtual std::optional<std::chrono::nanoseconds> ClockLead() const { return std::nullopt; }
    virtual std::string ClockName() const { return {}; }
};

struct PlaybackCapabilities {
    std::int32_t freeHardwareMixingBuffers = 0;
};

class PlaybackDevice {
public:
    virtual ~PlaybackDevice() = default;
    // Level 2 requests priority.
    virtual void SetCooperativeLevel(std::int32_t level) = 0;
    virtual PlaybackCapabilities GetCapabilities() = 0;
    virtual std::unique_ptr<PlaybackBuffer> CreateBuffer(const BufferDescription& description) = 0;
};

class CaptureDevice {
public:
    virtual ~CaptureDevice() = default;
    virtual std::unique_ptr<CaptureBuffer> CreateBuffer(const BufferDescription& description) = 0;
};

// The sound devices of the machine. Every call is made on the user-interface thread, returns within 3 seconds
// and reports failures as RuntimeErrors with a number of SoundErrors.h (or 5, 7). A buffer may outlive its
// device, as reference-counted objects do. The sound system outlives both.
class SoundSystem {
public:
    virtual ~SoundSystem() = default;

    virtual SoundDeviceList EnumeratePlayback() = 0;
    virtual SoundDeviceList EnumerateCapture() = 0;

    // Those of kExtendedRates, in that order, at which the device runs without resampling. A server's device
    // has its present rate only. Empty if unknown. An empty identifier selects the primary device.
    virtual RateList ExtendedPlaybackRates(const std::string& identifier) = 0;
    virtual RateList ExtendedCaptureRates(const std::string& identifier) = 0;

    // An empty identifier selects the primary device.
    virtual std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) = 0;
    virtual std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) = 0;

    // The handler receives the event's handle on the user-interface thread, once for each time the event was
    // signalled while not pending. Destroying an event discards its pending notification.
    virtual EventHandle CreateEvent(std::function<void(EventHandle)> handler) = 0;
    // Ignores an unknown handle.
    virtual void DestroyEvent(EventHandle event) = 0;

    // The handler is called on the user-interface thread when a device in use is lost (unplugged, server
    // gone, stream moved away), at most once per buffer.
    virtual void OnDeviceLost(std::function<void(const RuntimeError&)> handler) = 0;

    // True for simulated devices, whose readings are not a measurement.
    virtual bool Simulated() const noexcept { return false; }
};

}  // namespace sonavex
