#include "ui/widgets/NotchSlider.h"

#include <QWheelEvent>

namespace sonavex::ui {
namespace {

constexpr int kNotch = QWheelEvent::DefaultDeltasPerStep;

bool Opposite(int a, int b) {
    return (a < 0 && b > 0) || (a > 0 && b < 0);
}

}  // namespace

// Reversing the wheel starts a new notch.
void NotchSlider::wheelEvent(QWheelEvent* event) {
    const int angle = event->angleDelta().y();
    if (Opposite(angle, wheelAngle_)) wheelAngle_ = 0;
    wheelAngle_ += angle;
    const int notches = wheelAngle_ / kNotch;
    wheelAngle_ -= notches * kNotch;
    if (notches != 0) MoveByNotches(notches);
    event->accept();
}

}  // namespace sonavex::ui
