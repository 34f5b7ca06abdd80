#include "core/generator/MemoryTones.h"

#include <algorithm>
#include <limits>
#include <string>

#include "core/generator/ToneLine.h"
#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

// The key of one stored value of one entry. Entries are numbered from 1.
class EntryKey {
public:
    EntryKey(const SettingsKey& key, std::int32_t entry)
        : section_(key.section), key_(keys::Numbered(key, entry)), fallback_(key.fallback) {}
    SettingsKey Get() const noexcept { return {section_, key_, fallback_}; }

private:
    std::string_view section_;
    std::string key_;
    std::string_view fallback_;
};

// Keys with their defaults at start-up. The start of playback uses others: see KeysAtPlayback.
struct ToneKeys {
    SettingsKey start = keys::kMemoryStart;
    SettingsKey end = keys::kMemoryEnd;
    SettingsKey loop = keys::kMemoryLoop;
    SettingsKey loopIncrement = keys::kMemoryLoopIncrement;
};

ToneKeys KeysAtPlayback() {
    return {Settings::WithFallback(keys::kMemoryStart, "1"), Settings::WithFallback(keys::kMemoryEnd, "1"),
            Settings::WithFallback(keys::kMemoryLoop, "False"),
            Settings::WithFallback(keys::kMemoryLoopIncrement, "1000")};
}

void ReadTone(const Settings& settings, std::int32_t entry, const ToneKeys& toneKeys, ToneRecord& tone) {
    const auto of = [entry](const SettingsKey& key) { return EntryKey(key, entry); };
    tone.StartFrequency = settings.Double(of(toneKeys.start).Get());
    tone.EndFrequency = settings.Double(of(toneKeys.end).Get());
    tone.SweepTime = settings.Long(of(keys::kMemorySweepTime).Get());
    tone.Sweep = settings.Boolean(of(keys::kMemorySweep).Get());
    tone.WaveType = settings.Integer(of(keys::kMemoryType).Get());
    tone.Loop = settings.Boolean(of(toneKeys.loop).Get());
    tone.LoopIncrement = settings.Double(of(toneKeys.loopIncrement).Get());
}

// A tone of 0 Hz has no period and would play the previous content of its record.
void RequireAudible(const Settings& settings, std::int32_t entry, const SettingsKey& key,
                    double frequencyHz) {
    if (frequencyHz > 0.0) return;
    throw settings.Failure(frequencyHz == 0.0 ? error_number::kDivisionByZero : error_number::kInvalidCall,
                           EntryKey(key, entry).Get());
}

// Hz per millisecond. Clamped, because the span of two stored frequencies can exceed the largest double.
double StepOf(const ToneRecord& tone) {
    constexpr double kLargest = std::numeric_limits<double>::max();
    return std::clamp((tone.EndFrequency - tone.StartFrequency) / tone.SweepTime, -kLargest, kLargest);
}

const char* WaveName(const Settings& settings, std::int32_t entry, std::int16_t waveType) {
    if (waveType >= 0 && static_cast<std::size_t>(waveType) < kWaveNames.size())
        return kWaveNames[static_cast<std::size_t>(waveType)];
    throw settings.Failure(error_number::kSubscript, EntryKey(keys::kMemoryType, entry).Get());
}

}  // namespace

MemoryTones::MemoryTones(const GeneratorNeeds& needs, MemoryControls& controls, CurrentSignal& current,
                         SignalControls& signal, PlayInterlock& interlock, const CheckBox& chkMuteOutput)
    : needs_(needs),
      controls_(controls),
      current_(current),
      signal_(signal),
      interlock_(interlock),
      chkMuteOutput_(chkMuteOutput) {
    controls_.cmdStartMemory.SetCaption("Start Memory");
    controls_.ToneList.Click.Handle([this] { ToneList_Click(); });
    controls_.cmdGenAdd.Click.Handle([this] { cmdGenAdd_Click(); });
    controls_.cmdRemove.Click.Handle([this] { cmdRemove_Click(); });
    controls_.cmdStartMemory.Click.Handle([this] { cmdStartMemory_Click(); });
}

void MemoryTones::Load() {
    controls_.ToneList.Clear();
    for (std::int32_t entry = 1; entry <= needs_.generator.NumTones; ++entry) {
        if (entry > MemoryControls::kEntries)
            throw needs_.settings.Failure(error_number::kSubscript, keys::kNumberOfTones);
        ToneRecord& tone = needs_.generator.Tones[static_cast<std::size_t>(entry)];
        ReadTone(needs_.settings, entry, ToneKeys(), tone);
        const bool selected = needs_.settings.Boolean(EntryKey(keys::kMemorySelected, entry).Get());
        controls_.ToneList.AddItem(
            MakeToneLine(tone, WaveName(needs_.settings, entry, tone.WaveType), tone.Loop));
        controls_.ToneList.SetSelected(entry - 1, selected);
    }
}

void MemoryTones::WriteMemoryToRegistry() {
    Settings& settings = needs_.settings;
    settings.Store().DeleteSection(keys::kSignalGenerator);
    current_.SaveCurrentSignal();
    const std::int32_t count = controls_.ToneList.Count();
    for (std::int32_t position = 0; position < count; ++position) WriteEntry(position);
    settings.Save(keys::kNumberOfTones, CStr(count));
    settings.Save(keys::kLevel, CStr(signal_.sldLevel.Value()));
    settings.Save(keys::kMuteMeter, CStr(std::int32_t{chkMuteOutput_.Value()}));
}

