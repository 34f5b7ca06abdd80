#include "platform/alsa/AlsaControls.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/alsa/AlsaDevices.h"
#include "platform/ring/DeviceDescriptions.h"

namespace sonavex {
namespace {

constexpr std::string_view kCardPcm = "hw:";
constexpr std::string_view kCardArgument = "CARD=";

std::optional<AlsaDevice> Named(snd_pcm_stream_t direction, const std::string& name) {
    const std::vector<AlsaDevice> devices = ListAlsaDevices(direction);
    const auto found = std::find_if(devices.begin(), devices.end(),
                                    [&](const AlsaDevice& device) { return IsNamed(device.info, name); });
    return found == devices.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

std::string AlsaControlOfPcm(const std::string& pcm) {
    std::string_view card = pcm;
    if (!card.starts_with(kCardPcm)) return {};
    card.remove_prefix(kCardPcm.size());
    card = card.substr(0, card.find(','));
    if (card.starts_with(kCardArgument)) card.remove_prefix(kCardArgument.size());
    return card.empty() ? std::string() : std::string(kCardPcm).append(card);
}

std::string AlsaControlOf(snd_pcm_stream_t direction, const std::string& name) {
    const std::optional<AlsaDevice> device = Named(direction, name);
    return device ? AlsaControlOfPcm(device->pcm) : std::string();
}

std::string AlsaLastingName(snd_pcm_stream_t direction, const std::string& name) {
    const std::optional<AlsaDevice> device = Named(direction, name);
    return device ? LastingDescription(device->info) : name;
}

}  // namespace sonavex
