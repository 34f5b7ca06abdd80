#include "ui/widgets/TraceSwatch.h"

#include <QPainter>
#include <utility>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
QPen TraceSwatch::PenOf(const QString& trace) {
    const Theme& theme = Theme::Current();
    if (trace == "kept") return QPen(theme.second, 2.0);
    if (trace == "keptSecond") return QPen(theme.third, 2.0);
    if (trace == "noise") return QPen(theme.text, 1.0, Qt::DashLine);
    if (trace == "harmonics") return QPen(theme.text, 2.0);
    return QPen(theme.accent, trace == "captured" ? 1.0 : 2.0);
}

TraceSwatch::TraceSwatch(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void TraceSwatch::SetTrace(const QString& trace) {
    trace_ = trace;
    update();
}

void TraceSwatch::SetPen(std::function<QPen()> pen) {
    pen_ = std::move(pen);
    update();
}

void TraceSwatch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(pen_ ? pen_() : PenOf(trace_));
    painter.drawLine(QPointF(0.0, height() / 2.0), QPointF(width(), height() / 2.0));
}

}  // namespace sonavex::ui
