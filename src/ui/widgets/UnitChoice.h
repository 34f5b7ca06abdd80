#pragma once

#include "ui/widgets/ChoiceBox.h"

namespace sonavex::ui {

// The unit of a reading: a small drop-down list, or without a choice plain text without a frame.
class UnitChoice : public ChoiceBox {
    Q_OBJECT

public:
    explicit UnitChoice(QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool Choosable() const { return count() > 1; }
    void FollowCount();
};

}  // namespace sonavex::ui
