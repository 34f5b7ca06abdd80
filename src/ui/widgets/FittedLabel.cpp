#include "ui/widgets/FittedLabel.h"

#include <QApplication>
#include <QEvent>
#include <QFontDatabase>
#include <QPainter>
#include <QStyle>
#include <algorithm>

namespace sonavex::ui {
namespace {

constexpr int kSmallestFactor = 3;  // times the application's text height
constexpr int kLargestFactor = 12;

int TextHeight() {
    return QFontMetrics(QApplication::font()).height();
}

}  // namespace

FittedLabel::FittedLabel(QWidget* parent) : QLabel(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void FittedLabel::SetWidestReading(const QString& widestReading) {
    widestReading_ = widestReading;
    Fit();
}

QSize FittedLabel::minimumSizeHint() const {
    const int height = kSmallestFactor * TextHeight();
    return {height * 5, height};
}

QSize FittedLabel::sizeHint() const {
    return minimumSizeHint() * 5 / 3;
}

const QPixmap& FittedLabel::Figure(QChar character) {
    QPixmap& figure = figures_[character];
    if (!figure.isNull()) return figure;
    const QSize size(fontMetrics().horizontalAdvance(character), fontMetrics().height());
    figure = QPixmap(size * devicePixelRatio());
    figure.setDevicePixelRatio(devicePixelRatio());
    figure.fill(Qt::transparent);
    QPainter painter(&figure);
    painter.setFont(font());
    style()->drawItemText(&painter, QRect(QPoint(), size), Qt::AlignCenter, palette(), isEnabled(), character,
                          foregroundRole());
    return figure;
}

// For a text that is wider than the widest reading.
void FittedLabel::ShrinkToFit(QPainter& painter, QPoint right, int textWidth) const {
    const double scale = contentsRect().width() / static_cast<double>(std::max(textWidth, 1));
    if (scale >= 1.0) return;
    const QPointF fixed(right.x(), contentsRect().center().y());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(fixed);
    painter.scale(scale, scale);
    painter.translate(-fixed);
}

void FittedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QString shown = text();
    QPoint at(contentsRect().right() + 1, contentsRect().center().y() - fontMetrics().height() / 2);
    ShrinkToFit(painter, at, fontMetrics().horizontalAdvance(shown));
    for (auto character = shown.crbegin(); character != shown.crend(); ++character) {
        const QPixmap& figure = Figure(*character);
        at.rx() -= fontMetrics().horizontalAdvance(*character);
        painter.drawPixmap(at, figure);
    }
}

void FittedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    Fit();
}

void FittedLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    figures_.clear();
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::ApplicationFontChange) Fit();
}

void FittedLabel::Fit() {
    if (fitting_ || contentsRect().isEmpty()) return;
    fitting_ = true;
    QFont fitted = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fitted.setBold(true);
    constexpr int kTrial = 100;
    fitted.setPixelSize(kTrial);
    const QFontMetricsF metrics(fitted);
    const double byWidth = contentsRect().width() * kTrial / metrics.horizontalAdvance(widestReading_);
    const double byHeight = contentsRect().height() * kTrial / metrics.height();
    const int size = static_cast<int>(std::min(byWidth, byHeight));
    fitted.setPixelSize(std::clamp(size, 8, kLargestFactor * TextHeight()));
    figures_.clear();
    setFont(fitted);
    fitting_ = false;
}

FittedPlace::FittedPlace(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

FittedLabel& FittedPlace::Child() const {
    return *findChild<FittedLabel*>();
}

QSize FittedPlace::sizeHint() const {
    return Child().sizeHint();
}

QSize FittedPlace::minimumSizeHint() const {
    return Child().minimumSizeHint();
}

void FittedPlace::resizeEvent(QResizeEvent* /*event*/) {
    Child().setGeometry(rect());
}

void FittedPlace::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) updateGeometry();
}

}  // namespace sonavex::ui
