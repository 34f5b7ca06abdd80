#include "app/measure/Options.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "core/generator/SignalControls.h"
#include "core/settings/SampleRates.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {
namespace {

constexpr double kLongestRunSeconds = 1e6;
constexpr const char* kSeeHelp = " (sonavex-measure --help explains the arguments).";

std::string AllRates() {
    std::string list;
    for (const std::int32_t rate : SampleRateTable) list += (list.empty() ? "" : ", ") + CStr(rate);
    for (const std::int32_t rate : kExtendedRates) list += ", " + CStr(rate);
    return list;
}

// Refuses the value of an option; `takes` describes the allowed values.
[[noreturn]] void Refuse(const std::string& option, const std::string& takes, const std::string& text) {
    throw MeasureError(option + " takes " + takes + ", not '" + text + "'.");
}

struct Range {
    double lowest;
    double highest;
};

double NumberOf(const std::string& option, const std::string& takes, Range range, const std::string& text) {
    if (!IsNumeric(text)) Refuse(option, takes, text);
    const double value = CDbl(text);
    if (value < range.lowest || value > range.highest) Refuse(option, takes, text);
    return value;
}

std::int32_t WholeNumberOf(const std::string& option, const std::string& takes, Range range,
                           const std::string& text) {
    const double value = NumberOf(option, takes, range, text);
    if (value != RoundHalfEven(value)) Refuse(option, takes, text);
    return CLng(value);
}

std::int32_t RateOf(const std::string& text) {
    const std::string takes = "one of " + AllRates();
    const std::int32_t rateHz = WholeNumberOf("--rate", takes, {0.0, kExtendedRates.back()}, text);
    if (!IsSampleRate(rateHz)) Refuse("--rate", takes, text);
    return rateHz;
}

std::int32_t LowEdgeOf(const std::string& text) {
    const std::int32_t lowEdgeHz = WholeNumberOf("--low-edge", "25 or 20", {20.0, 25.0}, text);
    if (lowEdgeHz != 25 && lowEdgeHz != 20) Refuse("--low-edge", "25 or 20", text);
    return lowEdgeHz;
}

// libsndfile interprets "-" as standard output, which is used for the readings.
std::string OutputFileOf(const std::string& text) {
    if (text.empty() || text == "-") Refuse("--write", "the name of a file", text);
    return text;
}

void AddMeterOptions(CLI::App& command, MeterOptions& options) {
    command
        .add_option("--tone", options.tones,
                    "WAVE:HZ[:ENDHZ:MS[:loop]], sine, square, triangle or sawtooth; repeat for several")
        ->type_name("TONE")
        ->allow_extra_args(false);
    command
        .add_option_function<std::string>(
            "--frequency", [&](const std::string& text) { options.frequency = text; },
            "Fundamental in Hz instead of the automatic one")
        ->type_name("HZ");
    command.add_flag("--no-mute", options.noMute, "Send the filtered input on to the output");
    command.add_flag("--json", options.json, "One line of JSON for each update");
}

void AddRun(CLI::App& command, RunOptions& options) {
    command.add_option("--input", options.input, "Identifier of the capture device")->type_name("ID");
    command.add_option("--output", options.output, "Identifier of the playback device")->type_name("ID");
    command
        .add_option_function<std::string>(
            "--rate", [&](const std::string& text) { options.rateHz = RateOf(text); },
            "Sampling rate, one of " + AllRates())
        ->type_name("HZ");
    command
        .add_option_function<std::string>(
            "--level",
            [&](const std::string& text) {
                options.levelHundredthsDb =
                    WholeNumberOf("--level", "-9600 to 0 hundredths of a dB, without fraction",
                                  {kLowestLevel, kHighestLevel}, text);
            },
            "Output level in hundredths of a dB, -9600 to 0")
        ->type_name("HUNDREDTHS_DB")
        ->default_str("0");
    command
        .add_option_function<std::string>(
            "--seconds",
            [&](const std::string& text) {
                options.seconds =
                    NumberOf("--seconds", "0 to 1000000 seconds", {0.0, kLongestRunSeconds}, text);
            },
            "Time from the start of playback; continues until two updates are complete")
        ->type_name("S")
        ->default_str("5");
    AddMeterOptions(command, options);
}

void AddFile(CLI::App& command, FileOptions& options) {
    command.add_option("recording", options.input, "Recording to measure, block by block")
        ->type_name("FILE")
        ->required();
    command
        .add_option_function<std::string>(
            "--write", [&](const std::string& text) { options.output = OutputFileOf(text); },
            "Write the output blocks as 16-bit stereo WAV")
        ->type_name("FILE");
    command
        .add_option_function<std::string>(
            "--low-edge", [&](const std::string& text) { options.lowEdgeHz = LowEdgeOf(text); },
            "Low edge of the band-pass, 25 or 20 Hz")
        ->type_name("HZ")
        ->default_str("25");
    AddMeterOptions(command, options);
}

// The limit of a frequency depends on the rate, which a recording states itself.
void CheckFrequencies(const Options& options) {
    FrequencyHz(options.run, options.run.rateHz.value_or(0));
    if (options.file.frequency && !IsNumeric(*options.file.frequency)) FrequencyHz(options.file, 0);
}

}  // namespace

Options ParseOptions(int argc, const char* const* argv) {
    Options options;
    CLI::App app{"Measures total harmonic distortion with the computer's sound card.", "sonavex-measure"};
    app.set_version_flag("--version", "sonavex-measure " SONAVEX_VERSION);
    app.require_subcommand(0, 1);
    auto* devices = app.add_subcommand("devices", "List the sound devices");
    devices->add_flag("--json", options.devicesJson, "As JSON");
    auto* run = app.add_subcommand("run", "Play tones, capture and print the readings");
    AddRun(*run, options.run);
    auto* file = app.add_subcommand("file", "Measure a recording");
    AddFile(*file, options.file);
    auto* selfTest =
        app.add_subcommand("selftest", "Prove the precise measurement on this computer, in memory");
    selfTest->add_flag("--json", options.selfTestJson, "As JSON");
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        std::ostringstream out;
        app.exit(success, out, out);
        options.answer = out.str();
        return options;
    } catch (const CLI::ParseError& error) {
        throw MeasureError(error.what() + std::string(kSeeHelp));
    }
    CheckFrequencies(options);
    if (devices->parsed()) options.command = Options::Command::kDevices;
    if (run->parsed()) options.command = Options::Command::kRun;
    if (file->parsed()) options.command = Options::Command::kFile;
    if (selfTest->parsed()) options.command = Options::Command::kSelfTest;
    if (options.command == Options::Command::kNone)
        throw MeasureError(std::string("A command is needed: devices, run, file or selftest") + kSeeHelp);
    return options;
}

}  // namespace sonavex::measure
