// Recordings with any content through the precise measurement with any options: a reading, a void one, or one
// line with the error.
//
// First byte: bits 0 and 1 select the mode, bit 2 the channel, bit 3 a table in place of JSON, bit 4 a narrow
// band, bit 5 a fundamental, bit 6 output files, bit 7 a long record. The second byte gives a number of
// blocks that are appended by repeating the end of the file. The third selects order and tones.

#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "core/ports/MeasurementFiles.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFile.h"
#include "fuzz/RecordingInput.h"
#include "support/ChildProcess.h"

namespace sonavex {
namespace {

using fuzz::Input;
using fuzz::Require;

constexpr unsigned kMostAppended = 64;

std::string AnyOutput(const char* name) {
    static const PrivateFolder kFolder;
    return kFolder.Path() / name;
}

measure::AnalyzeOptions AnyOptions(unsigned head, unsigned detail) {
    measure::AnalyzeOptions options;
    constexpr PreciseMode kModes[] = {PreciseMode::kTone, PreciseMode::kPair, PreciseMode::kMultitone,
                                      PreciseMode::kNoise};
    options.mode = kModes[head & 3U];
    options.channel = (head >> 2U) & 1U;
    options.json = (head & 8U) == 0;
    if ((head & 16U) != 0) {
        options.lowHz = 300.0;
        options.highHz = 3400.0;
    }
    if ((head & 32U) != 0 && options.mode == PreciseMode::kTone) options.fundamentalHz = 1000.0;
    if ((head & 64U) != 0) {
        options.residual = AnyOutput("residual.wav");
        options.spectrum = AnyOutput("spectrum.csv");
        options.savedReference = AnyOutput("reference.json");
    }
    options.length = (head & 128U) != 0 ? 16384 : 4096;
    options.highestOrder = 2 + static_cast<int>(detail % 64U);
    if (options.mode == PreciseMode::kMultitone || (detail & 64U) != 0)
        options.tonesHz = {300.0 + detail, 1500.0};
    if (options.mode != PreciseMode::kPair && options.mode != PreciseMode::kMultitone)
        options.tonesHz.clear();
    return options;
}

// A value is null only where it is not defined; a void reading has none.
void CheckReading(const std::string& line, int status) {
    const auto reading = nlohmann::json::parse(line, nullptr, false);
    Require(reading.is_object(), "a line of JSON", line);
    Require(reading.at("valid") == (status == measure::kMeasured), "the status says whether it is valid",
            line);
    Require(reading.at("valid") == reading.at("void").empty(), "a void reading has a cause", line);
    Require(reading.at("valid") == !reading.at("level_dbfs").is_null(), "a valid reading has a level", line);
    Require(reading.at("valid") == !reading.at("noise_dbfs").is_null(), "a valid reading has noise", line);
}

void Analyze(const measure::AnalyzeOptions& options) {
    const fuzz::CapturedStream out(std::cout);
    int status = 0;
    try {
        status = measure::AnalyzeFile(options);
    } catch (const measure::MeasureError& error) {
        Require(*error.what() != '\0', "a failure is explained");
        return;
    } catch (const FileError& error) {
        Require(*error.what() != '\0', "a failure of a file is explained");
        return;
    }
    Require(status == measure::kMeasured || status == measure::kVoid, "a documented status");
    const std::string text = out.Text();
    Require(!text.empty(), "a reading is printed");
    Require(text.find("nan") == std::string::npos && text.find("inf") == std::string::npos,
            "values are numbers", text);
    if (options.json) CheckReading(text, status);
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    fuzz::Input input(data, size);
    const unsigned head = input.Byte();
    const unsigned blocks = input.Byte() % kMostAppended;
    const unsigned detail = input.Byte();
    const fuzz::MemoryFile recording(fuzz::RecordingOf(input, blocks));
    measure::AnalyzeOptions options = AnyOptions(head, detail);
    options.input = recording.Path();
    Analyze(options);
    return 0;
}
