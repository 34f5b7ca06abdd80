// A sound card with a mixer only, as a libasound plugin ("ctl" of type "fakemixer"). It has the controls of a
// common card; their values are in the file that the configuration's "state" names. A process that writes
// this file acts as another program that changes levels.

#define PIC 1  // required by libasound's headers to export the plugin's version
#include <alsa/asoundlib.h>
// Needs the header above.
#include <alsa/control_external.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "support/alsa/FakeMixerState.h"

namespace {

using namespace sonavex;

enum class Kind { kVolume, kSwitch, kChoice };

struct Definition {
    const char* name;
    Kind kind;
    int channels;
    long maximum;
    int minimumHundredthsDb;
    int stepHundredthsDb;
};

constexpr std::array<Definition, kFakeControls> kDefinitions{{
    {"Master Playback Volume", Kind::kVolume, 2, 87, -6525, 75},
    {"Master Playback Switch", Kind::kSwitch, 2, 1, 0, 0},
    {"PCM Playback Volume", Kind::kVolume, 2, 255, -5100, 20},
    {"PCM Playback Switch", Kind::kSwitch, 2, 1, 0, 0},
    {"Line Playback Volume", Kind::kVolume, 2, 31, -3450, 150},
    {"Line Playback Switch", Kind::kSwitch, 2, 1, 0, 0},
    {"Mic Playback Volume", Kind::kVolume, 1, 31, -3450, 150},
    {"Mic Playback Switch", Kind::kSwitch, 1, 1, 0, 0},
    {"Mic Boost Volume", Kind::kVolume, 2, 3, 0, 1000},
    {"Capture Volume", Kind::kVolume, 2, 46, -1200, 75},
    {"Capture Switch", Kind::kSwitch, 2, 1, 0, 0},
    {"Input Source", Kind::kChoice, 1, 3, 0, 0},
    {"Monitor Playback Switch", Kind::kSwitch, 2, 1, 0, 0},
    {"Tone Control - Bass", Kind::kVolume, 1, 15, -1050, 150},
    {"Tone Control - Treble", Kind::kVolume, 1, 15, -1050, 150},
    {"Dynamic Bass Boost Playback Switch", Kind::kSwitch, 1, 1, 0, 0},
    {"Line Boost Volume", Kind::kVolume, 2, 3, 0, 1000},
    {"Boost (+20dB) Capture Switch", Kind::kSwitch, 1, 1, 0, 0},
}};
constexpr std::array<const char*, 4> kSources{"CD", "Front Mic", "Line", "Rear Mic"};

struct FakeCard {
    snd_ctl_ext_t ext{};
    int file = -1;
    FakeMixerState seen;  // as reported by events so far
};

FakeCard& CardOf(snd_ctl_ext_t* ext) {
    return *static_cast<FakeCard*>(ext->private_data);
}

// 0, or the error when the card is gone.
int Load(const FakeCard& card, FakeMixerState& state) {
    const ssize_t bytes = pread(card.file, &state, sizeof state, 0);
    return bytes == static_cast<ssize_t>(sizeof state) && state.pulledOut == 0 ? 0 : -ENODEV;
}

void Close(snd_ctl_ext_t* ext) {
    const std::unique_ptr<FakeCard> card(&CardOf(ext));
    close(card->file);
    close(ext->poll_fd);
}

// The controls that the driver has reported and not removed.
std::vector<unsigned> OfferedKeys(const FakeCard& card) {
    std::vector<unsigned> keys;
    for (unsigned key = 0; key < kFakeControls; ++key)
        if (card.seen.missing.at(key) == 0) keys.push_back(key);
    return keys;
}

int Count(snd_ctl_ext_t* ext) {
    return static_cast<int>(OfferedKeys(CardOf(ext)).size());
}

void Describe(unsigned key, snd_ctl_elem_id_t* id) {
    snd_ctl_elem_id_set_interface(id, SND_CTL_ELEM_IFACE_MIXER);
    snd_ctl_elem_id_set_name(id, kDefinitions.at(key).name);
}

int List(snd_ctl_ext_t* ext, unsigned offset, snd_ctl_elem_id_t* id) {
    const std::vector<unsigned> keys = OfferedKeys(CardOf(ext));
    if (offset >= keys.size()) return -EINVAL;
    Describe(keys[offset], id);
    return 0;
}

// Removing a control changes the numbers of others, but not their names.
snd_ctl_ext_key_t Find(snd_ctl_ext_t* ext, const snd_ctl_elem_id_t* id) {
    for (const unsigned key : OfferedKeys(CardOf(ext)))
        if (std::strcmp(kDefinitions.at(key).name, snd_ctl_elem_id_get_name(id)) == 0) return key;
    return SND_CTL_EXT_KEY_NOT_FOUND;
}

int GetAttribute(snd_ctl_ext_t*, snd_ctl_ext_key_t key, int* type, unsigned* access, unsigned* count) {
    const Definition& definition = kDefinitions.at(key);
    *type = definition.kind == Kind::kVolume   ? SND_CTL_ELEM_TYPE_INTEGER
            : definition.kind == Kind::kSwitch ? SND_CTL_ELEM_TYPE_BOOLEAN
                                               : SND_CTL_ELEM_TYPE_ENUMERATED;
    *access = SND_CTL_EXT_ACCESS_READWRITE;
    if (definition.kind == Kind::kVolume)
        *access |= SND_CTL_EXT_ACCESS_TLV_READ | SND_CTL_EXT_ACCESS_TLV_CALLBACK;
    *count = static_cast<unsigned>(definition.channels);
    return 0;
}

int Decibels(snd_ctl_ext_t*, snd_ctl_ext_key_t key, int operation, unsigned, unsigned* tlv, unsigned size) {
    const Definition& definition = kDefinitions.at(key);
    if (operation != 0 || definition.kind != Kind::kVolume || size < 4 * sizeof(unsigned)) return -ENXIO;
    tlv[0] = SND_CTL_TLVT_DB_SCALE;
    tlv[1] = 2 * sizeof(unsigned);
    tlv[2] = static_cast<unsigned>(definition.minimumHundredthsDb);
    tlv[3] = static_cast<unsigned>(definition.stepHundredthsDb);
    return 0;
}

int GetRange(snd_ctl_ext_t*, snd_ctl_ext_key_t key, long* minimum, long* maximum, long* step) {
    *minimum = 0;
    *maximum = kDefinitions.at(key).maximum;
    *step = 1;
    return 0;
}

int Read(snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, long* values) {
    FakeMixerState state;
    if (const int error = Load(CardOf(ext), state); error < 0) return error;
    for (int channel = 0; channel < kDefinitions.at(key).channels; ++channel)
        values[channel] = state.values.at(key).at(static_cast<std::size_t>(channel));
    return 0;
}

int Write(snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, long* values) {
    FakeMixerState state;
    if (const int error = Load(CardOf(ext), state); error < 0) return error;
    const auto before = state.values.at(key);
    for (int channel = 0; channel < kDefinitions.at(key).channels; ++channel) {
        if (values[channel] < 0 || values[channel] > kDefinitions.at(key).maximum) return -EINVAL;
        state.values.at(key).at(static_cast<std::size_t>(channel)) =
            static_cast<std::int32_t>(values[channel]);
    }
    if (state.values.at(key) == before) return 0;
    return pwrite(CardOf(ext).file, &state, sizeof state, 0) == static_cast<ssize_t>(sizeof state) ? 1 : -EIO;
}

int GetChoice(snd_ctl_ext_t*, snd_ctl_ext_key_t, unsigned* items) {
    *items = kSources.size();
    return 0;
}

int GetChoiceName(snd_ctl_ext_t*, snd_ctl_ext_key_t, unsigned item, char* name, size_t size) {
    if (item >= kSources.size()) return -EINVAL;
    std::snprintf(name, size, "%s", kSources.at(item));
    return 0;
}

int ReadChoice(snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, unsigned* item) {
    long value = 0;
    const int result = Read(ext, key, &value);
    *item = static_cast<unsigned>(value);
    return result;
}

int WriteChoice(snd_ctl_ext_t* ext, snd_ctl_ext_key_t key, unsigned* item) {
    long value = *item;
    return Write(ext, key, &value);
}

void Subscribe(snd_ctl_ext_t*, int) {}

// Reports one control that has changed since it was last reported; ends when there is none.
int ReadEvent(snd_ctl_ext_t* ext, snd_ctl_elem_id_t* id, unsigned* mask) {
    FakeCard& card = CardOf(ext);
    FakeMixerState state;
    if (const int error = Load(card, state); error < 0) return error;
    for (unsigned key = 0; key < kFakeControls; ++key) {
        const bool moved = state.missing.at(key) != card.seen.missing.at(key);
        if (!moved && state.values.at(key) == card.seen.values.at(key)) continue;
        card.seen.values.at(key) = state.values.at(key);
        card.seen.missing.at(key) = state.missing.at(key);
        Describe(key, id);
        *mask = !moved                       ? SND_CTL_EVENT_MASK_VALUE
                : state.missing.at(key) != 0 ? SND_CTL_EVENT_MASK_REMOVE
                                             : SND_CTL_EVENT_MASK_ADD;
        return 1;
    }
    std::array<char, 4096> notices{};
    while (read(ext->poll_fd, notices.data(), notices.size()) > 0) {
    }
    return -EAGAIN;
}

const snd_ctl_ext_callback_t kCallbacks = [] {
    snd_ctl_ext_callback_t callbacks{};
    callbacks.close = Close;
    callbacks.elem_count = Count;
    callbacks.elem_list = List;
    callbacks.find_elem = Find;
    callbacks.get_attribute = GetAttribute;
    callbacks.get_integer_info = GetRange;
    callbacks.read_integer = Read;
    callbacks.write_integer = Write;
    callbacks.get_enumerated_info = GetChoice;
    callbacks.get_enumerated_name = GetChoiceName;
    callbacks.read_enumerated = ReadChoice;
    callbacks.write_enumerated = WriteChoice;
    callbacks.subscribe_events = Subscribe;
    callbacks.read_event = ReadEvent;
    return callbacks;
}();

// The state file named in the configuration; nullptr if there is none.
const char* StateFile(snd_config_t* configuration) {
    snd_config_t* entry = nullptr;
    const char* file = nullptr;
    if (snd_config_search(configuration, "state", &entry) < 0) return nullptr;
    return snd_config_get_string(entry, &file) < 0 ? nullptr : file;
}

int Open(snd_ctl_t** handle, const char* name, snd_config_t* configuration, int mode) {
    const char* const file = StateFile(configuration);
    if (file == nullptr) return -EINVAL;
    auto card = std::make_unique<FakeCard>();
    card->file = open(file, O_RDWR | O_CLOEXEC);
    if (card->file < 0) return -errno;
    if (const int error = Load(*card, card->seen); error < 0) {
        close(card->file);
        return error;
    }
    card->ext.version = SND_CTL_EXT_VERSION;
    std::strcpy(card->ext.id, "fakemixer");
    std::strcpy(card->ext.name, "Fake mixer");
    std::strcpy(card->ext.longname, "Fake mixer of the tests");
    card->ext.callback = &kCallbacks;
    card->ext.private_data = card.get();
    card->ext.tlv.c = Decibels;
    card->ext.poll_fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    inotify_add_watch(card->ext.poll_fd, file, IN_MODIFY);
    if (const int error = snd_ctl_ext_create(&card->ext, name, mode); error < 0) return error;
    *handle = card->ext.handle;
    static_cast<void>(card.release());
    return 0;
}

}  // namespace

extern "C" {
SND_CTL_PLUGIN_DEFINE_FUNC(fakemixer) {
    static_cast<void>(root);
    return Open(handlep, name, conf, mode);
}
SND_CTL_PLUGIN_SYMBOL(fakemixer);
}
