#pragma once

#include <sys/types.h>

#include <optional>

#include "support/ChildProcess.h"

namespace sonavex {

// How a program is run. The superuser's power over the rights of files is taken away in any case, so that
// a folder without the right to write is one for everybody.
struct Confinement {
    // No file grows beyond it, as on a disk that is full then; 0 for none.
    unsigned long fileBytes = 0;
    mode_t mask = 022;
    // Whoever asks for a socket of the internet protocols is killed (SIGSYS), with what it started.
    bool noInternet = false;
};

// The command line that runs the program so, through this executable.
Arguments Confined(const Confinement& confinement, const Arguments& command);

// Becomes the program that the command line asks for; returns the exit status when that fails, nothing
// when it asks for none.
std::optional<int> RunConfined(int argc, char** argv);

}  // namespace sonavex
