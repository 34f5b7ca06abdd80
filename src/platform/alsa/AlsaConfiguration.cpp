#include "platform/alsa/AlsaConfiguration.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

namespace sonavex {
namespace {

// Longest chain of definitions that libasound follows. The limit is needed because definitions may refer to
// each other in circles.
constexpr int kDeepestDefinition = 16;

// Types of PCM that do not give exclusive access to a card.
constexpr std::array<std::string_view, 12> kIndirectTypes{
    "null", "file", "pulse", "pipewire", "jack", "oss", "dmix", "dsnoop", "share", "dshare", "shm", "a52"};
// Types that pass the samples of their slave unchanged.
constexpr std::array<std::string_view, 4> kExactTypes{"hooks", "copy", "mmap_emul", "empty"};

template <class Types>
bool Contains(const Types& types, const std::string& type) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

struct DeleteConfig {
    void operator()(snd_config_t* node) const { snd_config_delete(node); }
};
using OwnedConfig = std::unique_ptr<snd_config_t, DeleteConfig>;

// Null when there is no definition with this name.
OwnedConfig Definition(snd_config_t* top, const char* base, const std::string& name) {
    snd_config_t* definition = nullptr;
    if (top == nullptr || snd_config_search_definition(top, base, name.c_str(), &definition) < 0) return {};
    return OwnedConfig(definition);
}

snd_config_t* Member(snd_config_t* node, const char* key) {
    snd_config_t* member = nullptr;
    return snd_config_search(node, key, &member) < 0 ? nullptr : member;
}

std::string TextOf(snd_config_t* node) {
    const char* text = nullptr;
    return node != nullptr && snd_config_get_string(node, &text) >= 0 ? text : "";
}

}  // namespace

AlsaConfiguration::AlsaConfiguration() {
    static_cast<void>(snd_config_update_r(&top_, &update_, nullptr));
}

AlsaConfiguration::~AlsaConfiguration() {
    if (top_ != nullptr) snd_config_delete(top_);
    if (update_ != nullptr) snd_config_update_free(update_);
}

AlsaConfiguration::Pcm AlsaConfiguration::Find(const std::string& name, snd_pcm_stream_t direction) const {
    const OwnedConfig definition = Definition(top_, "pcm", name);
    if (!definition) return {};
    return {PathOf(definition.get(), direction, 0), TextOf(Member(definition.get(), "type"))};
}

AlsaPath AlsaConfiguration::PathOf(const std::string& name, snd_pcm_stream_t direction, int depth) const {
    const OwnedConfig definition = Definition(top_, "pcm", name);
    return definition ? PathOf(definition.get(), direction, depth + 1) : AlsaPath::kIndirect;
}

AlsaPath AlsaConfiguration::PathOf(snd_config_t* definition, snd_pcm_stream_t direction, int depth) const {
    if (depth > kDeepestDefinition) return AlsaPath::kIndirect;
    if (snd_config_get_type(definition) == SND_CONFIG_TYPE_STRING)
        return PathOf(TextOf(definition), direction, depth);
    const std::string type = TextOf(Member(definition, "type"));
    if (type.empty() || Contains(kIndirectTypes, type)) return AlsaPath::kIndirect;
    if (type == "asym") {
        snd_config_t* const half =
            Member(definition, direction == SND_PCM_STREAM_PLAYBACK ? "playback" : "capture");
        return half == nullptr ? AlsaPath::kIndirect : PathOfSlave(half, direction, depth);
    }
    snd_config_t* const slave = Member(definition, "slave");
    if (slave == nullptr) return AlsaPath::kDirect;
    const AlsaPath path = PathOfSlave(slave, direction, depth);
    return path == AlsaPath::kDirect && !Contains(kExactTypes, type) ? AlsaPath::kConverting : path;
}

// A slave is defined in place or named.
AlsaPath AlsaConfiguration::PathOfSlave(snd_config_t* slave, snd_pcm_stream_t direction, int depth) const {
    OwnedConfig named;
    if (snd_config_get_type(slave) == SND_CONFIG_TYPE_STRING) {
        named = Definition(top_, "pcm_slave", TextOf(slave));
        slave = named.get();
    }
    snd_config_t* const pcm = slave == nullptr ? nullptr : Member(slave, "pcm");
    return pcm == nullptr ? AlsaPath::kIndirect : PathOf(pcm, direction, depth + 1);
}

}  // namespace sonavex
