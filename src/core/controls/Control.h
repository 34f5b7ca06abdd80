#pragma once

#include <functional>
#include <utility>

namespace sonavex {

// Base of all control values. A control becomes dirty when its value changes and calls the OnDirty hook once;
// the window shows the value and calls Clean(). Setting a value from code never runs a user handler.
class Control {
public:
    Control() {
        if (OnCreated) OnCreated(*this);
    }
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    bool Dirty() const noexcept { return dirty_; }
    void Clean() noexcept { dirty_ = false; }
    std::function<void()> OnDirty;

    // Called for every control that is created: tests compare the controls of a form with its widgets.
    static inline std::function<void(Control&)> OnCreated;

    bool Enabled() const noexcept { return enabled_; }
    void SetEnabled(bool enabled) { Assign(enabled_, enabled); }

protected:
    ~Control() = default;

    // Stores the value; marks the control dirty only when it differs.
    template <class Field, class Value>
    void Assign(Field& field, Value&& value) {
        if (field == value) return;
        field = std::forward<Value>(value);
        MarkDirty();
    }

    void MarkDirty() {
        if (dirty_) return;
        dirty_ = true;
        if (OnDirty) OnDirty();
    }

private:
    bool dirty_ = false;
    bool enabled_ = true;
};

// A user event of a control, handled by the form that owns it.
class UserEvent {
public:
    void Handle(std::function<void()> handler) { handler_ = std::move(handler); }
    void Raise() const {
        if (handler_) handler_();
    }

private:
    std::function<void()> handler_;
};

}  // namespace sonavex
