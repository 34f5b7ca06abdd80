// Every bit of a recording is read, whatever its format.

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>
#include <utility>

#include "platform/sndfile/SndfileRecording.h"
#include "support/Recordings.h"

namespace sonavex {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr std::size_t kFineRecordingFrames = 5000;

struct RecordingFormat {
    const char* name;
    int format;
    int bits;
    int channels = 2;
};

class RecordingBits : public testing::TestWithParam<RecordingFormat> {
protected:
    RecordingFile file_;
};

// Opens the file for writing.
std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> NewFile(const RecordingFile& file, int format, int rateHz,
                                                    int channels = 2) {
    SF_INFO info{};
    info.samplerate = rateHz;
    info.channels = channels;
    info.format = format;
    return {sf_open(file.Path().c_str(), SFM_WRITE, &info), sf_close};
}

// In two parts, so that the position is kept.
std::vector<double> ReadAll(SndfileRecording& recording) {
    std::vector<double> samples(2 * kFineRecordingFrames + 100);
    const std::size_t first = recording.Read(std::span(samples).first(2000));
    const std::size_t rest = recording.Read(std::span(samples).subspan(2000));
    EXPECT_EQ(first, 1000U);
    samples.resize(2 * (first + rest));
    return samples;
}

// Random ones, but a tone with noise for ALAC, because libsndfile damages white noise when it writes it.
std::vector<int> AnySamples(std::size_t channels, int format, int bits) {
    std::mt19937 random(1);
    std::vector<int> samples(channels * kFineRecordingFrames);
    const bool alac = (format & SF_FORMAT_TYPEMASK) == SF_FORMAT_CAF;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double tone = 1e9 * std::sin(0.01 * static_cast<double>(i));
        const unsigned sample = alac ? static_cast<unsigned>(static_cast<int>(tone)) + random() % 0x100000
                                     : static_cast<unsigned>(random());
        samples[i] = static_cast<int>(sample & (0xFFFFFFFFU << (32 - bits)));
    }
    return samples;
}

TEST_P(RecordingBits, AreAllRead) {
    const auto [name, format, bits, channels] = GetParam();
    const std::vector<int> written = AnySamples(static_cast<std::size_t>(channels), format, bits);
    {
        const auto output = NewFile(file_, format, 192000, channels);
        ASSERT_EQ(sf_writef_int(output.get(), written.data(), kFineRecordingFrames), kFineRecordingFrames);
    }
    SndfileRecording recording(file_.Path());
    EXPECT_EQ(recording.Bits(), bits);
    EXPECT_EQ(recording.RateHz(), 192000);
    const std::vector<double> read = ReadAll(recording);
    ASSERT_EQ(read.size(), 2 * kFineRecordingFrames);
    for (std::size_t i = 0; i < read.size(); ++i)
        ASSERT_EQ(read[i], std::ldexp(written[channels == 2 ? i : i / 2], -31)) << i;
}

