#include "core/precise/BurstSearch.h"

#include "core/precise/PathBurst.h"

namespace sonavex {
namespace {

// Between two searches.
constexpr double kStepSeconds = 0.1;

}  // namespace

BurstSearch::BurstSearch(double rateHz, std::size_t channel, std::size_t mostFrames)
    : rateHz_(rateHz), channel_(channel), mostFrames_(mostFrames) {}

void BurstSearch::Add(const FineFrames& block) {
    if (Ended()) return;
    if (samples_.empty()) firstFrame_ = block.firstFrame;
    ended_ = block.firstFrame != firstFrame_ + samples_.size();
    if (ended_) return;
    for (std::size_t i = channel_; i < block.samples.size(); i += 2)
        samples_.push_back(kFineStep * static_cast<double>(block.samples[i]));
    ended_ = samples_.size() >= mostFrames_;
    if (!ended_ && static_cast<double>(samples_.size() - searched_) < kStepSeconds * rateHz_) return;
    searched_ = samples_.size();
    if (const auto place = FindPathBurst(samples_, rateHz_)) found_ = firstFrame_ + *place;
}

}  // namespace sonavex
