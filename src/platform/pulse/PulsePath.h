#pragma once

#include <pulse/pulseaudio.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/pulse/PulseContext.h"
#include "platform/pulse/PulseDevices.h"

namespace sonavex {

// What the server does to the samples between a stream and its device: resampling, volumes, muting. The
// server is asked now and then and answers when it likes. User-interface thread only; to be destroyed
// before the context.
class PulsePath {
public:
    // rateHz: of the stream.
    PulsePath(PulseContext& context, PulseDirection direction, std::uint32_t rateHz);
    ~PulsePath();
    PulsePath(const PulsePath&) = delete;
    PulsePath& operator=(const PulsePath&) = delete;

    // Asks the server about the stream and the device it is connected to. Under lock; does not wait.
    void Ask(pa_stream* stream);
    // Waits for the answers that are due. Under lock. Throws when the server refuses or does not answer.
    void Await(const PulseDeadline& deadline);

    // What changes the samples, for the user; empty when nothing does. By the latest answers.
    std::string Note() const;

    // "card N" with the system's number of the sound card behind the device; empty when the device is
    // no card's.
    std::string ClockName() const;

private:
    struct Volume {
        std::vector<double> percent;  // of each channel that is not at exactly 100
        bool muted = false;
    };

    template <class Info>
    static void TakeDevice(pa_context* server, const Info* info, int end, void* self);
    template <class Info>
    static void TakeStream(pa_context* server, const Info* info, int end, void* self);
    // Names the card of a sink or source.
    template <class Info>
    static void TakeCard(pa_context* server, const Info* info, int end, void* self);
    void AskForCardOf(pa_context* server, const pa_sink_info& sink);
    void AskForCardOf(pa_context* server, const pa_source_info& source);
    static void TakeServer(pa_context* server, const pa_server_info* info, void* self);
    static Volume VolumeOf(const pa_cvolume& volume, int mute);
    void Forget() noexcept;

    PulseContext& context_;
    PulseDirection direction_;
    std::uint32_t rateHz_;
    std::vector<pa_operation*> pending_;
    // Written by the connection's thread, under the context's lock.
    std::uint32_t deviceRateHz_ = 0;
    std::string card_;
    bool virtual_ = false;    // the device is software
    bool suspended_ = false;  // the device sleeps
    // Of a server whose virtual devices do not run at the rate that they tell; otherwise 0.
    std::uint32_t graphRateHz_ = 0;
    Volume device_;
    Volume stream_;
    bool zeroBefore_ = false;  // the answer before told of a stream without any volume
};

}  // namespace sonavex
