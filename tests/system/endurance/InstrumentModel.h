#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "system/endurance/RandomUser.h"

namespace sonavex {

// A second, plain implementation of what user actions do to generator and stream: flags, tone table, enabled
// controls and stream positions. It uses only the data types of the instrument, and its conversions for typed
// text.
class InstrumentModel {
public:
    struct Entry {
        std::string line;
        bool selected = false;
        ToneRecord stored;
    };

    explicit InstrumentModel(std::int32_t rateHz);

    void Apply(const UserAction& action);
    // The card has moved one block.
    void CardMoves();
    // A block was captured and measured, and the next one written.
    void FillBlock();
    // Time passes and the sweep timer ticks.
    void Pass(std::chrono::nanoseconds time);
    // The stream starts again at this rate.
    void StreamStarts(std::int32_t rateHz);
    // The user selected another rate in the selection of devices.
    void SelectRate(std::int32_t rateHz);
    // The program was restarted.
    void ProgramRestarts(std::int32_t rateHz);

    std::int32_t rate = 0;
    // Controls: their values and whether they are enabled.
    std::int32_t type = 0, startHz = 1000, endHz = 20, sweepMs = 0, level = -50;
    bool loopChecked = false;
    std::string startText, endText, sweepText;
    bool endUsable = false, loopUsable = false, addUsable = true, removeUsable = false, memoryUsable = false;
    enum class Playing { kNothing, kCurrent, kMemory } playing = Playing::kNothing;
    std::vector<Entry> list;
    // The generator.
    bool running = false, sweeping = false, ticking = false;
    std::int32_t state = 0, tones = 0;
    std::array<ToneRecord, 9> table{};
    // The stream.
    std::int32_t playBlock = 0, primed = 0;
    std::int32_t cursor = 0;  // block that the card plays next; 0 before it plays
    bool priming = true, audible = false;
    std::uint64_t playbackStarts = 0, overruns = 0;

private:
    bool SignalUsable() const { return playing != Playing::kMemory; }
    bool EntriesAreValid() const;
    bool AboveHalfTheRate(const Entry& entry) const;
    std::optional<std::int32_t> Asked(const UserAction& action, bool typed) const;
    void SetStart(const UserAction& action);
    void SetEnd(const UserAction& action);
    void SetSweep(const UserAction& action);
    void Select(const UserAction& action);
    void Press(UserAction::Kind button);
    void ShowStart();
    void ShowEnd();
    void ShowSweep();
    void LetGoStart();
    void LetGoSweep();
    void NewStep();
    void TakeControls();
    void Store();
    void StartCurrent();
    void StartMemory();
    void StopAll();
    void ShowSelection();
    void Add();
    void Remove();
    void Tick();
    void Sound(ToneRecord& tone) const;
    void SetTicking(bool on);

    std::int64_t now_ = 0;  // ns
    std::int64_t nextTick_ = 0;
};

}  // namespace sonavex
