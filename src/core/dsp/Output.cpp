#include <algorithm>
#include <cmath>

#include "core/dsp/modDSP.h"

namespace sonavex::modDSP {
namespace {

using namespace modSPL2VB;

// Frames by which a block's filter response extends into the next block.
constexpr std::int32_t kTail = 2046;

// Completes the filtered input of this block with the tail of the block before.
void OverlapAdd(State& state) {
    nspdbCopy(state.SpecRe, state.FilteredRe, kFftLength);
    nspdbCopy(state.SpecIm, state.FilteredIm, kFftLength);
    nspzrFftNip(state.plan, state.FilteredRe, state.FilteredIm, state.SpecRe, state.SpecIm, kInverse);
    nspdbAdd2(state.TailA, state.SpecRe, kTail);
    nspdbAdd2(state.TailB, state.SpecIm, kTail);
    std::copy_n(state.SpecRe.begin() + kBlockFrames, kTail, state.TailA.begin());
    std::copy_n(state.SpecIm.begin() + kBlockFrames, kTail, state.TailB.begin());
}

void MeasureOutputLevel(State& state, bool mute, Readings& readings) {
    state.OutputPeak = std::min(LargestMagnitude(state.SpecRe, state.SpecIm, kBlockFrames), kFullScale);
    readings.outputPeak = state.OutputPeak;
    readings.muted = mute;
    readings.reached = BlockStep::kOutputLevel;
}

// Limits the length of the two-channel vector, not each channel.
void Limit(State& state) {
    state.SynthPeak = LargestMagnitude(state.SpecRe, state.SpecIm, kBlockFrames);
    if (state.SynthPeak <= kFullScale) return;
    nspdbMpy1(kFullScale / state.SynthPeak, state.SpecRe, kBlockFrames);
    nspdbMpy1(kFullScale / state.SynthPeak, state.SpecIm, kBlockFrames);
}

void Interleave(const State& state, std::span<std::int16_t> playback) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(kBlockFrames); ++i) {
        playback[2 * i] = static_cast<std::int16_t>(std::lrint(state.SpecIm[i]));
        playback[2 * i + 1] = static_cast<std::int16_t>(std::lrint(state.SpecRe[i]));
    }
}

}  // namespace

void MakeOutput(State& state, bool mute, Readings& readings, BlockFill& generator,
                std::span<std::int16_t> playback) {
    OverlapAdd(state);
    if (mute) {
        state.SpecRe.fill(0.0);
        state.SpecIm.fill(0.0);
    }
    MeasureOutputLevel(state, mute, readings);
    generator.FillGeneratorBlock(state.SpecRe, state.SpecIm, kBlockFrames);
    Limit(state);
    Interleave(state, playback);
}

}  // namespace sonavex::modDSP
