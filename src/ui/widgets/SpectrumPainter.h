#pragma once

#include <QMargins>
#include <cstddef>
#include <memory>
#include <vector>

#include "core/plot/SpectrumPlot.h"
#include "core/plot/TraceColumns.h"
#include "core/plot/TraceImage.h"
#include "ui/widgets/PlotCanvas.h"
#include "ui/widgets/PlotFonts.h"

namespace sonavex::ui {

// Paints what is special to the plot of a spectrum: the ground outside the band, the traces, the noise line,
// the harmonics, the cursor, and the texts around the plot.
class SpectrumPainter {
public:
    // Margins around the plot that its texts need.
    static QMargins Margins(const PlotFonts& fonts);

    static PlotCanvas::Axis FrequencyAxis(const SpectrumPlot& plot, double width, const PlotFonts& fonts);
    static PlotCanvas::Axis LevelAxis(const SpectrumPlot& plot, double height, const PlotFonts& fonts);

    static void PaintGround(QPainter& painter, const QRectF& area, const SpectrumPlot& plot);
    void PaintTraces(QPainter& painter, const QRectF& area, const SpectrumPlot& plot);
    // After PaintTraces, from whose columns it takes the height of the curves.
    void PaintMarks(QPainter& painter, const QRectF& area, const SpectrumPlot& plot,
                    const PlotFonts& fonts) const;

private:
    void PaintHarmonics(QPainter& painter, const QRectF& area, const SpectrumPlot& plot,
                        const PlotFonts& fonts) const;

    // The columns of a trace as painted last.
    struct Painted {
        std::shared_ptr<const SpectrumTrace> trace;
        PlotRange decades;
        std::vector<TraceColumn> columns;
    };
    static void Prepare(Painted& painted, const std::shared_ptr<const SpectrumTrace>& trace,
                        PlotRange decades, std::size_t width);

    TraceImage image_;
    Painted live_;
    Painted kept_;
    Painted keptSecond_;
};

}  // namespace sonavex::ui
