#pragma once

#include <QSlider>

namespace sonavex::ui {

// A slider that moves by a fixed step for each notch of the mouse wheel. The desktop's setting of lines per
// notch has no effect. Fractions of a notch, which touchpads and fine wheels report, are summed.
class NotchSlider : public QSlider {
    Q_OBJECT
    Q_PROPERTY(int notchStep READ NotchStep WRITE SetNotchStep)

public:
    using QSlider::QSlider;

    // Change of the value by a notch.
    int NotchStep() const noexcept { return notchStep_; }
    void SetNotchStep(int step) noexcept { notchStep_ = step; }

Q_SIGNALS:
    // Emitted before a step of the wheel or a click next to the handle: both start from the present value.
    void AboutToStep();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    virtual void MoveByNotches(int notches) { setValue(value() + notches * notchStep_); }

private:
    bool HandleContains(QPoint place) const;

    int notchStep_ = 1;
    int wheelAngle_ = 0;  // eighths of a degree, not yet a full notch
};

}  // namespace sonavex::ui
