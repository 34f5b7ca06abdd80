#pragma once

#include <QFont>
#include <QPen>
#include <QSize>
#include <QString>
#include <functional>
#include <string>
#include <vector>

#include "core/precise/results/ExportFiles.h"

class QPaintDevice;

namespace sonavex::ui {

// Paints a plot on a device. size: in pixels before scaling.
using PlotPainting = std::function<void(QPaintDevice& device, const QSize& size, double scale)>;

// A line of the plot and its name.
struct PictureLegend {
    QPen line;
    QString name;
};

// The content of a PNG or PDF file: the plot with the legend above and lines of text below it, in the colours
// of the window. A PNG holds the lines as its description, too. size: that of the plot.
std::string PlotPicture(ExportKind kind, const QSize& size, const QFont& font, const PlotPainting& paint,
                        const std::vector<PictureLegend>& legend, const std::vector<std::string>& lines);

}  // namespace sonavex::ui
