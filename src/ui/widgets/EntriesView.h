#pragma once

#include <QTreeView>
#include <optional>
#include <string>
#include <vector>

#include "core/history/display/HistoryList.h"

namespace sonavex::ui {

class EntriesModel;

// The list of the history: titles of days and entries, of which any number can be selected. Notes are edited
// in place by F2 or a double click.
class EntriesView : public QTreeView {
    Q_OBJECT

public:
    explicit EntriesView(QWidget* parent = nullptr);

    // While a note is typed the list stays; the change is shown afterwards.
    void Show(const HistoryList& list);
    // Sets the widths of the columns, which depend on the font.
    void AlignColumns();

Q_SIGNALS:
    void Selected(const std::vector<std::string>& ids);
    void NoteEdited(const std::string& id, const std::string& note);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

private:
    struct Shown {
        std::vector<HistoryList::Row> rows;
        std::vector<std::string> selected;
    };
    void Show(const Shown& shown);
    void ShowRows(const std::vector<HistoryList::Row>& rows);
    void ShowSelection(const std::vector<std::string>& ids);
    std::vector<std::string> SelectedIds() const;

    EntriesModel* model_;
    bool showing_ = false;
    std::optional<Shown> postponed_;
};

}  // namespace sonavex::ui
