#include "ui/AnalyzerWindow.h"

#include <QApplication>
#include <QDropEvent>
#include <QHideEvent>
#include <QIcon>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QResizeEvent>
#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QTabBar>
#include <QUrl>
#include <algorithm>
#include <initializer_list>

#include "ui/HistoryPage.h"
#include "ui/SweepPage.h"
#include "ui/widgets/ChevronButton.h"
#include "ui/widgets/EntriesView.h"
#include "ui/widgets/ReadingRowView.h"
#include "ui/widgets/RunView.h"
#include "ui/widgets/Theme.h"
#include "ui/widgets/UnitChoice.h"
#include "ui_frmAnalyzer.h"

namespace sonavex::ui {
namespace {

// A smaller window is compact.
constexpr QSize kRoomy(1150, 760);
constexpr int kSideWidth = 272;
constexpr int kReadingsWidth = 304;
// Between a side column and the middle; the column's scroll bar is inside.
constexpr int kColumnGap = 12;
constexpr int kFieldPadding = 14;
// The picture is as wide as high; the rest is a gap before the text.
constexpr QSize kStartIcon(18, 12);

// Gives the cards of a column the same width. The column is wider by the gap, in which its scroll bar
// appears.
void FixColumn(QWidget& column, std::initializer_list<QWidget*> cards, int leastWidth) {
    int width = leastWidth;
    for (const QWidget* card : cards) width = std::max(width, card->minimumSizeHint().width());
    for (QWidget* card : cards) card->setFixedWidth(width);
    column.setFixedWidth(width + kColumnGap);
}

template <class Widget>
void FixHeights(QWidget& parent) {
    const int height = QFontMetrics(QApplication::font()).height() + kFieldPadding;
    for (Widget* field : parent.findChildren<Widget*>()) field->setFixedHeight(height);
}

void ShowRow(std::initializer_list<QWidget*> row, bool shown) {
    for (QWidget* widget : row) widget->setVisible(shown);
}

// A square while the stimulus plays, else a triangle.
QIcon StartIcon(bool playing, const QColor& ink, qreal pixelRatio) {
    QPixmap picture(kStartIcon * pixelRatio);
    picture.setDevicePixelRatio(pixelRatio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    if (playing)
        painter.drawRoundedRect(QRectF(1.0, 1.0, 10.0, 10.0), 1.5, 1.5);
    else
        painter.drawPolygon(QPolygonF({{2.0, 0.5}, {11.5, 6.0}, {2.0, 11.5}}));
    return picture;
}

// The dropped file; empty if there is none or more than one.
std::string DroppedFile(const QMimeData& data) {
    const QList<QUrl> urls = data.urls();
    return urls.size() == 1 && urls[0].isLocalFile() ? urls[0].toLocalFile().toStdString() : std::string();
}

}  // namespace

AnalyzerWindow::AnalyzerWindow(frmAnalyzer& form, HandlerGuard& guard)
    : ModelessDialog(form, guard, nullptr),
      form_(form),
      guard_(guard),
      ui_(std::make_unique<Ui::frmAnalyzer>()) {
    ui_->setupUi(this);
    setProperty("ownsDialogs", true);
    ui_->cmdStart->setIconSize(kStartIcon);
    MakeRows();
    MakeMenus();
    BindControls();
    MakeSweep();
    MakeHistory();
    // A file may be dropped anywhere; an entry would take its name as text.
    setAcceptDrops(true);
    for (QLineEdit* entry : findChildren<QLineEdit*>()) entry->setAcceptDrops(false);
    ConnectFiles();
    for (QPushButton* button : findChildren<QPushButton*>()) button->setAutoDefault(false);
    connect(ui_->cmdFoldWaves, &QPushButton::clicked, this, [this] {
        ShowWaves(!ui_->cmdFoldWaves->Open());
        if (!compact_) form_.StoreWavesFolded(!ui_->cmdFoldWaves->Open());
    });
    ConnectKeys();
    PaintOwnBackgrounds();
    Complete();
}

AnalyzerWindow::~AnalyzerWindow() {
    form_.AskForExport = {};
    form_.DrawPlot = {};
    form_.OnCopy = {};
    form_.ShowCalibrate = {};
    form_.Recording.AskForFile = {};
    form_.Sweep.AskForExport = {};
    form_.Sweep.DrawRun = {};
    form_.History.AskForExport = {};
    form_.ShowTab = {};
    form_.Sweep.Setup.AskForTable = {};
    form_.Sweep.Setup.AskForLine = {};
    form_.Stimulus.AskForTones = {};
}

void AnalyzerWindow::MakeMenus() {
    auto* const keep = new QMenu(ui_->keepMenu);
    keep->setToolTipsVisible(true);
    keepReference_ = keep->addAction(tr("Keep as &reference"));
    keepIdle_ = keep->addAction(tr("Keep as &idle"));
    keepReference_->setToolTip(tr("A reading of the output connected to the input"));
    keepIdle_->setToolTip(tr("A reading with the generator off"));
    storeReading_ = keep->addAction(tr("&Store in History"));
    storeReading_->setToolTip(tr("Stores the reading without keeping the trace"));
    storeReading_->setShortcut(QKeySequence::Save);
    addAction(storeReading_);
    // A note that is being typed is stored before the list changes.
    connect(storeReading_, &QAction::triggered, this, [this] {
        if (HistoryShown()) history_->View->setFocus();
    });
    ui_->keepMenu->setMenu(keep);

    auto& firstRow = *rows_[ReadingsPanel::kThdn];
    firstName_ = new ChevronButton(&firstRow);
    firstName_->setProperty("role", "flat");
    auto* const first = new QMenu(firstName_);
    chooseThdn_ = first->addAction(tr("THD+N, re fundamental"));
    chooseNotch_ = first->addAction(tr("THD+N (notch), re total"));
    firstName_->setMenu(first);
    firstName_->setToolTip(tr("The definition in the first line"));
    firstRow.SetNameWidget(*firstName_);
}

void AnalyzerWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!DroppedFile(*event->mimeData()).empty()) event->acceptProposedAction();
}

