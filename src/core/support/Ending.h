#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "core/support/EndProgram.h"

namespace sonavex {

// The request to end the program, and the open calls that wait for the user or for another program. A request
// ends these calls from the innermost outwards: each throws EndProgram, so that the stack unwinds before the
// shutdown.
class Ending {
public:
    using Action = std::function<void()>;

    // Ends all open calls. The first request decides how the program ends; a signal adds its silence.
    void Request(const EndProgram& end);
    // Empty until the end is requested.
    const std::optional<EndProgram>& Requested() const noexcept { return requested_; }
    // Throws EndProgram if the end is requested.
    void ThrowIfRequested() const;

    // Runs `wait`, which waits for the user in a form or for another program. `close` must make it return
    // soon. Throws EndProgram if the end is requested meanwhile, or at once if it was requested before.
    void Wait(const Action& wait, const Action& close);
    // The same for a message box, which also opens after a request, unless a signal requested the end.
    void WaitForMessage(const Action& wait, const Action& close);
    // Whether a call is open.
    bool Waiting() const noexcept { return !calls_.empty(); }

private:
    struct Call {
        const Action& close;
        bool closed = false;
    };

    void Run(const Action& wait, const Action& close);

    std::optional<EndProgram> requested_;
    std::vector<Call*> calls_;  // innermost last
};

}  // namespace sonavex
