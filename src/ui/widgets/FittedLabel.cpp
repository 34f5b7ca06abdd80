#include "ui/widgets/FittedLabel.h"

#include <QApplication>
#include <QEvent>
#include <QFontDatabase>
#include <algorithm>

namespace sonavex::ui {
namespace {

constexpr const char* kWidestReading = "-00.0000";
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

QSize FittedLabel::minimumSizeHint() const {
    const int height = kSmallestFactor * TextHeight();
    return {height * 5, height};
}

QSize FittedLabel::sizeHint() const {
    return minimumSizeHint() * 5 / 3;
}

void FittedLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    Fit();
}

void FittedLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
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
    const double byWidth = contentsRect().width() * kTrial / metrics.horizontalAdvance(kWidestReading);
    const double byHeight = contentsRect().height() * kTrial / metrics.height();
    const int size = static_cast<int>(std::min(byWidth, byHeight));
    fitted.setPixelSize(std::clamp(size, 8, kLargestFactor * TextHeight()));
    setFont(fitted);
    fitting_ = false;
}

}  // namespace sonavex::ui
