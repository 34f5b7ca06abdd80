#pragma once

#include "ui/widgets/WaveChoice.h"

namespace sonavex::ui {

// The shapes of a stimulus, each with a small picture and its name: three buttons above four. The pictures
// are those of sine, two tones, multitone, square, triangle, sawtooth and noise, in this order.
class ShapeChoice : public WaveChoice {
    Q_OBJECT

public:
    explicit ShapeChoice(QWidget* parent = nullptr);

protected:
    QAbstractButton* MakeButton(int index, const QString& name) override;
    void Place(int index, QAbstractButton& button) override;
};

}  // namespace sonavex::ui