INSTANTIATE_TEST_SUITE_P(Formats, RecordingBits,
                         testing::Values(RecordingFormat{"Wav8", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 8},
                                         RecordingFormat{"Wav16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16},
                                         RecordingFormat{"Wav24", SF_FORMAT_WAV | SF_FORMAT_PCM_24, 24},
                                         RecordingFormat{"Wav32", SF_FORMAT_WAV | SF_FORMAT_PCM_32, 32},
                                         RecordingFormat{"Aiff8", SF_FORMAT_AIFF | SF_FORMAT_PCM_S8, 8},
                                         RecordingFormat{"Flac8", SF_FORMAT_FLAC | SF_FORMAT_PCM_S8, 8},
                                         RecordingFormat{"Flac16", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 16},
                                         RecordingFormat{"Flac24", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 24},
                                         RecordingFormat{"Aiff24", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 24},
                                         RecordingFormat{"Aiff32", SF_FORMAT_AIFF | SF_FORMAT_PCM_32, 32},
                                         RecordingFormat{"Alac16", SF_FORMAT_CAF | SF_FORMAT_ALAC_16, 16},
                                         RecordingFormat{"Alac20", SF_FORMAT_CAF | SF_FORMAT_ALAC_20, 20},
                                         RecordingFormat{"Alac24", SF_FORMAT_CAF | SF_FORMAT_ALAC_24, 24},
                                         RecordingFormat{"Alac32", SF_FORMAT_CAF | SF_FORMAT_ALAC_32, 32},
                                         RecordingFormat{"Dwvw16", SF_FORMAT_AIFF | SF_FORMAT_DWVW_16, 16, 1},
                                         RecordingFormat{"Dwvw24", SF_FORMAT_AIFF | SF_FORMAT_DWVW_24, 24,
                                                         1}),
                         [](const auto& test) { return test.param.name; });

TEST(RecordingWithLoss, HasTheBitsOfItsFormat) {
    for (const auto& [format, bits] :
         {std::pair{SF_FORMAT_WAV | SF_FORMAT_ALAW, 8}, std::pair{SF_FORMAT_WAV | SF_FORMAT_ULAW, 8},
          std::pair{SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, 16},
          std::pair{SF_FORMAT_OGG | SF_FORMAT_VORBIS, 16}}) {
        const RecordingFile file({.format = format, .frames = kRecordedBlockFrames}, Silence());
        EXPECT_EQ(SndfileRecording(file.Path()).Bits(), bits) << std::hex << format;
    }
}

// Neither scaled nor cleaned: a measurement must see what is not finite.
TEST(RecordingFloats, AreReadUnchanged) {
    for (const auto& [format, bits] : {std::pair{SF_FORMAT_FLOAT, 24}, std::pair{SF_FORMAT_DOUBLE, 53}}) {
        const RecordingFile file;
        const double smallest = std::ldexp(1.0, 1 - bits);
        std::vector<double> written(2 * kFineRecordingFrames, 1.0 + smallest);
        written[1] = -12.5;
        written[2] = smallest;
        written[3] = std::numeric_limits<double>::infinity();
        written[4] = -std::numeric_limits<double>::infinity();
        written[5] = std::numeric_limits<double>::quiet_NaN();
        {
            const auto output = NewFile(file, SF_FORMAT_WAV | format, 4000);
            ASSERT_EQ(sf_write_double(output.get(), written.data(), 2 * kFineRecordingFrames),
                      2 * kFineRecordingFrames);
        }
        SndfileRecording recording(file.Path());
        EXPECT_EQ(recording.Bits(), bits);
        std::vector<double> read = ReadAll(recording);
        EXPECT_TRUE(std::isnan(read.at(5)));
        read[5] = written[5] = 0.0;
        EXPECT_EQ(read, written);
    }
}

// The message when the recording is read to its end; empty without one.
std::string Complaint(const RecordingFile& file) {
    try {
        SndfileRecording recording(file.Path());
        ReadAll(recording);
    } catch (const FileError& error) {
        return error.what();
    }
    return {};
}

// The same without the file's last bytes.
std::string ComplaintAboutShortened(int format, std::uintmax_t lackingBytes) {
    const RecordingFile file({32000, 2, format, 5000}, Sine(1000.0, 32000, 0.5));
    std::filesystem::resize_file(file.Path(), std::filesystem::file_size(file.Path()) - lackingBytes);
    return Complaint(file);
}

TEST(RecordingEnd, ThatIsEarlyIsFoundByTheStatedLength) {
    for (const auto& [format, frameBytes] : {std::pair{SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 2U},
                                             {SF_FORMAT_WAV | SF_FORMAT_PCM_16, 4U},
                                             {SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, 6U},
                                             {SF_FORMAT_WAV | SF_FORMAT_DOUBLE, 16U},
                                             {SF_FORMAT_WAV | SF_ENDIAN_BIG | SF_FORMAT_PCM_32, 8U},
                                             {SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 6U}}) {
        EXPECT_EQ(ComplaintAboutShortened(format, 0), "");
        EXPECT_THAT(ComplaintAboutShortened(format, 1), EndsWith(" ends early: 4999 of 5000 frames."));
        EXPECT_THAT(ComplaintAboutShortened(format, 4000U * frameBytes),
                    EndsWith(" ends early: 1000 of 5000 frames."));
    }
    const int caf = SF_FORMAT_CAF | SF_FORMAT_PCM_16;
    EXPECT_EQ(ComplaintAboutShortened(caf, 0), "");
    // libsndfile counts up to two frames too few in a CAF file that ends early.
    EXPECT_THAT(ComplaintAboutShortened(caf, 400),
                testing::AllOf(HasSubstr(" ends early: 4"), EndsWith(" of 5000 frames.")));
}

TEST(RecordingEnd, ThatIsEarlyIsFoundByReadingFlac) {
    const int flac = SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
    EXPECT_EQ(ComplaintAboutShortened(flac, 0), "");
    EXPECT_THAT(ComplaintAboutShortened(flac, 200),
                testing::AllOf(HasSubstr("cannot be read to its end: "), EndsWith(" frames were read.")));
}

// Writes a number into a WAV header.
template <class Number>
void Patch(const RecordingFile& file, std::streamoff at, Number number) {
    std::fstream stream(file.Path(), std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(at);
    stream.write(reinterpret_cast<const char*>(&number), sizeof number);
}

constexpr std::streamoff kChannelsAt = 22;
constexpr std::streamoff kRateAt = 24;
constexpr std::streamoff kBitsAt = 34;
constexpr std::streamoff kDataBytesAt = 40;

// A program that records into a pipe cannot know the length.
TEST(RecordingHeader, MayLeaveTheLengthOpen) {
    for (const std::uint32_t bytes : {0x7FFFF000U, 0x7FFFFFDBU, 0x80000000U, 0xFFFFFFDBU, 0xFFFFFFFFU}) {
        const RecordingFile file({32000, 2, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 5000}, Silence());
        Patch(file, kDataBytesAt, bytes);
        SndfileRecording recording(file.Path());
        EXPECT_EQ(ReadAll(recording).size(), 10000U) << bytes;
    }
}

TEST(RecordingHeader, StatesTheLengthOfALongRecordingToo) {
    for (const std::uint32_t bytes : {0x7FFFEFFCU, 0x80000004U, 0xC0000000U, 0xFFFFEFFCU}) {
        const RecordingFile file({32000, 2, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 5000}, Silence());
        Patch(file, kDataBytesAt, bytes);
        EXPECT_THAT(Complaint(file), HasSubstr(" ends early: 5000 of ")) << bytes;
    }
}

TEST(RecordingHeader, ThatIsImpossibleIsExplained) {
    const auto complaint = [](std::streamoff at, auto number) {
        const RecordingFile file({32000, 2, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 5000}, Silence());
        Patch(file, at, number);
        return Complaint(file);
    };
    EXPECT_THAT(complaint(kChannelsAt, std::uint16_t{0}),
                HasSubstr("cannot be read: Channel count is zero."));
    EXPECT_THAT(complaint(kChannelsAt, std::uint16_t{2000}),
                HasSubstr("cannot be read: Too many channels specified."));
    EXPECT_THAT(complaint(kRateAt, std::uint32_t{0}), HasSubstr("cannot be read: Its header is damaged."));
    EXPECT_THAT(complaint(kRateAt, std::uint32_t{0x80000000U}),
                HasSubstr("cannot be read: Its header is damaged."));
    EXPECT_THAT(complaint(kRateAt, std::uint32_t{1000000}), HasSubstr("sampling rate of 1000000 Hz"));
    EXPECT_THAT(complaint(kBitsAt, std::uint16_t{0}), HasSubstr("cannot be read: "));
    EXPECT_THAT(complaint(kBitsAt, std::uint16_t{64}), HasSubstr("cannot be read: "));
}

TEST(RecordingRates, OutsideTheLimitsAreRefused) {
    for (const int rateHz : {3999, 192001}) {
        const RecordingFile file;
        const std::array<int, 4> silence{};
        {
            const auto output = NewFile(file, SF_FORMAT_WAV | SF_FORMAT_PCM_16, rateHz);
            ASSERT_EQ(sf_write_int(output.get(), silence.data(), 4), 4);
        }
        EXPECT_THROW(SndfileRecording(file.Path()), FileError) << rateHz;
    }
}

}  // namespace
}  // namespace sonavex
