#include "ui/widgets/PlotCanvas.h"

#include <QPainter>
#include <QResizeEvent>
#include <algorithm>
#include <cmath>
#include <utility>

// The header uses Qt's keywords, which this project does not define.
#define signals Q_SIGNALS
#define slots Q_SLOTS
#define foreach Q_FOREACH
#include <qcustomplot.h>
#undef signals
#undef slots
#undef foreach

namespace sonavex::ui {
namespace {

// Ticks that are made elsewhere. Minor ticks without label become sub-ticks, whose grid is weaker.
class GivenTicks : public QCPAxisTicker {
public:
    explicit GivenTicks(const PlotCanvas::Axis& axis) : axis_(axis) {}

    void generate(const QCPRange& /*range*/, const QLocale& /*locale*/, QChar /*format*/, int /*precision*/,
                  QVector<double>& ticks, QVector<double>* subTicks, QVector<QString>* labels) override {
        ticks.clear();
        if (subTicks != nullptr) subTicks->clear();
        if (labels != nullptr) labels->clear();
        for (const PlotCanvas::Tick& tick : axis_.ticks) {
            if (tick.minor && tick.label.isEmpty()) {
                if (subTicks != nullptr) subTicks->append(tick.position);
                continue;
            }
            ticks.append(tick.position);
            if (labels != nullptr) labels->append(tick.label);
        }
    }

private:
    const PlotCanvas::Axis& axis_;
};

// The curves are painted over the buffer of everything else. In a buffer of their own they would be copied
// once more with every reading.
class PlotWithCurves : public QCustomPlot {
public:
    explicit PlotWithCurves(const PlotCanvas::Painting& paintCurves) : paintCurves_(paintCurves) {}

    bool Painted = false;  // once: the buffer is filled

protected:
    void paintEvent(QPaintEvent* event) override {
        QCustomPlot::paintEvent(event);
        const QRect area = axisRect()->rect();
        if (!Painted || !paintCurves_ || area.isEmpty()) return;
        QPainter painter(this);
        paintCurves_(painter, area);
    }

private:
    const PlotCanvas::Painting& paintCurves_;
};

// A part of the plot that a function paints.
class PaintedPart : public QCPLayerable {
public:
    PaintedPart(QCustomPlot& plot, const QString& layer, const PlotCanvas::Painting& painting)
        : QCPLayerable(&plot, layer), painting_(painting) {}

protected:
    void applyDefaultAntialiasingHint(QCPPainter* /*painter*/) const override {}
    void draw(QCPPainter* painter) override {
        const QRect area = parentPlot()->axisRect()->rect();
        if (!painting_ || area.isEmpty()) return;
        painter->save();
        painting_(*painter, area);
        painter->restore();
    }

private:
    const PlotCanvas::Painting& painting_;
};

// Fills the whole plot below everything else. As a part of the first buffer it is not painted with every
// reading.
class FilledPart : public QCPLayerable {
public:
    explicit FilledPart(QCustomPlot& plot) : QCPLayerable(&plot, "background") { moveToLayer(layer(), true); }
    QColor Colour;

protected:
    void applyDefaultAntialiasingHint(QCPPainter* /*painter*/) const override {}
    // The library moves the clipping upwards by one pixel.
    QRect clipRect() const override { return parentPlot()->viewport().adjusted(0, 0, 0, 1); }
    void draw(QCPPainter* painter) override { painter->fillRect(parentPlot()->viewport(), Colour); }
};

// The period of a measured tone differs a little with each reading. Axes that differ by less than a fraction
// of a pixel are not painted again.
bool LookAlike(const PlotCanvas::Axis& axis, const PlotCanvas::Axis& other) {
    constexpr double kInvisible = 1e-4;
    const double limit = kInvisible * (axis.high - axis.low);
    const auto near = [limit](double value, double next) { return std::abs(value - next) <= limit; };
    return near(axis.low, other.low) && near(axis.high, other.high) &&
           std::equal(axis.ticks.begin(), axis.ticks.end(), other.ticks.begin(), other.ticks.end(),
                      [&near](const PlotCanvas::Tick& tick, const PlotCanvas::Tick& next) {
                          return tick.label == next.label && tick.minor == next.minor &&
                                 near(tick.position, next.position);
                      });
}

QColor Weak(QColor colour) {
    colour.setAlphaF(0.5F);
    return colour;
}

}  // namespace

struct PlotCanvas::Plot {
    explicit Plot(PlotCanvas& canvas) : widget(canvas.PaintCurves) {
        widget.setParent(&canvas);
        QObject::connect(&widget, &QCustomPlot::afterReplot, &widget, [this] {
            widget.Painted = true;
            widget.setBackground(Qt::NoBrush);
        });
        widget.setAttribute(Qt::WA_TransparentForMouseEvents);
        widget.setFocusPolicy(Qt::NoFocus);
        widget.axisRect()->setAutoMargins(QCP::msNone);
        widget.plotLayout()->setMargins({});
        widget.axisRect()->setMinimumMargins({});
        widget.axisRect()->setupFullAxesBox();
        // Its layer "overlay" would have a buffer.
        for (const char* unused : {"legend", "overlay"}) widget.removeLayer(widget.layer(unused));
        for (QCPAxis* axis : widget.axisRect()->axes()) {
            axis->setTickPen(Qt::NoPen);
            axis->setSubTickPen(Qt::NoPen);
            axis->setTickLength(0, 0);
        }
        Horizontal().setTicker(QSharedPointer<GivenTicks>::create(horizontalAxis));
        Vertical().setTicker(QSharedPointer<GivenTicks>::create(verticalAxis));
        Horizontal().setTickLabelPadding(4);
        Vertical().setTickLabelPadding(8);
        for (QCPAxis* axis : {&Horizontal(), &Vertical()}) {
            axis->grid()->setSubGridVisible(true);
            axis->grid()->setZeroLinePen(Qt::NoPen);
            axis->grid()->setAntialiased(false);
            axis->grid()->setAntialiasedSubGrid(false);
        }
        around = new FilledPart(widget);
        new PaintedPart(widget, "background", canvas.PaintGround);
    }

