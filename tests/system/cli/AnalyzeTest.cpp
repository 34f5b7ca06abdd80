// The precise measurement of recordings on the command line.

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

#include "support/Recordings.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using nlohmann::ordered_json;
using testing::HasSubstr;

constexpr int kDoubles = SF_FORMAT_WAV | SF_FORMAT_DOUBLE;
constexpr std::int64_t kThirdOfSecond = 16384;

// 1000.366 Hz with harmonics of -40 and -60 dB.
double Distorted(std::int64_t frame) {
    const double t = 2.0 * std::numbers::pi * std::fmod(1000.366 * static_cast<double>(frame) / 48000.0, 1.0);
    return 0.5 * (std::sin(t) + 0.01 * std::sin(2.0 * t + 0.5) + 0.001 * std::sin(3.0 * t - 1.0));
}

RecordedSignal DistortedTone() {
    return [](std::int64_t frame, int) { return Distorted(frame); };
}

RecordingFile DistortedFile(std::int64_t frames = 8 * kThirdOfSecond, int channels = 1) {
    return {{48000, channels, kDoubles, frames}, DistortedTone()};
}

Outcome Analyze(const RecordingFile& file, const Arguments& more = {}) {
    Arguments arguments{"analyze", file.Path()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Measure(arguments);
}

ordered_json AnalyzedJson(const RecordingFile& file, int status, Arguments more = {}) {
    more.push_back("--json");
    const Outcome outcome = Analyze(file, more);
    EXPECT_EQ(outcome.status, status) << outcome.errors;
    EXPECT_EQ(outcome.errors, "");
    const std::vector<ordered_json> lines = outcome.Json();
    EXPECT_EQ(lines.size(), 1U);
    return lines.empty() ? ordered_json::object() : lines.front();
}

// Every name is in every reading, void or not.
void ExpectNames(const ordered_json& reading) {
    for (const char* name : {"valid",
                             "void",
                             "warnings",
                             "frequency_hz",
                             "level_dbfs",
                             "dc",
                             "thd_percent",
                             "thd_db",
                             "thd_r_percent",
                             "thdn_db",
                             "thdn_r_db",
                             "thdn_notch_db",
                             "snr_db",
                             "enob",
                             "noise_dbfs",
                             "noise_a_dbfs",
                             "noise_468_dbfs",
                             "noise_ccir_rms_dbfs",
                             "harmonic",
                             "spurs",
                             "mod_d2",
                             "mod_d3",
                             "mod",
                             "mod_rms",
                             "mod_aes17",
                             "mod_db",
                             "dfd_d2",
                             "dfd_d3",
                             "dfd_aes17",
                             "dfd_aes17_db",
                             "tdn_db",
                             "uncertainty",
                             "at_most",
                             "lines",
                             "length",
                             "blocks",
                             "bits",
                             "float",
                             "window",
                             "band"})
        EXPECT_TRUE(reading.contains(name)) << name;
}

TEST(Analyze, ToneWithHarmonics) {
    const ordered_json reading = AnalyzedJson(DistortedFile(), 0);
    ExpectNames(reading);
    EXPECT_EQ(reading["valid"], true);
    EXPECT_EQ(reading["void"], ordered_json::array());
    EXPECT_EQ(reading["warnings"], ordered_json::array());
    EXPECT_NEAR(reading["frequency_hz"].get<double>(), 1000.366, 1e-6);
    EXPECT_NEAR(reading["level_dbfs"].get<double>(), 20.0 * std::log10(0.5), 1e-5);
    EXPECT_NEAR(reading["dc"].get<double>(), 0.0, 1e-9);
    const double thd = std::hypot(0.01, 0.001);
    EXPECT_NEAR(reading["thd_percent"].get<double>(), 100.0 * thd, 1e-6);
    EXPECT_NEAR(reading["thd_db"].get<double>(), 20.0 * std::log10(thd), 1e-5);
    EXPECT_NEAR(reading["thd_r_percent"].get<double>(), 100.0 * thd / std::hypot(1.0, thd), 1e-6);
    EXPECT_NEAR(reading["thdn_db"].get<double>(), 20.0 * std::log10(thd), 1e-4);
    ASSERT_EQ(reading["harmonic"].size(), 19U);
    const ordered_json& second = reading["harmonic"][0];
    EXPECT_EQ(second["n"], 2);
    EXPECT_NEAR(second["level_dbc"].get<double>(), -40.0, 1e-5);
    EXPECT_NEAR(second["phase_deg"].get<double>(), 0.5 * 180.0 / std::numbers::pi, 1e-3);
    EXPECT_NEAR(reading["harmonic"][1]["phase_deg"].get<double>(), -180.0 / std::numbers::pi, 1e-3);
    EXPECT_TRUE(reading["mod"].is_null());
    EXPECT_EQ(reading["lines"], 20);
    EXPECT_EQ(reading["length"], 65536);
    EXPECT_EQ(reading["blocks"], 5);
    EXPECT_EQ(reading["bits"], 53);
    EXPECT_EQ(reading["float"], true);
    EXPECT_EQ(reading["band"], ordered_json({20.0, 20000.0}));
}

TEST(Analyze, RecordsEndAtTheLastFrame) {
    // The fault is in the last frames, which a whole number of steps would not reach.
    const std::int64_t frames = 8 * kThirdOfSecond + 5000;
    const RecordingFile file({48000, 1, kDoubles, frames}, [](std::int64_t frame, int) {
        return frame == frames - 1 ? std::numeric_limits<double>::quiet_NaN() : Distorted(frame);
    });
    const ordered_json reading = AnalyzedJson(file, 2);
    EXPECT_EQ(reading["void"], ordered_json({"not finite"}));
    EXPECT_EQ(reading["blocks"], 6);
}

TEST(Analyze, OneVoidRecordVoidsTheReading) {
    const RecordingFile file({48000, 1, kDoubles, 12 * kThirdOfSecond}, [](std::int64_t frame, int) {
        return Distorted(frame < 40000 ? frame : frame + 1);
    });
    const ordered_json reading = AnalyzedJson(file, 2);
    ExpectNames(reading);
    EXPECT_EQ(reading["valid"], false);
    EXPECT_EQ(reading["void"], ordered_json({"disturbed"}));
    EXPECT_EQ(reading["sentences"], ordered_json({"Break at 0.83 s, 1 sample."}));
    for (const char* name : {"frequency_hz", "level_dbfs", "thd_db", "thdn_db", "noise_dbfs"})
        EXPECT_TRUE(reading[name].is_null()) << name;
    EXPECT_EQ(reading["harmonic"], ordered_json::array());
}

TEST(Analyze, ShortAndSilentRecordingsAreVoid) {
    EXPECT_EQ(AnalyzedJson(DistortedFile(65535), 2)["void"], ordered_json({"too short"}));
    EXPECT_EQ(AnalyzedJson(DistortedFile(65536), 0)["blocks"], 1);
    EXPECT_EQ(AnalyzedJson(DistortedFile(65535), 0, {"--length", "32768"})["length"], 32768);
    const RecordingFile silence({48000, 1, kDoubles, 70000}, Silence());
    EXPECT_EQ(AnalyzedJson(silence, 2)["void"], ordered_json({"silence"}));
    EXPECT_EQ(AnalyzedJson(silence, 0, {"--mode", "noise"})["noise_dbfs"], -400.0);
}

TEST(Analyze, ChannelBandAndOrder) {
    const RecordingFile file({48000, 2, kDoubles, 70000}, [](std::int64_t frame, int channel) {
        return channel == 0 ? Distorted(frame) : Sine(3000.5, 48000, 0.25)(frame, 0);
    });
    EXPECT_NEAR(AnalyzedJson(file, 0, {"--channel", "1"})["frequency_hz"].get<double>(), 3000.5, 1e-6);
    EXPECT_NEAR(AnalyzedJson(file, 0, {"--channel", "0"})["frequency_hz"].get<double>(), 1000.366, 1e-6);
    const ordered_json second = AnalyzedJson(file, 0, {"--harmonics", "2"});
    EXPECT_NEAR(second["thd_db"].get<double>(), -40.0, 1e-5);
    const ordered_json narrow = AnalyzedJson(file, 0, {"--band", "1500:2500"});
    EXPECT_NEAR(narrow["thdn_db"].get<double>(), -40.0, 1e-5);
    EXPECT_EQ(narrow["band"], ordered_json({1500.0, 2500.0}));
    const ordered_json none = AnalyzedJson(file, 0, {"--band", "20:1500"});
    EXPECT_TRUE(none["thd_db"].is_null());
    EXPECT_TRUE(none["thd_percent"].is_null());
    EXPECT_EQ(none["warnings"], ordered_json({"no harmonic in the band"}));
}

TEST(Analyze, FundamentalNeedNotBeTheStrongest) {
    const RecordingFile file({48000, 1, kDoubles, 70000}, [](std::int64_t frame, int) {
        return 0.1 * Distorted(frame) + Sine(5000.0, 48000, 0.5)(frame, 0);
    });
    EXPECT_NEAR(AnalyzedJson(file, 0)["frequency_hz"].get<double>(), 5000.0, 1e-6);
    const ordered_json reading = AnalyzedJson(file, 0, {"--fundamental", "1004"});
    EXPECT_NEAR(reading["frequency_hz"].get<double>(), 1000.366, 1e-6);
    EXPECT_EQ(AnalyzedJson(file, 2, {"--fundamental", "1100"})["void"], ordered_json({"no tone"}));
}

TEST(Analyze, OtherModes) {
    const RecordingFile pair({48000, 1, kDoubles, 70000}, [](std::int64_t frame, int) {
        const double upper = Sine(7000.0, 48000, 0.15)(frame, 0);
        return Sine(60.0, 48000, 0.6)(frame, 0) + upper * (1.0 + Sine(60.0, 48000, 0.01)(frame, 0));
    });
    const ordered_json imd = AnalyzedJson(pair, 0, {"--mode", "imd", "--tones", "60,7000"});
    ExpectNames(imd);
    ASSERT_EQ(imd["frequency_hz"].size(), 2U);
    EXPECT_NEAR(imd["frequency_hz"][0].get<double>(), 60.0, 1e-6);
    EXPECT_NEAR(imd["level_dbfs"][1].get<double>(), 20.0 * std::log10(0.15), 1e-5);
    EXPECT_NEAR(imd["mod_d2"].get<double>(), 0.01, 1e-7);
    EXPECT_NEAR(imd["mod_aes17"].get<double>(), 0.01 / std::numbers::sqrt2, 1e-7);
    EXPECT_TRUE(imd["thd_db"].is_null());
    EXPECT_EQ(AnalyzedJson(pair, 0, {"--mode", "imd"})["mod_d2"], imd["mod_d2"]);
    const ordered_json multitone = AnalyzedJson(pair, 0, {"--mode", "multitone", "--tones", "60,7000"});
    EXPECT_NEAR(multitone["tdn_db"].get<double>(),
                20.0 * std::log10(0.15 * 0.01 / std::numbers::sqrt2 / std::hypot(0.6, 0.15)), 1e-3);
}

TEST(Analyze, TableNamesEveryValue) {
    const Outcome outcome = Analyze(DistortedFile());
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, testing::StartsWith("VALID\nFrequency"));
    for (const char* text : {"THD  ", "THD+N", "SNR", "H2  ", "5 records of 65536 samples at 48000 Hz"})
        EXPECT_THAT(outcome.output, HasSubstr(text));
    EXPECT_EQ(Measure({"analyse", DistortedFile().Path()}).output, outcome.output);
    const Outcome tooShort = Analyze(DistortedFile(100));
    EXPECT_EQ(tooShort.status, 2);
    EXPECT_THAT(tooShort.output, testing::StartsWith("VOID\ntoo short: "));
}

