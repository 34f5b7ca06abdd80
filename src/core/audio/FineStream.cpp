#include "core/audio/FineStream.h"

#include <chrono>
#include <utility>

#include "core/support/ScopedFlag.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// Short compared to the queues of the buffers, which hold 1.5 s. What was captured is delivered soon; what is
// played has been queued long before.
constexpr std::chrono::milliseconds kSupplyInterval{100};
constexpr std::chrono::milliseconds kDrainInterval{40};

// What a change of the source leaves in the queue: enough to fill the rest again in time.
constexpr std::chrono::milliseconds kKept{50};

// More blocks than the queues hold at 192 kHz. Limits the time of one tick.
constexpr int kMostBlocks = 200;

}  // namespace

FineStream::FineStream(EventLoop& loop, StreamEngine& engine) : loop_(loop), engine_(engine) {}

FineStream::~FineStream() {
    loop_.StopTimer(supplyTimer_);
    loop_.StopTimer(drainTimer_);
}

void FineStream::SetSource(FineSource* source) {
    if (PlaybackBuffer* const buffer = engine_.SecondaryBuffer()) {
        if (source == nullptr)
            buffer->PlayFine(false);
        else
            buffer->CutFine(0ms);
    }
    queued_ = supplied_.size();
    replaced_ = true;
    source_ = source;
    Repeat(supplyTimer_, source != nullptr, kSupplyInterval, &FineStream::Supply);
}

void FineStream::Refill() {
    if (source_ == nullptr) return;
    std::uint64_t dropped = Unqueued();
    if (PlaybackBuffer* const buffer = engine_.SecondaryBuffer()) dropped += buffer->CutFine(kKept);
    queued_ = supplied_.size();
    source_->Rewind(dropped);
    Supply();
}

std::uint64_t FineStream::FramesAhead() const {
    PlaybackBuffer* const buffer = engine_.SecondaryBuffer();
    return Unqueued() + (buffer != nullptr ? buffer->FineFramesWaiting() : 0);
}

void FineStream::SetSink(Sink sink) {
    if (CaptureBuffer* const buffer = engine_.InputBuffer()) buffer->CaptureFine(false);
    sink_ = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
    restarted_ = true;
    Repeat(drainTimer_, sink_ != nullptr, kDrainInterval, &FineStream::Drain);
}

// Each direction has a timer, because a loop does not call a handler that is running: the output is supplied
// while a sink waits.
void FineStream::Repeat(EventLoop::TimerId& timer, bool needed, std::chrono::milliseconds interval,
                        void (FineStream::*step)()) {
    if (!needed) return loop_.StopTimer(std::exchange(timer, 0));
    if (timer == 0) timer = loop_.StartTimer(interval, [this, step] { (this->*step)(); });
    (this->*step)();
}

// Sink and source may run an event loop, and with it the next tick; they may replace each other and the
// engine's buffers. Nothing of this is used after such a call.
void FineStream::Drain() {
    if (draining_) return;
    const ScopedFlag draining(draining_);
    for (int block = 0; block < kMostBlocks; ++block) {
        CaptureBuffer* const buffer = engine_.InputBuffer();
        if (sink_ == nullptr || buffer == nullptr) return;
        if (std::exchange(starts_, engine_.CaptureStarts) != engine_.CaptureStarts) restarted_ = true;
        buffer->CaptureFine(true);
        const FineRun run = buffer->TakeFine(captured_);
        if (run.samples == 0) return;
        Deliver(std::span(captured_).first(run.samples), run.firstFrame);
    }
}

void FineStream::Deliver(std::span<const std::int32_t> samples, std::uint64_t firstFrame) {
    const bool restarted = std::exchange(restarted_, false);
    const std::uint64_t expected = std::exchange(nextFrame_, firstFrame + samples.size() / 2);
    const auto sink = sink_;
    try {
        (*sink)({samples, firstFrame, restarted ? 0 : firstFrame - expected, restarted});
    } catch (...) {
        if (sink_ == sink) SetSink({});
        throw;
    }
}

void FineStream::Supply() {
    if (supplying_) return;
    const ScopedFlag supplying(supplying_);
    for (int block = 0; block < kMostBlocks; ++block) {
        if (source_ == nullptr || engine_.SecondaryBuffer() == nullptr) return;
        engine_.SecondaryBuffer()->PlayFine(true);
        if (queued_ == supplied_.size()) Fill();
        PlaybackBuffer* const buffer = engine_.SecondaryBuffer();
        if (source_ == nullptr || buffer == nullptr) return;
        queued_ += buffer->QueueFine(std::span(supplied_).subspan(queued_));
        if (queued_ < supplied_.size()) return;
    }
}

// A block of a source that was replaced meanwhile is dropped.
void FineStream::Fill() {
    FineSource* const source = source_;
    replaced_ = false;
    try {
        source->FillFine(supplied_);
    } catch (...) {
        if (source_ == source) SetSource(nullptr);
        throw;
    }
    if (!replaced_) queued_ = 0;
}

}  // namespace sonavex
