#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <random>
#include <string>

#include "core/shell/frmMain.h"

namespace sonavex {

// One user action in the window. Actions on disabled controls have no effect.
struct UserAction {
    enum class Kind {
        kType,
        kStartSlider,
        kEndSlider,
        kSweepSlider,
        kLevelSlider,
        kStartText,
        kEndText,
        kSweepText,
        kLoop,
        kStartCurrent,
        kAdd,
        kSelectTone,
        kRemove,
        kStartMemory,
        kAuto,
        kFrequencyText,
        kMute,
        kApplyBaseline,
        kCaptureBaseline,
        kTab,
    };
    static constexpr int kKinds = static_cast<int>(Kind::kTab) + 1;
    static constexpr int kPanelKinds = static_cast<int>(Kind::kStartMemory) + 1;  // those of GeneratorPanel

    Kind kind = Kind::kType;
    std::int32_t value = 0;
    std::optional<std::string> text;  // none: the user only leaves the box
    bool leaves = false;              // the slider is released, the box left, or the entry selected
};

// The action in words, for failure messages.
std::string Describe(const UserAction& action);

// The source of a user's decisions.
class Randomness {
public:
    virtual ~Randomness() = default;
    // A number from 0 to count - 1.
    virtual std::int32_t Pick(std::int32_t count) = 0;
    // What the user types into a box for numbers up to `highest`.
    virtual std::string Text(std::int32_t highest) = 0;
};

// Reproducible by its seed.
class SeededRandomness : public Randomness {
public:
    explicit SeededRandomness(std::uint64_t seed) : random_(seed) {}
    std::int32_t Pick(std::int32_t count) override;
    std::string Text(std::int32_t highest) override;
    bool Chance(double probability) { return std::bernoulli_distribution(probability)(random_); }
    double Between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }

private:
    std::mt19937_64 random_;
};

// The next action of a random user at a sampling rate: one of the first `kinds`.
UserAction NextAction(Randomness& randomness, std::int32_t rateHz, int kinds = UserAction::kKinds);

// Runs one event of the window.
using RunEvent = std::function<void(const std::function<void()>&)>;

// Performs the action on the controls, each of its events through `run`.
void Perform(const UserAction& action, GeneratorPanel& panel, const RunEvent& run);
void Perform(const UserAction& action, frmMain& form, const RunEvent& run);

}  // namespace sonavex