TEST(Analyze, ResidualIsWrittenAsFloats) {
    const RecordingFile file({48000, 1, kDoubles, 70000}, [](std::int64_t frame, int) {
        return Distorted(frame) + Sine(5500.0, 48000, 0.01)(frame, 0);
    });
    const std::string residual = file.Other("residual.wav");
    AnalyzedJson(file, 0, {"--residual", residual});
    const Samples samples = ReadSamples(residual);
    EXPECT_EQ(samples.format & SF_FORMAT_SUBMASK, SF_FORMAT_FLOAT);
    EXPECT_EQ(samples.frames, 65536);
    EXPECT_EQ(samples.channels, 1);
    const ordered_json left = ordered_json::parse(Measure({"analyze", residual, "--json"}).output);
    EXPECT_NEAR(left["frequency_hz"].get<double>(), 5500.0, 1e-3);
    EXPECT_NEAR(left["level_dbfs"].get<double>(), -40.0, 1e-3);
}

TEST(Analyze, SpectrumShowsLevelsAndConditions) {
    const RecordingFile file({48000, 1, kDoubles, 70000}, Sine(48000.0 * 1000 / 65536, 48000, 0.1));
    const std::string spectrum = file.Other("spectrum.csv");
    AnalyzedJson(file, 0, {"--spectrum", spectrum});
    std::ifstream csv(spectrum);
    std::stringstream text;
    text << csv.rdbuf();
    EXPECT_THAT(text.str(), HasSubstr("# ENBW: 2.6319"));
    EXPECT_THAT(text.str(), HasSubstr("# Rate: 48000 Hz; record: 65536 samples"));
    EXPECT_THAT(text.str(), HasSubstr("\n732.421875,-20.0000\n"));
}

