#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/ports/MeasurementFiles.h"

namespace sonavex {

// Recordings that are computed, and files that are kept in memory.
class MemoryFiles : public MeasurementFiles {
public:
    struct Sound {
        std::int32_t rateHz = 8000;
        int channels = 1;
        std::int64_t frames = 0;
        std::function<double(std::int64_t frame)> sample;
        bool lengthKnown = true;
        std::int64_t damagedAt = -1;  // reading this frame fails
    };
    struct Wav {
        std::vector<double> samples;
        std::int32_t rateHz = 0;
        std::string comment;
    };

    std::unique_ptr<OpenRecording> Open(const std::string& path) const override {
        const auto found = sounds.find(path);
        if (found == sounds.end()) throw FileError("There is no " + path + '.');
        return std::make_unique<Opened>(*this, found->second);
    }
    void WriteText(const std::string& path, const std::string& text) const override {
        RequireRoom();
        texts[path] = text;
    }
    void WriteFloatWav(const std::string& path, std::span<const double> samples, std::int32_t rateHz,
                       const std::string& comment) const override {
        RequireRoom();
        wavs[path] = {{samples.begin(), samples.end()}, rateHz, comment};
    }

    std::map<std::string, Sound> sounds;
    bool full = false;  // every write fails
    mutable std::map<std::string, std::string> texts;
    mutable std::map<std::string, Wav> wavs;
    mutable std::size_t longestRead = 0;  // frames

private:
    class Opened : public OpenRecording {
    public:
        Opened(const MemoryFiles& files, Sound sound) : files_(files), sound_(std::move(sound)) {}
        std::int32_t RateHz() const noexcept override { return sound_.rateHz; }
        int Bits() const noexcept override { return 53; }
        bool FloatingPoint() const noexcept override { return true; }
        int Channels() const noexcept override { return sound_.channels; }
        std::optional<std::int64_t> Frames() const noexcept override {
            if (!sound_.lengthKnown) return std::nullopt;
            return sound_.frames;
        }
        std::size_t Read(std::span<double> stereo) override {
            const std::int64_t count =
                std::min(static_cast<std::int64_t>(stereo.size() / 2), sound_.frames - next_);
            if (sound_.damagedAt >= next_ && sound_.damagedAt < next_ + count)
                throw FileError("The recording is damaged.");
            for (std::int64_t i = 0; i < count; ++i) {
                const auto at = static_cast<std::size_t>(2 * i);
                stereo[at] = stereo[at + 1] = sound_.sample(next_ + i);
            }
            next_ += count;
            files_.longestRead = std::max(files_.longestRead, stereo.size() / 2);
            return static_cast<std::size_t>(count);
        }
        void MoveTo(std::int64_t frame) override { next_ = frame; }

    private:
        const MemoryFiles& files_;
        Sound sound_;
        std::int64_t next_ = 0;
    };

    void RequireRoom() const {
        if (full) throw FileError("The disk is full.");
    }
};

}  // namespace sonavex
