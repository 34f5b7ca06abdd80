#pragma once

#include <cstddef>

namespace sonavex {

// Counts every request for memory that this thread makes while one of these exists. Built with
// sanitizers it sees operator new only, otherwise the C library's functions as well.
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