TEST(Analyze, SavedReadingsJudgeOthers) {
    const RecordingFile source({48000, 1, kDoubles, 70000}, [](std::int64_t frame, int) {
        return Sine(997.0, 48000, 0.5)(frame, 0) + Sine(1994.0, 48000, 0.5e-3)(frame, 0);
    });
    const std::string reference = source.Other("reference.json");
    AnalyzedJson(source, 0, {"--save-reference", reference});
    const auto met = [&](const RecordingFile& file, const std::string& option, const std::string& saved,
                         const std::string& rule) {
        const ordered_json reading = AnalyzedJson(file, 0, {option, saved});
        for (const ordered_json& result : reading["rules"])
            if (result["rule"] == rule) return result["met"].get<bool>();
        ADD_FAILURE() << rule;
        return false;
    };
    // The source's -60 dB are 20 dB below this file's -40 dB, but equal to themselves.
    EXPECT_TRUE(met(DistortedFile(70000), "--reference", reference, "source"));
    EXPECT_FALSE(met(source, "--reference", reference, "source"));
    for (const auto& [amplitude, expected] : {std::pair{1e-4, true}, {4e-3, false}}) {
        const RecordingFile off({48000, 1, kDoubles, 70000}, Sine(3000.0, 48000, amplitude));
        const std::string idle = off.Other("idle.json");
        AnalyzedJson(off, 0, {"--mode", "noise", "--save-reference", idle});
        EXPECT_EQ(met(DistortedFile(70000), "--idle", idle, "idle"), expected);
    }
    // A void reading is not saved.
    const std::string none = source.Other("none.json");
    AnalyzedJson(DistortedFile(100), 2, {"--save-reference", none});
    EXPECT_FALSE(std::filesystem::exists(none));
}

