#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/audio/Instrument.h"
#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/ModelessForm.h"
#include "core/generator/GeneratorPanel.h"
#include "core/history/History.h"
#include "core/history/display/HistoryPanel.h"
#include "core/plot/SpectrumPlot.h"
#include "core/plot/WavePlot.h"
#include "core/ports/Background.h"
#include "core/ports/Dialogs.h"
#include "core/ports/EventLoop.h"
#include "core/precise/PreciseMeasurement.h"
#include "core/precise/calibration/frmCalibrate.h"
#include "core/precise/display/AnalysisPanel.h"
#include "core/precise/display/AnalyzerControls.h"
#include "core/precise/display/AnalyzerResult.h"
#include "core/precise/display/ReadingsPanel.h"
#include "core/precise/display/StimulusPanel.h"
#include "core/precise/display/SweepPanel.h"
#include "core/precise/recordings/RecordingPanel.h"
#include "core/precise/results/ExportFiles.h"
#include "core/precise/results/ValidityRules.h"
#include "core/text/Dates.h"

namespace sonavex {

// The Analyzer: the precise measurement with its stimulus, spectrum, waveform and readings, of the sound card
// or of a recording. It measures while it is open. Closing it ends the stimulus and does not affect the block
// meter.
class frmAnalyzer : public ModelessForm {
public:
    // All referenced objects must outlive the form.
    struct Needs {
        EventLoop& loop;
        sonavex::Instrument& instrument;
        Background& background;
        Dialogs& dialogs;
        const MeasurementFiles& files;
        GeneratorPanel& generatorPanel;
        sonavex::History& history;
        // Of the main form: the devices, their bits, a note on the path, and why nothing is being measured.
        const Label& lblInput;
        const Label& lblOutput;
        const Label& lblBits;
        const Label& pathNote;
        const Label& streamTrouble;
        bool simulated = false;  // the sound card
        std::function<DateTime()> now;
        std::string version;  // of the program
    };

    explicit frmAnalyzer(const Needs& needs);
    ~frmAnalyzer() override;

    // The size of the window, stored with the other values.
    std::int32_t StoredWidth() const;
    std::int32_t StoredHeight() const;
    void StoreSize(std::int32_t width, std::int32_t height);
    // Whether the strip of waveforms was folded by the user.
    bool WavesFolded() const;
    void StoreWavesFolded(bool folded);
    // Whether the form was open when the program ended.
    bool WasOpen() const;
    // Call at the end of the program instead of Unload: the form opens again with the next start.
    void UnloadForNextStart();
    // Whether the stimulus is heard; after an unload, until its ramp has been played.
    bool StimulusHeard() const { return measurement_.Player.Active(); }

    // Opens a recording in the form, which is loaded if necessary.
    void OpenRecording(const std::string& path);
    // The second block of the printed report; empty unless the form shows a valid reading.
    std::vector<std::string> ReportBlock() const;

    Label lblInput;      // empty while a recording is measured
    Label lblOutput;     // the same
    Label lblRecording;  // name of the file; empty without a recording
    Label lblRate;
    Label lblBits;
    NoteLabel note;
    StateChip Chip;
    StimulusPanel Stimulus;
    AnalysisPanel Analysis;
    ReadingsPanel Readings;
    RecordingPanel Recording;
    SweepPanel Sweep;
    HistoryPanel History;
    SpectrumPlot Spectrum;
    WavePlot Waves;
    Label lblLegendLive;
    Label lblLegendSide;  // the same in a small window: "Left"
    Label lblLegendKept;  // empty without a kept trace
    Label lblLegendKeptSecond;
    CommandButton cmdFit;
    CommandButton cmdRemoveKept;
    ComboBox cmbPlotUnit;   // dBFS, dBc
    ComboBox cmbPeriods;    // 1, 2, 5
    CommandButton cmdHold;  // its caption is "Hold" or "Go on"
    CommandButton cmdSingle;
    CommandButton cmdKeep;
    MenuItem mnuKeepReference;
    MenuItem mnuKeepIdle;
    MenuItem mnuStoreReading;  // in the history, without keeping the trace
    CommandButton cmdExport;
    CommandButton cmdCopy;
    ProgressBar prgAverages{1.0F};
    Label lblAverages;  // "3 of 8"