void AnalyzerWindow::dropEvent(QDropEvent* event) {
    const std::string file = DroppedFile(*event->mimeData());
    if (file.empty()) return;
    event->acceptProposedAction();
    Bindings().Handle([&] { form_.OpenRecording(file); });
}

void AnalyzerWindow::MakeRows() {
    for (std::size_t i = 0; i < form_.Readings.Rows.size(); ++i) {
        rows_.push_back(new ReadingRowView(i % 2 == 0, ui_->readingsCard));
        ui_->readingsCard->layout()->addWidget(rows_.back());
        if (i == ReadingsPanel::kNoise) ui_->readingsCard->layout()->addWidget(ui_->lblNoiseBand);
    }
}

// Widgets that change with every reading paint their own background, so that no card behind them is
// repainted.
void AnalyzerWindow::PaintOwnBackgrounds() {
    for (ReadingRowView* row : rows_)
        for (QLabel* label : {&row->Value(), &row->Spread()}) PaintOwnBackground(*label);
    for (QLabel* label : {static_cast<QLabel*>(ui_->lblThd), ui_->lblThdSpread, ui_->lblThdOther,
                          ui_->lblNoiseBand, ui_->lblAverages})
        PaintOwnBackground(*label);
    PaintOwnBackground(*ui_->Harmonics);
}

