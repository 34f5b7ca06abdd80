#include "core/history/display/HistoryPanel.h"

#include <algorithm>
#include <utility>

#include "core/history/HistoryCurve.h"
#include "core/history/HistoryView.h"
#include "core/history/display/HistoryTexts.h"

namespace sonavex {
namespace {

constexpr std::size_t kMostCompared = 2;
constexpr std::size_t kClockStart = 11;  // of "2026-11-23 10:58:21"

std::string ClockOf(const HistoryEntry& entry) {
    return entry.time.size() > kClockStart ? entry.time.substr(kClockStart) : entry.time;
}

// The time, with the date if the other entry is of another day.
std::string ClockBeside(const HistoryEntry& entry, const HistoryEntry& other) {
    return entry.day == other.day ? ClockOf(entry) : entry.time;
}

std::string CountText(std::size_t count, const char* one, const char* many) {
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

// Keeps the chosen item; an item that is no longer offered becomes the first one.
void OfferItems(ComboBox& box, const char* all, std::vector<std::string> items) {
    const std::string chosen = box.Text();
    items.insert(items.begin(), all);
    if (box.Items() == items) return;
    const auto found = std::find(items.begin(), items.end(), chosen);
    const auto index = found == items.end() ? 0 : static_cast<std::int32_t>(found - items.begin());
    box.SetItems(std::move(items));
    box.SetListIndex(index);
}

// Empty for the first item, which means all.
std::string ChosenFilter(const ComboBox& box) {
    return box.ListIndex() > 0 ? box.Text() : std::string();
}

}  // namespace

HistoryPanel::HistoryPanel(const Needs& needs) : needs_(needs) {
    needs_.history.OnChange = [this] {
        if (deleting_) return;
        ShowFilters();
        ShowList();
        if (OnChanged) OnChanged();
    };
    needs_.history.OnTrouble = [this](const std::string& sentences) { lblTrouble.SetCaption(sentences); };
    cmdDelete.SetCaption("Delete");
    HandleControls();
    ShowFilters();
    ShowList();
}

HistoryPanel::~HistoryPanel() {
    needs_.history.OnChange = {};
    needs_.history.OnTrouble = {};
}

void HistoryPanel::HandleControls() {
    txtSearch.Change.Handle([this] { ShowList(); });
    cmbStimuli.Click.Handle([this] { ShowList(); });
    cmbDevices.Click.Handle([this] { ShowList(); });
    chkValid.Click.Handle([this] { ShowList(); });
    List.Click.Handle([this] { ShowSelection(); });
    List.NoteEdited.Handle([this] {
        const HistoryList::Edit edit = List.Edited();
        SetNote(edit.id, edit.note);
    });
    cmdCompare.Click.Handle([this] { Compare(); });
    cmdDelete.Click.Handle([this] { Delete(); });
    cmdExport.Click.Handle([this] { Export(); });
    cmdCopy.Click.Handle([this] {
        const std::string text = CopiedText();
        if (OnCopy && !text.empty()) OnCopy(text);
    });
}

void HistoryPanel::Refresh() {
    lblTrouble.SetCaption("");
    needs_.history.Load();
    ShowList();
}

// A failure stays on the screen until a change succeeds.
void HistoryPanel::Try(const std::function<void()>& change) {
    try {
        change();
        lblTrouble.SetCaption("");
    } catch (const FileError& error) {
        lblTrouble.SetCaption(error.what());
        ShowList();
    }
}

void HistoryPanel::SetNote(const std::string& id, const std::string& note) {
    Try([&] { needs_.history.SetNote(id, note); });
}

std::string HistoryPanel::Store(const HistoryEntry& entry, std::string_view details,
                                const HistoryCurve& curve) {
    try {
        return needs_.history.Add(entry, details, curve);
    } catch (const FileError& error) {
        lblTrouble.SetCaption(error.what());
        needs_.dialogs.Message(error.what(), MessageIcon::kCritical);
        return {};
    }
}

void HistoryPanel::ShowFilters() {
    OfferItems(cmbStimuli, "All stimuli", StimuliOf(needs_.history.Entries()));
    OfferItems(cmbDevices, "All devices", DevicesOf(needs_.history.Entries()));
}

std::vector<const HistoryEntry*> HistoryPanel::Shown() const {
    HistoryFilter filter;
    filter.text = txtSearch.Text();
    filter.stimulus = ChosenFilter(cmbStimuli);
    filter.device = ChosenFilter(cmbDevices);
    filter.validOnly = chkValid.Checked();
    return ShownEntries(needs_.history.Entries(), filter);
}

// Entries that are no longer shown are no longer selected: a command acts on what the user sees.
void HistoryPanel::ShowList() {
    const DateTime now = needs_.now();
    std::vector<HistoryList::Row> rows = RowsOf(Shown(), {now.year, now.month, now.day});
    std::vector<std::string> selected;
    for (const HistoryList::Row& row : rows)
        if (!row.id.empty() &&
            std::find(List.Selected().begin(), List.Selected().end(), row.id) != List.Selected().end())
            selected.push_back(row.id);
    if (!rows.empty())
        lblEmpty.SetCaption("");
    else if (needs_.history.Loading())
        lblEmpty.SetCaption("The history is being read.");
    else if (needs_.history.Entries().empty())
        lblEmpty.SetCaption("Nothing is stored yet. In the tab Spectrum, K or Ctrl+S stores the reading.");
    else
        lblEmpty.SetCaption("No entry matches search and filters.");
    List.SetRows(std::move(rows));
    List.SetSelected(std::move(selected));
    ShowSelection();
}

std::vector<const HistoryEntry*> HistoryPanel::SelectedEntries() const {
    std::vector<const HistoryEntry*> entries;
    for (const std::string& id : List.Selected())
        if (const HistoryEntry* const entry = needs_.history.Find(id)) entries.push_back(entry);
    return entries;
}

void HistoryPanel::ShowSelection() {
    const std::vector<const HistoryEntry*> selected = SelectedEntries();
    const bool comparable = !selected.empty() && selected.size() <= kMostCompared;
    const bool runs = comparable && selected.front()->kind == HistoryKind::kRun;
    const bool alike = comparable && selected.back()->kind == selected.front()->kind;
    const bool one = selected.size() == 1;
    cmdCompare.SetCaption(runs ? (one ? "Open run" : "Open runs")
                               : (one ? "Show as trace" : "Compare as traces"));
    cmdCompare.SetEnabled(alike);
    cmdDelete.SetEnabled(!selected.empty());
    cmdCopy.SetEnabled(!selected.empty());
    cmdExport.SetEnabled(!List.Rows().empty());
    ShowCount();
    ShowCard();
}

void HistoryPanel::ShowCount() {
    const auto count = static_cast<std::size_t>(std::count_if(
        List.Rows().begin(), List.Rows().end(), [](const HistoryList::Row& row) { return !row.id.empty(); }));
    std::string text = CountText(count, "entry", "entries");
    if (!List.Selected().empty()) text += ", " + std::to_string(List.Selected().size()) + " selected";
    lblCount.SetCaption(text);
}

void HistoryPanel::ShowCard() {
    const std::vector<const HistoryEntry*> selected = SelectedEntries();
    HistoryConditions conditions;
    HistoryTableView::Content values;
    std::string title;
    std::string compared;
    if (!selected.empty() && selected.size() <= kMostCompared) {
        const HistoryEntry& first = *selected.front();
        title = (first.kind == HistoryKind::kRun ? "Run of " : "Reading of ") + first.time;
        try {
            const HistoryDetails details = needs_.history.Details(first.id).value_or(HistoryDetails());
            conditions = ConditionsOf(first, details.json);
            if (selected.size() == 1) {
                values = ShownValues(details.values);
            } else {
                compared = "compared with " + ClockBeside(*selected.back(), first);
                const auto other = needs_.history.Details(selected.back()->id).value_or(HistoryDetails());
                values = ComparedValues(details.values, other.values);
            }
        } catch (const FileError& error) {
            lblTrouble.SetCaption(error.what());
        }
    } else if (selected.size() > kMostCompared) {
        title = CountText(selected.size(), "entry selected", "entries selected");
    } else {
        title = "Nothing selected";
    }
    lblTitle.SetCaption(title);
    lblCompared.SetCaption(compared);
    lblAnalysis.SetCaption(conditions.analysis);
    lblBand.SetCaption(conditions.band);
    lblPath.SetCaption(conditions.path);
    lblStimulus.SetCaption(conditions.stimulus);
    Values.Show(std::move(values));
}

// Readings become traces of the plot. Runs are opened one after the other.
void HistoryPanel::Compare() {
    std::vector<std::shared_ptr<const SpectrumTrace>> traces;
    std::vector<std::pair<std::string, HistoryEntry>> runs;
    Try([&] {
        const std::vector<const HistoryEntry*> selected = SelectedEntries();
        for (const HistoryEntry* const entry : selected) {
            const auto details = needs_.history.Details(entry->id);
            if (!details) continue;
            if (entry->kind == HistoryKind::kRun) {
                runs.emplace_back(details->json, *entry);
                continue;
            }
            SpectrumTrace trace = TraceOf(details->curve, ClockBeside(*entry, *selected.front()));
            if (!trace.power.empty())
                traces.push_back(std::make_shared<const SpectrumTrace>(std::move(trace)));
        }
        if (runs.empty() && traces.size() < selected.size())
            throw FileError(traces.empty() ? "No curve is stored." : "Of one entry no curve is stored.");
    });
    if (!traces.empty() && OnShowTraces) OnShowTraces(std::move(traces));
    for (const auto& [details, entry] : runs)
        if (OnOpenRun) OnOpenRun(details, entry);
}

void HistoryPanel::Delete() {
    const std::vector<std::string> ids = List.Selected();
    if (ids.empty()) return;
    if (!needs_.dialogs.AskYesNo("Delete " + CountText(ids.size(), "entry", "entries") +
                                 " from the history?\rA deletion cannot be undone."))
        return;
    deleting_ = true;
    Try([&] {
        for (const std::string& id : ids) needs_.history.Delete(id);
    });
    deleting_ = false;
    ShowFilters();
    ShowList();
}

std::string HistoryPanel::CopiedText() const {
    const std::vector<const HistoryEntry*> selected = SelectedEntries();
    return selected.empty() ? std::string() : TabbedText(selected);
}

// The rows of the moment of the click are exported, whatever is stored while the user chooses a file.
void HistoryPanel::Export() {
    try {
        const std::string csv = needs_.history.Csv(Shown());
        const std::string path = AskForExport ? AskForExport() : std::string();
        if (!path.empty()) needs_.files.WriteText(path, csv);
    } catch (const FileError& error) {
        needs_.dialogs.Message(error.what(), MessageIcon::kCritical);
    }
}

}  // namespace sonavex
