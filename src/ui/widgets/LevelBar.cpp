#include "ui/widgets/LevelBar.h"

#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kMarksDb[] = {-40, -20, -12, -6, 0};
constexpr int kMarksPercent[] = {0, 25, 50, 75, 100};
constexpr double kTick = 3.0;
constexpr double kGap = 1.0;
constexpr double kTrackRadius = 4.0;
// Size of the scale's figures relative to the surrounding text.
constexpr double kFigureScale = 0.85;

QFont FigureFont(const QFont& base) {
    QFont font = base;
    font.setPointSizeF(base.pointSizeF() * kFigureScale);
    return font;
}

}  // namespace

LevelBar::LevelBar(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LevelBar::SetLevel(double level, double fullScale) {
    const double fraction = std::clamp(level / fullScale, 0.0, 1.0);
    if (fraction == fraction_) return;
    const QRectF track = Track();
    const double from = track.left() + track.width() * std::min(fraction, fraction_) - kTrackRadius;
    const double to = track.left() + track.width() * std::max(fraction, fraction_) + kTrackRadius;
    fraction_ = fraction;
    update(QRectF(from, track.top(), to - from, track.height()).toAlignedRect());
}

void LevelBar::SetOverload(bool overload) {
    if (overload == overload_) return;
    overload_ = overload;
    update();
}

void LevelBar::SetSilent(bool silent) {
    if (silent == silent_) return;
    silent_ = silent;
    update();
}

QSize LevelBar::sizeHint() const {
    const int text = QFontMetrics(FigureFont(font())).height();
    const int barHeight = fontMetrics().height() * 3 / 4;
    return {16 * text, 2 * (text + static_cast<int>(kTick + kGap)) + barHeight};
}

// The scale is inset by half a figure, so that the outer figures are not cut.
QRectF LevelBar::Track() const {
    if (!track_.isNull()) return track_;
    const QFontMetrics figures(FigureFont(font()));
    const double left = figures.horizontalAdvance("-40") / 2.0;
    const double right = figures.horizontalAdvance("0 dBFS") / 2.0;
    const double top = figures.height() + kTick + kGap;
    track_ = {left, top, width() - left - right, fontMetrics().height() * 0.75};
    return track_;
}

void LevelBar::resizeEvent(QResizeEvent* event) {
    track_ = {};
    QWidget::resizeEvent(event);
}

void LevelBar::changeEvent(QEvent* event) {
    track_ = {};
    QWidget::changeEvent(event);
}

void LevelBar::PaintMark(QPainter& painter, const QRectF& track, double fraction, const QString& text,
                         bool above) const {
    const double x = track.left() + track.width() * fraction;
    const double away = above ? -1.0 : 1.0;
    const double edge = above ? track.top() : track.bottom();
    painter.drawLine(QPointF(x, edge + away * kGap), QPointF(x, edge + away * (kGap + kTick)));
    const double height = painter.fontMetrics().height();
    const double top = above ? edge - kGap - kTick - height : edge + 2.0 * kGap + kTick;
    const double halfWidth = painter.fontMetrics().horizontalAdvance(text);
    painter.drawText(QRectF(x - halfWidth, top, 2.0 * halfWidth, height), Qt::AlignCenter, text);
}

void LevelBar::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    PaintBackground(painter, *this);
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme& theme = Theme::Current();
    const QRectF track = Track();
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.track);
    painter.drawRoundedRect(track, kTrackRadius, kTrackRadius);
    QRectF filled = track;
    filled.setWidth(track.width() * fraction_);
    painter.setBrush(silent_ ? theme.border : overload_ ? theme.overload : theme.accent);
    if (fraction_ > 0.0) painter.drawRoundedRect(filled, kTrackRadius, kTrackRadius);
    // A change of the level alone does not repaint the marks.
    if (!track.toAlignedRect().contains(event->rect())) PaintMarks(painter, track);
}

void LevelBar::PaintMarks(QPainter& painter, const QRectF& track) const {
    painter.setPen(Theme::Current().quiet);
    painter.setFont(FigureFont(font()));
    for (const int mark : kMarksPercent)
        PaintMark(painter, track, mark / 100.0, mark == 100 ? "100 %" : QString::number(mark), true);
    for (const int mark : kMarksDb)
        PaintMark(painter, track, std::pow(10.0, mark / 20.0), mark == 0 ? "0 dBFS" : QString::number(mark),
                  false);
}

}  // namespace sonavex::ui
