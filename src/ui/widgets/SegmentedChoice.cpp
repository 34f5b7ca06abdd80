#include "ui/widgets/SegmentedChoice.h"

#include <QLayout>
#include <QPushButton>

namespace sonavex::ui {

SegmentedChoice::SegmentedChoice(QWidget* parent) : WaveChoice(parent) {
    setProperty("role", "segments");
    setAttribute(Qt::WA_StyledBackground);
    layout()->setContentsMargins(1, 1, 1, 1);
    layout()->setSpacing(0);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QAbstractButton* SegmentedChoice::MakeButton(int /*index*/, const QString& name) {
    auto* const button = new QPushButton(name, this);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return button;
}

}  // namespace sonavex::ui
