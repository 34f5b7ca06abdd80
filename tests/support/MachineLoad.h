#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace sonavex {

// Two busy threads per processor, until destruction.
class MachineLoad {
public:
    MachineLoad() {
        for (unsigned i = 0; i < 2 * std::max(1U, std::thread::hardware_concurrency()); ++i)
            threads_.emplace_back([this] {
                while (!stop_.load()) work_.fetch_add(1, std::memory_order_relaxed);
            });
    }
    ~MachineLoad() {
        stop_.store(true);
        for (std::thread& thread : threads_) thread.join();
    }
    MachineLoad(const MachineLoad&) = delete;
    MachineLoad& operator=(const MachineLoad&) = delete;

private:
    std::atomic<bool> stop_{false};
    std::atomic<std::uint64_t> work_{0};
    std::vector<std::thread> threads_;
};

}  // namespace sonavex
