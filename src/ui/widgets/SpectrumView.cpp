#include "ui/widgets/SpectrumView.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr double kClickReach = 8.0;  // pixels
constexpr double kWheelStep = 120.0;

}  // namespace

SpectrumView::SpectrumView(QWidget* parent)
    : QWidget(parent), canvas_(this), fonts_(font()), schedule_([this] { Paint(); }) {
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName("Spectrum");
    canvas_.PaintGround = [this](QPainter& painter, const QRectF& area) {
        if (plot_ != nullptr) SpectrumPainter::PaintGround(painter, area, *plot_);
    };
    canvas_.PaintCurves = [this](QPainter& painter, const QRectF& area) {
        if (plot_ == nullptr) return;
        painter_.PaintTraces(painter, area, *plot_);
        painter_.PaintMarks(painter, area, *plot_, fonts_);
    };
    ApplyLook();
}

void SpectrumView::Show(const SpectrumPlot& plot) {
    plot_ = &plot;
    schedule_.Request(std::exchange(userActs_, false));
}

void SpectrumView::Paint() {
    if (plot_ == nullptr) return;
    const QString description = QString::fromStdString(plot_->Description());
    if (description != accessibleDescription()) setAccessibleDescription(description);
    const bool newAxes = PrepareAxes(canvas_.PlotArea().size());
    const PlotRange band{plot_->Shown().bandLowHz, plot_->Shown().bandHighHz};
    const bool newBand = std::exchange(band_, band) != band;
    canvas_.Repaint(newAxes || newBand ? PlotCanvas::Part::kAll : PlotCanvas::Part::kCurves);
}

void SpectrumView::PaintAll() {
    if (plot_ == nullptr) return;
    PrepareAxes(canvas_.PlotArea().size());
    canvas_.Repaint(PlotCanvas::Part::kAll);
}

bool SpectrumView::PrepareAxes(const QSizeF& area) {
    return canvas_.SetAxes(SpectrumPainter::FrequencyAxis(*plot_, area.width(), fonts_),
                           SpectrumPainter::LevelAxis(*plot_, area.height(), fonts_), fonts_.quiet);
}

void SpectrumView::PaintOn(QPaintDevice& device, const QSize& size, double scale) {
    if (plot_ == nullptr) return;
    const QMargins margins = SpectrumPainter::Margins(fonts_);
    PrepareAxes(QSizeF(size).shrunkBy(margins));
    canvas_.PaintOn(device, size, scale);
    PaintAll();
}

void SpectrumView::ApplyLook() {
    const Theme& theme = Theme::Current();
    fonts_ = PlotFonts(font());
    canvas_.SetMargins(SpectrumPainter::Margins(fonts_));
    canvas_.SetColours(theme.card, theme.stripe, hasFocus() ? theme.accent : theme.border, theme.border,
                       theme.quiet);
    PaintAll();
}

QSize SpectrumView::minimumSizeHint() const {
    return {240, 160};
}

void SpectrumView::resizeEvent(QResizeEvent* event) {
    canvas_.setGeometry(rect());
    PaintAll();
    QWidget::resizeEvent(event);
}

void SpectrumView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange ||
        event->type() == QEvent::StyleChange)
        ApplyLook();
}

void SpectrumView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    ApplyLook();
}

void SpectrumView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    ApplyLook();
}

void SpectrumView::keyPressEvent(QKeyEvent* event) {
    userActs_ = true;
    if (PassKey(event->key(), event->modifiers().testFlag(Qt::ControlModifier))) return;
    userActs_ = false;
    QWidget::keyPressEvent(event);
}

bool SpectrumView::PassKey(int key, bool control) {
    switch (key) {
        case Qt::Key_Left:
        case Qt::Key_Right: {
            const int direction = key == Qt::Key_Right ? 1 : -1;
            if (control)
                Q_EMIT SteppedByHarmonic(direction);
            else
                Q_EMIT Stepped(direction);
            return true;
        }
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            Q_EMIT CursorZoomed(1);
            return true;
        case Qt::Key_Minus:
            Q_EMIT CursorZoomed(-1);
            return true;
        case Qt::Key_Escape:
            if (plot_ == nullptr || !plot_->CursorHz()) return false;
            Q_EMIT CursorRemoved();
            return true;
        default:
            return false;
    }
}

void SpectrumView::wheelEvent(QWheelEvent* event) {
    const QRectF area = canvas_.PlotArea();
    const double steps = event->angleDelta().y() / kWheelStep;
    const QPointF at = event->position() - area.topLeft();
    event->accept();
    if (steps == 0 || area.isEmpty()) return;
    userActs_ = true;
    if (at.x() < 0 || event->modifiers().testFlag(Qt::ControlModifier))
        Q_EMIT LevelZoomed(std::clamp(1.0 - at.y() / area.height(), 0.0, 1.0), steps);
    else
        Q_EMIT FrequencyZoomed(std::clamp(at.x() / area.width(), 0.0, 1.0), steps);
}

void SpectrumView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && canvas_.PlotArea().contains(event->position()))
        press_ = Press{event->position()};
}

void SpectrumView::mouseMoveEvent(QMouseEvent* event) {
    if (!press_) return;
    const QPointF moved = event->position() - press_->from;
    if (!press_->dragged && moved.manhattanLength() < QApplication::startDragDistance()) return;
    press_ = Press{event->position(), true};
    setCursor(Qt::ClosedHandCursor);
    userActs_ = true;
    const QRectF area = canvas_.PlotArea();
    Q_EMIT Dragged(moved.x() / area.width(), -moved.y() / area.height());
}

void SpectrumView::mouseReleaseEvent(QMouseEvent* event) {
    if (!press_ || event->button() != Qt::LeftButton) return;
    const bool dragged = press_->dragged;
    press_.reset();
    unsetCursor();
    if (dragged) return;
    userActs_ = true;
    const QRectF area = canvas_.PlotArea();
    Q_EMIT Clicked((event->position().x() - area.left()) / area.width(), kClickReach / area.width());
}

}  // namespace sonavex::ui
