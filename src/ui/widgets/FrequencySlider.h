#pragma once

#include "ui/widgets/NotchSlider.h"

namespace sonavex::ui {

// A logarithmic slider for whole hertz: equal distances are equal intervals. Arrow keys move by 1 Hz, page
// keys and clicks on the track by a third of an octave, a wheel notch by a twelfth. A double click resets.
// Assistive technology reads the frequency in the description.
class FrequencySlider : public NotchSlider {
    Q_OBJECT

public:
    explicit FrequencySlider(QWidget* parent = nullptr);

    // Requires 1 <= lowest < highest.
    void SetLimits(int lowestHz, int highestHz);
    void SetHz(int hertz);
    int Hz() const noexcept { return hertz_; }
    // Frequency set by a double click.
    void SetResetHz(int hertz) { resetHz_ = hertz; }

Q_SIGNALS:
    void HzMoved(int hertz);
    // Emitted when the slider is released or a wheel, key or click step has ended.
    void HzReleased();

protected:
    void MoveByNotches(int notches) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    int PositionOf(int hertz) const;
    int HzAt(int position) const;
    void OnAction(int action);
    void OnPosition(int position);
    void OnReleased();
    void Step(int hertz);
    void Take(int hertz);

    int lowestHz_ = 1;
    int highestHz_ = 24000;
    int hertz_ = 1;
    int resetHz_ = 1000;
};

}  // namespace sonavex::ui
