#include "core/audio/StreamEngine.h"

#include <algorithm>
#include <utility>

#include "core/dsp/AnalysisBand.h"
#include "core/ports/BusyPointer.h"
#include "core/support/EndProgram.h"
#include "core/support/ScopedFlag.h"

namespace sonavex {
namespace {

constexpr const char* kOneInstance =
    "Only one instance of the Quenby Sonavex can be launched\ror sound card is in use.";

constexpr std::int32_t kLowEdgeAfterRestartHz = 20;
constexpr std::size_t kNotifications = 4;
// A start or an overrun puts a step into the output. It returns through the devices within this number of
// blocks, the length of the playback buffer.
constexpr std::int32_t kSettlingBlocks = 8;

constexpr int kBlockBits = 16;
constexpr std::uint64_t kPlayedFrameBytes = 4;

bool Silent(std::span<const std::int16_t> block) noexcept {
    return std::all_of(block.begin(), block.end(), [](std::int16_t sample) { return sample == 0; });
}

template <class Buffer>
std::string NoteOf(const Buffer& buffer, int bitsWanted) {
    std::string note = buffer.PathNote();
    const std::string bits = std::to_string(buffer.Bits()) + " bit";
    // The note of a conversion names the bits itself.
    if (buffer.Bits() >= bitsWanted || note.find(bits) != std::string::npos) return note;
    if (!note.empty() && note.back() == '.') note.pop_back();
    return note + (note.empty() ? "" : "; ") + bits;
}

}  // namespace

StreamEngine::StreamEngine(const Needs& needs) : needs_(needs) {}

StreamEngine::~StreamEngine() {
    Release();
}

PlaybackBuffer& StreamEngine::Playback() const {
    if (!playbackBuffer_) throw RuntimeError(error_number::kObjectMissing);
    return *playbackBuffer_;
}

CaptureBuffer& StreamEngine::Capture() const {
    if (!captureBuffer_) throw RuntimeError(error_number::kObjectMissing);
    return *captureBuffer_;
}

std::uint64_t StreamEngine::HeldFrames() {
    if (!playbackBuffer_) return 0;
    try {
        const BufferCursors cursors = playbackBuffer_->GetCurrentPosition();
        const std::int32_t bytes = cursors.write - cursors.play;
        return static_cast<std::uint64_t>(bytes < 0 ? bytes + kPlaybackBytes : bytes) / kPlayedFrameBytes;
    } catch (const RuntimeError&) {
        return 0;
    }
}

CaptureStatistics StreamEngine::CaptureCounts() const {
    CaptureStatistics counts = countsBefore_;
    if (!captureBuffer_) return counts;
    const CaptureStatistics present = captureBuffer_->Statistics();
    counts.framesCaptured += present.framesCaptured;
    counts.segmentsCompleted += present.segmentsCompleted;
    counts.segmentsLost += present.segmentsLost;
    counts.framesMissing += present.framesMissing;
    counts.fineFramesLost += present.fineFramesLost;
    return counts;
}

std::uint64_t StreamEngine::Underruns() const {
    return underrunsBefore_ + (playbackBuffer_ ? playbackBuffer_->Underruns() : 0);
}

std::uint64_t StreamEngine::FineFramesMissing() const {
    return fineMissingBefore_ + (playbackBuffer_ ? playbackBuffer_->FineFramesMissing() : 0);
}

bool StreamEngine::OneClock() const {
    if (!captureBuffer_ || !playbackBuffer_) return false;
    const std::string clock = captureBuffer_->ClockName();
    return !clock.empty() && clock == playbackBuffer_->ClockName();
}

std::vector<std::string> StreamEngine::PathNotes() const {
    std::vector<std::string> notes;
    const int bitsWanted = std::max({InputBits(), OutputBits(), kBlockBits});
    const std::string input = captureBuffer_ ? NoteOf(*captureBuffer_, bitsWanted) : std::string();
    const std::string output = playbackBuffer_ ? NoteOf(*playbackBuffer_, bitsWanted) : std::string();
    if (!input.empty()) notes.push_back("Input: " + input);
    if (!output.empty()) notes.push_back("Output: " + output);
    const std::string clocks =
        ClockNote(captureBuffer_ ? captureBuffer_->ClockName() : std::string(),
                  playbackBuffer_ ? playbackBuffer_->ClockName() : std::string(), drift_.Ppm());
    if (!clocks.empty()) notes.push_back("Clocks: " + clocks);
    return notes;
}

bool StreamEngine::SetEvents() {
    if (captureBuffer_) captureBuffer_->Stop();
    DestroyEvents([] {});
    try {
        std::array<PositionNotification, kNotifications> notifyPositions;
        for (std::size_t i = 0; i < kNotifications; ++i) {
            NotifyEvents[i] =
                needs_.sound.CreateEvent([this](EventHandle event) { DirectXEvent8_DXCallback(event); });
            const auto quarters = static_cast<std::int32_t>(i + 1);
            notifyPositions[i] = {kCaptureBytes / 4 * quarters - 1, NotifyEvents[i]};
        }
        Capture().SetNotificationPositions(notifyPositions);
    } catch (const RuntimeError& error) {
        if (error.Number() != error_number::kObjectMissing) return Report(error.what(), error);
        needs_.dialogs.Message(kOneInstance, MessageIcon::kCritical);
        throw EndProgram{0};
    }
    needs_.shared.EventsReady = true;
    return true;
}

void StreamEngine::ResetStream() noexcept {
    RestartPending = true;
    PlayBlockIndex = 0;
    BlockOffset = 0;
    RestartCount = 0;
    CaptureSegment = 0;
}

void StreamEngine::StartCapture() {
    Capture().StartLooping();
    ++CaptureStarts;
}

void StreamEngine::Stop() {
    if (captureBuffer_) captureBuffer_->Stop();
    if (playbackBuffer_) playbackBuffer_->Stop();
}

void StreamEngine::Abandon() {
    Stop();
    DestroyEvents([] {});
}

void StreamEngine::DestroyEvents(const std::function<void()>& beforeEach) {
    needs_.shared.EventsReady = false;
    for (auto event = NotifyEvents.rbegin(); event != NotifyEvents.rend(); ++event) {
        beforeEach();
        DestroyEvent(*event);
        *event = 0;
    }
}

// A failure is ignored: the handle is cleared in any case.
void StreamEngine::DestroyEvent(EventHandle event) {
    if (event == 0) return;
    try {
        needs_.sound.DestroyEvent(event);
    } catch (const RuntimeError& error) {
        TraceLabel(error.what(), event);
    }
}

void StreamEngine::Release() {
    DestroyEvents([] {});
    ReleaseObjects();
}

void StreamEngine::ReleaseObjects() {
    drift_.Forget();
    countsBefore_ = CaptureCounts();
    underrunsBefore_ = Underruns();
    fineMissingBefore_ = FineFramesMissing();
    playbackDevice_.reset();
    playbackBuffer_.reset();
    captureBuffer_.reset();
    captureDevice_.reset();
}

bool StreamEngine::ReStart(Reporting reporting) {
    if (restarting_) return false;
    BusyPointer busyPointer(needs_.dialogs);
    const ScopedFlag restarting(restarting_);
    quiet_ = reporting == Reporting::kQuiet;
    Stop();
    DestroyEvents([this] { needs_.loop.Yield(); });
    ReleaseObjects();
    needs_.processor.StreamDisturbed();
    const BandEdges band = AnalysisBand(needs_.shared.SampleRate, kLowEdgeAfterRestartHz);
    needs_.processor.SetUpAnalysis(band.lowHz, band.highHz);
    if (!CreateDevices() || !SetEvents()) return false;
    PlayBlockIndex = 0;
    RestartPending = true;
    RestartCount = 0;
    busyPointer.Restore();
    StartOver();
    return true;
}

void StreamEngine::StartOver() {
    if (OnLimits) OnLimits(needs_.shared.SampleRate / 2);
    Playback().SetCurrentPosition(0);
    StartCapture();
    if (OnRebuilt) OnRebuilt();
}

void StreamEngine::TraceLabel(std::string_view label, std::int32_t cursor) const {
    if (Trace) Trace(label, cursor);
}

void StreamEngine::DirectXEvent8_DXCallback(EventHandle eventid) {
    if (restarting_) return;
    if (OnNotified) OnNotified();
    if (HoldNotifications) {
        ++DroppedNotifications;
        needs_.processor.StreamDisturbed();
        return;
    }
    const auto* fired = std::find(NotifyEvents.begin(), NotifyEvents.begin() + kNotifications, eventid);
    if (fired != NotifyEvents.begin() + kNotifications)
        CaptureSegment = static_cast<std::int32_t>(fired - NotifyEvents.begin());
    BlockOffset = CaptureSegment * kCaptureBlockBytes;
    Capture().ReadBuffer(BlockOffset, CaptureData);
    NoteDisturbances();
    needs_.processor.ProcessCapturedBlock(CaptureData, PlayData);
    SilentBlocks = Silent(PlayData) ? SilentBlocks + 1 : 0;

    BlockOffset = PlayBlockIndex * kCaptureBlockBytes;
    BlockEnd = BlockOffset + kCaptureBlockBytes - 1;
    PlayCursors = Playback().GetCurrentPosition();
    if (!HandleOverrun()) Playback().WriteBuffer(BlockOffset, PlayData);
    PlayBlockIndex = PlayBlockIndex >= kLastPlayBlock ? 0 : PlayBlockIndex + 1;
    CountPriming();
    ++Blocks;
    if (OnBlockQueued) OnBlockQueued();
}

void StreamEngine::NoteDisturbances() {
    const CaptureStatistics counts = Capture().Statistics();
    const bool lost = counts.segmentsLost != captureCounts_.segmentsLost;
    const bool gap = counts.framesMissing != captureCounts_.framesMissing;
    const std::uint64_t underruns = Underruns();
    const bool underrun = std::exchange(underruns_, underruns) < underruns;
    // A newly counted gap lies in this block or in the one being captured.
    if (RestartPending || underrun) settlingBlocks_ = kSettlingBlocks;
    FollowClocks(lost || gap || settlingBlocks_ > 0);
    if (lost || gap || gapBefore_ || settlingBlocks_ > 0) needs_.processor.StreamDisturbed();
    if (settlingBlocks_ > 0) --settlingBlocks_;
    captureCounts_ = counts;
    gapBefore_ = gap;
}

// An interruption shifts the leads by an unknown time.
void StreamEngine::FollowClocks(bool disturbed) {
    if (disturbed) return drift_.Restart();
    if (!captureBuffer_ || !playbackBuffer_) return;
    const auto input = captureBuffer_->ClockLead();
    const auto output = playbackBuffer_->ClockLead();
    if (input && output) drift_.Add(needs_.loop.Now(), *input - *output);
}

// Returns true if the block has been written.
bool StreamEngine::HandleOverrun() {
    if (needs_.shared.NewerGeneration()) return HandleOverrunNewer();
    HandleOverrunOlder();
    return false;
}

// Writes the block at the device's read position; playback continues from the start of the buffer.
bool StreamEngine::HandleOverrunNewer() {
    if (PlayCursors.write < BlockOffset || PlayCursors.write > BlockEnd) return false;
    TraceLabel("vista overrun", PlayCursors.write);
    if (!RestartPending) {
        ++Overruns;
        settlingBlocks_ = kSettlingBlocks;
    }
    Playback().WriteBuffer(BlockOffset, PlayData);
    Playback().SetCurrentPosition(0);
    return true;
}

// Writing restarts at the first block, and playback after enough blocks. ResetWriting clears BlockOffset but
// not BlockEnd, so after a write overrun every play cursor up to BlockEnd counts as an overrun.
void StreamEngine::HandleOverrunOlder() {
    const bool priming = RestartPending;
    bool overrun = false;
    if (PlayCursors.write >= BlockOffset && PlayCursors.write <= BlockEnd) {
        ResetWriting("Restart Play Buffer (write)", PlayCursors.write);
        overrun = true;
    }
    if (PlayCursors.play >= BlockOffset && PlayCursors.play <= BlockEnd) {
        ResetWriting("Restart Play Buffer (play)", PlayCursors.play);
        overrun = true;
    }
    if (overrun && !priming) ++Overruns;
}

void StreamEngine::ResetWriting(std::string_view label, std::int32_t cursor) {
    TraceLabel(label, cursor);
    RestartPending = true;
    PlayBlockIndex = 0;
    BlockOffset = 0;
    RestartCount = 0;
}

void StreamEngine::CountPriming() {
    if (!RestartPending) return;
    if (++RestartCount < kPrimingBlocks) return;
    RestartPending = false;
    RestartCount = 0;
    TraceLabel("RESTARTING");
    ++PlaybackStarts;
    Playback().SetCurrentPosition(0);
    Playback().PlayLooping();
}

}  // namespace sonavex
