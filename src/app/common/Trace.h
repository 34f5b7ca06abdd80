#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

namespace sonavex::app {

// Writes the stream engine's trace to standard error if the environment variable SONAVEX_TRACE is set: the
// milliseconds since this call, the label and the position of a cursor in bytes. Empty otherwise.
std::function<void(std::string_view label, std::int32_t cursor)> TraceFromEnvironment();

}  // namespace sonavex::app
