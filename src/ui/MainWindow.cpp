#include "ui/MainWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QShortcut>
#include <QStyle>
#include <string_view>

#include "core/dsp/display/MeterDisplay.h"
#include "core/generator/GeneratorWords.h"
#include "ui/widgets/HarmonicBar.h"
#include "ui/widgets/HertzValidator.h"
#include "ui/widgets/ProgressValue.h"
#include "ui_frmMain.h"

namespace sonavex::ui {
namespace {

constexpr int kSweepWatchMs = 100;

// Keeps the layout unchanged while the widget is hidden.
void KeepPlace(QWidget& widget, bool keep = true) {
    QSizePolicy policy = widget.sizePolicy();
    policy.setRetainSizeWhenHidden(keep);
    widget.setSizePolicy(policy);
}

// The layout that contains the widget.
QLayout* LayoutOf(const QWidget& widget) {
    for (QLayout* layout : widget.parentWidget()->findChildren<QLayout*>())
        if (layout->indexOf(&widget) >= 0) return layout;
    return nullptr;
}

// Size of the widget with this text.
template <class Widget>
QSize SizeWith(Widget& widget, const QString& text) {
    const QString shown = widget.text();
    widget.setText(text);
    widget.ensurePolished();
    const QSize size = widget.sizeHint();
    widget.setText(shown);
    return size;
}

// Fixes the button's size for its widest text.
void FixSize(QPushButton& button, const QString& widest) {
    button.setMinimumSize(SizeWith(button, widest));
}

// Fixes the label's size for its widest text, so that a change of text causes no layout.
void FixSize(QLabel& label, const QString& widest) {
    label.setFixedSize(SizeWith(label, widest));
    if (QLayout* const layout = LayoutOf(label)) layout->setAlignment(&label, label.alignment());
}

QString WordText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

MainWindow::MainWindow(frmMain& form, const QString& simulatedName)
    : form_(form),
      simulatedName_(simulatedName),
      ui_(std::make_unique<Ui::frmMain>()),
      binder_(form.Guard, [this] { Decorate(); }),
      placement_(*this, form.Frame) {
    ui_->setupUi(this);
    for (std::size_t i = 0; i < bars_.size(); ++i)
        bars_[i] = findChild<HarmonicBar*>("bar_" + QString::number(i));
    ui_->simulatedNote->setVisible(!simulatedName.isEmpty());
    for (QWidget* note : {ui_->settlingNote, ui_->baselineNote}) KeepPlace(*note);
    for (QLabel* unit : {ui_->unitprgADC, ui_->unitprgDAC, ui_->unitThd}) KeepPlace(*unit);
    PaintOwnBackgrounds();
    ApplyTheme(*this);
    FixSizes();
    ExplainReadings();
    ui_->sldEndFreq->SetResetHz(20);
    ui_->txtFreq->setValidator(new HertzValidator(ui_->txtFreq));
    // A sweep changes no control, so its frequency is polled.
    sweepWatch_.setInterval(kSweepWatchMs);
    connect(&sweepWatch_, &QTimer::timeout, this, &MainWindow::DecorateGenerator);
    BindControls();
    ConnectConveniences();
    Decorate();
}

MainWindow::~MainWindow() = default;

void MainWindow::ExplainReadings() {
    ui_->LblLevel->setToolTip(
        tr("Largest sample of the input block in percent of full scale; Ovr: overload or no signal"));
    ui_->lblDACLevel->setToolTip(
        tr("Largest vector of the output block, without the generator, in percent of full scale"));
    for (std::size_t i = 0; i < bars_.size(); ++i) {
        const QString number = QString::number(i);
        const int order = static_cast<int>(i) + 2;
        findChild<QLabel*>("lbltest_" + number)
            ->setToolTip(tr("Harmonics 2 to %1 together, relative to fundamental plus harmonics").arg(order));
        for (QWidget* level :
             {static_cast<QWidget*>(findChild<QLabel*>("lblDb_" + number)), static_cast<QWidget*>(bars_[i])})
            level->setToolTip(tr("Level of harmonic %1 alone, relative to the fundamental").arg(order));
    }
}

// Widgets that change with every block paint their own background, so that nothing behind them is repainted.
void MainWindow::PaintOwnBackgrounds() {
    std::vector<QWidget*> readings{ui_->lblThd,    ui_->LblLevel,  ui_->lblDACLevel, ui_->adcWord,
                                   ui_->dacWord,   ui_->lockWord,  ui_->genLockWord, ui_->picLocked,
                                   ui_->GenLocked, ui_->cycleText, ui_->prgADC,      ui_->prgDAC};
    for (std::size_t i = 0; i < bars_.size(); ++i) {
        const QString number = QString::number(i);
        readings.push_back(bars_[i]);
        readings.push_back(findChild<QLabel*>("lbltest_" + number));
        readings.push_back(findChild<QLabel*>("lblDb_" + number));
    }
    for (QWidget* reading : readings) PaintOwnBackground(*reading);
}

void MainWindow::FixSizes() {
    for (QLabel* level : {ui_->LblLevel, ui_->lblDACLevel})
        FixSize(*level, WordText(meter_words::kLongestLevel));
    for (QLabel* word : {ui_->adcWord, ui_->dacWord}) FixSize(*word, WordText(meter_words::kNoSignal));
    for (QLabel* word : {ui_->lockWord, ui_->genLockWord}) FixSize(*word, WordText(meter_words::kNotLocked));
    FixSize(*ui_->cycleText, WordText(meter_words::kLongestCycle));
    FixSize(*ui_->runningWord, WordText(GeneratorWords::kLongestState));
    // Five digits and a margin.
    for (QLineEdit* box : {ui_->txtGenFreq, ui_->txtGenEndFreq, ui_->txtSweepTime})
        box->setMinimumWidth(box->fontMetrics().horizontalAdvance("00000000"));
    for (QPushButton* button : {ui_->startCurrentMeter, ui_->Command1})
        FixSize(*button, SignalControls::kStartCurrent);
    for (std::size_t i = 0; i < bars_.size(); ++i) {
        FixSize(*findChild<QLabel*>("lbltest_" + QString::number(i)), WordText(meter_words::kLongestPercent));
        FixSize(*findChild<QLabel*>("lblDb_" + QString::number(i)), WordText(meter_words::kLongestDb));
    }
}

void MainWindow::ConnectConveniences() {
    // A button drops its own shortcut when its caption changes.
    connect(new QShortcut(QKeySequence(Qt::Key_F5), this), &QShortcut::activated, ui_->Command1,
            &QPushButton::click);
    connect(new QShortcut(QKeySequence(Qt::Key_F6), this), &QShortcut::activated, ui_->cmdStartMemory,
            &QPushButton::click);
    for (QPushButton* button : {ui_->startCurrentMeter, ui_->Command1, ui_->cmdStartMemory})
        startTips_.emplace_back(button, button->toolTip());
    for (const int hertz : {20, 50, 100, 1000, 10000, 20000}) {
        auto* button = findChild<QPushButton*>("preset_" + QString::number(hertz));
        button->setProperty("hertz", hertz);
        button->setToolTip(tr("Start frequency %1 Hz").arg(hertz));
        presets_.push_back(button);
        connect(button, &QPushButton::clicked, this, [this, hertz] {
            ui_->sldStartFreq->SetHz(hertz);
            Q_EMIT ui_->sldStartFreq->HzMoved(ui_->sldStartFreq->Hz());
            Q_EMIT ui_->sldStartFreq->HzReleased();
        });
    }
}

// Polishes the widgets first, because the style changes their sizes.
void MainWindow::TakeLayoutSize() {
    ensurePolished();
    for (QWidget* widget : findChildren<QWidget*>()) {
        widget->ensurePolished();
        widget->updateGeometry();
    }
    resize(size().expandedTo(minimumSizeHint()));
}

void MainWindow::ReportSize() {
    TakeLayoutSize();
    placement_.ReportSize();
}

void MainWindow::ShowPlaced() {
    const QString caption = QString::fromStdString(form_.Frame.Caption());
    setWindowTitle(simulatedName_.isEmpty() ? caption : caption + QStringLiteral(" — ") + simulatedName_);
    placement_.Place();
    binder_.Flush();
    show();
}

bool MainWindow::event(QEvent* event) {
    if (event->type() == QEvent::WindowBlocked) binder_.FlushPending();
    return QMainWindow::event(event);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    // The form ends the program when its shutdown is complete.
    event->ignore();
    binder_.CompleteEntries();
    form_.Guard.Run([this] { form_.Unload(); });
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    themeChanges_.Handle(*event, [this] {
        ApplyTheme(*this);
        FixSizes();
    });
}

void MainWindow::Decorate() {
    DecorateStream();
    DecorateMeter();
    DecorateHarmonics();
    DecorateGenerator();
    ui_->baselineNote->setVisible(form_.Baseline.CapturedElsewhere());
}

// Stale figures look different from live ones. The reason takes the place of the settling note, which is not
// shown while measuring is stopped.
void MainWindow::DecorateStream() {
    const QString trouble = QString::fromStdString(form_.StreamTrouble.Caption());
    DecoratePath();
    for (QWidget* note : {static_cast<QWidget*>(ui_->streamNote), static_cast<QWidget*>(ui_->streamText)})
        note->setVisible(!trouble.isEmpty());
    ui_->streamNote->setToolTip(trouble);
    const bool stale = !trouble.isEmpty();
    if (stale == stale_) return;
    stale_ = stale;
    KeepPlace(*ui_->settlingNote, !stale);
    for (QLabel* figure : ui_->meterPage->findChildren<QLabel*>()) {
        if (!figure->objectName().startsWith("lbl") && !figure->objectName().startsWith("Lbl")) continue;
        figure->setProperty("stale", stale);
        figure->style()->unpolish(figure);
        figure->style()->polish(figure);
    }
}

void MainWindow::DecoratePath() {
    const QString notes = QString::fromStdString(form_.PathNote.Caption()).replace('\r', '\n');
    ui_->pathNote->setVisible(!notes.isEmpty());
    ui_->pathNote->setToolTip(tr("%1\n\nThe readings include the effect of this on the samples.").arg(notes));
    const CaptureStatistics counts = form_.Instrument.Engine.CaptureCounts();
    ui_->lblSampleRate->setToolTip(
        tr("Sampling rate of input and output\n%1 blocks measured, %2 lost, %3 dropped while a message was "
           "open\n"
           "%4 frames missing in the input\n%5 overruns, %6 underruns of the output")
            .arg(form_.Instrument.Engine.Blocks)
            .arg(counts.segmentsLost)
            .arg(form_.Instrument.Engine.DroppedNotifications)
            .arg(counts.framesMissing)
            .arg(form_.Instrument.Engine.Overruns)
            .arg(form_.Instrument.Engine.Underruns()));
}

void MainWindow::DecorateMeter() {
    const MeterDisplay& display = form_.Instrument.Meter.Display;
    const MeterView& view = display.View();
    for (QLabel* word : {ui_->lockWord, ui_->genLockWord}) word->setText(WordText(view.lockWord));
    for (QWidget* lamp : {ui_->picLocked, ui_->GenLocked})
        lamp->setAccessibleDescription(WordText(view.lockWord));
    ui_->adcWord->setText(WordText(view.inputWord));
    ui_->dacWord->setText(WordText(view.outputWord));
    ui_->unitprgADC->setVisible(view.inputInPercent);
    ui_->unitprgDAC->setVisible(view.outputInPercent);
    ui_->prgADC->SetSilent(view.noSignal);
    ui_->prgADC->setAccessibleDescription(WordText(display.SpokenInput()));
    ui_->prgDAC->setAccessibleDescription(WordText(display.SpokenOutput()));
    ShowProgress(*ui_->cycleBar, view.cycleBlocks);
}

void MainWindow::DecorateHarmonics() {
    const MeterView& view = form_.Instrument.Meter.Display.View();
    for (std::size_t i = 0; i < bars_.size(); ++i) {
        if (view.levelsDb[i])
            bars_[i]->SetLevelDb(*view.levelsDb[i]);
        else
            bars_[i]->Clear();
    }
    ui_->capTotalOf->setText(WordText(view.totalOf));
    ui_->unitThd->setVisible(view.totalInPercent);
    ui_->settlingNote->setVisible(view.settling);
}

void MainWindow::DecorateGenerator() {
    const SignalControls& signal = form_.GeneratorPanel.Controls;
    ui_->wavePicture->SetWave(signal.cmbType.ListIndex());
    ui_->wavePicture->SetSweep(signal.sldSweepTime.Value() != 0, signal.sldStartFreq.Value(),
                               signal.sldEndFreq.Value(), signal.chkLoop.Checked());
    ui_->memoryCount->setText(WordText(MemoryWords(form_.GeneratorPanel.MemoryControls.ToneList.Count())));
    ui_->capsldStartFreq->setEnabled(signal.sldStartFreq.Enabled());
    ui_->capsldEndFreq->setEnabled(signal.sldEndFreq.Enabled());
    ui_->capsldSweepTime->setEnabled(signal.sldSweepTime.Enabled());
    for (QPushButton* preset : presets_)
        preset->setEnabled(signal.sldStartFreq.Enabled() &&
                           preset->property("hertz").toInt() <= signal.sldStartFreq.Max());
    for (const auto& [button, tip] : startTips_)
        button->setToolTip(
            form_.GeneratorPanel.StimulusPlaying()
                ? tr("The generator cannot start while a stimulus of the precise measurement plays")
                : tip);
    const bool sweeps = form_.Instrument.HiTimer1.Enabled();
    const GeneratorWords words = GeneratorWords::Of(form_.Instrument.Meter.Generator, sweeps);
    ui_->runningWord->setText(WordText(words.state));
    ui_->runningDetail->setText(WordText(words.detail));
    if (!sweeps)
        sweepWatch_.stop();
    else if (!sweepWatch_.isActive())
        sweepWatch_.start();
}

}  // namespace sonavex::ui
