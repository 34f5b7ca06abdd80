#pragma once

#include <QMainWindow>
#include <QTimer>
#include <array>
#include <chrono>
#include <memory>
#include <utility>
#include <vector>

#include "core/shell/frmMain.h"
#include "ui/Binder.h"
#include "ui/Placement.h"
#include "ui/widgets/Theme.h"

namespace Ui {
class frmMain;
}

namespace sonavex::ui {

class HarmonicBar;

// The main window: binds the main form's controls to their widgets and shows the words that the core makes in
// addition to captions. It adds colours, sizes and shortcuts.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    // The form must outlive the window. simulatedName: name of the simulated card if it is in use, else
    // empty.
    MainWindow(frmMain& form, const QString& simulatedName);
    ~MainWindow() override;

    // Shows the window at the form's position, or centred if no screen shows that position.
    void ShowPlaced();
    // Call before the form's start: passes the size of the layout to the form.
    void ReportSize();

    // Passes what the user has typed to the form. Call before ending the program in another way than by
    // closing the window.
    void CompleteEntries() { binder_.CompleteEntries(); }

    // Shows changes by the core, above all readings of blocks, at most once in this time.
    void SetInterval(std::chrono::milliseconds interval) { binder_.SetInterval(interval); }

    const Binder& Bindings() const noexcept { return binder_; }

protected:
    // A dialog must not stay in front of readings that are not true any more.
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void BindControls();
    void ConnectConveniences();
    void Decorate();
    void DecorateStream();
    void DecoratePath();
    void DecorateMeter();
    void DecorateHarmonics();
    void DecorateGenerator();
    void ExplainReadings();
    void PaintOwnBackgrounds();
    void FixSizes();
    void TakeLayoutSize();

    frmMain& form_;
    QString simulatedName_;
    std::unique_ptr<Ui::frmMain> ui_;
    std::array<HarmonicBar*, 8> bars_{};
    std::vector<QPushButton*> presets_;
    std::vector<std::pair<QPushButton*, QString>> startTips_;  // usual tool tips of the start buttons
    Binder binder_;
    QTimer sweepWatch_;
    Placement placement_;
    ThemeChanges themeChanges_;
    bool stale_ = false;
};

}  // namespace sonavex::ui
