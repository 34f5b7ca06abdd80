#include "core/mixer/LevelKeeper.h"

#include <algorithm>
#include <sstream>
#include <string_view>

namespace sonavex {
namespace {

// The journal's entry of a device: the head with the device's name, the lines of its levels, an empty
// line.
constexpr std::string_view kPlaybackHead = "playback\t";
constexpr std::string_view kCaptureHead = "capture\t";

std::string_view HeadOf(MixerSide side) {
    return side == MixerSide::kPlayback ? kPlaybackHead : kCaptureHead;
}

}  // namespace

std::vector<LevelKeeper::Kept> LevelKeeper::Parse(const std::string& text) {
    std::vector<Kept> all;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const bool playback = line.starts_with(kPlaybackHead);
        if (!playback && !line.starts_with(kCaptureHead)) continue;
        Kept kept;
        kept.device.side = playback ? MixerSide::kPlayback : MixerSide::kCapture;
        kept.device.name = line.substr(HeadOf(kept.device.side).size());
        while (std::getline(lines, line) && !line.empty()) kept.levels += line + '\n';
        all.push_back(kept);
    }
    return all;
}

std::string LevelKeeper::Text(const std::vector<Kept>& kept) {
    std::string text;
    for (const Kept& entry : kept) {
        text += HeadOf(entry.device.side);
        text += entry.device.name + '\n' + entry.levels + '\n';
    }
    return text;
}

void LevelKeeper::WriteJournal() {
    std::vector<Kept> all = inUse_;
    all.insert(all.end(), waiting_.begin(), waiting_.end());
    journal_.Write(Text(all));
}

void LevelKeeper::ReadJournal() {
    if (journalRead_) return;
    journalRead_ = true;
    waiting_ = Parse(journal_.Read());
    if (waiting_.empty()) return;
    std::erase_if(waiting_, [this](const Kept& kept) { return TryRestore(kept); });
    WriteJournal();
}

// False when the device is absent; a later run then tries again. A device that rejects a level counts as
// restored, because it would reject it again.
bool LevelKeeper::TryRestore(const Kept& kept) {
    return levels_.Write(kept.device, kept.levels) || levels_.Read(kept.device).has_value();
}

bool LevelKeeper::Save(const MixerDevice& device) {
    std::erase_if(waiting_, [&](const Kept& kept) { return kept.device == device && TryRestore(kept); });
    const auto levels = levels_.Read(device);
    if (levels) inUse_.push_back({device, *levels});
    return levels.has_value();
}

// A sound system that does not answer leaves the name as it is. Saved under that name, the instrument's own
// levels would count as the user's, so the last known answer then applies.
MixerDevice LevelKeeper::Lasting(const MixerDevice& device) {
    const MixerDevice lasting = levels_.Lasting(device);
    if (lasting == device) return lasting_.try_emplace({device.side, device.name}, device).first->second;
    return lasting_.insert_or_assign({device.side, device.name}, lasting).first->second;
}

bool LevelKeeper::Use(std::vector<MixerDevice> devices) {
    ReadJournal();
    for (MixerDevice& device : devices)
        if (!device.name.empty()) device = Lasting(device);
    const auto gone = std::stable_partition(inUse_.begin(), inUse_.end(), [&](const Kept& kept) {
        return std::find(devices.begin(), devices.end(), kept.device) != devices.end();
    });
    bool ended = gone != inUse_.end();
    for (auto kept = gone; kept != inUse_.end(); ++kept)
        if (!TryRestore(*kept)) waiting_.push_back(*kept);
    inUse_.erase(gone, inUse_.end());
    bool saved = false;
    for (const MixerDevice& device : devices) {
        const bool known = std::any_of(inUse_.begin(), inUse_.end(),
                                       [&](const Kept& kept) { return kept.device == device; });
        if (!known && !device.name.empty() && Save(device)) saved = true;
    }
    if (ended || saved) WriteJournal();
    return saved;
}

void LevelKeeper::Restore() {
    if (inUse_.empty()) return;
    for (const Kept& kept : inUse_)
        if (!TryRestore(kept)) waiting_.push_back(kept);
    inUse_.clear();
    WriteJournal();
}

bool LevelKeeper::Present(MixerSide side) {
    return std::any_of(inUse_.begin(), inUse_.end(), [&](const Kept& kept) {
        return kept.device.side == side && levels_.Read(kept.device).has_value();
    });
}

}  // namespace sonavex
