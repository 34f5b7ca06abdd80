#include "ui/widgets/LengthChoice.h"

#include <QHeaderView>
#include <QStandardItemModel>
#include <QTreeView>
#include <algorithm>
#include <utility>

namespace sonavex::ui {
namespace {

constexpr int kLengthColumns = 4;
// A hidden column with the text of the closed list.
constexpr int kNameColumn = kLengthColumns;
constexpr int kColumnPadding = 24;

class LengthList : public QTreeView {
public:
    using QTreeView::QTreeView;

    int ColumnsWidth() const {
        int width = 0;
        for (int column = 0; column < kLengthColumns; ++column)
            width += std::max(sizeHintForColumn(column), header()->sectionSizeHint(column)) + kColumnPadding;
        return width;
    }
};

QStandardItem* RightAligned(const QString& text) {
    auto* const item = new QStandardItem(text);
    item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    item->setEditable(false);
    return item;
}

}  // namespace

LengthChoice::LengthChoice(QWidget* parent) : ChoiceBox(parent), list_(new QStandardItemModel(this)) {
    auto* const view = new LengthList(this);
    view->setRootIsDecorated(false);
    view->setItemsExpandable(false);
    view->setAllColumnsShowFocus(true);
    view->setUniformRowHeights(true);
    view->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    view->header()->setStretchLastSection(true);
    view->header()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setModel(list_);
    setView(view);
    setModelColumn(kNameColumn);
}

void LengthChoice::SetEntries(std::vector<Entry> entries) {
    if (entries == entries_) return;
    entries_ = std::move(entries);
    list_->clear();
    for (const Entry& entry : entries_)
        list_->appendRow({RightAligned(entry.points), RightAligned(entry.seconds), RightAligned(entry.binHz),
                          RightAligned(entry.lowestHz), RightAligned(entry.name)});
    list_->setHorizontalHeaderLabels({tr("points"), tr("seconds"), tr("Hz a bin"), tr("lowest, Hz")});
    setModelColumn(kNameColumn);
    static_cast<QTreeView*>(view())->setColumnHidden(kNameColumn, true);
}

void LengthChoice::showPopup() {
    view()->setMinimumWidth(static_cast<LengthList*>(view())->ColumnsWidth());
    ChoiceBox::showPopup();
    // Qt makes room for the rows alone.
    QWidget* const popup = view()->parentWidget();
    popup->resize(popup->width(), popup->height() + static_cast<QTreeView*>(view())->header()->height());
}

}  // namespace sonavex::ui
