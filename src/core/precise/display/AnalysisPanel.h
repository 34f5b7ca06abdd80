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

    enum class Source { kStereo, kMono };
    // Offers the lengths of this rate and the channels of this source, and selects the stored settings. A
    // stored value that cannot be used counts as the default.
    void Load(double rateHz, Source source = Source::kStereo);

    // Length, channel, band, orders and averages. The caller adds mode and tones.
    PreciseSettings Chosen() const;
    // The channel that is chosen for stereo sources, also while a mono one is measured: 0 left, 1 right.
    std::size_t StereoChannel() const noexcept { return static_cast<std::size_t>(stereoChannel_); }
    std::size_t Averages() const noexcept { return averages_; }
    sonavex::Weighting Weighting() const;
    std::string BandText() const;

    ComboBox cmbLength;
    ComboBox cmbBand;       // 20-20k, Full
    ComboBox cmbWeighting;  // None, A, 468
    ComboBox cmbChannel;    // Left, Right; Mono alone, and disabled, for a mono source
    TextBox txtAverages;
    TextBox txtHarmonics;
    Label lblLength;
    Label lblHarmonics;  // "H2 to H9"
    std::vector<LengthEntry> Lengths;

private:
    void OfferLengths();
    void OfferChannels(Source source);
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
    int stereoChannel_ = 0;
};

}  // namespace sonavex
