#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "core/shell/frmMain.h"

namespace sonavex {

// One thing that a user does in the window. What a disabled control does not let happen does not happen.
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
    bool leaves = false;  // the slider is let go, or the entry finished
};

// For a failure's message: the action in words.
std::string Describe(const UserAction& action);

// A user who does anything at any time.
class RandomUser {
public:
    explicit RandomUser(std::uint64_t seed) : random_(seed) {}
    // What could be done next at a sampling rate.
    UserAction Next(std::int32_t rateHz);
    // From 0 to count - 1.
    std::int32_t Pick(std::int32_t count);
    bool Chance(double probability) { return std::bernoulli_distribution(probability)(random_); }
    double Between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }

private:
    std::string Text(std::int32_t rateHz);

    std::mt19937_64 random_;
};

// The action on the form's controls.
void Perform(const UserAction& action, frmMain& form);

}  // namespace sonavex