    struct ExportTarget {
        std::string path;
        ExportKind kind = ExportKind::kPicture;
    };
    // Asks for file and kind of an export; empty if the user cancels. SuggestedName makes a name of the
    // measurement.
    std::function<std::optional<ExportTarget>(const ExportedMeasurement& measurement)> AskForExport;
    // Draws the plot with these lines below it: the content of a file of this kind.
    std::function<std::string(ExportKind kind, const std::vector<std::string>& conditions)> DrawPlot;
    enum class Tab { kSpectrum, kSweep, kHistory };
    // Brings a tab to the front.
    std::function<void(Tab tab)> ShowTab;
    // What Copy puts on the clipboard.
    std::function<void(const std::string& text)> OnCopy;
    // Shows the loaded dialog and returns when it has closed.
    std::function<void(frmCalibrate& form)> ShowCalibrate;

protected:
    void Form_Load() override;
    void Form_QueryUnload() override;

private:
    void HandleControls();
    void HandleRecording();
    void LoadChoices();
    void StoreChoices();

    enum class Play { kKeep, kChosen };
    void Measure(Play play);
    void MeasureLive(const PreciseSettings& settings, Play play);
    PreciseSettings ChosenSettings();
    void StartStimulus();
    void TakeChangedAnalysis();
    void TakeChangedStimulus();
    void Tick();
    void TickSweep();
    void ShowSweepConditions();
    RunPlan SweepConditions() const;
    bool InputStalled();
    std::optional<std::string> Trouble();
    // The rate and the devices that a live reading belongs to.
    struct Source {
        double rateHz = 0;
        std::string input;
        std::string output;
        bool operator==(const Source&) const = default;
    };
    Source PresentSource() const;

    void ShowPath();
    void ShowCalibration();
    void ShowChip(const ChipState& chip);
    void ShowAverages(std::size_t records);
    void ShowSettling(double records);
    void ShowVoid(const std::string& cause);
    void ClearFigures();
    void TakeLive(const LinesReading& reading);
    void TakeRecording(const LinesReading& reading, const RecordingAnalysis& analysis);
    void Take(AnalyzerResult result);
    void ShowPlots();
    std::string LiveName() const;

    void SetHeld(bool held);
    void Single();
    void KeepTrace();
    void StoreReading();
    void OpenRun(const std::string& details, const HistoryEntry& entry);
    void RestoreRuns();
    void ShowTraces(const std::vector<std::shared_ptr<const SpectrumTrace>>& traces);
    std::string LastValidText() const;
    // A reading that is kept for the rules of validity, with the conditions under which they compare it.
    struct KeptReading {
        SavedReading reading;
        std::string conditions;
    };
    void KeepReading(std::optional<KeptReading>& place);
    std::string RuleConditions() const;
    std::optional<SavedReading> Comparable(const std::optional<KeptReading>& kept) const;
    void TakePlayer();
    bool Complete() const;
    void Export();
    void Calibrate();
    std::string PlayForCalibration(bool on);
    std::optional<double> InputLevel() const;
    ExportedMeasurement Exported() const;

    Needs needs_;
    PreciseMeasurement measurement_;
    Calibrations calibrations_;
    EventLoop::TimerId timer_ = 0;
    double rateHz_ = 0;
    Source source_;       // that is measured
    bool heard_ = false;  // the stimulus plays
    std::string played_;  // the stimulus that was started last
    std::size_t length_ = 0;
    int outputBits_ = 0;
    bool held_ = false;
    bool single_ = false;
    bool playsForCalibration_ = false;
    frmCalibrate* calibrate_ = nullptr;  // while its dialog is shown
    std::uint64_t captured_ = 0;         // frames, when they last changed
    std::chrono::nanoseconds capturedAt_{};
    PreciseMode mode_ = PreciseMode::kTone;
    std::optional<AnalyzerResult> result_;  // empty after a change and while nothing arrives
    DateTime resultTime_;
    std::string lastValid_;    // time of day
    std::string lastValidId_;  // in the history; empty unless it was stored
    std::shared_ptr<const SpectrumTrace> live_;
    std::optional<KeptReading> reference_;
    std::optional<KeptReading> idle_;
};

}  // namespace sonavex
