#pragma once

#include <optional>

#include "support/ChildProcess.h"

namespace sonavex {

// The whole program with somebody at it, run by the test executable: it opens, does the steps one after
// the other and closes the window. Each message box is confirmed. What there was to read goes to the
// standard output, one line each ("message: ...", "error: ..."), and "done" at the end; the status is the
// program's.
//   measure       starts the generator and waits for some blocks
//   help          opens the help and looks through all of its pages
//   file=PATH     prints the report into this PDF file
//   print=NAME    prints the report on this printer
//   run=PATH      runs this program
//   settings      lets what is saved be written
// An error of the sound devices at the start is confirmed with the button that ends the program.
Arguments Session(const Arguments& steps);

std::optional<int> RunSession(int argc, char** argv);

}  // namespace sonavex
