#pragma once

#include <QSocketNotifier>
#include <functional>
#include <memory>

namespace sonavex {

// The system's polite requests to end the program (SIGTERM, SIGINT, SIGHUP), delivered by the event
// loop. One object at a time; after it the signals do again what they did before.
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
