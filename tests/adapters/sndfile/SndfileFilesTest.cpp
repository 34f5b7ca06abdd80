#include <gmock/gmock.h>
#include <sys/resource.h>

#include <array>
#include <csignal>
#include <fstream>
#include <iterator>

#include "platform/sndfile/SndfileFiles.h"
#include "support/ChildProcess.h"
#include "support/Recordings.h"

namespace sonavex {
namespace {

std::string ContentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Lets files grow to this size only.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

template <typename Write>
std::string ComplaintOf(const Write& write) {
    try {
        write();
    } catch (const FileError& error) {
        return error.what();
    }
    return {};
}

class SndfileFilesTest : public testing::Test {
protected:
    std::string File() const { return folder_.Path() / "file"; }
    // Writes a file that is longer than the limit over an old one.
    template <typename Write>
    void ExpectNoRoom(const Write& write) {
        std::ofstream(File()) << "old";
        const std::string complaint = [&] {
            const FileSizeLimit limit(1000);
            return ComplaintOf(write);
        }();
        EXPECT_THAT(complaint,
                    testing::StartsWith("The file '" + File() + "' cannot be written: File too large"));
        EXPECT_EQ(ContentOf(File()), "old");
    }

    SndfileFiles files_;
    std::vector<double> samples_ = std::vector<double>(5000, 0.1);

private:
    PrivateFolder folder_;
};

TEST_F(SndfileFilesTest, WritesFloatsWithAComment) {
    samples_[1] = 1.5;
    samples_[2] = -1e-9;
    files_.WriteFloatWav(File(), samples_, 96000, "Sonavex\nstate: valid\n");
    const auto recording = files_.Open(File());
    EXPECT_EQ(recording->RateHz(), 96000);
    EXPECT_EQ(recording->Bits(), 24);
    EXPECT_TRUE(recording->FloatingPoint());
    EXPECT_EQ(recording->Channels(), 1);
    EXPECT_EQ(recording->Frames(), 5000);
    std::array<double, 6> read{};
    EXPECT_EQ(recording->Read(read), 3U);
    EXPECT_EQ(read[2], 1.5);
    EXPECT_EQ(read[4], static_cast<double>(-1e-9F));
    SF_INFO info{};
    SNDFILE* const file = sf_open(File().c_str(), SFM_READ, &info);
    EXPECT_STREQ(sf_get_string(file, SF_STR_COMMENT), "Sonavex\nstate: valid\n");
    sf_close(file);
}

TEST_F(SndfileFilesTest, KeepTheOldFileWhenTheDiskIsFull) {
    ExpectNoRoom([this] { files_.WriteText(File(), std::string(5000, 'x')); });
    ExpectNoRoom([this] { files_.WriteFloatWav(File(), samples_, 48000, "comment"); });
}

TEST_F(SndfileFilesTest, SayWhereTheyCannotBeWritten) {
    const std::string missing = File() + "/file";
    EXPECT_EQ(ComplaintOf([&] { files_.WriteText(missing, "x"); }),
              "The file '" + missing + "' cannot be written: No such file or directory");
    EXPECT_EQ(ComplaintOf([&] { files_.WriteText("/dev/full", "x"); }),
              "The file '/dev/full' cannot be written: No space left on device");
    EXPECT_NE(ComplaintOf([&] { files_.WriteFloatWav("/dev/full", samples_, 48000, ""); }), "");
}

// Every format that is often recorded can be read from any frame.
TEST_F(SndfileFilesTest, ReadOnFromAFrame) {
    for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_24, SF_FORMAT_FLAC | SF_FORMAT_PCM_16,
                             SF_FORMAT_AIFF | SF_FORMAT_PCM_16, SF_FORMAT_CAF | SF_FORMAT_FLOAT}) {
        WriteRecording(File(), {32000, 1, format, 20000},
                       [](std::int64_t frame, int) { return static_cast<double>(frame) / 32768.0; });
        const auto recording = files_.Open(File());
        ASSERT_EQ(recording->Frames(), 20000);
        std::array<double, 2> frame{};
        for (const std::int64_t at : {12345, 3, 19999}) {
            recording->MoveTo(at);
            ASSERT_EQ(recording->Read(frame), 1U);
            EXPECT_NEAR(frame[0], static_cast<double>(at) / 32768.0, 1e-9);
        }
        recording->MoveTo(20000);
        EXPECT_EQ(recording->Read(frame), 0U);
    }
}

}  // namespace
}  // namespace sonavex
