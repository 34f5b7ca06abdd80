#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/controls/Control.h"
#include "core/plot/PlotRange.h"
#include "core/plot/PlotTicks.h"
#include "core/run/display/RunCurves.h"

namespace sonavex {

// The plot of a run: curves, limits, axes and cursor. Positions are those of PositionOf.
class RunPlot : public Control {
public:
    struct Axes {
        RunAxis over = RunAxis::kFrequency;
        PlotRange across{1.29, 4.31};  // log10 of Hz, or dBFS
        PlotRange ratios{-120, -80};   // left axis, in dB
        PlotRange levels{-8, 0};       // right axis, in dBFS
        int rows = 8;                  // distances between grid lines of both axes
        friend bool operator==(const Axes&, const Axes&) = default;
    };
    // A run over the same axis, drawn thinner, without marks.
    struct Beside {
        char letter = 'B';
        std::span<const RunPoint> points;
        std::span<const RunPointResult> results;
    };
    // A run or a part of it.
    struct Data {
        RunAxis over = RunAxis::kFrequency;
        std::span<const RunPoint> points;         // of the whole run
        std::span<const RunPointResult> results;  // as many as are measured
        std::span<const RunLimit> limits;
        double bandHighHz = 20000;           // a harmonic ends here
        std::optional<std::size_t> running;  // a line marks this point, from 0
        std::vector<Beside> kept;
        std::span<const PreviewPoint> preview = {};  // drawn where no point is measured
    };

    // Keeps curves, not the results. The cursor stays at its point while it is measured.
    void Show(const Data& data);
    // Line below the plot; an alarm is drawn in the colour of failures.
    void SetConditions(const std::string& text, bool alarm);
    // Hidden series do not determine the axes.
    void SetVisible(RunSeries series, bool visible);
    bool Visible(RunSeries series) const noexcept { return visible_[static_cast<std::size_t>(series)]; }

    const Axes& Shown() const noexcept { return axes_; }
    const std::vector<RunCurve>& Curves(RunSeries series) const noexcept {
        return curves_[static_cast<std::size_t>(series)];
    }
    const std::vector<RunCurve>& Preview(RunSeries series) const noexcept {
        return preview_[static_cast<std::size_t>(series)];
    }
    bool HasPreview() const noexcept;
    struct BesideCurves {
        char letter = 'B';
        std::array<std::vector<RunCurve>, kRunSeriesCount> curves;
    };
    const std::vector<BesideCurves>& Kept() const noexcept { return kept_; }
    const std::vector<RunLimitLine>& Limits() const noexcept { return limits_; }
    // Positions of void points: hollow marks on the axis.
    const std::vector<double>& VoidPositions() const noexcept { return voids_; }
    std::optional<double> RunningPosition() const noexcept { return running_; }
    // From here the second harmonic is outside the band. Only over frequency, within the axis.
    std::optional<double> WithoutHarmonics() const noexcept { return withoutHarmonics_; }
    const std::string& Conditions() const noexcept { return conditions_; }
    bool Alarm() const noexcept { return alarm_; }
    // "Hz" or "dBFS"
    const char* AcrossUnit() const noexcept { return axes_.over == RunAxis::kFrequency ? "Hz" : "dBFS"; }

    // Grid lines; the value of a tick is in Hz or dBFS, widthPixels is that of the plot.
    std::vector<PlotTick> AcrossTicks(double widthPixels, const LabelWidth& labelWidth) const;
    // Of an axis with Shown().rows distances: `ratios` or `levels`.
    std::vector<PlotTick> RowTicks(PlotRange range) const;

    // The point of the cursor, from 0 in the order of the run.
    std::optional<std::size_t> Cursor() const noexcept { return cursor_; }
    std::optional<double> CursorPosition() const;
    // The measured point that is nearest to a fraction of the plot, 0 at the left.
    void UserPlacesCursor(double x);
    // To the neighbour on the axis: right for step above 0. Without a cursor: to the first or last point.
    void UserStepsCursor(int step);
    void UserRemovesCursor();
    UserEvent CursorMoved;

    // What the plot shows, as sentences for a screen reader.
    std::string Description() const;

private:
    void FitAxes();
    void FitAcross(const Data& data);
    void FitRatios();
    void FitLevels();
    void PlaceCursor(std::optional<std::size_t> point);

    Axes axes_;
    std::array<std::vector<RunCurve>, kRunSeriesCount> curves_;
    std::vector<BesideCurves> kept_;
    std::array<std::vector<RunCurve>, kRunSeriesCount> preview_;
    std::array<bool, kRunSeriesCount> visible_{true, true, true, true, true};
    std::vector<RunLimitLine> limits_;
    std::vector<double> positions_;  // of all measured points, in the order of the run
    std::vector<double> voids_;
    std::optional<double> running_;
    std::optional<double> withoutHarmonics_;
    std::optional<std::size_t> cursor_;
    std::string conditions_;
    bool alarm_ = false;
};

}  // namespace sonavex
