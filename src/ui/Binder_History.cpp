#include "core/history/display/HistoryList.h"
#include "ui/Binder.h"
#include "ui/widgets/EntriesView.h"
#include "ui/widgets/ValuesTable.h"

namespace sonavex::ui {

void Binder::Bind(EntriesView& widget, HistoryList& control) {
    Add(widget, control, [&widget, &control] { widget.Show(control); });
    connect(&widget, &EntriesView::Selected, this, [this, &control](const std::vector<std::string>& ids) {
        Handle([&] { control.UserSelects(ids); });
    });
    connect(&widget, &EntriesView::NoteEdited, this,
            [this, &control](const std::string& id, const std::string& note) {
                Handle([&] { control.UserEditsNote(id, note); });
            });
}

void Binder::Bind(ValuesTable& widget, HistoryTableView& control) {
    Add(widget, control, [&widget, &control] { widget.Show(control.Shown()); });
}

}  // namespace sonavex::ui
