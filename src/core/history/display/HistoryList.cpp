#include "core/history/display/HistoryList.h"

#include <set>

namespace sonavex {

void HistoryList::UserSelects(const std::vector<std::string>& ids) {
    const std::set<std::string> wanted(ids.begin(), ids.end());
    std::vector<std::string> selected;
    for (const Row& row : rows_)
        if (!row.id.empty() && wanted.contains(row.id)) selected.push_back(row.id);
    SetSelected(std::move(selected));
    Click.Raise();
}

}  // namespace sonavex
