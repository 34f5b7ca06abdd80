#include "platform/plain/WorkerThread.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <utility>

#include "platform/plain/Semaphore.h"

namespace sonavex {
namespace {

Background::Result Perform(const Background::Task& task) {
    try {
        return task();
    } catch (...) {
        return [error = std::current_exception()] { std::rethrow_exception(error); };
    }
}

}  // namespace

// Shared with the thread, which may outlive the object.
struct WorkerThread::Work {
    std::mutex mutex;  // guards everything but `ended`
    std::condition_variable wake;
    std::array<Task, kLines> waiting;  // by line; empty: none
    std::deque<Result> results;
    std::unique_ptr<Signal> done;
    bool ending = false;
    Semaphore ended;

    bool AnyWaiting() const {
        return std::any_of(waiting.begin(), waiting.end(), [](const Task& task) { return task != nullptr; });
    }
    Task TakeTask() {
        for (Task& task : waiting)
            if (task) return std::exchange(task, nullptr);
        return nullptr;
    }
    void Serve() {
        std::unique_lock lock(mutex);
        for (;;) {
            wake.wait(lock, [this] { return ending || AnyWaiting(); });
            if (ending) break;
            Task task = TakeTask();
            lock.unlock();
            Result result = Perform(task);
            task = nullptr;
            lock.lock();
            if (ending) break;
            results.push_back(std::move(result));
            done->Raise();
        }
        lock.unlock();
        ended.Release();
    }
};

WorkerThread::WorkerThread(EventLoop& loop, std::chrono::milliseconds endLimit)
    : endLimit_(endLimit), work_(std::make_shared<Work>()) {
    work_->done = loop.CreateSignal([this] { Deliver(); });
    thread_ = std::thread([work = work_] { work->Serve(); });
}

WorkerThread::~WorkerThread() {
    std::array<Task, kLines> discarded;
    {
        const std::lock_guard lock(work_->mutex);
        work_->ending = true;
        work_->done.reset();
        discarded.swap(work_->waiting);
        work_->results.clear();
    }
    work_->wake.notify_one();
    if (work_->ended.AcquireBefore(std::chrono::steady_clock::now().time_since_epoch() + endLimit_))
        thread_.join();
    else
        thread_.detach();
}

void WorkerThread::Run(Line line, Task task) {
    {
        const std::lock_guard lock(work_->mutex);
        work_->waiting[static_cast<std::size_t>(line)].swap(task);
    }
    work_->wake.notify_one();
}

// One result for each signal, so that an error of one does not keep the others.
void WorkerThread::Deliver() {
    Result result;
    {
        const std::lock_guard lock(work_->mutex);
        if (work_->results.empty()) return;
        result = std::move(work_->results.front());
        work_->results.pop_front();
        if (!work_->results.empty()) work_->done->Raise();
    }
    if (result) result();
}

}  // namespace sonavex