void MemoryTones::WriteEntry(std::int32_t position) {
    ToneRecord tone;
    ParseToneLine(controls_.ToneList.List(position), tone);
    if (tone.Sweep) tone.LoopIncrement = StepOf(tone);
    const auto save = [this, entry = position + 1](const SettingsKey& key, const std::string& value) {
        needs_.settings.Save(EntryKey(key, entry).Get(), value);
    };
    save(keys::kMemoryStart, Str(tone.StartFrequency));
    save(keys::kMemoryEnd, Str(tone.EndFrequency));
    save(keys::kMemorySweepTime, Str(tone.SweepTime));
    save(keys::kMemorySweep, CStr(tone.Sweep));
    save(keys::kMemoryType, Str(tone.WaveType));
    save(keys::kMemoryLoop, CStr(tone.Loop));
    save(keys::kMemorySelected, CStr(controls_.ToneList.Selected(position)));
    save(keys::kMemoryLoopIncrement, Str(tone.LoopIncrement));
}

void MemoryTones::ToneList_Click() {
    interlock_.ShowSelection();
}

void MemoryTones::cmdGenAdd_Click() {
    if (!current_.CheckEntries()) return;
    current_.sldStartFreq_First();
    current_.sldSweepTime_First();
    current_.sldEndFreq_First();
    ToneRecord& tone = needs_.generator.Tones.front();
    tone.Sweep = tone.SweepTime != 0;
    // Playing memory tones may have changed the record's Loop.
    tone.Loop = signal_.chkLoop.Checked();
    const bool loop = tone.Loop && signal_.chkLoop.Enabled();
    controls_.ToneList.AddItem(MakeToneLine(tone, signal_.cmbType.Text(), loop));
    if (controls_.ToneList.Count() >= MemoryControls::kEntries) controls_.cmdGenAdd.SetEnabled(false);
    WriteMemoryToRegistry();
    needs_.generator.NumTones = controls_.ToneList.Count() - 1;
}

void MemoryTones::cmdRemove_Click() {
    for (std::int32_t position = controls_.ToneList.Count() - 1; position >= 0; --position)
        if (controls_.ToneList.Selected(position)) controls_.ToneList.RemoveItem(position);
    interlock_.ShowList();
    WriteMemoryToRegistry();
}

void MemoryTones::cmdStartMemory_Click() {
    if (needs_.generator.SweepRunning) {
        Stop();
    } else {
        Start();
    }
}

void MemoryTones::Start() {
    try {
        if (!StartSelected()) return;
    } catch (...) {
        Stop();
        needs_.generator.NumTones = 0;
        throw;
    }
    needs_.generator.SetGeneratorRunning(true);
    needs_.generator.SweepRunning = true;
    controls_.cmdStartMemory.SetCaption("Stop Memory");
}

// Changes nothing before all entries are checked.
bool MemoryTones::StartSelected() {
    Generator& generator = needs_.generator;
    ToneTable tones = generator.Tones;
    std::int32_t count = 0;
    if (!ReadSelected(tones, count)) return false;
    interlock_.Show(Playing::kMemory);
    generator.Tones = tones;
    generator.NumTones = count;
    generator.SweepCycleCount = 0;
    if (std::any_of(tones.begin(), tones.begin() + count, [](const ToneRecord& tone) { return tone.Sweep; }))
        needs_.EnableHiTimer1(true);
    generator.ResetTonePhases();
    return true;
}

bool MemoryTones::ReadSelected(ToneTable& tones, std::int32_t& count) {
    for (std::int32_t position = 0; position < controls_.ToneList.Count(); ++position) {
        if (!controls_.ToneList.Selected(position)) continue;
        if (count >= kToneRecords) throw RuntimeError(error_number::kSubscript);
        ToneRecord& tone = tones[static_cast<std::size_t>(count++)];
        ReadEntry(position, tone);
        if (!CheckRange(position, tone)) return false;
    }
    return true;
}

void MemoryTones::ReadEntry(std::int32_t position, ToneRecord& tone) {
    const ToneKeys toneKeys = KeysAtPlayback();
    ReadTone(needs_.settings, position + 1, toneKeys, tone);
    RequireAudible(needs_.settings, position + 1, toneKeys.start, tone.StartFrequency);
    if (tone.Sweep) RequireAudible(needs_.settings, position + 1, toneKeys.end, tone.EndFrequency);
    tone.LastFrequency = 0.0;
    tone.Frequency = tone.StartFrequency;
    tone.SweepFrequency = tone.StartFrequency;
}

// The tone may have been stored at a higher rate.
bool MemoryTones::CheckRange(std::int32_t position, const ToneRecord& tone) {
    const std::int32_t highest = needs_.shared.SampleRate / 2;
    const bool startValid = tone.StartFrequency <= highest;
    if (startValid && (!tone.Sweep || tone.EndFrequency <= highest)) return true;
    const char* message = startValid ? "Invalid End Frequency" : "Invalid Start Frequency";
    needs_.dialogs.Message(current_.WithRange(message) + "\r\r" + controls_.ToneList.List(position),
                           MessageIcon::kInformation);
    return false;
}

void MemoryTones::Stop() {
    needs_.generator.SetGeneratorRunning(false);
    needs_.generator.SweepRunning = false;
    needs_.EnableHiTimer1(false);
    controls_.cmdStartMemory.SetCaption("Start Memory");
    interlock_.Show(Playing::kNothing);
}

}  // namespace sonavex
