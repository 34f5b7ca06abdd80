#include "support/Recordings.h"

#include <cmath>
#include <memory>
#include <numbers>
#include <stdexcept>

namespace sonavex {
namespace {

using File = std::unique_ptr<SNDFILE, int (*)(SNDFILE*)>;

File OpenFile(const std::filesystem::path& path, int mode, SF_INFO& info) {
    File file(sf_open(path.c_str(), mode, &info), sf_close);
    if (!file) throw std::runtime_error(path.string() + ": " + sf_strerror(nullptr));
    return file;
}

}  // namespace

void WriteRecording(const std::filesystem::path& path, const Recording& recording,
                    const RecordedSignal& signal) {
    SF_INFO info{};
    info.samplerate = recording.rateHz;
    info.channels = recording.channels;
    info.format = recording.format;
    const File file = OpenFile(path, SFM_WRITE, info);
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
    std::vector<double> values;
    for (std::int64_t frame = 0; frame < recording.frames; ++frame)
        for (int channel = 0; channel < recording.channels; ++channel)
            values.push_back(signal(frame, channel));
    if (sf_writef_double(file.get(), values.data(), recording.frames) != recording.frames)
        throw std::runtime_error(path.string() + ": " + sf_strerror(file.get()));
}

RecordedSignal Sine(double frequencyHz, std::int32_t rateHz, double amplitude) {
    return [=](std::int64_t frame, int) {
        return amplitude *
               std::sin(2.0 * std::numbers::pi * frequencyHz * static_cast<double>(frame) / rateHz);
    };
}

RecordedSignal Silence() {
    return [](std::int64_t, int) { return 0.0; };
}

Samples ReadSamples(const std::filesystem::path& path) {
    SF_INFO info{};
    const File file = OpenFile(path, SFM_READ, info);
    Samples samples{info.samplerate, info.channels, info.format, info.frames, {}};
    samples.values.resize(static_cast<std::size_t>(info.frames * info.channels));
    if (sf_readf_short(file.get(), samples.values.data(), info.frames) != info.frames)
        throw std::runtime_error(path.string() + " is not as long as it says");
    return samples;
}

}  // namespace sonavex
