#pragma once

#include <vector>

#include "core/controls/Control.h"

namespace sonavex {

// The controls that the action creates, in this order.
template <class Action>
std::vector<Control*> CreatedControls(Action action) {
    std::vector<Control*> created;
    Control::OnCreated = [&created](Control& control) { created.push_back(&control); };
    action();
    Control::OnCreated = nullptr;
    return created;
}

}  // namespace sonavex
