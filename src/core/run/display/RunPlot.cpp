#include "core/run/display/RunPlot.h"

#include <algorithm>
#include <cmath>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr double kEdgePart = 0.0145;  // of the axis, on each side of the points
constexpr double kLeastAcross = 0.1;
constexpr PlotRange kEmptyRatios{-120.0, -80.0};
constexpr PlotRange kEmptyLevels{-8.0, 0.0};
constexpr double kRatioRoom = 2.0;  // dB between curves and frame
constexpr double kFineRatioStep = 5.0;
constexpr double kCoarseRatioStep = 20.0;
constexpr int kMostRatioRows = 10;
constexpr int kFewestRatioRows = 8;
constexpr double kLevelRoom = 0.5;  // steps above the highest level
constexpr int kRowLabelDecimals = 1;
constexpr double kMostShown = 1000.0;  // in dB; limits can be any number

// The lowest and the highest of values that an axis can show, if there are any.
class RunExtent {
public:
    void Add(double any) {
        const double value = std::clamp(any, -kMostShown, kMostShown);
        low_ = std::min(low_.value_or(value), value);
        high_ = std::max(high_.value_or(value), value);
    }
    void Add(const std::vector<RunCurve>& curves) {
        for (const RunCurve& curve : curves) Add(curve);
    }
    void Add(const RunCurve& curve) {
        for (const RunCurvePoint& point : curve) Add(point.value);
    }
    PlotRange Or(PlotRange empty) const { return low_ ? PlotRange{*low_, *high_} : empty; }
    bool Empty() const { return !low_; }

private:
    std::optional<double> low_;
    std::optional<double> high_;
};

std::array<std::vector<RunCurve>, kRunSeriesCount> SeriesOf(std::span<const RunPointResult> results,
                                                            RunAxis over) {
    std::array<std::vector<RunCurve>, kRunSeriesCount> series;
    for (std::size_t i = 0; i < series.size(); ++i)
        series[i] = CurvesOf(results, over, static_cast<RunSeries>(i));
    return series;
}

// Of the present run, its preview and the kept runs.
void AddAll(RunExtent& extent, const RunPlot& plot, RunSeries series) {
    extent.Add(plot.Curves(series));
    extent.Add(plot.Preview(series));
    for (const RunPlot::BesideCurves& kept : plot.Kept())
        extent.Add(kept.curves[static_cast<std::size_t>(series)]);
}

}  // namespace

void RunPlot::Show(const Data& data) {
    curves_ = SeriesOf(data.results, data.over);
    limits_ = LimitLinesOf(data.limits, data.points, data.over);
    positions_.clear();
    voids_.clear();
    for (const RunPointResult& result : data.results) {
        positions_.push_back(PositionOf(result.point, data.over));
        if (!result.Valid()) voids_.push_back(positions_.back());
    }
    kept_.clear();
    for (const Beside& run : data.kept) kept_.push_back({run.letter, SeriesOf(run.results, data.over)});
    const RunPreviewData preview{data.preview, data.points, data.results.size(), data.bandHighHz};
    for (std::size_t i = 0; i < preview_.size(); ++i)
        preview_[i] = PreviewCurvesOf(preview, static_cast<RunSeries>(i));
    running_.reset();
    if (data.running && *data.running < data.points.size())
        running_ = PositionOf(data.points[*data.running], data.over);
    if (cursor_ && *cursor_ >= positions_.size()) cursor_.reset();
    FitAcross(data);
    FitAxes();
    MarkDirty();
}

bool RunPlot::HasPreview() const noexcept {
    return std::any_of(preview_.begin(), preview_.end(),
                       [](const std::vector<RunCurve>& curves) { return !curves.empty(); });
}

void RunPlot::FitAcross(const Data& data) {
    const Axes former = std::exchange(axes_, Axes{});
    axes_.over = data.over;
    withoutHarmonics_.reset();
    RunExtent extent;
    for (const RunPoint& point : data.points) extent.Add(PositionOf(point, data.over));
    for (const Beside& run : data.kept)
        for (const RunPoint& point : run.points) extent.Add(PositionOf(point, data.over));
    if (extent.Empty()) {
        if (former.over == data.over) axes_.across = former.across;
        return;
    }
    PlotRange range = extent.Or({});
    const double room = std::max(kEdgePart * range.Span(), range.Span() == 0 ? kLeastAcross : 0.0);
    range = {range.low - room, range.high + room};
    axes_.across = range;
    if (data.over != RunAxis::kFrequency) return;
    const double end = std::log10(0.5 * data.bandHighHz);
    if (end > range.low && end < range.high) withoutHarmonics_ = end;
}

void RunPlot::FitAxes() {
    FitRatios();
    FitLevels();
}

