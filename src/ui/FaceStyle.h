#pragma once

#include <QProxyStyle>

namespace sonavex::ui {

// The toolkit's own style with check boxes and option buttons that can be seen on dark and light cards
// alike.
class FaceStyle : public QProxyStyle {
public:
    FaceStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

}  // namespace sonavex::ui
