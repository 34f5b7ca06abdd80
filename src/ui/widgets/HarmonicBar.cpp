#include "ui/widgets/HarmonicBar.h"

#include <QPainter>
#include <algorithm>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr double kFloorDb = -120.0;

}  // namespace

HarmonicBar::HarmonicBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void HarmonicBar::SetLevelDb(double levelDb) {
    SetFraction(std::clamp(1.0 - levelDb / kFloorDb, 0.0, 1.0));
}

void HarmonicBar::Clear() {
    SetFraction(0.0);
}

void HarmonicBar::SetFraction(double fraction) {
    if (fraction == fraction_) return;
    // The rounded ends extend by the radius, which is less than half the height.
    const int from = static_cast<int>(width() * std::min(fraction, fraction_)) - height() / 2 - 1;
    const int to = static_cast<int>(width() * std::max(fraction, fraction_)) + height() / 2 + 2;
    fraction_ = fraction;
    update(from, 0, to - from, height());
}

QSize HarmonicBar::sizeHint() const {
    return {fontMetrics().height() * 7, fontMetrics().height() * 2 / 3};
}

void HarmonicBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PaintBackground(painter, *this);
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
