#include "ui/widgets/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <algorithm>

namespace sonavex::ui {
namespace {

constexpr int kLeastCharacters = 8;

}  // namespace

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const {
    const QSize whole = QLabel::minimumSizeHint();
    return {std::min(kLeastCharacters * fontMetrics().averageCharWidth(), whole.width()), whole.height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawFrame(&painter);
    const QRect place = contentsRect();
    style()->drawItemText(&painter, place, static_cast<int>(alignment()), palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideRight, place.width()), foregroundRole());
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || fontMetrics().horizontalAdvance(text()) <= contentsRect().width())
        return QLabel::event(event);
    const QString lines = text().replace('\r', '\n');
    const bool contained = toolTip().startsWith(lines);
    const QString whole = contained ? toolTip() : toolTip().isEmpty() ? lines : lines + "\n" + toolTip();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), whole, this);
    return true;
}

}  // namespace sonavex::ui
