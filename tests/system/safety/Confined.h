#pragma once

#include <sys/types.h>

#include <optional>

#include "support/ChildProcess.h"

namespace sonavex {

// How a program is confined. The superuser's power over file permissions is always removed, so that a folder
// without write permission is read-only for everybody.
struct Confinement {
    // Limit of every file's size, like a full disk; 0 for none.
    unsigned long fileBytes = 0;
    mode_t mask = 022;
    // Kills (SIGSYS) any process that creates an Internet socket, including started ones.
    bool noInternet = false;
};

// The command line that runs the program confined, through this executable.
Arguments Confined(const Confinement& confinement, const Arguments& command);

// Replaces this process with the program in the command line. Returns the exit status if that fails, nothing
// if the command line requests none.
std::optional<int> RunConfined(int argc, char** argv);

}  // namespace sonavex
