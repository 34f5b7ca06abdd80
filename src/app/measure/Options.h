#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "app/measure/SweepOptions.h"
#include "core/precise/RecordAnalysis.h"
#include "core/stimulus/SampleWord.h"

namespace sonavex::measure {

// Options common to run and file.
struct MeterOptions {
    std::vector<std::string> tones;
    std::optional<std::string> frequency;  // fixed fundamental as typed; automatic if not set
    bool noMute = false;                   // send the filtered input to the output
    bool json = false;
};

struct RunOptions : MeterOptions {
    std::string input;  // identifier; empty for the primary device
    std::string output;
    std::optional<std::int32_t> rateHz;
    std::int32_t levelHundredthsDb = 0;
    double seconds = 5.0;
};

struct FileOptions : MeterOptions {
    std::string input;
    std::string output;  // empty: no output file
    std::int32_t lowEdgeHz = 25;
};

// Of a precise measurement with sound devices.
struct LiveOptions {
    std::string input;  // identifier; empty for the primary device
    std::string output;
    std::optional<std::int32_t> rateHz;
    std::string stimulus;  // as ParseStimulus reads it; empty: none
    StimulusSide side = StimulusSide::kBoth;
    std::optional<double> levelDbfs;
    bool snap = false;
    bool dither = true;
    std::optional<int> ditherBits;  // those of the output if not set
    std::size_t average = 1;        // records; 0: all
    double seconds = 5.0;
};

struct AnalyzeOptions {
    std::string input;  // recording; empty for a live measurement
    LiveOptions live;
    int channel = 0;
    double lowHz = 20.0;  // ends of the band
    double highHz = 20000.0;
    int highestOrder = 9;                // up to which THD sums
    std::optional<std::int32_t> length;  // of a record; a power of two
    PreciseMode mode = PreciseMode::kTone;
    bool modeGiven = false;  // if not, a live measurement chooses the mode for its stimulus
    std::vector<double> tonesHz;
    std::optional<double> fundamentalHz;
    // Files; empty: none.
    std::string reference;
    std::string idle;
    std::string savedReference;
    std::string residual;
    std::string spectrum;
    bool history = false;  // store the reading
    bool json = false;
};

struct HistoryOptions {
    std::string search;  // words; empty: everything
    bool validOnly = false;
    std::string csv;  // file; empty: none
    bool json = false;
};

struct Options {
    enum class Command {
        kDevices,
        kRun,
        kFile,
        kAnalyze,
        kSweep,
        kSelfTest,
        kHistory,
        kNone
    } command = Command::kNone;
    bool devicesJson = false;
    bool selfTestJson = false;
    RunOptions run;
    FileOptions file;
    AnalyzeOptions analyze;
    HistoryOptions history;
    SweepOptions sweep;
    // Text to print for --help or --version; nothing else must then be done.
    std::string answer;
};

// Throws MeasureError for wrong arguments.
Options ParseOptions(int argc, const char* const* argv);

}  // namespace sonavex::measure