TEST(Analyze, WrongArgumentsAreOneLine) {
    const RecordingFile mono = DistortedFile(70000);
    const std::vector<std::pair<Arguments, std::string>> refused = {
        {{"--channel", "2"}, "--channel takes 0 or 1"},
        {{"--channel", "1"}, "The recording has only one channel."},
        {{"--band", "100"}, "--band takes LOW:HIGH"},
        {{"--band", "100:50"}, "--band takes LOW:HIGH"},
        {{"--band", "30000:40000"}, "The lower end of --band is not below half"},
        {{"--harmonics", "1"}, "--harmonics takes 2 to 1000"},
        {{"--length", "5000"}, "--length takes a power of two"},
        {{"--mode", "all"}, "--mode takes thd, imd, multitone or noise"},
        {{"--mode", "multitone"}, "needs --tones"},
        {{"--mode", "imd", "--tones", "1,2,3"}, "takes two tones"},
        {{"--tones", "60,7000"}, "--tones is for the modes imd and multitone."},
        {{"--mode", "imd", "--tones", "1000,1001"}, "closer than 6 bins"},
        {{"--mode", "imd", "--tones", "1000,,3"}, "--tones takes frequencies"},
        {{"--fundamental", "24000"}, "--fundamental is not below half"},
        {{"--mode", "noise", "--fundamental", "1000"}, "--fundamental is for the mode thd."},
        {{"--reference", "/nonexistent"}, "cannot be read"},
        {{"--idle", mono.Path()}, "contains no saved reading"},
        {{"--residual", mono.Path()}, "cannot be written over itself"},
        {{"--spectrum", "/nonexistent/file"}, "cannot be written: "},
        {{"--residual", "-"}, "--residual takes the name of a file"},
    };
    for (const auto& [arguments, text] : refused) ExpectRefusal(Analyze(mono, arguments), text);
    ExpectRefusal(Measure({"analyze", mono.Other("none")}), "cannot be read: No such file");
    ExpectRefusal(Measure({"analyze", ""}), "The name of the recording is empty.");
}

}  // namespace
}  // namespace sonavex
