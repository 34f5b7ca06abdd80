// Recordings of all formats, channel counts and lengths, and files that are not recordings.

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <random>

#include "support/Recordings.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using nlohmann::ordered_json;
using testing::HasSubstr;

Outcome MeasureFile(const RecordingFile& file, const Arguments& more = {}) {
    Arguments arguments{"file", file.Path(), "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return Measure(arguments);
}

std::vector<ordered_json> Updates(const Outcome& outcome, int status) {
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.errors, "");
    std::vector<ordered_json> lines = outcome.Json();
    std::int64_t block = 18;
    for (const ordered_json& line : lines) {
        ExpectShape(line, false);
        EXPECT_EQ(line["block"], block);
        block += 19;
    }
    return lines;
}

// The first update of a complete cycle.
ordered_json Settled(const Outcome& outcome) {
    const std::vector<ordered_json> lines = Updates(outcome, 0);
    EXPECT_EQ(lines.size(), 2U);
    if (lines.size() != 2) return {};
    EXPECT_EQ(lines[0]["settled"], false);
    EXPECT_EQ(lines[1]["settled"], true);
    return lines[1];
}

struct Format {
    const char* name;
    int format;
    double stepOf16Bit;  // tolerance of a sample, in 16-bit steps
};

class FileFormats : public testing::TestWithParam<Format> {};

TEST_P(FileFormats, ScaleToSixteenBit) {
    const Format& format = GetParam();
    const RecordingFile file({32000, 2, format.format}, Sine(1000.0, 32000, 0.5));
    const ordered_json line = Settled(MeasureFile(file));
    EXPECT_EQ(line["frequency"], "1000");
    EXPECT_EQ(line["peakBin"], 128);
    EXPECT_NEAR(line["adcPeak"].get<double>(), 16384.0, format.stepOf16Bit);
    EXPECT_NEAR(std::stod(line["adc"].get<std::string>()), line["adcPeak"].get<double>() / 327.6, 0.51);
    EXPECT_EQ(line["dac"], "Muted");
}

