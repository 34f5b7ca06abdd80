#include "ui/widgets/WaveChoice.h"

#include <QHBoxLayout>
#include <QPushButton>

namespace sonavex::ui {

WaveChoice::WaveChoice(QWidget* parent) : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    connect(&group_, &QButtonGroup::idClicked, this, &WaveChoice::Chosen);
}

void WaveChoice::SetNames(const QStringList& names) {
    if (names == names_) return;
    names_ = names;
    for (QAbstractButton* button : group_.buttons()) delete button;
    for (int i = 0; i < names.size(); ++i) {
        auto* button = new QPushButton(names[i], this);
        button->setCheckable(true);
        group_.addButton(button, i);
        layout()->addWidget(button);
        button->show();
    }
}

void WaveChoice::SetIndex(int index) {
    // Qt cannot clear the selection of an exclusive group.
    group_.setExclusive(false);
    for (QAbstractButton* button : group_.buttons()) button->setChecked(group_.id(button) == index);
    group_.setExclusive(true);
}

}  // namespace sonavex::ui
