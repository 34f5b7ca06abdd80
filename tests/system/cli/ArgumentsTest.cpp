#include <gmock/gmock.h>

#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using testing::HasSubstr;

struct Refused {
    Arguments arguments;
    std::string message;
};

// Name of the test in listings.
void PrintTo(const Refused& refused, std::ostream* out) {
    for (const std::string& argument : refused.arguments) *out << '[' << argument << "] ";
}

class RefusedArguments : public testing::TestWithParam<Refused> {};

TEST_P(RefusedArguments, GetOneLineOfTheirOwn) {
    ExpectRefusal(MeasureSimulated(GetParam().arguments), GetParam().message);
}

const Refused kCommands[]{
    {{}, "A command is needed: devices, run, file, analyze, sweep, selftest or history"},
    {{"bogus"}, "not expected: bogus"},
    {{"--bogus"}, "not expected: --bogus"},
    {{"--json", "devices"}, "not expected: --json"},
    {{"devices", "extra"}, "not expected: extra"},
    {{"selftest", "extra"}, "not expected: extra"},
    {{"history", "extra"}, "not expected: extra"},
    {{"history", "--csv", "-"}, "--csv takes the name of a file, not '-'"},
    {{"run", "extra"}, "not expected: extra"},
    {{"run", "--bogus"}, "not expected: --bogus"},
    {{"run", "--low-edge", "25"}, "--low-edge"},
    {{"file"}, "recording is required"},
    {{"file", "a.wav", "b.wav"}, "not expected: b.wav"},
    {{"file", "a.wav", "--rate", "48000"}, "--rate"},
    {{"run", "--rate"}, "--rate"},
    {{"run", "--tone"}, "--tone"},
};
INSTANTIATE_TEST_SUITE_P(Commands, RefusedArguments, testing::ValuesIn(kCommands));

const Refused kValues[]{
    {{"run", "--rate", "12345"},
     "--rate takes one of 48000, 44100, 32000, 22050, 16000, 8000, 4000, 88200, 96000, 176400, 192000, "
     "not '12345'"},
    {{"run", "--rate", "64000"}, "not '64000'"},
    {{"run", "--rate", "384000"}, "not '384000'"},
    {{"run", "--rate", "48000.5"}, "not '48000.5'"},
    {{"run", "--rate", "abc"}, "not 'abc'"},
    {{"run", "--rate", ""}, "--rate takes one of"},
    {{"run", "--level", "1"}, "--level takes -9600 to 0 hundredths of a dB"},
    {{"run", "--level", "-9601"}, "not '-9601'"},
    {{"run", "--level", "-0.5"}, "without fraction, not '-0.5'"},
    {{"run", "--level", "loud"}, "not 'loud'"},
    {{"run", "--level", ""}, "--level takes"},
    {{"run", "--seconds", "-1"}, "--seconds takes 0 to 1000000 seconds, not '-1'"},
    {{"run", "--seconds", "1000001"}, "not '1000001'"},
    {{"run", "--seconds", "nan"}, "not 'nan'"},
    {{"run", "--seconds", "soon"}, "not 'soon'"},
    {{"run", "--frequency", "0"}, "--frequency takes 1 to 24000 Hz, not '0'"},
    {{"run", "--frequency", "-1000"}, "not '-1000'"},
    {{"run", "--frequency", "24001"}, "not '24001'"},
    {{"run", "--frequency", ""}, "--frequency takes 1 to 24000 Hz, not ''"},
    {{"run", "--frequency", "24001", "--rate", "8000"}, "--frequency takes 1 to 24000 Hz, not '24001'"},
    {{"run", "--frequency", "48001", "--rate", "96000"}, "--frequency takes 1 to 48000 Hz, not '48001'"},
    {{"run", "--rate", "192000", "--frequency", "96000.5"}, "--frequency takes 1 to 96000 Hz, not '96000.5'"},
    {{"file", "a.wav", "--frequency", "high"}, "--frequency takes 1 to 24000 Hz, not 'high'"},
    {{"file", "a.wav", "--low-edge", "22"}, "--low-edge takes 25 or 20, not '22'"},
    {{"file", "a.wav", "--low-edge", "low"}, "--low-edge takes 25 or 20, not 'low'"},
    {{"file", "a.wav", "--write", ""}, "--write takes the name of a file"},
    {{"file", "a.wav", "--write", "-"}, "--write takes the name of a file"},
    {{"run", "--input", "nowhere"}, "There is no input device 'nowhere'"},
    {{"run", "--output", "nowhere"}, "There is no output device 'nowhere'"},
};
INSTANTIATE_TEST_SUITE_P(Values, RefusedArguments, testing::ValuesIn(kValues));

