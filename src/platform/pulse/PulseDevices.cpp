#include "platform/pulse/PulseDevices.h"

#include <algorithm>

#include "core/ports/SoundErrors.h"
#include "platform/ring/DeviceDescriptions.h"

namespace sonavex {
namespace {

struct Defaults {
    std::string sink;
    std::string source;
};

void TakeDefaults(pa_context*, const pa_server_info* info, void* defaults) {
    if (info == nullptr) return;
    *static_cast<Defaults*>(defaults) = {PulseText(info->default_sink_name),
                                         PulseText(info->default_source_name)};
}

// Info is pa_sink_info or pa_source_info.
template <class Info>
void TakeDevice(pa_context*, const Info* info, int, void* list) {
    if (info == nullptr) return;  // the end of the list
    static_cast<SoundDeviceList*>(list)->push_back(
        {PulseText(info->name), PulseText(info->description), PulseText(info->driver)});
}

struct Rates {
    std::uint32_t deviceHz = 0;
    std::uint32_t graphHz = 0;
    std::uint32_t monitoredSink = PA_INVALID_INDEX;
    bool virtualDevice = false;
};

void TakeGraphRate(pa_context*, const pa_server_info* info, void* rates) {
    if (info != nullptr) static_cast<Rates*>(rates)->graphHz = GraphRateHz(*info);
}

std::uint32_t MonitoredSink(const pa_sink_info&) {
    return PA_INVALID_INDEX;
}

std::uint32_t MonitoredSink(const pa_source_info& source) {
    return source.monitor_of_sink;
}

template <class Info>
void TakeRate(pa_context*, const Info* info, int, void* rates) {
    if (info == nullptr) return;
    auto& taken = *static_cast<Rates*>(rates);
    taken.deviceHz = info->sample_spec.rate;
    taken.monitoredSink = MonitoredSink(*info);
    taken.virtualDevice = IsVirtualDevice(info->proplist);
}

Rates ReadRates(PulseContext& context, PulseDirection direction, const char* name,
                const PulseDeadline& deadline) {
    const PulseContext::Lock lock(context);
    pa_context* const server = context.Connected(deadline);
    Rates rates;
    context.Await(pa_context_get_server_info(server, TakeGraphRate, &rates), deadline);
    context.Await(direction == PulseDirection::kPlayback
                      ? pa_context_get_sink_info_by_name(server, name, TakeRate<pa_sink_info>, &rates)
                      : pa_context_get_source_info_by_name(server, name, TakeRate<pa_source_info>, &rates),
                  deadline);
    // The properties of a monitor name no card.
    if (const std::uint32_t sink = rates.monitoredSink; sink != PA_INVALID_INDEX)
        context.Await(pa_context_get_sink_info_by_index(server, sink, TakeRate<pa_sink_info>, &rates),
                      deadline);
    return rates;
}

}  // namespace

bool IsVirtualDevice(const pa_proplist* properties) {
    return pa_proplist_contains(properties, "alsa.card") == 0 &&
           pa_proplist_contains(properties, PA_PROP_DEVICE_API) == 0;
}

// PipeWire runs all devices at one rate at a time. A card reports that rate; a virtual device reports the
// rate that it was created with.
std::uint32_t GraphRateHz(const pa_server_info& info) {
    const bool pipeWire = PulseText(info.server_name).find("PipeWire") != std::string::npos;
    return pipeWire ? info.sample_spec.rate : 0;
}

RateList ExtendedPulseRates(PulseContext& context, PulseDirection direction, const std::string& identifier,
                            const PulseDeadline& deadline) {
    const SoundDeviceInfo device = FindPulseDevice(context, direction, identifier, deadline);
    const Rates rates = ReadRates(context, direction, device.identifier.c_str(), deadline);
    const bool atGraphRate = rates.virtualDevice && rates.graphHz != 0;
    RateList list;
    for (const std::int32_t rateHz : kExtendedRates) {
        const auto rate = static_cast<std::uint32_t>(rateHz);
        if (rate == rates.deviceHz && (!atGraphRate || rate == rates.graphHz)) list.push_back(rateHz);
    }
    return list;
}

SoundDeviceList ListPulseDevices(PulseContext& context, PulseDirection direction,
                                 const PulseDeadline& deadline) {
    const PulseContext::Lock lock(context);
    pa_context* const server = context.Connected(deadline);
    const bool playback = direction == PulseDirection::kPlayback;
    Defaults defaults;
    SoundDeviceList list;
    context.Await(pa_context_get_server_info(server, TakeDefaults, &defaults), deadline);
    context.Await(playback ? pa_context_get_sink_info_list(server, TakeDevice<pa_sink_info>, &list)
                           : pa_context_get_source_info_list(server, TakeDevice<pa_source_info>, &list),
                  deadline);
    const std::string& first = playback ? defaults.sink : defaults.source;
    std::stable_partition(list.begin(), list.end(),
                          [&](const SoundDeviceInfo& device) { return device.identifier == first; });
    DistinguishDescriptions(list);
    return list;
}

SoundDeviceInfo FindPulseDevice(PulseContext& context, PulseDirection direction,
                                const std::string& identifier, const PulseDeadline& deadline) {
    const SoundDeviceList list = ListPulseDevices(context, direction, deadline);
    if (identifier.empty()) {
        if (!list.empty()) return list.front();
        throw RuntimeError(sound_error::kNoDriver, "The sound server has no sound device.");
    }
    const auto found = std::find_if(list.begin(), list.end(), [&](const SoundDeviceInfo& device) {
        return device.identifier == identifier;
    });
    if (found != list.end()) return *found;
    throw RuntimeError(sound_error::kNoDriver, "There is no sound device '" + identifier + "'.");
}

}  // namespace sonavex
