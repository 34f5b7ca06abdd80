// Output of `sonavex-measure file --write`: the blocks that would have been played.

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>

#include "support/Recordings.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

// Measures a recording and returns the written samples.
Samples OutputOf(const RecordingFile& file, const Arguments& more, int status = 0) {
    const auto path = file.Other("output.wav");
    Arguments arguments{"file", file.Path(), "--write", path};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = Measure(arguments);
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.errors, "");
    return ReadSamples(path);
}

// Amplitude of the sine in the first channel, starting at a frame.
double AmplitudeFrom(const Samples& samples, std::int64_t from) {
    double power = 0.0;
    for (std::int64_t i = from; i < samples.frames; ++i)
        power += static_cast<double>(samples.At(i, 0)) * samples.At(i, 0);
    return std::sqrt(2.0 * power / static_cast<double>(samples.frames - from));
}

std::string BytesOf(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

TEST(FileOutput, IsSixteenBitStereoOfWholeBlocks) {
    const RecordingFile file({22050, 1, SF_FORMAT_WAV | SF_FORMAT_FLOAT, 20 * kRecordedBlockFrames + 100},
                             Sine(1000.0, 22050, 0.5));
    const Samples output = OutputOf(file, {});
    EXPECT_EQ(output.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    EXPECT_EQ(output.channels, 2);
    EXPECT_EQ(output.rateHz, 22050);
    EXPECT_EQ(output.frames, 20 * kRecordedBlockFrames);
}

TEST(FileOutput, MutedIsSilentWithoutTone) {
    const RecordingFile file({32000, 2}, Sine(1000.0, 32000, 0.5));
    EXPECT_EQ(AmplitudeFrom(OutputOf(file, {}), 0), 0.0);
}

TEST(FileOutput, CarriesTheToneFromTheFirstFrameOn) {
    const RecordingFile file({32000, 2}, Silence());
    const Samples output = OutputOf(file, {"--tone", "sine:1234.5"}, 2);
    for (std::int64_t i = 0; i < output.frames; ++i) {
        const double phase = 2.0 * std::numbers::pi * 1234.5 / 32000.0 * static_cast<double>(i + 1);
        ASSERT_NEAR(output.At(i, 0), 32767.0 / 4.0 * std::sin(phase), 0.51) << i;
        ASSERT_EQ(output.At(i, 1), output.At(i, 0)) << i;
    }
}

TEST(FileOutput, AddsSeveralTones) {
    const RecordingFile file({32000, 2}, Silence());
    const Samples output = OutputOf(file, {"--tone", "sine:1000", "--tone", "sine:300"}, 2);
    for (std::int64_t i = 0; i < output.frames; ++i) {
        const double time = static_cast<double>(i + 1) / 32000.0;
        const double sum = std::sin(2.0 * std::numbers::pi * 1000.0 * time) +
                           std::sin(2.0 * std::numbers::pi * 300.0 * time);
        ASSERT_NEAR(output.At(i, 0), 32767.0 / 6.0 * sum, 0.51) << i;
    }
}

// The band-pass is symmetric about the middle of its 2048 taps.
TEST(FileOutput, WithoutMuteTheInputComesDelayed) {
    const RecordedSignal left = Sine(1000.0, 48000, 0.5);
    const RecordedSignal right = Sine(3000.0, 48000, 0.25);
    const RecordingFile file({48000, 2}, [&](std::int64_t frame, int channel) {
        return channel == 0 ? left(frame, 0) : right(frame, 1);
    });
    const Samples output = OutputOf(file, {"--no-mute"});
    for (std::int64_t i = kRecordedBlockFrames; i < output.frames; ++i) {
        const double time = (static_cast<double>(i) - 1023.5) / 48000.0;
        ASSERT_NEAR(output.At(i, 0), 16384.0 * std::sin(2.0 * std::numbers::pi * 1000.0 * time), 4.0) << i;
        ASSERT_NEAR(output.At(i, 1), 8192.0 * std::sin(2.0 * std::numbers::pi * 3000.0 * time), 4.0) << i;
    }
}

TEST(FileOutput, WithoutMuteTheBandEndsBelowAndAbove) {
    // At this rate the band-pass is sharp: full gain from 30 Hz up, none at 10 Hz and at 1970 Hz.
    const auto gainAt = [](double frequencyHz) {
        const RecordingFile file({4000, 1}, Sine(frequencyHz, 4000, 0.5));
        return AmplitudeFrom(OutputOf(file, {"--no-mute"}), 2 * kRecordedBlockFrames) / 16384.0;
    };
    EXPECT_LT(gainAt(10.0), 0.001);
    EXPECT_NEAR(gainAt(40.0), 1.0, 0.01);
    EXPECT_NEAR(gainAt(1000.0), 1.0, 0.01);
    EXPECT_NEAR(gainAt(1850.0), 1.0, 0.05);
    EXPECT_LT(gainAt(1970.0), 0.001);
}

TEST(FileOutput, LowEdgeMovesTheBand) {
    const RecordingFile file({4000, 1}, Sine(22.5, 4000, 0.5));
    const auto gainWith = [&](const Arguments& more) {
        Arguments arguments{"--no-mute"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return AmplitudeFrom(OutputOf(file, arguments), 2 * kRecordedBlockFrames) / 16384.0;
    };
    const double at25 = gainWith({"--low-edge", "25"});
    const double at20 = gainWith({"--low-edge", "20"});
    EXPECT_EQ(gainWith({}), at25);
    EXPECT_LT(at25, 0.4);
    EXPECT_GT(at20, 0.6);
}

TEST(FileOutput, SweepAdvancesByTheTimeOfTheBlocks) {
    // At 16000 Hz a block lasts 128 ms. The sweep ends after 2000 ms.
    const RecordingFile file({16000, 1}, Silence());
    const Samples output = OutputOf(file, {"--tone", "sine:100:1000:2000"}, 2);
    const auto frequencyOf = [&](std::int64_t block) {
        // Frequency between the first and the last rising zero crossing of the block.
        double first = -1.0;
        double last = -1.0;
        int periods = -1;
        for (std::int64_t i = block * kRecordedBlockFrames + 1; i < (block + 1) * kRecordedBlockFrames; ++i) {
            const double before = output.At(i - 1, 0);
            const double now = output.At(i, 0);
            if (!(before < 0.0 && now >= 0.0)) continue;
            last = static_cast<double>(i) - now / (now - before);
            if (first < 0.0) first = last;
            ++periods;
        }
        return periods * 16000.0 / (last - first);
    };
    for (std::int64_t block = 0; block <= 15; ++block)
        EXPECT_NEAR(frequencyOf(block), 100.0 + 0.45 * 128.0 * static_cast<double>(block), 0.5) << block;
    for (std::int64_t block = 16; block < 37; ++block) EXPECT_NEAR(frequencyOf(block), 1000.0, 0.5) << block;
}

TEST(FileOutput, NeverGoesOverTheRecording) {
    const RecordingFile file({32000, 1}, Sine(1000.0, 32000, 0.5));
    const std::string before = BytesOf(file.Path());
    std::filesystem::create_symlink(file.Path(), file.Other("link"));
    std::filesystem::create_hard_link(file.Path(), file.Other("twin"));
    const auto roundabout = file.Path().parent_path() / "." / file.Path().filename();
    for (const std::filesystem::path& path :
         {file.Path(), file.Other("link"), file.Other("twin"), roundabout})
        ExpectRefusal(Measure({"file", file.Path(), "--write", path}),
                      "The recording cannot be written over itself.");
    EXPECT_EQ(BytesOf(file.Path()), before);
}

TEST(FileOutput, WrongArgumentsLeaveAnEarlierFileAlone) {
    const RecordingFile file({32000, 1}, Silence());
    std::ofstream(file.Other("old.wav")) << "precious";
    ExpectRefusal(Measure({"file", file.Path(), "--write", file.Other("old.wav"), "--tone", "sine:0"}),
                  "has a frequency outside");
    ExpectRefusal(Measure({"file", file.Other("missing"), "--write", file.Other("old.wav")}),
                  "No such file or directory");
    EXPECT_EQ(BytesOf(file.Other("old.wav")), "precious");
}

TEST(FileOutput, ThatCannotBeWrittenIsAnError) {
    const RecordingFile file({32000, 1}, Sine(1000.0, 32000, 0.5));
    const auto write = [&](const std::filesystem::path& path) {
        return Measure({"file", file.Path(), "--write", path});
    };
    ExpectRefusal(write(file.Other("missing") / "output.wav"),
                  "cannot be written: No such file or directory");
    ExpectRefusal(write(file.Path().parent_path()), "cannot be written: Is a directory");
    ExpectRefusal(write("/dev/full"),
                  "The output file '/dev/full' cannot be written: No space left on device");
}

}  // namespace
}  // namespace sonavex
