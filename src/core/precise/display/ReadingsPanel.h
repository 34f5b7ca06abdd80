#pragma once

#include <array>
#include <optional>
#include <string>

#include "core/analyzer/LinesReading.h"
#include "core/controls/Commands.h"
#include "core/precise/RecordAnalysis.h"
#include "core/precise/calibration/Calibration.h"
#include "core/precise/display/AnalysisPanel.h"
#include "core/precise/display/AnalyzerControls.h"
#include "core/settings/Settings.h"

namespace sonavex {

// The figures of a reading.
class ReadingsPanel {
public:
    // The places of the lines. mnuNotch exchanges the first two.
    enum Row { kThdn, kNotch, kSinad, kSnr, kEnob, kNoise, kFrequency, kLevel, kRows };

    // The settings must outlive the panel.
    explicit ReadingsPanel(Settings& settings);
    ReadingsPanel(const ReadingsPanel&) = delete;
    ReadingsPanel& operator=(const ReadingsPanel&) = delete;

    struct Conditions {
        PreciseMode mode = PreciseMode::kTone;
        sonavex::Weighting weighting = Weighting::kNone;
        std::string band = {};
        bool settling = false;  // more records follow until the average is complete
        bool quiet = false;     // the reading is not valid, or not yet
    };
    // A reading without voids.
    void Show(const LinesReading& reading, const Conditions& conditions);
    // No figures; a line takes the place of the main figure's uncertainty.
    void Clear(const std::string& line);
    // Selects the stored units.
    void Load();
    // The calibration of the input. Without one levels are in dBFS.
    void SetCalibration(const std::optional<Calibration>& calibration);
    // Exchanges dB and percent of the main figure.
    void ToggleUnit();

    Label lblThdTitle;  // what the main figure is
    ReadingLabel lblThd;
    Label lblThdSpread;
    Label lblThdOther;      // in the other unit
    Label lblThdReference;  // "H2-H9 re fundamental"
    ComboBox cmbThdUnit;    // dB, %
    std::array<ReadingRow, kRows> Rows;
    MenuItem mnuThdn;    // puts THD+N into the first line
    MenuItem mnuNotch;   // puts THD+N (notch) into the first line
    Label lblNoiseBand;  // "20 Hz to 20 kHz, unweighted"
    HarmonicsTable Harmonics;

private:
    void TakeUnit();
    void OfferUnits();
    void Refresh();
    void ShowLevel(Row row, const char* name, const Value& dbfs, int decimals);
    void OfferVolts(Row row, const char* volts);
    void ShowFigures();
    void ShowMain(const Value& decibels, const std::string& title, const std::string& reference);
    void ShowRow(Row row, const char* name, const Value& value, int decimals, int spreadDecimals);
    void ShowSmall(Row row, const char* name, const Value& value, int decimals);
    void ShowRatio(Row row, const char* name, const Value& decibels);
    void ShowDistortionAndNoise(const Value& thdn, const Value& notch);
    void PutFirst(bool notch);
    void ShowTone();
    void ShowLines();
    void ShowNoise();
    void ShowHarmonics();
    const Value& WeightedNoise() const;

    Settings& settings_;
    std::optional<Calibration> calibration_;
    std::array<int, kRows> wantedUnits_{};  // also while they are not offered
    bool notchFirst_ = false;
    bool shown_ = false;
    LinesReading reading_;
    Conditions conditions_;
};

}  // namespace sonavex
