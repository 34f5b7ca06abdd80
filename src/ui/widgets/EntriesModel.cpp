#include "ui/widgets/EntriesModel.h"

#include <utility>

namespace sonavex::ui {
namespace {

constexpr Qt::Alignment kAtRight = Qt::AlignRight | Qt::AlignVCenter;
constexpr Qt::Alignment kAtLeft = Qt::AlignLeft | Qt::AlignVCenter;

const std::string& TextIn(const HistoryList::Row& row, int column) {
    if (!row.title.empty()) return row.title;
    const std::string* const texts[] = {&row.time, &row.path, &row.rate,      &row.bits, &row.stimulus,
                                        &row.thd,  &row.thdn, &row.stateText, &row.note};
    return *texts[column];
}

bool IsNumber(int column) {
    return column == EntriesModel::kRate || column == EntriesModel::kBits || column == EntriesModel::kThd ||
           column == EntriesModel::kThdn;
}

}  // namespace

void EntriesModel::SetRows(std::vector<HistoryList::Row> rows) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
}

int EntriesModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int EntriesModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

QVariant EntriesModel::data(const QModelIndex& index, int role) const {
    if (role == Qt::TextAlignmentRole) return QVariant(IsNumber(index.column()) ? kAtRight : kAtLeft);
    if (role != Qt::DisplayRole && role != Qt::EditRole && role != Qt::ToolTipRole) return {};
    return QString::fromStdString(TextIn(RowAt(index), index.column()));
}

QVariant EntriesModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    if (role == Qt::TextAlignmentRole) return QVariant(IsNumber(section) ? kAtRight : kAtLeft);
    if (role != Qt::DisplayRole) return {};
    const QString names[] = {tr("Time"),    tr("Input → output"), tr("Rate, Hz"), tr("Bits"), tr("Stimulus"),
                             tr("THD, dB"), tr("THD+N, dB"),      tr("State"),    tr("Notes")};
    return names[section];
}

Qt::ItemFlags EntriesModel::flags(const QModelIndex& index) const {
    if (!index.isValid() || !RowAt(index).title.empty()) return Qt::ItemIsEnabled;
    const Qt::ItemFlags usual = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    return index.column() == kNote ? usual | Qt::ItemIsEditable : usual;
}

// The form stores the note and then shows it in new rows, or shows why it could not be stored.
bool EntriesModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::EditRole || index.column() != kNote) return false;
    const HistoryList::Row& row = RowAt(index);
    const std::string note = value.toString().toStdString();
    if (note == row.note) return false;
    const std::string id = row.id;
    Q_EMIT NoteEdited(id, note);
    return true;
}

}  // namespace sonavex::ui
