#pragma once

#include <pulse/pulseaudio.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/pulse/FormatWatch.h"
#include "platform/pulse/PulseContext.h"
#include "platform/pulse/PulseDevices.h"

namespace sonavex {

// Follows what the server does to the samples between a stream and its device: resampling, volume, muting.
// Ask sends a request; the answer arrives later. The context must outlive this object.
class PulsePath {
public:
    // rateHz is the rate of the stream.
    PulsePath(PulseContext& context, PulseDirection direction, std::uint32_t rateHz);
    ~PulsePath();
    PulsePath(const PulsePath&) = delete;
    PulsePath& operator=(const PulsePath&) = delete;

    // Requests the state of the stream and of its device. Under lock; does not wait.
    void Ask(pa_stream* stream);
    // Waits for all outstanding answers. Under lock. Throws when the server refuses or does not answer.
    void Await(const PulseDeadline& deadline);

    // For the user: what changes the samples, by the latest answers. Empty when they pass unchanged.
    std::string Note() const;

    // Bits of a sample that the device takes or delivers, by the latest answer; 16 before. Any thread.
    int Bits() const noexcept { return bits_.load(std::memory_order_relaxed); }

    // Whether the device has changed the format or rate of its samples. Under lock.
    bool FormatChanged() const noexcept { return format_.Changed(); }

    // "card N" with the system's number of the sound card behind the device; empty when there is no card.
    std::string ClockName() const;

private:
    struct Volume {
        std::vector<double> percent;  // of each channel, or one for all; empty at exactly 100
        bool muted = false;
    };

    template <class Info>
    static void TakeDevice(pa_context* server, const Info* info, int end, void* self);
    template <class Info>
    static void TakeStream(pa_context* server, const Info* info, int end, void* self);
    // Takes the card's name from a sink or source.
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
    FormatWatch format_;
    std::string card_;
    bool virtual_ = false;  // the device is software
    bool suspended_ = false;
    bool float_ = false;  // samples pass through floats at the device's rate
    std::atomic<int> bits_{16};
    // The server's rate if virtual devices misreport theirs; otherwise 0.
    std::uint32_t graphRateHz_ = 0;
    Volume device_;
    Volume stream_;
    bool zeroBefore_ = false;  // the last answer reported a volume of 0
};

}  // namespace sonavex
