#include "core/precise/StimulusSource.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace sonavex {
namespace {

constexpr int kRampsPerSecond = 200;  // 5 ms each
constexpr int kKeptSeconds = 4;       // longer than the queues of the devices

}  // namespace

void StimulusSource::Reset(std::int32_t rateHz) {
    rampFrames_ = static_cast<std::uint64_t>(rateHz / kRampsPerSecond);
    keptFrames_ = static_cast<std::uint64_t>(rateHz) * kKeptSeconds;
    frame_ = 0;
    parts_.clear();
    wanted_.reset();
    changed_ = false;
    samples_.resize(kBlockFrames);
}

void StimulusSource::Play(Sound sound) {
    wanted_ = std::move(sound);
    changed_ = true;
}

void StimulusSource::End() {
    wanted_.reset();
    changed_ = true;
}

bool StimulusSource::Ended(std::uint64_t unplayed) const noexcept {
    if (changed_) return false;
    return parts_.empty() || (parts_.back().end <= frame_ && frame_ - parts_.back().end >= unplayed);
}

void StimulusSource::Rewind(std::uint64_t frames) {
    frame_ -= std::min(frames, frame_);
}

std::optional<std::uint64_t> StimulusSource::Begin() const noexcept {
    if (changed_ || parts_.empty()) return std::nullopt;
    return parts_.back().begin;
}

// A change waits for the first frame after it, because the source may be rewound in between.
void StimulusSource::Schedule() {
    changed_ = false;
    std::erase_if(parts_, [this](const Part& part) { return part.begin >= frame_; });
    std::uint64_t begin = frame_;
    if (!parts_.empty()) {
        std::uint64_t& end = parts_.back().end;
        end = std::min(end, frame_ + rampFrames_);
        begin = std::max(begin, end);
    }
    if (wanted_) parts_.push_back({*wanted_, SampleRounder(wanted_->word), begin});
}

void StimulusSource::FillFine(std::span<std::int32_t> block) {
    if (changed_) Schedule();
    while (!block.empty()) {
        const auto piece = block.first(std::min(block.size(), 2 * samples_.size()));
        std::fill(piece.begin(), piece.end(), 0);
        for (const Part& part : parts_) Add(part, piece);
        frame_ += piece.size() / 2;
        block = block.subspan(piece.size());
    }
    Forget();
}

void StimulusSource::Forget() {
    while (parts_.size() > 1 && parts_.front().end < frame_ && frame_ - parts_.front().end > keptFrames_)
        parts_.pop_front();
}

void StimulusSource::Add(const Part& part, std::span<std::int32_t> block) {
    const std::uint64_t first = std::max(part.begin, frame_);
    const std::uint64_t last = std::min(part.end, frame_ + block.size() / 2);
    if (first >= last) return;
    const auto samples = std::span(samples_).first(static_cast<std::size_t>(last - first));
    part.sound.signal.Fill(first - part.begin, samples);
    std::size_t position = 2 * static_cast<std::size_t>(first - frame_);
    for (std::uint64_t frame = first; frame < last; ++frame, position += 2) {
        const double sample = samples[static_cast<std::size_t>(frame - first)] * RampAt(frame - part.begin) *
                              RampAt(part.end - 1 - frame);
        if (part.sound.side != StimulusSide::kRight) block[position] = part.rounder.Round(sample, frame, 0);
        if (part.sound.side != StimulusSide::kLeft)
            block[position + 1] = part.rounder.Round(sample, frame, 1);
    }
}

// Half a period of a cosine, from 0 to 1.
double StimulusSource::RampAt(std::uint64_t framesFromEdge) const noexcept {
    if (framesFromEdge >= rampFrames_) return 1.0;
    const double turn = static_cast<double>(framesFromEdge) / static_cast<double>(rampFrames_);
    return 0.5 - 0.5 * std::cos(std::numbers::pi * turn);
}

}  // namespace sonavex
