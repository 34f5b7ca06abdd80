#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "core/controls/Control.h"

namespace sonavex {

// A text shown to the user. Captions of up to 15 characters are stored without allocation.
class Label : public Control {
public:
    const std::string& Caption() const noexcept { return caption_; }
    void SetCaption(std::string_view caption) { Assign(caption_, caption); }
    bool Visible() const noexcept { return visible_; }
    void SetVisible(bool visible) { Assign(visible_, visible); }

private:
    std::string caption_;
    bool visible_ = true;
};

// A line of text that the user types or the program sets.
class TextBox : public Control {
public:
    const std::string& Text() const noexcept { return text_; }
    void SetText(std::string_view text) { Assign(text_, text); }

    // Call when the user has typed: stores the text and raises Change.
    void UserTypes(std::string_view text) {
        SetText(text);
        Change.Raise();
    }
    UserEvent Change;

    // Call when the user ends the entry with Return or leaves the box: raises Leave.
    void UserLeaves() { Leave.Raise(); }
    UserEvent Leave;

    // Requests the keyboard focus. The window takes the request when it shows the box.
    void SetFocus() {
        focusWanted_ = true;
        MarkDirty();
    }
    bool TakeFocusRequest() noexcept { return std::exchange(focusWanted_, false); }

private:
    std::string text_;
    bool focusWanted_ = false;
};

// A whole number between two limits. Values outside are clamped, also when the limits change.
class Slider : public Control {
public:
    std::int32_t Value() const noexcept { return value_; }
    std::int32_t Min() const noexcept { return min_; }
    std::int32_t Max() const noexcept { return max_; }
    void SetValue(std::int32_t value) { Assign(value_, std::clamp(value, min_, max_)); }
    // Requires min <= max.
    void SetRange(std::int32_t min, std::int32_t max) {
        const std::int32_t value = std::clamp(value_, min, max);
        if (min == min_ && max == max_) return;
        // Assign all three before MarkDirty, so that the window sees consistent limits and value.
        min_ = min;
        max_ = max;
        value_ = value;
        MarkDirty();
    }
    void SetMax(std::int32_t max) { SetRange(std::min(min_, max), max); }

    // Distance of one step by the keyboard.
    std::int32_t Step() const noexcept { return step_; }
    void SetStep(std::int32_t step) { Assign(step_, step); }

    // Call when the user moves the slider (drag, wheel or key): stores the value and raises Change.
    void UserMoves(std::int32_t value) {
        SetValue(value);
        Change.Raise();
    }
    UserEvent Change;

    // Call when the user releases the slider or ends a wheel or key step: raises Release.
    void UserReleases() { Release.Raise(); }
    UserEvent Release;

private:
    std::int32_t value_ = 0;
    std::int32_t min_ = 0;
    std::int32_t max_ = 100;
    std::int32_t step_ = 1;
};

// A check box: value 1 when checked, 0 when not.
class CheckBox : public Control {
public:
    std::int16_t Value() const noexcept { return value_; }
    bool Checked() const noexcept { return value_ != 0; }
    void SetValue(std::int16_t value) { Assign(value_, static_cast<std::int16_t>(value != 0)); }

    // Call when the user clicks: stores the state and raises Click.
    void UserSets(bool checked) {
        SetValue(checked ? 1 : 0);
        Click.Raise();
    }
    UserEvent Click;

private:
    std::int16_t value_ = 0;
};

// A level bar from 0 to Max, in single precision like the peak levels.
class ProgressBar : public Control {
public:
    explicit ProgressBar(float max = 32760.0F) noexcept : max_(max) {}
    float Value() const noexcept { return value_; }
    float Max() const noexcept { return max_; }
    void SetValue(float value) { Assign(value_, std::clamp(value, 0.0F, max_)); }

private:
    float value_ = 0.0F;
    float max_;
};

struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    friend bool operator==(const Colour&, const Colour&) = default;
};

inline constexpr Colour kLightGreen{0, 255, 0};
inline constexpr Colour kLightRed{255, 0, 0};

// A coloured field that shows a state.
class Indicator : public Control {
public:
    Colour BackColor() const noexcept { return colour_; }
    void SetBackColor(Colour colour) { Assign(colour_, colour); }

private:
    Colour colour_;
};

}  // namespace sonavex
