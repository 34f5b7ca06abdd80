#pragma once

#include <cstdint>
#include <deque>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "core/audio/FineStream.h"
#include "core/stimulus/SampleWord.h"
#include "core/stimulus/StimulusSignal.h"

namespace sonavex {

// Plays stimuli one after the other, with ramps of 5 ms at every start and end. What plays is a function of
// the frame, so that frames that the device has not taken can be replaced.
class StimulusSource : public FineSource {
public:
    struct Sound {
        StimulusSignal signal;
        StimulusSide side = StimulusSide::kBoth;
        SampleWord word;
    };

    // Forgets everything and begins with frame 0.
    void Reset(std::int32_t rateHz);

    // From the next filled frame on: ends what plays, then plays the sound. Call FineStream::Refill to hear
    // it soon.
    void Play(Sound sound);
    // From the next filled frame on: ends what plays.
    void End();

    // Whether only silence follows the frames that were heard. unplayed: filled frames that were not.
    bool Ended(std::uint64_t unplayed) const noexcept;

    // The frame with which the newest sound begins; empty until it has been filled.
    std::optional<std::uint64_t> Begin() const noexcept;

    void FillFine(std::span<std::int32_t> block) override;
    void Rewind(std::uint64_t frames) override;

private:
    // A sound from `begin` up to `end`, ramps included.
    struct Part {
        Sound sound;
        SampleRounder rounder;
        std::uint64_t begin = 0;
        std::uint64_t end = std::numeric_limits<std::uint64_t>::max();
    };

    void Schedule();
    void Forget();
    void Add(const Part& part, std::span<std::int32_t> block);
    double RampAt(std::uint64_t framesFromEdge) const noexcept;

    std::uint64_t rampFrames_ = 0;
    std::uint64_t keptFrames_ = 0;  // as far back as the source may be rewound
    std::uint64_t frame_ = 0;       // the next one
    std::deque<Part> parts_;        // in the order of time; they do not overlap
    bool changed_ = false;          // wanted_ is not in parts_
    std::optional<Sound> wanted_;
    std::vector<double> samples_;
};

}  // namespace sonavex
