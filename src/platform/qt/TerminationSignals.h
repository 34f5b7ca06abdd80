#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace sonavex {

// Delivers the system's requests to end the program (SIGTERM, SIGINT, SIGHUP) through the event loop. One
// object at a time. Its destructor restores the earlier signal handlers.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> requested);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace sonavex