// Steps of 5 dB up to 50 dB, of 10 dB up to 100 dB, then of 20 dB.
void RunPlot::FitRatios() {
    RunExtent extent;
    for (const RunSeries series : {RunSeries::kThd, RunSeries::kThdn, RunSeries::kSecond, RunSeries::kThird})
        if (Visible(series)) AddAll(extent, *this, series);
    for (const RunLimitLine& line : limits_)
        if (!line.atLevelAxis) extent.Add(line.curve);
    PlotRange range = kEmptyRatios;
    double step = kFineRatioStep;
    if (!extent.Empty()) {
        const PlotRange values = extent.Or(kEmptyRatios);
        const auto fit = [&] {
            range = {std::floor((values.low - kRatioRoom) / step) * step,
                     std::ceil((values.high + kRatioRoom) / step) * step};
            range.low = std::min(range.low, range.high - kFewestRatioRows * step);
        };
        for (fit(); range.Span() > kMostRatioRows * step && step < kCoarseRatioStep; fit()) step *= 2;
    }
    axes_.ratios = range;
    axes_.rows = static_cast<int>(std::lround(range.Span() / step));
}

// The finest step with which the rows of the left axis reach from the highest to the lowest level.
void RunPlot::FitLevels() {
    RunExtent extent;
    if (Visible(RunSeries::kLevel)) AddAll(extent, *this, RunSeries::kLevel);
    for (const RunLimitLine& line : limits_)
        if (line.atLevelAxis) extent.Add(line.curve);
    const PlotRange values = extent.Or(kEmptyLevels);
    for (const double step : {1.0, 2.0, 5.0, 10.0, 20.0, 50.0}) {
        const double top = std::ceil(values.high / step + kLevelRoom) * step;
        axes_.levels = {top - axes_.rows * step, top};
        if (axes_.levels.low <= values.low) return;
    }
}

void RunPlot::SetConditions(const std::string& text, bool alarm) {
    Assign(conditions_, text);
    Assign(alarm_, alarm);
}

void RunPlot::SetVisible(RunSeries series, bool visible) {
    Assign(visible_[static_cast<std::size_t>(series)], visible);
    FitAxes();
}

std::vector<PlotTick> RunPlot::AcrossTicks(double widthPixels, const LabelWidth& labelWidth) const {
    if (axes_.over == RunAxis::kFrequency) return FrequencyTicks(axes_.across, widthPixels, labelWidth);
    return LevelTicks(axes_.across, widthPixels, labelWidth("-100"));
}

std::vector<PlotTick> RunPlot::RowTicks(PlotRange range) const {
    std::vector<PlotTick> ticks;
    for (int row = 0; row <= axes_.rows; ++row) {
        const double value = range.At(static_cast<double>(row) / axes_.rows);
        ticks.push_back({value, WithoutTrailingZeros(value, kRowLabelDecimals), false});
    }
    return ticks;
}

std::optional<double> RunPlot::CursorPosition() const {
    return cursor_ ? std::optional(positions_[*cursor_]) : std::nullopt;
}

void RunPlot::PlaceCursor(std::optional<std::size_t> point) {
    if (point == cursor_) return;
    Assign(cursor_, point);
    CursorMoved.Raise();
}

void RunPlot::UserPlacesCursor(double x) {
    const double at = axes_.across.At(x);
    const auto nearest = std::min_element(positions_.begin(), positions_.end(), [at](double a, double b) {
        return std::fabs(a - at) < std::fabs(b - at);
    });
    if (nearest != positions_.end())
        PlaceCursor(static_cast<std::size_t>(std::distance(positions_.begin(), nearest)));
}

void RunPlot::UserStepsCursor(int step) {
    if (positions_.empty() || step == 0) return;
    std::vector<std::size_t> order(positions_.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [this](std::size_t a, std::size_t b) { return positions_[a] < positions_[b]; });
    if (!cursor_) return PlaceCursor(step > 0 ? order.front() : order.back());
    const auto at = std::distance(order.begin(), std::find(order.begin(), order.end(), *cursor_));
    const auto last = static_cast<std::ptrdiff_t>(order.size()) - 1;
    PlaceCursor(order[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(at + step, 0, last))]);
}

void RunPlot::UserRemovesCursor() {
    PlaceCursor(std::nullopt);
}

std::string RunPlot::Description() const {
    std::string text =
        std::to_string(positions_.size()) + (positions_.size() == 1 ? " point measured" : " points measured");
    text += voids_.empty() ? "." : ", " + std::to_string(voids_.size()) + " of them void.";
    if (HasPreview()) text += " A preview is shown where no point is measured.";
    return conditions_.empty() ? text : text + ' ' + conditions_ + '.';
}

}  // namespace sonavex
