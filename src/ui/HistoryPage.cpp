#include "ui/HistoryPage.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QShortcut>
#include <QVBoxLayout>

#include "ui/widgets/ChoiceBox.h"
#include "ui/widgets/ElidedLabel.h"
#include "ui/widgets/EntriesView.h"
#include "ui/widgets/KeyButton.h"
#include "ui/widgets/ValuesTable.h"

namespace sonavex::ui {
namespace {

constexpr int kHistoryGap = 12;
constexpr int kSearchWidth = 280;
constexpr int kConditionsWidth = 320;

QVBoxLayout* AddCard(QBoxLayout& column, int stretch) {
    auto* const card = new QFrame;
    card->setProperty("card", true);
    auto* const layout = new QVBoxLayout(card);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->setSpacing(6);
    column.addWidget(card, stretch);
    return layout;
}

}  // namespace

HistoryPage::HistoryPage(HistoryPanel& panel, Binder& binder, QWidget* parent)
    : QWidget(parent), panel_(panel), binder_(binder) {
    setObjectName("historyPage");
    setProperty("page", true);
    auto* const page = new QVBoxLayout(this);
    page->setContentsMargins(20, 14, 20, 14);
    page->setSpacing(kHistoryGap);
    MakeFilters(*page);
    optional_.push_back(AddLabel(*page, "lblTroubleOfHistory", "trouble", panel_.lblTrouble));
    MakeList(*page);
    MakeCard(*page);
    MakeButtons(*page);
}

QLabel* HistoryPage::AddLabel(QBoxLayout& layout, const char* name, const char* role, Label& control) {
    auto* const label = new QLabel(this);
    label->setObjectName(name);
    if (*role != '\0') label->setProperty("role", role);
    // The name without its prefix: "Title".
    label->setAccessibleName(label->objectName().mid(3));
    label->setWordWrap(true);
    layout.addWidget(label);
    binder_.Bind(*label, control);
    return label;
}

void HistoryPage::MakeFilters(QBoxLayout& column) {
    auto* const row = new QHBoxLayout;
    row->setSpacing(kHistoryGap);
    column.addLayout(row);
    auto* const search = new QLineEdit(this);
    search->setObjectName("txtSearch");
    search->setPlaceholderText(tr("Find in devices, stimulus, notes"));
    search->setAccessibleName(tr("Find"));
    search->setClearButtonEnabled(true);
    search->setMaximumWidth(kSearchWidth);
    row->addWidget(search, 1);
    binder_.Bind(*search, panel_.txtSearch);
    // The list follows each letter, and the button that clears the text.
    connect(search, &QLineEdit::textChanged, this, [this](const QString& text) {
        binder_.Handle([&] {
            if (text.toStdString() != panel_.txtSearch.Text()) panel_.txtSearch.UserTypes(text.toStdString());
        });
    });
    struct Filter {
        const char* name;
        QString spoken;
        ComboBox& control;
    };
    for (const Filter& filter : {Filter{"cmbStimuli", tr("Stimulus"), panel_.cmbStimuli},
                                 Filter{"cmbDevices", tr("Device"), panel_.cmbDevices}}) {
        auto* const box = new ChoiceBox(this);
        box->setObjectName(filter.name);
        box->setAccessibleName(filter.spoken);
        box->setMinimumWidth(130);
        row->addWidget(box);
        binder_.Bind(static_cast<QComboBox&>(*box), filter.control);
    }
    auto* const valid = new QCheckBox(tr("&Valid only"), this);
    valid->setObjectName("chkValid");
    row->addWidget(valid);
    binder_.Bind(*valid, panel_.chkValid);
    row->addStretch(1);
    QLabel* const count = AddLabel(*row, "lblCount", "quiet", panel_.lblCount);
    count->setWordWrap(false);
    count->setAccessibleName(tr("Number of entries"));
}

void HistoryPage::MakeList(QBoxLayout& column) {
    QVBoxLayout& card = *AddCard(column, 1);
    optional_.push_back(AddLabel(card, "lblEmpty", "quiet", panel_.lblEmpty));
    optional_.back()->setAlignment(Qt::AlignCenter);
    View = new EntriesView(this);
    View->setObjectName("Entries");
    View->setAccessibleName(tr("Stored readings and runs"));
    card.addWidget(View, 1);
    binder_.Bind(*View, panel_.List);
    const auto onKey = [this](Qt::Key key, CommandButton& button) {
        auto* const shortcut = new QShortcut(key, View);
        shortcut->setContext(Qt::WidgetShortcut);
        connect(shortcut, &QShortcut::activated, this,
                [this, &button] { binder_.Handle([&button] { button.Press(); }); });
    };
    onKey(Qt::Key_Return, panel_.cmdCompare);
    onKey(Qt::Key_Enter, panel_.cmdCompare);
    onKey(Qt::Key_Delete, panel_.cmdDelete);
}

void HistoryPage::AddCondition(QGridLayout& grid, const QString& caption, const char* name, Label& control) {
    auto* const heading = new QLabel(caption, this);
    heading->setProperty("role", "quiet");
    auto* const text = new ElidedLabel(this);
    text->setObjectName(name);
    text->setAccessibleName(caption);
    const int row = grid.rowCount();
    grid.addWidget(heading, row, 0);
    grid.addWidget(text, row, 1);
    binder_.Bind(static_cast<QLabel&>(*text), control);
}

void HistoryPage::MakeCard(QBoxLayout& column) {
    QVBoxLayout& card = *AddCard(column, 0);
    card.setContentsMargins(14, 10, 14, 10);
    auto* const head = new QHBoxLayout;
    card.addLayout(head);
    AddLabel(*head, "lblTitle", "title", panel_.lblTitle)->setWordWrap(false);
    head->addStretch(1);
    AddLabel(*head, "lblCompared", "quiet", panel_.lblCompared)->setWordWrap(false);
    auto* const body = new QHBoxLayout;
    body->setSpacing(20);
    card.addLayout(body);
    auto* const conditions = new QWidget(this);
    conditions->setFixedWidth(kConditionsWidth);
    auto* const grid = new QGridLayout(conditions);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(1, 1);
    AddCondition(*grid, tr("Analysis"), "lblEntryAnalysis", panel_.lblAnalysis);
    AddCondition(*grid, tr("Band"), "lblEntryBand", panel_.lblBand);
    AddCondition(*grid, tr("Path"), "lblEntryPath", panel_.lblPath);
    AddCondition(*grid, tr("Stimulus"), "lblEntryStimulus", panel_.lblStimulus);
    body->addWidget(conditions);
    values_ = new ValuesTable(this);
    values_->setObjectName("Values");
    values_->setAccessibleName(tr("Values of the selected entries"));
    body->addWidget(values_, 1);
    binder_.Bind(*values_, panel_.Values);
}

KeyButton* HistoryPage::AddButton(QBoxLayout& row, const char* name, const char* cap,
                                  CommandButton& control) {
    auto* const button = new KeyButton(this);
    button->setObjectName(name);
    button->SetKeyCap(cap);
    row.addWidget(button);
    binder_.Bind(static_cast<QPushButton&>(*button), control);
    buttons_.push_back(button);
    return button;
}

void HistoryPage::MakeButtons(QBoxLayout& column) {
    auto* const row = new QHBoxLayout;
    row->setSpacing(8);
    column.addLayout(row);
    AddButton(*row, "cmdCompare", "Enter", panel_.cmdCompare);
    AddButton(*row, "cmdDelete", "Del", panel_.cmdDelete);
    row->addStretch(1);
    Copy = AddButton(*row, "cmdCopyEntries", "Ctrl+C", panel_.cmdCopy);
    Copy->setText(tr("Copy"));
    Export = AddButton(*row, "cmdExportEntries", "Ctrl+E", panel_.cmdExport);
    Export->setText(tr("Export CSV…"));
    Export->setProperty("role", "primary");
}

void HistoryPage::Align() {
    View->AlignColumns();
    values_->AlignCells();
}

void HistoryPage::Decorate() {
    for (QLabel* const label : optional_) label->setVisible(!label->text().isEmpty());
}

void HistoryPage::ShowKeyCaps(bool shown) {
    for (KeyButton* const button : buttons_) button->ShowKeyCap(shown);
}

}  // namespace sonavex::ui
