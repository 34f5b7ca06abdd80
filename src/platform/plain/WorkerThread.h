#pragma once

#include <chrono>
#include <memory>
#include <thread>

#include "core/ports/Background.h"
#include "core/ports/EventLoop.h"

namespace sonavex {

// One thread for all tasks.
class WorkerThread : public Background {
public:
    // The loop must outlive this object. Destruction waits at most this long for a running task; a task that
    // takes longer ends later, without a result.
    explicit WorkerThread(EventLoop& loop, std::chrono::milliseconds endLimit = std::chrono::seconds(2));
    ~WorkerThread() override;
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    void Run(Line line, Task task) override;

private:
    struct Work;

    void Deliver();

    std::chrono::milliseconds endLimit_;
    std::shared_ptr<Work> work_;
    std::thread thread_;
};

}  // namespace sonavex
