#pragma once

#include <cstdint>
#include <span>

#include "core/generator/ToneTable.h"

namespace sonavex::reference {

// The function generator computed sample by sample, and tone by tone within a sample. For comparison only. It
// shares the tone records with the instrument, but no computation.
class Generator {
public:
    static constexpr int kBlockFrames = 2048;

    ToneTable tones{};
    std::int32_t count = 0;  // tones in use, from record 0
    std::int32_t rateHz = 0;

    // Sets Period and PhaseIncrement to those of the tone's Frequency.
    void SetIncrements(ToneRecord& tone) const;
    // Adds one block to both arrays, and scales both if the largest sample of the second exceeds 32760.
    void Fill(std::span<double> first, std::span<double> second);
    // Advances the tones by one block.
    void SkipBlock();
    // Advances every sweep by one millisecond.
    void Tick(bool sweeping);

private:
    void UseChangedFrequencies();
    static void Advance(ToneRecord& tone);
    double Next(ToneRecord& tone) const;
};

}  // namespace sonavex::reference
