// The window's measurement of a recording and that of the command line give the same reading.

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "core/precise/RecordingMeasurement.h"
#include "core/precise/results/AnalyzedReading.h"
#include "core/precise/results/ValidityRules.h"
#include "platform/sndfile/SndfileFiles.h"
#include "support/InlineBackground.h"
#include "support/Recordings.h"
#include "support/VirtualEventLoop.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

constexpr std::int64_t kComparedFrames = 30000;

// The reading as the command line prints it.
std::string ReadByWindow(const std::string& path, const PreciseSettings& settings) {
    VirtualEventLoop loop;
    InlineBackground background(loop);
    const SndfileFiles files;
    RecordingMeasurement measurement({files, background});
    std::string json;
    measurement.OnReading = [&](const LinesReading& values, const auto&) {
        AnalyzedReading reading;
        reading.mode = settings.mode;
        reading.values = values;
        reading.rateHz = measurement.Opened().rateHz;
        reading.rules = JudgeReading(values.reading, std::nullopt, std::nullopt);
        json = AnalyzedJson(reading) + '\n';
    };
    measurement.Open(path);
    measurement.MeasureAll(settings);
    for (int step = 0; step < 1000 && measurement.Measuring(); ++step)
        loop.Advance(std::chrono::milliseconds(1));
    return json;
}

struct ComparedRecording {
    const char* name;
    int format;
    PreciseMode mode;
    double stepAt = 1e9;  // frame from which the level is higher
};

class AnalyzedTwice : public testing::TestWithParam<ComparedRecording> {};

TEST_P(AnalyzedTwice, IsTheSame) {
    const ComparedRecording& compared = GetParam();
    const RecordingFile file(
        {48000, 2, compared.format, kComparedFrames}, [&compared](std::int64_t frame, int channel) {
            const auto t = static_cast<double>(frame);
            const double turn = 2.0 * std::numbers::pi * t / 48000.0;
            const double gain = t < compared.stepAt ? 0.3 : 0.4;
            return gain * std::sin(1000.3 * turn) + 0.01 * (channel + 1) * std::sin(2000.6 * turn);
        });
    PreciseSettings settings;
    settings.length = 8192;
    settings.channel = 1;
    settings.mode = compared.mode;
    const Outcome command = Measure({"analyze", file.Path(), "--length", "8192", "--channel", "1", "--mode",
                                     NameOf(compared.mode), "--json"});
    EXPECT_EQ(command.output, ReadByWindow(file.Path(), settings));
    EXPECT_NE(command.output.find(compared.stepAt < 1e9 ? "disturbed" : "\"valid\":true"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Recordings, AnalyzedTwice,
    testing::Values(ComparedRecording{"Tone24", SF_FORMAT_WAV | SF_FORMAT_PCM_24, PreciseMode::kTone},
                    ComparedRecording{"Flac16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, PreciseMode::kTone},
                    ComparedRecording{"Noise", SF_FORMAT_WAV | SF_FORMAT_FLOAT, PreciseMode::kNoise},
                    ComparedRecording{"Pair", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, PreciseMode::kPair},
                    ComparedRecording{"Disturbed", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, PreciseMode::kTone,
                                      15000.0}),
    [](const auto& test) { return test.param.name; });

}  // namespace
}  // namespace sonavex
