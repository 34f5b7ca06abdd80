#include "app/measure/Recording.h"

#include <cmath>
#include <filesystem>

#include "app/measure/MeasureError.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {

std::string ReasonOf(SNDFILE* file) {
    const std::string text = sf_strerror(file);
    const std::string prefix = "System error : ";
    return text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text;
}

Recording::Recording(const std::string& path) : file_(sf_open(path.c_str(), SFM_READ, &info_), sf_close) {
    const std::string recording = "The recording '" + path + "' ";
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) throw MeasureError(recording + "is a folder.");
    if (!file_) throw MeasureError(recording + "cannot be read: " + ReasonOf(nullptr));
    if (info_.frames <= 0) throw MeasureError(recording + "is empty.");
    if (info_.samplerate < kLowestRateHz || info_.samplerate > kHighestRateHz)
        throw MeasureError(recording + "has a sampling rate of " + CStr(info_.samplerate) +
                           " Hz, which is outside 4000 to 192000 Hz.");
    // Reads floating-point files unscaled, full scale 1.
    sf_command(file_.get(), SFC_SET_NORM_DOUBLE, nullptr, SF_TRUE);
}

int Recording::Bits() const noexcept {
    switch (info_.format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
        case SF_FORMAT_ULAW:
        case SF_FORMAT_ALAW:
            return 8;
        case SF_FORMAT_PCM_24:
        case SF_FORMAT_FLOAT:
            return 24;
        case SF_FORMAT_PCM_32:
            return 32;
        case SF_FORMAT_DOUBLE:
            return 53;
        default:
            return 16;
    }
}

std::size_t Recording::Read(std::span<double> stereo) {
    const std::size_t frames = stereo.size() / 2;
    const auto channels = static_cast<std::size_t>(info_.channels);
    samples_.resize(frames * channels);
    const auto read = static_cast<std::size_t>(
        sf_readf_double(file_.get(), samples_.data(), static_cast<sf_count_t>(frames)));
    if (read < frames && sf_error(file_.get()) != SF_ERR_NO_ERROR)
        throw MeasureError("The recording cannot be read to its end: " + ReasonOf(file_.get()));
    for (std::size_t i = 0; i < read; ++i)
        for (std::size_t channel = 0; channel < 2; ++channel) {
            const double value = samples_[i * channels + (channels > 1 ? channel : 0)];
            stereo[2 * i + channel] = std::isnan(value) ? 0.0 : value;
        }
    return read;
}

}  // namespace sonavex::measure
