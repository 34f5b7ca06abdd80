#include "app/measure/Options.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <sstream>
#include <utility>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "app/measure/OptionValues.h"
#include "core/generator/SignalControls.h"
#include "core/settings/SampleRates.h"
#include "core/stimulus/ParseStimulus.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {
namespace {

constexpr double kLongestRunSeconds = 1e6;
constexpr const char* kSeeHelp = " (sonavex-measure --help explains the arguments).";

std::int32_t LowEdgeOf(const std::string& text) {
    const std::int32_t lowEdgeHz = WholeNumberOf("--low-edge", "25 or 20", {20.0, 25.0}, text);
    if (lowEdgeHz != 25 && lowEdgeHz != 20) Refuse("--low-edge", "25 or 20", text);
    return lowEdgeHz;
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
            "--rate", [&](const std::string& text) { options.rateHz = SampleRateOf(text); },
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
            "--write", [&](const std::string& text) { options.output = OutputFileOf("--write", text); },
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

constexpr double kHighestFrequencyHz = 96000.0;
constexpr double kHighestOrder = 1000.0;
constexpr std::size_t kMostTones = 256;
constexpr double kMostAverages = 1000.0;

PreciseMode ModeOf(const std::string& text) {
    if (text == "thd") return PreciseMode::kTone;
    if (text == "imd") return PreciseMode::kPair;
    if (text == "multitone") return PreciseMode::kMultitone;
    if (text == "noise") return PreciseMode::kNoise;
    Refuse("--mode", "thd, imd, multitone or noise", text);
}

void SetBand(const std::string& text, AnalyzeOptions& options) {
    const Range band = BandOf(text);
    options.lowHz = band.lowest;
    options.highHz = band.highest;
}

std::vector<double> TonesOf(const std::string& text) {
    const std::string takes = "frequencies of 1 to 96000 Hz, separated by commas";
    std::vector<double> tones = NumbersOf("--tones", takes, {1.0, kHighestFrequencyHz}, text);
    if (tones.size() > kMostTones) Refuse("--tones", takes, text);
    return tones;
}

template <typename Set>
void AddValue(CLI::App& command, const std::string& option, const char* type, const std::string& help,
              Set set) {
    command.add_option_function<std::string>(option, set, help)->type_name(type);
}

void AddAnalyzedValues(CLI::App& command, AnalyzeOptions& options) {
    AddValue(command, "--channel", "0|1", "Channel, 0 (left) or 1 (right)", [&](const std::string& text) {
        options.channel = WholeNumberOf("--channel", "0 or 1", {0.0, 1.0}, text);
    });
    AddValue(command, "--band", "LOW:HIGH", "Band in Hz of distortion and noise (20:20000)",
             [&](const std::string& text) { SetBand(text, options); });
    AddValue(command, "--harmonics", "N", "Highest order in THD (9)", [&](const std::string& text) {
        options.highestOrder = WholeNumberOf("--harmonics", "2 to 1000", {2.0, kHighestOrder}, text);
    });
    AddValue(command, "--length", "N", "Samples of a record, a power of two (one that lasts a second)",
             [&](const std::string& text) { options.length = RecordLengthOf(text); });
    AddValue(command, "--mode", "MODE", "thd, imd, multitone or noise (thd, or that of the stimulus)",
             [&](const std::string& text) {
                 options.mode = ModeOf(text);
                 options.modeGiven = true;
             });
    AddValue(command, "--tones", "F1,F2,...", "The tones in Hz of the modes imd and multitone",
             [&](const std::string& text) { options.tonesHz = TonesOf(text); });
    AddValue(command, "--fundamental", "HZ", "Search the fundamental within 1 % of this frequency",
             [&](const std::string& text) {
                 options.fundamentalHz =
                     NumberOf("--fundamental", "1 to 96000 Hz", {1.0, kHighestFrequencyHz}, text);
             });
}

void AddAnalyzedFiles(CLI::App& command, AnalyzeOptions& options) {
    const auto addInput = [&](const char* option, std::string& name, const char* help) {
        command.add_option(option, name, help)->type_name("FILE");
    };
    const auto addOutput = [&](const char* option, std::string& name, const char* help) {
        AddValue(command, option, "FILE", help,
                 [option, &name](const std::string& text) { name = OutputFileOf(option, text); });
    };
    addInput("--reference", options.reference, "A saved reading of the source itself");
    addInput("--idle", options.idle, "A saved reading with the generator off");
    addOutput("--save-reference", options.savedReference, "Save the reading as JSON");
    addOutput("--residual", options.residual, "Write what the fit leaves of the last record as float WAV");
    addOutput("--spectrum", options.spectrum, "Write the spectrum as CSV");
    command.add_flag("--history", options.history, "Store the reading in the history");
}

void SetDither(const std::string& text, LiveOptions& live) {
    const int bits = DitherOf(text);
    live.dither = bits != 0;
    if (live.dither) live.ditherBits = bits;
}

using AddLiveOption =
    std::function<CLI::Option*(const std::string& option, const char* type, const std::string& help,
                               std::function<void(const std::string& text)> set)>;

void AddDevices(const AddLiveOption& add, LiveOptions& live) {
    add("--input", "ID", "Identifier of the capture device",
        [&](const std::string& text) { live.input = text; });
    add("--output", "ID", "Identifier of the playback device",
        [&](const std::string& text) { live.output = text; });
    add("--rate", "HZ", "Sampling rate, one of " + AllRates(),
        [&](const std::string& text) { live.rateHz = SampleRateOf(text); });
    add("--average", "N", "Newest records in a reading; 0: all (1)", [&](const std::string& text) {
        live.average =
            static_cast<std::size_t>(WholeNumberOf("--average", "0 to 1000", {0.0, kMostAverages}, text));
    });
    add("--seconds", "S", "Duration; continues until there is a reading (5)", [&](const std::string& text) {
        live.seconds = NumberOf("--seconds", "0 to 1000000 seconds", {0.0, kLongestRunSeconds}, text);
    });
}

void AddStimulus(const AddLiveOption& add, LiveOptions& live) {
    auto* stimulus = add("--stimulus", "STIMULUS", std::string("What is played: ") + kStimulusNotation,
                         [&](const std::string& text) {
                             if (text.empty()) Refuse("--stimulus", kStimulusNotation, text);
                             live.stimulus = text;
                         });
    add("--side", "SIDE", "Channels of the stimulus: left, right or both (both)",
        [&](const std::string& text) { live.side = SideOf(text); })
        ->needs(stimulus);
    add("--dbfs", "LEVEL", "Level of the stimulus, relative to a full-scale sine (-1, noise -12)",
        [&](const std::string& text) {
            live.levelDbfs = NumberOf("--dbfs", "-200 to 0 dB", {kLowestLevelDbfs, 0.0}, text);
        })
        ->needs(stimulus);
    add("--dither", "BITS|off", "Width of the dither, or none (the bits of the output)",
        [&](const std::string& text) { SetDither(text, live); })
        ->needs(stimulus);
}

// Options that are refused together with a recording.
void AddLive(CLI::App& command, CLI::Option* recording, LiveOptions& live) {
    const AddLiveOption add = [&](const std::string& option, const char* type, const std::string& help,
                                  const std::function<void(const std::string& text)>& set) {
        return command.add_option_function<std::string>(option, set, help)
            ->type_name(type)
            ->excludes(recording);
    };
    AddDevices(add, live);
    AddStimulus(add, live);
    command.add_flag("--snap", live.snap, "Play the nearest odd bin of a record")
        ->needs("--stimulus")
        ->excludes(recording);
}

void AddAnalyze(CLI::App& command, AnalyzeOptions& options) {
    command.alias("analyse");
    auto* recording = command
                          .add_option_function<std::string>(
                              "recording",
                              [&](const std::string& text) {
                                  if (text.empty()) throw MeasureError("The name of the recording is empty.");
                                  options.input = text;
                              },
                              "Recording to measure; without it, a live measurement")
                          ->type_name("FILE");
    AddLive(command, recording, options.live);
    AddAnalyzedValues(command, options);
    AddAnalyzedFiles(command, options);
    command.add_flag("--json", options.json, "One JSON object for each reading; a recording has one");
}

void AddHistory(CLI::App& command, HistoryOptions& options) {
    command.add_option("--search", options.search, "Only entries that contain all these words")
        ->type_name("TEXT");
    command.add_flag("--valid", options.validOnly, "Only valid readings and complete runs");
    AddValue(command, "--csv", "FILE", "Write the entries with every value as CSV",
             [&](const std::string& text) { options.csv = OutputFileOf("--csv", text); });
    command.add_flag("--json", options.json, "One JSON object for each entry");
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
    auto* analyze =
        app.add_subcommand("analyze", "Measure precisely, at any frequency: a recording, or live");
    AddAnalyze(*analyze, options.analyze);
    auto* sweep = app.add_subcommand("sweep", "Measure distortion over frequency or level");
    AddSweep(*sweep, options.sweep);
    auto* selfTest =
        app.add_subcommand("selftest", "Prove the precise measurement on this computer, in memory");
    selfTest->add_flag("--json", options.selfTestJson, "As JSON");
    auto* history = app.add_subcommand("history", "List stored readings and runs, newest first");
    AddHistory(*history, options.history);
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
    if (analyze->parsed()) options.command = Options::Command::kAnalyze;
    if (sweep->parsed()) options.command = Options::Command::kSweep;
    if (selfTest->parsed()) options.command = Options::Command::kSelfTest;
    if (history->parsed()) options.command = Options::Command::kHistory;
    if (options.command == Options::Command::kNone)
        throw MeasureError(
            std::string("A command is needed: devices, run, file, analyze, sweep, selftest or history") +
            kSeeHelp);
    return options;
}

}  // namespace sonavex::measure
