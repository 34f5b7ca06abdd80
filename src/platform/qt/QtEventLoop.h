#pragma once

#include <QEventLoop>
#include <QObject>
#include <QSocketNotifier>
#include <chrono>
#include <exception>
#include <functional>
#include <memory>

#include "core/ports/EventLoop.h"
#include "platform/plain/SignalQueue.h"

namespace sonavex {

// The event loop of a program with windows. Any loop of the toolkit that runs on the thread that created
// this object delivers signals and timers, also the loop of an open dialog. The application object must
// outlive this one.
//
// An exception that leaves a handler is passed to `onError` instead of through the toolkit. The signal or
// timer of that handler stays active. onError may show a message box; it must not throw.
class QtEventLoop : public EventLoop {
public:
    using OnError = std::function<void(std::exception_ptr)>;

    // Throws std::system_error when the system is out of descriptors.
    explicit QtEventLoop(OnError onError);
    ~QtEventLoop() override;

    std::unique_ptr<Signal> CreateSignal(std::function<void()> handler) override;
    TimerId StartTimer(std::chrono::milliseconds interval, std::function<void()> handler) override;
    void StopTimer(TimerId id) override;
    // Delivers the signals that were raised before the call, then the pending events of the toolkit.
    // Signals raised meanwhile wait for the next delivery.
    void Yield() override;
    void YieldWithoutInput() override;
    std::chrono::nanoseconds Now() const override;

private:
    class WakeDescriptor;
    class Timers;

    void Deliver();
    void OnWake();
    void Yield(QEventLoop::ProcessEventsFlags events);
    void Run(const std::function<void()>& handler) noexcept;

    OnError onError_;
    std::unique_ptr<WakeDescriptor> wake_;
    SignalQueue queue_;
    QSocketNotifier notifier_;
    int yieldingLevel_ = -1;  // nesting level of the toolkit's loop in which the innermost Yield runs
    std::unique_ptr<Timers> timers_;
};

}  // namespace sonavex
