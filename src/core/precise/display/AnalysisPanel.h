#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "core/analyzer/NoiseSpectrum.h"
#include "core/controls/Choices.h"
#include "core/controls/Controls.h"
#include "core/precise/RecordAnalysis.h"
#include "core/settings/Settings.h"

namespace sonavex {

// A line of the list of lengths.
struct LengthEntry {
    std::string points;    // "64k"
    std::string seconds;   // "1.365"
    std::string binHz;     // "0.732"
    std::string lowestHz;  // "5.9": 8 bins
};

enum class Weighting { kNone, kA, k468 };

// The settings of the analysis, stored with every change.
class AnalysisPanel {
public:
    // Both must outlive the panel.
    AnalysisPanel(Settings& settings, std::function<void()> onChanged);
    AnalysisPanel(const AnalysisPanel&) = delete;
    AnalysisPanel& operator=(const AnalysisPanel&) = delete;

    // Offers the lengths of this rate and selects the stored settings. A stored value that cannot be used
    // counts as the default.
    void Load(double rateHz);

    // Length, channel, band, orders and averages. The caller adds mode and tones.
    PreciseSettings Chosen() const;
    std::size_t Averages() const noexcept { return averages_; }
    sonavex::Weighting Weighting() const;
    std::string BandText() const;

    ComboBox cmbLength;
    ComboBox cmbBand;       // 20-20k, Full
    ComboBox cmbWeighting;  // None, A, 468
    ComboBox cmbChannel;    // Left, Right
    TextBox txtAverages;
    TextBox txtHarmonics;
    Label lblLength;
    Label lblHarmonics;  // "H2 to H9"
    std::vector<LengthEntry> Lengths;

private:
    void OfferLengths();
    void ShowLength();
    void ShowNumbers();
    void TakeChoice();
    void TakeNumbers();
    void Store();

    Settings& settings_;
    std::function<void()> onChanged_;
    double rateHz_ = 48000;
    std::vector<std::size_t> points_;  // by entry of cmbLength
    std::size_t averages_ = 8;
    int highestOrder_ = 9;
};

}  // namespace sonavex
