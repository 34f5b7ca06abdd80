#include "ui/ProgramStyle.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOption>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {

ProgramStyle::ProgramStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    if (element != PE_IndicatorCheckBox && element != PE_IndicatorRadioButton) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    const Theme& theme = Theme::Current();
    const bool round = element == PE_IndicatorRadioButton;
    const bool checked = (option->state & State_On) != 0;
    const bool enabled = (option->state & State_Enabled) != 0;
    const QColor mark = enabled ? theme.accent : theme.faint;
    const QColor edge = enabled ? theme.quiet : theme.faint;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter->setPen(QPen(checked ? mark : edge, 1.2));
    painter->setBrush(checked ? mark : theme.field);
    const double corner = round ? box.width() / 2.0 : 3.0;
    painter->drawRoundedRect(box, corner, corner);
    if (checked && round) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(theme.onAccent);
        painter->drawEllipse(box.center(), box.width() * 0.2, box.width() * 0.2);
    } else if (checked) {
        QPainterPath tick(QPointF(box.left() + box.width() * 0.24, box.top() + box.height() * 0.52));
        tick.lineTo(box.left() + box.width() * 0.43, box.top() + box.height() * 0.72);
        tick.lineTo(box.left() + box.width() * 0.78, box.top() + box.height() * 0.28);
        painter->setPen(QPen(theme.onAccent, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPath(tick);
    }
    painter->restore();
}

}  // namespace sonavex::ui
