#include "app/measure/Options.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "app/measure/MeasureError.h"
#include "core/settings/SampleRates.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {
namespace {

constexpr std::int32_t kLowestLevel = -9600;
constexpr double kLongestRunSeconds = 1e6;

std::string RateList() {
    std::string list;
    for (const std::int32_t rate : SampleRateTable) list += (list.empty() ? "" : ", ") + CStr(rate);
    return list;
}

void AddMeterOptions(CLI::App& command, MeterOptions& options) {
    command
        .add_option("--tone", options.tones,
                    "WAVE:HZ[:ENDHZ:MS[:loop]], sine, square, triangle or sawtooth; repeat for several")
        ->allow_extra_args(false);
    command.add_option("--frequency", options.frequencyHz, "Fundamental in Hz instead of the automatic one");
    command.add_flag("--no-mute", options.noMute, "Send the filtered input on to the output");
    command.add_flag("--json", options.json, "One line of JSON for each update");
}

void AddRun(CLI::App& command, RunOptions& options) {
    command.add_option("--input", options.input, "Identifier of the capture device");
    command.add_option("--output", options.output, "Identifier of the playback device");
    command.add_option("--rate", options.rateHz, "Sampling rate in Hz: " + RateList());
    command
        .add_option("--level", options.levelHundredthsDb, "Output level in hundredths of a dB, -9600 to 0")
        ->capture_default_str();
    command
        .add_option("--seconds", options.seconds,
                    "Time from the start of playback; goes on until two updates are complete")
        ->capture_default_str();
    AddMeterOptions(command, options);
}

void AddFile(CLI::App& command, FileOptions& options) {
    command.add_option("recording", options.input, "Recording to measure, block by block")->required();
    command.add_option("--write", options.output, "Write the output blocks as 16-bit stereo WAV");
    command.add_option("--low-edge", options.lowEdgeHz, "Low edge of the band-pass in Hz, 25 or 20")
        ->capture_default_str();
    AddMeterOptions(command, options);
}

void CheckMeter(const MeterOptions& options) {
    if (options.frequencyHz &&
        !(*options.frequencyHz > 0.0 && *options.frequencyHz <= SampleRateTable[0] / 2.0))
        throw MeasureError("--frequency takes a frequency above 0 and up to 24000 Hz.");
}

void CheckRun(const RunOptions& options) {
    CheckMeter(options);
    if (options.rateHz && !SampleRateIndex(*options.rateHz))
        throw MeasureError("The sampling rate " + CStr(*options.rateHz) + " Hz is not one of " + RateList() +
                           ".");
    if (options.levelHundredthsDb < kLowestLevel || options.levelHundredthsDb > 0)
        throw MeasureError("--level takes -9600 to 0 hundredths of a dB.");
    if (!(options.seconds >= 0.0 && options.seconds <= kLongestRunSeconds))
        throw MeasureError("--seconds takes 0 to 1000000 seconds.");
}

void CheckFile(const FileOptions& options) {
    CheckMeter(options);
    if (options.lowEdgeHz != 25 && options.lowEdgeHz != 20)
        throw MeasureError("--low-edge takes 25 or 20 Hz.");
}

// One line, whatever the library says.
std::string OneLine(std::string text) {
    while (!text.empty() && text.back() == '\n') text.pop_back();
    for (char& c : text)
        if (c == '\n') c = ' ';
    return text;
}

}  // namespace

Options ParseOptions(int argc, const char* const* argv) {
    Options options;
    CLI::App app{"Measures total harmonic distortion with the computer's sound card.", "sonavex-measure"};
    app.set_version_flag("--version", "sonavex-measure " SONAVEX_VERSION);
    app.require_subcommand(1);
    auto* devices = app.add_subcommand("devices", "List the sound devices");
    devices->add_flag("--json", options.devicesJson, "As JSON");
    auto* run = app.add_subcommand("run", "Play tones, capture and print the readings");
    AddRun(*run, options.run);
    auto* file = app.add_subcommand("file", "Measure a recording");
    AddFile(*file, options.file);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        std::ostringstream out;
        app.exit(success, out, out);
        options.answer = out.str();
        return options;
    } catch (const CLI::ParseError& error) {
        throw MeasureError(OneLine(error.what()) + " (sonavex-measure --help explains the arguments)");
    }
    if (devices->parsed()) options.command = Options::Command::kDevices;
    if (run->parsed()) {
        options.command = Options::Command::kRun;
        CheckRun(options.run);
    }
    if (file->parsed()) {
        options.command = Options::Command::kFile;
        CheckFile(options.file);
    }
    return options;
}

}  // namespace sonavex::measure
