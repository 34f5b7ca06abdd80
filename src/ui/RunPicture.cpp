#include "ui/RunPicture.h"

#include <QApplication>

#include "core/run/display/RunPlot.h"
#include "core/run/display/RunTexts.h"
#include "ui/PlotPicture.h"
#include "ui/widgets/RunPainter.h"
#include "ui/widgets/RunView.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr QSize kRunPicture(1000, 560);

std::vector<PictureLegend> SeriesLegend() {
    std::vector<PictureLegend> legend;
    for (int i = 0; i < kRunSeriesCount; ++i) {
        const auto series = static_cast<RunSeries>(i);
        legend.push_back({RunPainter::LineOf(series), NameOf(series)});
    }
    return legend;
}

}  // namespace

std::string RunPicture(ExportKind kind, const MeasuredRun& run, const std::vector<std::string>& lines) {
    const PageColours colours;
    const RunVerdictChip verdict = VerdictChipOf(run.file.limits, run.results, run.points.size(), false);
    RunPlot plot;
    plot.Show(
        {run.file.plan.over, run.points, run.results, run.file.limits, run.file.plan.band.highHz, {}, {}});
    plot.SetConditions(LimitsText(run.file.limits, run.points, run.results),
                       verdict.kind == RunVerdictChip::Kind::kFail);
    RunView view;
    view.resize(kRunPicture);
    view.Show(plot);
    return PlotPicture(
        kind, kRunPicture, view.font(),
        [&view](QPaintDevice& device, const QSize& size, double scale) { view.PaintOn(device, size, scale); },
        SeriesLegend(), lines);
}

}  // namespace sonavex::ui
