#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/measure/Options.h"
#include "app/measure/Readings.h"
#include "app/measure/ToneRequests.h"
#include "core/audio/Instrument.h"
#include "platform/plain/MemorySettingsStore.h"
#include "platform/plain/PlainEventLoop.h"

namespace sonavex::measure {

// The instrument without its window, for one measurement.
class LiveMeasurement {
public:
    // A script needs an error, not a recovery.
    static constexpr StreamWatch::Policy kEndAtLoss{.firstBlock = std::chrono::milliseconds(2500),
                                                    .recover = false};

    // policy: what a loss does after Start.
    explicit LiveMeasurement(const RunOptions& options, const StreamWatch::Policy& policy = kEndAtLoss);

    // Creates devices, starts tones and capture. Throws MeasureError when a device cannot be used.
    void Start();

    // Measures until the time is over and two updates are complete, calling onBlock after each block. Throws
    // MeasureError when a device is lost or stalls.
    void Run(const std::function<void()>& onBlock);

    // Throws MeasureError when a device is lost or stalls.
    void CheckAlive() const;
    // Stops capture and playback.
    void Stop();

    PlainEventLoop& Loop() noexcept { return loop_; }
    Instrument& Parts() noexcept { return instrument_; }
    const Meter& Readings() const noexcept { return instrument_.Meter; }
    StreamDetails Details() const;

private:
    // Stores messages of the engine for the one line that the program prints.
    class Console : public Dialogs, public ErrorLog, public MixerBinding {
    public:
        void Message(const std::string& text, MessageIcon) override { message_ = text; }
        bool AskOkCancel(const std::string&) override { return false; }
        bool AskYesNo(const std::string&) override { return false; }
        void SetBusyPointer(bool) override {}
        std::int32_t WriteErrorLog(std::string& tStr, const RuntimeError& error) override;
        void WriteLine(const std::string&) override {}
        void SetFatalError(bool) override {}
        void PointMixersAt(const std::string&, const std::string&) override {}
        void ReopenSoundCard(const std::string&, const std::string&) override {}
        // The last message, or the fallback.
        std::string Line(const std::string& fallback) const;

    private:
        std::string message_;
    };

    void CheckDevices() const;
    void CreateEngineDevices();
    bool Finished(std::chrono::nanoseconds now);

    RunOptions options_;
    std::int32_t osMajorVersion_;
    std::int32_t rateHz_;
    std::vector<ToneRequest> tones_;
    PlainEventLoop loop_;
    std::unique_ptr<SoundSystem> sound_;
    MemorySettingsStore store_;
    Console console_;
    Instrument instrument_;
    std::optional<std::chrono::nanoseconds> playbackStart_;
    int updates_ = 0;
};

}  // namespace sonavex::measure
