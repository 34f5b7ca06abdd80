#pragma once

#include <cstddef>
#include <functional>

namespace sonavex {

// Runs long computations outside the user-interface thread, so that the core needs no locks: a task works on
// its own copies, and its result is delivered on the user-interface thread.
class Background {
public:
    // Called on the user-interface thread. May be empty.
    using Result = std::function<void()>;
    // Called on any one thread. Pure: it uses nothing that another thread may change.
    using Task = std::function<Result()>;

    // Tasks of one line replace each other.
    enum class Line { kStimulus, kAnalysis, kRecording, kHistory, kHistorySync };
    static constexpr std::size_t kLines = 5;

    // Destruction discards waiting tasks and undelivered results.
    virtual ~Background() = default;

    // Runs the task after the one that is running. At most one task of a line waits: a newer task replaces
    // it. The event loop delivers the results in the order in which the tasks have ended, never within this
    // call. An exception of a task leaves the handler of the event loop.
    virtual void Run(Line line, Task task) = 0;
};

}  // namespace sonavex
