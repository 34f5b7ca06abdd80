#include "ui/widgets/EntriesView.h"

#include <QFontDatabase>
#include <QHeaderView>
#include <QItemSelection>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <algorithm>
#include <unordered_set>
#include <utility>

#include "ui/widgets/ChipView.h"
#include "ui/widgets/EntriesModel.h"
#include "ui/widgets/Theme.h"

namespace sonavex::ui {
namespace {

constexpr int kRowPadding = 14;
constexpr int kRowGap = 3;  // between the grounds of two rows
constexpr int kCellPadding = 10;
constexpr int kShapeRoom = 20;
constexpr int kHeadingPadding = 12;

ChipView::Kind ShapeOf(HistoryState state) {
    switch (state) {
        case HistoryState::kUnsteady:
        case HistoryState::kNotComplete:
            return ChipView::Kind::kUnsteady;
        case HistoryState::kVoid:
        case HistoryState::kFail:
            return ChipView::Kind::kVoid;
        case HistoryState::kOverload:
            return ChipView::Kind::kOverload;
        case HistoryState::kDone:
            return ChipView::Kind::kOff;
        default:
            return ChipView::Kind::kValid;
    }
}

QColor StateColour(const HistoryList::Row& row) {
    const Theme& theme = Theme::Current();
    switch (row.state) {
        case HistoryState::kUnsteady:
        case HistoryState::kNotComplete:
            return theme.warning;
        case HistoryState::kVoid:
        case HistoryState::kFail:
        case HistoryState::kOverload:
            return theme.overload;
        case HistoryState::kDone:
            return theme.text;
        default:
            return row.reason.empty() ? theme.valid : theme.warning;
    }
}

bool HasFigures(int column) {
    return column == EntriesModel::kTime || column == EntriesModel::kRate || column == EntriesModel::kBits ||
           column == EntriesModel::kThd || column == EntriesModel::kThdn;
}

QFont CellFont(const QFont& base, const HistoryList::Row& row, int column) {
    QFont font = base;
    if (HasFigures(column)) {
        font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        font.setPointSizeF(base.pointSizeF());
    }
    font.setBold(column == EntriesModel::kState || (column == EntriesModel::kThd && !row.quiet));
    return font;
}

class EntryDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
        return {0, QFontMetrics(option.font).height() + kRowPadding + kRowGap};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const auto& model = static_cast<const EntriesModel&>(*index.model());
        const HistoryList::Row& row = model.RowAt(index);
        painter->save();
        if (row.title.empty())
            PaintEntry(*painter, option, index, row);
        else
            PaintTitle(*painter, option, row);
        painter->restore();
    }

private:
    static void PaintTitle(QPainter& painter, const QStyleOptionViewItem& option,
                           const HistoryList::Row& row) {
        const Theme& theme = Theme::Current();
        QFont font = option.font;
        font.setBold(true);
        const QString title = QString::fromStdString(row.title);
        const QRect text = option.rect.adjusted(kCellPadding, 0, -kCellPadding, 0);
        painter.setFont(font);
        painter.setPen(theme.quiet);
        painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter, title);
        const int from = text.left() + QFontMetrics(font).horizontalAdvance(title) + kCellPadding;
        painter.setPen(theme.border);
        painter.drawLine(from, text.center().y(), text.right(), text.center().y());
    }

    static QColor InkOf(const HistoryList::Row& row, int column, bool selected) {
        const Theme& theme = Theme::Current();
        if (selected) return theme.onAccent;
        if (column == EntriesModel::kState) return StateColour(row);
        const bool none = column == EntriesModel::kThdn && row.thdn == "none";
        if ((column == EntriesModel::kThd && row.quiet) || none) return theme.quiet;
        return theme.text;
    }

    static void PaintEntry(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                           const HistoryList::Row& row) {
        const Theme& theme = Theme::Current();
        const bool selected = option.state.testFlag(QStyle::State_Selected);
        const QRect ground = option.rect.adjusted(0, 0, 0, -kRowGap);
        painter.fillRect(ground, selected ? theme.accent : theme.stripe);
        const QColor ink = InkOf(row, index.column(), selected);
        QRect cell = ground.adjusted(kCellPadding, 0, -kCellPadding, 0);
        if (index.column() == EntriesModel::kState) {
            painter.save();
            painter.setRenderHint(QPainter::Antialiasing);
            painter.translate(cell.left() + 6, cell.center().y() + 1);
            ChipView::PaintShape(painter, ShapeOf(row.state), ink);
            painter.restore();
            cell.setLeft(cell.left() + kShapeRoom);
        }
        const QFont font = CellFont(option.font, row, index.column());
        painter.setFont(font);
        painter.setPen(ink);
        const auto alignment = index.data(Qt::TextAlignmentRole).value<Qt::Alignment>();
        painter.drawText(
            cell, static_cast<int>(alignment),
            QFontMetrics(font).elidedText(index.data().toString(), Qt::ElideRight, cell.width()));
        // The row with the keyboard's cursor.
        if (option.state.testFlag(QStyle::State_HasFocus)) {
            painter.setPen(QPen(selected ? theme.text : theme.accent, 1));
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(ground.adjusted(0, 0, -1, -1));
        }
    }
};

}  // namespace

