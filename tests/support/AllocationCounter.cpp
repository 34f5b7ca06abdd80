#include "support/AllocationCounter.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

namespace {

// Plain thread-local values, which need no allocation.
thread_local bool counting = false;
thread_local std::size_t requests = 0;
thread_local std::size_t locks = 0;
std::atomic<std::size_t> othersRequests{0};  // of threads that are not counting

void Note() noexcept {
    if (counting)
        ++requests;
    else
        othersRequests.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

#if defined(SONAVEX_SANITIZED)

// The sanitizer's runtime owns malloc.
void* operator new(std::size_t size) {
    Note();
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    Note();
    const auto align = static_cast<std::size_t>(alignment);
    if (void* const memory = std::aligned_alloc(align, (size + align - 1) / align * align)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    Note();
    return std::malloc(size == 0 ? 1 : size);
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
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

#else

// Replace the C library's functions, which operator new calls too.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size) noexcept {
    Note();
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
    Note();
    return __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) noexcept {
    Note();
    return __libc_realloc(memory, size);
}
void* memalign(std::size_t alignment, std::size_t size) noexcept {
    Note();
    return __libc_memalign(alignment, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    Note();
    return __libc_memalign(alignment, size);
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
    Note();
    *memory = __libc_memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static const auto lock =
        reinterpret_cast<int (*)(pthread_mutex_t*)>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    if (counting) ++locks;
    return lock(mutex);
}
}

#endif

namespace sonavex {

AllocationCounter::AllocationCounter() noexcept : othersBefore_(othersRequests.load()) {
    requests = 0;
    locks = 0;
    counting = true;
}

AllocationCounter::~AllocationCounter() {
    counting = false;
}

std::size_t AllocationCounter::Count() const noexcept {
    return requests;
}

std::size_t AllocationCounter::Locks() const noexcept {
    return locks;
}

std::size_t AllocationCounter::OfOtherThreads() const noexcept {
    return othersRequests.load() - othersBefore_;
}

bool AllocationCounter::SeesTheCLibrary() noexcept {
#if defined(SONAVEX_SANITIZED)
    return false;
#else
    return true;
#endif
}

}  // namespace sonavex
