#pragma once

#include <QAbstractTableModel>
#include <string>
#include <vector>

#include "core/history/display/HistoryList.h"

namespace sonavex::ui {

// The rows of the history's list for EntriesView.
class EntriesModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { kTime, kPath, kRate, kBits, kStimulus, kThd, kThdn, kState, kNote, kColumns };

    using QAbstractTableModel::QAbstractTableModel;

    const std::vector<HistoryList::Row>& Rows() const noexcept { return rows_; }
    void SetRows(std::vector<HistoryList::Row> rows);
    const HistoryList::Row& RowAt(const QModelIndex& index) const {
        return rows_[static_cast<std::size_t>(index.row())];
    }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

Q_SIGNALS:
    void NoteEdited(const std::string& id, const std::string& note);

private:
    std::vector<HistoryList::Row> rows_;
};

}  // namespace sonavex::ui
