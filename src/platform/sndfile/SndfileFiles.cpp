#include "platform/sndfile/SndfileFiles.h"

#include <sndfile.h>

#include "platform/plain/ReplacedFile.h"
#include "platform/sndfile/SndfileRecording.h"

namespace sonavex {
namespace {

[[noreturn]] void FailToWrite(const std::string& path, const std::string& why) {
    throw FileError("The file '" + path + "' cannot be written: " + why);
}

void CheckWritten(const std::string& path, const std::error_code& error) {
    if (error) FailToWrite(path, error.message());
}

}  // namespace

std::unique_ptr<OpenRecording> SndfileFiles::Open(const std::string& path) const {
    return std::make_unique<SndfileRecording>(path);
}

void SndfileFiles::WriteText(const std::string& path, const std::string& text) const {
    ReplacedFile file(path);
    CheckWritten(path, file.Error());
    CheckWritten(path, file.Write(text));
    CheckWritten(path, file.Commit());
}

void SndfileFiles::WriteFloatWav(const std::string& path, std::span<const double> samples,
                                 std::int32_t rateHz, const std::string& comment) const {
    ReplacedFile target(path);
    CheckWritten(path, target.Error());
    SF_INFO info{};
    info.samplerate = rateHz;
    info.channels = 1;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(
        sf_open_fd(target.Descriptor(), SFM_WRITE, &info, SF_FALSE), sf_close);
    if (!file) FailToWrite(path, ReasonOf(nullptr));
    if (!comment.empty() && sf_set_string(file.get(), SF_STR_COMMENT, comment.c_str()) != 0)
        FailToWrite(path, ReasonOf(file.get()));
    const auto frames = static_cast<sf_count_t>(samples.size());
    if (sf_writef_double(file.get(), samples.data(), frames) != frames)
        FailToWrite(path, ReasonOf(file.get()));
    sf_write_sync(file.get());
    if (sf_close(file.release()) != 0) FailToWrite(path, "The file could not be completed.");
    CheckWritten(path, target.Commit());
}

}  // namespace sonavex