    // Until the next replot the buffers do not fill the plot.
    void FillUntilReplot() { widget.setBackground(QBrush(around->Colour)); }
    QCPAxis& Horizontal() { return *widget.xAxis; }
    QCPAxis& Vertical() { return *widget.yAxis; }

    Axis horizontalAxis;
    Axis verticalAxis;
    PlotWithCurves widget;
    FilledPart* around = nullptr;  // owned by the plot
};

PlotCanvas::PlotCanvas(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    plot_ = std::make_unique<Plot>(*this);
}

PlotCanvas::~PlotCanvas() = default;

void PlotCanvas::SetMargins(const QMargins& margins) {
    plot_->widget.axisRect()->setMargins(margins);
}

QRectF PlotCanvas::PlotArea() const {
    return QRectF(rect()).marginsRemoved(plot_->widget.axisRect()->margins());
}

bool PlotCanvas::SetAxes(const Axis& horizontal, const Axis& vertical, const QFont& labels) {
    const bool same = LookAlike(plot_->horizontalAxis, horizontal) &&
                      LookAlike(plot_->verticalAxis, vertical) &&
                      plot_->Horizontal().tickLabelFont() == labels;
    if (same) return false;
    plot_->horizontalAxis = horizontal;
    plot_->verticalAxis = vertical;
    plot_->Horizontal().setRange(horizontal.low, horizontal.high);
    plot_->Vertical().setRange(vertical.low, vertical.high);
    plot_->Horizontal().setTickLabelFont(labels);
    plot_->Vertical().setTickLabelFont(labels);
    return true;
}

void PlotCanvas::SetColours(const QColor& around, const QColor& ground, const QColor& frame,
                            const QColor& grid, const QColor& labels) {
    plot_->around->Colour = around;
    plot_->FillUntilReplot();
    plot_->widget.axisRect()->setBackground(QBrush(ground));
    for (QCPAxis* axis : plot_->widget.axisRect()->axes()) {
        axis->setBasePen(frame);
        axis->setTickLabelColor(labels);
        axis->grid()->setPen(grid);
        axis->grid()->setSubGridPen(Weak(grid));
    }
}

void PlotCanvas::Repaint(Part part) {
    if (part == Part::kAll || !plot_->widget.Painted)
        plot_->widget.replot(QCustomPlot::rpQueuedReplot);
    else
        plot_->widget.update();
}

void PlotCanvas::PaintOn(QPaintDevice& device, const QSize& size, double scale) {
    QCPPainter painter(&device);
    painter.setMode(QCPPainter::pmNoCaching);
    painter.scale(scale, scale);
    plot_->widget.toPainter(&painter, size.width(), size.height());
    const QRectF all{QPointF(0, 0), QSizeF(size)};
    if (PaintCurves) PaintCurves(painter, all.marginsRemoved(plot_->widget.axisRect()->margins()));
}

void PlotCanvas::resizeEvent(QResizeEvent* event) {
    plot_->FillUntilReplot();
    // In a hidden tab the canvas may have no size; the library cannot paint on that.
    if (!rect().isEmpty()) plot_->widget.setGeometry(rect());
    QWidget::resizeEvent(event);
}

}  // namespace sonavex::ui
