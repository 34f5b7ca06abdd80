#include "platform/sndfile/SndfileRecording.h"

#include <filesystem>
#include <string_view>

namespace sonavex {
namespace {

// Programs that write a WAV file into a pipe state a length of nearly or exactly 2 GB, or of nearly 4 GB.
bool MeansUnknown(std::int64_t wavBytes) {
    return (wavBytes >= 0x7FFFF000 && wavBytes <= 0x80000000) || wavBytes >= 0xFFFFF000;
}

// Bytes of a stored sample; 0 where samples are compressed.
int SampleBytes(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
        case SF_FORMAT_ULAW:
        case SF_FORMAT_ALAW:
            return 1;
        case SF_FORMAT_PCM_16:
            return 2;
        case SF_FORMAT_PCM_24:
            return 3;
        case SF_FORMAT_PCM_32:
        case SF_FORMAT_FLOAT:
            return 4;
        case SF_FORMAT_DOUBLE:
            return 8;
        default:
            return 0;
    }
}

// Bytes that the header states for the first chunk with this name; 0 without one.
std::int64_t ChunkBytes(SNDFILE* file, std::string_view name) {
    SF_CHUNK_INFO wanted{};
    name.copy(wanted.id, name.size());
    wanted.id_size = static_cast<unsigned>(name.size());
    SF_CHUNK_INFO found{};
    SF_CHUNK_ITERATOR* const chunk = sf_get_chunk_iterator(file, &wanted);
    const bool known = chunk != nullptr && sf_get_chunk_size(chunk, &found) == SF_ERR_NO_ERROR;
    return known ? found.datalen : 0;
}

// Bytes that the header of a WAV, AIFF or CAF file states for its samples; 0 or less where unknown.
std::int64_t DeclaredBytes(SNDFILE* file, int format) {
    constexpr std::int64_t kHeadOfAiffSamples = 8;
    constexpr std::int64_t kHeadOfCafSamples = 4;
    switch (format & SF_FORMAT_TYPEMASK) {
        case SF_FORMAT_WAV:
        case SF_FORMAT_WAVEX: {
            const std::int64_t bytes = ChunkBytes(file, "data");
            return MeansUnknown(bytes) ? 0 : bytes;
        }
        case SF_FORMAT_AIFF:
            return ChunkBytes(file, "SSND") - kHeadOfAiffSamples;
        case SF_FORMAT_CAF:
            return ChunkBytes(file, "data") - kHeadOfCafSamples;
        default:
            return 0;
    }
}

}  // namespace

std::string ReasonOf(SNDFILE* file) {
    const std::string text = sf_strerror(file);
    const std::string prefix = "System error : ";
    // libsndfile has no better word for headers with impossible numbers.
    if (text.find("nternal error") != std::string::npos) return "Its header is damaged.";
    return text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text;
}

SndfileRecording::SndfileRecording(const std::string& path)
    : name_("The recording '" + path + "' "), file_(sf_open(path.c_str(), SFM_READ, &info_), sf_close) {
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) throw FileError(name_ + "is a folder.");
    if (!file_) throw FileError(name_ + "cannot be read: " + ReasonOf(nullptr));
    if (info_.frames <= 0) throw FileError(name_ + "is empty.");
    if (info_.samplerate < kLowestRateHz || info_.samplerate > kHighestRateHz)
        throw FileError(name_ + "has a sampling rate of " + std::to_string(info_.samplerate) +
                        " Hz, which is outside 4000 to 192000 Hz.");
    RequireAllFrames(info_.frames, DeclaredFrames());
    // Reads floating-point files unscaled, full scale 1.
    sf_command(file_.get(), SFC_SET_NORM_DOUBLE, nullptr, SF_TRUE);
}

void SndfileRecording::RequireAllFrames(std::int64_t present, std::int64_t declared) const {
    if (present < declared)
        throw FileError(name_ + "ends early: " + std::to_string(present) + " of " + std::to_string(declared) +
                        " frames.");
}

// Some formats do not state their length.
void SndfileRecording::RequireEnd() const {
    if (sf_error(file_.get()) != SF_ERR_NO_ERROR)
        throw FileError("The recording cannot be read to its end: " + ReasonOf(file_.get()) + ' ' +
                        std::to_string(readFrames_) + " frames were read.");
    if (info_.frames != SF_COUNT_MAX) RequireAllFrames(readFrames_, info_.frames);
}

// libsndfile reports the frames found in the file.
std::int64_t SndfileRecording::DeclaredFrames() const {
    const std::int64_t frameBytes = std::int64_t{SampleBytes(info_.format)} * info_.channels;
    return frameBytes == 0 ? info_.frames : DeclaredBytes(file_.get(), info_.format) / frameBytes;
}

int SndfileRecording::Bits() const noexcept {
    switch (info_.format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
        case SF_FORMAT_ULAW:
        case SF_FORMAT_ALAW:
        case SF_FORMAT_DPCM_8:
            return 8;
        case SF_FORMAT_DWVW_12:
            return 12;
        case SF_FORMAT_ALAC_20:
            return 20;
        case SF_FORMAT_PCM_24:
        case SF_FORMAT_ALAC_24:
        case SF_FORMAT_DWVW_24:
        case SF_FORMAT_FLOAT:
            return 24;
        case SF_FORMAT_PCM_32:
        case SF_FORMAT_ALAC_32:
            return 32;
        case SF_FORMAT_DOUBLE:
            return 53;
        default:
            return 16;
    }
}

bool SndfileRecording::FloatingPoint() const noexcept {
    const int format = info_.format & SF_FORMAT_SUBMASK;
    return format == SF_FORMAT_FLOAT || format == SF_FORMAT_DOUBLE;
}

std::optional<std::int64_t> SndfileRecording::Frames() const noexcept {
    if (info_.seekable == 0 || info_.frames == SF_COUNT_MAX) return std::nullopt;
    return info_.frames;
}

void SndfileRecording::MoveTo(std::int64_t frame) {
    if (sf_seek(file_.get(), frame, SEEK_SET) != frame)
        throw FileError(name_ + "cannot be read from frame " + std::to_string(frame) +
                        " on: " + ReasonOf(file_.get()));
    readFrames_ = frame;
}

std::size_t SndfileRecording::Read(std::span<double> stereo) {
    const std::size_t frames = stereo.size() / 2;
    const auto channels = static_cast<std::size_t>(info_.channels);
    samples_.resize(frames * channels);
    const auto read = static_cast<std::size_t>(
        sf_readf_double(file_.get(), samples_.data(), static_cast<sf_count_t>(frames)));
    readFrames_ += static_cast<std::int64_t>(read);
    if (read < frames) RequireEnd();
    for (std::size_t i = 0; i < read; ++i)
        for (std::size_t channel = 0; channel < 2; ++channel)
            stereo[2 * i + channel] = samples_[i * channels + (channels > 1 ? channel : 0)];
    return read;
}

}  // namespace sonavex
