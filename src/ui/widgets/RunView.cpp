#include "ui/widgets/RunView.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include "ui/widgets/RunPainter.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {

RunView::RunView(QWidget* parent) : QWidget(parent), canvas_(this), fonts_(font()) {
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName("Sweep");
    canvas_.PaintGround = [this](QPainter& painter, const QRectF& area) {
        if (plot_ != nullptr) RunPainter::PaintGround(painter, area, *plot_, fonts_);
    };
    canvas_.PaintCurves = [this](QPainter& painter, const QRectF& area) {
        if (plot_ != nullptr) RunPainter::PaintCurves(painter, area, *plot_, fonts_);
    };
    ApplyLook();
}

void RunView::Show(const RunPlot& plot) {
    plot_ = &plot;
    const QString description = QString::fromStdString(plot.Description());
    if (description != accessibleDescription()) setAccessibleDescription(description);
    Paint();
}

// A run changes once in seconds: everything is painted.
void RunView::Paint() {
    if (plot_ == nullptr) return;
    PrepareAxes(canvas_.PlotArea().size());
    canvas_.Repaint(PlotCanvas::Part::kAll);
}

void RunView::PrepareAxes(const QSizeF& area) {
    canvas_.SetAxes(RunPainter::AcrossAxis(*plot_, area.width(), fonts_),
                    RunPainter::RatioAxis(*plot_, area.height(), fonts_), fonts_.quiet);
}

void RunView::PaintOn(QPaintDevice& device, const QSize& size, double scale) {
    if (plot_ == nullptr) return;
    PrepareAxes(QSizeF(size).shrunkBy(RunPainter::Margins(fonts_)));
    canvas_.PaintOn(device, size, scale);
    Paint();
}

void RunView::ApplyLook() {
    const Theme& theme = Theme::Current();
    fonts_ = PlotFonts(font());
    canvas_.SetMargins(RunPainter::Margins(fonts_));
    canvas_.SetColours(theme.card, theme.stripe, hasFocus() ? theme.accent : theme.border, theme.border,
                       theme.quiet);
    Paint();
}

QSize RunView::minimumSizeHint() const {
    return {280, 200};
}

void RunView::resizeEvent(QResizeEvent* event) {
    canvas_.setGeometry(rect());
    Paint();
    QWidget::resizeEvent(event);
}

void RunView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange ||
        event->type() == QEvent::StyleChange)
        ApplyLook();
}

void RunView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    ApplyLook();
}

void RunView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    ApplyLook();
}

void RunView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Left)
        Q_EMIT Stepped(-1);
    else if (event->key() == Qt::Key_Right)
        Q_EMIT Stepped(1);
    else
        QWidget::keyPressEvent(event);
}

void RunView::mousePressEvent(QMouseEvent* event) {
    const QRectF area = canvas_.PlotArea();
    if (event->button() == Qt::LeftButton && area.contains(event->position()))
        Q_EMIT Clicked((event->position().x() - area.left()) / area.width());
}

}  // namespace sonavex::ui
