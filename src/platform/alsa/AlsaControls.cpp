#include "platform/alsa/AlsaControls.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/alsa/AlsaDevices.h"

namespace sonavex {
namespace {

constexpr std::string_view kCardPcm = "hw:";
constexpr std::string_view kCardArgument = "CARD=";

}  // namespace

std::string AlsaControlOfPcm(const std::string& pcm) {
    std::string_view card = pcm;
    if (!card.starts_with(kCardPcm)) return {};
    card.remove_prefix(kCardPcm.size());
    card = card.substr(0, card.find(','));
    if (card.starts_with(kCardArgument)) card.remove_prefix(kCardArgument.size());
    return card.empty() ? std::string() : std::string(kCardPcm).append(card);
}

std::string AlsaControlOf(snd_pcm_stream_t direction, const std::string& description) {
    const std::vector<AlsaDevice> devices = ListAlsaDevices(direction);
    const auto found = std::find_if(devices.begin(), devices.end(), [&](const AlsaDevice& device) {
        return device.info.description == description;
    });
    return found == devices.end() ? std::string() : AlsaControlOfPcm(found->pcm);
}

}  // namespace sonavex
