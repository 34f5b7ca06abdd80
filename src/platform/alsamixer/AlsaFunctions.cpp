#include "platform/alsamixer/AlsaFunctions.h"

#include <algorithm>
#include <utility>

#include "core/support/RuntimeError.h"
#include "core/text/Characters.h"

namespace sonavex {
namespace {

bool PlaysVolume(snd_mixer_elem_t* element) {
    return HasVolume(element, AlsaSide::kPlayback) && snd_mixer_selem_has_common_volume(element) == 0;
}

bool RecordsVolume(snd_mixer_elem_t* element) {
    return HasVolume(element, AlsaSide::kCapture) && snd_mixer_selem_has_common_volume(element) == 0;
}

bool HasTone(snd_mixer_elem_t* element) {
    return HasVolume(element, AlsaSide::kPlayback);
}

bool PlaysSwitch(snd_mixer_elem_t* element) {
    return HasSwitch(element, AlsaSide::kPlayback);
}

bool RecordsSwitch(snd_mixer_elem_t* element) {
    return HasSwitch(element, AlsaSide::kCapture);
}

bool Chooses(snd_mixer_elem_t* element) {
    return snd_mixer_selem_is_enumerated(element) != 0 && snd_mixer_selem_is_enum_capture(element) != 0;
}

bool AnyControl(snd_mixer_elem_t* element) {
    return HasVolume(element, AlsaSide::kPlayback) || HasVolume(element, AlsaSide::kCapture) ||
           HasSwitch(element, AlsaSide::kPlayback) || HasSwitch(element, AlsaSide::kCapture);
}

std::string NameOf(snd_mixer_elem_t* element) {
    return snd_mixer_selem_get_name(element);
}

// The numbers of the items whose names contain the word.
std::vector<std::int32_t> ItemsContaining(const std::vector<std::string>& items, const char* word) {
    std::vector<std::int32_t> numbers;
    for (std::size_t number = 0; number < items.size(); ++number)
        if (Contains(UpperCase(items[number]), word)) numbers.push_back(static_cast<std::int32_t>(number));
    return numbers;
}

bool IsLetter(char letter) {
    return letter >= 'A' && letter <= 'Z';
}

// Whether a word of the name begins with MIC. "Dynamic" does not count.
bool NamesMicrophone(const std::string& upper) {
    for (std::size_t at = upper.find("MIC"); at != std::string::npos; at = upper.find("MIC", at + 1))
        if (at == 0 || !IsLetter(upper[at - 1])) return true;
    return false;
}

// Whether the name mentions nothing but a boost: "Boost", "+20dB", "Boost (+20 dB)".
bool NamesBoostAlone(std::string upper) {
    for (const char* word : {"BOOST", "DB"})
        if (const std::size_t at = upper.find(word); at != std::string::npos)
            upper.erase(at, std::string(word).size());
    return std::none_of(upper.begin(), upper.end(), IsLetter);
}

// Excludes bass and line boosts.
bool BoostsMicrophone(snd_mixer_elem_t* element) {
    const std::string upper = UpperCase(NameOf(element));
    const bool boost = Contains(upper, "BOOST") || Contains(upper, "+20");
    return boost && (NamesMicrophone(upper) || NamesBoostAlone(upper)) && AnyControl(element);
}

const std::vector<const char*> kMasterNames{"Master",   "Speaker", "Front",  "Headphone",
                                            "Line Out", "PCM",     "Digital"};
const std::vector<const char*> kMicNames{"Mic",      "Microphone",   "Front Mic",
                                         "Rear Mic", "Internal Mic", "Headset Mic"};
const std::vector<const char*> kLineNames{"Line", "Line In", "Line-In"};

}  // namespace

AlsaFunctions::AlsaFunctions(AlsaCard card, MixerSide side, const std::string& deviceName)
    : card_(std::move(card)), namedMicrophone_(Contains(UpperCase(deviceName), "MIC")) {
    if (side == MixerSide::kPlayback) {
        AddPlayback();
        return;
    }
    AddSources();
    AddRecordLevels();
    AddBoost();
    AddMonitor();
}

snd_mixer_elem_t* AlsaFunctions::Named(const Names& names, bool (*has)(snd_mixer_elem_t*)) const {
    for (const char* name : names)
        for (snd_mixer_elem_t* element : card_->Elements())
            if (NameOf(element) == name && has(element)) return element;
    return nullptr;
}

snd_mixer_elem_t* AlsaFunctions::NameContaining(const Names& parts, bool (*has)(snd_mixer_elem_t*)) const {
    for (snd_mixer_elem_t* element : card_->Elements())
        for (const char* part : parts)
            if (Contains(UpperCase(NameOf(element)), part) && has(element)) return element;
    return nullptr;
}

void AlsaFunctions::Add(MixerFunction function, std::unique_ptr<MixerElement> element) {
    functions_.insert_or_assign(function, std::move(element));
}

void AlsaFunctions::Keep(snd_mixer_elem_t* element, const char* kind, std::unique_ptr<MixerElement> raw) {
    const unsigned index = snd_mixer_selem_get_index(element);
    raw_.push_back({NameOf(element) + ' ' + std::to_string(index) + ' ' + kind, std::move(raw)});
}

void AlsaFunctions::AddLevel(MixerFunction level, MixerFunction mute, snd_mixer_elem_t* element) {
    if (element == nullptr) return;
    Add(level, AlsaVolume(card_, element, AlsaSide::kPlayback));
    Keep(element, "playback volume", AlsaVolume(card_, element, AlsaSide::kPlayback));
    if (!PlaysSwitch(element)) return;
    Add(mute, AlsaSwitch(card_, element, AlsaSide::kPlayback, true));
    Keep(element, "playback mute", AlsaSwitch(card_, element, AlsaSide::kPlayback, true));
}

// The dialog shows decibels, so a tone control that does not report them cannot be used.
void AlsaFunctions::AddTone(MixerFunction tone, const Names& names) {
    snd_mixer_elem_t* const element = Named(names, HasTone);
    if (element == nullptr) return;
    auto volume = AlsaVolume(card_, element, AlsaSide::kPlayback);
    if (!volume->Gains()) return;
    Add(tone, std::move(volume));
    Keep(element, "tone", AlsaVolume(card_, element, AlsaSide::kPlayback));
}

void AlsaFunctions::AddPlayback() {
    snd_mixer_elem_t* const master = Named(kMasterNames, PlaysVolume);
    AddLevel(MixerFunction::kMasterVolume, MixerFunction::kMasterMute, master);
    snd_mixer_elem_t* const wave = Named({"PCM", "Wave"}, PlaysVolume);
    if (wave != master) AddLevel(MixerFunction::kWaveVolume, MixerFunction::kWaveMute, wave);
    AddLevel(MixerFunction::kLineVolume, MixerFunction::kLineMute, Named(kLineNames, PlaysVolume));
    AddLevel(MixerFunction::kMicVolume, MixerFunction::kMicMute, Named(kMicNames, PlaysVolume));
    AddTone(MixerFunction::kBass, {"Bass"});
    AddTone(MixerFunction::kMidRange, {"Mid", "Mid Range", "Middle"});
    AddTone(MixerFunction::kTreble, {"Treble"});
}

void AlsaFunctions::AddRecordLevels() {
    snd_mixer_elem_t* const shared = Named({"Capture", "Digital Capture", "Digital", "ADC"}, RecordsVolume);
    snd_mixer_elem_t* mic = Named(kMicNames, RecordsVolume);
    snd_mixer_elem_t* line = Named(kLineNames, RecordsVolume);
    sharedMic_ = mic == nullptr && shared != nullptr;
    sharedLine_ = line == nullptr && shared != nullptr;
    const bool sources =
        functions_.count(MixerFunction::kMicSource) != 0 || functions_.count(MixerFunction::kLineSource) != 0;
    if (sharedMic_ && (sources || namedMicrophone_)) mic = shared;
    if (sharedLine_ && (sources || !namedMicrophone_)) line = shared;
    if (mic != nullptr) Add(MixerFunction::kMicRecord, AlsaVolume(card_, mic, AlsaSide::kCapture));
    if (line != nullptr) Add(MixerFunction::kLineRecord, AlsaVolume(card_, line, AlsaSide::kCapture));
    std::vector<snd_mixer_elem_t*> kept;
    for (snd_mixer_elem_t* element : {shared, mic, line}) {
        if (element == nullptr || std::find(kept.begin(), kept.end(), element) != kept.end()) continue;
        kept.push_back(element);
        Keep(element, "capture volume", AlsaVolume(card_, element, AlsaSide::kCapture));
    }
}

void AlsaFunctions::AddSources() {
    snd_mixer_elem_t* const choice = NameContaining({"SOURCE"}, Chooses);
    if (choice == nullptr) {
        AddInputSwitches();
        return;
    }
    const std::vector<std::string> items = AlsaItems(choice);
    const std::vector<std::int32_t> mics = ItemsContaining(items, "MIC");
    const std::vector<std::int32_t> lines = ItemsContaining(items, "LINE");
    if (!mics.empty()) Add(MixerFunction::kMicSource, AlsaAnyItem(card_, choice, mics));
    if (!lines.empty()) Add(MixerFunction::kLineSource, AlsaAnyItem(card_, choice, lines));
    if (!mics.empty() || !lines.empty()) Keep(choice, "source", AlsaChoice(card_, choice));
}

void AlsaFunctions::AddInputSwitches() {
    snd_mixer_elem_t* const mic = Named(kMicNames, RecordsSwitch);
    snd_mixer_elem_t* const line = Named(kLineNames, RecordsSwitch);
    if (mic == nullptr || line == nullptr) return;
    Add(MixerFunction::kMicSource, AlsaInputSwitch(card_, mic, line));
    Add(MixerFunction::kLineSource, AlsaInputSwitch(card_, line, mic));
    for (snd_mixer_elem_t* element : {mic, line})
        Keep(element, "capture switch", AlsaSwitch(card_, element, AlsaSide::kCapture, false));
}

void AlsaFunctions::AddBoost() {
    snd_mixer_elem_t* const boost = NameContaining({"BOOST", "+20"}, BoostsMicrophone);
    if (boost == nullptr) return;
    for (const AlsaSide side : {AlsaSide::kCapture, AlsaSide::kPlayback}) {
        if (HasVolume(boost, side)) {
            Add(MixerFunction::kMicBoost, AlsaBoost(card_, boost, side));
            Keep(boost, "boost", AlsaVolume(card_, boost, side));
            return;
        }
        if (HasSwitch(boost, side)) {
            Add(MixerFunction::kMicBoost, AlsaSwitch(card_, boost, side, false));
            Keep(boost, "boost", AlsaSwitch(card_, boost, side, false));
            return;
        }
    }
}

void AlsaFunctions::AddMonitor() {
    snd_mixer_elem_t* const monitor = NameContaining({"MONITOR", "LOOPBACK"}, PlaysSwitch);
    if (monitor == nullptr) return;
    Add(MixerFunction::kMonitorOff, AlsaSwitch(card_, monitor, AlsaSide::kPlayback, true));
    Keep(monitor, "monitor", AlsaSwitch(card_, monitor, AlsaSide::kPlayback, true));
}

MixerElement* AlsaFunctions::Find(MixerFunction function) {
    const auto found = functions_.find(function);
    return found == functions_.end() ? nullptr : found->second.get();
}

bool AlsaFunctions::Serves(MixerFunction function) {
    const bool mic = function == MixerFunction::kMicRecord;
    if (!mic && function != MixerFunction::kLineRecord) return true;
    if (!(mic ? sharedMic_ : sharedLine_)) return true;
    MixerElement* const source = Find(mic ? MixerFunction::kMicSource : MixerFunction::kLineSource);
    if (source == nullptr) return mic == namedMicrophone_;
    try {
        return source->Read().front() != 0;
    } catch (const RuntimeError&) {
        return true;  // reading the level then reports the failure
    }
}

std::vector<DeviceMixer::RawEntry> AlsaFunctions::RawEntries() {
    std::vector<DeviceMixer::RawEntry> entries;
    entries.reserve(raw_.size());
    for (const Raw& raw : raw_) entries.push_back({raw.key, raw.element.get()});
    return entries;
}

}  // namespace sonavex
