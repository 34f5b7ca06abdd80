#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/controls/Control.h"
#include "core/support/RuntimeError.h"

namespace sonavex {

// A list with one selected entry, or none (index -1). An index out of range raises error 5.
class ComboBox : public Control {
public:
    std::int32_t Count() const noexcept { return static_cast<std::int32_t>(items_.size()); }
    const std::vector<std::string>& Items() const noexcept { return items_; }
    // Also clears the selection.
    void SetItems(std::vector<std::string> items) {
        SetListIndex(-1);
        Assign(items_, std::move(items));
    }
    std::int32_t ListIndex() const noexcept { return index_; }
    void SetListIndex(std::int32_t index) {
        if (index < -1 || index >= Count()) throw RuntimeError(error_number::kInvalidCall);
        Assign(index_, index);
    }
    // Text of the selected entry; empty if none is selected.
    std::string Text() const { return index_ < 0 ? std::string() : items_[static_cast<std::size_t>(index_)]; }

    void UserSelects(std::int32_t index) {
        SetListIndex(index);
        Click.Raise();
    }
    UserEvent Click;

private:
    std::vector<std::string> items_;
    std::int32_t index_ = -1;
};

// A list with any number of selected entries. A position out of range raises error 5.
class ListBox : public Control {
public:
    struct Item {
        std::string text;
        bool selected = false;
        friend bool operator==(const Item&, const Item&) = default;
    };

    std::int32_t Count() const noexcept { return static_cast<std::int32_t>(items_.size()); }
    const std::vector<Item>& Items() const noexcept { return items_; }
    const std::string& List(std::int32_t position) const { return items_[Checked(position)].text; }
    bool Selected(std::int32_t position) const { return items_[Checked(position)].selected; }
    void SetSelected(std::int32_t position, bool selected) {
        Assign(items_[Checked(position)].selected, selected);
    }
    void AddItem(std::string_view text) {
        items_.push_back({std::string(text), false});
        MarkDirty();
    }
    void RemoveItem(std::int32_t position) {
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(Checked(position)));
        MarkDirty();
    }
    void Clear() { Assign(items_, std::vector<Item>{}); }

    // A locked list shows its selection, but the user cannot change it.
    bool Locked() const noexcept { return locked_; }
    void SetLocked(bool locked) { Assign(locked_, locked); }

    void UserSelects(std::int32_t position, bool selected) {
        if (locked_) return;
        SetSelected(position, selected);
        Click.Raise();
    }
    UserEvent Click;

private:
    std::size_t Checked(std::int32_t position) const {
        if (position < 0 || position >= Count()) throw RuntimeError(error_number::kInvalidCall);
        return static_cast<std::size_t>(position);
    }

    std::vector<Item> items_;
    bool locked_ = false;
};

// Tabs, one of which is in front. An index out of range raises error 5.
class TabStrip : public Control {
public:
    explicit TabStrip(std::int16_t count) noexcept : count_(count) {}
    std::int16_t Count() const noexcept { return count_; }
    std::int16_t Index() const noexcept { return index_; }
    void SetIndex(std::int16_t index) {
        if (index < 0 || index >= count_) throw RuntimeError(error_number::kInvalidCall);
        Assign(index_, index);
    }
    void UserSelects(std::int16_t index) { SetIndex(index); }

private:
    std::int16_t count_;
    std::int16_t index_ = 0;
};

}  // namespace sonavex
