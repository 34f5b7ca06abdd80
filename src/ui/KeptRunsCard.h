#pragma once

#include <QFrame>
#include <array>

#include "core/precise/display/KeptRuns.h"
#include "ui/Binder.h"

class QLabel;
class QLineEdit;

namespace sonavex::ui {

class ChipView;
class TraceSwatch;

// The card of the tab Sweep with the kept runs. Names are edited in place.
class KeptRunsCard : public QFrame {
    Q_OBJECT

public:
    // All must outlive the card.
    KeptRunsCard(KeptRuns& runs, Binder& binder, QWidget* parent);

    // Shows the rows that have a run. Call after each flush.
    void Decorate();

private:
    QWidget* MakeRow(std::size_t index, Binder& binder);

    KeptRuns& runs_;
    std::array<QWidget*, KeptRuns::kMost> rows_{};
    std::array<QLineEdit*, KeptRuns::kMost> names_{};
    std::array<ChipView*, KeptRuns::kMost> verdicts_{};
    std::array<TraceSwatch*, KeptRuns::kMost> swatches_{};
    QLabel* none_ = nullptr;
};

}  // namespace sonavex::ui
