#pragma once

namespace sonavex {

// Thrown to end the program. Only the program's entry point and HandlerGuard catch it.
struct EndProgram {
    int status = 0;
    // True: nothing is stored any more. The user's mixer levels are restored in any case.
    bool atOnce = false;
    // Requested by a signal of the system: no message box opens any more.
    bool bySignal = false;
};

}  // namespace sonavex
