#pragma once

#include <QMainWindow>
#include <QTimer>
#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "core/shell/frmMain.h"
#include "ui/Binder.h"

namespace Ui {
class frmMain;
}

namespace sonavex::ui {

class HarmonicBar;

// The instrument's window: joins the main form's controls to their widgets and adds what only the eye
// needs. Decides nothing.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    // The form must outlive the window. simulatedName: name of the simulated card when it is in use, else
    // empty.
    MainWindow(frmMain& form, const QString& simulatedName);
    ~MainWindow() override;

    // Shows the window where the form's start has placed it; in the middle where no screen shows it.
    void ShowPlaced();
    // Asked before the form's start: the size that the layout comes to.
    void TellSize();

    const Binder& Bindings() const noexcept { return binder_; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void BindControls();
    void ConnectConveniences();
    void Decorate();
    void DecorateStream();
    void DecoratePath();
    void DecorateLock();
    void DecorateLevels();
    void DecorateHarmonics();
    void DecorateCycle();
    void DecorateGenerator();
    void ExplainReadings();
    void StandOnGrounds();
    void FixSizes();
    void TakeLayoutSize();
    bool OnAnyScreen() const;
    void KeepAboveTheScreensBottom();

    frmMain& form_;
    QString simulatedName_;
    std::unique_ptr<Ui::frmMain> ui_;
    std::array<HarmonicBar*, 8> bars_{};
    std::vector<QPushButton*> presets_;
    Binder binder_;
    QTimer sweepWatch_;
    // Where the window was put when it was shown, until the user moves it; no position of a window after.
    std::optional<QPoint> placedAt_;
    bool applyingTheme_ = false;
    bool stale_ = false;
};

}  // namespace sonavex::ui
