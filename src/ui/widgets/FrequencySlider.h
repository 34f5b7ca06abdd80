#pragma once

#include <QSlider>

namespace sonavex::ui {

// A slider over whole hertz that feels logarithmic: equal ways are equal intervals. Arrow keys move by
// 1 Hz, page keys by a third of an octave, a double click resets.
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
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    int PositionOf(int hertz) const;
    int HzAt(int position) const;
    void Step(int hertz);

    int lowestHz_ = 1;
    int highestHz_ = 24000;
    int hertz_ = 1;
    int resetHz_ = 1000;
};

}  // namespace sonavex::ui
