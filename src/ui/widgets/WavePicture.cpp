#include "ui/widgets/WavePicture.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>
#include <numbers>

#include "core/generator/ToneTable.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kPoints = 200;

// Value of a waveform at a position in its period, 0 to 1; triangle and sawtooth are unipolar.
double WaveAt(int waveType, double turn) {
    switch (waveType) {
        case wave::kSine:
            return 0.5 + 0.5 * std::sin(2.0 * std::numbers::pi * turn);
        case wave::kSquare:
            return turn < 0.5 ? 1.0 : 0.0;
        case wave::kTriangle:
            return turn < 0.5 ? 2.0 * turn : 2.0 - 2.0 * turn;
        case wave::kSawtooth:
            return turn;
        default:
            return 0.0;
    }
}

}  // namespace

WavePicture::WavePicture(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void WavePicture::SetWave(int waveType) {
    if (waveType == waveType_) return;
    waveType_ = waveType;
    update();
}

void WavePicture::SetSweep(bool sweeps, double startHz, double endHz, bool loops) {
    if (sweeps == sweeps_ && startHz == startHz_ && endHz == endHz_ && loops == loops_) return;
    sweeps_ = sweeps;
    startHz_ = startHz;
    endHz_ = endHz;
    loops_ = loops;
    update();
}

QSize WavePicture::sizeHint() const {
    return {fontMetrics().height() * 12, fontMetrics().height() * 4};
}

void WavePicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF all = QRectF(rect()).adjusted(3.0, 3.0, -3.0, -3.0);
    if (!sweeps_) {
        DrawWave(painter, all);
        return;
    }
    const double half = all.width() / 2.0 - 6.0;
    DrawWave(painter, QRectF(all.left(), all.top(), half, all.height()));
    DrawSweep(painter, QRectF(all.right() - half, all.top(), half, all.height()));
}

void WavePicture::DrawWave(QPainter& painter, const QRectF& area) const {
    const Theme& theme = Theme::Current();
    const bool bipolar = waveType_ == wave::kSine || waveType_ == wave::kSquare;
    const double zero = bipolar ? area.center().y() : area.bottom();
    painter.setPen(QPen(theme.border, 1.0));
    painter.drawLine(QPointF(area.left(), zero), QPointF(area.right(), zero));
    QPainterPath path;
    for (int i = 0; i <= kPoints; ++i) {
        const double turn = i / static_cast<double>(kPoints);
        // The drawn period includes the jump at its end.
        const double height = i == kPoints ? WaveAt(waveType_, 0.0) : WaveAt(waveType_, turn);
        const QPointF point(area.left() + area.width() * turn, area.bottom() - area.height() * height);
        i == 0 ? path.moveTo(point) : path.lineTo(point);
    }
    painter.setPen(QPen(theme.accent, 2.0));
    painter.drawPath(path);
}

void WavePicture::DrawSweep(QPainter& painter, const QRectF& area) const {
    const Theme& theme = Theme::Current();
    const int direction = (endHz_ > startHz_) - (endHz_ < startHz_);
    const double from = area.center().y() + direction * area.height() / 2.0;
    const double to = area.center().y() - direction * area.height() / 2.0;
    const int cycles = loops_ ? 2 : 1;
    QPainterPath path(QPointF(area.left(), from));
    const double ramp = area.width() / (loops_ ? 2.0 : 1.5);
    for (int cycle = 0; cycle < cycles; ++cycle) {
        const double start = area.left() + ramp * cycle;
        path.lineTo(start, from);
        path.lineTo(start + ramp, to);
    }
    if (!loops_) path.lineTo(area.right(), to);
    painter.setPen(QPen(theme.border, 1.0));
    painter.drawLine(area.bottomLeft(), area.bottomRight());
    painter.drawLine(area.topLeft(), area.bottomLeft());
    painter.setPen(QPen(theme.accent, 2.0));
    painter.drawPath(path);
}

}  // namespace sonavex::ui
