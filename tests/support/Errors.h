#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

#include "core/support/RuntimeError.h"

namespace sonavex {

// The run-time error that the action raises; nothing when it raises none.
template <class Action>
std::optional<RuntimeError> Raised(Action action) {
    try {
        static_cast<void>(action());
    } catch (const RuntimeError& error) {
        EXPECT_STRNE(error.what(), "") << error.Number();
        return error;
    }
    return {};
}

// Number of the run-time error that the action raises; 0 when it raises none.
template <class Action>
std::int32_t ErrorOf(Action action) {
    const auto error = Raised(action);
    return error ? error->Number() : 0;
}

// Text of the run-time error that the action raises; "no error" when it raises none.
template <class Action>
std::string TextOfError(Action action) {
    const auto error = Raised(action);
    return error ? error->what() : "no error";
}

}  // namespace sonavex