// A letter does not act while a field has the focus: the field then takes the key as text.
void AnalyzerWindow::ConnectKeys() {
    struct KeyOfButtons {
        QKeySequence key;
        QAbstractButton* spectrum;  // that it presses in this tab; null for none
        QAbstractButton* sweep;
        QAbstractButton* history;
    };
    const KeyOfButtons keys[] = {
        {Qt::Key_H, ui_->cmdHold, nullptr, nullptr},
        {Qt::Key_K, ui_->cmdKeep, sweep_->Keep, nullptr},
        {Qt::Key_F, ui_->cmdFit, nullptr, nullptr},
        {Qt::Key_R, ui_->cmdFoldWaves, nullptr, nullptr},
        {Qt::CTRL | Qt::Key_E, ui_->cmdExport, sweep_->Export, history_->Export},
        {Qt::CTRL | Qt::Key_O, ui_->cmdOpen, ui_->cmdOpen, ui_->cmdOpen},
        {QKeySequence::Copy, ui_->cmdCopy, sweep_->Copy, history_->Copy},
        {Qt::Key_F5, ui_->cmdStart, sweep_->Start, nullptr},
    };
    for (const KeyOfButtons& key : keys)
        connect(new QShortcut(key.key, this), &QShortcut::activated, this, [this, key] {
            QAbstractButton* const pressed = HistoryShown() ? key.history
                                             : SweepShown() ? key.sweep
                                                            : key.spectrum;
            if (pressed != nullptr) pressed->click();
        });
    for (int tab = 0; tab < ui_->Tabs->count(); ++tab)
        connect(new QShortcut(QKeySequence(Qt::CTRL | (Qt::Key_1 + tab)), this), &QShortcut::activated, this,
                [this, tab] { ui_->Tabs->setCurrentIndex(tab); });
    auto* const single = new QShortcut(Qt::Key_Space, ui_->Spectrum);
    single->setContext(Qt::WidgetShortcut);
    connect(single, &QShortcut::activated, ui_->cmdSingle, &QAbstractButton::click);
    OnSpectrumKey(Qt::Key_U, [this] { form_.Readings.ToggleUnit(); });
    OnSpectrumKey(Qt::Key_Plus, [this] { form_.Spectrum.UserZoomsAtCursor(1.0); });
    OnSpectrumKey(Qt::Key_Minus, [this] { form_.Spectrum.UserZoomsAtCursor(-1.0); });
    OnKey(QKeySequence::HelpContents, [this] {
        if (OnHelp) OnHelp(static_cast<frmAnalyzer::Tab>(ui_->Tabs->currentIndex()));
    });
}

bool AnalyzerWindow::SweepShown() const {
    return ui_->Tabs->currentWidget() == sweep_;
}

bool AnalyzerWindow::HistoryShown() const {
    return ui_->Tabs->currentWidget() == history_;
}

// The list also shows what other programs have stored since it was read.
void AnalyzerWindow::MakeHistory() {
    history_ = new HistoryPage(form_.History, Bindings(), ui_->Tabs);
    ui_->Tabs->addTab(history_, tr("&History"));
    connect(ui_->Tabs, &QTabWidget::currentChanged, this, [this] {
        if (!HistoryShown()) return;
        Bindings().Handle([this] { form_.History.Refresh(); });
        if (!ui_->Tabs->tabBar()->hasFocus()) history_->View->setFocus();
    });
    form_.ShowTab = [this](frmAnalyzer::Tab tab) { ui_->Tabs->setCurrentIndex(static_cast<int>(tab)); };
}

void AnalyzerWindow::MakeSweep() {
    sweep_ = new SweepPage(form_.Sweep, Bindings(), ui_->Tabs);
    ui_->Tabs->addTab(sweep_, tr("S&weep"));
    connect(sweep_->Export, &QPushButton::clicked, this,
            [this] { Bindings().Handle([this] { form_.Sweep.Export(); }); });
    connect(sweep_->Copy, &QPushButton::clicked, this, [this] {
        Bindings().Handle([this] {
            const std::string text = form_.Sweep.CopiedText();
            if (form_.OnCopy && !text.empty()) form_.OnCopy(text);
        });
    });
}

void AnalyzerWindow::OnKey(const QKeySequence& key, const std::function<void()>& handler) {
    connect(new QShortcut(key, this), &QShortcut::activated, this,
            [this, handler] { Bindings().Handle(handler); });
}

void AnalyzerWindow::OnSpectrumKey(const QKeySequence& key, const std::function<void()>& handler) {
    OnKey(key, [this, handler] {
        if (ui_->Tabs->currentIndex() == 0) handler();
    });
}

