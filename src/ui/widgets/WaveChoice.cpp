#include "ui/widgets/WaveChoice.h"

#include <QFocusEvent>
#include <QHBoxLayout>
#include <QPushButton>
#include <algorithm>

namespace sonavex::ui {

WaveChoice::WaveChoice(QWidget* parent) : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    setFocusPolicy(Qt::ClickFocus);
    connect(&group_, &QButtonGroup::idClicked, this, &WaveChoice::Chosen);
}

void WaveChoice::SetNames(const QStringList& names) {
    if (names == names_) return;
    // New buttons are reached by the tab key where the earlier ones were.
    QWidget* before = names_.isEmpty() ? nullptr : group_.button(0)->previousInFocusChain();
    names_ = names;
    for (QAbstractButton* button : group_.buttons()) delete button;
    for (int i = 0; i < names.size(); ++i) {
        QAbstractButton* const button = MakeButton(i, names[i]);
        button->setCheckable(true);
        if (!accessibleName().isEmpty()) button->setAccessibleName(accessibleName() + ": " + names[i]);
        group_.addButton(button, i);
        Place(i, *button);
        button->show();
        if (before == nullptr) continue;
        setTabOrder(before, button);
        before = button;
    }
}

QAbstractButton* WaveChoice::MakeButton(int /*index*/, const QString& name) {
    return new QPushButton(name, this);
}

void WaveChoice::Place(int /*index*/, QAbstractButton& button) {
    layout()->addWidget(&button);
}

QList<QAbstractButton*> WaveChoice::Buttons() const {
    QList<QAbstractButton*> buttons;
    for (int i = 0; i < names_.size(); ++i) buttons.append(group_.button(i));
    return buttons;
}

void WaveChoice::focusInEvent(QFocusEvent* event) {
    const QList<QAbstractButton*> buttons = Buttons();
    if (!buttons.isEmpty()) buttons[std::max(Index(), 0)]->setFocus(event->reason());
}

// The tab key reaches the selected button, arrow keys the others.
void WaveChoice::SetIndex(int index) {
    // Qt cannot clear the selection of an exclusive group.
    group_.setExclusive(false);
    for (QAbstractButton* button : group_.buttons()) button->setChecked(group_.id(button) == index);
    group_.setExclusive(true);
    for (QAbstractButton* button : group_.buttons())
        button->setFocusPolicy(group_.id(button) == std::max(index, 0) ? Qt::StrongFocus : Qt::ClickFocus);
}

}  // namespace sonavex::ui
