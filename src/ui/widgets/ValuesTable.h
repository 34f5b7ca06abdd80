#pragma once

#include <QTableWidget>

#include "core/history/display/HistoryList.h"

namespace sonavex::ui {

// The values of one entry of the history, or of two: a column for each value. It scrolls sideways.
class ValuesTable : public QTableWidget {
    Q_OBJECT

public:
    explicit ValuesTable(QWidget* parent = nullptr);

    void Show(const HistoryTableView::Content& content);
    // Sets heights and widths, which depend on the font.
    void AlignCells();
};

}  // namespace sonavex::ui
