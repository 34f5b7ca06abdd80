#pragma once

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QObject>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTabWidget>
#include <QTimer>
#include <chrono>
#include <functional>
#include <vector>

#include "core/controls/Choices.h"
#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/OptionButton.h"
#include "core/report/HandlerGuard.h"
#include "ui/TextEntry.h"
#include "ui/widgets/FrequencySlider.h"
#include "ui/widgets/LevelBar.h"
#include "ui/widgets/LockLamp.h"
#include "ui/widgets/SpectrumView.h"
#include "ui/widgets/StateDot.h"
#include "ui/widgets/WaveChoice.h"
#include "ui/widgets/WaveView.h"

class QProgressBar;

namespace sonavex {
class HarmonicsTable;
class HistoryList;
class HistoryTableView;
class NoteLabel;
class ReadingLabel;
class RunPlot;
class StateChip;
struct LengthEntry;
}  // namespace sonavex

namespace sonavex::ui {

class ChevronButton;
class ChipView;
class ElidedLabel;
class EntriesView;
class HarmonicsView;
class LengthChoice;
class RunView;
class ValuesTable;

// Binds widgets to control values, one call per pair. Changes by the core are shown once per event. User
// input reaches the control's handler through the guard, after every pending text entry. A pair of types that
// do not match does not compile.
class Binder : public QObject {
    Q_OBJECT

public:
    // afterFlush runs after every flush, for decoration that depends on several controls.
    Binder(HandlerGuard& guard, std::function<void()> afterFlush, QObject* parent = nullptr);

    void Bind(QLabel& widget, Label& control);
    void Bind(QLineEdit& widget, TextBox& control);
    void Bind(QSlider& widget, Slider& control);
    void Bind(FrequencySlider& widget, Slider& control);
    void Bind(QCheckBox& widget, CheckBox& control);
    void Bind(QRadioButton& widget, OptionButton& control);
    void Bind(QPushButton& widget, CommandButton& control);
    void Bind(QAction& widget, MenuItem& control);
    void Bind(ChevronButton& widget, Label& control);
    void Bind(QTabWidget& widget, TabStrip& control);
    void Bind(QListWidget& widget, ListBox& control);
    void Bind(QComboBox& widget, ComboBox& control);
    void Bind(WaveChoice& widget, ComboBox& control);
    void Bind(LevelBar& widget, ProgressBar& control);
    void Bind(LockLamp& widget, Indicator& control);
    void Bind(StateDot& widget, Indicator& control);
    void Bind(SpectrumView& widget, SpectrumPlot& control);
    void Bind(WaveView& widget, WavePlot& control);
    void Bind(RunView& widget, RunPlot& control);
    void Bind(QLabel& widget, ReadingLabel& control);
    void Bind(ElidedLabel& widget, NoteLabel& control);
    void Bind(ChipView& widget, StateChip& control);
    void Bind(HarmonicsView& widget, HarmonicsTable& control);
    void Bind(EntriesView& widget, HistoryList& control);
    void Bind(ValuesTable& widget, HistoryTableView& control);
    void Bind(QProgressBar& widget, ProgressBar& control);
    // The entries' columns belong to the items of the control.
    void Bind(LengthChoice& widget, ComboBox& control, const std::vector<LengthEntry>& entries);

    // Changes by the core are shown at most once in this time, those by the user at once. Without it both are
    // shown at once.
    void SetInterval(std::chrono::milliseconds interval) { interval_ = interval; }

    // Passes what the user has typed to the controls. Runs before every user event of a bound widget.
    void CompleteEntries();
    // Runs a user event that reaches the form in another way than through a bound widget.
    void Handle(const std::function<void()>& handler);

    // Shows all changes. Runs automatically after each event; call it once after binding.
    void Flush();
    // Shows changes that wait for the end of the interval.
    void FlushPending() {
        if (timer_.isActive()) Flush();
    }

    struct Pair {
        QObject* widget;
        Control* control;
    };
    std::vector<Pair> Pairs() const;

private:
    struct Entry {
        QObject* widget;
        Control* control;
        std::function<void()> show;
        bool due = false;  // cleaned and not shown yet
    };

    void Add(QObject& widget, Control& control, std::function<void()> show);
    static void ShowLabel(QLabel& widget, const Label& control);
    void ShowEntriesBeforeSteps(NotchSlider& slider);
    void Schedule(std::chrono::milliseconds interval);

    HandlerGuard& guard_;
    std::function<void()> afterFlush_;
    std::vector<Entry> entries_;
    std::vector<TextEntry*> texts_;
    std::chrono::milliseconds interval_{0};
    QElapsedTimer sinceFlush_;
    QTimer timer_;
};

}  // namespace sonavex::ui
