#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>

#include "core/ports/EventLoop.h"

namespace sonavex {

// The event loop of a program with windows: signals and timers are delivered by whatever loop of the
// toolkit runs on the thread that created this object, also by that of an open dialog. An application
// object must exist as long as this one.
//
// An error that leaves a handler goes to the given procedure instead of through the toolkit; the
// handler's signal or timer lives on. The procedure may show a message box; it must not throw.
class QtEventLoop : public EventLoop {
public:
    using OnError = std::function<void(std::exception_ptr)>;

    // Throws std::system_error when the system has no descriptor left.
    explicit QtEventLoop(OnError onError);
    ~QtEventLoop() override;

    std::unique_ptr<Signal> CreateSignal(std::function<void()> handler) override;
    TimerId StartTimer(std::chrono::milliseconds interval, std::function<void()> handler) override;
    void StopTimer(TimerId id) override;
    // Signals that were raised before the call, then the toolkit's events that are pending. Signals
    // raised by these are left to the next delivery.
    void Yield() override;
    std::chrono::nanoseconds Now() const override;

private:
    struct Bell;
    class Belfry;  // shared with the signals
    class QueuedSignal;
    class Timers;

    void Collect() noexcept;
    std::shared_ptr<Bell> PopUpTo(std::uint64_t ticket) noexcept;
    void DeliverCollected();
    void OnWake();
    void Run(const std::function<void()>& handler) noexcept;

    OnError onError_;
    std::shared_ptr<Belfry> belfry_;
    QSocketNotifier wake_;
    // The rings that were seen and not delivered, and the ticket of the last one; it rises with every ring.
    Bell* oldest_ = nullptr;
    Bell* youngest_ = nullptr;
    std::uint64_t lastTicket_ = 0;
    int yieldingLevel_ = -1;  // depth of the toolkit's loops that the innermost Yield works in
    std::unique_ptr<Timers> timers_;
};

}  // namespace sonavex
