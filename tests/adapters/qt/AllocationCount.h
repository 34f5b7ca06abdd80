#pragma once

#include <cstddef>

namespace sonavex {

// How often the calling thread has asked operator new for memory since it began.
std::size_t AllocationCount() noexcept;

}  // namespace sonavex
