#include "ui/widgets/ValuesTable.h"

#include <QFontDatabase>
#include <QHeaderView>
#include <QScrollBar>

#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kMostRows = 3;
constexpr int kCellHeightPadding = 6;
constexpr int kCellWidthPadding = 16;
constexpr int kScrollBarRoom = 10;

QString Shown(const std::string& text) {
    return QString::fromStdString(text);
}

}  // namespace

ValuesTable::ValuesTable(QWidget* parent) : QTableWidget(parent) {
    setShowGrid(false);
    setFrameShape(QFrame::NoFrame);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::NoSelection);
    setFocusPolicy(Qt::StrongFocus);
    setTabKeyNavigation(false);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    horizontalHeader()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
    horizontalHeader()->setHighlightSections(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setHighlightSections(false);
}

void ValuesTable::Show(const HistoryTableView::Content& content) {
    clear();
    setRowCount(static_cast<int>(content.rows.size()));
    setColumnCount(static_cast<int>(content.columns.size()));
    QStringList rows;
    for (const std::string& row : content.rows) rows.append(Shown(row));
    setVerticalHeaderLabels(rows);
    for (int i = 0; i < columnCount(); ++i) {
        const HistoryTableView::Column& column = content.columns[static_cast<std::size_t>(i)];
        auto* const heading = new QTableWidgetItem(Shown(column.name + ", " + column.unit));
        heading->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        setHorizontalHeaderItem(i, heading);
        const std::string* const texts[] = {&column.first, &column.second, &column.difference};
        for (int row = 0; row < rowCount(); ++row) {
            auto* const item = new QTableWidgetItem(Shown(*texts[row]));
            item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            setItem(row, i, item);
        }
    }
    AlignCells();
}

void ValuesTable::AlignCells() {
    QFont figures = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    figures.setPointSizeF(font().pointSizeF());
    const QFontMetrics metrics(figures);
    const QFontMetrics headings(horizontalHeader()->font());
    const int height = metrics.height() + kCellHeightPadding;
    for (int row = 0; row < rowCount(); ++row) setRowHeight(row, height);
    for (int i = 0; i < columnCount(); ++i) {
        int width = headings.horizontalAdvance(horizontalHeaderItem(i)->text());
        for (int row = 0; row < rowCount(); ++row) {
            QTableWidgetItem& cell = *item(row, i);
            cell.setFont(figures);
            cell.setForeground(row == 0 ? Theme::Current().text : Theme::Current().quiet);
            width = std::max(width, metrics.horizontalAdvance(cell.text()));
        }
        setColumnWidth(i, width + kCellWidthPadding);
    }
    horizontalHeader()->setFixedHeight(height);
    verticalHeader()->setFixedWidth(QFontMetrics(verticalHeader()->font()).horizontalAdvance("difference") +
                                    kCellWidthPadding);
    setFixedHeight((kMostRows + 1) * height + kScrollBarRoom);
}

}  // namespace sonavex::ui
