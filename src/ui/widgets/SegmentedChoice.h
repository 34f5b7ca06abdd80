#pragma once

#include "ui/widgets/WaveChoice.h"

namespace sonavex::ui {

// A short list with one selected entry, shown as adjacent segments in one frame.
class SegmentedChoice : public WaveChoice {
    Q_OBJECT

public:
    explicit SegmentedChoice(QWidget* parent = nullptr);

protected:
    QAbstractButton* MakeButton(int index, const QString& name) override;
};

}  // namespace sonavex::ui