EntriesView::EntriesView(QWidget* parent) : QTreeView(parent), model_(new EntriesModel(this)) {
    setModel(model_);
    setItemDelegate(new EntryDelegate(this));
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setIndentation(0);
    setFrameShape(QFrame::NoFrame);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    header()->setSectionsMovable(false);
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(QHeaderView::Fixed);
    header()->setHighlightSections(false);
    setTabKeyNavigation(false);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (!showing_) Q_EMIT Selected(SelectedIds());
    });
    // The form answers with new rows, which the editor must not see while it closes.
    connect(
        model_, &EntriesModel::NoteEdited, this,
        [this](const std::string& id, const std::string& note) { Q_EMIT NoteEdited(id, note); },
        Qt::QueuedConnection);
}

void EntriesView::Show(const HistoryList& list) {
    const Shown shown{list.Rows(), list.Selected()};
    if (state() == EditingState)
        postponed_ = shown;
    else
        Show(shown);
}

void EntriesView::Show(const Shown& shown) {
    const QScopedValueRollback showing(showing_, true);
    ShowRows(shown.rows);
    ShowSelection(shown.selected);
}

void EntriesView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    QTreeView::closeEditor(editor, hint);
    if (const std::optional<Shown> shown = std::exchange(postponed_, std::nullopt)) Show(*shown);
}

// The place in the list stays where it was.
void EntriesView::ShowRows(const std::vector<HistoryList::Row>& rows) {
    if (rows == model_->Rows()) return;
    const int scrolled = verticalScrollBar()->value();
    model_->SetRows(rows);
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (!rows[i].title.empty()) setFirstColumnSpanned(static_cast<int>(i), {}, true);
    verticalScrollBar()->setValue(scrolled);
}

void EntriesView::ShowSelection(const std::vector<std::string>& ids) {
    if (ids == SelectedIds()) return;
    const std::unordered_set<std::string> wanted(ids.begin(), ids.end());
    QItemSelection selection;
    for (int i = 0; i < model_->rowCount(); ++i) {
        const QModelIndex index = model_->index(i, 0);
        if (!wanted.contains(model_->RowAt(index).id)) continue;
        if (selection.isEmpty()) selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        selection.select(index, model_->index(i, EntriesModel::kColumns - 1));
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
}

std::vector<std::string> EntriesView::SelectedIds() const {
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    std::vector<std::string> ids;
    for (const QModelIndex& index : rows) ids.push_back(model_->RowAt(index).id);
    return ids;
}

// The texts share what the figures leave.
void EntriesView::AlignColumns() {
    constexpr double kPathShare = 0.27;
    constexpr double kStimulusShare = 0.26;
    constexpr double kStateShare = 0.25;
    QFont figures = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    figures.setPointSizeF(font().pointSizeF());
    figures.setBold(true);
    const QFontMetrics metrics(figures);
    const QFontMetrics headings(header()->font());
    int rest = viewport()->width();
    const auto fix = [&](int column, const char* widest) {
        const QString heading = model_->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        // The advance of a text is rounded down.
        const int width = std::max(metrics.horizontalAdvance(widest) + 1 + 2 * kCellPadding,
                                   headings.horizontalAdvance(heading) + 2 * kHeadingPadding);
        setColumnWidth(column, width);
        rest -= width;
    };
    fix(EntriesModel::kTime, "00:00:00");
    fix(EntriesModel::kRate, "192000");
    fix(EntriesModel::kBits, "24/16");
    fix(EntriesModel::kThd, "DFD -100.00");
    fix(EntriesModel::kThdn, "-100.00");
    const auto share = [&](int column, double part) {
        setColumnWidth(column, static_cast<int>(part * std::max(rest, 100)));
    };
    share(EntriesModel::kPath, kPathShare);
    share(EntriesModel::kStimulus, kStimulusShare);
    share(EntriesModel::kState, kStateShare);
    share(EntriesModel::kNote, 1 - kPathShare - kStimulusShare - kStateShare);
}

void EntriesView::resizeEvent(QResizeEvent* event) {
    QTreeView::resizeEvent(event);
    AlignColumns();
}

}  // namespace sonavex::ui
