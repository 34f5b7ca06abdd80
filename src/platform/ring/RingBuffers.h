#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "core/ports/SoundSystem.h"
#include "platform/ring/CaptureRing.h"
#include "platform/ring/ClockMeter.h"
#include "platform/ring/NotificationHub.h"
#include "platform/ring/PlaybackRing.h"

namespace sonavex {

// Throws kBadFormat with this text unless the format is 16-bit stereo PCM.
void RequireStereo16(const WaveFormat& format, const char* refusal);

// The device at the other end of a ring.
class RingDevice {
public:
    virtual ~RingDevice() = default;
    // Throws kBufferLost when the device was lost.
    virtual void RequireDevice() const = 0;
    // As the functions of PlaybackBuffer and CaptureBuffer.
    virtual std::string PathNote() const { return {}; }
    virtual std::string ClockName() const { return {}; }
    virtual std::uint64_t Underruns() const { return 0; }
    // Bits of a sample that reach the device, or come from it: 8 to 32. Any thread.
    virtual int Bits() const noexcept { return 16; }
};

// A playback buffer that a device empties through a ring. The derived class opens the device and calls
// Pull on its audio thread for as long as the buffer exists; Pull delivers silence while the buffer is
// stopped. The derived class must end that thread in its destructor.
class RingPlaybackBuffer : public PlaybackBuffer {
public:
    BufferCursors GetCurrentPosition() final { return Checked().Cursors(); }
    void WriteBuffer(std::int32_t offset, std::span<const std::int16_t> samples) final {
        Checked().Write(offset, samples);
    }
    void PlayFine(bool on) final { ring_.PlayFine(on); }
    std::size_t QueueFine(std::span<const std::int32_t> samples) final { return ring_.QueueFine(samples); }
    std::size_t CutFine(std::chrono::milliseconds keep) final { return ring_.CutFine(keep); }
    std::size_t FineFramesWaiting() const final { return ring_.FineFramesWaiting(); }
    std::uint64_t FineFramesMissing() const final { return ring_.FineFramesMissing(); }
    int Bits() const final { return Device().Bits(); }
    void SetCurrentPosition(std::int32_t offset) final { Checked().SetPosition(offset); }
    void PlayLooping() final { Checked().Play(); }
    void Stop() final { ring_.Stop(); }
    void SetVolume(std::int32_t hundredthsDb) final { Checked().SetVolume(hundredthsDb); }
    std::string PathNote() const final { return Device().PathNote(); }
    std::uint64_t Underruns() const final { return Device().Underruns(); }
    std::optional<std::chrono::nanoseconds> ClockLead() const final { return clock_.Lead(); }
    std::string ClockName() const final { return Device().ClockName(); }

protected:
    explicit RingPlaybackBuffer(const BufferDescription& description);

    virtual const RingDevice& Device() const noexcept = 0;
    PlaybackRing& Ring() noexcept { return ring_; }
    // Audio thread: the next frames for the device, 2 x frames samples of 16 bits or left-justified in 32,
    // rounded to the device's bits. `deviceDelay` is the number of frames that the device took earlier and
    // has not made audible. The play cursor is at most three blocks behind, so that the engine finds room
    // for a block; at high rates a longer delay is heard later than the cursor says.
    void Pull(std::int16_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept;
    void Pull(std::int32_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept;

private:
    template <class Sample>
    void PullAs(Sample* samples, std::size_t frames, std::size_t deviceDelay) noexcept;
    PlaybackRing& Checked() {
        Device().RequireDevice();
        return ring_;
    }

    PlaybackRing ring_;
    ClockMeter clock_;
};

// A capture buffer that a device fills through a ring. The derived class opens the device and calls Push
// on its audio thread for as long as the buffer exists; samples that arrive while the buffer is stopped
// are dropped. The derived class must end that thread in its destructor.
class RingCaptureBuffer : public CaptureBuffer {
public:
    void SetNotificationPositions(std::span<const PositionNotification> positions) final;
    void StartLooping() final { Checked().Start(); }
    void Stop() final { ring_.Stop(); }
    void ReadBuffer(std::int32_t offset, std::span<std::int16_t> samples) final {
        Checked().Read(offset, samples);
    }
    void CaptureFine(bool on) final { ring_.CaptureFine(on); }
    FineRun TakeFine(std::span<std::int32_t> samples) noexcept final { return ring_.TakeFine(samples); }
    int Bits() const final { return Device().Bits(); }
    std::uint32_t TakeMovedBits() noexcept final { return ring_.TakeMovedBits(); }
    CaptureStatistics Statistics() const final { return ring_.Statistics(); }
    std::string PathNote() const final { return Device().PathNote(); }
    std::optional<std::chrono::nanoseconds> ClockLead() const final { return clock_.Lead(); }
    std::string ClockName() const final { return Device().ClockName(); }

protected:
    // The hub must outlive the buffer.
    RingCaptureBuffer(const NotificationHub& hub, const BufferDescription& description);

    virtual const RingDevice& Device() const noexcept = 0;
    CaptureRing& Ring() noexcept { return ring_; }
    // Audio thread: 2 x frames samples that the device delivered, of 16 bits or left-justified in 32.
    void Push(const std::int16_t* samples, std::size_t frames) noexcept;
    void Push(const std::int32_t* samples, std::size_t frames) noexcept;
    // Audio thread: frames that the device left out, as many as passed on its clock.
    void PushSilence(std::size_t frames) noexcept;

private:
    CaptureRing& Checked() {
        Device().RequireDevice();
        return ring_;
    }

    const NotificationHub& hub_;
    CaptureRing ring_;
    ClockMeter clock_;
};

}  // namespace sonavex
