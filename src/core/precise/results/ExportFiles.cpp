#include "core/precise/results/ExportFiles.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sonavex {
namespace {

constexpr std::array kExportFormats{
    ExportFormat{ExportKind::kPicture, "Picture (PNG)", ".png"},
    ExportFormat{ExportKind::kLargePicture, "Picture, double size (PNG)", ".png"},
    ExportFormat{ExportKind::kPdf, "Drawing (PDF)", ".pdf"},
    ExportFormat{ExportKind::kReadingsCsv, "Readings (CSV)", ".csv"},
    ExportFormat{ExportKind::kSpectrumCsv, "Spectrum (CSV)", ".csv"},
    ExportFormat{ExportKind::kJson, "Readings and spectrum (JSON)", ".json"},
    ExportFormat{ExportKind::kRecordWav, "Record (WAV)", ".wav"},
    ExportFormat{ExportKind::kResidualWav, "Residual (WAV)", ".wav"},
};

void WriteWav(const MeasurementFiles& files, const std::string& path, const ExportContent& content,
              std::span<const double> samples) {
    if (samples.empty()) throw FileError("There are no samples to export: no record was measured.");
    std::string comment;
    for (const std::string& line : ConditionsOf(content.measurement)) comment += line + '\n';
    const auto rateHz = static_cast<std::int32_t>(std::lround(content.measurement.reading.rateHz));
    files.WriteFloatWav(path, samples, rateHz, comment);
}

std::string TextOfExport(ExportKind kind, const ExportContent& content) {
    if (kind == ExportKind::kReadingsCsv) return ReadingsCsv(content.measurement);
    if (kind == ExportKind::kJson) return ExportedJson(content.measurement, content.spectrum);
    const std::vector<std::string> conditions = ConditionsOf(content.measurement);
    if (kind == ExportKind::kSpectrumCsv) return SpectrumCsv(conditions, content.spectrum);
    return content.draw(kind, conditions);
}

}  // namespace

std::span<const ExportFormat> ExportFormats() {
    return kExportFormats;
}

const ExportFormat& FormatOf(ExportKind kind) {
    return *std::find_if(kExportFormats.begin(), kExportFormats.end(),
                         [kind](const ExportFormat& format) { return format.kind == kind; });
}

std::string SuggestedName(const ExportedMeasurement& measurement, ExportKind kind) {
    std::string name = "Sonavex " + measurement.time;
    std::replace(name.begin(), name.end(), ':', '-');
    return name + FormatOf(kind).suffix;
}

void WriteExport(const MeasurementFiles& files, const std::string& path, ExportKind kind,
                 const ExportContent& content) {
    if (kind == ExportKind::kRecordWav)
        WriteWav(files, path, content, content.record);
    else if (kind == ExportKind::kResidualWav)
        WriteWav(files, path, content, content.residual);
    else
        files.WriteText(path, TextOfExport(kind, content));
}

}  // namespace sonavex
