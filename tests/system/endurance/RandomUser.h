#pragma once

#include <cstdint>
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

    Kind kind = Kind::kType;
    std::int32_t value = 0;
    std::string text;
    bool leaves = false;  // the slider is released, or the entry finished
};

// The action in words, for failure messages.
std::string Describe(const UserAction& action);

// A user who performs random actions.
class RandomUser {
public:
    explicit RandomUser(std::uint64_t seed) : random_(seed) {}
    // A random action at a sampling rate.
    UserAction Next(std::int32_t rateHz);
    // Random number from 0 to count - 1.
    std::int32_t Pick(std::int32_t count);
    bool Chance(double probability) { return std::bernoulli_distribution(probability)(random_); }
    double Between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }

private:
    std::string Text(std::int32_t rateHz);

    std::mt19937_64 random_;
};

// Performs the action on the form's controls.
void Perform(const UserAction& action, frmMain& form);

}  // namespace sonavex
