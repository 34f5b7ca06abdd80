// Every bit of a recording is read, whatever its format.

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "app/measure/MeasureError.h"
#include "app/measure/Recording.h"
#include "support/Recordings.h"

namespace sonavex {
namespace {

constexpr std::size_t kFineRecordingFrames = 5000;

struct RecordingFormat {
    const char* name;
    int format;
    int bits;
};

class RecordingBits : public testing::TestWithParam<RecordingFormat> {
protected:
    RecordingFile file_;
};

// Opens the file for writing; both channels.
std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> NewFile(const RecordingFile& file, int format, int rateHz) {
    SF_INFO info{};
    info.samplerate = rateHz;
    info.channels = 2;
    info.format = format;
    return {sf_open(file.Path().c_str(), SFM_WRITE, &info), sf_close};
}

// In two parts, so that the position is kept.
std::vector<double> ReadAll(measure::Recording& recording) {
    std::vector<double> samples(2 * kFineRecordingFrames + 100);
    const std::size_t first = recording.Read(std::span(samples).first(2000));
    const std::size_t rest = recording.Read(std::span(samples).subspan(2000));
    EXPECT_EQ(first, 1000U);
    samples.resize(2 * (first + rest));
    return samples;
}

TEST_P(RecordingBits, AreAllRead) {
    const auto [name, format, bits] = GetParam();
    std::mt19937 random(1);
    std::vector<int> written(2 * kFineRecordingFrames);
    for (int& sample : written) sample = static_cast<int>(random() & (0xFFFFFFFFU << (32 - bits)));
    {
        const auto output = NewFile(file_, format, 192000);
        ASSERT_EQ(sf_write_int(output.get(), written.data(), 2 * kFineRecordingFrames),
                  2 * kFineRecordingFrames);
    }
    measure::Recording recording(file_.Path());
    EXPECT_EQ(recording.Bits(), bits);
    EXPECT_EQ(recording.RateHz(), 192000);
    const std::vector<double> read = ReadAll(recording);
    ASSERT_EQ(read.size(), written.size());
    for (std::size_t i = 0; i < read.size(); ++i) ASSERT_EQ(read[i], std::ldexp(written[i], -31)) << i;
}

INSTANTIATE_TEST_SUITE_P(Formats, RecordingBits,
                         testing::Values(RecordingFormat{"Wav8", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 8},
                                         RecordingFormat{"Wav16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16},
                                         RecordingFormat{"Wav24", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 24},
                                         RecordingFormat{"Wav32", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 32},
                                         RecordingFormat{"Flac16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 16},
                                         RecordingFormat{"Flac24", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 24},
                                         RecordingFormat{"Aiff24", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 24},
                                         RecordingFormat{"Aiff32", SF_FORMAT_AIFF | SF_FORMAT_PCM_32, 32}),
                         [](const auto& test) { return test.param.name; });

TEST(RecordingFloats, AreReadUnscaled) {
    for (const auto& [format, bits] : {std::pair{SF_FORMAT_FLOAT, 24}, std::pair{SF_FORMAT_DOUBLE, 53}}) {
        const RecordingFile file;
        const double smallest = std::ldexp(1.0, 1 - bits);
        std::vector<double> written(2 * kFineRecordingFrames, 1.0 + smallest);
        written[1] = -12.5;
        written[2] = smallest;
        written[3] = std::numeric_limits<double>::quiet_NaN();
        {
            const auto output = NewFile(file, SF_FORMAT_WAV | format, 4000);
            ASSERT_EQ(sf_write_double(output.get(), written.data(), 2 * kFineRecordingFrames),
                      2 * kFineRecordingFrames);
        }
        measure::Recording recording(file.Path());
        EXPECT_EQ(recording.Bits(), bits);
        written[3] = 0.0;
        EXPECT_EQ(ReadAll(recording), written);
    }
}

TEST(RecordingRates, OutsideTheLimitsAreRefused) {
    for (const int rateHz : {3999, 192001}) {
        const RecordingFile file;
        const std::array<int, 4> silence{};
        {
            const auto output = NewFile(file, SF_FORMAT_WAV | SF_FORMAT_PCM_16, rateHz);
            ASSERT_EQ(sf_write_int(output.get(), silence.data(), 4), 4);
        }
        EXPECT_THROW(measure::Recording(file.Path()), measure::MeasureError) << rateHz;
    }
}

}  // namespace
}  // namespace sonavex
