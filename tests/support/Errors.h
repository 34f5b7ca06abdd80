#pragma once

#include <cstdint>

#include "core/support/RuntimeError.h"

namespace sonavex {

// Number of the run-time error that the action raises, 0 when it raises none.
template <class Action>
std::int32_t ErrorOf(Action action) {
    try {
        static_cast<void>(action());
    } catch (const RuntimeError& error) {
        return error.Number();
    }
    return 0;
}

}  // namespace sonavex