INSTANTIATE_TEST_SUITE_P(Samples, FileFormats,
                         testing::Values(Format{"Pcm16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1.0},
                                         Format{"Pcm24", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 1.0},
                                         Format{"Pcm32", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 1.0},
                                         Format{"Pcm8", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 256.0},
                                         Format{"Float", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 1.0},
                                         Format{"Double", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 1.0},
                                         Format{"ULaw", SF_FORMAT_WAV | SF_FORMAT_ULAW, 512.0},
                                         Format{"Flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 1.0},
                                         Format{"Aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 1.0}),
                         [](const auto& test) { return test.param.name; });

TEST(File, MonoFeedsBothChannels) {
    const RecordingFile mono({32000, 1}, Sine(1000.0, 32000, 0.5));
    const RecordingFile stereo({32000, 2}, Sine(1000.0, 32000, 0.5));
    EXPECT_EQ(Settled(MeasureFile(mono)), Settled(MeasureFile(stereo)));
}

TEST(File, OfManyChannelsTheFirstTwoCount) {
    const RecordedSignal tone = Sine(1000.0, 32000, 0.25);
    const RecordedSignal other = Sine(3000.0, 32000, 0.9);
    const RecordingFile three({32000, 3}, [&](std::int64_t frame, int channel) {
        return channel < 2 ? tone(frame, channel) : other(frame, channel);
    });
    const RecordingFile two({32000, 2}, tone);
    EXPECT_EQ(Settled(MeasureFile(three)), Settled(MeasureFile(two)));
    // The second channel counts too.
    const RecordingFile second({32000, 2}, [&](std::int64_t frame, int channel) {
        return channel == 1 ? other(frame, channel) : 0.0;
    });
    EXPECT_EQ(Settled(MeasureFile(second))["frequency"], "3000");
}

TEST(File, ValuesBeyondFullScaleClip) {
    const RecordingFile file({32000, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT}, Sine(1000.0, 32000, 10.0));
    const ordered_json line = Settled(MeasureFile(file));
    EXPECT_EQ(line["adc"], "Ovr");
    EXPECT_EQ(line["adcPeak"], 32760);
    // A sine clipped almost to a square has a third harmonic of almost a third.
    EXPECT_THAT(line["db"][1].get<std::string>(), testing::StartsWith("-09."));
}

TEST(File, ValuesThatAreNoNumbersAreSilent) {
    const RecordedSignal tone = Sine(1000.0, 32000, 0.5);
    const RecordingFile file(
        {32000, 2, SF_FORMAT_WAV | SF_FORMAT_FLOAT}, [&](std::int64_t frame, int channel) {
            return channel == 1 ? std::numeric_limits<double>::quiet_NaN() : tone(frame, channel);
        });
    const RecordingFile silent(
        {32000, 2, SF_FORMAT_WAV | SF_FORMAT_FLOAT},
        [&](std::int64_t frame, int channel) { return channel == 1 ? 0.0 : tone(frame, channel); });
    EXPECT_EQ(Settled(MeasureFile(file)), Settled(MeasureFile(silent)));
    const RecordingFile infinite({32000, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT}, [](std::int64_t frame, int) {
        return frame % 32 < 16 ? std::numeric_limits<double>::infinity()
                               : -std::numeric_limits<double>::infinity();
    });
    EXPECT_EQ(Settled(MeasureFile(infinite))["adcPeak"], 32760);
}

TEST(File, RemainderIsDropped) {
    for (const std::int64_t rest : {std::int64_t{0}, std::int64_t{1}, kRecordedBlockFrames - 1}) {
        const RecordingFile file(
            {32000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 18 * kRecordedBlockFrames + rest},
            Sine(1000.0, 32000, 0.5));
        EXPECT_EQ(Updates(MeasureFile(file, {"--write", file.Other("out.wav")}), 0).size(), 1U);
        EXPECT_EQ(ReadSamples(file.Other("out.wav")).frames, 18 * kRecordedBlockFrames);
    }
}

TEST(File, FirstCycleAveragesEighteenBlocksOverNineteen) {
    const RecordingFile file({32000, 1}, [](std::int64_t frame, int channel) {
        return Sine(1000.0, 32000, 0.4)(frame, channel) + Sine(2000.0, 32000, 0.04)(frame, channel);
    });
    const std::vector<ordered_json> lines = Updates(MeasureFile(file), 0);
    ASSERT_EQ(lines.size(), 2U);
    const double first = std::stod(lines[0]["thd"].get<std::string>());
    const double second = std::stod(lines[1]["thd"].get<std::string>());
    EXPECT_NEAR(second, 100.0 * 0.1 / std::sqrt(1.01), 0.003);
    EXPECT_NEAR(first, second * 18.0 / 19.0, 0.0002);
}

TEST(File, FewerThanEighteenBlocksGiveNoReading) {
    for (const std::int64_t frames : {std::int64_t{1}, kRecordedBlockFrames, 18 * kRecordedBlockFrames - 1}) {
        const RecordingFile file({32000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16, frames},
                                 Sine(1000.0, 32000, 0.5));
        const Outcome outcome = MeasureFile(file);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.errors, "sonavex-measure: The recording is too short: " +
                                      std::to_string(frames / kRecordedBlockFrames) +
                                      " of the 18 blocks of 2048 frames that a reading needs.\n");
    }
}

TEST(File, NeverLockedIsAStatusOfItsOwn) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> level(-0.5, 0.5);
    const RecordingFile silence({32000, 1}, Silence());
    const RecordingFile noise({32000, 1}, [&](std::int64_t, int) { return level(random); });
    const RecordingFile tone({32000, 1}, Sine(1000.0, 32000, 0.5));
    for (const Outcome& outcome :
         {MeasureFile(silence), MeasureFile(noise, {"--frequency", "30"}),
          MeasureFile(tone, {"--frequency", "1014"}), MeasureFile(tone, {"--frequency", "986"})}) {
        const std::vector<ordered_json> lines = Updates(outcome, 2);
        ASSERT_EQ(lines.size(), 2U);
        for (const ordered_json& line : lines) {
            EXPECT_EQ(line["locked"], false);
            EXPECT_EQ(line["settled"], false);
            EXPECT_EQ(line["thd"], "N/A");
            EXPECT_EQ(Captions(line, "percent"), "       ");
        }
    }
    EXPECT_EQ(Settled(MeasureFile(tone, {"--frequency", "1013"}))["frequency"], "1013");
    EXPECT_EQ(Settled(MeasureFile(tone, {"--frequency", "987"}))["frequency"], "987");
}

TEST(File, LostLockUnsettlesTheCycle) {
    const std::int64_t gap = 20 * kRecordedBlockFrames;
    const RecordedSignal tone = Sine(1000.0, 32000, 0.5);
    const RecordingFile file(
        {32000, 1, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 56 * kRecordedBlockFrames},
        [&](std::int64_t frame, int channel) {
            return frame >= gap && frame < gap + kRecordedBlockFrames ? 0.0 : tone(frame, channel);
        });
    const std::vector<ordered_json> lines = Updates(MeasureFile(file), 0);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[1]["settled"], false);
    EXPECT_EQ(lines[1]["locked"], true);
    EXPECT_EQ(lines[2]["settled"], true);
}

TEST(File, EverySupportedRateIsMeasured) {
    for (const std::int32_t rateHz :
         {48000, 44100, 32000, 22050, 16000, 8000, 4000, 88200, 96000, 176400, 192000}) {
        const double frequencyHz = rateHz / 32.0;
        const RecordingFile file({rateHz, 1}, Sine(frequencyHz, rateHz, 0.5));
        const ordered_json line = Settled(MeasureFile(file));
        EXPECT_EQ(line["peakBin"], 128) << rateHz;
        EXPECT_EQ(line["frequency"], std::to_string(static_cast<int>(frequencyHz)));
    }
}

TEST(File, FixedFrequencyFollowsTheRate) {
    const RecordingFile file({192000, 1}, Sine(60000.0, 192000, 0.5));
    EXPECT_EQ(Settled(MeasureFile(file, {"--frequency", "60000"}))["peakBin"], 1280);
    ExpectRefusal(MeasureFile(file, {"--frequency", "96001"}),
                  "--frequency takes 1 to 96000 Hz, not '96001'");
    const RecordingFile slow({8000, 1}, Silence());
    ExpectRefusal(MeasureFile(slow, {"--frequency", "24001"}),
                  "--frequency takes 1 to 24000 Hz, not '24001'");
    ExpectRefusal(MeasureFile(slow, {"--frequency", "0"}), "--frequency takes 1 to 24000 Hz, not '0'");
}

TEST(File, OtherRatesAreRefused) {
    for (const std::int32_t rateHz : {64000, 11025, 47999}) {
        const RecordingFile file({rateHz, 1}, Silence());
        ExpectRefusal(MeasureFile(file),
                      "has a sampling rate of " + std::to_string(rateHz) + " Hz, which is not one of");
    }
}

TEST(File, WhatIsNoRecordingIsRefused) {
    const RecordingFile file;
    const auto measure = [](const std::filesystem::path& path) { return Measure({"file", path}); };
    ExpectRefusal(measure(file.Path()), "cannot be read: No such file or directory");
    ExpectRefusal(measure(""), "cannot be read: No such file or directory");
    ExpectRefusal(measure(file.Path().parent_path()), "is a folder.");
    std::ofstream(file.Path()) << "This is no sound at all, but a long enough text.\n";
    ExpectRefusal(measure(file.Path()), "cannot be read: Format not recognised");
    std::ofstream(file.Path()).flush();
    ExpectRefusal(measure(file.Path()), "cannot be read: Format not recognised");
    std::ofstream(file.Other("two\nlines")) << "no sound";
    ExpectRefusal(measure(file.Other("two\nlines")), "two lines' cannot be read");
}

TEST(File, EmptyRecordingIsRefused) {
    const RecordingFile file({32000, 2, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 0}, Silence());
    ExpectRefusal(MeasureFile(file), "is empty.");
}

TEST(File, DamagedRecordingIsAnError) {
    const RecordingFile file({32000, 2, SF_FORMAT_FLAC | SF_FORMAT_PCM_16}, Sine(1000.0, 32000, 0.5));
    std::filesystem::resize_file(file.Path(), std::filesystem::file_size(file.Path()) / 2);
    const Outcome outcome = MeasureFile(file);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("The recording cannot be read to its end"));
}

