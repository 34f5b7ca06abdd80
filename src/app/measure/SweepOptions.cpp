#include "app/measure/SweepOptions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <functional>
#include <memory>

#include "app/measure/MeasureError.h"
#include "app/measure/OptionValues.h"

namespace sonavex::measure {
namespace {

constexpr Range kFrequencies{1.0, 96000.0};
constexpr Range kLevels{kLowestLevelDbfs, 0.0};
constexpr Range kAnyEnd{-200.0, 96000.0};
constexpr Range kAmounts{1e-6, 1e6};
constexpr Range kSettlingDb{0.0, 100.0};
constexpr double kMostSettlingRecords = 1000.0;

// The axis as typed.
struct TypedAxis {
    bool overLevel = false;
    bool overGiven = false;
    std::optional<double> from;
    std::optional<double> to;
    std::optional<double> perOctave;
    std::optional<double> points;
    std::optional<double> step;
    bool linear = false;
    std::vector<double> list;
    std::vector<double> levels;       // --dbfs
    std::vector<double> frequencies;  // --frequency
};

RunRange TypedRange(const TypedAxis& axis) {
    const bool linear = axis.linear || axis.overLevel;
    if (axis.overLevel && (!axis.from || !axis.to))
        throw MeasureError("A run over level needs --from and --to, or --list.");
    RunRange range;
    range.from = axis.from.value_or(range.from);
    range.to = axis.to.value_or(range.to);
    const std::array given{axis.perOctave.has_value(), axis.points.has_value(), axis.step.has_value()};
    if (std::count(given.begin(), given.end(), true) > 1)
        throw MeasureError("Only one of --per-octave, --points and --step can be given.");
    if (axis.perOctave) range.amount = *axis.perOctave;
    if (axis.points) {
        range.spacing = linear ? RunRange::Spacing::kLinearPoints : RunRange::Spacing::kLogarithmicPoints;
        range.amount = *axis.points;
    } else if (axis.step || axis.overLevel) {
        range.spacing = RunRange::Spacing::kStep;
        range.amount = axis.step.value_or(1.0);
    }
    return range;
}

void TakeAxis(const TypedAxis& axis, RunPlan& plan) {
    plan.over = axis.overLevel ? RunAxis::kLevel : RunAxis::kFrequency;
    const bool ranged = axis.from || axis.to || axis.perOctave || axis.points || axis.step || axis.linear;
    if (!axis.list.empty() && ranged)
        throw MeasureError("--list takes the place of --from, --to and their steps.");
    if (axis.overLevel && axis.perOctave) throw MeasureError("--per-octave is for runs over frequency.");
    if (axis.overLevel && !axis.levels.empty())
        throw MeasureError("--dbfs is for runs over frequency; over level, --from and --to are levels.");
    if (!axis.overLevel && !axis.frequencies.empty())
        throw MeasureError("--frequency is for runs over level.");
    RunValues& values = axis.overLevel ? plan.levelsDbfs : plan.frequenciesHz;
    if (axis.list.empty())
        values = TypedRange(axis);
    else
        values = axis.list;
    if (axis.overLevel)
        plan.frequenciesHz = axis.frequencies.empty() ? std::vector<double>{1000.0} : axis.frequencies;
    else if (!axis.levels.empty())
        plan.levelsDbfs = axis.levels;
}

using AddSweepOption = std::function<void(const char* option, const char* type, const char* help,
                                          std::function<void(const std::string& text)> set)>;

void AddAxis(const AddSweepOption& add, TypedAxis& axis) {
    add("--over", "AXIS", "frequency or level", [&axis](const std::string& text) {
        if (text != "frequency" && text != "level") Refuse("--over", "frequency or level", text);
        axis.overGiven = true;
        axis.overLevel = text == "level";
    });
    const auto addNumber = [&](const char* option, const char* type, const char* help, const char* takes,
                               Range range, std::optional<double>& value) {
        add(option, type, help, [option, takes, range, &value](const std::string& text) {
            value = NumberOf(option, takes, range, text);
        });
    };
    addNumber("--from", "VALUE", "First frequency in Hz, or first level in dBFS (20 Hz)",
              "a frequency or a level", kAnyEnd, axis.from);
    addNumber("--to", "VALUE", "Last frequency or level (20000 Hz)", "a frequency or a level", kAnyEnd,
              axis.to);
    addNumber("--per-octave", "N", "Points in an octave (6)", "a number above 0", kAmounts, axis.perOctave);
    addNumber("--points", "N", "Points in all, the ends included", "a number above 0", kAmounts, axis.points);
    addNumber("--step", "VALUE", "Distance of the points in Hz or dB (1 dB)", "a number above 0", kAmounts,
              axis.step);
    const auto addList = [&](const char* option, const char* help, const char* takes, Range range,
                             std::vector<double>& values) {
        add(option, "V1,V2,...", help, [option, takes, range, &values](const std::string& text) {
            values = NumbersOf(option, takes, range, text);
        });
    };
    addList("--list", "The frequencies or levels, in this order", "numbers separated by commas", kAnyEnd,
            axis.list);
    addList("--dbfs", "Level of a run over frequency; several: one after the other (-1)",
            "levels of -200 to 0 dBFS, separated by commas", kLevels, axis.levels);
    addList("--frequency", "Frequency of a run over level in Hz, or several (1000)",
            "frequencies of 1 to 96000 Hz, separated by commas", kFrequencies, axis.frequencies);
}

void AddSound(const AddSweepOption& add, RunPlan& plan) {
    add("--max-dbfs", "LEVEL", "Refuse a run that is louder (0)", [&plan](const std::string& text) {
        plan.highestLevelDbfs = NumberOf("--max-dbfs", "-200 to 0 dB", kLevels, text);
    });
    add("--side", "SIDE", "Channels of the tone: left, right or both (both)",
        [&plan](const std::string& text) { plan.side = SideOf(text); });
    add("--dither", "BITS|off", "Width of the dither, or none (the bits of the output)",
        [&plan](const std::string& text) {
            const int bits = DitherOf(text);
            plan.dither = bits != 0;
            if (plan.dither) plan.ditherBits = bits;
        });
}

void AddAnalysis(const AddSweepOption& add, RunPlan& plan) {
    add("--channel", "0|1", "Channel, 0 (left) or 1 (right)", [&plan](const std::string& text) {
        plan.channel = static_cast<std::size_t>(WholeNumberOf("--channel", "0 or 1", {0.0, 1.0}, text));
    });
    add("--band", "LOW:HIGH", "Band in Hz of distortion and noise (20:20000)",
        [&plan](const std::string& text) {
            const Range band = BandOf(text);
            plan.band = {band.lowest, band.highest};
        });
    add("--harmonics", "N", "Highest order in THD (9)", [&plan](const std::string& text) {
        plan.highestOrder = WholeNumberOf("--harmonics", "2 to 1000", {2.0, 1000.0}, text);
    });
    add("--length", "N", "Samples of a record, a power of two (one that lasts a second)",
        [&plan](const std::string& text) { plan.length = static_cast<std::size_t>(RecordLengthOf(text)); });
    SettlingLimits& settling = plan.settling;
    add("--settle-level", "DB", "Largest change of the level in a settled point (0.01)",
        [&settling](const std::string& text) {
            settling.levelDb = NumberOf("--settle-level", "0 to 100 dB", kSettlingDb, text);
        });
    add("--settle-thdn", "DB", "Largest change of THD+N in a settled point (0.3)",
        [&settling](const std::string& text) {
            settling.thdnDb = NumberOf("--settle-thdn", "0 to 100 dB", kSettlingDb, text);
        });
    add("--settle-records", "N", "Records after which a point is void (10)",
        [&settling](const std::string& text) {
            settling.records =
                WholeNumberOf("--settle-records", "2 to 1000", {2.0, kMostSettlingRecords}, text);
        });
}

}  // namespace

void AddSweep(CLI::App& command, SweepOptions& options) {
    const auto axis = std::make_shared<TypedAxis>();
    auto* file = command
                     .add_option_function<std::string>(
                         "run",
                         [&options](const std::string& text) {
                             if (text.empty()) throw MeasureError("The name of the run is empty.");
                             options.file = text;
                         },
                         "Run to measure, JSON; without it, the run of these options")
                     ->type_name("RUN.json");
    const auto addTo = [&command](const char* option, const char* type, const char* help,
                                  const std::function<void(const std::string& text)>& set) {
        return command.add_option_function<std::string>(option, set, help)->type_name(type);
    };
    auto* const continued =
        addTo("--continue", "FILE", "Measure the points that are missing or void in this output of a run",
              [&options](const std::string& text) {
                  if (text.empty()) throw MeasureError("The name of the run is empty.");
                  options.continued = text;
              });
    continued->excludes(file);
    const AddSweepOption addPlan = [&](const char* option, const char* type, const char* help,
                                       const std::function<void(const std::string& text)>& set) {
        addTo(option, type, help, set)->excludes(file)->excludes(continued);
    };
    AddAxis(addPlan, *axis);
    command.add_flag("--linear", axis->linear, "Space --points evenly in Hz")
        ->excludes(file)
        ->excludes(continued);
    AddSound(addPlan, options.plan);
    command.add_flag("--snap", options.plan.snap, "Play the nearest odd bins of a record")
        ->excludes(file)
        ->excludes(continued);
    AddAnalysis(addPlan, options.plan);
    command.add_flag("--preview", options.plan.preview, "Sweep fast before the first point; one more line")
        ->excludes(continued);
    command
        .add_option("--limit", options.limits,
                    "QUANTITY:[LOW:]HIGH in dB or QUANTITY:TABLE.csv; thd, thdn, h2 to h9, response; repeat "
                    "for several")
        ->type_name("LIMIT")
        ->allow_extra_args(false);
    addTo("--csv", "FILE", "Write the points as CSV",
          [&options](const std::string& text) { options.csv = OutputFileOf("--csv", text); });
    addTo("--png", "FILE", "Draw the run with its conditions; needs sonavex-plot",
          [&options](const std::string& text) {
              options.png = OutputFileOf("--png", text);
              if (!options.png.ends_with(".png"))
                  throw MeasureError("The name of --png must end with .png: '" + text + "'.");
          });
    addTo("--save", "FILE", "Write the run with its results as JSON, which sonavex-plot draws",
          [&options](const std::string& text) { options.save = OutputFileOf("--save", text); });
    command.add_flag("--history", options.history, "Store the run in the history");
    addTo("--input", "ID", "Identifier of the capture device",
          [&options](const std::string& text) { options.input = text; });
    addTo("--output", "ID", "Identifier of the playback device",
          [&options](const std::string& text) { options.output = text; });
    const std::string rates = "Sampling rate, one of " + AllRates();
    addTo("--rate", "HZ", rates.c_str(),
          [&options](const std::string& text) { options.rateHz = SampleRateOf(text); });
    command.parse_complete_callback([axis, &options] {
        if (!options.file.empty() || !options.continued.empty()) return;
        if (!axis->overGiven) throw MeasureError("A run needs --over frequency or --over level, or a file.");
        TakeAxis(*axis, options.plan);
    });
}

}  // namespace sonavex::measure
