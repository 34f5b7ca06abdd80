#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/dsp/Readings.h"
#include "core/dsp/display/MeasurementControls.h"
#include "core/dsp/modDSP.h"

namespace sonavex {

// The words of the meter that are not captions of its controls.
namespace meter_words {
inline constexpr std::string_view kOverload = "OVERLOAD";
inline constexpr std::string_view kNoSignal = "NO SIGNAL";
inline constexpr std::string_view kLocked = "LOCKED";
inline constexpr std::string_view kNotLocked = "NOT LOCKED";
inline constexpr std::string_view kStopped = "STOPPED";
}  // namespace meter_words

// What a window shows of the meter in addition to the captions of its controls.
struct MeterView {
    std::string_view inputWord;                            // OVERLOAD, NO SIGNAL or empty
    std::string_view outputWord;                           // OVERLOAD or empty
    std::string_view lockWord = meter_words::kNotLocked;   // LOCKED, NOT LOCKED or STOPPED
    std::string_view totalOf = "H2–H9, re total (THD_R)";  // which harmonics the total counts
    std::string cycle = "0 of 19";                         // blocks of the cycle
    std::int32_t cycleBlocks = 0;
    bool noSignal = false;  // the input level reads as overload because there is no signal
    // The caption is a number, which has the unit percent.
    bool inputInPercent = false;
    bool outputInPercent = false;
    bool totalInPercent = false;
    bool settling = false;  // the total does not yet average 19 good blocks
    // As their captions show them, dB; none for a level that is not shown as a number.
    std::array<std::optional<double>, Readings::kHarmonics> levelsDb{};
};

// Turns the readings of a block into the captions and words of the meter.
class MeterDisplay {
public:
    // Both lamps show NOT LOCKED. The controls must outlive the display.
    explicit MeterDisplay(MeasurementControls& controls);

    // What the boxes ask of the next block. Throws nothing: an unusable frequency is part of the result.
    modDSP::BlockInputs Inputs(std::int32_t sampleRateHz) const;

    // Shows what a block has measured, once for each block: after an error the readings of the steps
    // before it. shownPct receives the values of the percentages that were shown, 0 for "N/A".
    // Allocates nothing.
    using Percentages = std::array<double, Readings::kHarmonics>;
    void Show(const Readings& readings, Percentages& shownPct);

    // blocks: of the current cycle, 0 before the first block. settled: the harmonics shown average 19
    // good blocks.
    void ShowCycle(std::int32_t blocks, bool settled);

    // Whether the readings are of the past. They then show as not locked until the next block.
    void ShowStopped(bool stopped);

    const MeterView& View() const noexcept { return view_; }

    // The levels as text for a screen reader.
    std::string SpokenInput() const;
    std::string SpokenOutput() const;

private:
    void ShowInputLevel(double peak);
    void ShowOutputLevel(const Readings& readings);
    void ShowLock(bool locked);
    void ShowLockWord();
    void ShowHarmonic(std::size_t index, const HarmonicReading& reading);
    void ShowTotal();
    void ShowUnlocked();
    void ShowTotalOf();
    void ShowSettling();

    MeasurementControls& controls_;
    MeterView view_;
    std::array<bool, Readings::kHarmonics> inPercent_{};  // a percentage is shown as a number
    bool locked_ = false;
    bool stopped_ = false;
    bool settled_ = false;
};

}  // namespace sonavex
