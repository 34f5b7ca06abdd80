#include "ui/widgets/HarmonicBar.h"

#include <QPainter>
#include <algorithm>

#include "ui/Theme.h"

namespace sonavex::ui {
namespace {

constexpr double kFloorDb = -120.0;

}  // namespace

HarmonicBar::HarmonicBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void HarmonicBar::SetLevelDb(double levelDb) {
    fraction_ = std::clamp(1.0 - levelDb / kFloorDb, 0.0, 1.0);
    update();
}

void HarmonicBar::Clear() {
    fraction_ = 0.0;
    update();
}

QSize HarmonicBar::sizeHint() const {
    return {fontMetrics().height() * 7, fontMetrics().height() * 2 / 3};
}

void HarmonicBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = Theme::Current();
    QRectF track(rect());
    const double radius = track.height() / 2.5;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.track);
    painter.drawRoundedRect(track, radius, radius);
    track.setWidth(track.width() * fraction_);
    painter.setBrush(theme.accent);
    if (fraction_ > 0.0) painter.drawRoundedRect(track, radius, radius);
}

}  // namespace sonavex::ui
