#include "ui/widgets/FrequencySlider.h"

#include <QMouseEvent>
#include <QSignalBlocker>
#include <algorithm>
#include <cmath>

#include "core/generator/GeneratorWords.h"

namespace sonavex::ui {
namespace {

constexpr int kPositions = 10000;
constexpr double kPageOctaves = 1.0 / 3.0;
constexpr double kNotchOctaves = kPageOctaves / 4.0;

// The frequency `octaves` away, at least 1 Hz from `hertz`.
int Away(int hertz, double octaves) {
    const int target = static_cast<int>(std::lround(hertz * std::exp2(octaves)));
    return octaves > 0.0 ? std::max(target, hertz + 1) : std::min(target, hertz - 1);
}

}  // namespace

FrequencySlider::FrequencySlider(QWidget* parent) : NotchSlider(parent) {
    setOrientation(Qt::Horizontal);
    setRange(0, kPositions);
    connect(this, &QSlider::actionTriggered, this, &FrequencySlider::OnAction);
    connect(this, &QSlider::valueChanged, this, &FrequencySlider::OnPosition);
    connect(this, &QSlider::sliderReleased, this, &FrequencySlider::OnReleased);
}

void FrequencySlider::SetLimits(int lowestHz, int highestHz) {
    lowestHz_ = std::max(lowestHz, 1);
    highestHz_ = std::max(highestHz, lowestHz_ + 1);
    SetHz(hertz_);
}

void FrequencySlider::SetHz(int hertz) {
    Take(std::clamp(hertz, lowestHz_, highestHz_));
    if (isSliderDown()) return;
    const QSignalBlocker blocker(this);
    setValue(PositionOf(hertz_));
}

void FrequencySlider::Take(int hertz) {
    hertz_ = hertz;
    const QString words = QString::fromStdString(FrequencyWords(hertz_));
    if (words != accessibleDescription()) setAccessibleDescription(words);
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

void FrequencySlider::OnPosition(int position) {
    Take(HzAt(position));
    Q_EMIT HzMoved(hertz_);
    if (!isSliderDown()) Q_EMIT HzReleased();
}

// While the handle was held, it did not show changes by the program.
void FrequencySlider::OnReleased() {
    SetHz(hertz_);
    Q_EMIT HzReleased();
}

// Keys, clicks on the track and assistive technology move in hertz, not in positions.
void FrequencySlider::OnAction(int action) {
    switch (action) {
        case SliderSingleStepAdd:
            Step(hertz_ + 1);
            break;
        case SliderSingleStepSub:
            Step(hertz_ - 1);
            break;
        case SliderPageStepAdd:
            Step(Away(hertz_, kPageOctaves));
            break;
        case SliderPageStepSub:
            Step(Away(hertz_, -kPageOctaves));
            break;
        case SliderToMinimum:
            Step(lowestHz_);
            break;
        case SliderToMaximum:
            Step(highestHz_);
            break;
        default:
            break;
    }
}

void FrequencySlider::Step(int hertz) {
    SetHz(hertz);
    Q_EMIT HzMoved(hertz_);
    Q_EMIT HzReleased();
}

void FrequencySlider::MoveByNotches(int notches) {
    Step(Away(hertz_, notches * kNotchOctaves));
}

void FrequencySlider::mouseDoubleClickEvent(QMouseEvent* event) {
    setSliderDown(false);
    Step(resetHz_);
    event->accept();
}

}  // namespace sonavex::ui
