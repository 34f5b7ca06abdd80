#include <sndfile.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "app/measure/Readings.h"
#include "app/measure/ToneRequests.h"
#include "core/dsp/AnalysisBand.h"
#include "core/settings/SampleRates.h"
#include "core/text/Numbers.h"
#include "platform/plain/ReplacedFile.h"

namespace sonavex::measure {
namespace {

constexpr std::int64_t kFewestBlocks = 18;
constexpr double kFullScale = 32768.0;

using Block = std::array<std::int16_t, kBlockSamples>;

// The library's message about its last failure, without its prefix.
std::string Reason(SNDFILE* file) {
    const std::string text = sf_strerror(file);
    const std::string prefix = "System error : ";
    return text.rfind(prefix, 0) == 0 ? text.substr(prefix.size()) : text;
}

// Reads a recording in blocks of 16-bit stereo.
class Recording {
public:
    explicit Recording(const std::string& path) : file_(sf_open(path.c_str(), SFM_READ, &info_), sf_close) {
        std::error_code ignored;
        if (std::filesystem::is_directory(path, ignored))
            throw MeasureError("The recording '" + path + "' is a folder.");
        if (!file_) throw MeasureError("The recording '" + path + "' cannot be read: " + Reason(nullptr));
        if (info_.frames <= 0) throw MeasureError("The recording '" + path + "' is empty.");
        if (!SampleRateIndex(info_.samplerate))
            throw MeasureError("The recording '" + path + "' has a sampling rate of " +
                               CStr(info_.samplerate) + " Hz, which is not one of the instrument's seven.");
        // Reads floating-point files unscaled, full scale 1.
        sf_command(file_.get(), SFC_SET_NORM_DOUBLE, nullptr, SF_TRUE);
        samples_.resize(static_cast<std::size_t>(kBlockFrames) * static_cast<std::size_t>(info_.channels));
    }

    std::int32_t RateHz() const noexcept { return info_.samplerate; }

    // Returns false if less than a block is left.
    bool Read(Block& block) {
        if (sf_readf_double(file_.get(), samples_.data(), kBlockFrames) < kBlockFrames) {
            if (sf_error(file_.get()) == SF_ERR_NO_ERROR) return false;
            throw MeasureError("The recording cannot be read to its end: " + Reason(file_.get()));
        }
        const auto channels = static_cast<std::size_t>(info_.channels);
        const std::size_t second = channels > 1 ? 1 : 0;
        for (std::size_t i = 0; i < static_cast<std::size_t>(kBlockFrames); ++i) {
            block[2 * i] = Sample(samples_[i * channels]);
            block[2 * i + 1] = Sample(samples_[i * channels + second]);
        }
        return true;
    }

private:
    static std::int16_t Sample(double value) {
        if (std::isnan(value)) return 0;
        return static_cast<std::int16_t>(
            RoundHalfEven(std::clamp(value * kFullScale, -kFullScale, kFullScale - 1.0)));
    }

    SF_INFO info_{};
    std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file_;
    std::vector<double> samples_;
};

// Writes the output blocks to a 16-bit stereo WAV file, which replaces an older file when it is complete.
// Does nothing without a path.
class OutputFile {
public:
    OutputFile(const std::string& path, const std::string& source, std::int32_t rateHz)
        : path_(path), file_(nullptr, sf_close) {
        if (path_.empty()) return;
        std::error_code ignored;
        if (std::filesystem::equivalent(path_, source, ignored))
            throw MeasureError("The recording cannot be written over itself.");
        target_.emplace(path_);
        Check(target_->Error());
        SF_INFO info{};
        info.samplerate = rateHz;
        info.channels = 2;
        info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
        file_.reset(sf_open_fd(target_->Descriptor(), SFM_WRITE, &info, SF_FALSE));
        if (!file_) Fail(Reason(nullptr));
    }

    void Write(const Block& block) {
        if (file_ && sf_writef_short(file_.get(), block.data(), kBlockFrames) != kBlockFrames)
            Fail(Reason(file_.get()));
    }

    void Close() {
        if (!file_) return;
        sf_write_sync(file_.get());
        if (sf_close(file_.release()) != 0) Fail("The file could not be completed.");
        Check(target_->Commit());
    }

private:
    void Check(const std::error_code& error) const {
        if (error) Fail(error.message());
    }
    [[noreturn]] void Fail(const std::string& why) const {
        throw MeasureError("The output file '" + path_ + "' cannot be written: " + why);
    }

    std::string path_;
    std::optional<ReplacedFile> target_;
    std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file_;
};

// Advances the sweeps by the duration of the blocks, one step per millisecond.
class BlockTicks {
public:
    BlockTicks(Generator& generator, std::int32_t rateHz) noexcept : generator_(generator), rateHz_(rateHz) {}

    void AdvanceTo(std::int64_t blocks) {
        const std::int64_t dueMs = blocks * kBlockFrames * 1000 / rateHz_;
        for (; elapsedMs_ < dueMs; ++elapsedMs_) generator_.AdvanceSweep([] { return true; });
    }

private:
    Generator& generator_;
    std::int32_t rateHz_;
    std::int64_t elapsedMs_ = 0;
};

}  // namespace

int MeasureFile(const FileOptions& options) {
    Recording recording(options.input);
    SharedState shared;
    shared.SampleRate = recording.RateHz();
    const std::vector<ToneRequest> tones = ParseTones(options.tones, shared.SampleRate);
    OutputFile output(options.output, options.input, shared.SampleRate);

    Meter meter(shared);
    PrepareMeter(meter, options);
    const Band band = AnalysisBand(shared.SampleRate, options.lowEdgeHz);
    meter.SetUpAnalysis(band.lowHz, band.highHz);
    StartTones(meter.Generator, tones);
    BlockTicks sweeps(meter.Generator, shared.SampleRate);

    bool everLocked = false;
    std::string table;
    Block captured{};
    Block playback{};
    while (recording.Read(captured)) {
        meter.ProcessCapturedBlock(captured, playback);
        output.Write(playback);
        sweeps.AdvanceTo(meter.Blocks());
        if (!meter.Updated()) continue;
        everLocked = everLocked || meter.Analysis().FreqLocked;
        if (options.json)
            Print(JsonLine(meter, std::nullopt) + '\n');
        else
            table = Table(meter, std::nullopt);
    }
    output.Close();
    if (meter.Blocks() < kFewestBlocks) {
        std::cerr << "sonavex-measure: The recording is too short: " << meter.Blocks() << " of the "
                  << kFewestBlocks << " blocks of 2048 frames that a reading needs.\n";
        return kNeverLocked;
    }
    Print(table);
    return everLocked ? kMeasured : kNeverLocked;
}

}  // namespace sonavex::measure
