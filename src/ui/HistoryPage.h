#pragma once

#include <QWidget>
#include <vector>

#include "core/history/display/HistoryPanel.h"
#include "ui/Binder.h"

class QBoxLayout;
class QGridLayout;

namespace sonavex::ui {

class EntriesView;
class KeyButton;
class ValuesTable;

// The tab History of the Analyzer.
class HistoryPage : public QWidget {
    Q_OBJECT

public:
    // All must outlive the page.
    HistoryPage(HistoryPanel& panel, Binder& binder, QWidget* parent);

    // Sets what depends on fonts and colours. Call after ApplyTheme.
    void Align();
    // Shows what depends on several controls. Call after each flush.
    void Decorate();
    void ShowKeyCaps(bool shown);

    EntriesView* View = nullptr;
    QPushButton* Copy = nullptr;
    QPushButton* Export = nullptr;

private:
    void MakeFilters(QBoxLayout& column);
    void MakeList(QBoxLayout& column);
    void MakeCard(QBoxLayout& column);
    void MakeButtons(QBoxLayout& column);
    KeyButton* AddButton(QBoxLayout& row, const char* name, const char* cap, CommandButton& control);
    QLabel* AddLabel(QBoxLayout& layout, const char* name, const char* role, Label& control);
    void AddCondition(QGridLayout& grid, const QString& caption, const char* name, Label& control);

    HistoryPanel& panel_;
    Binder& binder_;
    std::vector<QLabel*> optional_;  // hidden without a text
    std::vector<KeyButton*> buttons_;
    ValuesTable* values_ = nullptr;
};

}  // namespace sonavex::ui
