#include "ui/KeptRunsCard.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "ui/widgets/ChipView.h"
#include "ui/widgets/RunPainter.h"
#include "ui/widgets/Theme.h"
#include "ui/widgets/TraceSwatch.h"

namespace sonavex::ui {

KeptRunsCard::KeptRunsCard(KeptRuns& runs, Binder& binder, QWidget* parent) : QFrame(parent), runs_(runs) {
    setProperty("card", true);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 10, 14, 12);
    layout->setSpacing(6);
    auto* const head = new QHBoxLayout;
    auto* const title = new QLabel(tr("Kept runs"), this);
    title->setProperty("role", "title");
    auto* const shown = new QLabel(tr("shown"), this);
    shown->setProperty("role", "quiet");
    head->addWidget(title);
    head->addStretch(1);
    head->addWidget(shown);
    layout->addLayout(head);
    none_ = new QLabel(tr("None. Keep run puts the present run here."), this);
    none_->setProperty("role", "quiet");
    none_->setWordWrap(true);
    layout->addWidget(none_);
    for (std::size_t i = 0; i < rows_.size(); ++i) layout->addWidget(rows_[i] = MakeRow(i, binder));
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    layout->addLayout(buttons);
    for (auto& [name, control] : {std::pair<const char*, CommandButton&>{"cmdRenameRun", runs.cmdRename},
                                  std::pair<const char*, CommandButton&>{"cmdRemoveRun", runs.cmdRemove}}) {
        auto* const button = new QPushButton(this);
        button->setObjectName(name);
        buttons->addWidget(button);
        binder.Bind(*button, control);
    }
}

QWidget* KeptRunsCard::MakeRow(std::size_t index, Binder& binder) {
    KeptRuns::Row& run = runs_.Rows[index];
    auto* const row = new QWidget(this);
    auto* const layout = new QGridLayout(row);
    layout->setContentsMargins(0, 2, 0, 4);
    layout->setHorizontalSpacing(6);
    layout->setVerticalSpacing(2);
    layout->setColumnStretch(2, 1);
    auto* const select = new QRadioButton(row);
    auto* const letter = new QLabel(row);
    auto* const name = new QLineEdit(row);
    names_[index] = name;
    auto* const conditions = new QLabel(row);
    auto* const shown = new QCheckBox(row);
    verdicts_[index] = new ChipView(row);
    swatches_[index] = new TraceSwatch(row);
    swatches_[index]->SetPen([] { return RunPainter::KeptLine(Theme::Current().text); });
    // Rows are selected one at a time by the form.
    select->setAutoExclusive(false);
    letter->setProperty("role", "strong");
    conditions->setProperty("role", "quiet");
    conditions->setWordWrap(true);
    const QString suffix = QString::number(index + 1);
    select->setObjectName("optKept" + suffix);
    name->setObjectName("txtKept" + suffix);
    shown->setObjectName("chkKept" + suffix);
    verdicts_[index]->setObjectName("KeptVerdict" + suffix);
    swatches_[index]->setObjectName("KeptSwatch" + suffix);
    select->setAccessibleName(tr("Select kept run"));
    letter->setAccessibleName(tr("Letter of the kept run"));
    name->setAccessibleName(tr("Name of the kept run"));
    shown->setAccessibleName(tr("Show the kept run in the plot"));
    conditions->setAccessibleName(tr("Devices of the kept run"));
    verdicts_[index]->setAccessibleName(tr("Verdict of the kept run"));
    layout->addWidget(select, 0, 0);
    layout->addWidget(letter, 0, 1);
    layout->addWidget(name, 0, 2, 1, 2);
    layout->addWidget(shown, 0, 4, Qt::AlignRight);
    layout->addWidget(swatches_[index], 1, 0, 1, 2, Qt::AlignRight | Qt::AlignVCenter);
    layout->addWidget(conditions, 1, 2);
    layout->addWidget(verdicts_[index], 1, 3, 1, 2, Qt::AlignRight | Qt::AlignVCenter);
    binder.Bind(*select, run.optSelect);
    binder.Bind(*letter, run.lblLetter);
    binder.Bind(*name, run.txtName);
    binder.Bind(*conditions, run.lblConditions);
    binder.Bind(*shown, run.chkShown);
    binder.Bind(*verdicts_[index], run.Verdict);
    return row;
}

void KeptRunsCard::Decorate() {
    none_->setVisible(runs_.Count() == 0);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        rows_[i]->setVisible(i < runs_.Count());
        verdicts_[i]->setVisible(!runs_.Rows[i].Verdict.Text().empty());
        swatches_[i]->setVisible(runs_.Rows[i].chkShown.Checked());
        names_[i]->setToolTip(QString::fromStdString(runs_.Rows[i].txtName.Text()));
        // A long name is shown from its beginning.
        if (!names_[i]->hasFocus()) names_[i]->setCursorPosition(0);
    }
}

}  // namespace sonavex::ui
