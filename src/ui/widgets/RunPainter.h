#pragma once

#include <QMargins>
#include <QPen>

#include "core/run/display/RunPlot.h"
#include "ui/widgets/PlotCanvas.h"
#include "ui/widgets/PlotFonts.h"

namespace sonavex::ui {

// Paints what is special to the plot of a run: the ground without harmonics, the curves, the limits, the
// hollow marks of void points, the cursor, the right axis, and the texts around the plot.
class RunPainter {
public:
    // Margins around the plot that its texts need.
    static QMargins Margins(const PlotFonts& fonts);
    // The line of a series, for a legend. One colour for each series; the level is dotted.
    static QPen LineOf(RunSeries series);
    // The same before the points are measured: thinner and lighter.
    static QPen PreviewLineOf(RunSeries series);
    // The line of a kept run, in the colour of a series or, for a legend, of texts.
    static QPen KeptLine(const QColor& colour);

    static PlotCanvas::Axis AcrossAxis(const RunPlot& plot, double width, const PlotFonts& fonts);
    static PlotCanvas::Axis RatioAxis(const RunPlot& plot, double height, const PlotFonts& fonts);

    static void PaintGround(QPainter& painter, const QRectF& area, const RunPlot& plot,
                            const PlotFonts& fonts);
    static void PaintCurves(QPainter& painter, const QRectF& area, const RunPlot& plot,
                            const PlotFonts& fonts);
};

}  // namespace sonavex::ui
