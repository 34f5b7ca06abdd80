#pragma once

namespace sonavex {

// Thrown to end the program at once. Only the program's entry point catches it.
struct EndProgram {
    int status = 0;
    // True: nothing is stored any more. The user's mixer levels are restored in any case.
    bool atOnce = false;
};

}  // namespace sonavex
