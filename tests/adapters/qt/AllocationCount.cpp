#include "adapters/qt/AllocationCount.h"

#include <cstdlib>
#include <new>

namespace {
thread_local std::size_t count = 0;
}

void* operator new(std::size_t size) {
    ++count;
    if (void* const memory = std::malloc(size != 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++count;
    return std::malloc(size != 0 ? size : 1);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace sonavex {

std::size_t AllocationCount() noexcept {
    return count;
}

}  // namespace sonavex
