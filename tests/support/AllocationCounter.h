#pragma once

#include <cstddef>

namespace sonavex {

// Counts every memory allocation of this thread during its lifetime, and without sanitizers every lock of a
// mutex. With sanitizers it sees operator new only, otherwise the C library's functions too.
class AllocationCounter {
public:
    AllocationCounter() noexcept;
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    std::size_t Count() const noexcept;
    std::size_t Locks() const noexcept;
    // Allocations of all other threads.
    std::size_t OfOtherThreads() const noexcept;

    // Whether malloc and its relatives, and locks, are counted too.
    static bool SeesTheCLibrary() noexcept;

private:
    std::size_t othersBefore_;
};

}  // namespace sonavex
