#pragma once

#include <QSlider>

namespace sonavex::ui {

// A slider over whole hertz that feels logarithmic: equal ways are equal intervals. Arrow keys move by
// 1 Hz, page keys and clicks beside the handle by a third of an octave, a wheel's notch by a quarter of
// that, a double click resets. Assistive technology reads the frequency in its description.
class FrequencySlider : public QSlider {
    Q_OBJECT

public:
    explicit FrequencySlider(QWidget* parent = nullptr);

    // 1 <= lowest < highest.
    void SetLimits(int lowestHz, int highestHz);
    void SetHz(int hertz);
    int Hz() const noexcept { return hertz_; }
    // Where a double click goes.
    void SetResetHz(int hertz) { resetHz_ = hertz; }

Q_SIGNALS:
    void HzMoved(int hertz);
    // The slider was let go, or a wheel, key or click step has ended.
    void HzReleased();

protected:
    void wheelEvent(QWheelEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    int PositionOf(int hertz) const;
    int HzAt(int position) const;
    void OnAction(int action);
    void OnPosition(int position);
    void Step(int hertz);
    void Take(int hertz);

    int lowestHz_ = 1;
    int highestHz_ = 24000;
    int hertz_ = 1;
    int resetHz_ = 1000;
    int wheelAngle_ = 0;  // eighths of a degree that have not made a notch yet
};

}  // namespace sonavex::ui
