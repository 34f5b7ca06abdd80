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
#include "platform/sndfile/SndfileRecording.h"

namespace sonavex::measure {
namespace {

constexpr std::int64_t kFewestBlocks = 18;
constexpr double kFullScale = 32768.0;

using Block = std::array<std::int16_t, kBlockSamples>;

// A NaN of a floating-point file counts as silence; an infinity clips like any value beyond full scale.
std::int16_t Sample16(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<std::int16_t>(
        RoundHalfEven(std::clamp(value * kFullScale, -kFullScale, kFullScale - 1.0)));
}

void RequireRate(const SndfileRecording& recording, const std::string& path) {
    if (IsSampleRate(recording.RateHz())) return;
    throw MeasureError("The recording '" + path + "' has a sampling rate of " + CStr(recording.RateHz()) +
                       " Hz, which is not one of the instrument's rates.");
}

// Reads a block. Returns false if less than a block is left.
bool ReadBlock(SndfileRecording& recording, Block& block) {
    std::array<double, kBlockSamples> samples;
    if (recording.Read(samples) < static_cast<std::size_t>(kBlockFrames)) return false;
    std::transform(samples.begin(), samples.end(), block.begin(), Sample16);
    return true;
}

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
        if (!file_) Fail(ReasonOf(nullptr));
    }

    void Write(const Block& block) {
        if (file_ && sf_writef_short(file_.get(), block.data(), kBlockFrames) != kBlockFrames)
            Fail(ReasonOf(file_.get()));
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
    SndfileRecording recording(options.input);
    RequireRate(recording, options.input);
    SharedState shared;
    shared.SampleRate = recording.RateHz();
    const std::vector<ToneRequest> tones = ParseTones(options.tones, shared.SampleRate);
    Meter meter(shared);
    PrepareMeter(meter, options, shared.SampleRate);
    OutputFile output(options.output, options.input, shared.SampleRate);

    const BandEdges band = AnalysisBand(shared.SampleRate, options.lowEdgeHz);
    meter.SetUpAnalysis(band.lowHz, band.highHz);
    StartTones(meter.Generator, tones);
    BlockTicks sweeps(meter.Generator, shared.SampleRate);

    bool everLocked = false;
    std::string table;
    Block captured{};
    Block playback{};
    while (ReadBlock(recording, captured)) {
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
