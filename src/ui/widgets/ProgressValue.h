#pragma once

#include <QProgressBar>

namespace sonavex::ui {

// Shows a value with the next paint event. QProgressBar::setValue paints at once, and with the bar everything
// that is due; the other changes of the same event are then painted separately.
inline void ShowProgress(QProgressBar& bar, int value) {
    if (bar.value() == value) return;
    bar.setUpdatesEnabled(false);
    bar.setValue(value);
    bar.setUpdatesEnabled(true);
}

}  // namespace sonavex::ui
