#pragma once

#include <functional>
#include <string>
#include <utility>

#include "core/controls/Window.h"

namespace sonavex {

// Remembers where forms were placed.
class FormPlaces {
public:
    virtual ~FormPlaces() = default;
    // Moves the form to where it was last, or to the middle of the screen.
    virtual void Restore(Window& form) = 0;
    virtual void Store(const Window& form) = 0;
};

// A form beside the main form, of which there is one at most. User-interface thread only.
class ModelessForm {
public:
    virtual ~ModelessForm() = default;
    ModelessForm(const ModelessForm&) = delete;
    ModelessForm& operator=(const ModelessForm&) = delete;

    // Loads the form when it is not loaded, and shows it in front with its present values.
    void Show() {
        if (!loaded_) Form_Load();
        loaded_ = true;
        Form_Activate();
        if (OnShow) OnShow();
    }
    // Closes the form; one that is not loaded is left alone.
    void Unload() {
        if (!loaded_) return;
        loaded_ = false;
        if (OnUnload) OnUnload();
        Form_QueryUnload();
    }
    bool Loaded() const noexcept { return loaded_; }
    // The form has come to the front.
    void Activate() {
        if (loaded_) Form_Activate();
    }

    Window Frame;

    // The face shows the form, and hides it.
    std::function<void()> OnShow;
    std::function<void()> OnUnload;

protected:
    ModelessForm(std::string name, std::string_view caption) : Frame(std::move(name)) {
        Frame.SetCaption(caption);
    }

    virtual void Form_Load() = 0;
    virtual void Form_Activate() {}
    virtual void Form_QueryUnload() {}

private:
    bool loaded_ = false;
};

}  // namespace sonavex
