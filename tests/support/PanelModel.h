#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/generator/GeneratorPanel.h"
#include "support/RandomUser.h"
#include "support/ReferenceGenerator.h"

namespace sonavex {

// A second, plain implementation of what user actions do to the generator and its panel: flags, tone table,
// enabled controls. It uses only the data types of the instrument, and its conversions for typed text.
class PanelModel {
public:
    struct Entry {
        std::string line;
        bool selected = false;
        ToneRecord stored;
    };

    explicit PanelModel(std::int32_t rateHz) { ProgramRestarts(rateHz); }

    void Apply(const UserAction& action);
    // A block was filled.
    void FillBlock();
    // Time passes and the sweep timer ticks.
    void Pass(std::chrono::nanoseconds time);
    void StopPlaying();
    // The sampling rate is this one now.
    void FollowRate(std::int32_t rateHz);
    // The program was restarted.
    void ProgramRestarts(std::int32_t rateHz);

    std::int32_t Rate() const noexcept { return generator.rateHz; }

    // Controls: their values and whether they are enabled.
    std::int32_t type = 0, startHz = 1000, endHz = 20, sweepMs = 0, level = -50;
    bool loopChecked = false;
    std::string startText, endText, sweepText;
    bool endUsable = false, loopUsable = false, addUsable = true, removeUsable = false, memoryUsable = false;
    enum class Playing { kNothing, kCurrent, kMemory } playing = Playing::kNothing;
    bool stimulusPlays = false;  // of the Analyzer: the buttons that start are disabled
    std::vector<Entry> list;
    // The generator.
    bool running = false, sweeping = false, ticking = false;
    std::int32_t state = 0;
    reference::Generator generator;

private:
    bool SignalUsable() const { return playing != Playing::kMemory; }
    bool EntriesAreValid() const;
    bool AboveHalfTheRate(const Entry& entry) const;
    ToneRecord& Current() { return generator.tones[0]; }
    std::optional<std::int32_t> Asked(const UserAction& action) const;
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
    void ShowSelection();
    void Add();
    void Remove();
    void Start(ToneRecord& tone) const;
    void SetTicking(bool on);

    std::int64_t now_ = 0;  // ns
    std::int64_t nextTick_ = 0;
};

// Expects the panel, its generator and whether its sweep timer runs to be as in the model.
void ExpectAsModelled(const GeneratorPanel& panel, const Generator& generator, bool ticking,
                      const PanelModel& model);

}  // namespace sonavex
