#include "core/audio/FineStream.h"

#include <chrono>
#include <utility>

namespace sonavex {
namespace {

// Short compared to the queues of the buffers.
constexpr std::chrono::milliseconds kInterval{20};

}  // namespace

FineStream::FineStream(EventLoop& loop, StreamEngine& engine) : loop_(loop), engine_(engine) {}

FineStream::~FineStream() {
    loop_.StopTimer(timer_);
}

void FineStream::SetSource(FineSource* source) {
    // What the former source supplied is not played.
    if (PlaybackBuffer* const buffer = engine_.SecondaryBuffer()) buffer->PlayFine(false);
    queued_ = supplied_.size();
    source_ = source;
    RunIfNeeded();
}

void FineStream::SetSink(Sink sink) {
    if (CaptureBuffer* const buffer = engine_.InputBuffer()) buffer->CaptureFine(false);
    sink_ = std::move(sink);
    RunIfNeeded();
}

void FineStream::RunIfNeeded() {
    loop_.StopTimer(std::exchange(timer_, 0));
    if (source_ == nullptr && !sink_) return;
    timer_ = loop_.StartTimer(kInterval, [this] { Move(); });
    Move();
}

// The engine may have new buffers since the last time.
void FineStream::Move() {
    if (sink_ && engine_.InputBuffer() != nullptr) Drain();
    if (source_ != nullptr && engine_.SecondaryBuffer() != nullptr) Supply();
}

void FineStream::Drain() {
    CaptureBuffer& buffer = *engine_.InputBuffer();
    buffer.CaptureFine(true);
    while (const std::size_t count = buffer.TakeFine(captured_)) sink_(std::span(captured_).first(count));
}

void FineStream::Supply() {
    PlaybackBuffer& buffer = *engine_.SecondaryBuffer();
    buffer.PlayFine(true);
    do {
        if (queued_ == supplied_.size()) {
            source_->FillFine(supplied_);
            queued_ = 0;
        }
        queued_ += buffer.QueueFine(std::span(supplied_).subspan(queued_));
    } while (queued_ == supplied_.size());
}

}  // namespace sonavex
