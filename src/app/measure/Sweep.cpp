#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "app/measure/Commands.h"
#include "app/measure/LiveRun.h"
#include "app/measure/MeasureError.h"
#include "app/measure/PlotProgram.h"
#include "app/measure/Readings.h"
#include "app/measure/StoredReadings.h"
#include "app/measure/SweepLimits.h"
#include "core/run/RunLines.h"
#include "core/run/StoredRun.h"
#include "core/text/Dates.h"
#include "core/text/Decimals.h"
#include "platform/plain/LocalTime.h"
#include "platform/sndfile/SndfileFiles.h"

namespace sonavex::measure {
namespace {

constexpr const char* kClearRunLine = "\r\033[K";

// The lines of an earlier program, with a note about those that it could not finish.
MeasuredRun ContinuedRun(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (!file.is_open() || file.bad() || text.empty())
        throw MeasureError("The run '" + path + "' cannot be read.");
    RunLines lines;
    try {
        lines = ReadRunLines(text);
    } catch (const RunError& error) {
        throw MeasureError("The run '" + path + "' cannot be continued: " + error.what());
    }
    if (lines.skipped > 0)
        std::cerr << lines.skipped << (lines.skipped == 1 ? " line" : " lines") << " of '" << path
                  << "' skipped: incomplete, or no point of the run.\n";
    return std::move(lines.run);
}

MeasuredRun RunOf(const SweepOptions& options) {
    MeasuredRun run;
    run.file.plan = options.plan;
    if (!options.file.empty()) run.file = ParseRunFile(TextOfFile("run", options.file));
    if (options.plan.preview) run.file.plan.preview = true;
    if (!options.continued.empty()) run = ContinuedRun(options.continued);
    for (const std::string& limit : options.limits) run.file.limits.push_back(LimitOf(limit));
    return run;
}

// Whether the standard output goes to the end of a line that was not finished.
bool AppendsToBrokenLine(const std::string& path) {
    struct stat file {};
    struct stat output {};
    if (stat(path.c_str(), &file) != 0 || fstat(STDOUT_FILENO, &output) != 0) return false;
    if (file.st_dev != output.st_dev || file.st_ino != output.st_ino || file.st_size == 0) return false;
    std::ifstream lines(path, std::ios::binary);
    lines.seekg(-1, std::ios::end);
    return lines.get() != '\n';
}

// One file that cannot be written does not prevent the others.
bool Succeeds(const std::function<void()>& write) {
    try {
        write();
        return true;
    } catch (const std::runtime_error& error) {
        std::cerr << "sonavex-measure: " << error.what() << '\n';
        return false;
    }
}

// Prints the points, and the progress on standard error.
class RunOutput {
public:
    explicit RunOutput(const LiveRun& run) : run_(run), terminal_(isatty(STDERR_FILENO) != 0) {}

    void Take(const RunPointResult& result) {
        Clear();
        PrintPreview();
        const bool first = !std::exchange(printed_, true);
        PrintLine(RunPointJson(result, NumberOf(result), run_.Conditions(), first ? &run_.File() : nullptr) +
                  '\n');
        if (!terminal_) std::cerr << Progress() << '\n';
    }

    // Replaces the line on a terminal. Elsewhere a preview and a pause are a line.
    void ShowProgress() {
        const bool before = std::exchange(paused_, Paused());
        const bool pauseBegins = paused_ && !before;
        const bool previewBegins = !std::exchange(begun_, true) && run_.Measurement().Preview().Pending();
        Clear();
        PrintPreview();
        if (terminal_) std::cerr << Progress() << std::flush;
        if (!terminal_ && (pauseBegins || previewBegins)) std::cerr << Progress() << '\n';
    }

    // The exit status.
    int Finish(const SweepOptions& options, const std::string& plotProgram, const std::string& time) {
        Clear();
        PrintPreview();
        const std::vector<RunPointResult>& results = run_.Measurement().Results();
        const std::size_t points = run_.Conditions().points;
        const RunVerdict verdict = JudgeRun(run_.File().limits, results, points);
        if (!run_.Trouble().empty()) std::cerr << run_.Trouble() << '\n';
        std::cerr << VerdictSentence(verdict, results, points) << '\n';
        const MeasuredRun run{run_.File(), run_.Measurement().Points(), results, run_.Conditions(), time, 0};
        const std::string stored = StoredRunText(run);
        bool written = !unprinted_;
        const auto write = [&](const std::string& path, const std::function<void()>& file) {
            if (!path.empty() && !Succeeds(file)) written = false;
        };
        write(options.csv, [&] {
            SndfileFiles().WriteText(options.csv, RunCsv(run_.File(), results, run_.Conditions()));
        });
        write(options.save, [&] { SndfileFiles().WriteText(options.save, stored + '\n'); });
        write(options.png, [&] { DrawRun(plotProgram, stored, options.png); });
        if (options.history && !results.empty() && !Succeeds([&] { StoreRun(run); })) written = false;
        if (!written) return kFailed;
        if (verdict.outcome == RunOutcome::kFail) return kBeyondLimit;
        return verdict.outcome == RunOutcome::kNotComplete ? kVoid : kMeasured;
    }

private:
    // Once, as soon as it is known.
    void PrintPreview() {
        const RunPreview& preview = run_.Measurement().Preview();
        if (previewed_ || (preview.Points().empty() && preview.Trouble().empty())) return;
        previewed_ = true;
        if (preview.Trouble().empty())
            PrintLine(PreviewJson(preview.Points()) + '\n');
        else
            std::cerr << "No preview: " << preview.Trouble() << '\n';
    }

    // The run goes on when its lines cannot be written: it ends with its ramp and its files.
    void PrintLine(const std::string& line) {
        if (unprinted_) return;
        try {
            Print(line);
        } catch (const MeasureError& error) {
            unprinted_ = true;
            std::cerr << error.what() << " Nothing more is printed; the run continues.\n";
        }
    }

    // The result is one of those of the measurement.
    std::size_t NumberOf(const RunPointResult& result) const {
        return static_cast<std::size_t>(&result - run_.Measurement().Results().data()) + 1;
    }

    std::string Progress() const {
        const sonavex::RunMeasurement& measurement = run_.Measurement();
        std::string line = std::to_string(measurement.Points().size() - measurement.PointsLeft()) + " of " +
                           std::to_string(measurement.Points().size()) + " points, " +
                           WithDecimals(std::ceil(measurement.SecondsLeft()), 0) + " s left";
        if (measurement.Preview().Pending()) line = "preview, " + line;
        if (Paused()) line += ", paused: no sound device";
        return line;
    }

    bool Paused() const { return run_.Measurement().Now() == sonavex::RunMeasurement::State::kPaused; }

    void Clear() const {
        if (terminal_) std::cerr << kClearRunLine << std::flush;
    }

    const LiveRun& run_;
    bool terminal_;
    bool paused_ = false;
    bool begun_ = false;
    bool printed_ = false;
    bool previewed_ = false;  // the preview or its trouble was printed
    bool unprinted_ = false;  // a line could not be written
};

}  // namespace

int Sweep(const SweepOptions& options) {
    const std::string plotProgram = options.png.empty() ? std::string() : PlotProgram();
    LiveRun run(options, RunOf(options));
    if (AppendsToBrokenLine(options.continued)) Print("\n");
    RunOutput output(run);
    const std::string time = DateAndTime(LocalDateTime());
    run.Run([&](const RunPointResult& result) { output.Take(result); }, [&] { output.ShowProgress(); });
    return output.Finish(options, plotProgram, time);
}

}  // namespace sonavex::measure
