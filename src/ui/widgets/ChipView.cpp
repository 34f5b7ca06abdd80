#include "ui/widgets/ChipView.h"

#include <QPainter>
#include <QPainterPath>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kChipMargin = 10;
constexpr int kChipShapeWidth = 12;
constexpr int kChipGap = 7;

QColor ChipColour(ChipView::Kind kind) {
    const Theme& theme = Theme::Current();
    switch (kind) {
        case ChipView::Kind::kValid:
            return theme.valid;
        case ChipView::Kind::kSettling:
            return theme.accent;
        case ChipView::Kind::kUnsteady:
            return theme.warning;
        case ChipView::Kind::kVoid:
        case ChipView::Kind::kOverload:
            return theme.overload;
        default:
            return theme.quiet;
    }
}

// In a field of 12 x 12 around the origin.
QPainterPath ChipShape(ChipView::Kind kind) {
    QPainterPath path;
    switch (kind) {
        case ChipView::Kind::kValid:
            path.moveTo(-5.0, 0.5);
            path.lineTo(-1.5, 4.0);
            path.lineTo(5.0, -4.0);
            break;
        case ChipView::Kind::kUnsteady:
            path.moveTo(-6.0, 1.0);
            path.cubicTo(-4.0, -6.0, -2.0, -6.0, 0.0, 0.0);
            path.cubicTo(2.0, 6.0, 4.0, 6.0, 6.0, -1.0);
            break;
        case ChipView::Kind::kVoid:
            path.moveTo(-4.5, -4.5);
            path.lineTo(4.5, 4.5);
            path.moveTo(4.5, -4.5);
            path.lineTo(-4.5, 4.5);
            break;
        case ChipView::Kind::kOverload:
            path.moveTo(-5.5, -5.5);
            path.lineTo(5.5, -5.5);
            path.moveTo(0.0, 5.5);
            path.lineTo(0.0, -2.0);
            path.moveTo(-3.5, 1.0);
            path.lineTo(0.0, -2.5);
            path.lineTo(3.5, 1.0);
            break;
        default:
            path.moveTo(-4.5, 0.0);
            path.lineTo(4.5, 0.0);
    }
    return path;
}

}  // namespace

ChipView::ChipView(QWidget* parent) : QWidget(parent) {
    setProperty("role", "state");
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ChipView::Show(Kind kind, const QString& text, double progress) {
    if (kind == kind_ && text == text_ && progress == progress_) return;
    const bool resized = text != text_;
    kind_ = kind;
    text_ = text;
    progress_ = progress;
    setAccessibleDescription(text);
    if (resized) updateGeometry();
    update();
}

QSize ChipView::sizeHint() const {
    const int words = fontMetrics().horizontalAdvance(text_);
    return {words + kChipShapeWidth + kChipGap + 2 * kChipMargin, fontMetrics().height() + 6};
}

void ChipView::PaintShape(QPainter& painter, Kind kind, const QColor& ink) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(ink, 2.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(ChipShape(kind));
}

void ChipView::PaintShape(QPainter& painter, const QColor& ink) const {
    if (kind_ != Kind::kSettling) return PaintShape(painter, kind_, ink);
    painter.setBrush(Qt::NoBrush);
    const QRectF ring(-5.0, -5.0, 10.0, 10.0);
    painter.setPen(QPen(Theme::Current().border, 2.4));
    painter.drawEllipse(ring);
    // Qt's angles are sixteenths of a degree, counterclockwise from the right.
    painter.setPen(QPen(ink, 2.4, Qt::SolidLine, Qt::FlatCap));
    painter.drawArc(ring, 90 * 16, -static_cast<int>(progress_ * 360.0 * 16.0));
}

void ChipView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = Theme::Current();
    const QColor colour = ChipColour(kind_);
    const bool filled = filled_ && kind_ == Kind::kVoid;
    const QColor ink = filled ? theme.card : colour;
    painter.setPen(colour);
    painter.setBrush(filled ? colour : theme.window);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.drawRoundedRect(frame, frame.height() / 2.0, frame.height() / 2.0);
    painter.setPen(ink);
    painter.drawText(rect().adjusted(kChipMargin + kChipShapeWidth + kChipGap, 0, 0, 0),
                     Qt::AlignLeft | Qt::AlignVCenter, text_);
    painter.translate(kChipMargin + kChipShapeWidth / 2.0, height() / 2.0);
    PaintShape(painter, ink);
}

}  // namespace sonavex::ui
