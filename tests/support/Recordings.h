#pragma once

#include <sndfile.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "core/support/BlockSize.h"
#include "support/ChildProcess.h"

namespace sonavex {

// Frames of a block, as a frame count of a recording.
inline constexpr std::int64_t kRecordedBlockFrames{kBlockFrames};

// Value of a sample (full scale 1) at a frame of a channel.
using RecordedSignal = std::function<double(std::int64_t frame, int channel)>;

// Format of a recording.
struct Recording {
    std::int32_t rateHz = 32000;
    int channels = 2;
    int format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    std::int64_t frames = 37 * kRecordedBlockFrames;
};

// Writes a recording. Values beyond full scale clip, except in floating-point formats.
void WriteRecording(const std::filesystem::path& path, const Recording& recording,
                    const RecordedSignal& signal);

// The same sine on every channel.
RecordedSignal Sine(double frequencyHz, std::int32_t rateHz, double amplitude);
RecordedSignal Silence();

// The samples of a 16-bit file.
struct Samples {
    std::int32_t rateHz = 0;
    int channels = 0;
    int format = 0;
    std::int64_t frames = 0;
    std::vector<std::int16_t> values;  // interleaved

    std::int16_t At(std::int64_t frame, int channel) const {
        return values.at(static_cast<std::size_t>(frame * channels + channel));
    }
};
Samples ReadSamples(const std::filesystem::path& path);

// A file in a private folder.
class RecordingFile {
public:
    RecordingFile() = default;
    RecordingFile(const Recording& recording, const RecordedSignal& signal) {
        WriteRecording(Path(), recording, signal);
    }
    std::filesystem::path Path() const { return folder_.Path() / "recording"; }
    std::filesystem::path Other(const char* name) const { return folder_.Path() / name; }

private:
    PrivateFolder folder_;
};

}  // namespace sonavex
