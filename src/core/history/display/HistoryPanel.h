#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/history/History.h"
#include "core/history/display/HistoryList.h"
#include "core/plot/SpectrumTrace.h"
#include "core/ports/Dialogs.h"
#include "core/ports/MeasurementFiles.h"
#include "core/text/Dates.h"

namespace sonavex {

// The tab with stored readings and runs: list, filters, notes, comparison, export.
class HistoryPanel {
public:
    // All must outlive the panel, which handles the events of the history.
    struct Needs {
        sonavex::History& history;
        Dialogs& dialogs;
        const MeasurementFiles& files;
        std::function<DateTime()> now;
    };

    explicit HistoryPanel(const Needs& needs);
    ~HistoryPanel();
    HistoryPanel(const HistoryPanel&) = delete;
    HistoryPanel& operator=(const HistoryPanel&) = delete;

    // Reads the files again, with what other processes have stored, and renames the days. Call when the tab
    // is opened.
    void Refresh();

    // Stores an entry and returns its identifier. A failure is shown; the result is then empty.
    std::string Store(const HistoryEntry& entry, std::string_view details, const HistoryCurve& curve);
    // Changes the note of an entry. A failure is shown.
    void SetNote(const std::string& id, const std::string& note);
    bool Contains(const std::string& id) const { return needs_.history.Find(id) != nullptr; }
    // The selected entries as text; empty without one.
    std::string CopiedText() const;

    // Called when entries were read, stored, changed or deleted.
    std::function<void()> OnChanged;
    // Shows up to two traces in the plot of the spectrum; the newer reading is the first.
    std::function<void(std::vector<std::shared_ptr<const SpectrumTrace>> traces)> OnShowTraces;
    // Opens a stored run. details: what was stored about it.
    std::function<void(const std::string& details, const HistoryEntry& entry)> OnOpenRun;
    // Asks for the file of an export; empty if the user cancels.
    std::function<std::string()> AskForExport;
    std::function<void(const std::string& text)> OnCopy;

    TextBox txtSearch;
    ComboBox cmbStimuli;  // "All stimuli", then one of StimuliOf
    ComboBox cmbDevices;  // "All devices", then one of DevicesOf
    CheckBox chkValid;
    Label lblCount;    // "42 readings, 2 selected"
    Label lblTrouble;  // files that were skipped, or what could not be stored
    HistoryList List;
    Label lblEmpty;     // why the list is empty
    Label lblTitle;     // "Reading of 10:58:21"
    Label lblCompared;  // "compared with 10:51:17"
    Label lblAnalysis;
    Label lblBand;
    Label lblPath;
    Label lblStimulus;
    HistoryTableView Values;
    CommandButton cmdCompare;  // "Show as trace", "Compare as traces", "Open run"
    CommandButton cmdDelete;
    CommandButton cmdCopy;
    CommandButton cmdExport;

private:
    void HandleControls();
    void ShowFilters();
    void ShowList();
    void ShowSelection();
    void ShowCard();
    void ShowCount();
    void Try(const std::function<void()>& change);
    std::vector<const HistoryEntry*> SelectedEntries() const;
    std::vector<const HistoryEntry*> Shown() const;
    void Compare();
    void Delete();
    void Export();

    Needs needs_;
    bool deleting_ = false;  // several entries, which are shown once
};

}  // namespace sonavex
