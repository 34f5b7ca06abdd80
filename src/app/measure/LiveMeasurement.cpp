#include "app/measure/LiveMeasurement.h"

#include <algorithm>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "app/measure/SoundChoice.h"
#include "core/dsp/AnalysisBand.h"
#include "core/settings/SampleRates.h"
#include "core/text/Numbers.h"

namespace sonavex::measure {
namespace {

using namespace std::chrono_literals;

constexpr int kUpdatesNeeded = 2;
constexpr auto kFirstBlockLimit = 2500ms;
constexpr auto kPollInterval = 50ms;
constexpr auto kLongestCheckInterval = 4 * kPollInterval;

std::int32_t RateOf(const RunOptions& options, std::int32_t osMajorVersion) {
    if (options.rateHz) return *options.rateHz;
    return SampleRateTable[static_cast<std::size_t>(DefaultSampleRateIndex(osMajorVersion))];
}

SharedState MakeShared(const RunOptions& options) {
    SharedState shared;
    shared.OsMajorVersion = OsMajorVersion();
    shared.SampleRate = RateOf(options, shared.OsMajorVersion);
    return shared;
}

// How long the capture may stand still: three blocks, at least a second.
std::chrono::nanoseconds StandstillLimit(std::int32_t rateHz) {
    const auto threeBlocks =
        std::chrono::nanoseconds(std::int64_t{3} * kBlockFrames * 1'000'000'000 / rateHz);
    return std::max<std::chrono::nanoseconds>(1s, threeBlocks);
}

bool Listed(const SoundDeviceList& devices, const std::string& identifier) {
    return std::any_of(devices.begin(), devices.end(),
                       [&](const SoundDeviceInfo& device) { return device.identifier == identifier; });
}

// The primary device stands for another one, so a list of one entry has none.
void CheckDevice(const SoundDeviceList& devices, const char* direction, const std::string& identifier) {
    if (devices.size() < 2) throw MeasureError(std::string("There is no ") + direction + " device.");
    if (!Listed(devices, identifier))
        throw MeasureError(std::string("There is no ") + direction + " device '" + identifier +
                           "'; 'sonavex-measure devices' lists them.");
}

}  // namespace

std::int32_t LiveMeasurement::Console::WriteErrorLog(std::string& tStr, const RuntimeError& error) {
    message_ = tStr;
    if (*error.what() == '\0') return 0;
    if (!message_.empty() && message_.back() == '.') message_.pop_back();
    message_ += std::string(": ") + error.what();
    return 0;
}

std::string LiveMeasurement::Console::Line(const std::string& fallback) const {
    return message_.empty() ? fallback : message_;
}

LiveMeasurement::LiveMeasurement(const RunOptions& options)
    : options_(options),
      shared_(MakeShared(options)),
      tones_(ParseTones(options.tones, shared_.SampleRate)),
      sound_(ChooseSound(loop_)),
      meter_(shared_),
      engine_({shared_, settings_, *sound_, loop_, console_, console_, console_, meter_},
              {lblInput_, lblOutput_, lblSampleRate_, sldStartFreq_, sldEndFreq_}),
      sweepTimer_(loop_, meter_.Tones, [this] { return engine_.Restarting(); }) {
    settings_.Save(keys::kInput, options_.input);
    settings_.Save(keys::kOutput, options_.output);
    settings_.Save(keys::kLevel, CStr(options_.levelHundredthsDb));
    PrepareMeter(meter_, options_);
    sound_->OnDeviceLost([this](const RuntimeError& error) { lost_ = error; });
}

Path LiveMeasurement::DevicePath() const {
    const CaptureStatistics counts = engine_.CaptureCounts();
    return {engine_.InputDeviceName, engine_.OutputDeviceName, shared_.SampleRate,
            sound_->Simulated(),     engine_.PathNotes(),      counts.segmentsLost,
            counts.framesMissing,    engine_.Overruns,         engine_.Underruns()};
}

void LiveMeasurement::CheckDevices() const {
    CheckDevice(sound_->EnumerateCapture(), "input", options_.input);
    CheckDevice(sound_->EnumeratePlayback(), "output", options_.output);
}

void LiveMeasurement::CreateEngineDevices() {
    bool created = false;
    try {
        created = engine_.CreateDevices() && engine_.SetEvents();
    } catch (const EndProgram&) {
        created = false;
    }
    if (!created) throw MeasureError(console_.Line("The sound devices cannot be used."));
}

void LiveMeasurement::Start() {
    CheckDevices();
    CreateEngineDevices();
    const Band band = AnalysisBand(shared_.SampleRate);
    meter_.SetUpAnalysis(band.lowHz, band.highHz);
    engine_.ResetStream();
    StartTones(meter_.Tones, tones_);
    sweepTimer_.SetInterval(1ms);
    sweepTimer_.SetEnabled(AnySweep(tones_));
    engine_.StartCapture();
    lastCheck_ = loop_.Now();
}

void LiveMeasurement::CheckAlive(std::chrono::nanoseconds now) {
    if (lost_) throw MeasureError(lost_->what());
    // A time in which this program itself was held up does not count.
    standstill_ += std::min<std::chrono::nanoseconds>(now - lastCheck_, kLongestCheckInterval);
    lastCheck_ = now;
    if (engine_.Blocks != blocksSeen_) {
        blocksSeen_ = engine_.Blocks;
        standstill_ = 0ns;
        return;
    }
    const auto limit = blocksSeen_ == 0 ? std::max<std::chrono::nanoseconds>(
                                              kFirstBlockLimit, StandstillLimit(shared_.SampleRate))
                                        : StandstillLimit(shared_.SampleRate);
    if (standstill_ > limit)
        throw MeasureError("The input device '" + engine_.InputDeviceName +
                           "' has stopped delivering sound.");
}

bool LiveMeasurement::Finished(std::chrono::nanoseconds now) {
    if (!playbackStart_ && engine_.PlaybackStarts > 0) playbackStart_ = now;
    if (!playbackStart_ || updates_ < kUpdatesNeeded) return false;
    return std::chrono::duration<double>(now - *playbackStart_).count() >= options_.seconds;
}

void LiveMeasurement::Run(const std::function<void()>& onBlock) {
    meter_.OnBlock([&] {
        if (meter_.Updated()) ++updates_;
        onBlock();
    });
    for (auto now = loop_.Now(); !Finished(now); now = loop_.Now()) {
        CheckAlive(now);
        loop_.Wait(kPollInterval);
    }
    engine_.Stop();
    meter_.OnBlock(nullptr);
}

}  // namespace sonavex::measure