Refused Tone(const std::string& tone, const std::string& message) {
    return {{"run", "--rate", "48000", "--tone", tone}, "The tone '" + tone + "' " + message};
}

const Refused kTones[]{
    Tone("", "is not of the form WAVE:HZ[:ENDHZ:MS[:loop]]"),
    Tone("sine", "is not of the form"),
    Tone("sine:1000:2000", "is not of the form"),
    Tone("sine:1000:2000:500:loop:more", "is not of the form"),
    Tone("noise:1000", "has no waveform of sine, square, triangle or sawtooth"),
    Tone("SINE:1000", "has no waveform"),
    Tone("sine:", "has a frequency that is not a number"),
    Tone("sine:1k", "has a frequency that is not a number"),
    Tone("sine:1e999", "has a frequency that is not a number"),
    Tone("sine:1000:x:500", "has an end frequency that is not a number"),
    Tone("sine:1000:2000:x", "has a sweep time that is not a number"),
    Tone("sine:1000:2000:-1", "has a sweep time that is not a whole number of 0 to 10000 milliseconds"),
    Tone("sine:1000:2000:10001", "has a sweep time that is not a whole number"),
    Tone("sine:1000:2000:1.5", "has a sweep time that is not a whole number"),
    Tone("sine:1000:2000:500:once", "ends with something other than 'loop'"),
    Tone("sine:0", "has a frequency outside 0.001 to 24000 Hz, half the sampling rate"),
    Tone("sine:-1000", "has a frequency outside"),
    Tone("square:24000.5", "has a frequency outside"),
    Tone("sine:1000:24001:500", "has a frequency outside"),
};
INSTANTIATE_TEST_SUITE_P(Tones, RefusedArguments, testing::ValuesIn(kTones));

TEST(Arguments, AtMostNineTonesSoundTogether) {
    Arguments arguments{"run"};
    for (int i = 0; i < 10; ++i) arguments.insert(arguments.end(), {"--tone", "sine:1000"});
    ExpectRefusal(MeasureSimulated(arguments), "At most 9 tones");
}

TEST(Arguments, HighestToneFollowsTheRate) {
    ExpectRefusal(MeasureSimulated({"run", "--rate", "4000", "--tone", "sine:2001"}),
                  "outside 0.001 to 2000 Hz");
    // The default is 32000 Hz on the newer generation and 44100 Hz on the older one.
    ExpectRefusal(MeasureSimulated({"run", "--rate", "192000", "--tone", "sine:96001"}),
                  "outside 0.001 to 96000 Hz");
    ExpectRefusal(MeasureSimulated({"run", "--tone", "sine:16001"}), "outside 0.001 to 16000 Hz");
    ExpectRefusal(
        Measure({"run", "--tone", "sine:22051"}, {{"SONAVEX_SOUND", "simulated"}, {"SONAVEX_OS_MAJOR", "5"}}),
        "outside 0.001 to 22050 Hz");
}

TEST(Arguments, EnvironmentIsChecked) {
    ExpectRefusal(Measure({"devices"}, {{"SONAVEX_SOUND", "Simulated"}}),
                  "SONAVEX_SOUND is 'Simulated'; it takes 'system' or 'simulated'");
    ExpectRefusal(Measure({"run"}, {{"SONAVEX_SOUND", "none"}}), "SONAVEX_SOUND is 'none'");
    for (const char* version : {"new", "5.5", "0", "99999999999"})
        ExpectRefusal(Measure({"run"}, {{"SONAVEX_SOUND", "simulated"}, {"SONAVEX_OS_MAJOR", version}}),
                      std::string("SONAVEX_OS_MAJOR is '") + version + "'");
}

TEST(Arguments, HelpAndVersionSucceed) {
    const Outcome version = Measure({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "sonavex-measure " SONAVEX_VERSION "\n");
    EXPECT_EQ(version.errors, "");
    const Outcome help = Measure({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* command : {"devices", "run", "file"}) EXPECT_THAT(help.output, HasSubstr(command));
    EXPECT_EQ(help.errors, "");
}

TEST(Arguments, HelpOfACommandNamesItsOptions) {
    const Outcome run = Measure({"run", "--help"});
    EXPECT_EQ(run.status, 0);
    for (const char* option : {"--input", "--output", "--rate", "--tone", "--level", "--frequency",
                               "--no-mute", "--seconds", "--json"})
        EXPECT_THAT(run.output, HasSubstr(option));
    const Outcome file = Measure({"file", "--help"});
    EXPECT_EQ(file.status, 0);
    for (const char* option : {"--write", "--tone", "--frequency", "--low-edge", "--no-mute", "--json"})
        EXPECT_THAT(file.output, HasSubstr(option));
}

}  // namespace
}  // namespace sonavex
