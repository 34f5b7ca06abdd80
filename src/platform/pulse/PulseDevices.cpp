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

}  // namespace

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
