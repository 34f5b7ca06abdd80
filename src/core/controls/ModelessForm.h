#pragma once

#include <functional>
#include <string>
#include <utility>

#include "core/controls/Window.h"

namespace sonavex {

// A form that stays open next to the main form. At most one instance is open.
class ModelessForm {
public:
    virtual ~ModelessForm() = default;
    ModelessForm(const ModelessForm&) = delete;
    ModelessForm& operator=(const ModelessForm&) = delete;

    // Loads the form if necessary, refreshes its values and brings it to the front.
    void Show() {
        if (!loaded_) Form_Load();
        loaded_ = true;
        Form_Activate();
        if (OnShow) OnShow();
    }
    // Closes the form; does nothing if it is not loaded.
    void Unload() {
        if (!loaded_) return;
        loaded_ = false;
        if (OnClosed) OnClosed();
        Form_QueryUnload();
    }
    bool Loaded() const noexcept { return loaded_; }
    // Call when the form comes to the front.
    void Activate() {
        if (loaded_) Form_Activate();
    }

    Window Frame;

    // Hooks with which the window shows and hides the form.
    std::function<void()> OnShow;
    std::function<void()> OnClosed;

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
