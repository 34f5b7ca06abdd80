#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "core/controls/Control.h"

namespace sonavex {

// The outer frame of a form. Positions and sizes in device-independent pixels.
class Window : public Control {
public:
    explicit Window(std::string name) : name_(std::move(name)) {}

    // The form's name, which is part of the settings keys of its position.
    const std::string& Name() const noexcept { return name_; }

    const std::string& Caption() const noexcept { return caption_; }
    void SetCaption(std::string_view caption) { Assign(caption_, caption); }

    std::int32_t Left() const noexcept { return left_; }
    std::int32_t Top() const noexcept { return top_; }
    void Move(std::int32_t left, std::int32_t top) {
        Assign(left_, left);
        Assign(top_, top);
    }

    std::int32_t Width() const noexcept { return width_; }
    std::int32_t Height() const noexcept { return height_; }
    // Sets the size of the window with its frame, as far as the frame is known.
    void SetSize(std::int32_t width, std::int32_t height) noexcept {
        width_ = width;
        height_ = height;
    }

    // Right and bottom edge of the screens; the form is placed inside them.
    std::int32_t RightLimit() const noexcept { return rightLimit_; }
    std::int32_t BottomLimit() const noexcept { return bottomLimit_; }
    void SetLimits(std::int32_t right, std::int32_t bottom) noexcept {
        rightLimit_ = right;
        bottomLimit_ = bottom;
    }

private:
    std::string name_;
    std::string caption_;
    std::int32_t left_ = 0;
    std::int32_t top_ = 0;
    std::int32_t width_ = 0;
    std::int32_t height_ = 0;
    std::int32_t rightLimit_ = 0;
    std::int32_t bottomLimit_ = 0;
};

}  // namespace sonavex
