// Stored settings with any content: the instrument starts, or names the value that prevents it. Then it
// measures, plays and ends. What it has stored must start again.
//
// First byte: bit 0 the older generation of the system, bit 1 a file in place of values, bits 2 to 4 the
// number of blocks. Values are one per line: a byte for the key, then the text.

#include <array>
#include <string_view>
#include <vector>

#include "fuzz/FuzzRig.h"
#include "platform/plain/IniText.h"

namespace sonavex {
namespace {

using fuzz::FuzzRig;
using fuzz::Input;
using fuzz::Require;

struct PlacedKey {
    std::string section;
    std::string key;
};

std::vector<PlacedKey> AllKeys() {
    std::vector<PlacedKey> all;
    for (const SettingsKey& key : {keys::kAuto,
                                   keys::kBaseline,
                                   keys::kBaselineHz,
                                   keys::kBaselineRate,
                                   keys::kInputMixerState,
                                   keys::kOutputMixerState,
                                   keys::kVistaMixerState,
                                   keys::kInput,
                                   keys::kOutput,
                                   keys::kSampleRate,
                                   keys::kLineInput,
                                   keys::kThreeMixers,
                                   keys::kLevel,
                                   keys::kMuteMeter,
                                   keys::kToneType,
                                   keys::kCurrentStart,
                                   keys::kCurrentEnd,
                                   keys::kCurrentSweepTime,
                                   keys::kCurrentSweep,
                                   keys::kCurrentType,
                                   keys::kCurrentLoop,
                                   keys::kCurrentLoopIncrement,
                                   keys::kNumberOfTones,
                                   keys::kLastTab})
        all.push_back({std::string(key.section), std::string(key.key)});
    for (const char* form : {"frmMain", "frmDevices", "frmSound", "frmSoundVista"})
        for (const char* edge : {" Left", " Top"})
            all.push_back({std::string(keys::kWindows), std::string(form) + edge});
    for (int harmonic = 0; harmonic < 8; ++harmonic)
        for (const SettingsKey& key : {keys::kThd, keys::kDb})
            all.push_back({std::string(key.section), keys::Numbered(key, harmonic)});
    for (int entry = 1; entry <= 8; ++entry)
        for (const SettingsKey& key :
             {keys::kMemoryStart, keys::kMemoryEnd, keys::kMemorySweepTime, keys::kMemoryLoopIncrement,
              keys::kMemorySweep, keys::kMemoryType, keys::kMemoryLoop, keys::kMemorySelected})
            all.push_back({std::string(key.section), keys::Numbered(key, entry)});
    const SettingsKey& extended = keys::kExtendedSampleRate;
    all.push_back({std::string(extended.section), std::string(extended.key)});
    return all;
}

// Stores values; returns whether all are UTF-8. Same result for StoreFile.
bool StoreValues(Input& input, SettingsStore& store) {
    static const std::vector<PlacedKey> kKeys = AllKeys();
    bool plainText = true;
    while (!input.AtEnd()) {
        const PlacedKey& key = kKeys[input.Byte() % kKeys.size()];
        const std::string_view value = input.Line();
        plainText = plainText && fuzz::IsUtf8(value);
        store.Save(key.section, key.key, value);
    }
    return plainText;
}

// Writing a file that was read gives the same content.
bool StoreFile(Input& input, SettingsStore& store) {
    bool plainText = true;
    const IniReading reading = ReadIni(input.Rest());
    const IniReading again = ReadIni(WriteIni(reading.sections));
    Require(!again.damaged, "what is written is settings text");
    for (const auto& [section, values] : reading.sections)
        for (const auto& [key, value] : values) {
            Require(again.sections.at(section).at(key) == value, "a value comes back", value);
            plainText = plainText && fuzz::IsUtf8(value);
            store.Save(section, key, value);
        }
    return plainText;
}

// Plays every stored tone and the current signal.
void Play(FuzzRig& instrument, int blocks) {
    MemoryControls& memory = instrument.form.GeneratorPanel.MemoryControls;
    instrument.Step(blocks);
    instrument.Act([&] {
        for (std::int32_t i = 0; i < memory.ToneList.Count(); ++i) memory.ToneList.UserSelects(i, true);
    });
    instrument.Act([&] { memory.cmdStartMemory.Press(); });
    instrument.Step(blocks);
    instrument.Act([&] { instrument.form.GeneratorPanel.StopPlaying(); });
    instrument.Act([&] { instrument.form.GeneratorPanel.Controls.Command1.Press(); });
    instrument.Step(2);
    instrument.Act([&] { instrument.form.mnuSoundCard_Click(); });
    instrument.Act([&] { instrument.form.mnuSelectCard_Click(); });
    instrument.Step(1);
}

bool Run(SettingsStore& store, std::int32_t generation, bool plainText, int blocks) {
    FuzzRig instrument(store, generation, plainText);
    if (!instrument.Start()) return false;
    Play(instrument, blocks);
    const std::size_t before = instrument.ErrorsShown();
    instrument.ShutDown();
    Require(instrument.ErrorsShown() == before, "the shutdown succeeds", instrument.log.Lines().back());
    return true;
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    fuzz::Input input(data, size);
    const unsigned head = input.Byte();
    const std::int32_t generation = (head & 1U) != 0 ? 5 : 10;
    const int blocks = 2 + 3 * static_cast<int>((head >> 2U) & 7U);
    MemorySettingsStore store;
    const bool plainText = (head & 2U) != 0 ? StoreFile(input, store) : StoreValues(input, store);
    if (Run(store, generation, plainText, blocks)) {
        FuzzRig next(store, generation, plainText);
        const bool started = next.Start();
        Require(started, "what was stored at the end starts the instrument", next.log.Lines().back());
    } else {
        MemorySettingsStore none;
        FuzzRig next(none, generation, true);
        Require(next.Start(), "without settings the instrument starts");
    }
    return 0;
}
