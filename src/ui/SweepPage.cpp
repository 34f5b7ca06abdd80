#include "ui/SweepPage.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QProgressBar>
#include <QScrollArea>
#include <QVBoxLayout>

#include "ui/KeptRunsCard.h"
#include "ui/widgets/ChipView.h"
#include "ui/widgets/ChoiceBox.h"
#include "ui/widgets/KeyButton.h"
#include "ui/widgets/ReadingRowView.h"
#include "ui/widgets/RunPainter.h"
#include "ui/widgets/RunView.h"
#include "ui/widgets/SegmentedChoice.h"
#include "ui/widgets/Theme.h"
#include "ui/widgets/TraceSwatch.h"
#include "ui/widgets/UnitChoice.h"
#include "ui/widgets/UnitEdit.h"

namespace sonavex::ui {
namespace {

constexpr int kSweepSideWidth = 272;
constexpr int kSweepPointWidth = 304;
constexpr int kSweepGap = 12;
constexpr int kSweepScrollRoom = 8;
constexpr int kPointsWidth = 48;
constexpr int kLegendColumns = 3;  // two rows, the verdict in the last place
constexpr QSize kSweepSwatch(20, 8);
constexpr std::array<const char*, kRunSeriesCount> kSeriesNames{"chkThd", "chkThdn", "chkSecond", "chkThird",
                                                                "chkLevel"};

QIcon SeriesIcon(RunSeries series, qreal pixelRatio) {
    QPixmap picture(kSweepSwatch * pixelRatio);
    picture.setDevicePixelRatio(pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setPen(RunPainter::LineOf(series));
    painter.drawLine(
        QLineF(0, kSweepSwatch.height() / 2.0, kSweepSwatch.width(), kSweepSwatch.height() / 2.0));
    return picture;
}

// Moves the second widget into the row of the first.
void JoinRows(QGridLayout& grid, QWidget& first, QWidget& second) {
    int row = 0;
    int column = 0;
    int rows = 0;
    int columns = 0;
    grid.getItemPosition(grid.indexOf(&first), &row, &column, &rows, &columns);
    auto* const joined = new QHBoxLayout;
    joined->setSpacing(6);
    for (QWidget* const widget : {&first, &second}) {
        grid.removeWidget(widget);
        joined->addWidget(widget);
    }
    grid.addLayout(joined, row, column);
}

}  // namespace

SweepPage::SweepPage(SweepPanel& panel, Binder& binder, QWidget* parent)
    : QWidget(parent), panel_(panel), binder_(binder) {
    setObjectName("sweepPage");
    setProperty("page", true);
    auto* const page = new QVBoxLayout(this);
    // The right column ends with the room of its scroll bar.
    page->setContentsMargins(20, 14, 20 - kSweepScrollRoom, 14);
    page->setSpacing(kSweepGap);
    auto* const columns = new QHBoxLayout;
    columns->setSpacing(kSweepGap);
    page->addLayout(columns, 1);

    QWidget* const left = MakeColumn(kSweepSideWidth);
    MakeSetup(static_cast<QBoxLayout&>(*left->layout()));
    MakeLimit(static_cast<QBoxLayout&>(*left->layout()));
    auto& conditions = static_cast<QBoxLayout&>(
        *MakeCard(tr("Measured as on Spectrum"), static_cast<QBoxLayout&>(*left->layout()))->layout());
    AddLabel(conditions, "lblConditions", "quiet", panel_.lblConditions);
    auto* const middle = new QVBoxLayout;
    middle->setSpacing(kSweepGap);
    MakeMiddle(*middle);
    QWidget* const right = MakeColumn(kSweepPointWidth);
    MakePoint(static_cast<QBoxLayout&>(*right->layout()));
    kept_ = new KeptRunsCard(panel_.Kept, binder_, this);
    static_cast<QBoxLayout&>(*right->layout()).addWidget(kept_);
    for (QWidget* const side : {left, right}) static_cast<QBoxLayout*>(side->layout())->addStretch(1);
    columns->addWidget(left->parentWidget()->parentWidget());
    columns->addLayout(middle, 1);
    columns->addWidget(right->parentWidget()->parentWidget());
    MakeButtons(*page);
}

// The contents of a column that scrolls.
QWidget* SweepPage::MakeColumn(int width) {
    auto* const area = new QScrollArea(this);
    area->setProperty("role", "column");
    area->setFrameShape(QFrame::NoFrame);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setFixedWidth(width + kSweepScrollRoom);
    auto* const contents = new QWidget;
    contents->setProperty("scrolled", true);
    auto* const layout = new QVBoxLayout(contents);
    layout->setContentsMargins(0, 0, kSweepScrollRoom, 0);
    layout->setSpacing(kSweepGap);
    area->setWidget(contents);
    return contents;
}

QFrame* SweepPage::MakeCard(const QString& title, QBoxLayout& column) {
    auto* const card = new QFrame(this);
    card->setProperty("card", true);
    auto* const layout = new QVBoxLayout(card);
    layout->setContentsMargins(14, 10, 14, 12);
    layout->setSpacing(6);
    if (!title.isEmpty()) {
        auto* const heading = new QLabel(title, card);
        heading->setProperty("role", "title");
        layout->addWidget(heading);
    }
    column.addWidget(card);
    return card;
}

QLabel* SweepPage::AddLabel(QBoxLayout& layout, const char* name, const char* role, Label& control) {
    auto* const label = new QLabel(this);
    label->setObjectName(name);
    if (*role != '\0') label->setProperty("role", role);
    // The name without its prefix: "Plan", "Reason".
    label->setAccessibleName(label->objectName().mid(3));
    label->setWordWrap(true);
    layout.addWidget(label);
    binder_.Bind(*label, control);
    return label;
}

UnitEdit* SweepPage::AddEntry(QGridLayout& grid, const QString& caption, const char* name, TextBox& control) {
    auto* const entry = new UnitEdit(this);
    auto* const label = new QLabel(caption, this);
    label->setBuddy(entry);
    entry->setObjectName(name);
    entry->setProperty("role", "value");
    entry->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    entry->setAccessibleName(QString(caption).remove('&'));
    const int row = grid.rowCount();
    grid.addWidget(label, row, 0);
    grid.addWidget(entry, row, 1);
    binder_.Bind(*entry, control);
    return entry;
}

SegmentedChoice* SweepPage::AddChoice(QGridLayout& grid, const QString& caption, const char* name,
                                      ComboBox& control) {
    auto* const choice = new SegmentedChoice(this);
    auto* const label = new QLabel(caption, this);
    label->setBuddy(choice);
    choice->setObjectName(name);
    choice->setAccessibleName(QString(caption).remove('&'));
    const int row = grid.rowCount();
    grid.addWidget(label, row, 0);
    grid.addWidget(choice, row, 1);
    binder_.Bind(*choice, control);
    return choice;
}

void SweepPage::MakeSetup(QBoxLayout& column) {
    auto& layout = static_cast<QBoxLayout&>(*MakeCard(tr("Sweep"), column)->layout());
    SweepSetup& setup = panel_.Setup;
    auto* const grid = new QGridLayout;
    grid->setHorizontalSpacing(10);
    grid->setVerticalSpacing(5);
    grid->setColumnStretch(1, 1);
    layout.addLayout(grid);
    AddChoice(*grid, tr("&Over"), "cmbOver", setup.cmbOver);
    axisEntries_ = {AddEntry(*grid, tr("S&tart"), "txtFrom", setup.txtFrom),
                    AddEntry(*grid, tr("Sto&p"), "txtTo", setup.txtTo)};
    MakePoints(*grid);
    otherEntry_ = AddEntry(*grid, tr("&Levels"), "txtOther", setup.txtOther);
    otherEntry_->setToolTip(tr("Several values are separated by commas"));
    otherCaption_ = qobject_cast<QLabel*>(grid->itemAtPosition(grid->rowCount() - 1, 0)->widget());
    UnitEdit* const level = AddEntry(*grid, tr("Settled"), "txtSettleLevel", setup.txtSettleLevel);
    UnitEdit* const thdn = AddEntry(*grid, "", "txtSettleThdn", setup.txtSettleThdn);
    level->setToolTip(tr("Two records agree when their levels differ by at most this much"));
    thdn->setToolTip(tr("Two records agree when their THD+N differs by at most this much"));
    thdn->setAccessibleName(tr("Settled, THD+N"));
    level->setAccessibleName(tr("Settled, level"));
    for (UnitEdit* const entry : {level, thdn}) entry->SetUnit("dB");
    JoinRows(*grid, *level, *thdn);
    delete grid->itemAtPosition(grid->rowCount() - 1, 0)->widget();  // the caption of the second entry
    auto* const preview = new QCheckBox(tr("Preview first"), this);
    preview->setObjectName("chkPreview");
    preview->setToolTip(tr("A sweep of 11 s shows response and harmonics before the points are measured"));
    layout.addWidget(preview);
    binder_.Bind(*preview, setup.chkPreview);
    AddLabel(layout, "lblPlan", "quiet", setup.lblPlan);
    Start = new QPushButton(this);
    Start->setObjectName("cmdSweep");
    Start->setProperty("role", "primary");
    Start->setMinimumHeight(36);
    layout.addWidget(Start);
    binder_.Bind(*Start, panel_.cmdStart);
    optional_.push_back(AddLabel(layout, "lblSweepTrouble", "trouble", panel_.lblTrouble));
}

// The number of points and what it counts, in one row.
void SweepPage::MakePoints(QGridLayout& grid) {
    UnitEdit* const amount = AddEntry(grid, tr("Po&ints"), "txtAmount", panel_.Setup.txtAmount);
    auto* const spacing = new ChoiceBox(this);
    spacing->setObjectName("cmbSpacing");
    spacing->setAccessibleName(tr("Spacing of the points"));
    binder_.Bind(static_cast<QComboBox&>(*spacing), panel_.Setup.cmbSpacing);
    amount->setFixedWidth(kPointsWidth);
    grid.addWidget(spacing, grid.rowCount(), 1);
    JoinRows(grid, *amount, *spacing);
}

void SweepPage::MakeLimit(QBoxLayout& column) {
    auto& layout = static_cast<QBoxLayout&>(*MakeCard(tr("Limit"), column)->layout());
    SweepSetup& setup = panel_.Setup;
    auto* const limited = new QCheckBox(tr("Limit line"), this);
    limited->setObjectName("chkLimit");
    layout.addWidget(limited);
    binder_.Bind(*limited, setup.chkLimit);
    auto* const grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    layout.addLayout(grid);
    AddChoice(*grid, tr("O&f"), "cmbLimitOf", setup.cmbLimitOf);
    AddEntry(*grid, tr("At &most"), "txtLimit", setup.txtLimit)->SetUnit("dB");
    optional_.push_back(AddLabel(layout, "lblLimit", "quiet", setup.lblLimit));
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    layout.addLayout(buttons);
    for (auto& [name, control] :
         {std::pair<const char*, CommandButton&>{"cmdEditLimit", setup.cmdEditLimit},
          std::pair<const char*, CommandButton&>{"cmdLoadLimit", setup.cmdLoadLimit}}) {
        auto* const button = new QPushButton(this);
        button->setObjectName(name);
        buttons->addWidget(button);
        binder_.Bind(*button, control);
    }
}

void SweepPage::MakeLegend(QBoxLayout& column) {
    auto* const legend = new QGridLayout;
    legend->setHorizontalSpacing(10);
    legend->setColumnStretch(kLegendColumns - 1, 1);
    for (std::size_t i = 0; i < series_.size(); ++i) {
        series_[i] = new QCheckBox(NameOf(static_cast<RunSeries>(i)), this);
        series_[i]->setObjectName(kSeriesNames[i]);
        series_[i]->setIconSize(kSweepSwatch);
        legend->addWidget(series_[i], static_cast<int>(i) / kLegendColumns,
                          static_cast<int>(i) % kLegendColumns);
        binder_.Bind(*series_[i], panel_.chkSeries[i]);
    }
    verdict_ = new ChipView(this);
    verdict_->setObjectName("Verdict");
    verdict_->setAccessibleName(tr("Verdict"));
    verdict_->SetFilled(true);
    legend->addWidget(verdict_, 1, kLegendColumns - 1, Qt::AlignRight);
    binder_.Bind(*verdict_, panel_.Verdict);
    column.addLayout(legend);
}

void SweepPage::MakeMiddle(QBoxLayout& column) {
    auto& plot = static_cast<QBoxLayout&>(*MakeCard("", column)->layout());
    column.setStretch(0, 1);
    MakeLegend(plot);
    View = new RunView(this);
    View->setObjectName("Run");
    plot.addWidget(View, 1);
    binder_.Bind(*View, panel_.Plot);
    MakeProgress(static_cast<QBoxLayout&>(*MakeCard("", column)->layout()));
}

void SweepPage::MakeProgress(QBoxLayout& column) {
    auto* const texts = new QHBoxLayout;
    column.addLayout(texts);
    AddLabel(*texts, "lblProgress", "", panel_.lblProgress)->setWordWrap(false);
    texts->addStretch(1);
    AddLabel(*texts, "lblLeft", "", panel_.lblLeft)->setWordWrap(false);
    repeat_ = new QPushButton(this);
    repeat_->setObjectName("cmdRepeat");
    texts->addWidget(repeat_);
    binder_.Bind(*repeat_, panel_.cmdRepeat);
    progress_ = new QProgressBar(this);
    progress_->setObjectName("prgRun");
    progress_->setTextVisible(false);
    progress_->setAccessibleName(tr("Progress"));
    column.addWidget(progress_);
    binder_.Bind(*progress_, panel_.prgRun);
}

void SweepPage::MakePoint(QBoxLayout& column) {
    auto& point = static_cast<QBoxLayout&>(*MakeCard(tr("Point"), column)->layout());
    AddLabel(point, "lblAt", "", panel_.lblAt);
    AddLabel(point, "lblPlayed", "quiet", panel_.lblPlayed)->setObjectName("lblPlayedPoint");
    for (std::size_t i = 0; i < panel_.Rows.size(); ++i) {
        rows_.push_back(new ReadingRowView(i % 2 == 0, this));
        point.addWidget(rows_.back());
        auto* const swatch = new TraceSwatch(rows_.back());
        swatch->SetPen([i] { return RunPainter::LineOf(static_cast<RunSeries>(i)); });
        rows_.back()->SetSwatch(*swatch);
        for (QWidget* cell :
             {static_cast<QWidget*>(&rows_[i]->Value()), static_cast<QWidget*>(&rows_[i]->Spread()),
              static_cast<QWidget*>(&rows_[i]->Unit())})
            cell->setAccessibleName(NameOf(static_cast<RunSeries>(i)));
        binder_.Bind(rows_[i]->Name(), panel_.Rows[i].name);
        binder_.Bind(rows_[i]->Value(), panel_.Rows[i].value);
        binder_.Bind(rows_[i]->Unit(), panel_.Rows[i].unit);
        binder_.Bind(rows_[i]->Spread(), panel_.Rows[i].spread);
    }
    optional_.push_back(AddLabel(point, "lblReason", "trouble", panel_.lblReason));
    auto& invalid = static_cast<QBoxLayout&>(*MakeCard(tr("Invalid points"), column)->layout());
    AddLabel(invalid, "lblInvalidCount", "quiet", panel_.lblInvalidCount);
    optional_.push_back(AddLabel(invalid, "lblInvalid", "", panel_.lblInvalid));
}

void SweepPage::MakeButtons(QBoxLayout& column) {
    auto* const row = new QHBoxLayout;
    row->setSpacing(8);
    row->setContentsMargins(0, 0, kSweepScrollRoom, 0);
    column.addLayout(row);
    auto* const keep = new KeyButton(this);
    keep->SetKeyCap("K");
    keep->setObjectName("cmdKeepRun");
    row->addWidget(keep);
    binder_.Bind(static_cast<QPushButton&>(*keep), panel_.cmdKeep);
    Keep = keep;
    auto* const clear = new QPushButton(this);
    clear->setObjectName("cmdClearRun");
    row->addWidget(clear);
    binder_.Bind(*clear, panel_.cmdClear);
    row->addStretch(1);
    auto* const print = new QPushButton(this);
    print->setObjectName("cmdPrintRun");
    row->addWidget(print);
    binder_.Bind(*print, panel_.cmdPrint);
    auto* const exported = new KeyButton(this);
    exported->SetKeyCap("Ctrl+E");
    auto* const copied = new KeyButton(this);
    copied->SetKeyCap("Ctrl+C");
    exported->setObjectName("cmdExportRun");
    copied->setObjectName("cmdCopyRun");
    exported->setText(tr("Export\u2026"));
    copied->setText(tr("Copy"));
    for (QPushButton* button : {static_cast<QPushButton*>(exported), static_cast<QPushButton*>(copied)})
        row->addWidget(button);
    Export = exported;
    Copy = copied;
}

void SweepPage::Align() {
    for (std::size_t i = 0; i < series_.size(); ++i)
        series_[i]->setIcon(SeriesIcon(static_cast<RunSeries>(i), devicePixelRatio()));
    for (ReadingRowView* row : rows_) row->AlignColumns();
}

void SweepPage::Decorate() {
    const SweepSetup& setup = panel_.Setup;
    for (UnitEdit* entry : axisEntries_) entry->SetUnit(setup.AxisUnit());
    otherEntry_->SetUnit(setup.OtherUnit());
    otherCaption_->setText(setup.OverFrequency() ? tr("&Levels") : tr("&Tones"));
    verdict_->setVisible(!panel_.Verdict.Text().empty());
    repeat_->setVisible(panel_.cmdRepeat.Enabled());
    progress_->setVisible(!panel_.cmdRepeat.Enabled());
    kept_->Decorate();
    for (QLabel* const label : optional_) label->setVisible(!label->text().isEmpty());
}

}  // namespace sonavex::ui
