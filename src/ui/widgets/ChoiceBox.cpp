#include "ui/widgets/ChoiceBox.h"

#include <QPainter>
#include <QPainterPath>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kPadding = 8;
constexpr int kArrowSpace = 26;
constexpr qreal kFrameRadius = 5.0;

// Draws a chevron that points down in the middle of the area.
void DrawArrow(QPainter& painter, const QRectF& area, const QColor& colour) {
    const QPointF middle = area.center();
    QPainterPath arrow(middle + QPointF(-4.0, -2.0));
    arrow.lineTo(middle + QPointF(0.0, 2.0));
    arrow.lineTo(middle + QPointF(4.0, -2.0));
    painter.setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(arrow);
}

}  // namespace

ChoiceBox::ChoiceBox(QWidget* parent) : QComboBox(parent) {}

QSize ChoiceBox::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    const int width = metrics.horizontalAdvance(u'0') * minimumContentsLength();
    return {width + 2 * kPadding + kArrowSpace, metrics.height() + 2 * kPadding};
}

void ChoiceBox::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::Current();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal line = hasFocus() ? 2.0 : 1.0;
    const QRectF frame = QRectF(rect()).adjusted(line / 2, line / 2, -line / 2, -line / 2);
    const bool marked = isEnabled() && (hasFocus() || underMouse());
    painter.setPen(QPen(marked ? theme.accent : theme.border, line));
    painter.setBrush(isEnabled() ? theme.field : theme.window);
    painter.drawRoundedRect(frame, kFrameRadius, kFrameRadius);

    const QColor ink = isEnabled() ? theme.text : theme.quiet;
    const QRect text = rect().adjusted(kPadding, 0, -kArrowSpace, 0);
    painter.setPen(ink);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(currentText(), Qt::ElideRight, text.width()));
    DrawArrow(painter, QRectF(width() - kArrowSpace, 0, kArrowSpace - 4, height()), ink);
}

void ChoiceBox::enterEvent(QEnterEvent* event) {
    QComboBox::enterEvent(event);
    update();
}

void ChoiceBox::leaveEvent(QEvent* event) {
    QComboBox::leaveEvent(event);
    update();
}

}  // namespace sonavex::ui
