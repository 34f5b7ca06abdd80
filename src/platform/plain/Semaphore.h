#pragma once

#include <semaphore.h>

#include <chrono>
#include <ctime>

namespace sonavex {

// A counting semaphore whose timed wait sleeps in the kernel at once. std::counting_semaphore of GCC 12
// yields the processor several times first, which costs a busy machine whole time slices: waits of 1 ms
// took 8 ms. Any thread; Release takes no lock and no memory.
class Semaphore {
public:
    Semaphore() noexcept { sem_init(&semaphore_, 0, 0); }
    ~Semaphore() { sem_destroy(&semaphore_); }
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    void Release() noexcept { sem_post(&semaphore_); }
    void TryAcquire() noexcept { sem_trywait(&semaphore_); }
    // Whether it was acquired. Returns earlier then, or when a handler of a POSIX signal ran. The end is a
    // time of std::chrono::steady_clock.
    bool AcquireUntil(std::chrono::nanoseconds end) noexcept {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(end);
        const timespec time{static_cast<std::time_t>(seconds.count()),
                            static_cast<long>((end - seconds).count())};
        return sem_clockwait(&semaphore_, CLOCK_MONOTONIC, &time) == 0;
    }
    // Whether it was acquired before the end, despite POSIX signals.
    bool AcquireBefore(std::chrono::nanoseconds end) noexcept {
        while (!AcquireUntil(end))
            if (std::chrono::steady_clock::now().time_since_epoch() >= end) return false;
        return true;
    }

private:
    sem_t semaphore_;
};

}  // namespace sonavex
