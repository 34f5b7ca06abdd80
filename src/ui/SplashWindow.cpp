#include "ui/SplashWindow.h"

#include <QApplication>
#include <QPainter>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

QPixmap Canvas() {
    const int height = QFontMetrics(QApplication::font()).height();
    const double ratio = qApp->devicePixelRatio();
    QPixmap canvas((QSizeF(height * 24, height * 9) * ratio).toSize());
    canvas.setDevicePixelRatio(ratio);
    canvas.fill(Theme::Current().card);
    return canvas;
}

}  // namespace

SplashWindow::SplashWindow(frmSplash& form) : QSplashScreen(Canvas()), form_(form) {}

void SplashWindow::Refresh() {
    if (!form_.Visible()) {
        close();
        return;
    }
    show();
    repaint();
}

void SplashWindow::mousePressEvent(QMouseEvent*) {
    form_.Frame_Click();
    Refresh();
}

void SplashWindow::drawContents(QPainter* painter) {
    const Theme& theme = Theme::Current();
    QFont title = QApplication::font();
    title.setPointSizeF(title.pointSizeF() * 2.4);
    title.setBold(true);
    painter->setFont(title);
    painter->setPen(theme.accent);
    painter->drawText(rect().adjusted(24, 18, -24, -rect().height() / 2), Qt::AlignLeft | Qt::AlignVCenter,
                      "Sonavex");
    painter->setFont(QApplication::font());
    painter->setPen(theme.quiet);
    painter->drawText(rect().adjusted(24, rect().height() / 2, -24, -18),
                      Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                      QString::fromStdString(form_.lblVersion.Caption()));
}

}  // namespace sonavex::ui
