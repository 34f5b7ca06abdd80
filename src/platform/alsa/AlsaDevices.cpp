#include "platform/alsa/AlsaDevices.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "core/ports/SoundErrors.h"
#include "platform/alsa/AlsaConfiguration.h"
#include "platform/ring/DeviceDescriptions.h"

namespace sonavex {
namespace {

// PCMs that libasound's packages define on every machine. They add conversions to the first card, which is
// listed itself.
constexpr std::array<std::string_view, 7> kPackagePcms{"default", "lavrate", "samplerate", "speexrate",
                                                       "speex",   "upmix",   "vdownmix"};

struct FreeHints {
    void operator()(void** hints) const { snd_device_name_free_hint(hints); }
};
using Hints = std::unique_ptr<void*, FreeHints>;

Hints PcmHints() {
    void** hints = nullptr;
    return snd_device_name_hint(-1, "pcm", &hints) < 0 ? Hints() : Hints(hints);
}

// Empty when the hint has no such text.
std::string HintText(const void* hint, const char* id) {
    const std::unique_ptr<char, void (*)(void*)> text(snd_device_name_get_hint(hint, id), std::free);
    return text ? text.get() : "";
}

bool ServesDirection(const void* hint, snd_pcm_stream_t direction) {
    const std::string only = HintText(hint, "IOID");
    return only.empty() || only == (direction == SND_PCM_STREAM_PLAYBACK ? "Output" : "Input");
}

// Only hw: names of a card; its other names are conversions of it.
bool Offered(const std::string& name) {
    if (name.find(':') != std::string::npos) return name.starts_with("hw:");
    return std::find(kPackagePcms.begin(), kPackagePcms.end(), name) == kPackagePcms.end();
}

std::string Description(const void* hint, const std::string& name, bool converting) {
    std::string text = HintText(hint, "DESC");
    // The second line describes the type of PCM.
    text.resize(std::min(text.find('\n'), text.size()));
    return (text.empty() ? name : text) + (converting ? " (direct, converting)" : " (direct)");
}

void Distinguish(std::vector<AlsaDevice>& devices) {
    SoundDeviceList list;
    for (const AlsaDevice& device : devices) list.push_back(device.info);
    DistinguishDescriptions(list);
    for (std::size_t i = 0; i < list.size(); ++i) devices[i].info = list[i];
}

bool Known(const std::vector<AlsaDevice>& list, const std::string& name) {
    return std::any_of(list.begin(), list.end(),
                       [&](const AlsaDevice& device) { return device.pcm == name; });
}

}  // namespace

std::vector<AlsaDevice> ListAlsaDevices(snd_pcm_stream_t direction) {
    const AlsaConfiguration configuration;
    const Hints hints = PcmHints();
    std::vector<AlsaDevice> list;
    for (void** hint = hints.get(); hint != nullptr && *hint != nullptr; ++hint) {
        const std::string name = HintText(*hint, "NAME");
        if (!Offered(name) || Known(list, name) || !ServesDirection(*hint, direction)) continue;
        const AlsaConfiguration::Pcm pcm = configuration.Find(name, direction);
        if (pcm.path == AlsaPath::kIndirect) continue;
        const bool converting = pcm.path == AlsaPath::kConverting;
        list.push_back({{kAlsaPrefix + name, Description(*hint, name, converting), "ALSA " + pcm.type},
                        name,
                        converting});
    }
    std::stable_partition(list.begin(), list.end(),
                          [](const AlsaDevice& device) { return device.Hardware(); });
    Distinguish(list);
    return list;
}

AlsaDevice FindAlsaDevice(snd_pcm_stream_t direction, const std::string& identifier) {
    std::vector<AlsaDevice> list = ListAlsaDevices(direction);
    if (identifier.empty()) {
        if (!list.empty()) return list.front();
        throw RuntimeError(sound_error::kNoDriver, "There is no sound card.");
    }
    const auto found = std::find_if(list.begin(), list.end(), [&](const AlsaDevice& device) {
        return device.info.identifier == identifier;
    });
    if (found != list.end()) return *found;
    throw RuntimeError(sound_error::kNoDriver, "There is no sound device '" + identifier + "'.");
}

}  // namespace sonavex