TEST(File, RecordingThatEndsEarlyIsRefused) {
    const RecordingFile file({32000, 2}, Sine(1000.0, 32000, 0.5));
    std::filesystem::resize_file(file.Path(), std::filesystem::file_size(file.Path()) / 2);
    ExpectRefusal(MeasureFile(file), "ends early: 37882 of 75776 frames.");
}

TEST(File, TableReadsLikeTheReport) {
    const RecordingFile file({32000, 1}, Sine(1000.0, 32000, 0.5));
    const Outcome outcome = Measure({"file", file.Path()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_THAT(outcome.output, testing::StartsWith("Quenby Software Audio Sonavex\nDate : "));
    EXPECT_THAT(outcome.output, HasSubstr("\nFrequency : 1000 Hz\nADC/DAC Level: 50\n"));
    EXPECT_THAT(outcome.output, testing::Not(HasSubstr("SIMULATED")));
    EXPECT_THAT(outcome.output, testing::ContainsRegex(kReadingsPattern));
}

TEST(File, UnlockedTableSaysSo) {
    const RecordingFile file({32000, 1}, Silence());
    const Outcome outcome = Measure({"file", file.Path()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.output, HasSubstr("\nFrequency : 0 Hz (not locked)\n"));
    EXPECT_THAT(outcome.output, testing::ContainsRegex("\nThd % +N/A\ndB *\n$"));
}

TEST(File, UnwritableOutputIsAnError) {
    const RecordingFile file({32000, 1}, Sine(1000.0, 32000, 0.5));
    for (const Arguments& arguments :
         {Arguments{"file", file.Path(), "--json"}, Arguments{"file", file.Path()}}) {
        MeasureProgram program(arguments, {}, {"/dev/full", {}});
        ExpectRefusal(program.End(std::chrono::seconds(20)),
                      "The readings cannot be written to the standard output.");
    }
}

}  // namespace
}  // namespace sonavex
