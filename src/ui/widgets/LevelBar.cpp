#include "ui/widgets/LevelBar.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kMarksDb[] = {-40, -20, -12, -6, 0};

}  // namespace

LevelBar::LevelBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LevelBar::SetLevel(double level, double fullScale) {
    fraction_ = std::clamp(level / fullScale, 0.0, 1.0);
    update();
}

void LevelBar::SetOverload(bool overload) {
    overload_ = overload;
    update();
}

QSize LevelBar::sizeHint() const {
    const int text = fontMetrics().height();
    return {20 * text, text + text / 2 + 6};
}

void LevelBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = Theme::Current();
    const double textHeight = fontMetrics().height();
    // Room at both ends for half a mark's text.
    const double inset = fontMetrics().horizontalAdvance("-40") / 2.0;
    const QRectF track(inset, 0.0, width() - 2.0 * inset, textHeight * 0.75);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.track);
    painter.drawRoundedRect(track, 4.0, 4.0);
    QRectF filled = track;
    filled.setWidth(track.width() * fraction_);
    painter.setBrush(overload_ ? theme.overload : theme.accent);
    if (fraction_ > 0.0) painter.drawRoundedRect(filled, 4.0, 4.0);
    painter.setPen(theme.quiet);
    for (const int mark : kMarksDb) {
        const double x = track.left() + track.width() * std::pow(10.0, mark / 20.0);
        painter.drawLine(QPointF(x, track.bottom() + 1.0), QPointF(x, track.bottom() + 4.0));
        const QRectF text(x - 2.0 * inset, track.bottom() + 4.0, 4.0 * inset, textHeight);
        painter.drawText(text, Qt::AlignHCenter | Qt::AlignTop, QString::number(mark));
    }
}

}  // namespace sonavex::ui
