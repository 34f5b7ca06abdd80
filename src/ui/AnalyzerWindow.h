#pragma once

#include <QKeySequence>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/precise/display/frmAnalyzer.h"
#include "ui/ModelessDialog.h"

namespace Ui {
class frmAnalyzer;
}

namespace sonavex::ui {

struct PictureLegend;
class ChevronButton;
class ReadingRowView;
class HistoryPage;
class SweepPage;

// The Analyzer: a second window with the spectrum, the waveform and the readings of the precise measurement.
// A small window folds the waveforms and shortens texts.
class AnalyzerWindow : public ModelessDialog {
    Q_OBJECT

public:
    // Both must outlive the window.
    AnalyzerWindow(frmAnalyzer& form, HandlerGuard& guard);
    ~AnalyzerWindow() override;

    // Shows the help page about the front tab.
    std::function<void(frmAnalyzer::Tab front)> OnHelp;

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    // Escape leaves an entry; it does not close the window.
    void reject() override;

private:
    void MakeRows();
    void MakeMenus();
    void PaintOwnBackgrounds();
    void ConnectFiles();
    std::vector<PictureLegend> Legend() const;
    std::string AskForRecording();
    std::optional<SweepPanel::ExportTarget> AskForRunFile();
    std::string AskForHistoryFile();
    std::optional<SweepSetup::NamedText> AskForLimit();
    std::optional<std::string> AskForLines(const QString& title, const QString& meaning,
                                           const std::string& lines);
    std::optional<frmAnalyzer::ExportTarget> AskForExport(const ExportedMeasurement& measurement);
    void Wait(QDialog& dialog);
    void BindControls();
    void BindPlots();
    void BindStimulus();
    void BindAnalysis();
    void BindReadings();
    void MakeSweep();
    void MakeHistory();
    void ConnectKeys();
    bool SweepShown() const;
    bool HistoryShown() const;
    void OnKey(const QKeySequence& key, const std::function<void()>& handler);
    void OnSpectrumKey(const QKeySequence& key, const std::function<void()>& handler);
    void OrderTabs();
    QSize FirstSize() const override;
    void Align() override;
    void Decorate() override;
    void DecorateStimulus();
    void DecorateStart();
    void ShowWaves(bool open);

    frmAnalyzer& form_;
    HandlerGuard& guard_;
    std::unique_ptr<Ui::frmAnalyzer> ui_;
    std::vector<ReadingRowView*> rows_;
    SweepPage* sweep_ = nullptr;
    HistoryPage* history_ = nullptr;
    QAction* keepReference_ = nullptr;
    QAction* keepIdle_ = nullptr;
    QAction* storeReading_ = nullptr;
    ChevronButton* firstName_ = nullptr;  // of the first line below THD
    QAction* chooseThdn_ = nullptr;
    QAction* chooseNotch_ = nullptr;
    std::string folder_;  // of the last file that the user chose
    bool compact_ = false;
    std::optional<bool> playing_;  // as the start button shows
};

}  // namespace sonavex::ui
