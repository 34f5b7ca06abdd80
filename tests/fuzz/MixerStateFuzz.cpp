// Stored mixer levels: state lines of both generations and the journal. The first byte selects the kind, the
// next two remove controls.

#include "core/mixer/LegacyMixerState.h"
#include "core/mixer/LevelKeeper.h"
#include "core/mixer/VistaSound.h"
#include "core/support/RuntimeError.h"
#include "fuzz/FuzzTarget.h"
#include "fuzz/MixerBench.h"

namespace sonavex {
namespace {

using fuzz::MixerBench;
using fuzz::Require;

class TextJournal : public MixerJournal {
public:
    std::string Read() override { return text; }
    void Write(const std::string& newText) override { text = newText; }
    std::string text;
};

// Requires an error that a line may raise, with a text.
void Expect(const RuntimeError& error) {
    Require(error.Number() == error_number::kInvalidCall || error.Number() == error_number::kTypeMismatch ||
                error.Number() == error_number::kOverflow,
            "a documented error", error.what());
    Require(*error.what() != '\0', "an error has a text");
}

void SetLegacy(MixerBench& bench, MixerControl& mixer, std::string_view line) {
    try {
        SetLegacyMixerState(mixer, line);
    } catch (const RuntimeError& error) {
        Expect(error);
    }
    bench.Check();
    const std::string state = GetLegacyMixerState(mixer);
    SetLegacyMixerState(mixer, state);
    Require(GetLegacyMixerState(mixer) == state, "a state that was read is put back", state);
}

void SetVista(MixerBench& bench, std::string_view line) {
    try {
        VistaSound::SetVistaMixerState(bench.library, line);
    } catch (const RuntimeError& error) {
        Expect(error);
    }
    bench.Check();
    const std::string state = VistaSound::GetVistaMixerState(bench.library);
    VistaSound::SetVistaMixerState(bench.library, state);
    Require(VistaSound::GetVistaMixerState(bench.library) == state, "a state that was read is put back",
            state);
}

// A line that was saved can be applied, whatever was saved before it.
void SaveVista(MixerBench& bench, std::string_view savedBefore) {
    const std::string line = VistaSound::StateToSave(bench.library, savedBefore);
    VistaSound::SetVistaMixerState(bench.library, line);
    bench.Check();
    Require(VistaSound::StateToSave(bench.library, line) == line, "what is saved stays", line);
}

// Restores the journal of a killed run. At the end of this run the journal contains only absent devices.
void UseJournal(MixerBench& bench, std::string_view text) {
    TextJournal journal;
    journal.text = text;
    LevelKeeper keeper(bench.levels, journal);
    keeper.Use({{MixerSide::kPlayback, bench.name}, {MixerSide::kCapture, bench.name}});
    bench.Check();
    keeper.Restore();
    bench.Check();
    const std::string left = journal.text;
    // An empty line precedes each entry.
    for (const char* head : {"playback\t", "capture\t"})
        Require(("\n\n" + left).find("\n\n" + std::string(head) + bench.name + "\n") == std::string::npos,
                "the card's levels are given back", left);
    LevelKeeper next(bench.levels, journal);
    next.Use({});
    Require(journal.text == left, "what is left waits unchanged", left);
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    fuzz::Input input(data, size);
    const unsigned mode = input.Byte() % 5U;
    MixerBench bench(input.Word());
    switch (mode) {
        case 0:
            SetLegacy(bench, bench.output, input.Rest());
            break;
        case 1:
            SetLegacy(bench, bench.input, input.Rest());
            break;
        case 2:
            SetVista(bench, input.Rest());
            break;
        case 3:
            SaveVista(bench, input.Rest());
            break;
        default:
            UseJournal(bench, input.Rest());
            break;
    }
    return 0;
}
