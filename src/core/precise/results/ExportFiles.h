#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "core/ports/MeasurementFiles.h"
#include "core/precise/results/ExportedMeasurement.h"

namespace sonavex {

enum class ExportKind {
    kPicture,       // PNG, as on the screen
    kLargePicture,  // PNG with twice the pixels
    kPdf,
    kReadingsCsv,
    kSpectrumCsv,
    kJson,
    kRecordWav,
    kResidualWav,
};

struct ExportFormat {
    ExportKind kind;
    const char* name;    // "Readings (CSV)"
    const char* suffix;  // ".csv"
};
// In the order in which they are offered.
std::span<const ExportFormat> ExportFormats();
const ExportFormat& FormatOf(ExportKind kind);

// What can be exported about a reading. Samples: full scale 1; empty where there are none.
struct ExportContent {
    ExportedMeasurement measurement;
    ExportedSpectrum spectrum;
    std::span<const double> record;
    std::span<const double> residual;
    // Draws the plot with these lines below it and returns the content of the file. Only for the kinds of
    // pictures.
    std::function<std::string(ExportKind kind, const std::vector<std::string>& conditions)> draw;
};

// A name without a folder: "Sonavex 2026-11-22 17-05-00.csv".
std::string SuggestedName(const ExportedMeasurement& measurement, ExportKind kind);

// Replaces the file. Throws FileError, and then leaves an older file as it was.
void WriteExport(const MeasurementFiles& files, const std::string& path, ExportKind kind,
                 const ExportContent& content);

}  // namespace sonavex
