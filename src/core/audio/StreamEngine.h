#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/audio/BlockProcessor.h"
#include "core/audio/ClockDrift.h"
#include "core/ports/Dialogs.h"
#include "core/ports/ErrorLog.h"
#include "core/ports/EventLoop.h"
#include "core/ports/MixerBinding.h"
#include "core/ports/SoundSystem.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"
#include "core/support/BlockSize.h"

namespace sonavex {

// The sound card in full duplex: a capture buffer of four segments and a playback buffer of eight blocks.
// When a segment has been captured, its notification analyses it and writes one block of output, so the
// capture clock paces the output.
class StreamEngine {
public:
    static constexpr std::int32_t kCaptureBlockBytes = 4 * kBlockFrames;  // 16-bit stereo
    static constexpr std::int32_t kCaptureBytes = 4 * kCaptureBlockBytes;
    static constexpr std::int32_t kPlaybackBytes = 2 * kCaptureBytes;
    static constexpr std::int32_t kLastPlayBlock = 7;
    static constexpr std::int32_t kPrimingBlocks = 7;

    // All referenced objects must outlive the engine.
    struct Needs {
        SharedState& shared;
        Settings& settings;
        SoundSystem& sound;
        EventLoop& loop;
        Dialogs& dialogs;
        ErrorLog& errorLog;
        MixerBinding& mixers;
        BlockProcessor& processor;
    };

    explicit StreamEngine(const Needs& needs);
    ~StreamEngine();
    StreamEngine(const StreamEngine&) = delete;
    StreamEngine& operator=(const StreamEngine&) = delete;

    // Creates devices and buffers for the stored identifiers. False on failure, with the reason in the error
    // log. Without a playback device, or if the devices cannot be listed, shows a message and throws
    // EndProgram.
    bool CreateDevices();

    // Arms the four capture notifications. False on failure. Without a capture buffer, shows that the sound
    // card is in use and throws EndProgram with status 0.
    bool SetEvents();

    // Rebuilds everything after a change of device or rate. False on failure, or if a restart is already
    // running. kQuiet reports no failure and never ends the program.
    enum class Reporting { kReport, kQuiet };
    bool ReStart(Reporting reporting = Reporting::kReport);

    // Call after a loss: stops capture and playback and destroys the events. ReStart brings the engine back.
    void Abandon();

    // While on, the playback volume is 0 dB, also of new buffers; afterwards it is the stored level again.
    void SetFullVolume(bool on);
    bool FullVolume() const noexcept { return fullVolume_; }

    // Restarts playback from the first block.
    void ResetStream() noexcept;

    // Starts the capture; error 91 without a capture buffer.
    void StartCapture();

    // Shutdown: stops capture, then playback.
    void Stop();
    // Shutdown: destroys events and devices.
    void Release();

    // The notification callback. Throws the errors of the sound objects and of the analysis.
    void DirectXEvent8_DXCallback(EventHandle eventid);

    bool Restarting() const noexcept { return restarting_; }
    // Null without devices. ReStart replaces the buffers.
    PlaybackBuffer* SecondaryBuffer() noexcept { return playbackBuffer_.get(); }
    CaptureBuffer* InputBuffer() noexcept { return captureBuffer_.get(); }
    // Bits of a sample that the devices deliver and take; 0 without a buffer.
    int InputBits() const { return captureBuffer_ ? captureBuffer_->Bits() : 0; }
    int OutputBits() const { return playbackBuffer_ ? playbackBuffer_->Bits() : 0; }
    // Frames that the output device has taken and not played, as far as its cursors tell. A lost device
    // plays none.
    std::uint64_t HeldFrames();
    // Counts of all capture buffers since construction.
    CaptureStatistics CaptureCounts() const;
    // Underruns of all playback buffers since construction.
    std::uint64_t Underruns() const;
    // Frames of silence that all playback buffers played since construction because fine frames came too
    // late.
    std::uint64_t FineFramesMissing() const;
    // Whether input and output are known to run on the same clock.
    bool OneClock() const;
    // What changes the samples between the buffers and the cards: "Input: ...", "Output: ..." and "Clocks:
    // ...". The direction with fewer bits is named, and any below 16. Empty if nothing is known.
    std::vector<std::string> PathNotes() const;

