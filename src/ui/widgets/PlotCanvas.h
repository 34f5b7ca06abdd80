#pragma once

#include <QColor>
#include <QFont>
#include <QMargins>
#include <QRectF>
#include <QWidget>
#include <functional>
#include <memory>
#include <vector>

class QPaintDevice;
class QPainter;

namespace sonavex::ui {

// One plot with axes, grid and tick labels, drawn by QCustomPlot; no other source includes its header. What
// is special to a plot is painted by two functions: the ground below the grid, and the curves with their
// marks above the axes, which are buffered: the curves can be painted alone. The canvas takes no input.
class PlotCanvas : public QWidget {
    Q_OBJECT

public:
    struct Tick {
        double position = 0;
        QString label;
        bool minor = false;
    };
    struct Axis {
        double low = 0;
        double high = 1;
        std::vector<Tick> ticks;
    };
    // The painter's origin is the corner of the canvas; plot: the area inside the axes.
    using Painting = std::function<void(QPainter& painter, const QRectF& plot)>;

    explicit PlotCanvas(QWidget* parent);
    ~PlotCanvas() override;

    // Set before the first Show.
    Painting PaintGround;
    Painting PaintCurves;

    // Distance of the axes from the edges of the canvas.
    void SetMargins(const QMargins& margins);
    QRectF PlotArea() const;
    // labels: font of the tick labels. True if this changes anything that can be seen.
    bool SetAxes(const Axis& horizontal, const Axis& vertical, const QFont& labels);
    void SetColours(const QColor& around, const QColor& ground, const QColor& frame, const QColor& grid,
                    const QColor& labels);

    enum class Part { kCurves, kAll };
    // Paints with the next event.
    void Repaint(Part part);

    // Paints everything on another device, scaled. size: of the canvas in pixels before scaling.
    void PaintOn(QPaintDevice& device, const QSize& size, double scale);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Plot;
    std::unique_ptr<Plot> plot_;
};

}  // namespace sonavex::ui
