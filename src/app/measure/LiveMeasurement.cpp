#include "app/measure/LiveMeasurement.h"

#include <algorithm>

#include "app/common/Sound.h"
#include "app/common/Trace.h"
#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "core/dsp/AnalysisBand.h"
#include "core/settings/SampleRates.h"
#include "core/support/EndProgram.h"
#include "core/text/Numbers.h"
#include "platform/plain/OsMajorVersion.h"

namespace sonavex::measure {
namespace {

using namespace std::chrono_literals;

constexpr int kUpdatesNeeded = 2;
constexpr auto kPollInterval = 50ms;

std::int32_t OsMajorVersion() {
    const std::string_view text = OsMajorVersionText();
    if (const auto version = ParseOsMajorVersion(text)) return *version;
    throw MeasureError("SONAVEX_OS_MAJOR is '" + std::string(text) +
                       "'; it takes a whole number of 1 to 1000.");
}

std::int32_t RateOf(const RunOptions& options, std::int32_t osMajorVersion) {
    if (options.rateHz) return *options.rateHz;
    return SampleRateTable[static_cast<std::size_t>(DefaultSampleRateIndex(osMajorVersion))];
}

bool Listed(const SoundDeviceList& devices, const std::string& identifier) {
    return std::any_of(devices.begin(), devices.end(),
                       [&](const SoundDeviceInfo& device) { return device.identifier == identifier; });
}

// The primary device refers to another one, so a list with one entry has no device.
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

LiveMeasurement::LiveMeasurement(const RunOptions& options, const StreamWatch::Policy& policy)
    : options_(options),
      osMajorVersion_(OsMajorVersion()),
      rateHz_(RateOf(options, osMajorVersion_)),
      tones_(ParseTones(options.tones, rateHz_)),
      sound_(app::CreateSound(app::SoundFromEnvironment(), loop_)),
      instrument_({store_, *sound_, loop_, console_, console_, console_}, policy) {
    instrument_.Shared.OsMajorVersion = osMajorVersion_;
    instrument_.Shared.SampleRate = rateHz_;
    instrument_.Settings.Save(keys::kInput, options_.input);
    instrument_.Settings.Save(keys::kOutput, options_.output);
    instrument_.Settings.Save(keys::kLevel, CStr(options_.levelHundredthsDb));
    instrument_.Engine.Trace = app::TraceFromEnvironment();
    PrepareMeter(instrument_.Meter, options_, rateHz_);
}

StreamDetails LiveMeasurement::Details() const {
    return DetailsOf(instrument_.Engine, rateHz_, sound_->Simulated());
}

void LiveMeasurement::CheckDevices() const {
    CheckDevice(sound_->EnumerateCapture(), "input", options_.input);
    CheckDevice(sound_->EnumeratePlayback(), "output", options_.output);
}

void LiveMeasurement::CreateEngineDevices() {
    bool created = false;
    try {
        created = instrument_.Engine.CreateDevices() && instrument_.Engine.SetEvents();
    } catch (const EndProgram&) {
        created = false;
    }
    if (!created) throw MeasureError(console_.Line("The sound devices cannot be used."));
}

void LiveMeasurement::Start() {
    CheckDevices();
    CreateEngineDevices();
    const BandEdges band = AnalysisBand(rateHz_);
    instrument_.Meter.SetUpAnalysis(band.lowHz, band.highHz);
    instrument_.Engine.ResetStream();
    StartTones(instrument_.Meter.Generator, tones_);
    instrument_.HiTimer1.SetInterval(1ms);
    instrument_.HiTimer1.SetEnabled(AnySweep(tones_));
    instrument_.StartCapture();
}

void LiveMeasurement::CheckAlive() const {
    const StreamWatch& watch = instrument_.Watch;
    if (watch.Losses() == 0) return;
    if (!watch.Stalled()) throw MeasureError(watch.Reason());
    throw MeasureError("The input device '" + instrument_.Engine.InputDeviceName +
                       "' has stopped delivering sound.");
}

bool LiveMeasurement::Finished(std::chrono::nanoseconds now) {
    if (!playbackStart_ && instrument_.Engine.PlaybackStarts > 0) playbackStart_ = now;
    if (!playbackStart_ || updates_ < kUpdatesNeeded) return false;
    return std::chrono::duration<double>(now - *playbackStart_).count() >= options_.seconds;
}

void LiveMeasurement::Run(const std::function<void()>& onBlock) {
    Meter& meter = instrument_.Meter;
    meter.OnBlock = [&] {
        if (meter.Updated()) ++updates_;
        onBlock();
    };
    for (auto now = loop_.Now(); !Finished(now); now = loop_.Now()) {
        CheckAlive();
        loop_.Wait(kPollInterval);
    }
    Stop();
    meter.OnBlock = nullptr;
}

void LiveMeasurement::Stop() {
    instrument_.Watch.Stop();
    instrument_.Engine.Stop();
}

}  // namespace sonavex::measure