// Left column, plot, waveforms, right column, buttons.
void AnalyzerWindow::OrderTabs() {
    QWidget* const order[] = {ui_->cmbShape,     ui_->cmbPair,      ui_->txtFrequency,  ui_->txtFrequency2,
                              ui_->txtRatio,     ui_->txtTones,     ui_->cmdEditTones,  ui_->cmbNoise,
                              ui_->chkSnap,      ui_->txtLevel,     ui_->cmbLevelUnit,  ui_->cmdCalibrate,
                              ui_->cmbDither,    ui_->cmbSide,      ui_->cmdStart,      ui_->cmbLength,
                              ui_->txtAverages,  ui_->cmbBand,      ui_->cmbWeighting,  ui_->cmbChannel,
                              ui_->txtHarmonics, ui_->Spectrum,     ui_->cmdRemoveKept, ui_->cmbPlotUnit,
                              ui_->cmdFit,       ui_->cmdFoldWaves, ui_->cmbPeriods,    ui_->cmbThdUnit};
    QWidget* last = nullptr;
    const auto append = [&last](QWidget* next) {
        if (last != nullptr) setTabOrder(last, next);
        last = next;
    };
    const auto appendAll = [&append](QWidget* next) {
        const auto* const choice = qobject_cast<WaveChoice*>(next);
        if (choice == nullptr) return append(next);
        for (QAbstractButton* button : choice->Buttons()) append(button);
    };
    for (QWidget* next : order) appendAll(next);
    append(firstName_);
    for (const ReadingRowView* row : rows_) append(&row->Unit());
    QWidget* const buttons[] = {ui_->cmdOpen, ui_->cmdHold,     ui_->cmdSingle, ui_->cmdKeep,   ui_->keepMenu,
                                ui_->cmdLive, ui_->chkAveraged, ui_->sldBlock,  ui_->cmdExport, ui_->cmdCopy};
    for (QWidget* button : buttons) append(button);
}

void AnalyzerWindow::Align() {
    playing_.reset();  // the icon has the theme's colour
    sweep_->Align();
    history_->Align();
    AlignColumn({ui_->capFrequency, ui_->capPair, ui_->capFrequency2, ui_->capRatio, ui_->capTones,
                 ui_->capNoise, ui_->capLevel, ui_->capDither, ui_->capTo, ui_->capLength, ui_->capAverages,
                 ui_->capBand, ui_->capWeighting, ui_->capChannel, ui_->capHarmonics});
    FixHeights<QLineEdit>(*ui_->leftContents);
    FixHeights<QComboBox>(*ui_->leftContents);
    FixHeights<SegmentedChoice>(*ui_->leftContents);
    for (ReadingRowView* row : rows_) row->AlignColumns();
    for (QWidget* widget : findChildren<QWidget*>()) widget->ensurePolished();
    const QFontMetrics names = firstName_->fontMetrics();
    const int arrow = firstName_->sizeHint().width() - names.horizontalAdvance(firstName_->text());
    firstName_->setMinimumWidth(names.horizontalAdvance("THD+N (notch)") + arrow);
    FixColumn(*ui_->leftColumn, {ui_->stimulusCard, ui_->analysisCard}, kSideWidth);
    FixColumn(*ui_->rightColumn, {ui_->thdCard, ui_->readingsCard, ui_->harmonicsCard}, kReadingsWidth);
}

QSize AnalyzerWindow::FirstSize() const {
    const QSize stored(form_.StoredWidth(), form_.StoredHeight());
    return stored.boundedTo(screen()->availableSize()).expandedTo(minimumSize());
}

void AnalyzerWindow::hideEvent(QHideEvent* event) {
    ModelessDialog::hideEvent(event);
    if (!event->spontaneous()) form_.StoreSize(width(), height());
}

// The choices make their buttons when the form fills them.
void AnalyzerWindow::showEvent(QShowEvent* event) {
    ModelessDialog::showEvent(event);
    OrderTabs();
}

void AnalyzerWindow::resizeEvent(QResizeEvent* event) {
    ModelessDialog::resizeEvent(event);
    const bool compact = width() < kRoomy.width() || height() < kRoomy.height();
    if (compact == compact_) return;
    compact_ = compact;
    for (KeyButton* button : {ui_->cmdExport, ui_->cmdCopy, ui_->cmdFit}) button->ShowKeyCap(!compact);
    history_->ShowKeyCaps(!compact);
    ui_->noiseLegend->setVisible(!compact);
    ShowWaves(!compact && !form_.WavesFolded());
    Decorate();
}

