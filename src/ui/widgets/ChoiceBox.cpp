#include "ui/widgets/ChoiceBox.h"

#include <QPainter>

#include "ui/widgets/Chevron.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kPadding = 8;
constexpr int kArrowSpace = 26;
constexpr qreal kFrameRadius = 5.0;

}  // namespace

ChoiceBox::ChoiceBox(QWidget* parent) : ChoiceBox(parent, {kPadding, kArrowSpace}) {}

ChoiceBox::ChoiceBox(QWidget* parent, Spaces spaces) : QComboBox(parent), spaces_(spaces) {}

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
    const QRect text = rect().adjusted(spaces_.beforeText, 0, -spaces_.arrow, 0);
    painter.setPen(ink);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(currentText(), Qt::ElideRight, text.width()));
    DrawChevron(painter, QRectF(width() - spaces_.arrow, 0, spaces_.arrow - 4, height()), ink);
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
