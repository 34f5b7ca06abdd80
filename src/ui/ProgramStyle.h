#pragma once

#include <QProxyStyle>

namespace sonavex::ui {

// Qt's style with check boxes and option buttons that are visible on dark and light cards.
class ProgramStyle : public QProxyStyle {
public:
    ProgramStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

}  // namespace sonavex::ui
