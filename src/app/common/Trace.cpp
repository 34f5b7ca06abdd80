#include "app/common/Trace.h"

#include <chrono>
#include <cstdlib>
#include <iostream>

namespace sonavex::app {

std::function<void(std::string_view, std::int32_t)> TraceFromEnvironment() {
    if (std::getenv("SONAVEX_TRACE") == nullptr) return {};
    const auto start = std::chrono::steady_clock::now();
    return [start](std::string_view label, std::int32_t cursor) {
        const auto passed = std::chrono::steady_clock::now() - start;
        std::cerr << std::chrono::duration_cast<std::chrono::milliseconds>(passed).count() << " ms " << label
                  << ' ' << cursor << '\n';
    };
}

}  // namespace sonavex::app
