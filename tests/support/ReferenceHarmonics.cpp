#include <cmath>

#include "core/text/Numbers.h"
#include "support/ReferenceAnalysis.h"

namespace sonavex::reference {

void Analysis::MeasureHarmonics() {
    const std::int32_t k = peakBin;
    const auto squared = [&](std::int32_t bin) {
        const double magnitude = inputMagnitudes.at(static_cast<std::size_t>(bin));
        return magnitude * magnitude;
    };
    const std::int32_t maxBin =
        (sampleRate_ / 2 - 1000) / static_cast<std::int32_t>(std::nearbyint(binWidth_));
    auto& slot = history_[static_cast<std::size_t>(histIndex)];
    for (std::int32_t h = 1; h <= 8; ++h) {
        double sumAll = 0.0;
        double sumHarm = 0.0;
        if (h == 1) {
            if (!(2 * k >= 2047 || k > 2047)) {
                sumAll = std::sqrt(squared(2 * k) + squared(k));
                sumHarm = std::sqrt(squared(2 * k));
            }
        } else {
            sumAll = squared(k);
            for (std::int32_t j = 1; j <= h; ++j) {
                if ((j + 1) * k < maxBin && j * k <= maxBin) {
                    sumAll += squared((j + 1) * k);
                    sumHarm += squared((j + 1) * k);
                } else {
                    sumAll = 0.0;
                    sumHarm = 0.0;
                }
            }
            sumAll = std::sqrt(sumAll);
            sumHarm = std::sqrt(sumHarm);
        }
        const auto harmonic = static_cast<std::size_t>(h - 1);
        slot[0][harmonic] = sumAll != 0.0 ? sumHarm * 100.0 / sumAll : 0.0;
        slot[1][harmonic] =
            (h + 1) * k < maxBin ? std::sqrt(squared((h + 1) * k)) / std::sqrt(squared(k)) : 0.0;
        if (histIndex == 18) ShowAverages(harmonic);
    }
    lblThd = "N/A";
    for (std::size_t i = 8; i-- > 0;) {
        if (lbltest[i] == "N/A") continue;
        lblThd = lbltest[i];
        break;
    }
}

void Analysis::ShowAverages(std::size_t harmonic) {
    double pct = 0.0;
    double ratio = 0.0;
    for (const auto& slot : history_) {
        pct += slot[0][harmonic];
        ratio += slot[1][harmonic];
    }
    pct = pct / 19;
    ratio = ratio / 19;
    if (baselineOn) pct = pct - baselinePct[harmonic];
    lbltest[harmonic] = pct == 0.0 ? "N/A" : Format(pct, Pattern::kPercent);
    currentPct[harmonic] = Val(lbltest[harmonic]);
    lblDb[harmonic] = "N/A";
    if (ratio == 0.0) return;
    currentDb[harmonic] = 20.0 * std::log10(ratio);
    lblDb[harmonic] = Format(currentDb[harmonic], Pattern::kTwoByTwo);
}

}  // namespace sonavex::reference
