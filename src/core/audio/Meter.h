#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "core/audio/BlockProcessor.h"
#include "core/dsp/Readings.h"
#include "core/dsp/display/MeasurementControls.h"
#include "core/dsp/display/MeterDisplay.h"
#include "core/dsp/modDSP.h"
#include "core/generator/Generator.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// Analysis, generator and display: takes captured blocks, returns output blocks and shows the readings. It
// does not depend on the source of the blocks (stream engine or recording).
class Meter : public BlockProcessor {
public:
    static constexpr std::int32_t kCycleBlocks = modDSP::kLastSlot + 1;

    explicit Meter(const SharedState& shared);

    void SetUpAnalysis(std::int32_t lowHz, std::int32_t highHz) override;
    void ProcessCapturedBlock(std::span<const std::int16_t> captured,
                              std::span<std::int16_t> playback) override;
    void StreamDisturbed() override { disturbed_ = true; }

    // Called after every block. May be empty.
    std::function<void()> OnBlock;

    // Number of blocks processed.
    std::int64_t Blocks() const noexcept { return blocks_; }
    // Whether the last block ended a cycle, so that the harmonic readings are new.
    bool Updated() const noexcept { return blocks_ > 0 && analysis_->HistIndex == modDSP::kLastSlot; }
    // Whether the harmonic readings are new and average 19 locked, undisturbed blocks.
    bool Settled() const noexcept { return Updated() && cycleGood_; }
    // Position in the current cycle, 1 to 19.
    std::int32_t CyclePosition() const noexcept { return analysis_->HistIndex + 1; }

    MeasurementControls Controls;
    MeterDisplay Display{Controls};
    sonavex::Generator Generator;
    modDSP::State& Analysis() noexcept { return *analysis_; }
    const modDSP::State& Analysis() const noexcept { return *analysis_; }

private:
    void Analyse(std::span<const std::int16_t> captured, std::span<std::int16_t> playback);
    void ShowReadings();

    const SharedState& shared_;
    std::unique_ptr<modDSP::State> analysis_;
    Readings readings_;
    std::int64_t blocks_ = 0;
    // Whether all blocks of the cycle so far were locked and undisturbed. The first cycle lacks its first
    // block.
    bool cycleGood_ = false;
    bool disturbed_ = false;
    bool shownSettled_ = false;  // the shown readings come from a settled update
};

}  // namespace sonavex
