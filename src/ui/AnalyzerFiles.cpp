// The files, pictures and dialogs of the Analyzer's window.

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>

#include "ui/AnalyzerWindow.h"
#include "ui/CalibrateDialog.h"
#include "ui/PlotPicture.h"
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
    form_.Sweep.Setup.AskForTable = [this] { return AskForLimit(); };
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

std::string AnalyzerWindow::AskForRunFile() {
    QFileDialog dialog(this, tr("Export"), QString::fromStdString(folder_));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setNameFilters({tr("Run as CSV (*.csv)"), tr("Run as JSON lines (*.jsonl)")});
    dialog.setDefaultSuffix("csv");
    connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog](const QString& filter) {
        dialog.setDefaultSuffix(filter.contains("*.csv") ? "csv" : "jsonl");
    });
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
    // A file that cannot be read counts as an empty table, which is refused.
    const QByteArray text = file.open(QIODevice::ReadOnly) ? file.read(kMostLimitBytes) : QByteArray();
    return SweepSetup::NamedText{QFileInfo(file).fileName().toStdString(), text.toStdString()};
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
