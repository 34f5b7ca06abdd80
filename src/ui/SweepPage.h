#pragma once

#include <QWidget>
#include <array>
#include <vector>

#include "core/precise/display/SweepPanel.h"
#include "ui/Binder.h"

class QBoxLayout;
class QFrame;
class QGridLayout;
class QProgressBar;

namespace sonavex::ui {

class ChipView;
class KeptRunsCard;
class ReadingRowView;
class RunView;
class SegmentedChoice;
class UnitEdit;

// The tab Sweep of the Analyzer. Its widgets have the names of their controls.
class SweepPage : public QWidget {
    Q_OBJECT

public:
    // All must outlive the page.
    SweepPage(SweepPanel& panel, Binder& binder, QWidget* parent);

    // Sets what depends on fonts and colours. Call after ApplyTheme.
    void Align();
    // Shows what depends on several controls. Call after each flush.
    void Decorate();

    QPushButton* Start = nullptr;
    QPushButton* Keep = nullptr;
    QPushButton* Export = nullptr;
    QPushButton* Copy = nullptr;
    RunView* View = nullptr;

private:
    QFrame* MakeCard(const QString& title, QBoxLayout& column);
    QWidget* MakeColumn(int width);
    void MakeSetup(QBoxLayout& column);
    void MakePoints(QGridLayout& grid);
    void MakeLimit(QBoxLayout& column);
    void MakeMiddle(QBoxLayout& column);
    void MakeLegend(QBoxLayout& column);
    void MakeProgress(QBoxLayout& column);
    void MakePoint(QBoxLayout& column);
    void MakeButtons(QBoxLayout& column);
    UnitEdit* AddEntry(QGridLayout& grid, const QString& caption, const char* name, TextBox& control);
    SegmentedChoice* AddChoice(QGridLayout& grid, const QString& caption, const char* name,
                               ComboBox& control);
    QLabel* AddLabel(QBoxLayout& layout, const char* name, const char* role, Label& control);

    SweepPanel& panel_;
    Binder& binder_;
    std::array<QCheckBox*, kRunSeriesCount> series_{};
    std::vector<ReadingRowView*> rows_;
    std::vector<QLabel*> optional_;  // hidden without a text
    QLabel* otherCaption_ = nullptr;
    std::vector<UnitEdit*> axisEntries_;
    UnitEdit* otherEntry_ = nullptr;
    ChipView* verdict_ = nullptr;
    KeptRunsCard* kept_ = nullptr;
    QPushButton* repeat_ = nullptr;
    QProgressBar* progress_ = nullptr;
};

}  // namespace sonavex::ui
