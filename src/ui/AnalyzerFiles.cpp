// The files, pictures and dialogs of the Analyzer's window.

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QPlainTextEdit>
#include <QTimer>

#include "ui/AnalyzerWindow.h"
#include "ui/CalibrateDialog.h"
#include "ui/PlotPicture.h"
#include "ui/RunPicture.h"
#include "ui/widgets/TraceSwatch.h"
#include "ui_frmAnalyzer.h"

namespace sonavex::ui {
namespace {

// Also the formats that the library reads under other names.
constexpr const char* kRecordingFilter =
    "Recordings (*.wav *.flac *.aiff *.aif *.w64 *.rf64 *.caf *.au);;All files (*)";

constexpr qint64 kMostLimitBytes = 1 << 20;

QString FilterOf(const ExportFormat& format) {
    return QString("%1 (*%2)").arg(format.name, format.suffix);
}

}  // namespace

void AnalyzerWindow::ConnectFiles() {
    form_.Recording.AskForFile = [this] { return AskForRecording(); };
    form_.AskForExport = [this](const ExportedMeasurement& measurement) { return AskForExport(measurement); };
    form_.DrawPlot = [this](ExportKind kind, const std::vector<std::string>& conditions) {
        SpectrumView& view = *ui_->Spectrum;
        return PlotPicture(
            kind, view.size(), view.font(),
            [&view](QPaintDevice& device, const QSize& size, double scale) {
                view.PaintOn(device, size, scale);
            },
            Legend(), conditions);
    };
    form_.Sweep.AskForExport = [this] { return AskForRunFile(); };
    form_.Sweep.DrawRun = [](ExportKind kind, const MeasuredRun& run, const std::vector<std::string>& lines) {
        return RunPicture(kind, run, lines);
    };
    form_.History.AskForExport = [this] { return AskForHistoryFile(); };
    form_.Sweep.Setup.AskForTable = [this] { return AskForLimit(); };
    form_.Sweep.Setup.AskForLine = [this](const std::string& table) {
        return AskForLines(tr("Edit Limit Line"),
                           tr("Frequency in Hz and highest value in dB in each line,\n"
                              "or frequency, lowest and highest value:"),
                           table);
    };
    form_.Stimulus.AskForTones = [this](const std::string& tones) {
        return AskForLines(tr("Edit Tones"), tr("Frequency in Hz and level in dB of a tone in each line:"),
                           tones);
    };
    form_.OnCopy = [](const std::string& text) {
        QApplication::clipboard()->setText(QString::fromStdString(text));
    };
    form_.ShowCalibrate = [this](frmCalibrate& form) { CalibrateDialog(form, guard_).Run(); };
}

std::vector<PictureLegend> AnalyzerWindow::Legend() const {
    std::vector<PictureLegend> legend;
    const auto add = [&legend](const char* trace, const QString& name) {
        legend.push_back({TraceSwatch::PenOf(trace), name});
    };
    add("live", QString::fromStdString(form_.lblLegendLive.Caption()));
    const std::string& kept = form_.lblLegendKept.Caption();
    if (!kept.empty()) add("kept", QString::fromStdString(kept));
    const std::string& second = form_.lblLegendKeptSecond.Caption();
    if (!second.empty()) add("keptSecond", QString::fromStdString(second));
    if (form_.Spectrum.Shown().noisePerBinDbfs) add("noise", ui_->capNoisePerBin->text());
    return legend;
}

// A request to end the program closes the dialog; EndProgram is then thrown from here. The desktop's own file
// dialog runs loops that such a request cannot end.
void AnalyzerWindow::Wait(QDialog& dialog) {
    guard_.Ending().Wait([&] { dialog.exec(); }, [&] { FormDialog::CloseWithChildren(dialog); });
}

std::string AnalyzerWindow::AskForRecording() {
    QFileDialog dialog(this, tr("Open Recording"), QString::fromStdString(folder_), tr(kRecordingFilter));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    Wait(dialog);
    if (dialog.result() != QDialog::Accepted) return {};
    folder_ = dialog.directory().path().toStdString();
    return dialog.selectedFiles().value(0).toStdString();
}

std::optional<SweepPanel::ExportTarget> AnalyzerWindow::AskForRunFile() {
    struct RunFormat {
        SweepPanel::Format format;
        QString filter;
        const char* suffix;
    };
    using Format = SweepPanel::Format;
    const RunFormat formats[] = {{Format::kPicture, tr("Picture (*.png)"), "png"},
                                 {Format::kPdf, tr("Picture (*.pdf)"), "pdf"},
                                 {Format::kCsv, tr("Points as CSV (*.csv)"), "csv"},
                                 {Format::kLines, tr("Points as JSON lines (*.jsonl)"), "jsonl"},
                                 {Format::kRun, tr("Whole run as JSON (*.json)"), "json"}};
    QStringList filters;
    for (const RunFormat& format : formats) filters.append(format.filter);
    QFileDialog dialog(this, tr("Export"), QString::fromStdString(folder_));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setNameFilters(filters);
    const auto chosen = [&]() -> const RunFormat& {
        return formats[std::max<qsizetype>(filters.indexOf(dialog.selectedNameFilter()), 0)];
    };
    const auto follow = [&] { dialog.setDefaultSuffix(chosen().suffix); };
    connect(&dialog, &QFileDialog::filterSelected, &dialog, follow);
    follow();
    Wait(dialog);
    if (dialog.result() != QDialog::Accepted) return std::nullopt;
    folder_ = dialog.directory().path().toStdString();
    return SweepPanel::ExportTarget{dialog.selectedFiles().value(0).toStdString(), chosen().format};
}

std::string AnalyzerWindow::AskForHistoryFile() {
    QFileDialog dialog(this, tr("Export"), QString::fromStdString(folder_), tr("Entries as CSV (*.csv)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setDefaultSuffix("csv");
    dialog.selectFile("history.csv");
    Wait(dialog);
    if (dialog.result() != QDialog::Accepted) return {};
    folder_ = dialog.directory().path().toStdString();
    return dialog.selectedFiles().value(0).toStdString();
}

std::optional<SweepSetup::NamedText> AnalyzerWindow::AskForLimit() {
    QFileDialog dialog(this, tr("Load Limit"), QString::fromStdString(folder_),
                       tr("CSV tables (*.csv);;All files (*)"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    Wait(dialog);
    if (dialog.result() != QDialog::Accepted) return std::nullopt;
    folder_ = dialog.directory().path().toStdString();
    QFile file(dialog.selectedFiles().value(0));
    const std::string name = QFileInfo(file).fileName().toStdString();
    if (!file.open(QIODevice::ReadOnly)) throw RunError(name + " cannot be read.");
    const QByteArray text = file.read(kMostLimitBytes + 1);
    if (text.size() > kMostLimitBytes) throw RunError(name + " is too large for a limit table.");
    return SweepSetup::NamedText{name, text.toStdString()};
}

std::optional<std::string> AnalyzerWindow::AskForLines(const QString& title, const QString& meaning,
                                                       const std::string& lines) {
    QInputDialog dialog(this);
    dialog.setWindowTitle(title);
    dialog.setLabelText(meaning);
    dialog.setOption(QInputDialog::UsePlainTextEditForTextInput);
    dialog.setTextValue(QString::fromStdString(lines));
    // The dialog selects the whole text when it opens; the first key would erase the lines.
    QTimer::singleShot(0, &dialog, [&dialog] {
        if (auto* const text = dialog.findChild<QPlainTextEdit*>()) text->moveCursor(QTextCursor::Start);
    });
    Wait(dialog);
    if (dialog.result() != QDialog::Accepted) return std::nullopt;
    return dialog.textValue().toStdString();
}

std::optional<frmAnalyzer::ExportTarget> AnalyzerWindow::AskForExport(
    const ExportedMeasurement& measurement) {
    QStringList filters;
    for (const ExportFormat& format : ExportFormats()) filters.append(FilterOf(format));
    QFileDialog dialog(this, tr("Export"), QString::fromStdString(folder_));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setNameFilters(filters);
    const auto kind = [&] {
        const auto index = std::max<qsizetype>(filters.indexOf(dialog.selectedNameFilter()), 0);
        return ExportFormats()[static_cast<std::size_t>(index)].kind;
    };
    const auto follow = [&] {
        dialog.setDefaultSuffix(QString(FormatOf(kind()).suffix).mid(1));
        dialog.selectFile(QString::fromStdString(SuggestedName(measurement, kind())));
    };
    connect(&dialog, &QFileDialog::filterSelected, &dialog, follow);
    follow();
    Wait(dialog);
    if (dialog.result() != QDialog::Accepted) return std::nullopt;
    folder_ = dialog.directory().path().toStdString();
    return frmAnalyzer::ExportTarget{dialog.selectedFiles().value(0).toStdString(), kind()};
}

}  // namespace sonavex::ui
