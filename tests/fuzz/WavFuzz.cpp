// Recordings with any content through the headless meter: valid readings, or one line with the error.
//
// First byte: bits 0 and 1 select tones, bit 2 an output file, bit 3 a table in place of JSON. The second
// byte gives a number of blocks that are appended by repeating the end of the file, so that a short input can
// be long enough to measure.

#include <cmath>
#include <filesystem>
#include <iostream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "core/ports/MeasurementFiles.h"
#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MemoryFile.h"
#include "fuzz/RecordingInput.h"
#include "support/ChildProcess.h"

namespace sonavex {
namespace {

using fuzz::Input;
using fuzz::MemoryFile;
using fuzz::Require;

constexpr unsigned kMostBlocks = 64;

void CheckJson(const std::string& output) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        const auto reading = nlohmann::json::parse(line, nullptr, false);
        Require(!reading.is_discarded() && reading.is_object(), "a line of JSON", line);
        for (const char* list : {"percent", "db"})
            for (const auto& caption : reading.at(list)) {
                const auto text = caption.get<std::string>();
                Require(text.empty() || text == "N/A" || std::isfinite(CDbl(text)), "a reading", line);
            }
    }
}

// One path for all inputs.
std::string OutputPath() {
    static const PrivateFolder kFolder;
    return kFolder.Path() / "output.wav";
}

// Requires whole blocks of 16-bit stereo after a header.
void CheckOutput(const std::filesystem::path& path) {
    constexpr std::uintmax_t kHeadBytes = 44;
    constexpr std::uintmax_t kOutputBlockBytes = 8192;
    const std::uintmax_t bytes = std::filesystem::file_size(path);
    Require(bytes >= kHeadBytes && (bytes - kHeadBytes) % kOutputBlockBytes == 0, "whole blocks are written");
    std::filesystem::remove(path);
}

void Measure(const measure::FileOptions& options) {
    const fuzz::CapturedStream out(std::cout);
    const fuzz::CapturedStream complaints(std::cerr);
    int status = 0;
    try {
        status = measure::MeasureFile(options);
    } catch (const measure::MeasureError& error) {
        Require(*error.what() != '\0', "a failure is explained");
        return;
    } catch (const FileError& error) {
        Require(*error.what() != '\0', "a failure of a file is explained");
        return;
    } catch (const RuntimeError& error) {
        Require(false, "no recording raises a run-time error", error.what());
    }
    Require(status == measure::kMeasured || status == measure::kNeverLocked, "a documented status");
    Require(status != measure::kMeasured || !out.Text().empty(), "a measurement is printed");
    Require(out.Text().find("nan") == std::string::npos && out.Text().find("inf") == std::string::npos,
            "readings are numbers", out.Text());
    if (options.json) CheckJson(out.Text());
    if (!options.output.empty()) CheckOutput(options.output);
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    fuzz::Input input(data, size);
    const unsigned head = input.Byte();
    const unsigned blocks = input.Byte() % kMostBlocks;
    const fuzz::MemoryFile recording(fuzz::RecordingOf(input, blocks));
    measure::FileOptions options;
    options.input = recording.Path();
    if ((head & 1U) != 0) options.tones = {"sine:440", "square:1000:1500:300:loop"};
    if ((head & 2U) != 0) options.frequency = "1000";
    if ((head & 4U) != 0) options.output = OutputPath();
    options.json = (head & 8U) == 0;
    options.noMute = (head & 16U) != 0;
    Measure(options);
    return 0;
}