void AnalyzerWindow::ShowWaves(bool open) {
    ui_->cmdFoldWaves->SetOpen(open);
    QWidget* const parts[] = {ui_->Waves,           ui_->swatchCaptured,   ui_->capCaptured,
                              ui_->swatchHarmonics, ui_->capHarmonicsOnly, ui_->capPeriods,
                              ui_->cmbPeriods};
    for (QWidget* part : parts) part->setVisible(open);
}

// A shape shows only its own entries.
void AnalyzerWindow::DecorateStimulus() {
    const StimulusPanel& stimulus = form_.Stimulus;
    const bool ownPair = stimulus.HasOwnPair();
    ShowRow({ui_->capPair, ui_->cmbPair}, stimulus.HasPair());
    ShowRow({ui_->capFrequency, ui_->txtFrequency},
            stimulus.HasFrequency() && (ownPair || !stimulus.HasPair()));
    ShowRow({ui_->capFrequency2, ui_->txtFrequency2, ui_->capRatio, ui_->txtRatio}, ownPair);
    ShowRow({ui_->capTones, ui_->txtTones, ui_->cmdEditTones}, stimulus.HasTones());
    ShowRow({ui_->capNoise, ui_->cmbNoise}, stimulus.HasNoise());
    ShowRow({ui_->chkSnap, ui_->lblPlayed}, !stimulus.HasNoise());
    DecorateStart();
    ui_->lblTrouble->setVisible(!form_.Stimulus.lblTrouble.Caption().empty());
}

void AnalyzerWindow::DecorateStart() {
    const bool playing = form_.Stimulus.shpPlaying.BackColor() == kLightGreen;
    if (playing == playing_) return;
    playing_ = playing;
    ui_->cmdStart->setIcon(StartIcon(playing, Theme::Current().onAccent, devicePixelRatio()));
}

void AnalyzerWindow::Decorate() {
    DecorateStimulus();
    sweep_->Decorate();
    history_->Decorate();
    SetQuietInk(*ui_->lblThdSpread, form_.Readings.lblThd.Quiet());
    ui_->note->setVisible(!form_.note.Caption().empty());
    // A quiet note is short and stays whole; the names of the devices give way.
    ui_->note->setMinimumWidth(form_.note.Emphasis() ? 0 : ui_->note->sizeHint().width());
    const bool recording = !form_.lblRecording.Caption().empty();
    ShowRow({ui_->lblRecordingCaption, ui_->lblRecording, ui_->recordingPane}, recording);
    ShowRow({ui_->lblInputCaption, ui_->lblInput, ui_->lblOutputCaption, ui_->lblOutput, ui_->livePane,
             ui_->cmdHold, ui_->cmdSingle},
            !recording);
    const bool kept = !form_.lblLegendKept.Caption().empty();
    ShowRow({ui_->swatchKept, ui_->lblLegendKept, ui_->cmdRemoveKept}, kept);
    const bool second = !form_.lblLegendKeptSecond.Caption().empty();
    ShowRow({ui_->swatchKeptSecond, ui_->lblLegendKeptSecond}, second);
    // A compact legend has no room for three names; the live trace has the same colour everywhere.
    ShowRow({ui_->swatchLive}, !(compact_ && second));
    ShowRow({ui_->lblLegendLive}, !compact_);
    ShowRow({ui_->lblLegendSide}, compact_ && !second);
}

void AnalyzerWindow::reject() {
    if (qobject_cast<QLineEdit*>(focusWidget()) != nullptr) {
        QWidget* const front = HistoryShown() ? static_cast<QWidget*>(history_->View)
                               : SweepShown() ? static_cast<QWidget*>(sweep_->View)
                                              : ui_->Spectrum;
        front->setFocus();
    } else if (SweepShown())
        Bindings().Handle([this] { form_.Sweep.Cancel(); });
}

}  // namespace sonavex::ui
