// Options of a live measurement, on a simulated card that returns what is played.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <set>
#include <system_error>

#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;
using testing::HasSubstr;

// The shortest possible measurement: two updates at the highest rate.
Arguments ShortRun(const Arguments& more) {
    Arguments arguments{"run", "--rate", "48000", "--seconds", "0", "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

std::vector<ordered_json> Updates(const Outcome& outcome) {
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.errors, "");
    std::vector<ordered_json> lines = outcome.Json();
    EXPECT_GE(lines.size(), 2U);
    for (const ordered_json& line : lines) {
        ExpectShape(line, true);
        EXPECT_EQ(line["simulated"], true);
        EXPECT_THAT(line["input"].get<std::string>(), HasSubstr("imulated"));
        EXPECT_THAT(line["output"].get<std::string>(), HasSubstr("imulated"));
    }
    return lines;
}

double NumberOf(const ordered_json& caption) {
    return std::strtod(caption.get<std::string>().c_str(), nullptr);
}

// The last update of a run that must lock.
ordered_json LastOf(MeasureProgram& program) {
    const Outcome outcome = program.End(20s);
    EXPECT_EQ(outcome.status, 0);
    const std::vector<ordered_json> lines = Updates(outcome);
    return lines.empty() ? ordered_json() : lines.back();
}

TEST(Run, LevelAttenuates) {
    MeasureProgram full(ShortRun({"--tone", "sine:1000", "--level", "0"}), kSimulated);
    MeasureProgram half(ShortRun({"--tone", "sine:1000", "--level", "-600"}), kSimulated);
    MeasureProgram tenth(ShortRun({"--tone", "sine:1000", "--level", "-2000"}), kSimulated);
    EXPECT_EQ(LastOf(full)["adcPeak"], 8192);
    EXPECT_NEAR(LastOf(half)["adcPeak"].get<double>(), 8192.0 * std::pow(10.0, -0.3), 1.0);
    EXPECT_NEAR(LastOf(tenth)["adcPeak"].get<double>(), 819.2, 1.0);
}

TEST(Run, SeveralTonesShareTheScale) {
    MeasureProgram octave(
        ShortRun({"--tone", "sine:1007.8125", "--tone", "sine:1007.8125", "--tone", "sine:2015.625"}),
        kSimulated);
    MeasureProgram square(ShortRun({"--tone", "square:1000"}), kSimulated);
    MeasureProgram sawtooth(ShortRun({"--tone", "sawtooth:1000"}), kSimulated);
    MeasureProgram triangle(ShortRun({"--tone", "triangle:1000"}), kSimulated);
    // Three sines of an eighth of full scale: the octave is a second harmonic of half the amplitude.
    const ordered_json line = LastOf(octave);
    EXPECT_EQ(line["frequency"], "1007");
    EXPECT_NEAR(line["adcPeak"].get<double>(), 32767.0 / 8.0 * 2.598, 3.0);
    EXPECT_NEAR(NumberOf(line["percent"][0]), 100.0 * std::sqrt(0.2), 0.01);
    EXPECT_EQ(line["db"][0], "-06.02");
    EXPECT_EQ(LastOf(square)["adcPeak"], 8192);
    // A period of 48 samples: these waveforms count to 48, the triangle to its peak and the sawtooth to its
    // end.
    EXPECT_EQ(LastOf(sawtooth)["adcPeak"], 16384);
    EXPECT_EQ(LastOf(triangle)["adcPeak"], 16384);
}

TEST(Run, SweepMovesToItsEndAndStays) {
    MeasureProgram up(ShortRun({"--tone", "sine:1000:5000:400"}), kSimulated);
    MeasureProgram down(ShortRun({"--tone", "sine:5000:1000:400"}), kSimulated);
    EXPECT_NEAR(LastOf(up)["peakBin"].get<double>(), 5000.0 / 48000.0 * 4096.0, 2.0);
    EXPECT_NEAR(LastOf(down)["peakBin"].get<double>(), 1000.0 / 48000.0 * 4096.0, 2.0);
}

TEST(Run, LoopedSweepContinues) {
    MeasureProgram looped(
        {"run", "--rate", "48000", "--seconds", "3", "--json", "--tone", "sine:1000:9000:3000:loop"},
        kSimulated);
    const std::vector<ordered_json> lines = Updates(looped.End(20s));
    std::set<int> bins;
    for (const ordered_json& line : lines) bins.insert(line["peakBin"].get<int>());
    EXPECT_EQ(bins.size(), lines.size()) << "a frequency at each update";
}

TEST(Run, FixedFrequencyLocksOnlyNearIt) {
    MeasureProgram near(ShortRun({"--tone", "sine:1000", "--frequency", "1005"}), kSimulated);
    MeasureProgram far(ShortRun({"--tone", "sine:1000", "--frequency", "2000"}), kSimulated);
    const ordered_json locked = LastOf(near);
    EXPECT_EQ(locked["frequency"], "1005");
    EXPECT_EQ(locked["locked"], true);
    EXPECT_EQ(locked["settled"], true);
    const Outcome outcome = far.End(20s);
    EXPECT_EQ(outcome.status, 2);
    for (const ordered_json& line : Updates(outcome)) {
        EXPECT_EQ(line["frequency"], "2000");
        EXPECT_EQ(line["locked"], false);
        EXPECT_EQ(line["settled"], false);
        EXPECT_EQ(line["peakBin"], 85);
        EXPECT_EQ(line["thd"], "N/A");
        EXPECT_EQ(Captions(line, "percent"), "       ");
        EXPECT_EQ(Captions(line, "db"), "       ");
    }
}

TEST(Run, WritesTheTraceOfTheStreamToStandardErrorWhereAsked) {
    Environment traced(kSimulated);
    traced.emplace_back("SONAVEX_TRACE", "1");
    MeasureProgram with(ShortRun({"--tone", "sine:1000"}), traced);
    MeasureProgram without(ShortRun({"--tone", "sine:1000"}), kSimulated);
    EXPECT_THAT(with.End(20s).errors, testing::ContainsRegex("(^|\n)[0-9]+ ms RESTARTING 0\n"));
    EXPECT_EQ(without.End(20s).errors, "");
}

TEST(Run, WithoutToneNothingIsLocked) {
    const Outcome outcome = MeasureSimulated(ShortRun({}));
    EXPECT_EQ(outcome.status, 2);
    for (const ordered_json& line : Updates(outcome)) {
        EXPECT_EQ(line["frequency"], "0");
        EXPECT_EQ(line["locked"], false);
        // A block without a positive sample counts as overload.
        EXPECT_EQ(line["adc"], "Ovr");
        EXPECT_EQ(line["adcPeak"], 32760);
    }
}

TEST(Run, WithoutMuteTheInputReachesTheOutput) {
    // The loop feeds back; the low level prevents growth.
    MeasureProgram open(ShortRun({"--tone", "sine:1000", "--no-mute", "--level", "-2000"}), kSimulated);
    const ordered_json line = LastOf(open);
    EXPECT_NE(line["dac"], "Muted");
    EXPECT_GT(line["dacPeak"].get<int>(), 500);
    EXPECT_LT(line["dacPeak"].get<int>(), 32760);
    EXPECT_NEAR(line["dacPeak"].get<double>() / 327.60, NumberOf(line["dac"]), 0.51);
}

TEST(Run, SecondsCountFromTheStartOfPlayback) {
    const auto start = std::chrono::steady_clock::now();
    MeasureProgram program({"run", "--rate", "48000", "--seconds", "2.5", "--json", "--tone", "sine:1000"},
                           kSimulated);
    const ordered_json line = LastOf(program);
    // Seven blocks are written before playback starts: 0.3 s.
    EXPECT_GE(std::chrono::steady_clock::now() - start, 2780ms);
    EXPECT_EQ(line["block"], 56);
}

TEST(Run, OlderGenerationMeasuresTheSame) {
    const Outcome outcome = Measure({"run", "--seconds", "0", "--json", "--tone", "sine:1000"},
                                    {{"SONAVEX_SOUND", "simulated"}, {"SONAVEX_OS_MAJOR", "5"}});
    EXPECT_EQ(outcome.status, 0);
    const std::vector<ordered_json> lines = Updates(outcome);
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines.back()["rate"], 44100);
    EXPECT_EQ(lines.back()["settled"], true);
    EXPECT_EQ(lines.back()["peakBin"], 93);
}

