#pragma once

#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/audio/Instrument.h"
#include "core/ports/Dialogs.h"
#include "core/ports/EventLoop.h"
#include "core/ports/MeasurementFiles.h"
#include "core/precise/display/AnalyzerControls.h"
#include "core/precise/display/AnalyzerResult.h"
#include "core/precise/display/KeptRuns.h"
#include "core/precise/display/SweepSetup.h"
#include "core/precise/results/ExportFiles.h"
#include "core/run/MeasuredRun.h"
#include "core/run/RunMeasurement.h"
#include "core/run/display/RunPlot.h"
#include "core/text/Dates.h"

namespace sonavex {

// The tab with runs: setup, progress, plot, verdict and the values at the cursor. It measures with the
// measurement of the form, whose readings it handles while a run is active.
class SweepPanel {
public:
    // All must outlive the run. Close() ends it.
    struct Needs {
        EventLoop& loop;
        sonavex::Instrument& instrument;
        PreciseMeasurement& measurement;
        Background& background;
        Dialogs& dialogs;
        const MeasurementFiles& files;
        bool simulated = false;  // the sound card
        std::function<DateTime()> now;
        std::string version;  // of the program
    };
    struct Events {
        std::function<RunPlan()> conditions;  // what the settings of the spectrum choose
        std::function<void()> begins;         // before the run takes the measurement
        std::function<void()> ended;          // the measurement is free
        // A run to be stored: that the user keeps, or that the end of the form interrupts. Returns its
        // identifier; empty if it could not be stored. May be empty.
        std::function<std::string(const MeasuredRun& run, const std::string& name)> kept;
    };

    SweepPanel(const Needs& needs, Events events);
    SweepPanel(const SweepPanel&) = delete;
    SweepPanel& operator=(const SweepPanel&) = delete;

    // Shows plan and progress; call it several times per second while the form is loaded. trouble: why
    // nothing is measured; empty while frames arrive.
    void Tick(const std::string& trouble);
    bool Active() const { return run_ && run_->Active(); }
    // The state of the run, while one is active.
    ChipState Chip() const;
    // Ends a run and keeps what was measured.
    void Cancel();
    // Stores a run that was cancelled: it can be continued from there.
    void StoreInterrupted() const;
    // Ends a run for good: the measurement is not used any more.
    void Close() { run_.reset(); }
    // The run to which verdict, values and exports belong; without points if there is none.
    const MeasuredRun& Present() const noexcept { return present_; }
    // Shows a stored run: as the present one, which can be continued, or beside it.
    void Open(MeasuredRun run, const std::string& name, const std::string& id);
    // A stored run with its name.
    struct Stored {
        MeasuredRun run;
        std::string name;
    };
    // Keeps the runs again that the plot showed when the program ended. find: looks a run up by its
    // identifier; empty if it is no longer stored. Later calls do nothing.
    void RestoreKept(const std::function<std::optional<Stored>(const std::string& id)>& find);
    void UserMovesCursor(int points) { Plot.UserStepsCursor(points); }
    void Export();
    // The CSV table of the run; empty without one.
    std::string CopiedText() const;

    enum class Format {
        kCsv,
        kLines,  // one JSON line for each point
        kRun,    // one JSON object, which sonavex-plot draws
        kPicture,
        kPdf,
    };
    struct ExportTarget {
        std::string path;
        Format format = Format::kCsv;
    };
    // Asks for file and format of an export; empty if the user cancels.
    std::function<std::optional<ExportTarget>()> AskForExport;
    // Draws a run with these lines below it: the content of a PNG or PDF file.
    std::function<std::string(ExportKind kind, const MeasuredRun& run, const std::vector<std::string>& lines)>
        DrawRun;
    // Prints one page: a PNG picture and lines.
    std::function<void(const std::string& png, const std::vector<std::string>& lines)> Print;

    SweepSetup Setup;
    CommandButton cmdStart;   // "Start sweep" or "Cancel"
    CommandButton cmdRepeat;  // "Repeat invalid" or "Continue"
    CommandButton cmdKeep;
    CommandButton cmdClear;
    CommandButton cmdPrint;
    KeptRuns Kept;
    RunPlot Plot;
    std::array<CheckBox, kRunSeriesCount> chkSeries;
    StateChip Verdict;  // valid: PASS; void: FAIL; unsteady: NOT COMPLETE; off: none
    ProgressBar prgRun{1.0F};
    Label lblProgress;
    Label lblLeft;        // "1 min 9 s left"
    Label lblConditions;  // what the tab Spectrum chooses
    Label lblTrouble;     // why a run did not start or has ended
    Label lblAt;          // "At 320.00 Hz"; empty without a cursor
    Label lblPlayed;      // "played 320.068 Hz"
    std::array<ReadingRow, kRunSeriesCount> Rows;
    Label lblReason;        // of a void point
    Label lblInvalidCount;  // "2 of 61"
    Label lblInvalid;       // a line for each void point

private:
    void Start();
    void Repeat();
    void Keep();
    void StoreKept();
    // Takes the measurement and calls `begin`; false if the run cannot be played.
    bool Begin(const std::function<void()>& begin);
    void RequireSameDevices() const;
    void ShowLimitTrouble(const std::string& trouble);
    std::string PreviewTrouble() const;
    void PrintPage();
    std::string Exported(const MeasuredRun& run, Format format) const;
    std::vector<std::string> PageLines(const MeasuredRun& run) const;
    void TakeResults();
    void TakeState();
    void TakeChange();
    void Clear();
    void ShowRun();
    void ShowPlot();
    void ShowProgress();
    void ShowPoint();
    void ShowInvalid();
    std::size_t PointsDone() const;

    Needs needs_;
    Events events_;
    std::unique_ptr<RunMeasurement> run_;
    MeasuredRun present_;
    std::vector<PreviewPoint> preview_;  // of the present run
    std::string limitTrouble_;           // why the chosen limit does not judge the present run
    std::string name_;  // of the present run: the time of day when it began, or that of the stored run
    std::chrono::nanoseconds started_{0};
    double secondsBefore_ = 0;             // that the present run had taken when it was continued
    std::vector<std::string> unrestored_;  // identifiers of the last session
};

}  // namespace sonavex
