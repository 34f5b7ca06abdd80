#pragma once

#include <cstddef>

namespace sonavex {

// Counts every memory allocation of this thread during its lifetime. With sanitizers it sees operator new
// only, otherwise the C library's functions too.
class AllocationCounter {
public:
    AllocationCounter() noexcept;
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    std::size_t Count() const noexcept;

    // Whether malloc and its relatives are counted too.
    static bool SeesTheCLibrary() noexcept;
};

}  // namespace sonavex