TEST(Run, TableReadsLikeTheReport) {
    const Outcome outcome = MeasureSimulated({"run", "--seconds", "0", "--tone", "sine:1000"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, testing::ContainsRegex("\nDate : [A-Z][a-z]{2} [0-9]{2}, [0-9]{4}\n"));
    for (const char* line : {"Quenby Software Audio Sonavex\n", "\nRate : 32000 Hz\n",
                             "\nFrequency : 1000 Hz\n", "\nADC/DAC Level: 25\n", "SIMULATED"})
        EXPECT_THAT(outcome.output, HasSubstr(line));
    EXPECT_THAT(outcome.output, testing::ContainsRegex(kReadingsPattern));
}

TEST(Run, UnwritableOutputIsAnError) {
    const Arguments table{"run", "--rate", "48000", "--seconds", "0", "--tone", "sine:1000"};
    MeasureProgram text(table, kSimulated, {"/dev/full", {}});
    MeasureProgram json(ShortRun({"--tone", "sine:1000"}), kSimulated, {"/dev/full", {}});
    for (MeasureProgram* program : {&text, &json})
        ExpectRefusal(program->End(20s), "The readings cannot be written to the standard output.");
}

// The master side of a terminal that a program prints to.
class Terminal {
public:
    // Throws std::system_error if the system has no pseudo-terminals.
    Terminal() : side_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK)) {
        if (side_ < 0 || grantpt(side_) != 0 || unlockpt(side_) != 0 || ptsname(side_) == nullptr) Fail();
        // Held open so that the output survives the program.
        keep_ = open(Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (keep_ < 0) Fail();
    }
    ~Terminal() {
        close(keep_);
        close(side_);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    std::filesystem::path Path() const { return ptsname(side_); }
    std::string Printed() const {
        std::string text;
        char buffer[4096];
        for (ssize_t count = read(side_, buffer, sizeof buffer); count > 0;
             count = read(side_, buffer, sizeof buffer))
            text.append(buffer, static_cast<std::size_t>(count));
        return text;
    }

private:
    [[noreturn]] static void Fail() {
        throw std::system_error(errno, std::generic_category(),
                                "no pseudo-terminal from /dev/ptmx and /dev/pts");
    }

    int side_;
    int keep_ = -1;
};

TEST(Run, TerminalShowsEachBlockAndEndsClean) {
    const Terminal terminal;
    MeasureProgram program({"run", "--rate", "48000", "--seconds", "0", "--tone", "sine:1000"}, kSimulated,
                           {{}, terminal.Path()});
    std::string printed;
    Outcome outcome;
    while (!outcome.ended) {
        outcome = program.End(100ms);
        printed += terminal.Printed();
    }
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("Frequency : 996 Hz"));
    EXPECT_THAT(printed, HasSubstr("block 17  996 Hz locked  ADC 25  averaging 18 of 19"));
    EXPECT_THAT(printed, HasSubstr("block 37  996 Hz locked  ADC 25  averaging 19 of 19"));
    EXPECT_THAT(printed, testing::EndsWith("\r\033[K"));
    EXPECT_THAT(printed, testing::Not(HasSubstr("\n")));
}

}  // namespace
}  // namespace sonavex
