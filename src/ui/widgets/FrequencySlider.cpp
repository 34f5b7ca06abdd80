#include "ui/widgets/FrequencySlider.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace sonavex::ui {
namespace {

constexpr int kPositions = 10000;

double ThirdOfAnOctave() {
    return std::exp2(1.0 / 3.0);
}

}  // namespace

FrequencySlider::FrequencySlider(QWidget* parent) : QSlider(parent) {
    setOrientation(Qt::Horizontal);
    setRange(0, kPositions);
    connect(this, &QSlider::valueChanged, this, [this](int position) {
        hertz_ = HzAt(position);
        Q_EMIT HzMoved(hertz_);
        if (!isSliderDown()) Q_EMIT HzReleased();
    });
    connect(this, &QSlider::sliderReleased, this, &FrequencySlider::HzReleased);
}

void FrequencySlider::SetLimits(int lowestHz, int highestHz) {
    lowestHz_ = std::max(lowestHz, 1);
    highestHz_ = std::max(highestHz, lowestHz_ + 1);
    SetHz(hertz_);
}

void FrequencySlider::SetHz(int hertz) {
    hertz_ = std::clamp(hertz, lowestHz_, highestHz_);
    if (isSliderDown()) return;
    const QSignalBlocker blocker(this);
    setValue(PositionOf(hertz_));
}

int FrequencySlider::PositionOf(int hertz) const {
    const double place = std::log(static_cast<double>(hertz) / lowestHz_) /
                         std::log(static_cast<double>(highestHz_) / lowestHz_);
    return static_cast<int>(std::lround(place * kPositions));
}

int FrequencySlider::HzAt(int position) const {
    const double ratio = static_cast<double>(highestHz_) / lowestHz_;
    return static_cast<int>(
        std::lround(lowestHz_ * std::pow(ratio, static_cast<double>(position) / kPositions)));
}

void FrequencySlider::Step(int hertz) {
    SetHz(hertz);
    Q_EMIT HzMoved(hertz_);
    Q_EMIT HzReleased();
}

void FrequencySlider::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Down:
            Step(hertz_ - 1);
            break;
        case Qt::Key_Right:
        case Qt::Key_Up:
            Step(hertz_ + 1);
            break;
        case Qt::Key_PageUp:
            Step(std::max(hertz_ + 1, static_cast<int>(std::lround(hertz_ * ThirdOfAnOctave()))));
            break;
        case Qt::Key_PageDown:
            Step(std::min(hertz_ - 1, static_cast<int>(std::lround(hertz_ / ThirdOfAnOctave()))));
            break;
        case Qt::Key_Home:
            Step(lowestHz_);
            break;
        case Qt::Key_End:
            Step(highestHz_);
            break;
        default:
            QSlider::keyPressEvent(event);
            break;
    }
}

void FrequencySlider::wheelEvent(QWheelEvent* event) {
    const int steps = event->angleDelta().y() / 120;
    if (steps != 0)
        Step(static_cast<int>(std::lround(hertz_ * std::pow(ThirdOfAnOctave(), steps / 4.0))) +
             (steps > 0 ? 1 : -1));
    event->accept();
}

void FrequencySlider::mouseDoubleClickEvent(QMouseEvent* event) {
    setSliderDown(false);
    Step(resetHz_);
    event->accept();
}

}  // namespace sonavex::ui