    // Stream state.
    std::array<EventHandle, 5> NotifyEvents{};  // 0 to 3: the capture notifications
    std::int32_t CaptureSegment = 0;            // 0 to 3: last captured segment
    std::int32_t PlayBlockIndex = 0;            // 0 to 7: next block to write
    std::int32_t BlockOffset = 0;               // bytes
    std::int32_t BlockEnd = 0;                  // BlockOffset + 8191
    BufferCursors PlayCursors;
    bool RestartPending = false;    // playback starts once enough blocks are written
    std::int32_t RestartCount = 0;  // blocks written since
    std::array<std::int16_t, kBlockSamples> CaptureData{};
    std::array<std::int16_t, kBlockSamples> PlayData{};

    std::string InputDeviceName;
    std::string OutputDeviceName;
    std::string InputDeviceId;  // as stored; empty for the primary device
    std::string OutputDeviceId;
    // The same, but of the device that the primary device referred to. Empty for an unknown device.
    std::string ListedInputId;
    std::string ListedOutputId;

    // Counts since construction.
    std::uint64_t Overruns = 0;        // playback ran into the block being written
    std::uint64_t PlaybackStarts = 0;  // including those after an overrun
    std::uint64_t Blocks = 0;          // captured blocks processed
    std::uint64_t CaptureStarts = 0;

    std::uint64_t SilentBlocks = 0;  // blocks of silence since the last other block of output

    // While true, notifications are dropped and counted, because a message is open.
    bool HoldNotifications = false;
    std::uint64_t DroppedNotifications = 0;

    // The hooks may be empty.

    // Called by CreateDevices after the device objects are created and the older mixers are set to them, and
    // before any buffer exists. Arguments: names of the devices, sampling rate in Hz.
    std::function<void(const std::string& input, const std::string& output, std::int32_t rateHz)> OnDevices;

    // Called by ReStart when devices and events are ready, before playback and capture start. Argument: the
    // highest frequency in Hz that the generator can play at the new rate.
    std::function<void(std::int32_t highestHz)> OnLimits;

    // Called by ReStart when the capture runs again.
    std::function<void()> OnRebuilt;

    // Called for each notification, before its block is processed.
    std::function<void()> OnNotified;

    // Called after each block that was processed and queued without an error.
    std::function<void()> OnBlockQueued;

    // Receives the debug trace: a label and a cursor (0 for none).
    std::function<void(std::string_view, std::int32_t)> Trace;

private:
    bool Report(std::string message, const RuntimeError& error);
    [[noreturn]] void EndWithoutPlaybackDevice(const RuntimeError& error);
    SoundDeviceList EnumeratePlayback();
    bool CreateDeviceObjects(const SoundDeviceList& playbackDevices);
    bool CreateCaptureBuffer();
    bool CreatePlaybackBuffer();
    std::uint32_t MixingLocationFlag();
    std::int32_t StoredLevel() const;
    std::int32_t Volume() const { return fullVolume_ ? 0 : StoredLevel(); }

    void DestroyEvents(const std::function<void()>& beforeEach);
    void DestroyEvent(EventHandle event);
    void ReleaseObjects();
    void StartOver();

    void NoteDisturbances();
    void FollowClocks(bool disturbed);
    bool HandleOverrun();
    bool HandleOverrunNewer();
    void HandleOverrunOlder();
    void ResetWriting(std::string_view label, std::int32_t cursor);
    void CountPriming();
    void TraceLabel(std::string_view label, std::int32_t cursor = 0) const;
    PlaybackBuffer& Playback() const;
    CaptureBuffer& Capture() const;

    Needs needs_;
    std::unique_ptr<PlaybackDevice> playbackDevice_;
    std::unique_ptr<CaptureDevice> captureDevice_;
    std::unique_ptr<PlaybackBuffer> playbackBuffer_;
    std::unique_ptr<CaptureBuffer> captureBuffer_;
    CaptureStatistics captureCounts_;  // at the last block
    std::uint64_t underruns_ = 0;      // at the last block
    // Counts of destroyed buffers.
    CaptureStatistics countsBefore_;
    std::uint64_t underrunsBefore_ = 0;
    std::uint64_t fineMissingBefore_ = 0;
    ClockDrift drift_;
    bool fullVolume_ = false;
    bool gapBefore_ = false;           // a gap was counted at the last block
    std::int32_t settlingBlocks_ = 0;  // blocks that may still contain the step of a start
    bool restarting_ = false;
    bool quiet_ = false;
};

}  // namespace sonavex
