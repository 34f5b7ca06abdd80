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

// Words that are not captions of the meter's controls.
namespace meter_words {
inline constexpr std::string_view kOverload = "OVERLOAD";
inline constexpr std::string_view kNoSignal = "NO SIGNAL";
inline constexpr std::string_view kLocked = "LOCKED";
inline constexpr std::string_view kNotLocked = "NOT LOCKED";
inline constexpr std::string_view kStopped = "STOPPED";
// The longest captions, for the layout of a window.
inline constexpr std::string_view kLongestLevel = "Muted";
inline constexpr std::string_view kLongestCycle = "19 of 19";
inline constexpr std::string_view kLongestPercent = "100.0000";
inline constexpr std::string_view kLongestDb = "-100.00";
}  // namespace meter_words

// State that a window shows in addition to the captions of the meter's controls.
struct MeterView {
    std::string_view inputWord;                            // OVERLOAD, NO SIGNAL or empty
    std::string_view outputWord;                           // OVERLOAD or empty
    std::string_view lockWord = meter_words::kNotLocked;   // LOCKED, NOT LOCKED or STOPPED
    std::string_view totalOf = "H2–H9, re total (THD_R)";  // harmonics in the total
    std::int32_t cycleBlocks = 0;                          // blocks of the cycle
    bool noSignal = false;  // the input level reads as overload because there is no signal
    // Whether the caption is a number, shown with the unit percent.
    bool inputInPercent = false;
    bool outputInPercent = false;
    bool totalInPercent = false;
    bool settling = false;  // the total does not average 19 good blocks
    // Levels as shown by their captions, in dB; none if the caption is not a number.
    std::array<std::optional<double>, Readings::kHarmonics> levelsDb{};
};

// Turns the readings of a block into the captions and words of the meter.
class MeterDisplay {
public:
    // Sets both lamps to NOT LOCKED and the cycle to 0 of 19. The controls must outlive the display.
    explicit MeterDisplay(MeasurementControls& controls);

    // Settings for the next block from the check boxes and the typed frequency. Does not throw: an unusable
    // frequency is part of the result.
    modDSP::BlockInputs Inputs(std::int32_t sampleRateHz) const;

    // Shows the readings of a block; call once per block. After an error, shows the readings of the completed
    // steps. shownPct receives the values of the shown percentages, 0 for "N/A". Does not allocate.
    using Percentages = std::array<double, Readings::kHarmonics>;
    void Show(const Readings& readings, Percentages& shownPct);

    // blocks: position in the current cycle, 0 before the first block. settled: the shown harmonics average
    // 19 good blocks.
    void ShowCycle(std::int32_t blocks, bool settled);

    // Sets whether the readings are stale. Stale readings show as not locked until the next block.
    void ShowStopped(bool stopped);

    const MeterView& View() const noexcept { return view_; }

    // The levels as a screen reader reads them.
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
    std::array<bool, Readings::kHarmonics> inPercent_{};  // whether the percentage is shown as a number
    bool locked_ = false;
    bool stopped_ = false;
    bool settled_ = false;
};

}  // namespace sonavex
